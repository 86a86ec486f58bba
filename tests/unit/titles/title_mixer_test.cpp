#include "titles/title_mixer.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "foundation/sync.h"
#include "support/features.h"
#include "support/picture.h"
#include "unit/titles/title_reference.h"

namespace pixmorph_test {
namespace {

using Operation = km::Status(const km::ImageDescriptor&, const km::ConstImageDescriptor&, std::uint32_t) noexcept;

constexpr std::uint32_t kSources[] = {km::FMT_BGRA, km::FMT_BGR, km::FMT_UYVY, km::FMT_YUY2, km::FMT_YVYU};
constexpr std::uint32_t kFrames[] = {km::FMT_UYVY, km::FMT_YUY2};
// Those above 255 are not sensible, but they are not refused: their products wrap.
constexpr std::uint32_t kRegionAlphas[] = {0, 1, 127, 128, 254, 255, 256, 511, 70000, 0x7FFFFFFF, 0xFFFFFFFF};
constexpr std::uint32_t kWidths[] = {2, 4, 6, 14, 16, 18, 34, 50, 66, 130};
constexpr PictureLayout kLayouts[] = {{0, false, 0}, {20, false, 4}, {6, true, 2}};

km::Status ToImage(const km::ImageDescriptor& image, const km::ConstImageDescriptor& title, std::uint32_t) noexcept {
    return km::TitleToStraightImage(image, title);
}

Operation* FunctionOf(TitleOperation operation) {
    switch (operation) {
        case TitleOperation::Move:
            return km::PutImageIntoTitle;
        case TitleOperation::NotPremultiplied:
            return km::PutImageIntoNPTitle;
        case TitleOperation::Add:
            return km::AddImageBeneathTitle;
        default:
            return ToImage;
    }
}

// Runs `check(width, layout, fill, alpha, seed)` over all shapes, at every feature level.
template <class Check>
void ForEachShape(Check check) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        SCOPED_TRACE(level);
        std::uint32_t seed = 1;
        for (const std::uint32_t width : kWidths)
            for (const PictureLayout& layout : kLayouts)
                for (const Fill fill : {Fill::Random, Fill::Extremes}) {
                    const std::uint32_t alpha = kRegionAlphas[seed % std::size(kRegionAlphas)];
                    check(width, layout, fill, alpha, seed++);
                    if (::testing::Test::HasFatalFailure()) return;
                }
    }
}

void CheckTitle(TitleOperation operation, std::uint32_t source) {
    SCOPED_TRACE(source);
    ForEachShape(
        [&](std::uint32_t width, const PictureLayout& layout, Fill fill, std::uint32_t alpha, std::uint32_t seed) {
            TestPicture image(source, width, 3, layout, static_cast<std::uint16_t>(seed % 4));
            TestPicture title(km::FMT_BGRA, width, 3, layout);
            image.Fill(fill, seed);
            title.Fill(Fill::Random, seed + 1000);
            TestPicture expected = title;
            ExpectTitle(operation, expected, image, alpha);
            ASSERT_EQ(FunctionOf(operation)(title.Desc(), image.Desc(), alpha), km::IMG_OK);
            ASSERT_EQ(title.FirstDifference(expected), "") << width << " wide, alpha " << alpha << " seed " << seed;
            ASSERT_TRUE(title.GuardsIntact());
            ASSERT_TRUE(image.GuardsIntact());
        });
}

void CheckFrame(bool add, std::uint32_t frameFormat, std::uint32_t source) {
    SCOPED_TRACE(source);
    ForEachShape(
        [&](std::uint32_t width, const PictureLayout& layout, Fill fill, std::uint32_t alpha, std::uint32_t seed) {
            TestPicture image(source, width, 3, layout);
            TestPicture frame(frameFormat, width, 3, layout, static_cast<std::uint16_t>(seed % 4));
            image.Fill(fill, seed);
            frame.Fill(seed % 2 == 0 ? Fill::Random : Fill::Extremes, seed + 1000);
            TestPicture expected = frame;
            ExpectFrame(add, expected, image, alpha);
            ASSERT_EQ((add ? km::AddImageOntoFrame : km::MoveImageOntoFrame)(frame.Desc(), image.Desc(), alpha),
                      km::IMG_OK);
            ASSERT_EQ(frame.FirstDifference(expected), "") << width << " wide, alpha " << alpha << " seed " << seed;
            ASSERT_TRUE(frame.GuardsIntact());
        });
}

