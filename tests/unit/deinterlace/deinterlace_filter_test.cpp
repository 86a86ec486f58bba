#include "deinterlace/deinterlace_filter_yadif.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "convert/conversion_dispatch.h"
#include "support/features.h"
#include "support/picture.h"
#include "unit/deinterlace/reference_deinterlacer.h"

namespace pixmorph_test {
namespace {

using km::CDeinterlaceFilterYADIF;

constexpr std::uint32_t kNativeFormats[] = {km::FMT_Y444, km::FMT_UYVY, km::FMT_YUY2, km::FMT_Y422,
                                            km::FMT_I420, km::FMT_YV12, km::FMT_IMC1, km::FMT_IMC2,
                                            km::FMT_IMC3, km::FMT_IMC4, km::FMT_Y400};

/// Holds a filter with the count that it is born with.
class Filter {
public:
    explicit Filter(std::uint32_t mode = 0, std::uint32_t threads = 0) : filter_(new CDeinterlaceFilterYADIF) {
        EXPECT_EQ(filter_->Initialize({threads, 0, 0, mode}), km::IMG_OK);
    }
    ~Filter() { filter_->Release(); }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;
    CDeinterlaceFilterYADIF* operator->() const { return filter_; }

private:
    CDeinterlaceFilterYADIF* filter_;
};

// Three frames of one scene: mostly alike, so that every part of the bound decides somewhere.
struct Scene {
    std::vector<TestPicture> frames;

    Scene(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::uint32_t seed,
          const PictureLayout& layout = {}) {
        for (std::uint32_t i = 0; i < 3; ++i) {
            frames.emplace_back(format, width, height, layout);
            frames[i].Fill(Fill::Random, seed);
            ByteGenerator generator(seed + i);
            const int amplitude = 1 << (seed % 7);
            for (TestPlane& plane : frames[i].Planes())
                for (std::size_t y = 0; y < plane.Rows(); ++y)
                    for (std::size_t x = 0; x < plane.RowBytes(); ++x) {
                        const int value = plane.Row(y)[x] / 2 + static_cast<int>(x * 3 + y * 5) % 128 +
                                          static_cast<int>(generator.Below(static_cast<std::uint32_t>(amplitude)));
                        plane.Row(y)[x] = static_cast<std::uint8_t>(std::min(value, 255));
                    }
        }
    }

    void Give(CDeinterlaceFilterYADIF* filter, std::uint32_t structure) const {
        for (const TestPicture& frame : frames) ASSERT_EQ(filter->SetSourceFrame(frame.Desc(), structure), km::IMG_OK);
    }
    TestPicture Expected(const TestPicture& before, const ReferenceSettings& settings) const {
        TestPicture result = before;
        const km::ImageDescriptor sources[3] = {frames[0].Desc(), frames[1].Desc(), frames[2].Desc()};
        DeinterlaceSlowly(result.Desc(), sources, settings);
        return result;
    }
};

std::uint32_t ParityOf(std::uint32_t fieldIntact, std::uint32_t structure) {
    if (fieldIntact < 2) return fieldIntact;
    return (fieldIntact == 2) == (structure == 5) ? 0 : 1;
}

TEST(DeinterlaceFilter, MatchesTheSlowFormInEveryFormatAndMode) {
    std::uint32_t seed = 1;
    const std::vector<std::uint32_t> levels = FeatureLevels();
    for (const std::uint32_t level : levels) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t format : kNativeFormats) {
            for (const std::uint32_t mode : {0u, 1u, 2u, 3u}) {
                // Modes 1 and 3 are 0 and 2 to the filter: once is enough.
                if (mode % 2 == 1 && level != levels.front()) continue;
                for (const std::uint32_t structure : {5u, 6u}) {
                    ++seed;
                    const std::uint32_t width = 32 + 2 * (seed * 7 % 90);
                    const std::uint32_t height = 4 + 4 * (seed % 20);
                    const Scene scene(format, width, height, seed, {static_cast<int>(seed % 3) * 12, seed % 2 == 0, 0});
                    Filter filter(mode, 1 + seed % 4);
                    scene.Give(filter.operator->(), structure);
                    for (const std::uint32_t fieldIntact : {0u, 1u, 2u, 3u}) {
                        TestPicture output(format, width, height, {20, seed % 4 == 1, 1});
                        output.Fill(Fill::Random, seed);
                        const TestPicture expected =
                            scene.Expected(output, {structure == 5, ParityOf(fieldIntact, structure), mode < 2});
                        ASSERT_EQ(filter->GetFrame(output.Desc(), fieldIntact), km::IMG_OK);
                        ASSERT_EQ(output.FirstDifference(expected), "")
                            << "format " << format << " mode " << mode << " structure " << structure << " field "
                            << fieldIntact << " size " << width << "x" << height << " level " << level;
                        ASSERT_TRUE(output.GuardsIntact());
                    }
                }
            }
        }
    }
}

