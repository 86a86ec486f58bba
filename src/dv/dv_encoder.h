// The encoders of the family.
#pragma once

#include <memory>

#include "codec/codec_object.h"
#include "dv/dv_formats.h"
#include "dv/dv_image.h"
#include "dv/frame_conversion.h"
#include "dv/segment_encoder.h"
#include "foundation/aligned_memory.h"
#include "foundation/thread_state.h"

namespace KorvaneSoftware {

/// Encodes frames at a constant size. Each thread begins its share of the segments without a memory of those before it,
/// so the bytes of a frame depend on the number of threads: the processors, at most 4, and no more than the options
/// say. Those of one thread are the reference.
class CDVEncoder final : public CEncoderObject {
public:
    explicit CDVEncoder(DvKind kind) : kind_(kind) {}

    Status CheckCodedFormat(const CodedFormat* format) override;
    Status CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) override;
    Status GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    /// @return IMG_E_UNSUPPORTED: the size of a frame is fixed
    Status SetQuality(std::int32_t quality) override;
    Status SetEncoderControl() override;
    Status Encode(IMediaSample* coded, IVideoSample* picture) override;
    Status GetCurrentFormat(CodedFormat* format) override;

private:
    ~CDVEncoder() override = default;

    Status EncodeFrame(IMediaSample& coded, IVideoSample& picture);
    /// Attaches the picture to the reader, itself or converted to the store.
    Status PrepareReader(const ImageDescriptor& image);
    Status ConvertSource(const ImageDescriptor& image);
    void EncodeSegments(unsigned worker);
    void EncodeSegment(SegmentEncoder& encoder, unsigned number);

    const DvKind kind_;
    const DvStream* stream_ = nullptr;  // Null until Initialize.
    CodedFormat format_;
    CodecOptions options_;
    unsigned threads_ = 0;
    WorkerTeam team_;
    std::unique_ptr<TThreadState<SegmentEncoder>[]> encoders_;  // One for each thread.

    CDVImageReader reader_;
    FieldConverter converter_;
    AlignedBuffer store_;

    // Of the frame being encoded.
    std::uint8_t* frame_ = nullptr;
    unsigned aspect_ = 0;
    unsigned phase_ = 0;  // 720 lines: 0 and 2 in turn.
};

}  // namespace KorvaneSoftware
