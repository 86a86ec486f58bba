#include "resize/resize_passes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "resize/resample_rows.h"
#include "resize/row_plans.h"
#include "support/features.h"
#include "support/guard_page.h"
#include "support/picture.h"
#include "support/resample_reference.h"
#include "support/resize.h"

namespace pixmorph_test {
namespace {

using namespace KorvaneSoftware;

constexpr std::uint32_t kFormats[] = {FMT_BGR,  FMT_BGRA, FMT_Y444, FMT_UYVY, FMT_YUY2, FMT_YVYU, FMT_Y422,
                                      FMT_I420, FMT_YV12, FMT_NV12, FMT_Y400, FMT_S400, FMT_S420, FMT_S422};
constexpr PictureLayout kLayouts[] = {{0, false, 0}, {36, false, 4}, {20, true, 8}};

std::string Context(const TestPicture& dst, const TestPicture& src) {
    const auto size = [](const ImageDescriptor& d) { return std::to_string(d.width) + "x" + std::to_string(d.height); };
    return "format " + std::to_string(src.Desc().format) + " " + size(src.Desc()) + " to " + size(dst.Desc());
}

TestPicture Source(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::size_t layout = 0,
                   Fill fill = Fill::Random) {
    TestPicture picture(format, width, height, kLayouts[layout % 3]);
    picture.Fill(fill, 977 * format + width + 31 * height);
    return picture;
}

TestPicture Target(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::size_t layout = 0) {
    TestPicture picture(format, width, height, kLayouts[layout % 3]);
    picture.Fill(Fill::Random, 5);
    return picture;
}

TEST(Resample, HorizontalIsTheFilterOfEachLineInEveryFormat) {
    // From one pixel pair up; ratios below, at and around 1:2, 2:1, 3:1 and 1, and one with lines of several registers.
    static constexpr std::uint32_t kWidths[][2] = {
        {2, 4},    {4, 2},    {2, 16},    {16, 2},    {6, 6},      {32, 64},    {64, 32},
        {66, 22},  {96, 36},  {48, 64},   {64, 48},   {200, 198},  {198, 200},  {90, 160},
        {130, 44}, {256, 94}, {402, 134}, {302, 150}, {720, 1920}, {1000, 960}, {514, 12}};
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t format : kFormats) {
            std::size_t layout = format;
            for (const auto& [from, to] : kWidths) {
                const TestPicture src = Source(format, from, 4, ++layout);
                TestPicture dst = Target(format, to, 4, layout / 3);
                TestPicture expected = dst;
                ReferenceResize(expected, src, false);
                ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK) << Context(dst, src);
                ASSERT_EQ(dst.FirstDifference(expected), "") << Context(dst, src) << " level " << level;
                ASSERT_TRUE(dst.GuardsIntact()) << Context(dst, src);
            }
        }
    }
}

TEST(Resample, VerticalIsTheFilterOfEachColumnInEveryFormat) {
    static constexpr std::uint32_t kHeights[][2] = {{2, 4},   {4, 2},   {8, 4},   {12, 8}, {24, 8},   {16, 30},
                                                    {30, 16}, {20, 18}, {18, 20}, {50, 6}, {300, 26}, {258, 2}};
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t format : kFormats) {
            std::size_t layout = format;
            for (const auto& [from, to] : kHeights) {
                for (const std::uint32_t width : {2u, 22u, 150u}) {
                    const TestPicture src = Source(format, width, from, ++layout);
                    TestPicture dst = Target(format, width, to, layout / 3);
                    TestPicture expected = dst;
                    ReferenceResize(expected, src, true);
                    ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK) << Context(dst, src);
                    ASSERT_EQ(dst.FirstDifference(expected), "") << Context(dst, src) << " level " << level;
                    ASSERT_TRUE(dst.GuardsIntact()) << Context(dst, src);
                }
            }
        }
    }
}

