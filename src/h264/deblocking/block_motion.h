// Which neighbouring blocks of 4x4 samples move differently: other reference pictures, another number of vectors, or
// vectors that are too far apart, the tests for a strength of 1 in ITU-T H.264 clause 8.7.2.1.
#pragma once

#include <cstdint>

#include "h264/macroblock_record.h"

namespace KorvaneSoftware {

/// How motion is compared.
struct H264MotionTest {
    unsigned lists;     ///< 1 where both sides are of P slices, which have no list 1; else 2.
    int verticalLimit;  ///< Vertical difference that makes an edge, in quarter samples; across it is 4.
};

/// Motion of the four blocks along one side of a macroblock.
struct H264MotionSide {
    /// Picture ids of the first two and the last two blocks, list 0 in the low half, list 1 in the high one.
    std::uint32_t references[2];
    std::int16_t vectors[2][4][2];  ///< By list and block.
};

H264MotionSide LeftMotion(const H264MacroblockRecord& mb);
H264MotionSide RightMotion(const H264MacroblockRecord& mb);
H264MotionSide TopMotion(const H264MacroblockRecord& mb);
H264MotionSide BottomMotion(const H264MacroblockRecord& mb);

/// Bit i: blocks i of both sides differ.
unsigned CompareMotion(const H264MotionSide& p, const H264MotionSide& q, const H264MotionTest& test);

/// Edges between the blocks of a macroblock. Bit i of `vertical`: block i and the one left of it differ; of
/// `horizontal`: block i and the one above. Bits of the macroblock's own edges are 0.
struct H264InnerEdges {
    unsigned vertical = 0;
    unsigned horizontal = 0;
};
H264InnerEdges CompareMotionInside(const H264MacroblockRecord& mb, const H264MotionTest& test);

}  // namespace KorvaneSoftware
