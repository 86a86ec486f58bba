// Decodes frames that are MPEG-2 intra pictures: those of the encoder, and general ones within the limits of size, with
// any matrix, precision of DC, quantiser scale, scan, table of coefficients and chroma structure.
#pragma once

#include <memory>

#include "codec/codec_object.h"
#include "foundation/thread_state.h"
#include "foundation/worker_team.h"
#include "iframe/frame_headers.h"
#include "iframe/i_frame_format.h"
#include "iframe/iframe_codecs.h"

namespace KorvaneSoftware {

namespace iframe {
class RowClaims;
class SliceDecoder;
}  // namespace iframe

/// Up to four threads decode a frame's slices, each a share of the data. A frame whose headers are damaged fails before
/// a pixel is written; of a damaged slice the pixels from the damage on keep what they were, and the frame succeeds.
/// Where slices name the same macroblocks the last one counts: the picture does not depend on the number of threads.
class CMMESDecoder final : public CDecoderObject {
public:
    CMMESDecoder();
    ~CMMESDecoder() override;

    Status CheckFormats(const CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    Status Decode(IVideoSample* picture, IMediaSample* coded) override;
    Status GetCurrentFormat(CodedFormat* format) override;
    Status IsReady(std::uint32_t what) override;

private:
    Status DecodePicture(const std::uint8_t* data, std::uint64_t size, const ImageDescriptor& image);
    Status DecodeShare(unsigned share);

    bool ready_ = false;
    CodecOptions options_;
    CodedFormat format_;
    WorkerTeam team_;
    iframe::ParsedHeaders headers_ = {};
    std::unique_ptr<TThreadState<iframe::SliceDecoder>[]> decoders_;  // One for each thread.
    std::unique_ptr<iframe::RowClaims> claims_;
    // Where each share begins; the last entry is the end of the data.
    const std::uint8_t* shares_[iframe::kMaxThreads + 1] = {};
};

}  // namespace KorvaneSoftware
