#include "h264/reconstruction/transforms.h"

#include <algorithm>
#include <vector>

#include "kernels/h264_check.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kChecked{&km::H264Add4x4Bytes,      &km::H264Add8x8Bytes,      &km::H264Add4x4DcBytes,
                           &km::H264Add8x8DcBytes,    &km::H264Add4x4Words,      &km::H264Add8x8Words,
                           &km::H264Add4x4DcWords,    &km::H264Add8x8DcWords,    &km::H264LumaDcBytes,
                           &km::H264ChromaDc2x2Bytes, &km::H264ChromaDc2x4Bytes, &km::H264LumaDcWords,
                           &km::H264ChromaDc2x2Words, &km::H264ChromaDc2x4Words};

// Basis functions of the two transforms, times 2 and times 8.
constexpr int kBasis4[4][4] = {{2, 2, 2, 2}, {2, 1, -1, -2}, {2, -2, -2, 2}, {1, -2, 2, -1}};
constexpr int kBasis8[8][8] = {{8, 8, 8, 8, 8, 8, 8, 8},     {12, 10, 6, 3, -3, -6, -10, -12},
                               {8, 4, -4, -8, -8, -4, 4, 8}, {10, -3, -12, -6, 6, 12, 3, -10},
                               {8, -8, -8, 8, 8, -8, -8, 8}, {6, -12, 3, 10, -10, -3, 12, -6},
                               {4, -8, 8, -4, -4, 8, -8, 4}, {3, -6, 10, -12, 12, -10, 6, -3}};

// One row or column by the equations of clause 8.5.12.2.
void SlowRow4(long long* w, int step) {
    const long long e = w[0] + w[2 * step], f = w[0] - w[2 * step];
    const long long g = (w[step] >> 1) - w[3 * step], h = w[step] + (w[3 * step] >> 1);
    w[0] = e + h;
    w[step] = f + g;
    w[2 * step] = f - g;
    w[3 * step] = e - h;
}

// Of clause 8.5.13.
void SlowRow8(long long* w, int step) {
    long long a[8], b[8], in[8];
    for (int i = 0; i < 8; ++i) in[i] = w[i * step];
    a[0] = in[0] + in[4];
    a[1] = -in[3] + in[5] - in[7] - (in[7] >> 1);
    a[2] = in[0] - in[4];
    a[3] = in[1] + in[7] - in[3] - (in[3] >> 1);
    a[4] = (in[2] >> 1) - in[6];
    a[5] = -in[1] + in[7] + in[5] + (in[5] >> 1);
    a[6] = in[2] + (in[6] >> 1);
    a[7] = in[3] + in[5] + in[1] + (in[1] >> 1);
    b[0] = a[0] + a[6];
    b[1] = a[1] + (a[7] >> 2);
    b[2] = a[2] + a[4];
    b[3] = a[3] + (a[5] >> 2);
    b[4] = a[2] - a[4];
    b[5] = (a[3] >> 2) - a[5];
    b[6] = a[0] - a[6];
    b[7] = a[7] - (a[1] >> 2);
    for (int i = 0; i < 4; ++i) {
        constexpr int kEven[4] = {0, 2, 4, 6}, kOdd[4] = {7, 5, 3, 1};
        w[i * step] = b[kEven[i]] + b[kOdd[i]];
        w[(7 - i) * step] = b[kEven[i]] - b[kOdd[i]];
    }
}

template <class Sample>
class H264Transforms : public ::testing::Test {
protected:
    using Coefficient = H264Coefficient<Sample>;

    template <class Slot>
    void CheckAddition(const Slot& slot, int size, bool dcOnly) {
        ForEachH264Form(slot, [&](auto* form) {
            ByteGenerator generator(5);
            for (const std::uint32_t depth : H264Depths<Sample>()) {
                for (int round = 0; round < 300; ++round) {
                    H264Picture<Sample> picture(round % 2 != 0);
                    picture.Fill(generator, depth);
                    const std::vector<Coefficient> coefficients = Coefficients(generator, size, depth, round % 4);
                    long long block[64];
                    std::copy(coefficients.begin(), coefficients.begin() + size * size, block);
                    if (dcOnly) std::fill(block + 1, block + size * size, 0);
                    for (int y = 0; y < size; ++y) (size == 4 ? SlowRow4 : SlowRow8)(block + y * size, 1);
                    for (int x = 0; x < size; ++x) (size == 4 ? SlowRow4 : SlowRow8)(block + x, size);
                    H264Picture<Sample> expected = picture;
                    for (int y = 0; y < size; ++y)
                        for (int x = 0; x < size; ++x)
                            *expected.At(x, y) = static_cast<Sample>(
                                ClipToDepth<Sample>(expected(x, y) + ((block[y * size + x] + 32) >> 6), depth));
                    form(picture.At(0, 0), picture.Stride(), coefficients.data(), depth);
                    ASSERT_TRUE(picture == expected) << "depth " << depth << ", round " << round;
                }
            }
        });
    }

