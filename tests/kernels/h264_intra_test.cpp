#include <initializer_list>

#include "h264/reconstruction/intra_prediction.h"
#include "kernels/h264_check.h"

namespace pixmorph_test {
namespace {

const ChecksSlots k4x4Bytes(km::H264Intra4x4Bytes), k4x4Words(km::H264Intra4x4Words);
const ChecksSlots k8x8Bytes(km::H264Intra8x8Bytes), k8x8Words(km::H264Intra8x8Words);
const ChecksSlots k16x16Bytes(km::H264Intra16x16Bytes), k16x16Words(km::H264Intra16x16Words);
const ChecksSlots kChroma420Bytes(km::H264IntraChroma8x8Bytes), kChroma420Words(km::H264IntraChroma8x8Words);
const ChecksSlots kChroma422Bytes(km::H264IntraChroma8x16Bytes), kChroma422Words(km::H264IntraChroma8x16Words);

bool Has(std::uint32_t neighbours, std::uint32_t which) { return (neighbours & which) == which; }

// p[x, y] of clauses 8.3.1 and 8.3.2 about a block, filtered for 8x8.
struct Neighbourhood {
    int size;
    std::uint32_t neighbours;
    int top[16] = {}, left[8] = {}, corner = 0;

    int operator()(int x, int y) const {
        if (y == -1) return x < 0 ? corner : top[x];
        EXPECT_EQ(x, -1);
        return left[y];
    }
    bool Top() const { return Has(neighbours, km::NEIGHBOUR_TOP); }
    bool Left() const { return Has(neighbours, km::NEIGHBOUR_LEFT); }
    bool Corner() const { return Has(neighbours, km::NEIGHBOUR_TOP_LEFT); }

