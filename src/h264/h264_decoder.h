// The H.264 decoder: what the engine offers to the codec table.
//
// A sample is one access unit or one field, as an Annex B byte stream that begins with a three-byte start code;
// parameter sets come in the stream. Baseline without slice groups, Main, Extended without switching slices, High, High
// 10 and High 4:2:2, 8 to 14 bits. The first frame leaves when as many frames as the stream's level and parameter sets
// allow for reordering are behind it.
#pragma once

#include <memory>

#include "codec/codec_object.h"
#include "h264/pipeline/fusion_core.h"

namespace KorvaneSoftware {

class CH264Decoder final : public CDecoderObject {
public:
    /// @param layers  must outlive the decoder
    explicit CH264Decoder(const IH264Layers& layers) : layers_(layers) {}

    /// Always 0: the stream's own parameter sets decide.
    Status CheckFormats(const CodedFormat* format, const ImageDescriptor* image) override;
    /// Of the format only the kind is looked at, of the options the number of threads.
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status Decode(IVideoSample* picture, IMediaSample* coded) override;
    Status GetCurrentFormat(CodedFormat* format) override;
    /// Not a test here: drops all pictures, and with `what` not 0 the parameter sets too.
    Status IsReady(std::uint32_t what) override;

private:
    ~CH264Decoder() override = default;

    const IH264Layers& layers_;
    std::unique_ptr<CH264FusionCore> core_;
    CodecOptions options_;
};

/// For the codec table: a decoder over the library's own layers. @return null when memory is short
IBasicInterface* CreateH264Decoder();

}  // namespace KorvaneSoftware
