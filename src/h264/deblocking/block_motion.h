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

/// Four blocks along one side of a macroblock.
enum H264Side : unsigned { SIDE_LEFT, SIDE_RIGHT, SIDE_TOP, SIDE_BOTTOM };

/// Bit i: block i of one side of `p` and block i of one side of `q` differ.
unsigned CompareMotion(const H264MacroblockRecord& p, H264Side pSide, const H264MacroblockRecord& q, H264Side qSide,
                       const H264MotionTest& test);

/// Edges between the blocks of a macroblock. Bit i of `vertical`: block i and the one left of it differ; of
/// `horizontal`: block i and the one above. Bits of the macroblock's own edges are 0.
struct H264InnerEdges {
    unsigned vertical = 0;
    unsigned horizontal = 0;
};
H264InnerEdges CompareMotionInside(const H264MacroblockRecord& mb, const H264MotionTest& test);

}  // namespace KorvaneSoftware