TEST(TitleMixer, FirstLayerFromEverySource) {
    for (const std::uint32_t source : kSources) CheckTitle(TitleOperation::Move, source);
}

TEST(TitleMixer, TitleThatIsNotPremultipliedFromEverySource) {
    for (const std::uint32_t source : kSources)
        if (source != km::FMT_BGR) CheckTitle(TitleOperation::NotPremultiplied, source);
}

TEST(TitleMixer, LayerBeneathFromEverySource) {
    for (const std::uint32_t source : kSources) CheckTitle(TitleOperation::Add, source);
}

TEST(TitleMixer, TitleToStraightImage) { CheckTitle(TitleOperation::ToImage, km::FMT_BGRA); }

TEST(TitleMixer, ImageReplacesFrame) {
    for (const std::uint32_t frame : kFrames)
        for (const std::uint32_t source : kSources) CheckFrame(false, frame, source);
}

TEST(TitleMixer, ImageMixesIntoFrame) {
    for (const std::uint32_t frame : kFrames)
        for (const std::uint32_t source : kSources) CheckFrame(true, frame, source);
}

// Every colour byte with every alpha, at each region alpha that matters for rounding.
TEST(TitleMixer, EveryColourWithEveryAlpha) {
    TestPicture image(km::FMT_BGRA, 256, 256);
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int colour = 0; colour < 256; ++colour) {
            std::uint8_t* const p = image.Plane(0).Row(alpha) + 4 * colour;
            p[0] = static_cast<std::uint8_t>(colour);
            p[1] = static_cast<std::uint8_t>(255 - colour);
            p[2] = static_cast<std::uint8_t>(colour ^ 0x55);
            p[3] = static_cast<std::uint8_t>(alpha);
        }
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const TitleOperation operation :
             {TitleOperation::Move, TitleOperation::NotPremultiplied, TitleOperation::Add, TitleOperation::ToImage}) {
            for (const std::uint32_t regionAlpha : {0u, 77u, 255u}) {
                TestPicture title(km::FMT_BGRA, 256, 256);
                title.Fill(Fill::Random, regionAlpha);
                TestPicture expected = title;
                ExpectTitle(operation, expected, image, regionAlpha);
                ASSERT_EQ(FunctionOf(operation)(title.Desc(), image.Desc(), regionAlpha), km::IMG_OK);
                ASSERT_EQ(title.FirstDifference(expected), "") << static_cast<int>(operation) << ' ' << regionAlpha;
            }
        }
    }
}

TEST(TitleMixer, PicturesLargerThanTheCacheGiveTheSameBytes) {
    // More bytes than half of any level-2 cache that GetCacheSize could report here.
    const std::uint32_t width = 510;
    const auto height = static_cast<std::uint32_t>(km::GetCacheSize() / 2 / (width * 6) + 8);
    for (const std::uint32_t source : kSources) {
        for (const int offset : {0, 4}) {
            TestPicture image(source, width, height, {8, false, 0});
            image.Fill(Fill::Random, 5);
            for (const TitleOperation operation : {TitleOperation::Move, TitleOperation::Add}) {
                TestPicture title(km::FMT_BGRA, width, height, {8, false, offset});
                title.Fill(Fill::Random, 6);
                TestPicture expected = title;
                ExpectTitle(operation, expected, image, 201);
                ASSERT_EQ(FunctionOf(operation)(title.Desc(), image.Desc(), 201), km::IMG_OK);
                ASSERT_EQ(title.FirstDifference(expected), "") << source << ' ' << static_cast<int>(operation);
                ASSERT_TRUE(title.GuardsIntact());
            }
            for (const bool add : {false, true}) {
                TestPicture frame(km::FMT_UYVY, width, height, {8, false, offset});
                frame.Fill(Fill::Random, 7);
                TestPicture expected = frame;
                ExpectFrame(add, expected, image, 201);
                ASSERT_EQ((add ? km::AddImageOntoFrame : km::MoveImageOntoFrame)(frame.Desc(), image.Desc(), 201),
                          km::IMG_OK);
                ASSERT_EQ(frame.FirstDifference(expected), "") << source;
                ASSERT_TRUE(frame.GuardsIntact());
            }
        }
    }
}