// Values above 3 are no parity of their own: the bottom field is kept, and the missing one is sought between the frame
// shown and the next one whatever the order of the fields.
TEST(DeinterlaceFilter, FieldIntactAboveThreeKeepsTheBottomField) {
    for (const std::uint32_t structure : {5u, 6u})
        for (const std::uint32_t fieldIntact : {4u, 5u, 100u, 0xFFFFFFFFu}) {
            const Scene scene(km::FMT_Y422, 64, 24, fieldIntact + structure);
            Filter filter;
            scene.Give(filter.operator->(), structure);
            TestPicture output(km::FMT_Y422, 64, 24);
            ASSERT_EQ(filter->GetFrame(output.Desc(), fieldIntact), km::IMG_OK);
            EXPECT_EQ(output.FirstDifference(scene.Expected(output, {structure == 5, fieldIntact, true})), "");
        }
}

TEST(DeinterlaceFilter, SmallestPlanes) {
    std::uint32_t seed = 100;
    for (const std::uint32_t height : {2u, 4u, 6u})
        for (const std::uint32_t width : {16u, 17u, 18u, 24u})
            for (const std::uint32_t format : {+km::FMT_Y400, +km::FMT_UYVY, +km::FMT_YUY2}) {
                if (format != km::FMT_Y400 && width % 2 != 0) continue;
                for (const std::uint32_t fieldIntact : {0u, 1u}) {
                    const Scene scene(format, width, height, ++seed);
                    Filter filter;
                    scene.Give(filter.operator->(), 5);
                    TestPicture output(format, width, height, {7, false, 3});
                    ASSERT_EQ(filter->GetFrame(output.Desc(), fieldIntact), km::IMG_OK);
                    ASSERT_EQ(output.FirstDifference(scene.Expected(output, {true, fieldIntact, true})), "")
                        << format << " " << width << "x" << height << " field " << fieldIntact;
                    ASSERT_TRUE(output.GuardsIntact());
                }
            }
}

TEST(DeinterlaceFilter, ChromaPlanesOfTwoLines) {
    for (const std::uint32_t fieldIntact : {0u, 1u}) {
        const Scene scene(km::FMT_I420, 32, 4, 12);
        Filter filter;
        scene.Give(filter.operator->(), 6);
        TestPicture output(km::FMT_I420, 32, 4);
        ASSERT_EQ(filter->GetFrame(output.Desc(), fieldIntact), km::IMG_OK);
        EXPECT_EQ(output.FirstDifference(scene.Expected(output, {false, fieldIntact, true})), "");
    }
}

