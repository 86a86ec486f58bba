// What the contexts of CABAC, nC of CAVLC and the prediction of intra modes take from neighbours.
#include <gtest/gtest.h>

#include "dice.h"
#include "h264/macroblock/cabac_increments.h"
#include "h264/macroblock/intra_modes.h"
#include "h264/macroblock/macroblock_types.h"
#include "h264/macroblock/parser_cavlc.h"

namespace KorvaneSoftware {
namespace {

/// A macroblock with one to the left and one above.
struct Around {
    H264MacroblockRecord mb = {};
    H264MacroblockRecord left = {};
    H264MacroblockRecord top = {};
    H264Neighbours neighbours = {};

    Around() { Find(&left, &top); }
    void Find(H264MacroblockRecord* leftOne, H264MacroblockRecord* topOne) {
        FindNeighbours({leftOne, topOne, nullptr, nullptr}, neighbours);
    }
};

TEST(H264Contexts, CountNeighboursThatAreThere) {
    Around around;
    EXPECT_EQ(SkipIncrement(around.neighbours), 2u);
    around.left.skip = MB_SKIPPED;
    around.top.skip = MB_B_DIRECT_INFERRED;
    EXPECT_EQ(SkipIncrement(around.neighbours), 1u);
    around.left.mbType = MB_INTRA_4X4;
    around.top.mbType = MB_INTRA_8X8;
    EXPECT_EQ(IntraTypeIncrement(around.neighbours), 0u);
    around.top.mbType = MB_I_PCM;
    EXPECT_EQ(IntraTypeIncrement(around.neighbours), 1u);
    around.left.mbType = MB_B_DIRECT;
    EXPECT_EQ(BTypeIncrement(around.neighbours), 1u);
    around.left.transform8x8 = around.left.intraChromaMode = 1;
    EXPECT_EQ(Transform8x8Increment(around.neighbours), 1u);
    EXPECT_EQ(ChromaModeIncrement(around.neighbours), 1u);
    around.Find(nullptr, nullptr);
    EXPECT_EQ(SkipIncrement(around.neighbours), 0u);
    EXPECT_EQ(IntraTypeIncrement(around.neighbours), 0u);
    EXPECT_EQ(BTypeIncrement(around.neighbours), 0u);
    EXPECT_EQ(Transform8x8Increment(around.neighbours), 0u);
    // One that is not there has all its luma coded.
    EXPECT_EQ(LeftCodedLuma(around.neighbours), 0b1010u);
}

/// The left neighbours of an MBAFF macroblock may be two, and may lie beside other rows.
TEST(H264Contexts, LeftPatternFollowsTheRows) {
    Around around;
    around.left.codedBlockPattern = 0b1000;
    EXPECT_EQ(LeftCodedLuma(around.neighbours), 0b1000u);
    around.left.codedBlockPattern = 0b0010;
    EXPECT_EQ(LeftCodedLuma(around.neighbours), 0b0010u);

    H264MacroblockRecord pairs[4] = {};  // Left top, current top, left bottom, current bottom.
    H264Neighbours found;
    // A bottom frame macroblock beside a field pair: all its rows lie beside the lower half of the top field.
    pairs[0].fieldMb = pairs[2].fieldMb = 1;
    pairs[0].codedBlockPattern = 0b1000;
    FindNeighboursMbaff({&pairs[0], nullptr, nullptr, nullptr}, &pairs[1], 2, true, false, found);
    EXPECT_EQ(LeftCodedLuma(found), 0b1010u);
    // A field macroblock beside a frame pair: its halves lie beside the two macroblocks.
    pairs[0].fieldMb = pairs[2].fieldMb = 0;
    pairs[0].codedBlockPattern = 0b0010;
    pairs[2].codedBlockPattern = 0b1000;
    FindNeighboursMbaff({&pairs[0], nullptr, nullptr, nullptr}, &pairs[1], 2, true, true, found);
    EXPECT_EQ(LeftCodedLuma(found), 0b0010u);
}

TEST(H264Contexts, ReferencesCountTwiceBesideFields) {
    for (const bool field : {false, true}) {
        for (const bool otherField : {false, true}) {
            Around around;
            around.mb.fieldMb = field;
            around.left.fieldMb = around.top.fieldMb = otherField;
            // Left: index 1 in part 1, 2 in part 3. Above: 2 in part 2, 0 in part 3.
            around.left.refGreater[1] = 0b1000'1010;
            around.top.refGreater[1] = 0b0100'0100;
            const bool onlyAboveOne = otherField && !field;
            EXPECT_EQ(RefIdxIncrement(around.mb, around.neighbours, 1, 0), onlyAboveOne ? 2u : 3u);
            // Inside, part 0 has an index of 1: above 0 is enough there.
            around.mb.refGreater[1] = 0b0001;
            EXPECT_EQ(RefIdxIncrement(around.mb, around.neighbours, 1, 1), 1u);
            EXPECT_EQ(RefIdxIncrement(around.mb, around.neighbours, 1, 2), 3u);
            EXPECT_EQ(RefIdxIncrement(around.mb, around.neighbours, 1, 3), 0u);
            EXPECT_EQ(RefIdxIncrement(around.mb, around.neighbours, 0, 0), 0u);
        }
    }
}

TEST(H264Contexts, VerticalDifferencesScaleBetweenFieldAndFrame) {
    Around around;
    around.left.mvd[0][7][0] = 5;
    around.left.mvd[0][7][1] = 7;
    around.top.mvd[0][12][0] = 20;
    around.top.mvd[0][12][1] = 30;
    around.mb.mvd[0][0][1] = 9;
    const auto sums = [&](unsigned block) { return SumMvd(around.mb, around.neighbours, 0, block); };
    EXPECT_EQ(sums(4).x, 5u);
    EXPECT_EQ(sums(4).y, 7u + 9u);
    EXPECT_EQ(sums(0).x, 20u);
    EXPECT_EQ(sums(0).y, 30u);
    around.left.fieldMb = 1;
    EXPECT_EQ(sums(4).x, 5u);
    EXPECT_EQ(sums(4).y, 14u + 9u);
    around.left.fieldMb = 0;
    around.mb.fieldMb = 1;
    EXPECT_EQ(sums(4).y, 3u + 9u);
    EXPECT_EQ(sums(0).y, 15u);
}

/// Bits and counts of blocks against arrays with a border.
TEST(H264Contexts, BlocksSeeThoseBesideThem) {
    h264::Dice dice(7);
    for (int round = 0; round < 200; ++round) {
        unsigned bits[5][5] = {};
        unsigned counts[5][5] = {};  // Above 16: not there.
        H264CodedMap map;
        H264LevelCounts levels;
        unsigned topBits = 0;
        for (unsigned i = 0; i < 4; ++i) {
            topBits |= (bits[0][i + 1] = dice.Below(2)) << i;
            map.SetLeft(i, bits[i + 1][0] = dice.Below(2));
            counts[0][i + 1] = dice.Below(18);
            counts[i + 1][0] = dice.Below(18);
            const auto count = [&](unsigned value) {
                return value > 16 ? H264LevelCounts::kAbsent : static_cast<std::uint8_t>(value);
            };
            levels.SetTop(i, count(counts[0][i + 1]));
            levels.SetLeft(i, count(counts[i + 1][0]));
        }
        map.SetTop(topBits);
        for (unsigned row = 0; row < 4; ++row) {
            for (unsigned column = 0; column < 4; ++column) {
                EXPECT_EQ(map.Increment(row, column), bits[row + 1][column] + 2 * bits[row][column + 1]);
                const unsigned left = counts[row + 1][column];
                const unsigned top = counts[row][column + 1];
                const unsigned sum = (left > 16 ? 0 : left) + (top > 16 ? 0 : top);
                EXPECT_EQ(levels.Predict(row, column), left > 16 || top > 16 ? sum : (sum + 1) / 2);
                if ((bits[row + 1][column + 1] = dice.Below(2)) != 0) map.Set(row, column);
                levels.Set(row, column, counts[row + 1][column + 1] = dice.Below(17));
            }
        }
    }
}

TEST(H264Contexts, IntraModesTakeTheLesserNeighbour) {
    Around around;
    around.left.mbType = around.top.mbType = MB_INTRA_4X4;
    around.left.intraModes[3] = 8;
    around.top.intraModes[12] = 5;
    const auto predict = [&](unsigned block, bool constrained = false) {
        return PredictIntraMode(around.mb, around.neighbours, block, constrained);
    };
    EXPECT_EQ(predict(0), 5u);
    around.mb.intraModes[0] = 4;
    around.mb.intraModes[1] = 6;
    around.mb.intraModes[4] = 7;
    EXPECT_EQ(predict(5), 6u);
    // Another kind of macroblock counts as DC, an inter one under constrained prediction as none, which makes it DC.
    around.top.mbType = MB_P + 2;
    around.top.intraModes[12] = 2;
    EXPECT_EQ(predict(0), 2u);
    around.left.intraModes[3] = 1;
    EXPECT_EQ(predict(0), 1u);
    EXPECT_EQ(predict(0, true), 2u);
    around.Find(&around.left, nullptr);
    EXPECT_EQ(predict(0), 2u);
    EXPECT_EQ(predict(4), 0u);  // To the left 0, above 4.
}

/// Table 7-11 and Table 7-14 by rows, as the standard prints them.
TEST(H264Contexts, TypesAreThoseOfTheTables) {
    EXPECT_EQ(Intra16x16Mode(1), 0u);
    EXPECT_EQ(Intra16x16Pattern(1), 0u);
    EXPECT_EQ(Intra16x16Mode(12), 3u);
    EXPECT_EQ(Intra16x16Pattern(12), 0x20u);
    EXPECT_EQ(Intra16x16Mode(18), 1u);
    EXPECT_EQ(Intra16x16Pattern(18), 0x1Fu);
    EXPECT_EQ(Intra16x16Pattern(24), 0x2Fu);
    // B_L0_Bi_16x8, B_Bi_L1_8x16.
    EXPECT_EQ(kH264BTypes[12].shape, SHAPE_ROWS);
    EXPECT_TRUE(kH264BTypes[12].Uses(0, 0) && !kH264BTypes[12].Uses(0, 1));
    EXPECT_TRUE(kH264BTypes[12].Uses(1, 0) && kH264BTypes[12].Uses(1, 1));
    EXPECT_EQ(kH264BTypes[19].shape, SHAPE_COLUMNS);
    EXPECT_TRUE(kH264BTypes[19].Uses(0, 0) && kH264BTypes[19].Uses(0, 1));
    EXPECT_TRUE(!kH264BTypes[19].Uses(1, 0) && kH264BTypes[19].Uses(1, 1));
    // B_L1_4x8.
    EXPECT_EQ(kH264BSubTypes[7].shape, SHAPE_COLUMNS);
    EXPECT_TRUE(!kH264BSubTypes[7].Uses(0) && kH264BSubTypes[7].Uses(1));
}

}  // namespace
}  // namespace KorvaneSoftware