TEST(Resample, ExtremesKeepTheirValue) {
    for (const std::uint32_t format : kFormats) {
        for (const Fill fill : {Fill::Max, Fill::Zero, Fill::Extremes}) {
            const TestPicture src = Source(format, 180, 12, 0, fill);
            for (const std::uint32_t width : {540u, 120u, 90u, 60u, 52u}) {
                TestPicture dst = Target(format, width, 12);
                TestPicture expected = dst;
                ReferenceResize(expected, src, false);
                ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK);
                ASSERT_EQ(dst.FirstDifference(expected), "") << Context(dst, src);
            }
        }
    }
}

// Worked by hand: 3 samples to 2 cover 1.5 each.
TEST(Resample, AreaAveragingSplitsTheSampleBetween) {
    std::uint8_t in[3] = {10, 100, 250};
    std::uint8_t out[2] = {};
    ImageDescriptor src{{FMT_Y400, 3, 1}, {in}, {3}};
    ImageDescriptor dst{{FMT_Y400, 2, 1}, {out}, {2}};
    ASSERT_EQ(Resize(&dst, &src), IMG_OK);
    EXPECT_EQ(out[0], 40);   // (2 * 10 + 100) / 3
    EXPECT_EQ(out[1], 200);  // (100 + 2 * 250) / 3
}

// 1 / 26 is rounded down in single precision, so that a mean of exactly one half (13 of 26) is multiplied to a little
// less than 0.5 + 0.5; whether the sum then reaches 1 is a matter of single-precision rounding, not of arithmetic.
TEST(Resample, AreaAveragingRoundsAsSinglePrecisionDoes) {
    for (std::uint32_t source = 3; source <= 300; ++source) {
        std::vector<std::uint8_t> in(source, 0);
        for (const std::uint32_t ones : {source / 2, (source + 1) / 2}) {
            for (const std::uint32_t base : {0u, 63u, 127u, 254u}) {
                for (std::uint32_t i = 0; i < source; ++i) in[i] = static_cast<std::uint8_t>(base + (i < ones ? 1 : 0));
                std::uint8_t out = 0;
                ImageDescriptor src{{FMT_Y400, source, 1}, {in.data()}};
                ImageDescriptor dst{{FMT_Y400, 1, 1}, {&out}};
                ASSERT_EQ(Resize(&dst, &src), IMG_OK);
                const Samples expected = ReferenceArea(Samples(in.begin(), in.end()), 1, 255);
                ASSERT_EQ(out, expected[0]) << source << " " << ones << " " << base;
            }
        }
    }
}

// Every sum that a reduced ratio can give, through the integer form where there is one.
TEST(Resample, NarrowScaleIsTheSinglePrecisionProduct) {
    int narrow = 0;
    int wide = 0;
    for (std::uint32_t source = 2; source <= 140; ++source) {
        for (std::uint32_t factor = 1; factor <= 48; ++factor) {
            const AreaScale scale = MakeAreaScale(source * factor, factor);
            scale.narrow ? ++narrow : ++wide;
            if (!scale.narrow) continue;
            ASSERT_EQ(scale.divisor, factor);
            for (std::uint32_t sum = 0; sum <= 255 * source; ++sum) {
                const volatile float product =
                    static_cast<float>(sum * factor) * (1.0f / static_cast<float>(source * factor));
                const volatile float rounded = product + 0.5f;
                ASSERT_EQ(((sum + scale.bias) * scale.multiplier) >> (16 + scale.shift),
                          static_cast<std::uint32_t>(rounded))
                    << source << " * " << factor << " sum " << sum;
            }
        }
    }
    EXPECT_GT(narrow, 3000);
    EXPECT_GT(wide, 1000);
}

TEST(Resample, HalvingIsTheRoundedMean) {
    const TestPicture src = Source(FMT_I420, 1920, 8);
    TestPicture dst = Target(FMT_I420, 960, 8);
    ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK);
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (std::size_t y = 0; y < dst.Plane(plane).Rows(); ++y)
            for (std::size_t x = 0; x < dst.Plane(plane).RowBytes(); ++x) {
                const std::uint8_t* const in = src.Planes()[plane].Row(y);
                ASSERT_EQ(dst.Plane(plane).Row(y)[x], (in[2 * x] + 1 + in[2 * x + 1]) >> 1);
            }
}

