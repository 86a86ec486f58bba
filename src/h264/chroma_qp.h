// Quantiser of chroma, ITU-T H.264 clause 8.5.8.
#pragma once

#include <algorithm>
#include <cstdint>

namespace KorvaneSoftware {

/// QPC by qPI from 30 on, Table 8-15; below, it is qPI itself.
inline constexpr std::uint8_t kH264ChromaQps[22] = {29, 30, 31, 32, 32, 33, 34, 34, 35, 35, 36,
                                                    36, 37, 37, 37, 38, 38, 38, 39, 39, 39, 39};

/// QPC of a macroblock.
/// @param qp       QPY
/// @param offset   chroma_qp_index_offset, or the second one for Cr
/// @param bdOffset QpBdOffsetC: QPC reaches down to -bdOffset, and QP'C is the sum of both
constexpr int H264ChromaQp(int qp, int offset, int bdOffset) {
    const int index = std::clamp(qp + offset, -bdOffset, 51);
    return index < 30 ? index : kH264ChromaQps[index - 30];
}

}  // namespace KorvaneSoftware
