// What the objects of this layer have in common. Each owns a component: it is moved, not copied, and driven by one
// thread at a time; different objects run in parallel. No call allocates, and nothing is thrown. An object whose
// component could not be made answers every call with Reason::OutOfMemory.
//
// Source first, destination last. The two must not overlap, except where a method allows it.
#ifndef PIXMORPH_CPP_COMPONENT_HPP
#define PIXMORPH_CPP_COMPONENT_HPP

#include <pixmorph/cpp/picture.hpp>
#include <pixmorph/cpp/status.hpp>

namespace pixmorph {

namespace detail {

/// Owns one interface of a component.
template <class Interface, const GUID& kClass>
class Component {
public:
    Component() noexcept { Create(kClass, object_); }
    Component(Component&&) noexcept = default;
    Component& operator=(Component&&) noexcept = default;
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;
    ~Component() = default;

    /// The component below, for what this layer does not offer.
    Interface* Get() const noexcept { return object_.Get(); }

private:
    KorvaneSoftware::ComPtr<Interface> object_;
};

// What two pictures of a call must have in common with every call.
inline Reason CheckPair(const void* object, const View<>& from, const MutableView<>& to) noexcept {
    if (object == nullptr) return Reason::OutOfMemory;
    if (from.IsEmpty()) return Reason::EmptySource;
    return to.IsEmpty() ? Reason::EmptyDestination : Reason::None;
}

inline Reason CheckPairOfOneSize(const void* object, const View<>& from, const MutableView<>& to) noexcept {
    if (const Reason reason = CheckPair(object, from, to); reason != Reason::None) return reason;
    return from.GetSize() == to.GetSize() ? Reason::None : Reason::SizesDiffer;
}

// Why a conversion failed that the component refused without a detail.
inline Reason ExplainConversion(const View<>& from, const MutableView<>& to) noexcept {
    if (!CanConvert(from.GetFormat(), to.GetFormat())) return Reason::NoPath;
    const Size multiple = ConversionMultiple(from.GetFormat(), to.GetFormat());
    const auto fits = [&](const Size& size) {
        return size.width % multiple.width == 0 && size.height % multiple.height == 0;
    };
    return fits(from.GetSize()) && fits(to.GetSize()) ? Reason::Refused : Reason::UnevenSize;
}

constexpr bool IsTitle(const FormatInfo& info) noexcept { return info.base == Format::BGRA; }
constexpr bool IsTitleImage(const FormatInfo& info) noexcept {
    return info.isRgb || (info.planeCount == 1 && info.xAlign == 2);
}
constexpr bool IsTitleVideo(const FormatInfo& info) noexcept {
    return info.base == Format::UYVY || info.base == Format::YUY2;
}
constexpr bool IsEncoderPicture(const FormatInfo& info) noexcept {
    return IsTitleImage(info) || info.base == Format::Y16 || info.base == Format::Y16A;
}
// The planes of a decoded picture follow from the first, and nothing is known of those of P016.
constexpr bool IsDecoderPicture(const FormatInfo& info) noexcept { return info.base != Format::P016; }

template <bool (*Predicate)(const FormatInfo&) noexcept>
constexpr bool Takes(Format format) noexcept {
    return format == kDynamicFormat || (InfoOf(format) != nullptr && Predicate(*InfoOf(format)));
}

}  // namespace detail

// What the calls take. A view whose format is known at run time passes here and is checked then.

/// A view, of a picture that is read or written.
template <class T>
concept Picture = std::same_as<T, View<T::kFormat>> || std::same_as<T, MutableView<T::kFormat>>;
/// A view of a picture that is written.
template <class T>
concept MutablePicture = std::same_as<T, MutableView<T::kFormat>>;
/// A picture that the Converter makes of a `From`.
template <class T, class From>
concept ConvertibleFrom = MutablePicture<T> && kMayConvert<From::kFormat, T::kFormat>;
/// A picture that the Resizer makes of a `From`.
template <class T, class From>
concept ResizableFrom = MutablePicture<T> && kMayResize<From::kFormat, T::kFormat>;
/// A title: BGRA.
template <class T>
concept Title = Picture<T> && detail::Takes<&detail::IsTitle>(T::kFormat);
/// A title that is written.
template <class T>
concept MutableTitle = Title<T> && MutablePicture<T>;
/// A picture that becomes a layer of a title or is laid over video: BGR, BGRA, UYVY, YUY2, YVYU.
template <class T>
concept TitleImage = Picture<T> && detail::Takes<&detail::IsTitleImage>(T::kFormat);
/// Video that pictures are laid over: UYVY, YUY2.
template <class T>
concept TitleVideo = MutablePicture<T> && detail::Takes<&detail::IsTitleVideo>(T::kFormat);
/// A picture that encoders take: BGR, BGRA, UYVY, YUY2 and YVYU all of them, Y16 and Y16A some.
template <class T>
concept EncoderPicture = Picture<T> && detail::Takes<&detail::IsEncoderPicture>(T::kFormat);
/// A picture that decoders may give. BGR, BGRA, UYVY, YUY2 and YVYU come from all of them.
template <class T>
concept DecoderPicture = MutablePicture<T> && detail::Takes<&detail::IsDecoderPicture>(T::kFormat);

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_COMPONENT_HPP