// Packed lines at 2:1: neighbours of the same channel, (1 + 1 + 2) >> 1 rounds up.
TEST(Resample, HalvingPackedLinesRoundsUp) {
    std::uint8_t in[8] = {10, 1, 20, 2, 13, 3, 23, 6};
    std::uint8_t out[4] = {};
    ImageDescriptor src{{FMT_UYVY, 4, 1}, {in}, {8}};
    ImageDescriptor dst{{FMT_UYVY, 2, 1}, {out}, {4}};
    ASSERT_EQ(Resize(&dst, &src), IMG_OK);
    EXPECT_EQ(out[0], 12);
    EXPECT_EQ(out[1], 2);
    EXPECT_EQ(out[2], 22);
    EXPECT_EQ(out[3], 5);
}

TEST(Resample, EnlargingKeepsFirstAndLast) {
    for (const std::uint32_t factor : {2u, 3u, 5u}) {
        const TestPicture src = Source(FMT_Y400, 31, 1);
        TestPicture dst = Target(FMT_Y400, 31 * factor, 1);
        ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK);
        EXPECT_EQ(dst.Plane(0).Row(0)[0], src.Planes()[0].Row(0)[0]);
        EXPECT_EQ(dst.Plane(0).Row(0)[31 * factor - 1], src.Planes()[0].Row(0)[30]);
    }
}

TEST(Resample, OnePixelEitherWay) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t format : {FMT_Y400, FMT_BGR, FMT_BGRA, FMT_Y444, FMT_S400}) {
            for (const std::uint32_t size : {1u, 2u, 3u, 7u, 100u}) {
                TestPicture one = Source(format, 1, 1);
                TestPicture line = Target(format, size, 1);
                TestPicture expected = line;
                ReferenceResize(expected, one, false);
                ASSERT_EQ(Resize(&line.Desc(), &one.Desc()), IMG_OK);
                ASSERT_EQ(line.FirstDifference(expected), "");
                TestPicture column = Source(format, 1, size);
                TestPicture back = Target(format, 1, 1);
                TestPicture expectedBack = back;
                ReferenceResize(expectedBack, column, true);
                ASSERT_EQ(Resize(&back.Desc(), &column.Desc()), IMG_OK);
                ASSERT_EQ(back.FirstDifference(expectedBack), "");
            }
        }
    }
}

bool TakesOnePass(const TestPicture& dst, const TestPicture& src) {
    ResizePlan plan;
    EXPECT_EQ(PlanResize(plan, dst.Desc(), src.Desc()), IMG_OK);
    return plan.between.format == FMT_NONE;
}

TEST(Resample, FixedRatiosInOneCall) {
    static constexpr std::uint32_t kSizes[][4] = {{64, 24, 32, 12}, {2, 2, 1, 1},     {132, 4, 66, 2},
                                                  {192, 8, 72, 4},  {96, 12, 32, 4},  {786, 6, 262, 2},
                                                  {4, 4, 2, 2},     {1280, 4, 480, 2}};
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t format : kFormats) {
            const FormatInfo& info = *FormatInfoOf(FormatHead{format});
            for (const auto& [fromWidth, fromHeight, toWidth, toHeight] : kSizes) {
                if (toWidth % info.xAlign != 0 || toHeight % info.yAlign != 0) continue;
                const TestPicture src = Source(format, fromWidth, fromHeight, toWidth);
                TestPicture dst = Target(format, toWidth, toHeight, toHeight);
                TestPicture expected = dst;
                const bool hasRoutine = format != FMT_BGR && info.sampleBits == 8;
                if (hasRoutine) ReferenceResize(expected, src, true);
                ASSERT_EQ(TakesOnePass(dst, src), hasRoutine);
                if (hasRoutine) {
                    ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK);
                }
                ASSERT_EQ(dst.FirstDifference(expected), "") << Context(dst, src) << " level " << level;
                ASSERT_TRUE(dst.GuardsIntact());
            }
        }
    }
}

