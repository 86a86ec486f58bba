#include "h264/reconstruction/inter_weights.h"

namespace KorvaneSoftware {
namespace {

constexpr int kImplicitLogDenominator = 5;
constexpr int kEvenWeight = 32;

bool HasFlag(const H264PredictionWeight& entry, unsigned component) {
    return component == 0 ? entry.lumaFlag : entry.chromaFlag;
}

void FindExplicit(const H264SliceHeader& header, const H264PredictionWeight* first, const H264PredictionWeight* second,
                  H264BlockWeights (&weights)[3]) {
    for (unsigned i = 0; i < 3; ++i) {
        H264BlockWeights& found = weights[i];
        found.weights.logDenominator =
            static_cast<int>(i == 0 ? header.lumaLog2WeightDenom : header.chromaLog2WeightDenom);
        if (first != nullptr && second != nullptr) {
            found.used = HasFlag(*first, i) || HasFlag(*second, i);
            found.weights.weights[0] = first->weight[i];
            found.weights.weights[1] = second->weight[i];
            found.weights.offset = (first->offset[i] + second->offset[i] + 1) >> 1;
        } else {
            const H264PredictionWeight& entry = first != nullptr ? *first : *second;
            found.used = HasFlag(entry, i);
            found.weights.weights[0] = entry.weight[i];
            found.weights.weights[1] = 0;
            found.weights.offset = entry.offset[i];
        }
    }
}

}  // namespace

void FindBlockWeights(const CH264Slice& slice, H264ListView view, const int (&refs)[2],
                      H264BlockWeights (&weights)[3]) {
    for (H264BlockWeights& component : weights) component = {};
    const bool isB = slice.header.sliceType == SLICE_B;
    if (isB ? slice.pps.weightedBipredIdc == 1 : slice.pps.weightedPred) {
        // The entries of field macroblocks share those of their frames.
        const unsigned shift = view == VIEW_PICTURE ? 0 : 1;
        const H264PredictionWeight* entries[2] = {};
        for (unsigned list = 0; list < 2; ++list)
            if (refs[list] >= 0) entries[list] = &slice.header.weights[list][refs[list] >> shift];
        if (entries[0] != nullptr || entries[1] != nullptr) FindExplicit(slice.header, entries[0], entries[1], weights);
    } else if (isB && slice.pps.weightedBipredIdc == 2 && refs[0] >= 0 && refs[1] >= 0) {
        const int weight = slice.references.implicitWeights[view][refs[0]][refs[1]];
        if (weight == kEvenWeight) return;
        for (H264BlockWeights& component : weights)
            component = {true, {kImplicitLogDenominator, {2 * kEvenWeight - weight, weight}, 0}};
    }
}

}  // namespace KorvaneSoftware
