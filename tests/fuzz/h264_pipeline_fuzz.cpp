// Any samples through the pipeline over a stand-in for the macroblock layer, which throws now and then: every call must
// return, and no row may be touched too early.
#include <cstdlib>
#include <vector>

#include "fuzz/fuzz_h264_stream.h"
#include "fuzz/fuzz_input.h"
#include "h264/pipeline/fusion_core.h"
#include "support/h264_samples.h"
#include "support/h264_stand_in.h"

using namespace KorvaneSoftware;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (pixmorph_fuzz::HasLargePicture(data, size, 1024)) return 0;
    pixmorph_fuzz::FuzzInput input(data, size);
    h264::StandInLayers layers;
    const unsigned threads = 1 + input.Below(4);
    layers.faults.throwEvery = input.Flag() ? 2 + input.Below(5) : 0;
    layers.faults.throwAlways = input.Flag();
    layers.faults.filterThrowsEvery = input.Flag() ? 2 + input.Below(5) : 0;
    const bool faulty = layers.faults.throwEvery != 0 || layers.faults.filterThrowsEvery != 0;
    CH264FusionCore core(layers, threads);
    if (core.Initialize({}) != IMG_OK) return 0;

    // What follows is a stream; the byte before the one that ends a sample may ask for more.
    const std::size_t first = std::min<std::size_t>(size, 12);
    double time = 0;
    pixmorph_fuzz::ForEachSample(data + first, size - first, [&](const std::vector<std::uint8_t>& bytes) {
        h264::CodedSample sample(bytes.data(), bytes.size(), time++);
        h264::PictureSample picture;
        core.Decode(&picture, &sample);
        if (!bytes.empty() && bytes.back() == 0 && bytes.size() > 2 && bytes[bytes.size() - 2] == 0xFE)
            core.Restart(false);
    });
    for (int i = 0; i < 64; ++i) {
        h264::PictureSample picture;
        if (core.Decode(&picture, nullptr) != IMG_OK) break;
    }
    const h264::StandInCounts& counts = layers.counts;
    const bool clean = counts.filteredNeighbours == 0 && counts.filteredTooEarly == 0 && counts.filteredOutOfTurn == 0;
    if (!faulty && !clean) std::abort();
    return 0;
}
