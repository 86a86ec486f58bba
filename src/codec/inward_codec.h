// What every codec implements towards CVideoCodec. The outward interfaces of the same names, which applications call,
// are declared in include/pixmorph.
//
// A codec's class has two bases, IBasicInterface and one of these; its QueryInterface with that interface's identifier
// returns the second view. Every operation returns a Status, 0 for success.
//
// An encoder checks the video sample's picture against its format, writes at most GetBufferSize bytes at the media
// sample's GetBuffer, records their number with AddDataSize and hands the times on. A decoder checks its format and the
// picture, reads GetDataSize bytes at GetData, writes the picture, marks the frame full (AddDataSize of the video
// sample's GetFreeSize), hands the times on, and reports the field structure and, where the stream has one, the aspect
// ratio. Neither keeps a sample beyond the call.
#pragma once

#include "codec/coded_format.h"
#include "codec/samples.h"

namespace KorvaneSoftware {

inline constexpr GUID IID_InwardVideoEncoder = {
    0x30E40F86, 0x62F6, 0x4FB2, {0x85, 0x4B, 0xA0, 0x4B, 0xD1, 0xA1, 0xDD, 0x29}};
inline constexpr GUID IID_InwardVideoDecoder = {
    0x7F3FDE98, 0x5364, 0x4E88, {0x8A, 0xD6, 0xA9, 0xCD, 0x04, 0xE0, 0x98, 0xF2}};

/// The order of the operations is part of the interface.
class IVideoEncoder {
public:
    /// Whether the codec can make this stream. @return 0, IMG_E_BAD_FORMAT or IMG_E_BAD_SIZE
    virtual Status CheckCodedFormat(const CodedFormat* format) = 0;
    /// Whether `image` can be encoded to `format`, or to any where that is null.
    virtual Status CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) = 0;
    /// The codec's natural format for a source picture.
    virtual Status GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) = 0;
    /// Takes the format and the options (may be null), makes workers and tables, and sets the default quality. A second
    /// call replaces the state.
    virtual Status Initialize(const CodedFormat* format, const CodecOptions* options) = 0;
    /// 0 to 10000. @return IMG_E_NOT_READY before Initialize, IMG_E_UNSUPPORTED where the codec has no quality
    virtual Status SetQuality(std::int32_t quality) = 0;
    /// No codec implements it.
    virtual Status SetEncoderControl() = 0;
    virtual Status Encode(IMediaSample* coded, IVideoSample* picture) = 0;
    virtual Status GetCurrentFormat(CodedFormat* format) = 0;

protected:
    ~IVideoEncoder() = default;
};

/// The order of the operations is part of the interface.
class IVideoDecoder {
public:
    /// Whether this stream can be decoded, and into `image` where that is not null.
    virtual Status CheckFormats(const CodedFormat* format, const ImageDescriptor* image) = 0;
    virtual Status Initialize(const CodedFormat* format, const CodecOptions* options) = 0;
    /// The samples stand in the reverse order of Encode's.
    virtual Status Decode(IVideoSample* picture, IMediaSample* coded) = 0;
    virtual Status GetCurrentFormat(CodedFormat* format) = 0;
    /// @return 0 when initialized, else IMG_E_NOT_READY. `what` is read by the H.264 decoder alone.
    virtual Status IsReady(std::uint32_t what) = 0;

protected:
    ~IVideoDecoder() = default;
};

}  // namespace KorvaneSoftware
