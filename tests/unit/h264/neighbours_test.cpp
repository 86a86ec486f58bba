// Neighbours of macroblocks against the table of the standard, looked up sample by sample.
#include "h264/macroblock/neighbours.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "h264/macroblock/decompressor.h"

namespace KorvaneSoftware {
namespace {

/// Which pair, or macroblock, a place lies in.
enum Pair { PAIR_CURRENT, PAIR_A, PAIR_B, PAIR_C, PAIR_D, PAIR_NONE };

struct Place {
    Pair pair = PAIR_NONE;
    bool bottom = false;
    int y = 0;
};

/// ITU-T H.264 Table 6-4 for luma samples: where (x, y), seen from a macroblock of an MBAFF pair, lies. `isField` says of
/// which pairs, as Pair.
Place TableOfMbaff(bool field, bool bottom, int x, int y, const std::array<bool, 5>& isField) {
    if (y > 15) return {};
    if (y < 0) {
        if (x > 15) {
            if (!field) return bottom ? Place{} : Place{PAIR_C, true, y};
            if (bottom) return {PAIR_C, true, y};
            return isField[PAIR_C] ? Place{PAIR_C, false, y} : Place{PAIR_C, true, 2 * y};
        }
        if (x >= 0) {
            if (!field) return bottom ? Place{PAIR_CURRENT, false, y} : Place{PAIR_B, true, y};
            if (bottom) return {PAIR_B, true, y};
            return isField[PAIR_B] ? Place{PAIR_B, false, y} : Place{PAIR_B, true, 2 * y};
        }
        if (!field) {
            if (!bottom) return {PAIR_D, true, y};
            return isField[PAIR_A] ? Place{PAIR_A, true, 7} : Place{PAIR_A, false, y};
        }
        if (bottom) return {PAIR_D, true, y};
        return isField[PAIR_D] ? Place{PAIR_D, false, y} : Place{PAIR_D, true, 2 * y};
    }
    if (x > 15) return {};
    if (x >= 0) return {PAIR_CURRENT, bottom, y};
    if (field == isField[PAIR_A]) return {PAIR_A, bottom, y};
    if (!field) {
        const int row = bottom ? y + 16 : y;
        return {PAIR_A, row % 2 != 0, row / 2};
    }
    const int row = 2 * y + (bottom ? 1 : 0);
    return {PAIR_A, row >= 16, row % 16};
}

/// A picture of three by two pairs, the current one in the middle below.
class Pairs {
public:
    static constexpr std::size_t kStride = 5;

