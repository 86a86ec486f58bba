// The 2-4-8 transforms against their definition in floating point.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "dv/dv_kernels.h"
#include "jpeg/block_transforms.h"
#include "support/random.h"

namespace KorvaneSoftware {
namespace {

double Basis(int n, int k, int x) {
    const double scale = k == 0 ? std::sqrt(1.0 / n) : std::sqrt(2.0 / n);
    return scale * std::cos((2 * x + 1) * k * std::numbers::pi / (2 * n));
}

// Value of coefficient (half, k, column frequency) at a line and column of the block.
double Basis248(int half, int k, int u, int line, int x) {
    const double sign = half == 1 && line % 2 == 1 ? -1 : 1;
    return sign * std::numbers::sqrt2 / 2 * Basis(4, k, line / 2) * Basis(8, u, x);
}

template <class At>
double Sum(At at) {
    double sum = 0;
    for (int i = 0; i < 8; ++i)
        for (int j = 0; j < 8; ++j) sum += at(i, j);
    return sum;
}

TEST(Dv248, DirectTransformIsSixteenTimesTheOrthonormalOne) {
    InitBlockTransforms();
    pixmorph_test::ByteGenerator random(3);
    for (int round = 0; round < 50; ++round) {
        alignas(64) std::int16_t samples[64], block[64];
        for (std::int16_t& sample : samples)
            sample = static_cast<std::int16_t>(round == 0 ? 127 : static_cast<int>(random.Below(256)) - 128);
        FDCT248Columns(block, samples, 1);
        FDCTRows(block, 1);
        for (int row = 0; row < 8; ++row)
            for (int u = 0; u < 8; ++u) {
                const double exact = 16 * Sum([&](int line, int x) {
                                         return samples[8 * line + x] * Basis248(row / 4, row % 4, u, line, x);
                                     });
                ASSERT_NEAR(block[8 * row + u], exact, 8) << "row " << row << ", column " << u;
            }
    }
}

TEST(Dv248, InverseTransformRoundsTheExactOne) {
    pixmorph_test::ByteGenerator random(4);
    double worst = 0;
    for (int round = 0; round < 400; ++round) {
        alignas(64) std::int16_t block[64];
        const std::uint32_t density = 1 + random.Below(64);
        for (std::int16_t& value : block)
            value =
                static_cast<std::int16_t>(random.Below(64) < density ? static_cast<int>(random.Below(200)) - 100 : 0);
        std::vector<double> exact(64);
        for (int line = 0; line < 8; ++line)
            for (int x = 0; x < 8; ++x)
                exact[static_cast<std::size_t>(8 * line + x)] =
                    Sum([&](int row, int u) { return block[8 * row + u] * Basis248(row / 4, row % 4, u, line, x); });
        InverseDCT248(block, 64);
        for (std::size_t i = 0; i < 64; ++i) worst = std::max(worst, std::abs(block[i] - exact[i]));
    }
    EXPECT_LT(worst, 0.55);
}

TEST(Dv248, ADcValueAloneGivesItsEighthRounded) {
    for (const int dc : {-1020, -12, -4, 0, 3, 4, 12, 1016}) {
        alignas(64) std::int16_t block[64] = {};
        block[0] = static_cast<std::int16_t>(dc);
        InverseDCT248(block, 1);
        for (const std::int16_t value : block) ASSERT_EQ(value, (dc + 4) >> 3);
    }
}

TEST(Dv100, DivisionRoundsToTheNearestLevel) {
    // The divisor's multiplier has 15 bits: whole multiples are exact, halves may fall to either side.
    for (const std::uint8_t base : dv_tables::kHdSteps)
        for (unsigned step = base; step <= 8u * base; step *= 2) {
            alignas(64) std::int16_t coded[64] = {};
            std::uint8_t levels[64];
            for (int level = -255; level <= 255; ++level) {
                const int value = level * 16 * static_cast<int>(step);
                if (std::abs(value) > 32000) continue;
                for (const int offset : {-7, 0, 7}) {
                    coded[5] = static_cast<std::int16_t>(value + offset * static_cast<int>(step));
                    const std::uint64_t mask = QuantiseHdBlock(levels, coded, step);
                    ASSERT_EQ(int{levels[5]}, std::abs(level)) << "step " << step << ", offset " << offset;
                    ASSERT_EQ(mask, level != 0 ? std::uint64_t{1} << 5 : 0);
                }
            }
        }
}

}  // namespace
}  // namespace KorvaneSoftware
