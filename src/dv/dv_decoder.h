// The decoders of the family.
#pragma once

#include <memory>

#include "codec/codec_object.h"
#include "dv/dv_formats.h"
#include "dv/dv_image.h"
#include "dv/frame_conversion.h"
#include "dv/segment_decoder.h"
#include "foundation/aligned_memory.h"
#include "foundation/thread_state.h"

namespace KorvaneSoftware {

/// Decodes the video blocks of a frame; of all other blocks only those of a 100 Mbit stream are looked at, for the
/// frame system. Damage costs wrong pixels, never an error. The picture does not depend on the number of threads.
class CDVDecoder final : public CDecoderObject {
public:
    explicit CDVDecoder(std::uint32_t kind) : kind_(kind) {}

    Status CheckFormats(const CodedFormat* format, const ImageDescriptor* image) override;
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override;
    /// @return IMG_E_FAILED where there is less data than a frame
    Status Decode(IVideoSample* picture, IMediaSample* coded) override;
    Status GetCurrentFormat(CodedFormat* format) override;
    Status IsReady(std::uint32_t what) override;

private:
    ~CDVDecoder() override = default;

    Status DecodeFrame(IVideoSample& picture, IMediaSample& coded);
    /// The stream that the frame holds; null where there is less data than that.
    const DvStream* StreamOf(const std::uint8_t* data, std::uint64_t size) const;
    void Configure(const DvStream& stream);
    /// Attaches the writer to the picture, or to the store where the picture has to be converted.
    Status PrepareWriter(const ImageDescriptor& image);
    Status MakeStore(const ImageDescriptor& image);
    Status DeliverStore(ImageDescriptor& image);
    void ReportStream(IVideoSample& picture) const;
    void DecodeSegments(unsigned worker);

    const std::uint32_t kind_;
    bool isReady_ = false;
    CodedFormat format_;
    const DvStream* stream_ = nullptr;  // Of the last frame.
    unsigned threads_ = 0;
    WorkerTeam team_;
    std::unique_ptr<TThreadState<SegmentDecoder>[]> decoders_;  // One for each thread.

    CDVImageWriter writer_;
    FieldConverter converter_;
    AlignedBuffer storeMemory_;
    ImageDescriptor store_;

    // Of the frame being decoded.
    const std::uint8_t* frame_ = nullptr;
    bool usesStore_ = false;
};

}  // namespace KorvaneSoftware