TEST(Resample, OtherRatiosNeedTwoPasses) {
    static constexpr std::uint32_t kSizes[][4] = {
        {96, 48, 64, 32}, {64, 48, 32, 12}, {64, 64, 48, 32}, {32, 32, 64, 64}};
    for (const auto& [fromWidth, fromHeight, toWidth, toHeight] : kSizes) {
        const TestPicture src = Source(FMT_UYVY, fromWidth, fromHeight);
        EXPECT_FALSE(TakesOnePass(Target(FMT_UYVY, toWidth, toHeight), src));
    }
}

TEST(Resample, ThroughAPictureBetweenIsTheTwoPasses) {
    static constexpr std::uint32_t kSizes[][4] = {{96, 48, 64, 32}, {72, 40, 50, 30}, {50, 30, 72, 40}, {80, 60, 16, 8},
                                                  {32, 24, 96, 72}, {64, 8, 20, 52},  {20, 52, 64, 8},  {96, 2, 20, 10},
                                                  {64, 16, 64, 16}, {64, 16, 32, 16}, {64, 16, 64, 40}};
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t format : kFormats) {
            for (const auto& [fromWidth, fromHeight, toWidth, toHeight] : kSizes) {
                for (const bool verticalFirst : {false, true}) {
                    const TestPicture src = Source(format, fromWidth, fromHeight, toWidth);
                    TestPicture dst = Target(format, toWidth, toHeight, toHeight);
                    TestPicture expected = dst;
                    ReferenceResize(expected, src, verticalFirst);
                    TestPicture between =
                        verticalFirst ? Target(format, fromWidth, toHeight, 1) : Target(format, toWidth, fromHeight, 1);
                    ResizePlan plan;
                    ASSERT_EQ(PlanResize(plan, dst.Desc(), src.Desc()), IMG_OK);
                    plan.route = verticalFirst ? ResizeRoute::VerticalFirst : ResizeRoute::HorizontalFirst;
                    plan.between = between.Desc();
                    RowPlans rowPlans;
                    RunResize(plan, rowPlans);
                    ASSERT_EQ(dst.FirstDifference(expected), "") << Context(dst, src) << " first " << verticalFirst;
                    ASSERT_TRUE(dst.GuardsIntact() && between.GuardsIntact()) << Context(dst, src);
                }
            }
        }
    }
}

// Lines that end where memory ends, at lengths around those of registers.
TEST(Resample, ReadsAndWritesNothingBeyondALine) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const LineKind kind : {LineKind::Planar, LineKind::Pairs, LineKind::Bgr, LineKind::Bgra, LineKind::Uyvy,
                                    LineKind::Yuy2, LineKind::Words}) {
            for (std::uint32_t from = 2; from <= 70; from += 2) {
                for (const std::uint32_t to : {from / 2, from - 2, from + 2, 2 * from, 34u, 66u}) {
                    if (to == 0 || to % 2 != 0) continue;
                    for (const auto side : {GuardPageBuffer::Side::End, GuardPageBuffer::Side::Start}) {
                        GuardPageBuffer src(LineBytes(kind, from), side);
                        GuardPageBuffer dst(LineBytes(kind, to), side);
                        GuardPageBuffer same(LineBytes(kind, from), side);
                        std::fill_n(src.Data(), src.Size(), std::uint8_t{200});
                        RowPlans rowPlans;
                        ResampleRow(dst.Data(), src.Data(), rowPlans.Find(kind, from, to));
                        const std::uint32_t sample = kind == LineKind::Words ? 200 * 257 : 200;
                        ASSERT_EQ(dst.Data()[dst.Size() - 1], sample & 0xFF) << from << " to " << to;
                        const bool words = kind == LineKind::Words;
                        const std::size_t samples = LineSamples(kind, from);
                        (words ? MeanRows16 : MeanRows8)(same.Data(), src.Data(), src.Data(), samples);
                        (words ? LinearRows16 : LinearRows8)(same.Data(), src.Data(), src.Data(), samples, 12345);
                        (words ? AreaRows16 : AreaRows8)(same.Data(), src.Data(), 0, samples, AreaSpanOf(3, 2, 0),
                                                         MakeAreaScale(3, 2));
                        ASSERT_EQ(same.Data()[same.Size() - 1], sample & 0xFF);
                    }
                }
            }
        }
    }
}