TEST(DeinterlaceFilter, BandsDoNotShow) {
    const Scene scene(km::FMT_I420, 96, 88, 3);
    Filter filter;
    scene.Give(filter.operator->(), 5);
    for (const std::uint32_t parity : {0u, 1u}) {
        TestPicture whole(km::FMT_I420, 96, 88);
        ASSERT_EQ(filter->FilterBand(whole.Desc(), parity, {0, 0, 96, 88}), km::IMG_OK);
        EXPECT_EQ(whole.FirstDifference(scene.Expected(whole, {true, parity, true})), "");
        for (unsigned threads = 1; threads <= 4; ++threads) {
            TestPicture banded(km::FMT_I420, 96, 88);
            const km::BandTable table = km::LayOutBands(96, 88, threads);
            for (unsigned i = table.count; i-- > 0;)
                ASSERT_EQ(filter->FilterBand(banded.Desc(), parity, table.bands[i]), km::IMG_OK);
            EXPECT_EQ(banded.FirstDifference(whole), "") << threads;
        }
        // A band writes its own lines and no others.
        TestPicture one(km::FMT_I420, 96, 88);
        one.Fill(Fill::Max, 0);
        ASSERT_EQ(filter->FilterBand(one.Desc(), parity, {0, 20, 96, 24}), km::IMG_OK);
        for (std::size_t y = 0; y < 88; ++y) {
            const bool inside = y >= 20 && y < 44;
            const std::vector<std::uint8_t> untouched(96, 255);
            const std::uint8_t* const expected = inside ? whole.Plane(0).Row(y) : untouched.data();
            EXPECT_TRUE(std::equal(expected, expected + 96, one.Plane(0).Row(y))) << y;
        }
    }
}

TEST(DeinterlaceFilter, BandTable) {
    const auto edges = [](std::uint32_t height, unsigned threads) {
        const km::BandTable table = km::LayOutBands(64, height, threads);
        std::vector<int> result;
        int top = 0;
        for (unsigned i = 0; i < table.count; ++i) {
            EXPECT_EQ(table.bands[i].x, 0);
            EXPECT_EQ(table.bands[i].width, 64);
            EXPECT_EQ(table.bands[i].y, top);
            top += table.bands[i].height;
            result.push_back(top);
        }
        return result;
    };
    EXPECT_EQ(edges(8, 4), (std::vector<int>{8}));
    EXPECT_EQ(edges(16, 4), (std::vector<int>{16}));
    EXPECT_EQ(edges(32, 4), (std::vector<int>{16, 32}));
    EXPECT_EQ(edges(1080, 4), (std::vector<int>{272, 540, 812, 1080}));
    EXPECT_EQ(edges(1080, 3), (std::vector<int>{360, 720, 1080}));
    EXPECT_EQ(edges(1080, 2), (std::vector<int>{540, 1080}));
    EXPECT_EQ(edges(1082, 2), (std::vector<int>{544, 1082}));
    EXPECT_EQ(edges(1080, 1), (std::vector<int>{1080}));
}

// The same three frames in every field make the missing lines certain: without the spatial check nothing changes.
TEST(DeinterlaceFilter, StillSceneIsReproduced) {
    TestPicture frame(km::FMT_Y400, 64, 32);
    frame.Fill(Fill::Random, 5);
    for (const std::uint32_t fieldIntact : {0u, 1u}) {
        Filter filter(2);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(filter->SetSourceFrame(frame.Desc(), 5), km::IMG_OK);
        TestPicture output(km::FMT_Y400, 64, 32);
        ASSERT_EQ(filter->GetFrame(output.Desc(), fieldIntact), km::IMG_OK);
        for (std::size_t y = 2; y < 30; ++y)
            EXPECT_TRUE(std::equal(frame.Plane(0).Row(y) + 4, frame.Plane(0).Row(y) + 60, output.Plane(0).Row(y) + 4))
                << y;
    }
}

