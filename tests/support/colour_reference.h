// The colour matrices worked out again, in whole numbers from the luma weights of ITU-R BT.601 and BT.709: what the
// slow recomputations of the tests multiply by.
#pragma once

#include <array>
#include <cstdint>

namespace pixmorph_test {

struct ColourWeights {
    std::int64_t red, blue;  ///< In luma, in 1/10000.
    std::int64_t lumaRange, chromaRange, black;
};

/// By matrix number: BT.601, BT.709 twice, BT.601 at full range.
inline constexpr std::array<ColourWeights, 4> kColourWeights = {
    {{2990, 1140, 219, 224, 16}, {2126, 722, 219, 224, 16}, {2126, 722, 219, 224, 16}, {2990, 1140, 255, 255, 0}}};

/// 8192 times a fraction, to the nearest.
constexpr std::int64_t In8192nds(std::int64_t numerator, std::int64_t denominator) {
    return (2 * 8192 * numerator + denominator) / (2 * denominator);
}

/// yGain, uToB, uToG, vToG, vToR, bOffset, gOffset, rOffset. An offset is what makes black come to 17 of 32 parts above
/// nothing, or to 16 where luma has a gain of 1.
constexpr std::array<std::int64_t, 8> ToRgbReference(int matrix) {
    const ColourWeights w = kColourWeights[static_cast<std::size_t>(matrix)];
    const std::int64_t green = 10000 - w.red - w.blue;
    const std::int64_t fromU = 2 * 255 * (10000 - w.blue);
    const std::int64_t fromV = 2 * 255 * (10000 - w.red);
    const std::int64_t yGain = In8192nds(255, w.lumaRange);
    const std::int64_t uToB = In8192nds(fromU, w.chromaRange * 10000);
    const std::int64_t uToG = In8192nds(fromU * w.blue, w.chromaRange * 10000 * green);
    const std::int64_t vToG = In8192nds(fromV * w.red, w.chromaRange * 10000 * green);
    const std::int64_t vToR = In8192nds(fromV, w.chromaRange * 10000);
    const std::int64_t black = yGain * w.black * 256 / 65536;
    const std::int64_t left = w.black == 0 ? 16 : 17;
    return {yGain,
            uToB,
            uToG,
            vToG,
            vToR,
            black + uToB / 2 - left,
            left + uToG / 2 + vToG / 2 - black,
            black + vToR / 2 - left};
}

/// B, G, R to Y; to U; to V, the signs of the two chroma rows being + - - and - - +; luma offset, chroma offset.
constexpr std::array<std::int64_t, 11> ToYuvReference(int matrix) {
    const ColourWeights w = kColourWeights[static_cast<std::size_t>(matrix)];
    const std::int64_t green = 10000 - w.red - w.blue;
    const std::int64_t half = In8192nds(w.chromaRange, 2 * 255);
    const auto luma = [&](std::int64_t weight) { return In8192nds(w.lumaRange * weight, 255 * 10000); };
    const auto chroma = [&](std::int64_t weight, std::int64_t own) {
        return In8192nds(w.chromaRange * weight, 2 * 255 * (10000 - own));
    };
    return {luma(w.blue),          luma(green),           luma(w.red),          half, chroma(green, w.blue),
            chroma(w.red, w.blue), chroma(w.blue, w.red), chroma(green, w.red), half, 32 * w.black + 17,
            32 * 128 + 15};
}

}  // namespace pixmorph_test
