// Sample primitives of the H.264 decoder, each over the blocks of a frame of 1080 lines.
#include <algorithm>
#include <cstring>
#include <string>

#include "bench.h"
#include "h264/deblocking/edge_filters.h"
#include "h264/deblocking/far_vectors.h"
#include "h264/reconstruction/inter_prediction.h"
#include "h264/reconstruction/intra_prediction.h"
#include "h264/reconstruction/transforms.h"

namespace pixmorph_bench {
namespace {

constexpr std::size_t kFrameHeight = 1088;
constexpr std::size_t kSamples = std::size_t{kWidth} * kFrameHeight;
constexpr std::ptrdiff_t kStride = kWidth;
constexpr int kMargin = 32;  ///< Left out around the frame, so that kernels find neighbours.

template <class Sample>
constexpr std::uint32_t kDepth = sizeof(Sample) == 1 ? 8 : 10;

// Adds every form of a slot: `call(form, samples, other)` is made for each block of the frame, and reads what it likes
// of a second frame at the same place.
template <class Sample, class Slot, class Call>
void AddBlocks(const Slot& slot, int width, int height, Call call) {
    const std::string name =
        slot.Index() < 0 ? std::string(slot.Name()) : std::string(slot.Name()) + "_" + std::to_string(slot.Index());
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const form = slot.Row(row).function;
        Add({name, VariantLabel(slot, row), double{kSamples}, kSamples * sizeof(Sample) * 2.0,
             [form, width, height, call](Regime regime, std::size_t i) {
                 const std::size_t size = kSamples * sizeof(Sample);
                 auto* const frame = reinterpret_cast<Sample*>(Slice(Arena::Destination, regime, size, i));
                 auto* const other = reinterpret_cast<Sample*>(Slice(Arena::Destination2, regime, size, i));
                 if constexpr (sizeof(Sample) == 2) {
                     // The arenas hold what other rows left there: bring it within the depth.
                     static const Sample* prepared = nullptr;
                     if (prepared != frame) {
                         for (std::size_t at = 0; at < kSamples; ++at) frame[at] &= 1023, other[at] &= 1023;
                         prepared = frame;
                     }
                 }
                 for (int y = kMargin; y + height <= static_cast<int>(kFrameHeight) - kMargin; y += height)
                     for (int x = kMargin; x + width <= static_cast<int>(kWidth) - kMargin; x += width)
                         call(form, frame + y * kStride + x, other + y * kStride + x);
             },
             true});
    });
}

constexpr km::H264Weights kWeights = {5, {40, 24}, 3};

template <class Sample>
void AddTransforms() {
    using Slots = km::TH264Transforms<Sample>;
    using Coefficient = typename km::TH264SampleType<Sample>::Coefficient;
    const auto add = [](auto* form, Sample* samples, Sample*) {
        alignas(64) static constexpr Coefficient kCoefficients[64] = {300, -70, 20, 0, 50, 0, 0, 0, -40, 10};
        form(samples, kStride, kCoefficients, kDepth<Sample>);
    };
    AddBlocks<Sample>(Slots::kAdd4x4, 4, 4, add);
    AddBlocks<Sample>(Slots::kAdd8x8, 8, 8, add);
    AddBlocks<Sample>(Slots::kAdd4x4Dc, 4, 4, add);
    AddBlocks<Sample>(Slots::kAdd8x8Dc, 8, 8, add);
    const auto dc = [](auto* form, Sample*, Sample*) {
        Coefficient coefficients[16] = {300, -70, 20, 0, 50, 0, 0, 0, -40, 10};
        form(coefficients, 160, 28);
    };
    AddBlocks<Sample>(Slots::kLumaDc, 16, 16, dc);
    AddBlocks<Sample>(Slots::kChromaDc2x2, 8, 8, dc);
    AddBlocks<Sample>(Slots::kChromaDc2x4, 8, 16, dc);
}

