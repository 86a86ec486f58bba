#include "iframe/encoder_tables.h"

#include <gtest/gtest.h>

#include <iterator>

namespace pixmorph_test {
namespace {

namespace mpeg = KorvaneSoftware::iframe;

struct ElementaryRow {
    int quality;
    unsigned type;
    unsigned code;
};

TEST(IFrameTables, ElementaryScales) {
    constexpr ElementaryRow kRows[] = {{-5, 0, 14},  {0, 0, 14},    {499, 0, 14},  {500, 0, 13},   {1000, 1, 16},
                                       {4999, 1, 9}, {5000, 1, 8},  {7999, 1, 3},  {8000, 1, 2},   {8500, 1, 2},
                                       {9000, 1, 1}, {10000, 1, 1}, {10001, 1, 1}, {1 << 30, 1, 1}};
    for (const ElementaryRow& row : kRows) {
        mpeg::EncoderTables tables;
        mpeg::SetElementaryTables(tables, row.quality);
        EXPECT_EQ(tables.scaleType, row.type) << row.quality;
        EXPECT_EQ(tables.scaleCode, row.code) << row.quality;
    }
}

TEST(IFrameTables, ElementaryReciprocals) {
    mpeg::EncoderTables tables;
    mpeg::SetElementaryTables(tables, 8000);
    constexpr std::uint16_t kFirstTwoRows[16] = {2048, 1024, 862, 744, 630, 606, 564, 481,
                                                 1024, 1024, 744, 682, 606, 564, 481, 442};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(tables.reciprocals[i], kFirstTwoRows[i]) << i;
    EXPECT_EQ(tables.reciprocals[63], 32768 / (83 * 2));
    // The coarsest scale is 28.
    mpeg::SetElementaryTables(tables, 0);
    EXPECT_EQ(tables.reciprocals[63], 32768 / (83 * 28));
    EXPECT_EQ(tables.reciprocals[0], 2048);
}

TEST(IFrameTables, AdvancedMatrix) {
    mpeg::EncoderTables tables;
    mpeg::SetAdvancedTables(tables, 5000);
    EXPECT_EQ(tables.scaleType, 1u);
    EXPECT_EQ(tables.scaleCode, 12u);
    EXPECT_EQ(tables.matrix[0], 8);
    EXPECT_EQ(tables.matrix[1], 3);  // (16 * 1600 + 5000) / 10000
    mpeg::SetAdvancedTables(tables, 500);
    constexpr std::uint16_t kRow[8] = {94, 96, 100, 106, 116, 127, 143, 163};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(tables.matrix[56 + i], kRow[i]);
    EXPECT_EQ(tables.reciprocals[63], 32768 / (163 * 16));
    for (const int quality : {-1, 0, 1}) {
        mpeg::SetAdvancedTables(tables, quality);
        for (int i = 1; i < 64; ++i) EXPECT_EQ(tables.matrix[i], 255);
    }
    for (const int quality : {10000, 20000}) {
        mpeg::SetAdvancedTables(tables, quality);
        for (int i = 1; i < 64; ++i) EXPECT_EQ(tables.matrix[i], 1);
        EXPECT_EQ(tables.reciprocals[9], 2048);
    }
}

}  // namespace
}  // namespace pixmorph_test
