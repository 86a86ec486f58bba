// The motion at the same place of the first picture of list 1, ITU-T H.264 clause 8.4.1.2.1.
#pragma once

#include <cstdint>

#include "h264/macroblock_record.h"
#include "h264/motion/motion_vectors.h"
#include "h264/slice.h"

namespace KorvaneSoftware {

/// A macroblock whose motion is derived from others.
struct H264DirectPlace {
    const CH264Slice& slice;
    H264ListView view;
    std::uint32_t mbX;  ///< In macroblocks, of its picture; of field macroblocks of MBAFF in the field.
    std::uint32_t mbY;

    /// Whether the macroblock is one of a field picture or of a field in MBAFF.
    bool IsField() const;
    bool IsBottomField() const;
};

/// How the rows of the macroblock lie to those of the records at its place.
enum class H264VerticalScale : std::uint8_t { ONE_TO_ONE, FRAME_TO_FIELD, FIELD_TO_FRAME };

/// The records at the place of a macroblock; without a picture to take them from an intra macroblock stands in.
struct H264Colocated {
    const H264MacroblockRecord* mbs[2];  ///< For the upper and the lower two 8x8 parts.
    std::uint8_t cornerRows[2];          ///< The rows of blocks in them that stand for these parts.
    H264VerticalScale scale;
};

H264Colocated FindColocated(const H264DirectPlace& place);

/// What a block at the same place refers to: its list 0, or else its list 1.
struct H264ColocatedMotion {
    int refIdx;     ///< Below 0: intra.
    int pictureId;  ///< Of a frame, or of a field where the record is one of a field.
    H264Vector vector;
};

inline H264ColocatedMotion ColocatedMotionAt(const H264MacroblockRecord& mb, unsigned block) {
    const unsigned list = mb.refIdx[0][block] >= 0 ? 0 : 1;
    const int refIdx = mb.refIdx[list][block];
    if (refIdx < 0) return {-1, -1, {}};
    return {refIdx, mb.refPicId[list][block / 8 * 2 + block % 4 / 2], LoadVector(mb, list, block)};
}

}  // namespace KorvaneSoftware
