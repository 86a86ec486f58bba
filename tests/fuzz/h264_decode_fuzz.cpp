// Any stream through the whole decoder, on one to three threads: every call must return, every sample that is delivered
// must be one of the picture's depth, and every record one that the filter and later pictures may index with.
#include <vector>

#include "fuzz/fuzz_h264_stream.h"
#include "fuzz/fuzz_input.h"
#include "h264/deblocking/deblocking_processors.h"
#include "h264/macroblock/processors.h"
#include "h264/pipeline/fusion_core.h"
#include "support/h264_samples.h"

using namespace KorvaneSoftware;

namespace {

constexpr std::uint32_t kMostMacroblocks = 128;

template <class Sample>
void CheckSamples(const CH264Frame& frame, unsigned plane, std::uint32_t depth) {
    const std::size_t across = std::size_t{frame.WidthInMbs()} * (plane == 0 ? 16 : 8);
    const std::size_t rows = std::size_t{frame.sps.FrameHeightInMbs()} * (plane == 0 ? 16 : frame.ChromaMbHeight());
    unsigned all = 0;
    for (std::size_t y = 0; y < rows; ++y) {
        const auto* row =
            reinterpret_cast<const Sample*>(frame.planes[plane] + static_cast<std::ptrdiff_t>(y) * frame.stride);
        for (std::size_t x = 0; x < across; ++x) all |= row[x];
    }
    pixmorph_fuzz::Require(all >> depth == 0, "a sample above its depth");
}

void CheckRecords(const CH264Frame& frame) {
    for (std::uint32_t y = 0; y < frame.sps.FrameHeightInMbs(); ++y) {
        for (std::uint32_t x = 0; x < frame.WidthInMbs(); ++x) {
            const H264MacroblockRecord& record = frame.records[y * frame.recordStride + x];
            const bool intra = (record.mbType & kH264InterBits) == 0;
            for (unsigned list = 0; list < 2; ++list) {
                for (const int refIdx : record.refIdx[list]) {
                    pixmorph_fuzz::Require(refIdx >= -1 && refIdx < static_cast<int>(kH264MostReferences),
                                           "a reference index out of range");
                    pixmorph_fuzz::Require(!intra || refIdx < 0, "a reference of an intra macroblock");
                }
            }
        }
    }
}

/// Looks at all samples and records.
class CheckingOutput final : public IH264FrameOutput {
public:
    Status Initialize() override { return IMG_OK; }
    Status Check(const CH264Frame&, IVideoSample&) override { return IMG_OK; }
    Status Deliver(const CH264Frame& frame, IVideoSample&) override {
        for (unsigned plane = 0; plane < 3; ++plane) {
            const std::uint32_t extra = plane == 0 ? frame.sps.bitDepthLumaMinus8 : frame.sps.bitDepthChromaMinus8;
            if (frame.BytesPerSample() == 2) {
                CheckSamples<std::uint16_t>(frame, plane, 8 + extra);
            } else {
                CheckSamples<std::uint8_t>(frame, plane, 8);
            }
        }
        CheckRecords(frame);
        return IMG_OK;
    }
    Status Describe(const CH264Frame&, CodedFormat&) override { return IMG_OK; }
};

class CheckingLayers final : public IH264Layers {
public:
    std::unique_ptr<IH264Processor> CreateProcessor(std::uint32_t index) const override {
        return CreateH264Processor(index);
    }
    std::unique_ptr<IH264DeblockingProcessor> CreateDeblockingProcessor(std::uint32_t index) const override {
        return CreateH264DeblockingProcessor(index);
    }
    std::unique_ptr<IH264FrameOutput> CreateOutput() const override { return std::make_unique<CheckingOutput>(); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1 || pixmorph_fuzz::HasLargePicture(data, size, kMostMacroblocks)) return 0;
    const CheckingLayers layers;
    // The first byte tells how many threads; most inputs have one, whose runs are all alike.
    const unsigned threads = data[0] < 192 ? 1 : 1 + data[0] % 3;
    CH264FusionCore core(layers, threads);
    if (core.Initialize({}) != IMG_OK) return 0;
    h264::PictureSample picture;
    pixmorph_fuzz::ForEachSample(data + 1, size - 1, [&](const std::vector<std::uint8_t>& bytes) {
        h264::CodedSample sample(bytes.data(), bytes.size(), 0);
        core.Decode(&picture, &sample);
    });
    for (int i = 0; i < 64; ++i) {
        if (core.Decode(&picture, nullptr) != IMG_OK) break;
    }
    return 0;
}