TEST(Resample, SixteenBitSumsPassThirtyTwoBits) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        TestPicture src(FMT_S400, 70000, 1);
        src.Fill(Fill::Max, 1);
        TestPicture dst = Target(FMT_S400, 65000, 1);
        ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK);
        TestPicture expected = dst;
        ReferenceResize(expected, src, false);
        EXPECT_EQ(dst.FirstDifference(expected), "");
        // Twice through 31 bits: 40000 columns of one line, 40000 lines of one column.
        const TestPicture wide = Source(FMT_S400, 40000, 1);
        TestPicture narrower = Target(FMT_S400, 39000, 1);
        TestPicture expectedLine = narrower;
        ReferenceResize(expectedLine, wide, false);
        ASSERT_EQ(Resize(&narrower.Desc(), &wide.Desc()), IMG_OK);
        EXPECT_EQ(narrower.FirstDifference(expectedLine), "");
        const TestPicture tall = Source(FMT_S400, 40, 40000);
        TestPicture lower = Target(FMT_S400, 40, 39000);
        TestPicture expectedColumn = lower;
        ReferenceResize(expectedColumn, tall, true);
        ASSERT_EQ(Resize(&lower.Desc(), &tall.Desc()), IMG_OK);
        EXPECT_EQ(lower.FirstDifference(expectedColumn), "");
    }
}

TEST(Resample, LinesTooLongForTables) {
    const TestPicture src = Source(FMT_Y400, 70001, 1);
    for (const std::uint32_t width : {70000u, 66000u, 70003u, 140001u, 11u}) {
        TestPicture dst = Target(FMT_Y400, width, 1);
        TestPicture expected = dst;
        ReferenceResize(expected, src, false);
        ASSERT_EQ(Resize(&dst.Desc(), &src.Desc()), IMG_OK);
        EXPECT_EQ(dst.FirstDifference(expected), "") << width;
    }
}

TEST(Resample, MissingPlanesFollowTheFirst) {
    std::vector<std::uint8_t> in(64 * 48 * 3 / 2), out(32 * 48 * 3 / 2, 0), expected(32 * 48 * 3 / 2, 0);
    ByteGenerator(3).Fill(in);
    ImageDescriptor src{{FMT_I420, 64, 48}, {in.data()}, {64}};
    ImageDescriptor dst{{FMT_I420, 32, 48}, {out.data()}, {32}};
    ASSERT_EQ(Resize(&dst, &src), IMG_OK);
    // Tight planes of 2:1 are one long line of pairs.
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<std::uint8_t>((in[2 * i] + 1 + in[2 * i + 1]) >> 1);
    EXPECT_EQ(out, expected);
    EXPECT_EQ(dst.planes[1], nullptr);
}