template <class Sample>
void AddInterPrediction() {
    using Slots = km::TH264InterKernels<Sample>;
    for (const int width : {4, 8, 16})
        for (int fraction = 0; fraction < 16; ++fraction)
            AddBlocks<Sample>(Slots::kLuma[km::H264LumaIndex(width, fraction % 4, fraction / 4)], width, width,
                              [width](auto* form, Sample* samples, Sample* other) {
                                  form(samples, kStride, other, kStride, width, kDepth<Sample>);
                              });
    for (const int width : {2, 4, 8})
        AddBlocks<Sample>(Slots::kChroma[km::H264WidthIndex(width)], width, width,
                          [width](auto* form, Sample* samples, Sample* other) {
                              form(samples, kStride, other, kStride, width, 3, 5);
                          });
    for (const int width : {2, 4, 8, 16}) {
        AddBlocks<Sample>(
            Slots::kAverage[km::H264WidthIndex(width)], width, width,
            [width](auto* form, Sample* samples, Sample* other) { form(samples, kStride, other, kStride, width); });
        AddBlocks<Sample>(
            Slots::kWeight[km::H264WidthIndex(width)], width, width,
            [width](auto* form, Sample* samples, Sample*) { form(samples, kStride, width, kWeights, kDepth<Sample>); });
        AddBlocks<Sample>(Slots::kWeightBoth[km::H264WidthIndex(width)], width, width,
                          [width](auto* form, Sample* samples, Sample* other) {
                              form(samples, kStride, other, kStride, width, kWeights, kDepth<Sample>);
                          });
    }
}

template <class Sample>
void AddIntraPrediction() {
    using Slots = km::TH264IntraKernels<Sample>;
    const auto addTable = [](const auto& table, int width, int height) {
        for (std::size_t mode = 0; mode < table.Size(); ++mode)
            AddBlocks<Sample>(table[mode], width, height,
                              [](auto* form, Sample* samples, Sample*) { form(samples, kStride, 31, kDepth<Sample>); });
    };
    addTable(Slots::k4x4, 4, 4);
    addTable(Slots::k8x8, 8, 8);
    addTable(Slots::k16x16, 16, 16);
    addTable(Slots::kChroma8x8, 8, 8);
    addTable(Slots::kChroma8x16, 8, 16);
}

// Thresholds of a middling QP. The frame's content settles after the first runs, the same for every form.
constexpr km::H264EdgeThresholds kThresholds = {40, 10, 0x03020302};

template <class Sample>
void AddEdgeFilters() {
    using Slots = km::TH264EdgeFilters<Sample>;
    const auto addLuma = [](const auto& slot) {
        AddBlocks<Sample>(slot, 16, 16, [](auto* form, Sample* samples, Sample*) {
            form(samples, kStride, kThresholds, 4, kDepth<Sample>);
        });
    };
    const auto addChroma = [](const auto& slot) {
        AddBlocks<Sample>(slot, 8, 8, [](auto* form, Sample* samples, Sample* other) {
            form(samples, other, kStride, {kThresholds, kThresholds}, 2, kDepth<Sample>);
        });
    };
    addLuma(Slots::kLumaVerticalWeak);
    addLuma(Slots::kLumaVerticalStrong);
    addLuma(Slots::kLumaHorizontalWeak);
    addLuma(Slots::kLumaHorizontalStrong);
    addChroma(Slots::kChromaVerticalWeak);
    addChroma(Slots::kChromaVerticalStrong);
    addChroma(Slots::kChromaHorizontalWeak);
    addChroma(Slots::kChromaHorizontalStrong);
}

// Vectors of a macroblock out of the frame's first bytes; what they are is as good as random.
void AddBlockMotion() {
    AddBlocks<std::uint8_t>(km::H264FarVectors, 16, 16, [](auto* form, std::uint8_t* samples, std::uint8_t* other) {
        km::H264BlockVectors p, q;
        std::memcpy(p, samples, sizeof p);
        std::memcpy(q, other, sizeof q);
        const std::uint32_t far = form(p, q, 4);
        std::memcpy(samples, &far, sizeof far);
    });
}

struct AddAll {
    AddAll() {
        AddTransforms<std::uint8_t>();
        AddTransforms<std::uint16_t>();
        AddInterPrediction<std::uint8_t>();
        AddInterPrediction<std::uint16_t>();
        AddIntraPrediction<std::uint8_t>();
        AddIntraPrediction<std::uint16_t>();
        AddEdgeFilters<std::uint8_t>();
        AddEdgeFilters<std::uint16_t>();
        AddBlockMotion();
    }
} const kAll;

}  // namespace
}  // namespace pixmorph_bench
