#include "jpeg/quality.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

TEST(JpegQuality, FactorByRange) {
    EXPECT_EQ(km::QualityFactor(0), 10000000u);
    EXPECT_EQ(km::QualityFactor(1), 10000000u);
    EXPECT_EQ(km::QualityFactor(4999), 2000u);
    EXPECT_EQ(km::QualityFactor(5000), 2000u);
    EXPECT_EQ(km::QualityFactor(8000), 800u);
    EXPECT_EQ(km::QualityFactor(10000), 0u);
    EXPECT_EQ(km::QualityFactor(10001), 0u);
}

// First and last lines of the tables at 5000 and 8000.
TEST(JpegQuality, Tables) {
    km::QualityTables tables;
    km::MakeQualityTables(tables, 5000, km::DcRule::kAlwaysFour);
    const int luma5000[8] = {4, 2, 2, 3, 4, 6, 9, 12};
    const int chroma5000[8] = {56, 58, 63, 72, 83, 102, 128, 162};
    EXPECT_TRUE(std::equal(luma5000, luma5000 + 8, tables.lumaQuantisers));
    EXPECT_TRUE(std::equal(chroma5000, chroma5000 + 8, tables.chromaQuantisers + 56));
    km::MakeQualityTables(tables, 8000, km::DcRule::kAlwaysFour);
    const int luma8000[8] = {512, 2048, 2048, 2048, 1024, 1024, 682, 409};
    const int chroma8000[8] = {89, 89, 81, 70, 62, 49, 40, 31};
    EXPECT_TRUE(std::equal(luma8000, luma8000 + 8, tables.lumaReciprocals));
    EXPECT_TRUE(std::equal(chroma8000, chroma8000 + 8, tables.chromaReciprocals + 56));
}

TEST(JpegQuality, ExtremesAndDc) {
    km::QualityTables tables;
    for (const int quality : {0, 10000, 20000, -1}) {
        SCOPED_TRACE(quality);
        km::MakeQualityTables(tables, quality, km::DcRule::kAlwaysFour);
        const int others = quality == 0 ? 255 : 1;
        for (int i = 1; i < 64; ++i) {
            ASSERT_EQ(tables.lumaQuantisers[i], others);
            ASSERT_EQ(tables.chromaQuantisers[i], others);
        }
        for (const auto* table : {tables.lumaQuantisers, tables.chromaQuantisers}) EXPECT_EQ(table[0], 4);
        for (const auto* table : {tables.lumaReciprocals, tables.chromaReciprocals}) EXPECT_EQ(table[0], 512);
        km::MakeQualityTables(tables, quality, km::DcRule::kAtMostFour);
        EXPECT_EQ(tables.lumaQuantisers[0], quality == 0 ? 4 : 1);
        EXPECT_EQ(tables.lumaReciprocals[0], quality == 0 ? 512 : 2048);
    }
}

}  // namespace
}  // namespace pixmorph_test
