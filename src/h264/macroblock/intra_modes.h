// Prediction of the modes of Intra_4x4 and Intra_8x8 blocks, ITU-T H.264 clauses 8.3.1.1 and 8.3.2.1.
#pragma once

#include <algorithm>

#include "h264/macroblock/neighbours.h"
#include "h264/macroblock_record.h"

namespace KorvaneSoftware {

/// A neighbour's mode; below 0 where it makes the prediction DC whatever the other one is.
inline int NeighbourIntraMode(H264BlockPlace place, bool constrainedIntra) {
    if (place.mb == nullptr) return -1;
    if (constrainedIntra && (place.mb->mbType & kH264InterBits) != 0) return -1;
    return place.mb->intraModes[place.block];
}

/// The mode predicted for a block, of an 8x8 one for its first place. Those before it stand in the record.
inline unsigned PredictIntraMode(const H264MacroblockRecord& mb, const H264Neighbours& around, unsigned block,
                                 bool constrainedIntra) {
    constexpr unsigned kDc = 2;
    const unsigned row = block / 4;
    const unsigned column = block % 4;
    const int left = column > 0 ? mb.intraModes[block - 1] : NeighbourIntraMode(around.Left(row), constrainedIntra);
    const int top = row > 0 ? mb.intraModes[block - 4] : NeighbourIntraMode(around.Top(column), constrainedIntra);
    const int mode = std::min(left, top);
    return mode < 0 ? kDc : static_cast<unsigned>(mode);
}

}  // namespace KorvaneSoftware