    template <class Sample>
    Neighbourhood(const H264Picture<Sample>& picture, int blockSize, std::uint32_t mask)
        : size(blockSize), neighbours(mask) {
        for (int i = 0; i < 2 * size; ++i)
            top[i] = picture(i < size || Has(mask, km::NEIGHBOUR_TOP_RIGHT) ? i : size - 1, -1);
        for (int i = 0; i < size; ++i) left[i] = picture(-1, i);
        corner = picture(-1, -1);
        if (size != 8) return;
        const Neighbourhood p = *this;
        // Equations of clause 8.3.2.2.1.
        if (Top()) {
            top[0] = Corner() ? (p(-1, -1) + 2 * p(0, -1) + p(1, -1) + 2) >> 2 : (3 * p(0, -1) + p(1, -1) + 2) >> 2;
            for (int x = 1; x < 15; ++x) top[x] = (p(x - 1, -1) + 2 * p(x, -1) + p(x + 1, -1) + 2) >> 2;
            top[15] = (p(14, -1) + 3 * p(15, -1) + 2) >> 2;
        }
        if (Corner()) {
            if (Top() && Left())
                corner = (p(0, -1) + 2 * p(-1, -1) + p(-1, 0) + 2) >> 2;
            else if (Top())
                corner = (3 * p(-1, -1) + p(0, -1) + 2) >> 2;
            else if (Left())
                corner = (3 * p(-1, -1) + p(-1, 0) + 2) >> 2;
        }
        if (Left()) {
            left[0] = Corner() ? (p(-1, -1) + 2 * p(-1, 0) + p(-1, 1) + 2) >> 2 : (3 * p(-1, 0) + p(-1, 1) + 2) >> 2;
            for (int y = 1; y < 7; ++y) left[y] = (p(-1, y - 1) + 2 * p(-1, y) + p(-1, y + 1) + 2) >> 2;
            left[7] = (p(-1, 6) + 3 * p(-1, 7) + 2) >> 2;
        }
    }
};

// Equations of clauses 8.3.1.2.1 to 8.3.1.2.9 and 8.3.2.2.2 to 8.3.2.2.10.
int SlowBlock(const Neighbourhood& p, std::uint32_t mode, int x, int y, std::uint32_t depth) {
    const int n = p.size;
    const bool needsTop = mode == km::INTRA_BLOCK_VERTICAL || mode == km::INTRA_BLOCK_DIAGONAL_DOWN_LEFT ||
                          mode == km::INTRA_BLOCK_VERTICAL_LEFT;
    const bool needsLeft = mode == km::INTRA_BLOCK_HORIZONTAL || mode == km::INTRA_BLOCK_HORIZONTAL_UP;
    const bool needsAll = mode == km::INTRA_BLOCK_DIAGONAL_DOWN_RIGHT || mode == km::INTRA_BLOCK_VERTICAL_RIGHT ||
                          mode == km::INTRA_BLOCK_HORIZONTAL_DOWN;
    if ((needsTop && !p.Top()) || (needsLeft && !p.Left()) || (needsAll && !(p.Top() && p.Left() && p.Corner())))
        mode = km::INTRA_BLOCK_DC;
    const auto three = [](int a, int b, int c) { return (a + 2 * b + c + 2) >> 2; };
    switch (mode) {
        case km::INTRA_BLOCK_VERTICAL:
            return p(x, -1);
        case km::INTRA_BLOCK_HORIZONTAL:
            return p(-1, y);
        case km::INTRA_BLOCK_DC: {
            int sum = 0;
            for (int i = 0; i < n; ++i) sum += (p.Top() ? p(i, -1) : 0) + (p.Left() ? p(-1, i) : 0);
            const int count = (p.Top() ? n : 0) + (p.Left() ? n : 0);
            return count == 0 ? 1 << (depth - 1) : (sum + count / 2) / count;
        }
        case km::INTRA_BLOCK_DIAGONAL_DOWN_LEFT:
            if (x == n - 1 && y == n - 1) return (p(2 * n - 2, -1) + 3 * p(2 * n - 1, -1) + 2) >> 2;
            return three(p(x + y, -1), p(x + y + 1, -1), p(x + y + 2, -1));
        case km::INTRA_BLOCK_DIAGONAL_DOWN_RIGHT:
            if (x > y) return three(p(x - y - 2, -1), p(x - y - 1, -1), p(x - y, -1));
            if (x < y) return three(y - x == 1 ? p(-1, -1) : p(-1, y - x - 2), p(-1, y - x - 1), p(-1, y - x));
            return three(p(0, -1), p(-1, -1), p(-1, 0));
        case km::INTRA_BLOCK_VERTICAL_RIGHT: {
            const int z = 2 * x - y, i = x - (y >> 1);
            if (z >= 0 && z % 2 == 0) return (p(i - 1, -1) + p(i, -1) + 1) >> 1;
            if (z >= 0) return three(p(i - 2, -1), p(i - 1, -1), p(i, -1));
            if (z == -1) return three(p(-1, 0), p(-1, -1), p(0, -1));
            return three(p(-1, y - 2 * x - 1), p(-1, y - 2 * x - 2), p(-1, y - 2 * x - 3));
        }
        case km::INTRA_BLOCK_HORIZONTAL_DOWN: {
            const int z = 2 * y - x, i = y - (x >> 1);
            if (z >= 0 && z % 2 == 0) return (p(-1, i - 1) + p(-1, i) + 1) >> 1;
            if (z >= 0) return three(p(-1, i - 2), p(-1, i - 1), p(-1, i));
            if (z == -1) return three(p(-1, 0), p(-1, -1), p(0, -1));
            return three(p(x - 2 * y - 1, -1), p(x - 2 * y - 2, -1), p(x - 2 * y - 3, -1));
        }
        case km::INTRA_BLOCK_VERTICAL_LEFT: {
            const int i = x + (y >> 1);
            return y % 2 == 0 ? (p(i, -1) + p(i + 1, -1) + 1) >> 1 : three(p(i, -1), p(i + 1, -1), p(i + 2, -1));
        }
        default: {
            const int z = x + 2 * y, i = y + (x >> 1);
            if (z > 2 * n - 3) return p(-1, n - 1);
            if (z == 2 * n - 3) return (p(-1, n - 2) + 3 * p(-1, n - 1) + 2) >> 2;
            return z % 2 == 0 ? (p(-1, i) + p(-1, i + 1) + 1) >> 1 : three(p(-1, i), p(-1, i + 1), p(-1, i + 2));
        }
    }
}

enum class Kind { Dc, Vertical, Horizontal, Plane };

// Equations of clauses 8.3.3 and 8.3.4.
template <class Sample>
int SlowMacroblock(const H264Picture<Sample>& p, Kind kind, int width, int height, std::uint32_t neighbours, int x,
                   int y, std::uint32_t depth) {
    const bool top = Has(neighbours, km::NEIGHBOUR_TOP), left = Has(neighbours, km::NEIGHBOUR_LEFT);
    if (kind == Kind::Vertical && top) return p(x, -1);
    if (kind == Kind::Horizontal && left) return p(-1, y);
    if (kind == Kind::Plane && top && left && Has(neighbours, km::NEIGHBOUR_TOP_LEFT)) {
        const int xCF = width == 16 ? 4 : 0, yCF = height == 16 ? 4 : 0;
        int h = 0, v = 0;
        for (int i = 0; i <= 3 + xCF; ++i) h += (i + 1) * (p(4 + xCF + i, -1) - p(2 + xCF - i, -1));
        for (int i = 0; i <= 3 + yCF; ++i) v += (i + 1) * (p(-1, 4 + yCF + i) - p(-1, 2 + yCF - i));
        const int a = 16 * (p(-1, height - 1) + p(width - 1, -1));
        const int b = ((34 - 29 * (width == 16 ? 1 : 0)) * h + 32) >> 6;
        const int c = ((34 - 29 * (height == 16 ? 1 : 0)) * v + 32) >> 6;
        return ClipToDepth<Sample>((a + b * (x - 3 - xCF) + c * (y - 3 - yCF) + 16) >> 5, depth);
    }
    const int size = width == 16 ? 16 : 4, xO = x / size * size, yO = y / size * size;
    bool useTop = top, useLeft = left;
    if (width == 8) {
        useLeft = Has(neighbours, y < height / 2 ? km::NEIGHBOUR_LEFT_UPPER : km::NEIGHBOUR_LEFT_LOWER);
        if (xO > 0 && yO == 0 && useTop) useLeft = false;
        if (xO == 0 && yO > 0 && useLeft) useTop = false;
    }
    int sum = 0, count = 0;
    for (int i = 0; i < size; ++i) {
        if (useTop) sum += p(xO + i, -1), ++count;
        if (useLeft) sum += p(-1, yO + i), ++count;
    }
    return count == 0 ? 1 << (depth - 1) : (sum + count / 2) / count;
}

template <class Sample>
class H264Intra : public ::testing::Test {
protected:
    template <class Slot, class Expected>
    static void Check(const Slot& slot, int width, int height, Expected expectedAt) {
        ForEachH264Form(slot, [&](auto* form) {
            ByteGenerator generator(21);
            for (const std::uint32_t depth : H264Depths<Sample>()) {
                for (std::uint32_t neighbours = 0; neighbours < 32; ++neighbours) {
                    for (int round = 0; round < 6; ++round) {
                        H264Picture<Sample> actual(round % 2 != 0);
                        if (round < 3)
                            actual.Fill(generator, depth, round == 0 ? 12 : 0);
                        else
                            actual.FillExtreme(generator, depth);
                        H264Picture<Sample> expected = actual;
                        for (int y = 0; y < height; ++y)
                            for (int x = 0; x < width; ++x)
                                *expected.At(x, y) = static_cast<Sample>(expectedAt(actual, neighbours, x, y, depth));
                        form(actual.At(0, 0), actual.Stride(), neighbours, depth);
                        ASSERT_TRUE(actual == expected) << "depth " << depth << ", neighbours " << neighbours;
                    }
                }
            }
        });
    }
    template <class Table>
    static void CheckBlocks(const Table& table, int size) {
        for (std::uint32_t mode = 0; mode < km::INTRA_BLOCK_MODES; ++mode)
            Check(table[mode], size, size,
                  [&](const H264Picture<Sample>& picture, std::uint32_t neighbours, int x, int y, std::uint32_t depth) {
                      return SlowBlock(Neighbourhood(picture, size, neighbours), mode, x, y, depth);
                  });
    }
    template <class Table>
    static void CheckMacroblocks(const Table& table, std::initializer_list<Kind> kinds, int width, int height) {
        std::size_t mode = 0;
        for (const Kind kind : kinds)
            Check(table[mode++], width, height,
                  [&](const H264Picture<Sample>& picture, std::uint32_t neighbours, int x, int y, std::uint32_t depth) {
                      return SlowMacroblock(picture, kind, width, height, neighbours, x, y, depth);
                  });
    }
};

using Samples = ::testing::Types<std::uint8_t, std::uint16_t>;
TYPED_TEST_SUITE(H264Intra, Samples);

TYPED_TEST(H264Intra, BlocksAreTheStandards) {
    this->CheckBlocks(km::TH264IntraKernels<TypeParam>::k4x4, 4);
    this->CheckBlocks(km::TH264IntraKernels<TypeParam>::k8x8, 8);
}

TYPED_TEST(H264Intra, MacroblocksAreTheStandards) {
    using Slots = km::TH264IntraKernels<TypeParam>;
    this->CheckMacroblocks(Slots::k16x16, {Kind::Vertical, Kind::Horizontal, Kind::Dc, Kind::Plane}, 16, 16);
    this->CheckMacroblocks(Slots::kChroma8x8, {Kind::Dc, Kind::Horizontal, Kind::Vertical, Kind::Plane}, 8, 8);
    this->CheckMacroblocks(Slots::kChroma8x16, {Kind::Dc, Kind::Horizontal, Kind::Vertical, Kind::Plane}, 8, 16);
}

// Neighbours that rise by 2 a column and 3 a row go on so.
TYPED_TEST(H264Intra, PlaneGoesOn) {
    H264Picture<TypeParam> picture;
    for (int i = -1; i < 16; ++i) {
        *picture.At(i, -1) = static_cast<TypeParam>(50 + 2 * i);
        *picture.At(-1, i) = static_cast<TypeParam>(48 + 3 * (i + 1));
    }
    km::TH264IntraKernels<TypeParam>::k16x16[km::INTRA_16X16_PLANE](
        picture.At(0, 0), picture.Stride(), km::NEIGHBOUR_LEFT | km::NEIGHBOUR_TOP | km::NEIGHBOUR_TOP_LEFT, 8);
    // H = 2 * 2 * 204 = 816, b = (5 * 816 + 32) >> 6 = 64; V = 1224, c = 96; a = 16 * (96 + 80) = 2816.
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) EXPECT_EQ(picture(x, y), (2816 + 64 * (x - 7) + 96 * (y - 7) + 16) >> 5);
}

}  // namespace
}  // namespace pixmorph_test
