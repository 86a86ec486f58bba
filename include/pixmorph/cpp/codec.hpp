// Compression and decompression of single frames.
#ifndef PIXMORPH_CPP_CODEC_HPP
#define PIXMORPH_CPP_CODEC_HPP

#include <pixmorph/cpp/component.hpp>

namespace pixmorph {

/// The codecs, by their index in the library's table.
enum class Codec : std::int32_t {
    DV = 0,                 ///< KVDV, 25 Mbit.
    DVCPRO = 1,             ///< KV25.
    DVCPRO50 = 2,           ///< KV50.
    DVCPRO100_50Hz = 3,     ///< KVH1.
    DVCPRO100_60Hz = 4,     ///< KVH1; the decoder is that of DVCPRO100_50Hz.
    TarvexJpeg = 5,         ///< TRVD.
    TarvexJpegAlpha = 6,    ///< TRVT.
    ElementaryIFrames = 7,  ///< KVIF, MPEG-2 4:2:2.
    AdvancedIFrames = 8,    ///< KVES, MPEG-2 4:2:2.
    MotionJpeg = 9,         ///< KVMJ.
    H264 = 10,              ///< AVC1; a decoder alone.
};

/// Compresses frames of one size with one codec.
class Encoder : public detail::Component<IVideoEncoder, CLSID_VideoCodec> {
public:
    /// Sizes are the codec's business; Ready() tells whether it took this one.
    Encoder(Codec codec, Size size) noexcept : size_(size) {
        constexpr const char* kMethod = "Encoder::Encoder";
        if (Get() == nullptr)
            ready_ = detail::Refusal(kMethod, Reason::OutOfMemory);
        else if (size.width > 0x7FFFFFFF || size.height > 0x7FFFFFFF)
            ready_ = detail::Refusal(kMethod, Reason::OutOfRange);
        else if (const HRESULT result =
                     Get()->EncSetFormat(static_cast<std::int32_t>(codec), static_cast<std::int32_t>(size.width),
                                         static_cast<std::int32_t>(size.height));
                 result < 0)
            ready_ = {kMethod, result, result == E_OUTOFMEMORY ? Reason::NoSuchCodec : Reason::OutOfRange};
    }

    /// Whether the codec is there and takes the size: true; NoSuchCodec, OutOfRange.
    const Status& Ready() const noexcept { return ready_; }

    /// Quality of the frames to come: 0 the worst, 10000 the best, 8000 at first. Codecs of fixed rate (DV) ignore it.
    /// @return true; OutOfRange; as Ready.
    Status SetQuality(std::int32_t quality) noexcept {
        if (!ready_) return ready_;
        if (quality < 0 || quality > 10000) return detail::Refusal("Encoder::SetQuality", Reason::OutOfRange);
        return detail::Ended("Encoder::SetQuality", Get()->EncSetQuality(quality));
    }

    /// Compresses a frame of the encoder's size. The codec converts from formats that are not its own.
    /// @return the bytes of the compressed frame, which starts `coded`; EmptySource, SizesDiffer, SeparatePlanes,
    ///         BufferTooSmall, Refused (for a buffer too small as well, from some codecs); as Ready.
    template <EncoderPicture Source>
    Result<std::size_t> Encode(const Source& frame, std::span<std::uint8_t> coded) noexcept {
        return EncodeAny(frame, coded);
    }

private:
    Result<std::size_t> EncodeAny(const View<>& frame, std::span<std::uint8_t> coded) noexcept {
        constexpr const char* kMethod = "Encoder::Encode";
        if (!ready_) return ready_;
        if (frame.IsEmpty()) return detail::Refusal(kMethod, Reason::EmptySource);
        if (frame.GetSize() != size_) return detail::Refusal(kMethod, Reason::SizesDiffer);
        if (!frame.HasPlanesInSequence()) return detail::Refusal(kMethod, Reason::SeparatePlanes);
        if (coded.empty()) return detail::Refusal(kMethod, Reason::BufferTooSmall);
        constexpr std::size_t kMost = 0x7FFFFFFF;
        const auto room = static_cast<std::int32_t>(coded.size() < kMost ? coded.size() : kMost);
        const detail::Arguments source(frame);
        std::uint32_t bytes = 0;
        const HRESULT result = Get()->Encode(coded.data(), room, &bytes, source.planes, source.strides, source.format);
        if (result < 0) return Status(kMethod, result, result == E_FAIL ? Reason::Refused : Reason::UnknownFormat);
        if (bytes == 0) return Status(kMethod, result, Reason::BufferTooSmall);
        return std::size_t{bytes};
    }

    Size size_;
    Status ready_;
};

/// Decompresses frames of one size with one codec.
class Decoder : public detail::Component<IVideoDecoder, CLSID_VideoCodec> {
public:
    /// As Encoder.
    Decoder(Codec codec, Size size) noexcept : size_(size) {
        constexpr const char* kMethod = "Decoder::Decoder";
        if (Get() == nullptr)
            ready_ = detail::Refusal(kMethod, Reason::OutOfMemory);
        else if (size.width > 0x7FFFFFFF || size.height > 0x7FFFFFFF)
            ready_ = detail::Refusal(kMethod, Reason::OutOfRange);
        else if (const HRESULT result =
                     Get()->DecSetFormat(static_cast<std::int32_t>(codec), static_cast<std::int32_t>(size.width),
                                         static_cast<std::int32_t>(size.height));
                 result < 0)
            ready_ = {kMethod, result, result == E_OUTOFMEMORY ? Reason::NoSuchCodec : Reason::OutOfRange};
    }

    /// Whether the codec is there and takes the size: true; NoSuchCodec, OutOfRange.
    const Status& Ready() const noexcept { return ready_; }

    /// Decompresses a frame into a picture of the decoder's size; nothing is resized. The codec converts to formats
    /// that are not its own.
    /// @return true; EmptyDestination, SizesDiffer, SeparatePlanes; BufferTooSmall for an empty frame; Refused for a
    ///         frame or a format that the codec cannot take: the picture may then be written in part; as Ready.
    template <DecoderPicture Destination>
    Status Decode(std::span<const std::uint8_t> coded, const Destination& frame) noexcept {
        return DecodeAny(coded, frame);
    }

private:
    Status DecodeAny(std::span<const std::uint8_t> coded, const MutableView<>& frame) noexcept {
        constexpr const char* kMethod = "Decoder::Decode";
        if (!ready_) return ready_;
        if (frame.IsEmpty()) return detail::Refusal(kMethod, Reason::EmptyDestination);
        if (frame.GetSize() != size_) return detail::Refusal(kMethod, Reason::SizesDiffer);
        if (!frame.HasPlanesInSequence()) return detail::Refusal(kMethod, Reason::SeparatePlanes);
        if (coded.empty()) return detail::Refusal(kMethod, Reason::BufferTooSmall);
        if (coded.size() > 0x7FFFFFFF) return detail::Refusal(kMethod, Reason::OutOfRange);
        const detail::Arguments destination(frame);
        const HRESULT result = Get()->Decode(destination.planes, destination.strides, destination.format, coded.data(),
                                             static_cast<std::int32_t>(coded.size()));
        if (result >= 0) return Status();
        return {kMethod, result, result == E_FAIL ? Reason::Refused : Reason::UnknownFormat};
    }

    Size size_;
    Status ready_;
};

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_CODEC_HPP