    Pairs() : records_(4 * kStride) {}
    H264MacroblockRecord* At(Pair pair) {
        switch (pair) {
            case PAIR_A:
                return &records_[2 * kStride];
            case PAIR_B:
                return &records_[1];
            case PAIR_C:
                return &records_[2];
            case PAIR_D:
                return &records_[0];
            default:
                return &records_[2 * kStride + 1];
        }
    }
    void SetField(Pair pair, bool field) { At(pair)[0].fieldMb = At(pair)[kStride].fieldMb = field ? 1 : 0; }
    const H264MacroblockRecord* Of(const Place& place) {
        return place.pair == PAIR_NONE ? nullptr : At(place.pair) + (place.bottom ? kStride : 0);
    }

private:
    std::vector<H264MacroblockRecord> records_;
};

int BlockRow(int y) { return (y + 16) % 16 / 4; }

/// All neighbours that prediction asks for, of one macroblock of a pair.
void ExpectTable(Pairs& pairs, bool field, bool bottom, const std::array<bool, 5>& isField) {
    const H264NeighbourPairs around = {pairs.At(PAIR_A), pairs.At(PAIR_B), pairs.At(PAIR_C), pairs.At(PAIR_D)};
    H264Neighbours found;
    FindNeighboursMbaff(around, pairs.At(PAIR_CURRENT), Pairs::kStride, bottom, field, found);

    const Place top = TableOfMbaff(field, bottom, 0, -1, isField);
    EXPECT_EQ(found.top, pairs.Of(top));
    EXPECT_EQ(BlockRow(top.y), 3);
    const Place topRight = TableOfMbaff(field, bottom, 16, -1, isField);
    EXPECT_EQ(found.topRight, pairs.Of(topRight));
    for (unsigned row = 0; row < 4; ++row) {
        SCOPED_TRACE(testing::Message() << "row " << row);
        const Place left = TableOfMbaff(field, bottom, -1, static_cast<int>(4 * row), isField);
        EXPECT_EQ(found.Left(row).mb, pairs.Of(left));
        EXPECT_EQ(found.Left(row).block, static_cast<unsigned>(4 * BlockRow(left.y) + 3));
        const Place corner = TableOfMbaff(field, bottom, -1, static_cast<int>(4 * row) - 1, isField);
        EXPECT_EQ(found.corners[row].mb, pairs.Of(corner));
        EXPECT_EQ(found.corners[row].block, static_cast<unsigned>(4 * BlockRow(corner.y) + 3));
    }
}

TEST(H264Neighbours, OfPairsFollowTheTable) {
    for (unsigned mask = 0; mask < 32; ++mask) {
        std::array<bool, 5> isField;
        Pairs pairs;
        for (unsigned i = 0; i < 5; ++i) {
            isField[i] = (mask >> i & 1) != 0;
            pairs.SetField(static_cast<Pair>(i), isField[i]);
        }
        for (const bool bottom : {false, true}) {
            SCOPED_TRACE(testing::Message() << "fields " << mask << " bottom " << bottom);
            ExpectTable(pairs, isField[PAIR_CURRENT], bottom, isField);
        }
    }
}

/// Chroma of 4:2:0 has the table of its own height: rows 0 and 4 of eight.
TEST(H264Neighbours, LeftChromaFollowsTheTable) {
    for (unsigned mask = 0; mask < 4; ++mask) {
        const bool field = (mask & 1) != 0;
        const bool leftField = (mask & 2) != 0;
        Pairs pairs;
        pairs.SetField(PAIR_A, leftField);
        for (const bool bottom : {false, true}) {
            const H264NeighbourPairs around = {pairs.At(PAIR_A), nullptr, nullptr, nullptr};
            H264Neighbours found;
            FindNeighboursMbaff(around, pairs.At(PAIR_CURRENT), Pairs::kStride, bottom, field, found);
            for (unsigned row = 0; row < 2; ++row) {
                const int y = static_cast<int>(4 * row);
                Place left = {PAIR_A, bottom, y};
                if (!field && leftField) left = {PAIR_A, false, (y + (bottom ? 8 : 0)) / 2};
                if (field && !leftField) left = {PAIR_A, y >= 4, (2 * y + (bottom ? 1 : 0)) % 8};
                const H264ChromaPlace place = found.LeftChroma<1>(row);
                EXPECT_EQ(place.mb, pairs.Of(left));
                EXPECT_EQ(place.block, static_cast<unsigned>(left.y / 4 * 2 + 1));
            }
            for (unsigned row = 0; row < 4; ++row) {
                const H264BlockPlace luma = found.Left(row);
                const H264ChromaPlace place = found.LeftChroma<2>(row);
                EXPECT_EQ(place.mb, luma.mb);
                EXPECT_EQ(place.block, luma.block / 4 * 2 + 1);
            }
        }
    }
}

TEST(H264Neighbours, OfPairsMayBeAbsent) {
    Pairs pairs;
    for (const bool field : {false, true}) {
        for (const bool bottom : {false, true}) {
            H264Neighbours found;
            FindNeighboursMbaff({}, pairs.At(PAIR_CURRENT), Pairs::kStride, bottom, field, found);
            const bool inPair = bottom && !field;
            EXPECT_EQ(found.top, inPair ? pairs.At(PAIR_CURRENT) : nullptr);
            EXPECT_EQ(found.topRight, nullptr);
            for (unsigned row = 0; row < 4; ++row) {
                EXPECT_EQ(found.Left(row).mb, nullptr);
                EXPECT_EQ(found.corners[row].mb, nullptr);
            }
        }
    }
}

TEST(H264Neighbours, OfSingleMacroblocks) {
    std::array<H264MacroblockRecord, 4> records;
    H264Neighbours found;
    FindNeighbours({&records[0], &records[1], &records[2], &records[3]}, found);
    EXPECT_EQ(found.top, &records[1]);
    EXPECT_EQ(found.topRight, &records[2]);
    EXPECT_EQ(found.corners[0].mb, &records[3]);
    EXPECT_EQ(found.corners[0].block, 15u);
    for (unsigned row = 0; row < 4; ++row) {
        EXPECT_EQ(found.Left(row).mb, &records[0]);
        EXPECT_EQ(found.Left(row).block, 4 * row + 3);
        if (row == 0) continue;
        EXPECT_EQ(found.corners[row].mb, &records[0]);
        EXPECT_EQ(found.corners[row].block, 4 * row - 1);
    }
    FindNeighbours({}, found);
    EXPECT_EQ(found.top, nullptr);
    EXPECT_EQ(found.Left(2).mb, nullptr);
    EXPECT_EQ(found.corners[0].mb, nullptr);
    EXPECT_EQ(found.corners[3].mb, nullptr);
}

/// What belongs to a slice that begins in the middle of a row.
class SliceOf : public CH264Decompressor {
public:
    /// Whether each neighbour of a macroblock, or of a pair, is in the slice.
    std::array<bool, 4> Around(std::uint32_t first, std::uint32_t at, std::uint32_t width, std::uint32_t rows) {
        records_.resize(width * (at / width + rows));
        cursor_.firstMb = first;
        cursor_.position = at;
        cursor_.widthInMbs = width;
        cursor_.rowHeight = rows;
        cursor_.mbX = at % width;
        cursor_.mbRow = at / width;
        cursor_.record = &records_[at];
        cursor_.recordStride = width;
        const H264NeighbourPairs around = PairsAround(rows);
        const H264MacroblockRecord* const here = &records_[at];
        EXPECT_TRUE(around.left == nullptr || around.left == here - 1);
        EXPECT_TRUE(around.top == nullptr || around.top == here - rows * width);
        EXPECT_TRUE(around.topRight == nullptr || around.topRight == here - rows * width + 1);
        EXPECT_TRUE(around.topLeft == nullptr || around.topLeft == here - rows * width - 1);
        return {around.left != nullptr, around.top != nullptr, around.topRight != nullptr, around.topLeft != nullptr};
    }

private:
    std::vector<H264MacroblockRecord> records_;
};

TEST(H264Neighbours, BelongToTheSlice) {
    for (const std::uint32_t rows : {1u, 2u}) {
        for (const std::uint32_t width : {1u, 2u, 3u, 5u}) {
            for (std::uint32_t first = 0; first < 4 * rows * width; ++first) {
                if (first / width % rows != 0) continue;
                for (std::uint32_t at = first; at < 6 * rows * width; ++at) {
                    if (at / width % rows != 0) continue;
                    const int x = static_cast<int>(at % width);
                    const int y = static_cast<int>(at / width);
                    const auto isIn = [&](int dx, int dy) {
                        const int place = (y + dy * static_cast<int>(rows)) * static_cast<int>(width) + x + dx;
                        return x + dx >= 0 && x + dx < static_cast<int>(width) && y + dy >= 0 &&
                               place >= static_cast<int>(first);
                    };
                    const std::array<bool, 4> expected = {isIn(-1, 0), isIn(0, -1), isIn(1, -1), isIn(-1, -1)};
                    ASSERT_EQ(SliceOf().Around(first, at, width, rows), expected)
                        << "first " << first << " at " << at << " width " << width << " rows " << rows;
                }
            }
        }
    }
}

}  // namespace
}  // namespace KorvaneSoftware
