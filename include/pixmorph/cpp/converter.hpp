// Conversion between formats and change of size.
#ifndef PIXMORPH_CPP_CONVERTER_HPP
#define PIXMORPH_CPP_CONVERTER_HPP

#include <pixmorph/cpp/component.hpp>

namespace pixmorph {

/// Converts pictures between formats.
class Converter : public detail::Component<IColorConversion, CLSID_Pixmorph> {
public:
    /// Converts `from` into `to`, which has the same size. The colour matrix is that of the YUV side; where both sides
    /// are YUV or both RGB, samples move without one. Alpha is 255 where the source has none.
    /// @return true; EmptySource, EmptyDestination, SizesDiffer; NoPath (for formats known at run time); UnevenSize
    ///         (see ConversionMultiple).
    template <Picture Source, ConvertibleFrom<Source> Destination>
    Status Convert(const Source& from, const Destination& to) const noexcept {
        return ConvertAny(from, to);
    }

private:
    Status ConvertAny(const View<>& from, const MutableView<>& to) const noexcept {
        constexpr const char* kMethod = "Converter::Convert";
        if (const Reason reason = detail::CheckPairOfOneSize(Get(), from, to); reason != Reason::None)
            return detail::Refusal(kMethod, reason);
        const detail::Arguments source(from);
        const detail::Arguments destination(to);
        const HRESULT result = Get()->Pixmorph(destination.planes, destination.strides, source.planes, source.strides,
                                               from.Width(), from.Height(), destination.format, source.format);
        return result >= 0 ? Status() : Status(kMethod, result, detail::ExplainConversion(from, to));
    }
};

/// Changes the size of pictures: averages over areas to reduce, linear interpolation to enlarge.
class Resizer : public detail::Component<IResizeImage, CLSID_StretchImage> {
public:
    Resizer() noexcept {
        if (Get() != nullptr) (void)Get()->QueryInterface(IID_IStretchImage, plain_.Put());
    }

    /// Resizes `from` into `to`, converting on the way where the formats differ. Sizes are multiples of the pixels and
    /// lines that share a chroma sample.
    ///
    /// The component takes one stride for all planes of a source. Pictures with narrower chroma lines (Y422, IYUV,
    /// YV12) are therefore resized within their format and with planes that follow each other on both sides; on the way
    /// to another format they go through the Converter first.
    /// @return true; EmptySource, EmptyDestination; NoPath; UnevenSize; UnequalStrides for what the paragraph above
    ///         says; OutOfMemory, Refused.
    template <Picture Source, ResizableFrom<Source> Destination>
    Status Resize(const Source& from, const Destination& to) const noexcept {
        return ResizeAny(from, to);
    }

private:
    Status ResizeAny(const View<>& from, const MutableView<>& to) const noexcept {
        constexpr const char* kMethod = "Resizer::Resize";
        if (const Reason reason = detail::CheckPair(plain_.Get(), from, to); reason != Reason::None)
            return detail::Refusal(kMethod, reason);
        if (!CanResize(from.GetFormat(), to.GetFormat())) return detail::Refusal(kMethod, Reason::NoPath);
        const detail::Arguments source(from);
        const detail::Arguments destination(to);
        HRESULT result;
        if (HasOneStride(from)) {
            result = Get()->ResizePixmorph(destination.planes, destination.strides, source.planes, source.strides,
                                           to.Width(), to.Height(), from.Width(), from.Height(), destination.format,
                                           source.format);
        } else if (from.GetFormat() == to.GetFormat() && from.HasPlanesInSequence() && to.HasPlanesInSequence()) {
            result =
                plain_->StretchImage(destination.planes[0], source.planes[0], to.Width(), to.Height(), from.Width(),
                                     from.Height(), destination.strides[0], source.strides[0], source.format);
        } else {
            return detail::Refusal(kMethod, Reason::UnequalStrides);
        }
        return result >= 0 ? Status() : Status(kMethod, result, Explain(from, to));
    }

    static bool HasOneStride(const View<>& view) noexcept {
        for (std::uint32_t plane = 1; plane < view.PlaneCount(); ++plane)
            if (view.Stride(plane) != view.Stride(0)) return false;
        return true;
    }

    static Reason Explain(const View<>& from, const MutableView<>& to) noexcept {
        const auto isWhole = [](Format format, const Size& size) {
            return size.width % InfoOf(format)->xAlign == 0 && size.height % InfoOf(format)->yAlign == 0;
        };
        const bool areWhole = isWhole(from.GetFormat(), from.GetSize()) && isWhole(to.GetFormat(), to.GetSize()) &&
                              isWhole(to.GetFormat(), from.GetSize()) && isWhole(from.GetFormat(), to.GetSize());
        return areWhole ? Reason::Refused : Reason::UnevenSize;
    }

    KorvaneSoftware::ComPtr<IStretchImage> plain_;
};

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_CONVERTER_HPP