TEST(TitleMixer, SourceAndDestinationMayBeOnePicture) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t width : {2u, 6u, 18u, 34u, 66u, 150u}) {
            for (const TitleOperation operation : {TitleOperation::Move, TitleOperation::NotPremultiplied,
                                                   TitleOperation::Add, TitleOperation::ToImage}) {
                TestPicture title(km::FMT_BGRA, width, 3, {8, true, 4});
                title.Fill(Fill::Random, width);
                TestPicture expected = title;
                ExpectTitle(operation, expected, title, 99);
                ASSERT_EQ(FunctionOf(operation)(title.Desc(), title.Desc(), 99), km::IMG_OK);
                ASSERT_EQ(title.FirstDifference(expected), "") << width << ' ' << static_cast<int>(operation);
            }
            for (const std::uint32_t format : kFrames) {
                for (const bool add : {false, true}) {
                    TestPicture frame(format, width, 3, {8, false, 4});
                    frame.Fill(Fill::Random, width);
                    TestPicture expected = frame;
                    ExpectFrame(add, expected, frame, 99);
                    ASSERT_EQ((add ? km::AddImageOntoFrame : km::MoveImageOntoFrame)(frame.Desc(), frame.Desc(), 99),
                              km::IMG_OK);
                    ASSERT_EQ(frame.FirstDifference(expected), "") << width << ' ' << format;
                }
            }
        }
    }
}

TEST(TitleMixer, OddWidths) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t width : {1u, 3u, 5u, 17u, 33u, 65u}) {
            for (const std::uint32_t source : {+km::FMT_BGRA, +km::FMT_BGR}) {
                TestPicture image(source, width, 2, {7, false, 1});
                image.Fill(Fill::Random, width);
                TestPicture title(km::FMT_BGRA, width, 2, {5, false, 1});
                title.Fill(Fill::Random, 3);
                TestPicture expectedTitle = title;
                ExpectTitle(TitleOperation::Add, expectedTitle, image, 180);
                ASSERT_EQ(km::AddImageBeneathTitle(title.Desc(), image.Desc(), 180), km::IMG_OK);
                ASSERT_EQ(title.FirstDifference(expectedTitle), "") << width << ' ' << source;
                ASSERT_TRUE(title.GuardsIntact());
                // The last pixel of the row has no partner and stays.
                for (const bool add : {false, true}) {
                    TestPicture frame(km::FMT_UYVY, width, 2, {5, false, 1});
                    frame.Fill(Fill::Random, 4);
                    TestPicture expected = frame;
                    ExpectFrame(add, expected, image, 180);
                    ASSERT_EQ((add ? km::AddImageOntoFrame : km::MoveImageOntoFrame)(frame.Desc(), image.Desc(), 180),
                              km::IMG_OK);
                    ASSERT_EQ(frame.FirstDifference(expected), "") << width << ' ' << source;
                    ASSERT_TRUE(frame.GuardsIntact());
                }
            }
        }
    }
}

// One pixel each; numbers worked out by hand.
std::array<std::uint8_t, 4> OnePixel(TitleOperation operation, std::array<std::uint8_t, 4> title,
                                     std::array<std::uint8_t, 4> image, std::uint32_t alpha) {
    km::ImageDescriptor dst{{km::FMT_BGRA, 1, 1}};
    km::ImageDescriptor src = dst;
    dst.planes[0] = title.data();
    src.planes[0] = image.data();
    EXPECT_EQ(FunctionOf(operation)(dst, src, alpha), km::IMG_OK);
    return title;
}

using Pixel = std::array<std::uint8_t, 4>;

