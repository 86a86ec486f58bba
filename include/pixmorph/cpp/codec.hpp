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

namespace detail {

/// One side of a codec, set up for frames of one size.
template <class Interface>
class CodecSide : public Component<Interface, CLSID_VideoCodec> {
public:
    /// Whether the codec is there and takes the size: true; NoSuchCodec, OutOfRange.
    Status Ready() const noexcept {
        return this->Get() != nullptr ? ready_ : Refusal(ready_.Method(), Reason::OutOfMemory);
    }

protected:
    using SetFormat = HRESULT (PIXMORPH_CALL Interface::*)(std::int32_t, std::int32_t, std::int32_t);

    CodecSide(const char* method, SetFormat setFormat, Codec codec, Size size) noexcept : size_(size) {
        if (this->Get() == nullptr) {
            ready_ = Refusal(method, Reason::OutOfMemory);
        } else if (size.width > kMost || size.height > kMost) {
            ready_ = Refusal(method, Reason::OutOfRange);
        } else {
            const HRESULT result =
                (this->Get()->*setFormat)(static_cast<std::int32_t>(codec), static_cast<std::int32_t>(size.width),
                                          static_cast<std::int32_t>(size.height));
            if (result < 0)
                ready_ = {method, result, result == E_OUTOFMEMORY ? Reason::NoSuchCodec : Reason::OutOfRange};
        }
    }

    // The picture of a call; `empty` is the reason where it is empty.
    Reason Check(const View<>& picture, Reason empty) const noexcept {
        if (picture.IsEmpty()) return empty;
        if (picture.GetSize() != size_) return Reason::SizesDiffer;
        return picture.HasPlanesInSequence() ? Reason::None : Reason::SeparatePlanes;
    }

    static Status Failure(const char* method, HRESULT result) noexcept {
        return {method, result, result == E_FAIL ? Reason::Refused : Reason::UnknownFormat};
    }

    static constexpr std::uint32_t kMost = 0x7FFFFFFF;  // Sizes are signed there.

private:
    Size size_;
    Status ready_;
};

}  // namespace detail

/// Compresses frames of one size with one codec.
class Encoder : public detail::CodecSide<IVideoEncoder> {
public:
    /// Sizes are the codec's business; Ready() tells whether it took this one.
    Encoder(Codec codec, Size size) noexcept
        : CodecSide("Encoder::Encoder", &IVideoEncoder::EncSetFormat, codec, size) {}

    /// Quality of the frames to come: 0 the worst, 10000 the best, 8000 at first. Codecs of fixed rate (DV) ignore it.
    /// @return true; OutOfRange; as Ready.
    Status SetQuality(std::int32_t quality) noexcept {
        if (const Status ready = Ready(); !ready) return ready;
        if (quality < 0 || quality > 10000) return detail::Refusal("Encoder::SetQuality", Reason::OutOfRange);
        return detail::Ended("Encoder::SetQuality", Get()->EncSetQuality(quality));
    }

    /// Compresses a frame of the encoder's size. The codec converts from formats that are not its own: all codecs take
    /// BGR, BGRA, UYVY, YUY2 and YVYU, some Y16 and Y16A.
    /// @return the bytes of the compressed frame, which starts `coded`; EmptySource, SizesDiffer, SeparatePlanes,
    ///         BufferTooSmall, Refused (for a buffer too small as well, from some codecs); as Ready.
    template <EncoderPicture Source>
    Result<std::size_t> Encode(const Source& frame, std::span<std::uint8_t> coded) noexcept {
        return EncodeAny(frame, coded);
    }

private:
    Result<std::size_t> EncodeAny(const View<>& frame, std::span<std::uint8_t> coded) noexcept {
        constexpr const char* kMethod = "Encoder::Encode";
        if (const Status ready = Ready(); !ready) return ready;
        if (const Reason reason = Check(frame, Reason::EmptySource); reason != Reason::None)
            return detail::Refusal(kMethod, reason);
        if (coded.empty()) return detail::Refusal(kMethod, Reason::BufferTooSmall);
        const auto room = static_cast<std::int32_t>(coded.size() < kMost ? coded.size() : kMost);
        const detail::Arguments source(frame);
        std::uint32_t bytes = 0;
        const HRESULT result = Get()->Encode(coded.data(), room, &bytes, source.planes, source.strides, source.format);
        if (result < 0) return Failure(kMethod, result);
        if (bytes == 0) return Status(kMethod, result, Reason::BufferTooSmall);
        return std::size_t{bytes};
    }
};

/// Decompresses frames of one size with one codec.
class Decoder : public detail::CodecSide<IVideoDecoder> {
public:
    /// As Encoder.
    Decoder(Codec codec, Size size) noexcept
        : CodecSide("Decoder::Decoder", &IVideoDecoder::DecSetFormat, codec, size) {}

    /// Decompresses a frame into a picture of the decoder's size; nothing is resized. The codec converts to formats
    /// that are not its own: all codecs give BGR, BGRA, UYVY, YUY2 and YVYU.
    /// @return true; EmptyDestination, SizesDiffer, SeparatePlanes; BufferTooSmall for an empty frame; Refused for a
    ///         frame or a format that the codec cannot take: the picture may then be written in part; as Ready.
    ///         The H.264 decoder answers Refused as well while no frame is due yet, and has then kept what it was
    ///         given.
    template <DecoderPicture Destination>
    Status Decode(std::span<const std::uint8_t> coded, const Destination& frame) noexcept {
        return DecodeAny(coded, frame);
    }

private:
    Status DecodeAny(std::span<const std::uint8_t> coded, const MutableView<>& frame) noexcept {
        constexpr const char* kMethod = "Decoder::Decode";
        if (const Status ready = Ready(); !ready) return ready;
        if (const Reason reason = Check(frame, Reason::EmptyDestination); reason != Reason::None)
            return detail::Refusal(kMethod, reason);
        if (coded.empty()) return detail::Refusal(kMethod, Reason::BufferTooSmall);
        if (coded.size() > kMost) return detail::Refusal(kMethod, Reason::OutOfRange);
        const detail::Arguments destination(frame);
        const HRESULT result = Get()->Decode(destination.planes, destination.strides, destination.format, coded.data(),
                                             static_cast<std::int32_t>(coded.size()));
        return result < 0 ? Failure(kMethod, result) : Status();
    }
};

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_CODEC_HPP
