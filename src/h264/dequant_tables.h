// Dequantisation with scaling matrices, ITU-T H.264 clause 8.5.9.
#pragma once

#include <cstdint>

#include "h264/parsing/parameter_sets.h"

namespace KorvaneSoftware {

/// NormAdjust(qP % 6, position) x weight, by position in the block.
struct H264DequantTables {
    std::uint16_t table4x4[6][6][16];  ///< [Intra Y, Cb, Cr, inter Y, Cb, Cr][qP % 6]
    std::uint16_t table8x8[2][6][64];  ///< [Intra Y, inter Y][qP % 6]

    void Build(const H264ScalingLists& lists, bool with8x8);
};

}  // namespace KorvaneSoftware
