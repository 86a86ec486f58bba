// Which samples intra prediction may use, and that they are where the kernels look for them.
#include <gtest/gtest.h>

#include <cstring>

#include "h264/chroma_qp.h"
#include "h264/reconstruction/constructor_high.h"
#include "h264/reconstruction/motion_compensation.h"
#include "macroblock_harness.h"

namespace KorvaneSoftware {
namespace {

using h264::Dice;
using h264::MacroblockPlace;

// The block of 4x4 samples that holds a sample of the macroblock, in coding order: clauses 6.4.3 and 6.4.13.1.
int CodingIndex(int x, int y) { return 8 * (y / 8) + 4 * (x / 8) + 2 * (y % 8 / 4) + x % 8 / 4; }

H264IntraAvailability Everything() {
    H264IntraAvailability all = {};
    all.macroblock = NEIGHBOUR_LEFT | NEIGHBOUR_TOP | NEIGHBOUR_TOP_LEFT;
    all.topRight = true;
    for (bool& corner : all.corners) corner = true;
    return all;
}

// Inside the macroblock a block can use those that are decoded before it, clause 6.4.11.4.
TEST(H264IntraAvailability, UpperRightBlocksFollowTheCodingOrder) {
    const H264IntraAvailability all = Everything();
    for (int place = 0; place < 16; ++place) {
        const int x = place % 4 * 4, y = place / 4 * 4;
        bool expected = y == 0;
        if (y > 0 && x < 12) expected = CodingIndex(x + 4, y - 1) < CodingIndex(x, y);
        const std::uint32_t found = all.Of4x4(static_cast<unsigned>(place));
        EXPECT_EQ((found & NEIGHBOUR_TOP_RIGHT) != 0, expected) << place;
        EXPECT_EQ(found | NEIGHBOUR_TOP_RIGHT,
                  NEIGHBOUR_LEFT | NEIGHBOUR_TOP | NEIGHBOUR_TOP_LEFT | NEIGHBOUR_TOP_RIGHT);
    }
    EXPECT_NE(all.Of8x8(0) & NEIGHBOUR_TOP_RIGHT, 0u);
    EXPECT_NE(all.Of8x8(1) & NEIGHBOUR_TOP_RIGHT, 0u);
    EXPECT_NE(all.Of8x8(2) & NEIGHBOUR_TOP_RIGHT, 0u);
    EXPECT_EQ(all.Of8x8(3) & NEIGHBOUR_TOP_RIGHT, 0u);
}

TEST(H264IntraAvailability, EdgesBelongToTheirNeighbours) {
    H264IntraAvailability none = {};
    EXPECT_EQ(none.Of4x4(0), 0u);
    EXPECT_EQ(none.Of4x4(1), std::uint32_t{NEIGHBOUR_LEFT});
    EXPECT_EQ(none.Of4x4(4), std::uint32_t{NEIGHBOUR_TOP | NEIGHBOUR_TOP_RIGHT});
    EXPECT_EQ(none.Of4x4(5), std::uint32_t{NEIGHBOUR_LEFT | NEIGHBOUR_TOP | NEIGHBOUR_TOP_LEFT});
    EXPECT_EQ(none.Of8x8(1), std::uint32_t{NEIGHBOUR_LEFT});
    EXPECT_EQ(none.Of8x8(2), std::uint32_t{NEIGHBOUR_TOP | NEIGHBOUR_TOP_RIGHT});
    none.topRight = true;
    EXPECT_EQ(none.Of4x4(3), std::uint32_t{NEIGHBOUR_LEFT | NEIGHBOUR_TOP_RIGHT});
    // The lower half of the left edge alone, and its corner at row 2.
    none.macroblock = NEIGHBOUR_LEFT_LOWER;
    none.corners[2] = true;
    EXPECT_EQ(none.Of4x4(4) & NEIGHBOUR_LEFT, 0u);
    EXPECT_EQ(none.Of4x4(8), std::uint32_t{NEIGHBOUR_LEFT | NEIGHBOUR_TOP | NEIGHBOUR_TOP_LEFT | NEIGHBOUR_TOP_RIGHT});
    EXPECT_EQ(none.Of4x4(12) & NEIGHBOUR_TOP_LEFT, 0u);
}

// In MBAFF the rows of the left pair that touch a row of the current macroblock, by table 6-4, and which of its
// macroblocks they belong to.
struct LeftSample {
    bool bottomMb;
    int rowInPair;  ///< Of the frame.
};

LeftSample LeftOf(bool currentIsFrame, bool currentIsBottom, bool leftIsFrame, int yN) {
    const int maxH = 16;
    bool bottomMb = false;
    int yM = 0;
    if (currentIsFrame) {
        if (leftIsFrame) {
            bottomMb = currentIsBottom;
            yM = yN;
        } else {
            bottomMb = yN % 2 != 0;
            yM = (currentIsBottom ? yN + maxH : yN) >> 1;
        }
    } else if (leftIsFrame) {
        bottomMb = yN >= maxH / 2;
        yM = 2 * yN + (currentIsBottom ? 1 : 0) - (bottomMb ? maxH : 0);
    } else {
        bottomMb = currentIsBottom;
        yM = yN;
    }
    return {bottomMb, leftIsFrame ? yM + (bottomMb ? 16 : 0) : 2 * yM + (bottomMb ? 1 : 0)};
}

using Layer = h264::ChosenMacroblock<
    2,
    CH264ConstructorHigh<2, 1, 0, std::uint8_t, TH264MotionCompensation<2, 1, std::uint8_t, CH264DecompressorMBAFF>>>;
struct Processor : Layer {
    using Layer::Availability;
    using Layer::neighbours_;
    using Layer::planes_;
    using Layer::stride_;
};

// All mixes of frame and field pairs and of intra and inter macroblocks beside them.
TEST(H264IntraAvailability, LeftSamplesOfMbaffAreBesideTheirRows) {
    const auto frame = h264::MakeFrame(h264::MakeSps(3, 4, 1, 8, 8), 2);
    CH264Slice slice;
    slice.picture = frame.get();
    Processor processor;
    for (unsigned mix = 0; mix < 128; ++mix) {
        const bool isField = (mix & 1) != 0, isBottom = (mix & 2) != 0, leftIsField = (mix & 4) != 0;
        slice.pps.constrainedIntraPred = (mix & 8) != 0;
        H264MacroblockRecord* const left = frame->records + 2 * frame->recordStride;
        for (unsigned i = 0; i < 2; ++i) {
            left[i * frame->recordStride].fieldMb = leftIsField ? 1 : 0;
            left[i * frame->recordStride].mbType = (mix >> (4 + i) & 1) != 0 ? MB_P + 2 : MB_INTRA_4X4;
        }
        processor.Select(slice, {1, 2, isBottom, isField});
        const H264IntraAvailability found = processor.Availability();

        bool available[16];
        for (int y = 0; y < 16; ++y) {
            const LeftSample sample = LeftOf(!isField, isBottom, !leftIsField, y);
            const std::uint8_t* const expected = frame->planes[0] + (2 * 16 + sample.rowInPair) * frame->stride + 15;
            EXPECT_EQ(processor.planes_[0] + y * processor.stride_ - 1, expected) << "row " << y << ", mix " << mix;
            const H264MacroblockRecord& mb = left[sample.bottomMb ? frame->recordStride : 0];
            available[y] = !slice.pps.constrainedIntraPred || (mb.mbType & 1) != 0;
        }
        if (!isField && isBottom) {
            // Row 15 of the pair: the last of the top frame macroblock, or one of the bottom field.
            const H264MacroblockRecord& mb = left[leftIsField ? frame->recordStride : 0];
            EXPECT_EQ(found.corners[0], !slice.pps.constrainedIntraPred || (mb.mbType & 1) != 0) << "mix " << mix;
        }
        for (unsigned block = 0; block < 4; ++block) {
            bool expected = true;
            for (unsigned y = 0; y < 4; ++y) expected = expected && available[4 * block + y];
            EXPECT_EQ((found.Of4x4(4 * block) & NEIGHBOUR_LEFT) == NEIGHBOUR_LEFT, expected)
                << "block row " << block << ", mix " << mix;
            if (block > 0) {
                EXPECT_EQ(found.corners[block], available[4 * block - 1]) << "block row " << block << ", mix " << mix;
            }
        }
    }
}

// The rows above, by the same table: of the pair above the last row for frame macroblocks, the last of the same parity
// for those of fields; of a bottom frame macroblock the top one's last row.
TEST(H264IntraAvailability, UpperSamplesOfMbaffAreAboveTheirRows) {
    const auto frame = h264::MakeFrame(h264::MakeSps(3, 4, 1, 8, 8), 2);
    CH264Slice slice;
    slice.picture = frame.get();
    Processor processor;
    for (unsigned mix = 0; mix < 4; ++mix) {
        const bool isField = (mix & 1) != 0, isBottom = (mix & 2) != 0;
        processor.Select(slice, {1, 2, isBottom, isField});
        const int expectedRow = isField ? (isBottom ? 31 : 30) : (isBottom ? 32 + 15 : 31);
        EXPECT_EQ(processor.planes_[0] - processor.stride_, frame->planes[0] + expectedRow * frame->stride + 16) << mix;
    }
}

TEST(H264IntraAvailability, InterNeighboursCountUnlessConstrained) {
    const auto frame = h264::MakeFrame(h264::MakeSps(3, 4, 1, 8, 8), 0);
    for (std::size_t i = 0; i < 4 * frame->recordStride; ++i) frame->records[i].mbType = MB_B_DIRECT;
    H264Neighbours neighbours = {};
    neighbours.left[0] = neighbours.left[1] = frame->records;
    neighbours.top = neighbours.topRight = frame->records + 1;
    for (H264BlockPlace& corner : neighbours.corners) corner.mb = frame->records;
    EXPECT_EQ(FindIntraAvailability(neighbours, nullptr, false).macroblock,
              std::uint32_t{NEIGHBOUR_LEFT | NEIGHBOUR_TOP | NEIGHBOUR_TOP_LEFT});
    const H264IntraAvailability constrained = FindIntraAvailability(neighbours, nullptr, true);
    EXPECT_EQ(constrained.macroblock, 0u);
    EXPECT_FALSE(constrained.topRight);
    EXPECT_EQ(FindIntraAvailability({}, nullptr, false).macroblock, 0u);
}

// Table 8-15 at its ends and bends, and what lies below 0 at 10 bits.
TEST(H264ChromaQp, ByHand) {
    EXPECT_EQ(H264ChromaQp(29, 0, 0), 29);
    EXPECT_EQ(H264ChromaQp(30, 0, 0), 29);
    EXPECT_EQ(H264ChromaQp(28, 6, 0), 32);
    EXPECT_EQ(H264ChromaQp(51, 12, 0), 39);
    EXPECT_EQ(H264ChromaQp(40, 3, 0), 37);
    EXPECT_EQ(H264ChromaQp(2, -12, 0), 0);
    EXPECT_EQ(H264ChromaQp(-12, -12, 12), -12);
    EXPECT_EQ(H264ChromaQp(-5, -3, 12), -8);
}

}  // namespace
}  // namespace KorvaneSoftware
