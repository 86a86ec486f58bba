// Scales of dequantisation, ITU-T H.264 clause 8.5.9.
#pragma once

#include <cstdint>

#include "h264/parsing/parameter_sets.h"

namespace KorvaneSoftware {

/// Scales of [qP % 6], by position in the block.
using H264Scales4x4 = std::uint16_t[6][16];
using H264Scales8x8 = std::uint16_t[6][64];

/// NormAdjust(qP % 6, position): what pictures without scaling matrices take, whose weights are all 16.
struct H264NormAdjust {
    H264Scales4x4 scales4x4;
    H264Scales8x8 scales8x8;
};
extern const H264NormAdjust kH264NormAdjust;

/// NormAdjust(qP % 6, position) x weight.
struct H264DequantTables {
    H264Scales4x4 table4x4[6];  ///< Intra Y, Cb, Cr, inter Y, Cb, Cr.
    H264Scales8x8 table8x8[2];  ///< Intra Y, inter Y.

    void Build(const H264ScalingLists& lists, bool with8x8);
};

}  // namespace KorvaneSoftware
