// Resampling primitives: every form against the plain one, over kinds of line, ratios, lengths and contents. Source and
// destination lie at odd addresses, with guards all around.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kernels/kernel_check.h"
#include "resize/resample_rows.h"
#include "resize/row_plans.h"
#include "support/picture.h"

namespace pixmorph_test {
namespace {

using namespace KorvaneSoftware;

const ChecksSlots kSlots{&LinearRow8, &LinearRow16, &MeanRow8,    &MeanRow16,    &AreaRow8,  &AreaRow16, &HalveRows8,
                         &MeanRows8,  &MeanRows16,  &LinearRows8, &LinearRows16, &AreaRows8, &AreaRows16};

constexpr Fill kFills[] = {Fill::Random, Fill::Extremes, Fill::Ramp, Fill::Max, Fill::Zero};
constexpr LineKind kByteKinds[] = {LineKind::Planar, LineKind::Pairs, LineKind::Bgr,
                                   LineKind::Bgra,   LineKind::Uyvy,  LineKind::Yuy2};
constexpr LineKind kWordKinds[] = {LineKind::Words};

// Runs `run(form, destination)` for both forms on planes that begin alike, and compares them with their guards.
template <class Function, class Run>
void ExpectEqualOutput(Function* variant, Function* plain, std::size_t bytes, int offset, Run run,
                       const std::string& context) {
    TestPlane expected(bytes, 1, {0, false, offset});
    expected.Fill(Fill::Random, 99);
    TestPlane actual = expected;
    TestPlane fromPlain = expected;
    run(plain, fromPlain.Row(0));
    run(variant, actual.Row(0));
    ASSERT_EQ(actual.FirstDifference(fromPlain), "") << context;
    ASSERT_TRUE(actual.GuardsIntact()) << context;
}

template <std::size_t KindCount, std::size_t WidthCount>
void CheckRowSlot(const RowSlot& slot, const LineKind (&kinds)[KindCount],
                  const std::uint32_t (&widths)[WidthCount][2]) {
    ByteGenerator generator(4711);
    for (const LineKind kind : kinds) {
        for (const auto& sizes : widths) {
            const std::uint32_t from = sizes[0];
            const std::uint32_t to = sizes[1];
            RowPlans rowPlans;
            const RowPlan plan = rowPlans.Find(kind, from, to);
            for (const Fill fill : kFills) {
                TestPlane src(LineBytes(kind, from), 1, {0, false, static_cast<int>(generator.Below(64))});
                src.Fill(fill, generator.Below(1u << 30));
                const int offset = static_cast<int>(generator.Below(64));
                const std::string context = "kind " + std::to_string(static_cast<int>(kind)) + " " +
                                            std::to_string(from) + " to " + std::to_string(to);
                ForEachVariant(slot, [&](auto* variant, auto* plain) {
                    ExpectEqualOutput(
                        variant, plain, LineBytes(kind, to), offset,
                        [&](auto* form, std::uint8_t* dst) { form(dst, src.Row(0), plan); }, context);
                });
            }
        }
    }
}

constexpr std::uint32_t kLinearWidths[][2] = {
    {2, 4},     {2, 300},   {4, 6},      {16, 32},    {18, 64},     {34, 36},  {48, 64},     {64, 96},     {100, 102},
    {256, 258}, {360, 960}, {720, 1920}, {720, 1280}, {1280, 1920}, {66, 200}, {1000, 1002}, {1440, 1920}, {62, 1026}};
constexpr std::uint32_t kMeanWidths[][2] = {{4, 2},     {8, 4},     {16, 8},     {32, 16},    {60, 30},   {64, 32},
                                            {68, 34},   {120, 60},  {128, 64},   {132, 66},   {252, 126}, {256, 128},
                                            {260, 130}, {516, 258}, {1920, 960}, {3840, 1920}};
// Reduced sizes around 128, where integers of 16 bits end; means of one half that single precision rounds down (26,
// 44); ratios up to those that have no tables.
constexpr std::uint32_t kAreaWidths[][2] = {
    {6, 4},      {6, 2},      {8, 6},       {30, 20},    {48, 32},    {96, 36},    {64, 48},    {200, 198},
    {254, 94},   {256, 94},   {260, 10},    {104, 4},    {176, 4},    {258, 130},  {300, 100},  {400, 100},
    {514, 12},   {600, 36},   {720, 640},   {1280, 720}, {1000, 960}, {1440, 960}, {1920, 720}, {1920, 1280},
    {1920, 640}, {1920, 480}, {1998, 1996}, {2000, 46},  {2600, 100}, {1920, 8}};

TEST(ResampleKernels, LinearRow8) { CheckRowSlot(LinearRow8, kByteKinds, kLinearWidths); }
TEST(ResampleKernels, LinearRow16) { CheckRowSlot(LinearRow16, kWordKinds, kLinearWidths); }
TEST(ResampleKernels, MeanRow8) { CheckRowSlot(MeanRow8, kByteKinds, kMeanWidths); }
TEST(ResampleKernels, MeanRow16) { CheckRowSlot(MeanRow16, kWordKinds, kMeanWidths); }
TEST(ResampleKernels, AreaRow8) { CheckRowSlot(AreaRow8, kByteKinds, kAreaWidths); }
TEST(ResampleKernels, AreaRow16) { CheckRowSlot(AreaRow16, kWordKinds, kAreaWidths); }

TEST(ResampleKernels, HalveRows8) {
    ByteGenerator generator(4712);
    for (const LineKind kind : kByteKinds) {
        for (const auto& sizes : kMeanWidths) {
            const std::uint32_t from = sizes[0];
            const std::uint32_t to = sizes[1];
            RowPlans rowPlans;
            const RowPlan plan = rowPlans.Find(kind, from, to);
            for (const Fill fill : kFills) {
                TestPlane src(LineBytes(kind, from), 2, {static_cast<int>(generator.Below(40)), false, 3});
                src.Fill(fill, generator.Below(1u << 30));
                ForEachVariant(HalveRows8, [&](auto* variant, auto* plain) {
                    ExpectEqualOutput(
                        variant, plain, LineBytes(kind, to), 5,
                        [&](auto* form, std::uint8_t* dst) { form(dst, src.Row(0), src.Row(1), plan); },
                        "kind " + std::to_string(static_cast<int>(kind)) + " from " + std::to_string(from));
                });
            }
        }
    }
}

// Lengths around one to four registers of each width, and one long line.
std::vector<std::size_t> Lengths() {
    std::vector<std::size_t> lengths{1, 2, 3, 720, 1001};
    for (const std::size_t registerBytes : {16, 32, 64})
        for (const std::size_t length : {registerBytes / 2, registerBytes, 2 * registerBytes, 3 * registerBytes})
            for (const std::size_t around : {length - 1, length, length + 1}) lengths.push_back(around);
    return lengths;
}

// Calls run(form, dst, src) on `rows` lines of every length and content, with padded and negative strides.
template <class Slot, class Run>
void CheckRowsSlot(const Slot& slot, std::size_t sampleBytes, std::size_t rows, Run run) {
    ByteGenerator generator(4713);
    for (const std::size_t samples : Lengths()) {
        for (const Fill fill : kFills) {
            TestPlane src(samples * sampleBytes, rows,
                          {static_cast<int>(generator.Below(40)), (generator.Next() & 1) != 0,
                           static_cast<int>(generator.Below(64))});
            src.Fill(fill, generator.Below(1u << 30));
            const int offset = static_cast<int>(generator.Below(64));
            ForEachVariant(slot, [&](auto* variant, auto* plain) {
                ExpectEqualOutput(
                    variant, plain, samples * sampleBytes, offset,
                    [&](auto* form, std::uint8_t* dst) { run(form, dst, src, samples); },
                    std::to_string(samples) + " samples");
            });
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

TEST(ResampleKernels, MeanRows) {
    const auto run = [](auto* form, std::uint8_t* dst, TestPlane& src, std::size_t samples) {
        form(dst, src.Row(0), src.Row(1), samples);
    };
    CheckRowsSlot(MeanRows8, 1, 2, run);
    CheckRowsSlot(MeanRows16, 2, 2, run);
}

TEST(ResampleKernels, LinearRows) {
    for (const std::int32_t weight : {0, 1, 127, 16383, 16384, 16385, 20000, 32766, 32767, 32768}) {
        const auto run = [weight](auto* form, std::uint8_t* dst, TestPlane& src, std::size_t samples) {
            form(dst, src.Row(0), src.Row(1), samples, weight);
        };
        CheckRowsSlot(LinearRows8, 1, 2, run);
        CheckRowsSlot(LinearRows16, 2, 2, run);
    }
}

TEST(ResampleKernels, AreaRows) {
    static constexpr std::uint32_t kHeights[][2] = {
        {3, 2},    {15, 8}, {9, 4},   {3, 1},  {4, 1},      {5, 1},      {16, 9}, {128, 127},    {128, 9},
        {129, 65}, {26, 1}, {130, 5}, {20, 3}, {1000, 960}, {1080, 719}, {8, 1},  {40000, 39999}};
    for (const auto& sizes : kHeights) {
        const std::uint32_t from = sizes[0];
        const std::uint32_t to = sizes[1];
        const AreaScale scale = MakeAreaScale(from, to);
        for (const std::uint32_t index : {0u, 1u, to / 2, to - 1}) {
            if (index >= to) continue;
            const AreaSpan span = AreaSpanOf(from, to, index);
            SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to) + " row " + std::to_string(index));
            const auto run = [&](auto* form, std::uint8_t* dst, TestPlane& src, std::size_t samples) {
                form(dst, src.Row(0), src.Stride(), samples, span, scale);
            };
            CheckRowsSlot(AreaRows8, 1, span.count, run);
            CheckRowsSlot(AreaRows16, 2, span.count, run);
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
