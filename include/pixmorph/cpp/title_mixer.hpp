// Titles: building them and laying them over video.
#ifndef PIXMORPH_CPP_TITLE_MIXER_HPP
#define PIXMORPH_CPP_TITLE_MIXER_HPP

#include <pixmorph/cpp/component.hpp>

namespace pixmorph {

/// How strongly a layer of a title shows: 0 not at all, 255 fully.
using Opacity = std::uint8_t;

/// Builds titles and lays pictures over video. A title is a BGRA picture with colour premultiplied by alpha, built
/// front to back: the first layer is nearest the viewer. Source and destination may be the same picture where both have
/// one layout. All calls return EmptySource, EmptyDestination, SizesDiffer, UnknownFormat (for formats known at run
/// time), UnevenSize (a 4:2:2 source of odd width).
class TitleMixer : public detail::Component<ITitleMixer4, CLSID_TitleMixer3> {
public:
    /// Starts a title with its first layer. A source without alpha is as opaque as `opacity` says.
    template <TitleImage Source, MutableTitle Destination>
    Status Begin(const Source& layer, const Destination& title, Opacity opacity = 255) const noexcept {
        return Lay("TitleMixer::Begin", &ITitleMixer4::PixmorphToTitle, layer, title, opacity);
    }
    /// Lays a layer beneath what the title holds.
    template <TitleImage Source, MutableTitle Destination>
    Status AddBeneath(const Source& layer, const Destination& title, Opacity opacity = 255) const noexcept {
        return Lay("TitleMixer::AddBeneath", &ITitleMixer4::AddImageToTitle, layer, title, opacity);
    }
    /// Divides colour by alpha again: the picture that Overlay takes.
    template <Title Source, MutableTitle Destination>
    Status ToImage(const Source& title, const Destination& image) const noexcept {
        constexpr const char* kMethod = "TitleMixer::ToImage";
        const View<> from = title;
        const MutableView<> to = image;
        if (const Reason reason = Check(from, to, &detail::IsTitle, &detail::IsTitle); reason != Reason::None)
            return detail::Refusal(kMethod, reason);
        const detail::Arguments source(from);
        const detail::Arguments destination(to);
        return detail::Ended(
            kMethod, Get()->ConvertTitleToImage(destination.planes[0], source.planes[0], from.Width(), from.Height(),
                                                destination.strides[0], source.strides[0], destination.format));
    }
    /// Mixes an image (alpha not premultiplied) into a frame of UYVY or YUY2 video. Of a BGR source the last pair of
    /// pixels of each line is not laid.
    template <TitleImage Source, TitleVideo Destination>
    Status Overlay(const Source& image, const Destination& video, Opacity opacity = 255) const noexcept {
        return LayOnVideo("TitleMixer::Overlay", &ITitleMixer4::AddImageToUYVYBuffer, image, video, opacity);
    }
    /// Replaces a frame of UYVY or YUY2 video by an image faded against black.
    template <TitleImage Source, TitleVideo Destination>
    Status Replace(const Source& image, const Destination& video, Opacity opacity = 255) const noexcept {
        return LayOnVideo("TitleMixer::Replace", &ITitleMixer4::MoveImageToUYVYBuffer, image, video, opacity);
    }

    /// Bytes that the run-length stream of a title has at most.
    static constexpr std::uint64_t RunLengthBound(Size size) noexcept {
        return 4 + std::uint64_t{size.width} / 16 * size.height * (48 + 4);
    }
    /// Compresses a title into a run-length stream for keying hardware, top line first.
    /// @param title   width a multiple of 16.
    /// @param stream  room for RunLengthBound bytes, aligned to 4.
    /// @return the bytes of the stream; UnevenSize, BufferTooSmall, OutOfRange for a stream that is not aligned.
    template <Title Source>
    Result<std::size_t> CompressRuns(const Source& title, std::span<std::uint8_t> stream) const noexcept {
        constexpr const char* kMethod = "TitleMixer::CompressRuns";
        if (Get() == nullptr) return detail::Refusal(kMethod, Reason::OutOfMemory);
        if (title.IsEmpty()) return detail::Refusal(kMethod, Reason::EmptySource);
        if (title.GetFormat() != Format::BGRA) return detail::Refusal(kMethod, Reason::UnknownFormat);
        if (title.Width() % 16 != 0) return detail::Refusal(kMethod, Reason::UnevenSize);
        if (stream.size() < RunLengthBound(title.GetSize())) return detail::Refusal(kMethod, Reason::BufferTooSmall);
        if (reinterpret_cast<std::uintptr_t>(stream.data()) % 4 != 0)
            return detail::Refusal(kMethod, Reason::OutOfRange);
        auto* counter = reinterpret_cast<std::int32_t*>(stream.data());
        *counter = 0;
        std::uint8_t* write = stream.data() + 4;
        const HRESULT result =
            Get()->CompressToRLE(&write, title.Plane(0), title.Width(), title.Height(), title.Stride(0), &counter);
        if (result < 0) return detail::Ended(kMethod, result);
        return static_cast<std::size_t>(write - stream.data());
    }

private:
    using LayMethod = HRESULT (PIXMORPH_CALL ITitleMixer4::*)(std::uint8_t*, const std::uint8_t*, std::uint32_t,
                                                              std::uint32_t, std::int32_t, std::int32_t, std::uint32_t,
                                                              std::uint32_t);
    using VideoMethod = HRESULT (PIXMORPH_CALL ITitleMixer4::*)(std::uint8_t*, const std::uint8_t*, std::uint32_t,
                                                                std::uint32_t, std::int32_t, std::int32_t,
                                                                std::uint32_t, std::uint32_t, std::uint32_t);

    Reason Check(const View<>& from, const MutableView<>& to, bool (*takesSource)(const FormatInfo&) noexcept,
                 bool (*takesDestination)(const FormatInfo&) noexcept) const noexcept {
        if (const Reason reason = detail::CheckPairOfOneSize(Get(), from, to); reason != Reason::None) return reason;
        const FormatInfo& source = *InfoOf(from.GetFormat());
        if (!takesSource(source) || !takesDestination(*InfoOf(to.GetFormat()))) return Reason::UnknownFormat;
        return from.Width() % source.xAlign == 0 ? Reason::None : Reason::UnevenSize;
    }

    Status Lay(const char* name, LayMethod method, const View<>& from, const MutableView<>& to,
               Opacity opacity) const noexcept {
        if (const Reason reason = Check(from, to, &detail::IsTitleImage, &detail::IsTitle); reason != Reason::None)
            return detail::Refusal(name, reason);
        const detail::Arguments source(from);
        const detail::Arguments destination(to);
        return detail::Ended(name,
                             (Get()->*method)(destination.planes[0], source.planes[0], from.Width(), from.Height(),
                                              destination.strides[0], source.strides[0], opacity, source.format));
    }

    Status LayOnVideo(const char* name, VideoMethod method, const View<>& from, const MutableView<>& to,
                      Opacity opacity) const noexcept {
        if (const Reason reason = Check(from, to, &detail::IsTitleImage, &detail::IsTitleVideo); reason != Reason::None)
            return detail::Refusal(name, reason);
        const detail::Arguments source(from);
        const detail::Arguments destination(to);
        return detail::Ended(name, (Get()->*method)(destination.planes[0], source.planes[0], from.Width(),
                                                    from.Height(), destination.strides[0], source.strides[0], opacity,
                                                    destination.format, source.format));
    }
};

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_TITLE_MIXER_HPP
