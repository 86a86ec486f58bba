#include "deinterlace/video_interpolator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "support/features.h"
#include "support/picture.h"

namespace pixmorph_test {
namespace {

TestPicture Plane(std::uint32_t width, std::uint32_t height, Fill fill, std::uint32_t seed,
                  const PictureLayout& layout = {11, false, 3}) {
    TestPicture picture(km::FMT_Y400, width, height, layout);
    picture.Fill(fill, seed);
    return picture;
}

km::FieldInterpolationJob JobOf(TestPicture& dst, TestPicture& field, TestPicture& other, std::uint32_t weight) {
    return {dst.Plane(0).Base(),
            field.Plane(0).Base(),
            other.Plane(0).Base(),
            dst.Desc().width,
            dst.Desc().height,
            static_cast<std::int32_t>(dst.Plane(0).Stride()),
            weight};
}

int BlendSlowly(int field, int above, int below, int weight) {
    const int mean = (above + below + 1) / 2;
    return (field * weight + 128 + mean * (256 - weight)) / 256;
}

TEST(VideoInterpolator, MatchesTheFormula) {
    std::uint32_t seed = 1;
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t width : {1u, 15u, 16u, 33u, 130u})
            for (const std::uint32_t height : {1u, 2u, 7u})
                for (const int weight : {0, 1, 77, 128, 255, 256})
                    for (const bool negative : {false, true}) {
                        const PictureLayout layout{11, negative, 3};
                        TestPicture dst = Plane(width, height, Fill::Zero, 0, layout);
                        TestPicture field = Plane(width, height, Fill::Random, ++seed, layout);
                        TestPicture other = Plane(width, height, Fill::Random, ++seed, layout);
                        for (const bool top : {true, false}) {
                            const auto job = JobOf(dst, field, other, static_cast<std::uint32_t>(weight));
                            ASSERT_EQ(top ? km::CVideoInterpolator::InterpolateTopField(job)
                                          : km::CVideoInterpolator::InterpolateBottomField(job),
                                      km::IMG_OK);
                            const std::size_t copied = top ? 0 : height - 1;
                            for (std::size_t y = 0; y < height; ++y)
                                for (std::size_t x = 0; x < width; ++x) {
                                    const int own = field.Plane(0).Row(y)[x];
                                    const int expected =
                                        y == copied ? own
                                                    : BlendSlowly(own, other.Plane(0).Row(top ? y - 1 : y)[x],
                                                                  other.Plane(0).Row(top ? y : y + 1)[x], weight);
                                    ASSERT_EQ(dst.Plane(0).Row(y)[x], expected)
                                        << x << " " << y << " weight " << weight << " top " << top;
                                }
                            ASSERT_TRUE(dst.GuardsIntact());
                        }
                    }
    }
}

TEST(VideoInterpolator, FullWeightReproducesTheField) {
    TestPicture dst = Plane(50, 6, Fill::Zero, 0);
    TestPicture field = Plane(50, 6, Fill::Random, 1);
    TestPicture other = Plane(50, 6, Fill::Random, 2);
    ASSERT_EQ(km::CVideoInterpolator::InterpolateTopField(JobOf(dst, field, other, 256)), km::IMG_OK);
    EXPECT_EQ(dst.FirstDifference(field), "");
    dst.Fill(Fill::Zero, 0);
    ASSERT_EQ(km::CVideoInterpolator::InterpolateBottomField(JobOf(dst, field, other, 256)), km::IMG_OK);
    EXPECT_EQ(dst.FirstDifference(field), "");
}

TEST(VideoInterpolator, NoWeightTakesTheMeanRoundedUp) {
    TestPicture dst = Plane(20, 2, Fill::Zero, 0);
    TestPicture field = Plane(20, 2, Fill::Max, 0);
    TestPicture other = Plane(20, 2, Fill::Zero, 0);
    std::fill_n(other.Plane(0).Row(1), 20, std::uint8_t{1});
    ASSERT_EQ(km::CVideoInterpolator::InterpolateTopField(JobOf(dst, field, other, 0)), km::IMG_OK);
    EXPECT_EQ(dst.Plane(0).Row(0)[4], 255);
    EXPECT_EQ(dst.Plane(0).Row(1)[4], 1);
    ASSERT_EQ(km::CVideoInterpolator::InterpolateBottomField(JobOf(dst, field, other, 0)), km::IMG_OK);
    EXPECT_EQ(dst.Plane(0).Row(0)[4], 1);
    EXPECT_EQ(dst.Plane(0).Row(1)[4], 255);
}

TEST(VideoInterpolator, NothingToDo) {
    TestPicture dst = Plane(20, 2, Fill::Random, 1);
    TestPicture field = Plane(20, 2, Fill::Random, 2);
    const TestPicture before = dst;
    km::FieldInterpolationJob job = JobOf(dst, field, field, 100);
    job.height = 0;
    EXPECT_EQ(km::CVideoInterpolator::InterpolateTopField(job), km::IMG_OK);
    EXPECT_EQ(km::CVideoInterpolator::InterpolateBottomField(job), km::IMG_OK);
    job = JobOf(dst, field, field, 100);
    job.destination = nullptr;
    EXPECT_EQ(km::CVideoInterpolator::InterpolateTopField(job), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::CVideoInterpolator::InterpolateBottomField(job), km::IMG_E_NULL_ARG);
    job = JobOf(dst, field, field, 100);
    job.field = nullptr;
    EXPECT_EQ(km::CVideoInterpolator::InterpolateTopField(job), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::CVideoInterpolator::InterpolateBottomField(job), km::IMG_E_NULL_ARG);
    EXPECT_EQ(dst.FirstDifference(before), "");
}

