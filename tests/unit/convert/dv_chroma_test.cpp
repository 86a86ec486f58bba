// The 4:1:1 groups of Y41P and the 4:2:0 chroma of DV12 spread to 4:2:2.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "convert/conversion_dispatch.h"
#include "support/picture.h"

namespace pixmorph_test {
namespace {

struct PackedOrder {
    std::uint32_t format;
    int luma, u, v;
};
constexpr PackedOrder kOrders[] = {{km::FMT_UYVY, 1, 0, 2}, {km::FMT_YUY2, 0, 1, 3}, {km::FMT_YVYU, 0, 3, 1}};

// Two groups: U 10, 21 and 30, 41; V 100, 103 and 110, 113; Y 1 to 16.
TEST(Y41P, ChromaIsSpreadOverPairs) {
    TestPicture src(km::FMT_Y41P, 16, 1);
    const std::uint8_t bytes[24] = {10, 1, 100, 2,  21, 3,  103, 4,  5,  6,  7,  8,
                                    30, 9, 110, 10, 41, 11, 113, 12, 13, 14, 15, 16};
    std::memcpy(src.Plane(0).Row(0), bytes, 24);
    const int u[8] = {10, 16, 21, 26, 30, 36, 41, 41};
    const int v[8] = {100, 102, 103, 107, 110, 112, 113, 113};
    for (const PackedOrder& order : kOrders) {
        TestPicture dst(order.format, 16, 1, {8, false, 0});
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
        for (int x = 0; x < 16; ++x) EXPECT_EQ(dst.Plane(0).Row(0)[2 * x + order.luma], x + 1);
        for (int k = 0; k < 8; ++k) {
            EXPECT_EQ(dst.Plane(0).Row(0)[4 * k + order.u], u[k]) << k;
            EXPECT_EQ(dst.Plane(0).Row(0)[4 * k + order.v], v[k]) << k;
        }
        EXPECT_TRUE(dst.GuardsIntact());
    }
    TestPicture blocks(km::FMT_Y16, 16, 1);
    ASSERT_EQ(km::ImageConversionDispatch(blocks.Desc(), src.Desc()), km::IMG_OK);
    for (int x = 0; x < 16; ++x) EXPECT_EQ(blocks.Plane(0).Row(0)[x], x + 1);
    for (int k = 0; k < 8; ++k) {
        EXPECT_EQ(blocks.Plane(0).Row(0)[16 + k], u[k]);
        EXPECT_EQ(blocks.Plane(0).Row(0)[24 + k], v[k]);
    }
}

// Chroma lines U 10, 21, 31 and V 100, 103, 105. Line by line, U is exact on odd lines and V on even ones.
TEST(Dv12, ChromaLinesAreSitedAsInDv) {
    TestPicture src(km::FMT_DV12, 16, 6);
    src.Plane(0).Fill(Fill::Random, 6);
    const std::uint8_t u[3] = {10, 21, 31};
    const std::uint8_t v[3] = {100, 103, 105};
    for (int row = 0; row < 3; ++row) {
        for (int x = 0; x < 16; x += 2) {
            src.Plane(1).Row(row)[x] = u[row];
            src.Plane(1).Row(row)[x + 1] = v[row];
        }
    }
    const int expectedU[6] = {10, 10, 16, 21, 26, 31};
    const int expectedV[6] = {100, 102, 103, 104, 105, 105};
    for (const PackedOrder& order : kOrders) {
        TestPicture dst(order.format, 16, 6, {8, false, 0});
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
        for (int y = 0; y < 6; ++y) {
            for (int x = 0; x < 16; ++x) EXPECT_EQ(dst.Plane(0).Row(y)[2 * x + order.luma], src.Plane(0).Row(y)[x]);
            for (int k = 0; k < 8; ++k) {
                EXPECT_EQ(dst.Plane(0).Row(y)[4 * k + order.u], expectedU[y]) << y;
                EXPECT_EQ(dst.Plane(0).Row(y)[4 * k + order.v], expectedV[y]) << y;
            }
        }
        EXPECT_TRUE(dst.GuardsIntact());
    }
    TestPicture blocks(km::FMT_Y16, 16, 6);
    ASSERT_EQ(km::ImageConversionDispatch(blocks.Desc(), src.Desc()), km::IMG_OK);
    for (int y = 0; y < 6; ++y) {
        EXPECT_EQ(blocks.Plane(0).Row(y)[16 + 3], expectedU[y]);
        EXPECT_EQ(blocks.Plane(0).Row(y)[24 + 3], expectedV[y]);
    }
}

TEST(Dv12, APictureOfTwoLinesIsNotFiltered) {
    TestPicture src(km::FMT_DV12, 16, 2), dst(km::FMT_UYVY, 16, 2);
    src.Fill(Fill::Random, 2);
    ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
    for (int y = 0; y < 2; ++y)
        for (int i = 0; i < 16; ++i) EXPECT_EQ(dst.Plane(0).Row(y)[2 * i], src.Plane(1).Row(0)[i]);
}

// Read alone, the luma-and-chroma rule of V in the middle of a picture, with distinct samples along the line.
TEST(Dv12, EverySampleComesFromItsOwnColumn) {
    TestPicture src(km::FMT_DV12, 48, 8, {16, false, 0}), dst(km::FMT_YUY2, 48, 8);
    src.Fill(Fill::Random, 31);
    ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
    const auto chroma = [&](int line, int byte) { return static_cast<int>(src.Plane(1).Row(line)[byte]); };
    for (int y = 1; y < 7; ++y) {
        for (int k = 0; k < 24; ++k) {
            const int i = (y - 1) / 2;
            const bool isOdd = y % 2 == 1;
            const int meanU = (chroma(i, 2 * k) + 1 + chroma(i + 1, 2 * k)) / 2;
            const int meanV = (chroma(i, 2 * k + 1) + 1 + chroma(i + 1, 2 * k + 1)) / 2;
            EXPECT_EQ(dst.Plane(0).Row(y)[4 * k + 1], isOdd ? chroma(i, 2 * k) : meanU) << y;
            EXPECT_EQ(dst.Plane(0).Row(y)[4 * k + 3], isOdd ? meanV : chroma(i + 1, 2 * k + 1)) << y;
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
