// Motion that B macroblocks take without any of their own in the stream, ITU-T H.264 clauses 8.4.1.2.2 and 8.4.1.2.3.
#pragma once

#include "h264/macroblock/neighbours.h"
#include "h264/motion/colocated.h"

namespace KorvaneSoftware {

constexpr unsigned kH264AllParts = 15;

/// Writes references, vectors, prediction kinds and sub-macroblock shapes of the 8x8 parts of `mb` whose bits are set.
/// With all four, the macroblock's shape as well: 16x16 where all of it moves alike, otherwise 8x8.
/// @param place  where `mb` stands; its slice is a B slice
void PredictDirectSpatial(const H264DirectPlace& place, const H264Neighbours& neighbours, unsigned parts,
                          H264MacroblockRecord& mb);
void PredictDirectTemporal(const H264DirectPlace& place, unsigned parts, H264MacroblockRecord& mb);

}  // namespace KorvaneSoftware
