// Decoders of the Tarvex family. A frame without a readable second field shows its first field in both.
#pragma once

#include "codec/codec_object.h"
#include "foundation/thread_state.h"
#include "foundation/worker_team.h"
#include "tarvex/alpha_image.h"
#include "tarvex/field_coder.h"
#include "tarvex/tarvex_codecs.h"
#include "tarvex/tarvex_format.h"
#include "tarvex/tarvex_frame.h"

namespace KorvaneSoftware {

class CTRVDDecoder : public CDecoderObject {
public:
    CTRVDDecoder() : CTRVDDecoder(kTarvex) {}

    Status CheckFormats(const CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status Decode(IVideoSample* picture, IMediaSample* coded) override;
    Status GetCurrentFormat(CodedFormat* format) override;
    Status IsReady(std::uint32_t what) override;

protected:
    explicit CTRVDDecoder(const TarvexCodec& codec) : codec_(codec) {}

    /// What brings decoded lines of a field to the picture; `alpha` is the payload of the field's alpha chunk.
    virtual TMJPEGImageWriter<0>& Writer(unsigned field, std::span<const std::uint8_t> alpha);

private:
    Status DecodeField(unsigned field, const ImageDescriptor& image);

    TarvexCodec codec_;
    bool ready_ = false;
    CodedFormat format_;
    TarvexFrame frame_;
    TarvexQuantisers tables_[2];
    TThreadState<TMJPEGImageWriter<0>> writers_[2];
    CMCU mcus_[2] = {CMCU(4, 4), CMCU(4, 4)};
    WorkerTeam team_;
};

class CTRVTDecoder final : public CTRVDDecoder {
public:
    CTRVTDecoder() : CTRVDDecoder(kTarvexAlpha) {}

protected:
    TMJPEGImageWriter<0>& Writer(unsigned field, std::span<const std::uint8_t> alpha) override;

private:
    TThreadState<CTRVTImageWriter> alphaWriters_[2];
};

}  // namespace KorvaneSoftware
