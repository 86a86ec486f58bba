// The member of the Tarvex family that does not transform: the payload of a field chunk is the field's lines as UYVY, 2
// bytes a pixel, first line first. With the line shift in the coded format's field layout, the second field's lines
// start with its second one, and its first comes last: that of a picture whose fields were exchanged in time.
//
// Widths and heights are even. Pictures of any format that converts from or to UYVY will do.
#pragma once

#include "codec/codec_object.h"
#include "foundation/worker_team.h"
#include "resize/image_converter.h"
#include "tarvex/tarvex_format.h"

namespace KorvaneSoftware {

/// What encoder and decoder share: the format, and fields moved by a thread each.
class CTarvexLines {
public:
    Status CheckFormat(const CodedFormat* format) const;
    Status CheckPicture(const ImageDescriptor* image, const CodedFormat* format) const;
    Status Initialize(const CodedFormat* format, const CodecOptions* options);
    bool IsReady() const { return ready_; }
    const CodedFormat& Format() const { return format_; }

    std::size_t PayloadSize() const { return std::size_t{format_.width} * format_.height; }
    /// Moves both fields between a picture and payloads of PayloadSize bytes.
    Status Move(const ImageDescriptor& image, std::uint8_t* const (&payloads)[2], bool toPicture);

private:
    Status MoveField(unsigned field, const ImageDescriptor& image, std::uint8_t* payload, bool toPicture);

    bool ready_ = false;
    CodedFormat format_;
    ImageConverterPtr converters_[2];
    WorkerTeam team_;
};

class CTRVUEncoder final : public CEncoderObject {
public:
    Status CheckCodedFormat(const CodedFormat* format) override;
    Status CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) override;
    Status GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status SetQuality(std::int32_t quality) override;
    Status SetEncoderControl() override { return IMG_E_UNSUPPORTED; }
    Status Encode(IMediaSample* coded, IVideoSample* picture) override;
    Status GetCurrentFormat(CodedFormat* format) override;

private:
    CTarvexLines lines_;
};

class CTRVUDecoder final : public CDecoderObject {
public:
    Status CheckFormats(const CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status Decode(IVideoSample* picture, IMediaSample* coded) override;
    Status GetCurrentFormat(CodedFormat* format) override;
    Status IsReady(std::uint32_t what) override;

private:
    CTarvexLines lines_;
};

}  // namespace KorvaneSoftware