// Worked by hand: 16 columns of constants per line, so that every direction agrees and only the bound decides.
TEST(DeinterlaceFilter, WorkedColumn) {
    const int lines[3][8] = {
        {10, 40, 10, 41, 10, 42, 10, 43}, {20, 50, 20, 60, 20, 70, 20, 80}, {20, 90, 20, 95, 20, 99, 20, 99}};
    Filter filter(2);
    for (const auto& frame : lines) {
        TestPicture picture(km::FMT_Y400, 16, 8);
        for (std::size_t y = 0; y < 8; ++y)
            std::fill_n(picture.Plane(0).Row(y), 16, static_cast<std::uint8_t>(frame[y]));
        ASSERT_EQ(filter->SetSourceFrame(picture.Desc(), 5), km::IMG_OK);
    }
    TestPicture output(km::FMT_Y400, 16, 8);
    ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
    const auto middle = [&](std::size_t y) { return static_cast<int>(output.Plane(0).Row(y)[8]); };
    const auto edge = [&](std::size_t y) { return static_cast<int>(output.Plane(0).Row(y)[3]); };
    // Line 3: between 41 before and 60 now the mean is 51, and they differ by 19: half of it, rounded up, is 10. The
    // lines around are 20 in all frames but the previous one, where they are 10: (10 + 10 + 1) >> 1 is 10. So 41 to 61
    // are allowed, and the spatial mean of 20 becomes 41.
    EXPECT_EQ(middle(3), 41);
    EXPECT_EQ(edge(3), 20);
    // Line 5: mean of 42 and 70 is 56, bound 14.
    EXPECT_EQ(middle(5), 42);
    EXPECT_EQ(middle(1), 20);
    EXPECT_EQ(middle(7), 20);
    // With the bottom field kept, line 2 lies in time between now and the next frame: 20 in both, and the lines around
    // went from 40 and 41 to 50 and 60 to 90 and 95. The bound is (40 + 35 + 1) >> 1 = 38, the spatial mean 55.
    ASSERT_EQ(filter->GetFrame(output.Desc(), 1), km::IMG_OK);
    EXPECT_EQ(middle(2), 55);
    EXPECT_EQ(middle(0), 50);
    EXPECT_EQ(middle(6), 75);
}

// Frames large enough that several threads copy them into the history.
TEST(DeinterlaceFilter, LargeFrames) {
    for (const std::uint32_t format : {+km::FMT_UYVY, +km::FMT_IMC2}) {
        const Scene scene(format, 720, 576, 50 + format, {16, format == km::FMT_UYVY, 0});
        TestPicture output(format, 720, 576);
        const TestPicture expected = scene.Expected(output, {true, 0, true});
        for (const std::uint32_t threads : {1u, 4u}) {
            Filter filter(0, threads);
            scene.Give(filter.operator->(), 5);
            output.Fill(Fill::Zero, 0);
            ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
            EXPECT_EQ(output.FirstDifference(expected), "") << format;
        }
    }
    km::ImageDescriptor missing;
    missing.format = km::FMT_UYVY;
    missing.width = 720;
    missing.height = 576;
    Filter filter;
    EXPECT_EQ(filter->SetSourceFrame(missing, 5), km::IMG_E_NULL_ARG);
}

// Every format that the history holds can be had in another one.
TEST(DeinterlaceFilter, NativeFormatsAreConvertedOnTheWayOut) {
    for (const std::uint32_t format : kNativeFormats) {
        const std::uint32_t wanted = format == km::FMT_UYVY   ? +km::FMT_YUY2
                                     : format == km::FMT_Y444 ? +km::FMT_BGR
                                                              : +km::FMT_UYVY;
        const Scene scene(format, 64, 32, 70 + format);
        Filter filter;
        scene.Give(filter.operator->(), 6);
        TestPicture direct(format, 64, 32);
        TestPicture expected(wanted, 64, 32);
        TestPicture actual(wanted, 64, 32);
        ASSERT_EQ(filter->GetFrame(direct.Desc(), 3), km::IMG_OK);
        ASSERT_EQ(km::ImageConversionDispatch(expected.Desc(), direct.Desc()), km::IMG_OK) << format;
        ASSERT_EQ(filter->GetFrame(actual.Desc(), 3), km::IMG_OK) << format;
        EXPECT_EQ(actual.FirstDifference(expected), "") << format;
    }
}