TEST(VideoInterpolator, OneRowIsCopiedWithoutAnOtherField) {
    for (const bool top : {true, false}) {
        TestPicture dst = Plane(50, 1, Fill::Zero, 0);
        TestPicture field = Plane(50, 1, Fill::Random, 1);
        auto job = JobOf(dst, field, field, 77);
        job.otherField = nullptr;
        EXPECT_EQ(top ? km::CVideoInterpolator::InterpolateTopField(job)
                      : km::CVideoInterpolator::InterpolateBottomField(job),
                  km::IMG_OK);
        EXPECT_EQ(dst.FirstDifference(field), "");
        EXPECT_TRUE(dst.GuardsIntact());
    }
}

// A top field starts with the row that needs no neighbour, a bottom field ends with it.
TEST(VideoInterpolator, WithoutAnOtherFieldOnlyTheFirstRowOfATopFieldIsWritten) {
    TestPicture dst = Plane(50, 3, Fill::Random, 1);
    TestPicture field = Plane(50, 3, Fill::Random, 2);
    TestPicture expected = dst;
    auto job = JobOf(dst, field, field, 77);
    job.otherField = nullptr;
    EXPECT_EQ(km::CVideoInterpolator::InterpolateBottomField(job), km::IMG_E_NULL_ARG);
    EXPECT_EQ(dst.FirstDifference(expected), "");
    EXPECT_EQ(km::CVideoInterpolator::InterpolateTopField(job), km::IMG_E_NULL_ARG);
    std::copy_n(field.Plane(0).Row(0), 50, expected.Plane(0).Row(0));
    EXPECT_EQ(dst.FirstDifference(expected), "");
}

TEST(CombineImages, EveryFormatOfWholeBytes) {
    for (const std::uint32_t format :
         {+km::FMT_BGR, +km::FMT_BGRA, +km::FMT_UYVY, +km::FMT_YUY2, +km::FMT_YVYU, +km::FMT_Y400}) {
        TestPicture dst(format, 18, 5, {4, true, 0});
        TestPicture forward(format, 18, 5, {9, false, 1});
        TestPicture backward(format, 18, 5, {2, false, 5});
        forward.Fill(Fill::Random, 1);
        backward.Fill(Fill::Random, 2);
        ASSERT_EQ(km::CVideoInterpolator::CombineImages(dst.Desc(), forward.Desc(), backward.Desc(), 100), km::IMG_OK);
        for (std::size_t y = 0; y < 5; ++y)
            for (std::size_t x = 0; x < dst.Plane(0).RowBytes(); ++x)
                ASSERT_EQ(dst.Plane(0).Row(y)[x],
                          (backward.Plane(0).Row(y)[x] * 156 + 128 + forward.Plane(0).Row(y)[x] * 100) / 256)
                    << format << " " << x << " " << y;
        ASSERT_TRUE(dst.GuardsIntact());
    }
}

TEST(CombineImages, Refusals) {
    TestPicture picture(km::FMT_Y400, 18, 4);
    const auto combine = [&](const km::ImageDescriptor& forward, const km::ImageDescriptor& backward) {
        return km::CVideoInterpolator::CombineImages(picture.Desc(), forward, backward, 100);
    };
    const auto changed = [&](auto change) {
        km::ImageDescriptor desc = picture.Desc();
        change(desc);
        return desc;
    };
    EXPECT_EQ(combine(picture.Desc(), picture.Desc()), km::IMG_OK);
    for (const auto& other : {changed([](auto& d) { d.format = km::FMT_BGR8; }), changed([](auto& d) { ++d.width; }),
                              changed([](auto& d) { --d.height; }), changed([](auto& d) { d.lumaExtraBits = 2; }),
                              changed([](auto& d) { d.chromaExtraBits = 2; })}) {
        EXPECT_EQ(combine(other, picture.Desc()), km::IMG_E_BAD_FORMAT);
        EXPECT_EQ(combine(picture.Desc(), other), km::IMG_E_BAD_FORMAT);
    }
    EXPECT_EQ(combine(changed([](auto& d) { d.colorMatrix = 1; }), picture.Desc()), km::IMG_OK);
    EXPECT_EQ(combine(changed([](auto& d) { d.planes[0] = nullptr; }), picture.Desc()), km::IMG_E_NULL_ARG);
    TestPicture planar(km::FMT_I420, 18, 4);
    EXPECT_EQ(km::CVideoInterpolator::CombineImages(planar.Desc(), planar.Desc(), planar.Desc(), 1), km::IMG_E_NO_PATH);
}

}  // namespace
}  // namespace pixmorph_test