    // Coefficients whose intermediate sums stay within what the standard allows.
    static std::vector<Coefficient> Coefficients(ByteGenerator& generator, int size, std::uint32_t depth, int kind) {
        std::vector<Coefficient> coefficients(64);
        const int range = kind == 0 ? 40 : (1 << (depth + 7)) / (size * size * 3);
        for (int i = 0; i < size * size; ++i) {
            const int value = static_cast<int>(generator.Below(static_cast<std::uint32_t>(2 * range + 1))) - range;
            coefficients[static_cast<std::size_t>(i)] =
                static_cast<Coefficient>(kind == 2 && i % 5 != 0 ? 0
                                         : kind == 3             ? (value < 0 ? -range : range)
                                                                 : value);
        }
        return coefficients;
    }
};

using Samples = ::testing::Types<std::uint8_t, std::uint16_t>;
TYPED_TEST_SUITE(H264Transforms, Samples);

TYPED_TEST(H264Transforms, AddsBlocksAsTheEquationsSay) {
    using Slots = km::TH264Transforms<TypeParam>;
    this->CheckAddition(Slots::kAdd4x4, 4, false);
    this->CheckAddition(Slots::kAdd8x8, 8, false);
    this->CheckAddition(Slots::kAdd4x4Dc, 4, true);
    this->CheckAddition(Slots::kAdd8x8Dc, 8, true);
}

// Where no shift truncates, the transform is a sum of its basis functions.
TYPED_TEST(H264Transforms, AddsTheBasisFunctions) {
    using Slots = km::TH264Transforms<TypeParam>;
    const auto check = [](const auto& slot, int size, auto basis, int scale) {
        ForEachH264Form(slot, [&](auto* form) {
            for (int u = 0; u < size; ++u) {
                for (int v = 0; v < size; ++v) {
                    H264Coefficient<TypeParam> coefficients[64] = {};
                    coefficients[u * size + v] = static_cast<H264Coefficient<TypeParam>>(-1024);
                    H264Picture<TypeParam> picture;
                    for (int y = 0; y < size; ++y)
                        for (int x = 0; x < size; ++x) *picture.At(x, y) = 100;
                    form(picture.At(0, 0), picture.Stride(), coefficients, 8);
                    for (int y = 0; y < size; ++y) {
                        for (int x = 0; x < size; ++x) {
                            const int sum = -1024 * basis(u, y) * basis(v, x) / (scale * scale);
                            ASSERT_EQ(picture(x, y), 100 + ((sum + 32) >> 6)) << u << ' ' << v << ' ' << x << ' ' << y;
                        }
                    }
                }
            }
        });
    };
    check(
        Slots::kAdd4x4, 4, [](int u, int i) { return kBasis4[u][i]; }, 2);
    check(
        Slots::kAdd8x8, 8, [](int u, int i) { return kBasis8[u][i]; }, 8);
}

TYPED_TEST(H264Transforms, FormsAgreeOnAnyCoefficients) {
    using Slots = km::TH264Transforms<TypeParam>;
    const auto check = [](const auto& slot) {
        ForEachVariant(slot, [](auto* variant, auto* plain) {
            ByteGenerator generator(6);
            for (const std::uint32_t depth : H264Depths<TypeParam>()) {
                for (int round = 0; round < 500; ++round) {
                    H264Coefficient<TypeParam> coefficients[64];
                    for (auto& value : coefficients) {
                        std::uint32_t bits = 0;
                        for (int i = 0; i < 4; ++i) bits = bits << 8 | generator.Next();
                        value = static_cast<H264Coefficient<TypeParam>>(bits);
                    }
                    H264Picture<TypeParam> expected;
                    expected.Fill(generator, depth);
                    H264Picture<TypeParam> actual = expected;
                    plain(expected.At(0, 0), expected.Stride(), coefficients, depth);
                    variant(actual.At(0, 0), actual.Stride(), coefficients, depth);
                    ASSERT_TRUE(actual == expected) << "depth " << depth << ", round " << round;
                }
            }
        });
    };
    check(Slots::kAdd4x4);
    check(Slots::kAdd8x8);
    check(Slots::kAdd4x4Dc);
    check(Slots::kAdd8x8Dc);
}