TEST(DeinterlaceFilter, OtherFormatsGoThroughUyvy) {
    Scene scene(km::FMT_UYVY, 64, 32, 21);
    Filter filter;
    Filter direct;
    for (TestPicture& frame : scene.frames) {
        TestPicture rgb(km::FMT_BGRA, 64, 32);
        ASSERT_EQ(km::ImageConversionDispatch(rgb.Desc(), frame.Desc()), km::IMG_OK);
        ASSERT_EQ(filter->SetSourceFrame(rgb.Desc(), 5), km::IMG_OK);
        ASSERT_EQ(km::ImageConversionDispatch(frame.Desc(), rgb.Desc()), km::IMG_OK);
        ASSERT_EQ(direct->SetSourceFrame(frame.Desc(), 5), km::IMG_OK);
    }
    TestPicture expected(km::FMT_UYVY, 64, 32);
    TestPicture actual(km::FMT_UYVY, 64, 32);
    ASSERT_EQ(direct->GetFrame(expected.Desc(), 0), km::IMG_OK);
    ASSERT_EQ(filter->GetFrame(actual.Desc(), 0), km::IMG_OK);
    EXPECT_EQ(actual.FirstDifference(expected), "");
    for (const std::uint32_t format : {+km::FMT_BGR, +km::FMT_YUY2, +km::FMT_NV12, +km::FMT_Y16}) {
        TestPicture converted(format, 64, 32);
        TestPicture output(format, 64, 32);
        ASSERT_EQ(km::ImageConversionDispatch(converted.Desc(), expected.Desc()), km::IMG_OK);
        ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
        EXPECT_EQ(output.FirstDifference(converted), "") << format;
    }
    TestPicture noPath(km::FMT_Y32, 64, 32);
    EXPECT_NE(filter->GetFrame(noPath.Desc(), 0), km::IMG_OK);
}

// The colours of the output are those of the frame shown, not of the one that was given last.
TEST(DeinterlaceFilter, ConvertsWithTheMatrixOfTheFrameShown) {
    Scene scene(km::FMT_UYVY, 64, 32, 22);
    Filter filter;
    Filter plain;
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(plain->SetSourceFrame(scene.frames[i].Desc(), 5), km::IMG_OK);
        scene.frames[i].Desc().colorMatrix = i == 1 ? 3 : 0;
        ASSERT_EQ(filter->SetSourceFrame(scene.frames[i].Desc(), 5), km::IMG_OK);
    }
    TestPicture uyvy(km::FMT_UYVY, 64, 32, {}, 3);
    TestPicture expected(km::FMT_BGRA, 64, 32);
    TestPicture actual(km::FMT_BGRA, 64, 32);
    ASSERT_EQ(plain->GetFrame(uyvy.Desc(), 0), km::IMG_OK);
    ASSERT_EQ(km::ImageConversionDispatch(expected.Desc(), uyvy.Desc()), km::IMG_OK);
    ASSERT_EQ(filter->GetFrame(actual.Desc(), 0), km::IMG_OK);
    EXPECT_EQ(actual.FirstDifference(expected), "");
}

TEST(DeinterlaceFilter, RingMovesOn) {
    Filter filter;
    std::vector<TestPicture> frames;
    for (std::uint32_t i = 0; i < 8; ++i) {
        frames.emplace_back(km::FMT_Y422, 48, 16);
        frames.back().Fill(Fill::Random, 300 + i);
        ASSERT_EQ(filter->SetSourceFrame(frames.back().Desc(), 6), km::IMG_OK);
        TestPicture output(km::FMT_Y422, 48, 16);
        if (i < 2) {
            EXPECT_EQ(filter->GetFrame(output.Desc(), 0), km::kFramePending);
            continue;
        }
        const km::ImageDescriptor sources[3] = {frames[i - 2].Desc(), frames[i - 1].Desc(), frames[i].Desc()};
        TestPicture expected(km::FMT_Y422, 48, 16);
        DeinterlaceSlowly(expected.Desc(), sources, {false, 0, true});
        for (int again = 0; again < 2; ++again) {
            ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
            EXPECT_EQ(output.FirstDifference(expected), "") << i;
        }
    }
}

TEST(DeinterlaceFilter, AnotherShapeStartsTheHistoryAnew) {
    TestPicture first(km::FMT_UYVY, 64, 32);
    first.Fill(Fill::Random, 1);
    struct Shape {
        std::uint32_t format, width, height;
    };
    for (const Shape& shape : {Shape{km::FMT_UYVY, 66, 32}, Shape{km::FMT_UYVY, 64, 64}, Shape{km::FMT_YUY2, 64, 32}}) {
        Filter filter;
        for (int i = 0; i < 3; ++i) ASSERT_EQ(filter->SetSourceFrame(first.Desc(), 5), km::IMG_OK);
        TestPicture other(shape.format, shape.width, shape.height);
        other.Fill(Fill::Random, 2);
        TestPicture output(shape.format, shape.width, shape.height);
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(filter->SetSourceFrame(other.Desc(), 5), km::IMG_OK);
            EXPECT_EQ(filter->GetFrame(output.Desc(), 0), km::kFramePending);
        }
        ASSERT_EQ(filter->SetSourceFrame(other.Desc(), 5), km::IMG_OK);
        ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
        const km::ImageDescriptor sources[3] = {other.Desc(), other.Desc(), other.Desc()};
        TestPicture expected(shape.format, shape.width, shape.height);
        DeinterlaceSlowly(expected.Desc(), sources, {true, 0, true});
        EXPECT_EQ(output.FirstDifference(expected), "");
    }
}

