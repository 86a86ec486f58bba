#include "convert/reorder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "foundation/sync.h"
#include "support/features.h"
#include "support/guard_page.h"
#include "support/picture.h"
#include "support/reorder_cases.h"

namespace pixmorph_test {
namespace {

enum class Channel { Luma, Alpha, Cb, Cr };

// Where one sample of a picture lies, written out format by format. `x` and `y` are in samples of that channel.
std::uint8_t* SampleAt(const TestPicture& picture, Channel channel, std::uint32_t x, std::uint32_t y) {
    const km::ImageDescriptor& desc = picture.Desc();
    const auto at = [&](int plane, std::uint32_t byte) {
        return desc.planes[plane] + static_cast<std::int64_t>(y) * desc.strides[plane] + byte;
    };
    switch (desc.format) {
        case km::FMT_UYVY:
            return at(0, channel == Channel::Luma ? 2 * x + 1 : 4 * x + (channel == Channel::Cb ? 0 : 2));
        case km::FMT_YUY2:
            return at(0, channel == Channel::Luma ? 2 * x : 4 * x + (channel == Channel::Cb ? 1 : 3));
        case km::FMT_YVYU:
            return at(0, channel == Channel::Luma ? 2 * x : 4 * x + (channel == Channel::Cb ? 3 : 1));
        case km::FMT_Y16:
            if (channel == Channel::Luma) return at(0, x / 16 * 32 + x % 16);
            return at(0, x / 8 * 32 + (channel == Channel::Cb ? 16 : 24) + x % 8);
        case km::FMT_Y16A:
            if (channel == Channel::Luma) return at(0, x / 16 * 48 + x % 16);
            if (channel == Channel::Alpha) return at(0, x / 16 * 48 + 16 + x % 16);
            return at(0, x / 8 * 48 + (channel == Channel::Cb ? 32 : 40) + x % 8);
        case km::FMT_NV12:
            return channel == Channel::Luma ? at(0, x) : at(1, 2 * x + (channel == Channel::Cb ? 0 : 1));
        default:
            return at(channel == Channel::Luma ? 0 : channel == Channel::Cb ? 1 : 2, x);
    }
}

std::uint8_t RoundedMean(int a, int b) { return static_cast<std::uint8_t>((a + b + 1) / 2); }

// The chroma sample that a destination has at (x, y), from the lines of the source.
std::uint8_t ExpectedChroma(const TestPicture& src, bool toShared, Channel channel, std::uint32_t x, std::uint32_t y) {
    const bool fromShared = ReorderCase::Is420(src.Desc().format);
    const std::uint32_t height = src.Desc().height;
    if (fromShared == toShared) return *SampleAt(src, channel, x, y);
    if (toShared) return RoundedMean(*SampleAt(src, channel, x, 2 * y), *SampleAt(src, channel, x, 2 * y + 1));
    if (y % 2 == 0 || y + 1 == height) return *SampleAt(src, channel, x, y / 2);
    return RoundedMean(*SampleAt(src, channel, x, y / 2), *SampleAt(src, channel, x, y / 2 + 1));
}

void FillExpected(const TestPicture& dst, const TestPicture& src) {
    const std::uint32_t width = dst.Desc().width;
    const std::uint32_t height = dst.Desc().height;
    const bool toShared = ReorderCase::Is420(dst.Desc().format);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            *SampleAt(dst, Channel::Luma, x, y) = *SampleAt(src, Channel::Luma, x, y);
            if (dst.Desc().format == km::FMT_Y16A) *SampleAt(dst, Channel::Alpha, x, y) = 255;
        }
    }
    for (std::uint32_t y = 0; y < (toShared ? height / 2 : height); ++y)
        for (std::uint32_t x = 0; x < width / 2; ++x)
            for (const Channel channel : {Channel::Cb, Channel::Cr})
                *SampleAt(dst, channel, x, y) = ExpectedChroma(src, toShared, channel, x, y);
}

class ReorderFormats : public testing::TestWithParam<ReorderCase> {};

TEST_P(ReorderFormats, MovesEverySampleAtEveryLevel) {
    static constexpr PictureLayout kLayouts[] = {{0, false, 0}, {20, false, 4}, {36, true, 3}};
    const ReorderCase& c = GetParam();
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const PictureLayout& layout : kLayouts) {
            for (const std::uint32_t units : {1, 3, 8, 41}) {
                for (const std::uint32_t rows : {1, 2, 3}) {
                    const std::uint32_t width = units * c.WidthStep();
                    const std::uint32_t height = rows * c.HeightStep();
                    TestPicture src(c.from, width, height, layout);
                    TestPicture actual(c.to, width, height, layout);
                    src.Fill(Fill::Random, width + rows);
                    actual.Fill(Fill::Random, 77);
                    const TestPicture expected = actual;
                    FillExpected(expected, src);
                    (*c.slot)(actual.Desc(), src.Desc());
                    ASSERT_EQ(actual.FirstDifference(expected), "") << width << "x" << height << " level " << level;
                    ASSERT_TRUE(actual.GuardsIntact()) << width << "x" << height << " level " << level;
                }
            }
        }
    }
}

