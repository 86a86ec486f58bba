// What both kinds of direct prediction share. Private to motion/.
#pragma once

#include "h264/motion/colocated.h"
#include "h264/picture.h"

namespace KorvaneSoftware {

/// The blocks of an 8x8 part, from its first one.
constexpr unsigned kBlocksInPart[4] = {0, 1, 4, 5};
constexpr unsigned BlocksOfPart(unsigned part) { return 0x33u << FirstBlockOfPart(part); }

/// Whether one block at the macroblock's corner stands for the whole part. Where rows of fields meet those of frames
/// there is no other way.
inline bool TakesCorners(const H264DirectPlace& place, const H264Colocated& colocated) {
    return place.slice.picture->sps.direct8x8Inference || colocated.scale != H264VerticalScale::ONE_TO_ONE;
}

/// By place in the record, for each part.
inline unsigned CornerBlock(const H264Colocated& colocated, unsigned part) {
    return colocated.cornerRows[part / 2] * 4u + part % 2 * 3;
}

}  // namespace KorvaneSoftware
