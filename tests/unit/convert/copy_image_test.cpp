#include "convert/copy_image.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/guard_page.h"
#include "support/picture.h"

namespace pixmorph_test {
namespace {

TEST(CopyImage, CopiesEveryFormatOfTheTable) {
    for (const km::FormatInfo& info : km::FormatInfoTable()) {
        if (info.id == 0) continue;
        for (const PictureLayout& layout : {PictureLayout{0, false, 0}, {24, false, 3}, {8, true, 0}}) {
            TestPicture src(info.id, 32, 8, layout);
            TestPicture dst(info.id, 32, 8, {16, false, 5});
            src.Fill(Fill::Random, info.id);
            ASSERT_EQ(km::CopyImage(dst.Desc(), src.Desc()), km::IMG_OK) << info.id;
            EXPECT_EQ(dst.FirstDifference(src), "") << info.id;
            EXPECT_TRUE(dst.GuardsIntact()) << info.id;
        }
    }
}

TEST(CopyImage, RefusesWhatDiffers) {
    TestPicture a(km::FMT_UYVY, 16, 4), wider(km::FMT_UYVY, 18, 4), taller(km::FMT_UYVY, 16, 6);
    TestPicture other(km::FMT_YUY2, 16, 4), otherAndWider(km::FMT_YUY2, 18, 4);
    EXPECT_EQ(km::CopyImage(wider.Desc(), a.Desc()), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(km::CopyImage(taller.Desc(), a.Desc()), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(km::CopyImage(other.Desc(), a.Desc()), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(km::CopyImage(otherAndWider.Desc(), a.Desc()), km::IMG_E_BAD_SIZE);
    km::ImageDescriptor empty = a.Desc();
    empty.planes[0] = nullptr;
    EXPECT_EQ(km::CopyImage(empty, a.Desc()), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::CopyImage(a.Desc(), empty), km::IMG_E_NULL_ARG);
    TestPicture unknown(km::FMT_P016, 16, 4);
    EXPECT_EQ(km::CopyImage(unknown.Desc(), unknown.Desc()), km::IMG_E_BAD_FORMAT);
}

// A picture of 4:2:0 with one plane given on each side, read from memory that ends with it.
TEST(CopyImage, DerivesPlanes) {
    GuardPageBuffer src(16 * 4 * 3 / 2);
    for (std::size_t i = 0; i < src.Size(); ++i) src.Data()[i] = static_cast<std::uint8_t>(3 * i);
    std::vector<std::uint8_t> dst(20 * 4 * 3 / 2, 1);
    km::ImageDescriptor from;
    from.format = km::FMT_I420;
    from.width = 16;
    from.height = 4;
    from.planes[0] = src.Data();
    from.strides[0] = 16;
    km::ImageDescriptor to = from;
    to.planes[0] = dst.data();
    to.strides[0] = 20;
    ASSERT_EQ(km::CopyImage(to, from), km::IMG_OK);
    EXPECT_EQ(to.planes[1], nullptr);
    for (int row = 0; row < 4; ++row)
        for (int x = 0; x < 20; ++x) EXPECT_EQ(dst[row * 20 + x], x < 16 ? (3 * (row * 16 + x)) & 255 : 1);
    for (int row = 0; row < 4; ++row)
        for (int x = 0; x < 10; ++x) EXPECT_EQ(dst[80 + row * 10 + x], x < 8 ? (3 * (64 + row * 8 + x)) & 255 : 1);
}

// Chroma of odd sizes is rounded down.
TEST(CopyImage, OddSizesCopyWholeSamplesOnly) {
    TestPicture src(km::FMT_I420, 7, 5), dst(km::FMT_I420, 7, 5, {3, false, 1});
    src.Fill(Fill::Random, 1);
    ASSERT_EQ(km::CopyImage(dst.Desc(), src.Desc()), km::IMG_OK);
    EXPECT_EQ(dst.Plane(1).RowBytes(), 3u);
    EXPECT_EQ(dst.Plane(1).Rows(), 2u);
    EXPECT_EQ(dst.FirstDifference(src), "");
    EXPECT_TRUE(dst.GuardsIntact());
}

TEST(CopyPlanes, FindsAMissingPlaneBeforeTheFirstIsWritten) {
    TestPicture src(km::FMT_Y444, 16, 4), dst(km::FMT_Y444, 16, 4);
    src.Fill(Fill::Random, 1);
    dst.Fill(Fill::Zero, 1);
    const TestPicture before = dst;
    km::ImageDescriptor lacking = src.Desc();
    lacking.planes[2] = nullptr;
    EXPECT_EQ(km::CopyPlanes(dst.Desc(), lacking), km::IMG_E_NULL_ARG);
    EXPECT_EQ(dst.FirstDifference(before), "");
    lacking.height = 0;
    EXPECT_EQ(km::CopyPlanes(dst.Desc(), lacking), km::IMG_OK);
    lacking.format = km::FMT_P016;
    EXPECT_EQ(km::CopyPlanes(dst.Desc(), lacking), km::IMG_E_BAD_FORMAT);
}

}  // namespace
}  // namespace pixmorph_test