TEST_P(ReorderFormats, SizeZeroTouchesNothing) {
    const ReorderCase& c = GetParam();
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const bool noWidth : {true, false}) {
            km::ImageDescriptor src{{c.from, noWidth ? 0u : 64u, noWidth ? 2u : 0u}};
            km::ImageDescriptor dst{{c.to, src.width, src.height}};
            // Addresses that no process can touch.
            for (int plane = 0; plane < 3; ++plane)
                src.planes[plane] = dst.planes[plane] = reinterpret_cast<std::uint8_t*>(std::uintptr_t{1});
            (*c.slot)(dst, src);
        }
    }
}

// The last line of the last plane ends right before memory that cannot be read or written.
TEST_P(ReorderFormats, StaysInsideTheRows) {
    const ReorderCase& c = GetParam();
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const GuardPageBuffer::Side side : {GuardPageBuffer::Side::End, GuardPageBuffer::Side::Start}) {
            for (const std::uint32_t units : {1, 2, 5, 9, 17, 45}) {
                km::ImageDescriptor src{{c.from, units * c.WidthStep(), c.HeightStep()}};
                km::ImageDescriptor dst{{c.to, src.width, src.height}};
                std::vector<std::unique_ptr<GuardPageBuffer>> memory;
                for (km::ImageDescriptor* desc : {&src, &dst}) {
                    for (std::uint32_t plane = 0; plane < km::ImagePlaneCount(desc); ++plane) {
                        const std::size_t rowBytes = km::ImagePlaneRowBytes(desc, plane);
                        memory.push_back(
                            std::make_unique<GuardPageBuffer>(rowBytes * km::ImagePlaneHeight(desc, plane), side));
                        desc->planes[plane] = memory.back()->Data();
                        desc->strides[plane] = static_cast<std::int64_t>(rowBytes);
                    }
                }
                (*c.slot)(dst, src);
            }
        }
    }
}

// Pictures that outgrow the cache are written past it: planes that start at cache lines, planes that do not, and lines
// that are too long for the buffer of the second case.
TEST_P(ReorderFormats, LargePicturesAtEveryLevel) {
    struct Shape {
        std::uint32_t width;
        PictureLayout layout;
    };
    static constexpr Shape kShapes[] = {
        {256, {64, false, 0}}, {272, {0, false, 16}}, {304, {7, true, 5}}, {4112, {0, false, 4}}};
    const ReorderCase& c = GetParam();
    for (const Shape& shape : kShapes) {
        km::ImageDescriptor line{{c.to, shape.width, 2}};
        const std::uint64_t bytes = km::GetCacheSize() / 2 + 4096;
        const auto height = static_cast<std::uint32_t>(2 * (bytes / km::ImageBufferSize(&line) + 1));
        TestPicture src(c.from, shape.width, height, shape.layout);
        TestPicture expected(c.to, shape.width, height, shape.layout);
        src.Fill(Fill::Random, shape.width);
        FillExpected(expected, src);
        for (const std::uint32_t level : FeatureLevels()) {
            const RestrictedFeatures restricted(level);
            TestPicture actual(c.to, shape.width, height, shape.layout);
            (*c.slot)(actual.Desc(), src.Desc());
            ASSERT_EQ(actual.FirstDifference(expected), "") << shape.width << "x" << height << " level " << level;
            ASSERT_TRUE(actual.GuardsIntact()) << shape.width << "x" << height << " level " << level;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Reorder, ReorderFormats, testing::ValuesIn(kReorderCases),
                         [](const auto& instance) { return std::string(instance.param.slot->Name()); });

TEST(Reorder, CasesCoverEverySlotOnce) {
    std::set<const km::ConvertSlot*> slots;
    for (const ReorderCase& c : kReorderCases) EXPECT_TRUE(slots.insert(c.slot).second) << c.slot->Name();
    EXPECT_EQ(slots.size(), 47u);
}

TEST(Reorder, PackedFormatsConvertInPlace) {
    struct Shape {
        std::uint32_t width;
        bool isLarge;  // Too large for the cache: written past it.
        PictureLayout layout;
    };
    static constexpr Shape kShapes[] = {{2, false, {8, false, 4}},   {6, false, {8, true, 4}},
                                        {30, false, {8, false, 4}},  {34, false, {8, false, 4}},
                                        {126, false, {8, true, 4}},  {254, false, {8, false, 4}},
                                        {256, true, {64, false, 0}}, {262, true, {8, false, 4}}};
    for (const ReorderCase& c : kReorderCases) {
        if (c.from > km::FMT_YVYU || c.to > km::FMT_YVYU) continue;
        for (const std::uint32_t level : FeatureLevels()) {
            const RestrictedFeatures restricted(level);
            for (const Shape& shape : kShapes) {
                const std::size_t rows = shape.isLarge ? km::GetCacheSize() / 2 / (2 * shape.width) + 3 : 3;
                const auto height = static_cast<std::uint32_t>(rows);
                TestPicture src(c.from, shape.width, height, shape.layout);
                src.Fill(Fill::Random, shape.width);
                TestPicture expected(c.to, shape.width, height, shape.layout);
                FillExpected(expected, src);
                km::ImageDescriptor dst = src.Desc();
                dst.format = c.to;
                (*c.slot)(dst, src.Desc());
                EXPECT_EQ(src.FirstDifference(expected), "") << c.slot->Name() << " width " << shape.width;
                EXPECT_TRUE(src.GuardsIntact());
            }
        }
    }
}

// Two planes of four lines; chroma 10, 13 and 255, 0 in the columns of the two chroma lines.
TEST(Reorder, ChromaLinesOfFourLinesFromTwo) {
    std::uint8_t luma[4][2] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}};
    std::uint8_t chroma[2][2] = {{10, 255}, {13, 0}};
    std::uint8_t uyvy[4][4] = {};
    km::ImageDescriptor src{{km::FMT_NV12, 2, 4}};
    src.planes[0] = luma[0];
    src.planes[1] = chroma[0];
    src.strides[0] = src.strides[1] = 2;
    km::ImageDescriptor dst{{km::FMT_UYVY, 2, 4}};
    dst.planes[0] = uyvy[0];
    dst.strides[0] = 4;
    km::Nv12ToUyvy(dst, src);
    const std::uint8_t expected[4][4] = {{10, 1, 255, 2}, {12, 3, 128, 4}, {13, 5, 0, 6}, {13, 7, 0, 8}};
    EXPECT_EQ(std::memcmp(uyvy, expected, sizeof(expected)), 0);
}