// BGRA and UYVY are the same in the ring, so a change between them is none.
TEST(DeinterlaceFilter, FormatsThatBecomeUyvyShareAHistory) {
    TestPicture rgb(km::FMT_BGRA, 64, 32);
    rgb.Fill(Fill::Random, 1);
    TestPicture uyvy(km::FMT_UYVY, 64, 32);
    uyvy.Fill(Fill::Random, 2);
    Filter filter;
    ASSERT_EQ(filter->SetSourceFrame(rgb.Desc(), 5), km::IMG_OK);
    ASSERT_EQ(filter->SetSourceFrame(uyvy.Desc(), 5), km::IMG_OK);
    ASSERT_EQ(filter->SetSourceFrame(rgb.Desc(), 5), km::IMG_OK);
    TestPicture output(km::FMT_UYVY, 64, 32);
    EXPECT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
}

TEST(DeinterlaceFilter, RefusedFrames) {
    TestPicture frame(km::FMT_UYVY, 64, 32);
    frame.Fill(Fill::Random, 1);
    TestPicture output(km::FMT_UYVY, 64, 32);
    Filter filter;
    for (const std::uint32_t structure : {0u, 4u, 7u, 0xFFFFFFFFu})
        EXPECT_EQ(filter->SetSourceFrame(frame.Desc(), structure), km::IMG_E_BAD_STRUCTURE);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(filter->SetSourceFrame(frame.Desc(), 5), km::IMG_OK);
    ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
    const TestPicture before = output;

    km::ImageDescriptor bad = frame.Desc();
    bad.planes[0] = nullptr;
    EXPECT_NE(filter->SetSourceFrame(bad, 5), km::IMG_OK);
    bad = frame.Desc();
    bad.format = km::FMT_NV11;
    EXPECT_NE(filter->SetSourceFrame(bad, 5), km::IMG_OK);
    bad.format = 0;
    EXPECT_NE(filter->SetSourceFrame(bad, 5), km::IMG_OK);
    // Refused at the history's own size and format, they have changed nothing.
    output.Fill(Fill::Zero, 0);
    ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
    EXPECT_EQ(output.FirstDifference(before), "");

    // At another size the history is gone although the frame was not taken.
    bad = frame.Desc();
    bad.width = 32;
    bad.planes[0] = nullptr;
    EXPECT_NE(filter->SetSourceFrame(bad, 5), km::IMG_OK);
    EXPECT_EQ(filter->GetFrame(output.Desc(), 0), km::kFramePending);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(filter->SetSourceFrame(frame.Desc(), 5), km::IMG_OK);
    EXPECT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);

    bad = frame.Desc();
    bad.height = 0;
    EXPECT_EQ(filter->SetSourceFrame(bad, 5), km::IMG_E_BAD_SIZE);
    bad.width = bad.height = 0xFFFFFFFF;
    EXPECT_EQ(filter->SetSourceFrame(bad, 5), km::IMG_E_NO_MEMORY);
}