constexpr int kHadamard[4][4] = {{1, 1, 1, 1}, {1, 1, -1, -1}, {1, -1, -1, 1}, {1, -1, 1, -1}};
constexpr int kNormAdjust[6] = {10, 11, 13, 14, 16, 18};

// A c B with A of `rows` and B of `columns` as clauses 8.5.10 and 8.5.11.1 say.
std::vector<long long> SlowHadamard(const std::vector<long long>& c, int rows, int columns) {
    const auto a = [](int size, int i, int j) { return size == 2 ? (i * j != 0 ? -1 : 1) : kHadamard[i][j]; };
    std::vector<long long> f(c.size());
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            for (int i = 0; i < rows; ++i)
                for (int j = 0; j < columns; ++j)
                    f[static_cast<std::size_t>(y * columns + x)] +=
                        a(rows, y, i) * c[static_cast<std::size_t>(i * columns + j)] * a(columns, j, x);
    return f;
}

TYPED_TEST(H264Transforms, TransformsDc) {
    using Slots = km::TH264Transforms<TypeParam>;
    const auto check = [](const auto& slot, int rows, int columns) {
        ForEachH264Form(slot, [&](auto* form) {
            ByteGenerator generator(7);
            const int topQp = sizeof(TypeParam) == 1 ? 51 : 87;
            for (int qp = 0; qp <= topQp + (rows > columns ? 3 : 0); ++qp) {
                for (const int weight : {16, 7, 255}) {
                    const int scale = kNormAdjust[qp % 6] * weight;
                    // So small that the results fit into the coefficients' type.
                    const int range = std::max(1, (sizeof(TypeParam) == 1 ? 1 << 10 : 1 << 24) / scale >> (qp / 6));
                    std::vector<H264Coefficient<TypeParam>> actual;
                    std::vector<long long> c;
                    for (int i = 0; i < rows * columns; ++i) {
                        c.push_back(static_cast<int>(generator.Below(2 * static_cast<std::uint32_t>(range) + 1)) -
                                    range);
                        actual.push_back(static_cast<H264Coefficient<TypeParam>>(c.back()));
                    }
                    form(actual.data(), scale, qp);
                    const std::vector<long long> f = SlowHadamard(c, rows, columns);
                    for (std::size_t i = 0; i < f.size(); ++i) {
                        long long expected = 0;
                        if (rows == 2)
                            expected = (f[i] * scale * (1LL << (qp / 6))) >> 5;
                        else if (qp >= 36)
                            expected = f[i] * scale * (1LL << (qp / 6 - 6));
                        else
                            expected = (f[i] * scale + (1LL << (5 - qp / 6))) >> (6 - qp / 6);
                        ASSERT_EQ(actual[i], static_cast<H264Coefficient<TypeParam>>(expected))
                            << "qp " << qp << ", weight " << weight << ", entry " << i;
                    }
                }
            }
        });
    };
    check(Slots::kLumaDc, 4, 4);
    check(Slots::kChromaDc2x2, 2, 2);
    check(Slots::kChromaDc2x4, 4, 2);
}

// At QP 28 with flat scaling: LevelScale is 16 * 16, the sum 5, (5 * 256 + 2) >> 2 = 320 by luma's rule, and
// ((5 * 256) << 4) >> 5 = 640 by that of 4:2:0 chroma.
TYPED_TEST(H264Transforms, WorkedDc) {
    using Slots = km::TH264Transforms<TypeParam>;
    H264Coefficient<TypeParam> luma[16] = {5}, chroma[4] = {5};
    Slots::kLumaDc(luma, 256, 28);
    Slots::kChromaDc2x2(chroma, 256, 28);
    for (const int value : luma) EXPECT_EQ(value, 320);
    for (const int value : chroma) EXPECT_EQ(value, 640);
}

}  // namespace
}  // namespace pixmorph_test