TEST(TitleMixer, OpaqueLayerAtFullOpacityLosesOneStep) {
    // 255 * 256 = 65280; 255 * 65280 >> 16 = 254, 128 * 65280 >> 16 = 127, 1 * 65280 >> 16 = 0.
    EXPECT_EQ(OnePixel(TitleOperation::Move, {}, {255, 128, 1, 255}, 255), (Pixel{254, 127, 0, 255}));
    EXPECT_EQ(OnePixel(TitleOperation::Move, {}, {0, 0, 0, 255}, 255), (Pixel{0, 0, 0, 255}));
}

TEST(TitleMixer, NothingShowsThroughAFullTitle) {
    EXPECT_EQ(OnePixel(TitleOperation::Add, {7, 8, 9, 255}, {255, 255, 255, 255}, 255), (Pixel{7, 8, 9, 255}));
}

TEST(TitleMixer, OpaqueWhiteOntoAnEmptyTitle) {
    // 256 * 255 * 65280 >> 24 = 254; 255 * 65280 >> 16 = 254.
    EXPECT_EQ(OnePixel(TitleOperation::Add, {0, 0, 0, 0}, {255, 255, 255, 255}, 255), (Pixel{254, 254, 254, 254}));
}

TEST(TitleMixer, TransparentColourBecomesFull) {
    EXPECT_EQ(OnePixel(TitleOperation::ToImage, {}, {1, 0, 200, 0}, 0), (Pixel{255, 0, 255, 0}));
    // 100 * 255 / 128 = 199 and a colour above alpha stops at 255.
    EXPECT_EQ(OnePixel(TitleOperation::ToImage, {}, {100, 128, 129, 128}, 0), (Pixel{199, 255, 255, 128}));
}

TEST(TitleMixer, FullCopyLeavesGapsAndSkipsTheSamePicture) {
    TestPicture image(km::FMT_BGRA, 9, 4, {12, false, 0});
    TestPicture title(km::FMT_BGRA, 9, 4, {20, true, 4});
    image.Fill(Fill::Random, 1);
    ASSERT_EQ(km::PutImageIntoNPTitle(title.Desc(), image.Desc(), 255), km::IMG_OK);
    EXPECT_EQ(title.FirstDifference(image), "");
    EXPECT_TRUE(title.GuardsIntact());
    // The same first byte with another stride: rows would move, but nothing does.
    const TestPicture before = title;
    km::ImageDescriptor denser = title.Desc();
    denser.strides[0] = -36;
    ASSERT_EQ(km::PutImageIntoNPTitle(denser, title.Desc(), 255), km::IMG_OK);
    EXPECT_EQ(title.FirstDifference(before), "");
    EXPECT_TRUE(title.GuardsIntact());
}

// Statuses.

TEST(TitleMixerStatus, Formats) {
    for (std::uint32_t format = 0; format < 44; ++format) {
        std::vector<std::uint8_t> a(4096, 3), b(4096, 4);
        const std::vector<std::uint8_t> before = a;
        km::ImageDescriptor src{{format, 2, 2}};
        src.planes[0] = b.data();
        src.strides[0] = 16;
        km::ImageDescriptor title{{km::FMT_BGRA, 2, 2}};
        title.planes[0] = a.data();
        title.strides[0] = 16;
        km::ImageDescriptor frame = title;
        frame.format = km::FMT_YUY2;
        const bool known = format == km::FMT_BGRA || format == km::FMT_BGR || IsPacked(format);
        const km::Status expected = known ? km::IMG_OK : km::IMG_E_BAD_FORMAT;
        EXPECT_EQ(km::PutImageIntoTitle(title, src, 9), expected) << format;
        EXPECT_EQ(km::AddImageBeneathTitle(title, src, 9), expected) << format;
        EXPECT_EQ(km::MoveImageOntoFrame(frame, src, 9), expected) << format;
        EXPECT_EQ(km::AddImageOntoFrame(frame, src, 9), expected) << format;
        EXPECT_EQ(km::PutImageIntoNPTitle(title, src, 9),
                  known && format != km::FMT_BGR ? km::IMG_OK : km::IMG_E_BAD_FORMAT)
            << format;
        EXPECT_EQ(km::TitleToStraightImage(title, src), format == km::FMT_BGRA ? km::IMG_OK : km::IMG_E_BAD_FORMAT);
        if (!known) {
            EXPECT_EQ(a, before) << format;
        }
        // As a destination.
        if (format != km::FMT_BGRA) {
            EXPECT_EQ(km::PutImageIntoTitle(src, title, 9), km::IMG_E_BAD_FORMAT) << format;
            EXPECT_EQ(km::PutImageIntoNPTitle(src, title, 255), km::IMG_E_BAD_FORMAT) << format;
        }
        if (format != km::FMT_UYVY && format != km::FMT_YUY2) {
            EXPECT_EQ(km::MoveImageOntoFrame(src, title, 9), km::IMG_E_BAD_FORMAT) << format;
        }
    }
}

