// Encoders of the Tarvex family: 4:2:2 in two fields, each transformed and coded by a thread of its own, and the same
// with an alpha plane. Frames do not depend on the number of threads.
#pragma once

#include "codec/codec_object.h"
#include "foundation/thread_state.h"
#include "foundation/worker_team.h"
#include "tarvex/alpha_image.h"
#include "tarvex/field_coder.h"
#include "tarvex/tarvex_codecs.h"
#include "tarvex/tarvex_format.h"

namespace KorvaneSoftware {

class CTRVDEncoder : public CEncoderObject {
public:
    CTRVDEncoder() : CTRVDEncoder(kTarvex) {}

    Status CheckCodedFormat(const CodedFormat* format) override;
    Status CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) override;
    Status GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status SetQuality(std::int32_t quality) override;
    Status SetEncoderControl() override { return IMG_E_UNSUPPORTED; }
    /// @return also IMG_BUFFER_TOO_SMALL, with nothing recorded
    Status Encode(IMediaSample* coded, IVideoSample* picture) override;
    Status GetCurrentFormat(CodedFormat* format) override;

protected:
    explicit CTRVDEncoder(const TarvexCodec& codec) : codec_(codec) {}

    /// What brings the lines of a field to its coder.
    virtual MJPEG::CImageReader& Reader(unsigned field) { return readers_[field]; }
    /// Writes what follows both fields' chunks at `size` bytes into the frame, and adds its size.
    virtual Status Append(std::span<std::uint8_t> frame, std::size_t& size);

private:
    Status EncodeField(unsigned field, const ImageDescriptor& image, std::span<std::uint8_t> to, std::size_t& size);
    Status EncodeFields(const ImageDescriptor& image, std::span<std::uint8_t> frame, std::size_t& size);

    TarvexCodec codec_;
    bool ready_ = false;
    CodedFormat format_;
    QualityTables tables_;
    TThreadState<MJPEG::CImageReader> readers_[2];
    CMCU mcus_[2] = {CMCU(4, 4), CMCU(4, 4)};
    AlignedBuffer secondField_;  // Coded while nobody knows yet where it goes.
    WorkerTeam team_;
};

class CTRVTEncoder final : public CTRVDEncoder {
public:
    CTRVTEncoder() : CTRVDEncoder(kTarvexAlpha) {}

protected:
    MJPEG::CImageReader& Reader(unsigned field) override { return alphaReaders_[field]; }
    /// @return also IMG_E_BAD_SIZE where the alpha does not fit
    Status Append(std::span<std::uint8_t> frame, std::size_t& size) override;

private:
    TThreadState<CTRVTImageReader> alphaReaders_[2];
};

}  // namespace KorvaneSoftware
