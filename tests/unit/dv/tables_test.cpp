// Tables that are made from rules, against excerpts of the printed ones (IEC 61834-2, SMPTE 370M).
#include "dv/dv_tables.h"

#include <gtest/gtest.h>

#include <set>

namespace KorvaneSoftware {
namespace {

TEST(DvTables, ScansVisitEveryPositionInTheStandardsOrder) {
    const int scan88[] = {0, 1, 8, 16, 9, 2, 3, 10, 17, 24, 32, 25, 18, 11, 4, 5, 12, 19, 26, 33, 40, 48, 41, 34};
    const int scan248[] = {0, 32, 1, 33, 8, 40, 2, 34, 9, 41, 16, 48, 24, 56, 17, 49, 10, 42, 18, 50};
    for (std::size_t p = 0; p < std::size(scan88); ++p) EXPECT_EQ(dv_tables::kScans[DV_DCT_88][p], scan88[p]) << p;
    for (std::size_t p = 0; p < 16; ++p) EXPECT_EQ(dv_tables::kScans[DV_DCT_248][p], scan248[p]) << p;
    EXPECT_EQ(dv_tables::kScans[DV_DCT_248][18], 3);
    EXPECT_EQ(dv_tables::kScans[DV_DCT_248][61], 55);
    for (const DvScan& scan : dv_tables::kScans) {
        EXPECT_EQ(std::set<int>(scan.begin(), scan.end()).size(), kDvBlockValues);
        EXPECT_EQ(scan[63], 63);
    }
}

// An encoder of the family moves 2-4-8 coefficients so that the 8-8 scan reads them: both ways must agree.
TEST(DvTables, TheTwoScansFollowTheUsualPermutation) {
    const int permutation[] = {0,  32, 40, 2,  17, 49, 57, 26, 1,  8,  34, 56, 10, 25, 58, 27, 33, 9,  24, 42, 50, 19,
                               52, 59, 41, 48, 3,  18, 51, 20, 28, 47, 16, 35, 43, 12, 45, 60, 15, 22, 4,  11, 44, 13,
                               21, 39, 54, 23, 36, 5,  38, 53, 7,  29, 62, 55, 37, 6,  14, 46, 61, 30, 31, 63};
    for (std::size_t p = 0; p < kDvBlockValues; ++p)
        EXPECT_EQ(dv_tables::kScans[DV_DCT_248][p], permutation[dv_tables::kScans[DV_DCT_88][p]]) << p;
}

TEST(DvTables, WeightsFollowTheFormula) {
    const int row0[] = {8192, 16069, 15136, 14745, 14336, 13933, 12539, 11812};
    const int row7[] = {11812, 11585, 10913, 10630, 10335, 10045, 9040, 8516};
    const int inverse1[] = {16705, 17032, 18081, 18562, 19091, 19643, 21826, 23170};
    const int inverse7[] = {22725, 23170, 24598, 25251, 25972, 26722, 29692, 31521};
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(dv_tables::kWeights[DV_DCT_88][i], row0[i]);
        EXPECT_EQ(dv_tables::kWeights[DV_DCT_88][56 + i], row7[i]);
        EXPECT_EQ(dv_tables::kInverseWeights[DV_DCT_88][8 + i], inverse1[i]);
        EXPECT_EQ(dv_tables::kInverseWeights[DV_DCT_88][56 + i], inverse7[i]);
        // Rows 0, 2, 4 and 6, twice.
        for (std::size_t row = 0; row < 8; ++row) {
            if (row % 4 == 0 && i == 0) continue;
            const std::size_t whole = 16 * (row % 4) + i;
            EXPECT_EQ(dv_tables::kWeights[DV_DCT_248][8 * row + i], dv_tables::kWeights[DV_DCT_88][whole]);
            EXPECT_EQ(dv_tables::kInverseWeights[DV_DCT_248][8 * row + i],
                      dv_tables::kInverseWeights[DV_DCT_88][whole]);
        }
    }
    EXPECT_EQ(dv_tables::kWeights[DV_DCT_248][0], 8192);
    EXPECT_EQ(dv_tables::kWeights[DV_DCT_248][32], 16384);
    EXPECT_EQ(dv_tables::kInverseWeights[DV_DCT_248][32], 16384);
}

TEST(DvTables, StepsByClassNumberAndArea) {
    const struct {
        unsigned quantiserClass, number;
        int steps[4];
    } rows[] = {{0, 0, {2, 4, 4, 8}},    {0, 3, {2, 2, 4, 4}},   {0, 8, {1, 1, 1, 2}},  {0, 9, {1, 1, 1, 1}},
                {1, 0, {4, 8, 8, 16}},   {1, 5, {2, 2, 4, 4}},   {1, 12, {1, 1, 1, 1}}, {2, 0, {8, 8, 16, 16}},
                {2, 7, {2, 4, 4, 8}},    {2, 14, {1, 1, 1, 2}},  {2, 15, {1, 1, 1, 1}}, {3, 0, {16, 16, 32, 32}},
                {3, 2, {8, 16, 16, 32}}, {3, 4, {8, 8, 16, 16}}, {3, 13, {2, 2, 2, 4}}, {3, 15, {2, 2, 2, 2}}};
    const std::size_t first[] = {1, 6, 21, 43};
    const std::size_t last[] = {5, 20, 42, 63};
    for (const auto& row : rows)
        for (std::size_t area = 0; area < 4; ++area) {
            EXPECT_EQ(1 << dv_tables::StepShift(row.quantiserClass, row.number, first[area]), row.steps[area]);
            EXPECT_EQ(1 << dv_tables::StepShift(row.quantiserClass, row.number, last[area]), row.steps[area]);
        }
}

TEST(DvTables, HighDefinitionWeightsByNaturalPosition) {
    const DvFactors luma1080 = dv_tables::NaturalHdWeights(dv_tables::HdTable(1080, false));
    const DvFactors chroma1080 = dv_tables::NaturalHdWeights(dv_tables::HdTable(1080, true));
    const DvFactors luma720 = dv_tables::NaturalHdWeights(dv_tables::HdTable(720, false));
    const DvFactors chroma720 = dv_tables::NaturalHdWeights(dv_tables::HdTable(720, true));
    EXPECT_EQ(luma1080[0], 128);
    EXPECT_EQ(luma1080[18], 19);
    EXPECT_EQ(luma1080[63], 123);
    EXPECT_EQ(chroma1080[63], 246);
    EXPECT_EQ(luma720[57], 68);
    EXPECT_EQ(luma720[55], 232);
    EXPECT_EQ(chroma720[44], 172);
    EXPECT_EQ(chroma720[37], 192);
    // All tables but the last are symmetric.
    for (const DvFactors& weights : {luma1080, chroma1080, luma720})
        for (std::size_t row = 0; row < 8; ++row)
            for (std::size_t column = 0; column < row; ++column)
                EXPECT_EQ(weights[8 * row + column], weights[8 * column + row]) << row << ", " << column;
}

}  // namespace
}  // namespace KorvaneSoftware