TEST(Reorder, TwoLinesShareTheirOnlyChromaLine) {
    std::uint8_t y[4] = {1, 2, 3, 4};
    std::uint8_t u[1] = {50};
    std::uint8_t v[1] = {201};
    std::uint8_t yuy2[8] = {};
    km::ImageDescriptor src{{km::FMT_I420, 2, 2}};
    src.planes[0] = y;
    src.planes[1] = u;
    src.planes[2] = v;
    src.strides[0] = 2;
    src.strides[1] = src.strides[2] = 1;
    km::ImageDescriptor dst{{km::FMT_YUY2, 2, 2}};
    dst.planes[0] = yuy2;
    dst.strides[0] = 4;
    km::I420ToYuy2(dst, src);
    const std::uint8_t expected[8] = {1, 50, 2, 201, 3, 50, 4, 201};
    EXPECT_EQ(std::memcmp(yuy2, expected, sizeof(expected)), 0);
}

// Means round a half up: (254 + 255) / 2 is 255, (0 + 1) / 2 is 1.
TEST(Reorder, TwoChromaLinesBecomeTheirRoundedMean) {
    std::uint8_t uyvy[2][4] = {{254, 9, 0, 8}, {255, 7, 1, 6}};
    std::uint8_t y[4] = {};
    std::uint8_t u[1] = {};
    std::uint8_t v[1] = {};
    km::ImageDescriptor src{{km::FMT_UYVY, 2, 2}};
    src.planes[0] = uyvy[0];
    src.strides[0] = 4;
    km::ImageDescriptor dst{{km::FMT_I420, 2, 2}};
    dst.planes[0] = y;
    dst.planes[1] = u;
    dst.planes[2] = v;
    dst.strides[0] = 2;
    dst.strides[1] = dst.strides[2] = 1;
    km::UyvyToI420(dst, src);
    const std::uint8_t expected[4] = {9, 8, 7, 6};
    EXPECT_EQ(std::memcmp(y, expected, sizeof(expected)), 0);
    EXPECT_EQ(u[0], 255);
    EXPECT_EQ(v[0], 1);
}

TEST(Reorder, OneBlockOfEachKind) {
    std::uint8_t uyvy[32];
    for (int i = 0; i < 32; ++i) uyvy[i] = static_cast<std::uint8_t>(i);
    std::uint8_t block[48] = {};
    km::ImageDescriptor src{{km::FMT_UYVY, 16, 1}};
    src.planes[0] = uyvy;
    src.strides[0] = 32;
    km::ImageDescriptor dst{{km::FMT_Y16A, 16, 1}};
    dst.planes[0] = block;
    dst.strides[0] = 48;
    km::UyvyToY16A(dst, src);
    const std::uint8_t expected[48] = {1,   3,   5,   7,   9,   11,  13,  15,  17,  19,  21,  23,  25,  27,  29,  31,
                                       255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
                                       0,   4,   8,   12,  16,  20,  24,  28,  2,   6,   10,  14,  18,  22,  26,  30};
    EXPECT_EQ(std::memcmp(block, expected, sizeof(expected)), 0);

    std::uint8_t back[32] = {};
    km::ImageDescriptor packed = src;
    packed.planes[0] = back;
    km::Y16AToUyvy(packed, dst);
    EXPECT_EQ(std::memcmp(back, uyvy, sizeof(uyvy)), 0);
}

}  // namespace
}  // namespace pixmorph_test
