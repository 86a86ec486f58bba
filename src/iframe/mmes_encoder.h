// Encodes each frame as one self-contained MPEG-2 intra picture, 4:2:2. There is no rate control: quality alone decides
// the quantiser, the frame's size falls out of it.
#pragma once

#include <memory>

#include "codec/codec_object.h"
#include "foundation/thread_state.h"
#include "foundation/worker_team.h"
#include "iframe/encoder_tables.h"
#include "iframe/frame_headers.h"
#include "iframe/i_frame_format.h"
#include "iframe/iframe_codecs.h"

namespace KorvaneSoftware {

/// Up to four threads encode runs of rows of macroblocks. A frame's bytes are the same for any number of them. A frame
/// that does not fit the buffer fails, with nothing written outside.
class CMMESEncoder final : public CEncoderObject {
public:
    CMMESEncoder();
    ~CMMESEncoder() override;

    Status CheckCodedFormat(const CodedFormat* format) override;
    Status CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) override;
    Status GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status SetQuality(std::int32_t quality) override;
    Status SetEncoderControl() override;
    Status Encode(IMediaSample* coded, IVideoSample* picture) override;
    Status GetCurrentFormat(CodedFormat* format) override;

private:
    struct Worker;

    bool IsElementary() const { return (options_.flags & kElementaryIFrameFlag) != 0; }
    Status EncodeRows(unsigned part);

    bool ready_ = false;
    CodecOptions options_;
    CodedFormat format_;
    std::int32_t lastQuality_ = -1;
    iframe::WrittenHeaders headers_;
    iframe::EncoderTables tables_ = {};
    WorkerTeam team_;
    std::unique_ptr<TThreadState<Worker>[]> workers_;  // One for each thread.
    ImageDescriptor image_;                            // The picture of the frame in flight.
};

}  // namespace KorvaneSoftware