TEST(TitleMixerStatus, SizesAndOddWidths) {
    TestPicture title(km::FMT_BGRA, 7, 2);
    TestPicture wider(km::FMT_BGRA, 8, 2);
    TestPicture higher(km::FMT_BGRA, 7, 3);
    EXPECT_EQ(km::PutImageIntoTitle(title.Desc(), wider.Desc(), 1), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(km::AddImageBeneathTitle(title.Desc(), higher.Desc(), 1), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(km::PutImageIntoNPTitle(title.Desc(), wider.Desc(), 255), km::IMG_E_BAD_SIZE);
    for (const std::uint32_t format : {km::FMT_UYVY, km::FMT_YUY2, km::FMT_YVYU}) {
        TestPicture odd(format, 7, 2, {8, false, 0});
        TestPicture frame(km::FMT_UYVY, 7, 2, {8, false, 0});
        frame.Fill(Fill::Ramp, 0);
        title.Fill(Fill::Ramp, 0);
        const TestPicture titleBefore = title;
        const TestPicture frameBefore = frame;
        EXPECT_EQ(km::PutImageIntoTitle(title.Desc(), odd.Desc(), 1), km::IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(km::PutImageIntoNPTitle(title.Desc(), odd.Desc(), 1), km::IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(km::AddImageBeneathTitle(title.Desc(), odd.Desc(), 1), km::IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(km::MoveImageOntoFrame(frame.Desc(), odd.Desc(), 1), km::IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(km::AddImageOntoFrame(frame.Desc(), odd.Desc(), 1), km::IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(title.FirstDifference(titleBefore), "");
        EXPECT_EQ(frame.FirstDifference(frameBefore), "");
    }
}

TEST(TitleMixerStatus, NullPlanesFailOnlyWherePixelsAreTouched) {
    TestPicture title(km::FMT_BGRA, 4, 2);
    title.Fill(Fill::Ramp, 0);
    const TestPicture before = title;
    km::ImageDescriptor none{{km::FMT_BGRA, 4, 2}};
    EXPECT_EQ(km::PutImageIntoTitle(title.Desc(), none, 1), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::PutImageIntoTitle(none, title.Desc(), 1), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::PutImageIntoNPTitle(none, title.Desc(), 255), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::PutImageIntoNPTitle(none, none, 255), km::IMG_OK);
    EXPECT_EQ(title.FirstDifference(before), "");
    none.height = 0;
    EXPECT_EQ(km::PutImageIntoTitle(none, none, 1), km::IMG_OK);
    EXPECT_EQ(km::PutImageIntoNPTitle(none, none, 1), km::IMG_OK);
    none.height = 2;
    // Two BGR pixels are the last pair of the row, which is never reached.
    km::ImageDescriptor bgr{{km::FMT_BGR, 2, 2}};
    km::ImageDescriptor frame{{km::FMT_UYVY, 2, 2}};
    EXPECT_EQ(km::AddImageOntoFrame(frame, bgr, 1), km::IMG_OK);
    bgr.width = frame.width = 3;
    EXPECT_EQ(km::AddImageOntoFrame(frame, bgr, 1), km::IMG_E_NULL_ARG);
    km::ImageDescriptor bgra{{km::FMT_BGRA, 1, 2}};
    frame.width = 1;
    EXPECT_EQ(km::MoveImageOntoFrame(frame, bgra, 1), km::IMG_OK);
}

}  // namespace
}  // namespace pixmorph_test