TEST(Resample, RefusesWhatItCannotDo) {
    const auto statusOf = [](std::uint32_t format, std::uint32_t width, std::uint32_t height, std::uint32_t srcFormat,
                             std::uint32_t srcWidth, std::uint32_t srcHeight) {
        std::vector<std::uint8_t> in(64 * 64 * 8), out(64 * 64 * 8, 77);
        ImageDescriptor src{{srcFormat, srcWidth, srcHeight}, {in.data()}};
        ImageDescriptor dst{{format, width, height}, {out.data()}};
        src.strides[0] = dst.strides[0] = 256;
        const Status status = Resize(&dst, &src);
        EXPECT_NE(status, IMG_OK);
        for (const std::uint8_t byte : out) EXPECT_EQ(byte, 77);
        return status;
    };
    for (const std::uint32_t format : {FMT_IMC1, FMT_IMC2, FMT_IMC3, FMT_IMC4, FMT_P420, FMT_P422})
        EXPECT_EQ(statusOf(format, 32, 16, format, 16, 16), IMG_E_NO_PATH) << format;
    for (const std::uint32_t format :
         {+FMT_NONE, +FMT_AYUV, +FMT_Y16, +FMT_Y16A, +FMT_Y32, +FMT_Y32B, +FMT_Y32A, +FMT_Y32AB, +FMT_NV11, +FMT_Y41P,
          +FMT_YVU9, +FMT_DV12, +FMT_BGR8, +FMT_P216, +FMT_P016, 37u, 99u, 0xFFFFFFFFu})
        EXPECT_EQ(statusOf(format, 32, 16, format, 16, 16), IMG_E_UNSUPPORTED) << format;
    EXPECT_EQ(statusOf(FMT_NV12, 32, 16, FMT_UYVY, 16, 16), IMG_E_BAD_FORMAT);
    EXPECT_EQ(statusOf(FMT_YV12, 32, 16, FMT_I420, 16, 16), IMG_E_BAD_FORMAT);
    // Packed 4:2:2: odd widths, also where only the height changes.
    EXPECT_EQ(statusOf(FMT_UYVY, 31, 16, FMT_UYVY, 16, 16), IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(FMT_YUY2, 32, 16, FMT_YUY2, 15, 16), IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(FMT_YVYU, 15, 16, FMT_YVYU, 15, 8), IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(FMT_UYVY, 0, 16, FMT_UYVY, 16, 16), IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(FMT_I420, 31, 16, FMT_I420, 16, 16), IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(FMT_I420, 32, 15, FMT_I420, 16, 15), IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(FMT_NV12, 32, 16, FMT_NV12, 32, 13), IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(FMT_Y422, 31, 16, FMT_Y422, 16, 16), IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(FMT_BGRA, 16, 0, FMT_BGRA, 16, 16), IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(FMT_BGR, 16, 16, FMT_BGR, 0, 16), IMG_E_BAD_ALIGNMENT);
    // Lines beyond what a stride can say.
    EXPECT_EQ(statusOf(FMT_BGRA, 0x40000001, 16, FMT_BGRA, 16, 16), IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(FMT_UYVY, 0xFFFFFFFE, 16, FMT_UYVY, 16, 16), IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(FMT_Y400, 16, 0x80000000, FMT_Y400, 16, 16), IMG_E_BAD_SIZE);
}

TEST(Resample, RefusesPicturesWithoutAFirstPlane) {
    const TestPicture picture = Source(FMT_I420, 16, 16);
    ImageDescriptor empty = picture.Desc();
    empty.planes[0] = nullptr;
    EXPECT_EQ(Resize(&empty, &picture.Desc()), IMG_E_NULL_ARG);
    EXPECT_EQ(Resize(&picture.Desc(), &empty), IMG_E_NULL_ARG);
}

// More sizes than one user's plans hold, and the first ones again.
TEST(Resample, PlansComeAndGo) {
    RowPlans rowPlans;
    const TestPicture src = Source(FMT_Y400, 180, 1);
    for (int round = 0; round < 2; ++round) {
        for (std::uint32_t width = 40; width < 360; ++width) {
            TestPicture dst = Target(FMT_Y400, width, 1);
            TestPicture expected = dst;
            ReferenceResize(expected, src, false);
            ResizePlan plan;
            ASSERT_EQ(PlanResize(plan, dst.Desc(), src.Desc()), IMG_OK);
            RunResize(plan, rowPlans);
            ASSERT_EQ(dst.FirstDifference(expected), "") << width;
        }
    }
    EXPECT_LT(rowPlans.Count(), 320u) << "the number of plans is bounded";
}

TEST(Resample, ThreadsShareNothing) {
    const TestPicture src = Source(FMT_UYVY, 300, 8);
    std::vector<TestPicture> expected;
    for (std::uint32_t width = 20; width < 20 + 2 * 48; width += 2) {
        expected.push_back(Target(FMT_UYVY, width, 8));
        ReferenceResize(expected.back(), src, false);
    }
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::size_t start = 0; start < 4; ++start)
        threads.emplace_back([&, start] {
            for (std::size_t i = 0; i < 2 * expected.size(); ++i) {
                const TestPicture& wanted = expected[(i + 12 * start) % expected.size()];
                TestPicture dst = Target(FMT_UYVY, wanted.Desc().width, 8);
                if (Resize(&dst.Desc(), &src.Desc()) != IMG_OK || !dst.FirstDifference(wanted).empty()) ++wrong;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace pixmorph_test
