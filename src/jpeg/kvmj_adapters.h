// The KVMJ codec as the table of codecs knows it.
#pragma once

#include <memory>

#include "codec/codec_object.h"
#include "jpeg/kvmj_codec.h"
#include "jpeg/kvmj_codecs.h"

namespace KorvaneSoftware {

/// Takes every format and finds out at Encode. One picture gives both fields, unless the image has a second plane: then
/// its first two planes are the fields, each a picture of its own.
class CMJPGEncoder final : public CEncoderObject {
public:
    Status CheckCodedFormat(const CodedFormat*) override { return IMG_OK; }
    Status CheckSourceFormat(const ImageDescriptor*, const CodedFormat*) override { return IMG_OK; }
    Status GetCodedFormat(CodedFormat*, const ImageDescriptor*) override { return IMG_E_NO_PATH; }
    /// Neither argument is read.
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status SetQuality(std::int32_t quality) override;
    Status SetEncoderControl() override { return IMG_E_NO_PATH; }
    /// A frame that is larger than the buffer succeeds and is not recorded. Times are not handed on.
    Status Encode(IMediaSample* coded, IVideoSample* picture) override;
    Status GetCurrentFormat(CodedFormat*) override { return IMG_E_NO_PATH; }

private:
    std::unique_ptr<IEncoder> encoder_;
};

/// Takes every format and finds out at Decode. Nothing but the pixels is reported.
class CMJPGDecoder final : public CDecoderObject {
public:
    Status CheckFormats(const CodedFormat*, const ImageDescriptor*) override { return IMG_OK; }
    /// Neither argument is read.
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status Decode(IVideoSample* picture, IMediaSample* coded) override;
    Status GetCurrentFormat(CodedFormat*) override { return IMG_E_NO_PATH; }
    Status IsReady(std::uint32_t) override { return IMG_OK; }

private:
    std::unique_ptr<IDecoder> decoder_;
};

}  // namespace KorvaneSoftware
