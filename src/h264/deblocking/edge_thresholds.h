// Strengths of the segments of an edge, and the thresholds of its filters that follow from them, ITU-T H.264 clause
// 8.7.2.2.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// Strengths of the four segments of an edge, 0 to 4, a byte each, the first in the lowest.
using H264Strengths = std::uint32_t;

constexpr H264Strengths kH264StrengthsOf3 = 0x03030303;
constexpr H264Strengths kH264StrengthsOf4 = 0x04040404;

/// tC0 of segments that a filter leaves alone.
constexpr std::uint32_t kH264NotFiltered = 0xFF;

/// What a filter needs, as for 8 bits: filters scale it to the depth of the samples.
struct H264EdgeThresholds {
    std::uint8_t alpha;
    std::uint8_t beta;
    /// tC0 by segment, a byte each as in strengths, or kH264NotFiltered. Strong filters look no further.
    std::uint32_t tc0;
};

/// Thresholds of all edges between macroblocks of some QPs.
struct H264EdgeLimits {
    std::uint8_t alpha;
    std::uint8_t beta;
    const std::uint8_t* tc0;  ///< By strength, 0 to 4; kH264NotFiltered but for 1 to 3.

    bool FilterNothing() const { return alpha == 0 || beta == 0; }

    /// Leaves segments of strength 4 to Strong.
    H264EdgeThresholds Weak(H264Strengths strengths) const {
        std::uint32_t bytes = 0;
        for (unsigned i = 0; i < 32; i += 8) bytes |= std::uint32_t{tc0[strengths >> i & 7]} << i;
        return {alpha, beta, bytes};
    }
    /// Only for the segments of strength 4.
    H264EdgeThresholds Strong(H264Strengths strengths) const {
        return {alpha, beta, ~((strengths >> 2 & 0x01010101) * kH264NotFiltered)};
    }
};

/// Tables 8-16 and 8-17 by index.
struct H264EdgeTables {
    static constexpr int kIndices = 52;
    static const std::uint8_t kAlpha[kIndices];
    static const std::uint8_t kBeta[kIndices];
    static const std::uint8_t kTc0[kIndices][5];  ///< And by strength; kH264NotFiltered for 0 and 4.
};

/// @param qp      mean of the two macroblocks' QP, of chroma that of the mapped ones: without the extension by bit depth
/// @param offsetA FilterOffsetA
/// @param offsetB FilterOffsetB
inline H264EdgeLimits FindH264EdgeLimits(int qp, int offsetA, int offsetB) {
    constexpr int kLast = H264EdgeTables::kIndices - 1;
    const auto clip = [](int index) { return index < 0 ? 0 : index > kLast ? kLast : index; };
    const int indexA = clip(qp + offsetA);
    return {H264EdgeTables::kAlpha[indexA], H264EdgeTables::kBeta[clip(qp + offsetB)], H264EdgeTables::kTc0[indexA]};
}

}  // namespace KorvaneSoftware