TEST(DeinterlaceFilter, RefusedOutputs) {
    const auto statusOf = [](std::uint32_t format, std::uint32_t width, std::uint32_t height) {
        TestPicture frame(format, width, height);
        Filter filter;
        for (int i = 0; i < 3; ++i) EXPECT_EQ(filter->SetSourceFrame(frame.Desc(), 5), km::IMG_OK);
        TestPicture output(format, width, height);
        const km::Status status = filter->GetFrame(output.Desc(), 0);
        EXPECT_TRUE(output.GuardsIntact());
        return status;
    };
    EXPECT_EQ(statusOf(km::FMT_Y400, 15, 16), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(km::FMT_UYVY, 14, 16), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(statusOf(km::FMT_Y422, 30, 16), km::IMG_E_BAD_SIZE);  // Chroma planes of 15 samples.
    EXPECT_EQ(statusOf(km::FMT_Y422, 32, 16), km::IMG_OK);
    EXPECT_EQ(statusOf(km::FMT_Y400, 64, 17), km::IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(km::FMT_UYVY, 64, 33), km::IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(km::FMT_I420, 64, 18), km::IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(km::FMT_YV12, 64, 17), km::IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(statusOf(km::FMT_YVYU, 64, 32), km::IMG_E_UNSUPPORTED);

    TestPicture frame(km::FMT_UYVY, 64, 32);
    Filter filter;
    for (int i = 0; i < 3; ++i) ASSERT_EQ(filter->SetSourceFrame(frame.Desc(), 5), km::IMG_OK);
    km::ImageDescriptor output = frame.Desc();
    output.width = 62;
    EXPECT_EQ(filter->GetFrame(output, 0), km::IMG_E_BAD_SIZE);
    output = frame.Desc();
    output.height = 30;
    EXPECT_EQ(filter->GetFrame(output, 0), km::IMG_E_BAD_SIZE);
    output = frame.Desc();
    output.planes[0] = nullptr;
    EXPECT_EQ(filter->GetFrame(output, 0), km::IMG_E_NULL_ARG);

    output = frame.Desc();
    const TestPicture before = frame;
    EXPECT_EQ(filter->FilterBand(output, 0, {0, 0, 64, 34}), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(filter->FilterBand(output, 0, {2, 0, 64, 32}), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(filter->FilterBand(output, 0, {0, -2, 64, 16}), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(filter->FilterBand(output, 0, {0, 1, 64, 16}), km::IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(filter->FilterBand(output, 0, {0, 0, 64, 15}), km::IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(filter->FilterBand(output, 0, {0, 8, 64, 0}), km::IMG_OK);
    output.format = km::FMT_YUY2;
    EXPECT_EQ(filter->FilterBand(output, 0, {0, 0, 64, 32}), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(frame.FirstDifference(before), "");
}

TEST(DeinterlaceFilter, ModesAndReconfiguration) {
    const Scene scene(km::FMT_Y400, 64, 64, 6);
    Filter filter(0, 4);
    EXPECT_EQ(filter->Initialize({0, 0, 0, 4}), km::IMG_E_UNSUPPORTED);
    scene.Give(filter.operator->(), 5);
    // Fewer threads and another mode in mid-stream; the history stays.
    ASSERT_EQ(filter->Initialize({1, 0, 0, 2}), km::IMG_OK);
    TestPicture output(km::FMT_Y400, 64, 64);
    ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
    EXPECT_EQ(output.FirstDifference(scene.Expected(output, {true, 0, false})), "");
    ASSERT_EQ(filter->Initialize({0, 1, 0, 0}), km::IMG_OK);
    ASSERT_EQ(filter->GetFrame(output.Desc(), 0), km::IMG_OK);
    EXPECT_EQ(output.FirstDifference(scene.Expected(output, {true, 0, true})), "");
}

TEST(DeinterlaceFilter, QueriesAndCounts) {
    auto* const filter = new CDeinterlaceFilterYADIF;
    void* object = nullptr;
    EXPECT_EQ(filter->QueryInterface(km::IID_InwardVideoDeinterlacer, nullptr), km::IMG_E_NULL_ARG);
    EXPECT_EQ(filter->QueryInterface(IID_IUnknown, &object), km::IMG_E_NO_PATH);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(filter->QueryInterface(km::IID_InwardVideoDeinterlacer, &object), km::IMG_OK);
    EXPECT_EQ(object, static_cast<km::IVideoDeinterlacer*>(filter));
    EXPECT_EQ(filter->AddRef(), 3u);
    EXPECT_EQ(filter->Release(), 2u);
    EXPECT_EQ(filter->Release(), 1u);
    EXPECT_EQ(filter->Release(), 0u);
}

}  // namespace
}  // namespace pixmorph_test
