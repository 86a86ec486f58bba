#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "jpeg/jpeg_core.h"
#include "support/random.h"
#include "unit/jpeg/worked_blocks.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

struct alignas(64) Block {
    std::int16_t v[64];
};

testing::AssertionResult Same(const std::int16_t* expected, const std::int16_t* actual) {
    for (int i = 0; i < 64; ++i)
        if (expected[i] != actual[i])
            return testing::AssertionFailure() << "at " << i << ": " << expected[i] << ", not " << actual[i];
    return testing::AssertionSuccess();
}

TEST(JpegTransforms, WorkedBlocks) {
    km::InitBlockTransforms();
    for (const WorkedBlock& worked : kWorkedBlocks) {
        SCOPED_TRACE(worked.bits);
        km::QualityTables tables;
        km::MakeQualityTables(tables, worked.quality, km::DcRule::kAlwaysFour);
        Block block;
        std::copy_n(worked.samples, 64, block.v);
        km::FDCTBlocks(block.v, 1);
        EXPECT_TRUE(Same(worked.transformed, block.v));
        Block levels;
        const unsigned count =
            km::QuantiseBlock(levels.v, block.v, worked.chroma ? tables.chromaReciprocals : tables.lumaReciprocals);
        EXPECT_EQ(count, worked.count);
        EXPECT_TRUE(Same(worked.levels, levels.v));
        km::DequantiseBlocks(levels.v, worked.chroma ? tables.chromaQuantisers : tables.lumaQuantisers, 1);
        EXPECT_TRUE(Same(worked.dequantised, levels.v));
        km::InverseDCT(levels.v, count, 0);
        EXPECT_TRUE(Same(worked.decoded, levels.v));
    }
}

// A DCT in floating point: the direct transform is 16 times it, the inverse undoes that of dequantised coefficients.
void ExactDct(const double* in, double* out, bool inverse) {
    for (int u = 0; u < 8; ++u)
        for (int v = 0; v < 8; ++v) {
            double sum = 0;
            for (int x = 0; x < 8; ++x)
                for (int y = 0; y < 8; ++y) {
                    const int row = inverse ? x : u, column = inverse ? y : v;
                    const int line = inverse ? u : x, pixel = inverse ? v : y;
                    sum += in[8 * x + y] * (row == 0 ? std::sqrt(0.125) : 0.5) *
                           (column == 0 ? std::sqrt(0.125) : 0.5) *
                           std::cos((2 * line + 1) * row * std::numbers::pi / 16) *
                           std::cos((2 * pixel + 1) * column * std::numbers::pi / 16);
                }
            out[8 * u + v] = sum;
        }
}

TEST(JpegTransforms, StayNearTheExactTransform) {
    km::InitBlockTransforms();
    ByteGenerator generator(5);
    for (int round = 0; round < 200; ++round) {
        Block block;
        double samples[64], exact[64];
        for (int i = 0; i < 64; ++i) {
            block.v[i] = static_cast<std::int16_t>(round < 2 ? (round == 0 ? -128 : 127) : generator.Next() - 128);
            samples[i] = block.v[i];
        }
        ExactDct(samples, exact, false);
        km::FDCTBlocks(block.v, 1);
        for (int i = 0; i < 64; ++i) ASSERT_NEAR(block.v[i], 16 * exact[i], 10) << i;

        const unsigned count = static_cast<unsigned>(round) % 3 == 0 ? 64 : 10;
        double coefficients[64] = {}, back[64];
        Block decoded = {};
        for (unsigned k = 0; k < count; ++k) {
            const int position = km::kZigZag[k];
            coefficients[position] = decoded.v[position] =
                static_cast<std::int16_t>(std::lround(block.v[position] / 16.0));
        }
        ExactDct(coefficients, back, true);
        km::InverseDCT(decoded.v, count, 0);
        for (int i = 0; i < 64; ++i) ASSERT_NEAR(decoded.v[i], back[i], 1.5) << i;
    }
}

TEST(JpegTransforms, ShortCountsSpreadTheFirstValue) {
    for (const unsigned count : {0u, 1u}) {
        Block block = {{-472, 99, 99}};
        km::InverseDCT(block.v, count, 0);
        for (const std::int16_t value : block.v) ASSERT_EQ(value, -59);
    }
    Block scaled = {{100}};
    km::InverseDCT(scaled.v, 1, 2);
    EXPECT_EQ(scaled.v[63], 104 >> 5);
}

// Scaled so far that nothing is left, and values that overflow: no more is asked than that it is defined.
TEST(JpegTransforms, ExtremesAreDefined) {
    ByteGenerator generator(6);
    for (const unsigned count : {1u, 2u, 10u, 11u, 64u})
        for (const unsigned bits : {0u, 4u, 5u, 40u}) {
            Block block;
            for (std::int16_t& value : block.v) value = generator.Next() < 128 ? -32768 : 32767;
            km::InverseDCT(block.v, count, bits);
            if (bits > 4 && count > 10) {
                EXPECT_EQ(block.v[9], 0);
            }
        }
}

TEST(JpegTransforms, SeveralBlocksEachByItsCount) {
    Block blocks[3] = {{{80, 160, -80}}, {{80, 160, -80}}, {{80, 160, -80}}};
    Block each[3] = {blocks[0], blocks[1], blocks[2]};
    const std::uint8_t counts[3] = {1, 6, 64};
    km::InverseDCTBlocks(blocks[0].v, counts, 3);
    for (int i = 0; i < 3; ++i) {
        km::InverseDCT(each[i].v, counts[i], 0);
        EXPECT_TRUE(Same(each[i].v, blocks[i].v));
    }
    EXPECT_EQ(blocks[0].v[5], 10);
    EXPECT_NE(blocks[1].v[5], 10);
    km::ClearBlocks(blocks[0].v, 2);
    EXPECT_EQ(blocks[1].v[63], 0);
    EXPECT_NE(blocks[2].v[0], 0);
}

TEST(JpegTransforms, StoreOfAnMcu) {
    const km::CMCU mcu(6, 4);
    EXPECT_EQ(mcu.iAll, 6);
    EXPECT_EQ(mcu.iDCT, 4);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(mcu.blocks) % 64, 0u);
    EXPECT_EQ(mcu.Block(5) - mcu.blocks, 320);
    EXPECT_THROW(km::CMCU(0x7FFFFFFF, 1), std::exception);
}

}  // namespace
}  // namespace pixmorph_test
