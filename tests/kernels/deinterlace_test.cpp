#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "deinterlace/blend_lines.h"
#include "deinterlace/line_filter.h"
#include "deinterlace/restoration_lines.h"
#include "kernels/kernel_check.h"
#include "support/guard_page.h"
#include "support/picture.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kChecked{&km::InterpolateLine, &km::CombineLine,    &km::FilterPlaneLine,
                           &km::FilterUyvyLine,  &km::FilterYuy2Line, &km::RestoreLineY16,
                           &km::RestoreLineY16A, &km::PresentLineY16, &km::PresentLineY16A};

using Bytes = std::vector<std::uint8_t>;

constexpr Fill kFills[] = {Fill::Random, Fill::Extremes, Fill::Ramp, Fill::Max, Fill::Zero};
constexpr std::size_t kMargin = 80;

Bytes Filled(std::size_t size, Fill fill, std::uint32_t seed) {
    Bytes bytes(size);
    FillBytes(bytes, fill, seed);
    return bytes;
}

// A row that ends before a page that cannot be read or starts after one.
class GuardedRow : public GuardPageBuffer {
public:
    GuardedRow(const Bytes& content, Side side) : GuardPageBuffer(content.size(), side) {
        std::copy(content.begin(), content.end(), Data());
    }
};

constexpr GuardPageBuffer::Side kSides[] = {GuardPageBuffer::Side::End, GuardPageBuffer::Side::Start};

constexpr std::size_t kCounts[] = {0,  1,  2,  7,  8,  15, 16,  17,  31,  32,  33,  47,  63,  64,
                                   65, 79, 95, 96, 97, 99, 127, 128, 129, 191, 255, 257, 720, 1921};
// The weights that callers use, and some whose products wrap.
constexpr std::uint32_t kWeights[] = {0, 1, 77, 127, 128, 129, 254, 255, 256, 257, 300, 65535, 65536, 0xFFFFFFFF};

TEST(DeinterlaceKernels, CombineLine) {
    ForEachVariant(km::CombineLine, [](auto* variant, auto* plain) {
        std::uint32_t seed = 1;
        for (const std::size_t count : kCounts) {
            for (const std::uint32_t weight : kWeights) {
                for (const Fill fill : {Fill::Random, Fill::Extremes}) {
                    const Bytes forward = Filled(count, fill, ++seed);
                    const Bytes backward = Filled(count, fill, ++seed);
                    const Bytes before(count + 2 * kMargin, 0xA5);
                    Bytes expected = before;
                    Bytes actual = before;
                    plain(expected.data() + kMargin, forward.data(), backward.data(), count, weight);
                    variant(actual.data() + kMargin, forward.data(), backward.data(), count, weight);
                    ASSERT_EQ(GuardedLineDifference(actual, expected, kMargin), "")
                        << count << " bytes, weight " << weight << ", seed " << seed;
                    for (const bool overForward : {true, false}) {
                        Bytes inPlace = overForward ? forward : backward;
                        inPlace.resize(count + 1, 0xA5);
                        variant(inPlace.data(), overForward ? inPlace.data() : forward.data(),
                                overForward ? backward.data() : inPlace.data(), count, weight);
                        ASSERT_EQ(LineDifference({inPlace.data(), count}, {expected.data() + kMargin, count}), "")
                            << "in place, " << count << " bytes, weight " << weight << ", seed " << seed;
                        ASSERT_EQ(inPlace.back(), 0xA5);
                    }
                }
            }
            for (const auto side : kSides) {
                GuardedRow forward(Filled(count, Fill::Random, 5), side);
                GuardedRow backward(Filled(count, Fill::Random, 6), side);
                GuardedRow dst(Bytes(count), side);
                variant(dst.Data(), forward.Data(), backward.Data(), count, 77);
            }
        }
    });
}

TEST(DeinterlaceKernels, InterpolateLine) {
    ForEachVariant(km::InterpolateLine, [](auto* variant, auto* plain) {
        std::uint32_t seed = 1;
        for (const std::size_t count : kCounts) {
            for (const std::uint32_t weight : kWeights) {
                for (const Fill fill : {Fill::Random, Fill::Extremes}) {
                    Bytes sources[3];
                    for (Bytes& source : sources) source = Filled(count + 1, fill, ++seed);
                    const Bytes before(count + 2 * kMargin, 0xA5);
                    Bytes expected = before;
                    Bytes actual = before;
                    plain(expected.data() + kMargin, sources[0].data(), sources[1].data(), sources[2].data(), count,
                          weight);
                    variant(actual.data() + kMargin, sources[0].data(), sources[1].data(), sources[2].data(), count,
                            weight);
                    ASSERT_EQ(GuardedLineDifference(actual, expected, kMargin), "")
                        << count << " bytes, weight " << weight << ", seed " << seed;
                    for (std::size_t over = 0; over < 3; ++over) {
                        Bytes copies[3] = {sources[0], sources[1], sources[2]};
                        variant(copies[over].data(), copies[0].data(), copies[1].data(), copies[2].data(), count,
                                weight);
                        ASSERT_EQ(LineDifference({copies[over].data(), count}, {expected.data() + kMargin, count}), "")
                            << "over source " << over << ", " << count << " bytes, weight " << weight << ", seed "
                            << seed;
                        ASSERT_EQ(copies[over].back(), sources[over].back());
                    }
                }
            }
            for (const auto side : kSides) {
                GuardedRow field(Filled(count, Fill::Random, 5), side);
                GuardedRow above(Filled(count, Fill::Random, 6), side);
                GuardedRow below(Filled(count, Fill::Random, 7), side);
                GuardedRow dst(Bytes(count), side);
                variant(dst.Data(), field.Data(), above.Data(), below.Data(), count, 77);
            }
        }
    });
}

// Three frames of five lines; the middle line is rebuilt.
struct FilterInput {
    std::size_t rowBytes;
    std::ptrdiff_t stride;
    Bytes frames[3];

    FilterInput(std::size_t bytes, std::size_t padding, Fill fill, std::uint32_t seed)
        : rowBytes(bytes), stride(static_cast<std::ptrdiff_t>(bytes + padding)) {
        for (std::uint32_t i = 0; i < 3; ++i) frames[i] = Filled(5 * (bytes + padding) - padding, fill, seed + i);
    }

    km::FilterSources Sources(bool keptFieldIsFirst, bool upward = false) const {
        const std::uint8_t* const line[3] = {Middle(0), Middle(1), Middle(2)};
        return {line[1],
                line[0],
                line[2],
                line[keptFieldIsFirst ? 0 : 1],
                line[keptFieldIsFirst ? 1 : 2],
                upward ? -stride : stride};
    }
    const std::uint8_t* Middle(std::size_t frame) const { return frames[frame].data() + 2 * stride; }
};

void CheckFilter(const km::FilterLineSlot& slot, std::size_t bytesPerSample) {
    ForEachVariant(slot, [bytesPerSample](auto* variant, auto* plain) {
        std::vector<std::size_t> widths;
        for (std::size_t width = 16; width <= 170; ++width) widths.push_back(width);
        for (const std::size_t width : {255, 256, 257, 360, 720, 1921}) widths.push_back(width);
        std::uint32_t seed = 1;
        for (const std::size_t width : widths) {
            const std::size_t rowBytes = width * bytesPerSample;
            for (int round = 0; round < 8; ++round) {
                const bool spatialCheck = (round & 1) != 0;
                const bool keptFieldIsFirst = (round & 2) != 0;
                const bool upward = (round & 4) != 0;
                for (const Fill fill : kFills) {
                    FilterInput input(rowBytes, round % 3, fill, seed += 3);
                    const Bytes before = Filled(rowBytes + 2 * kMargin, Fill::Random, seed);
                    Bytes expected = before;
                    Bytes actual = before;
                    const km::FilterSources sources = input.Sources(keptFieldIsFirst, upward);
                    plain(expected.data() + kMargin, sources, width, spatialCheck);
                    variant(actual.data() + kMargin, sources, width, spatialCheck);
                    ASSERT_EQ(GuardedLineDifference(actual, expected, kMargin), "")
                        << "width " << width << " fill " << static_cast<int>(fill) << " round " << round << " seed "
                        << seed;
                }
            }
        }
    });
}

// Smooth pictures with small differences between the frames: the branches that random bytes seldom take.
void CheckFilterOnGradients(const km::FilterLineSlot& slot, std::size_t bytesPerSample) {
    ForEachVariant(slot, [bytesPerSample](auto* variant, auto* plain) {
        ByteGenerator generator(77);
        for (int round = 0; round < 400; ++round) {
            const std::size_t width = 16 + generator.Below(250);
            FilterInput input(width * bytesPerSample, generator.Below(4), Fill::Zero, 1);
            const int slope = static_cast<int>(generator.Below(15)) - 7;
            const int lean = static_cast<int>(generator.Below(25)) - 12;
            const std::uint32_t noise = 1 + generator.Below(8);
            const int motion = static_cast<int>(generator.Below(10));
            for (int frame = 0; frame < 3; ++frame)
                for (std::size_t i = 0; i < input.frames[frame].size(); ++i) {
                    const int row = static_cast<int>(i) / static_cast<int>(input.stride);
                    const int column = static_cast<int>(i) % static_cast<int>(input.stride);
                    input.frames[frame][i] = static_cast<std::uint8_t>(
                        std::clamp(128 + slope * (column % 40 - 20) + lean * (row - 2) + motion * frame +
                                       static_cast<int>(generator.Below(noise)),
                                   0, 255));
                }
            for (const bool spatialCheck : {false, true}) {
                Bytes expected(width * bytesPerSample);
                Bytes actual(width * bytesPerSample);
                const km::FilterSources sources = input.Sources((round & 1) != 0);
                plain(expected.data(), sources, width, spatialCheck);
                variant(actual.data(), sources, width, spatialCheck);
                ASSERT_EQ(LineDifference(actual, expected), "")
                    << "width " << width << " round " << round << " seed 77";
            }
        }
    });
}

// Without the spatial check nothing is read two lines away; with it nothing beyond; and no byte beside the rows.
void CheckFilterReach(const km::FilterLineSlot& slot, std::size_t bytesPerSample) {
    ForEachVariant(slot, [bytesPerSample](auto* variant, auto*) {
        for (const std::size_t width : {16, 17, 31, 40, 48, 63, 72, 73, 100, 136, 200}) {
            const std::size_t rowBytes = width * bytesPerSample;
            const auto stride = static_cast<std::ptrdiff_t>(rowBytes);
            for (const bool spatialCheck : {false, true}) {
                const std::ptrdiff_t reach = spatialCheck ? 2 : 1;
                for (const auto side : kSides) {
                    const Bytes content = Filled((2 * reach + 1) * rowBytes, Fill::Random, 9);
                    GuardedRow previous(content, side);
                    GuardedRow current(content, side);
                    GuardedRow next(content, side);
                    GuardedRow dst(Bytes(rowBytes), side);
                    const std::ptrdiff_t middle = reach * stride;
                    variant(dst.Data(),
                            {current.Data() + middle, previous.Data() + middle, next.Data() + middle,
                             previous.Data() + middle, current.Data() + middle, stride},
                            width, spatialCheck);
                }
            }
        }
    });
}

TEST(DeinterlaceKernels, FilterPlaneLine) { CheckFilter(km::FilterPlaneLine, 1); }
TEST(DeinterlaceKernels, FilterUyvyLine) { CheckFilter(km::FilterUyvyLine, 2); }
TEST(DeinterlaceKernels, FilterYuy2Line) { CheckFilter(km::FilterYuy2Line, 2); }

TEST(DeinterlaceKernelsOnGradients, FilterPlaneLine) { CheckFilterOnGradients(km::FilterPlaneLine, 1); }
TEST(DeinterlaceKernelsOnGradients, FilterUyvyLine) { CheckFilterOnGradients(km::FilterUyvyLine, 2); }
TEST(DeinterlaceKernelsOnGradients, FilterYuy2Line) { CheckFilterOnGradients(km::FilterYuy2Line, 2); }

TEST(DeinterlaceKernelReach, FilterPlaneLine) { CheckFilterReach(km::FilterPlaneLine, 1); }
TEST(DeinterlaceKernelReach, FilterUyvyLine) { CheckFilterReach(km::FilterUyvyLine, 2); }
TEST(DeinterlaceKernelReach, FilterYuy2Line) { CheckFilterReach(km::FilterYuy2Line, 2); }

constexpr std::size_t kGroupCounts[] = {1, 2, 3, 4, 5, 7, 8, 9, 45, 120};
constexpr km::MotionThresholds kThresholds[] = {
    {0, 255},   {0, 0},     {10, 60}, {30, 30},     {60, 10},   {0, 1},           {5, 100},         {100, 1000},
    {300, 500}, {254, 256}, {0, 765}, {0, 0x10006}, {764, 765}, {0, 0xFFFFFFFFu}, {1, 0x80000001u}, {3, 65539}};

// Close neighbours in time as well as distant ones: motions from 0 to 765 and all weights occur.
void FillFields(Bytes (&lines)[4], std::size_t size, Fill fill, std::uint32_t seed) {
    for (std::uint32_t i = 0; i < 4; ++i) lines[i] = Filled(size, fill, seed + i);
    if (fill != Fill::Ramp) return;
    ByteGenerator generator(seed);
    lines[1] = lines[0];
    for (std::uint8_t& byte : lines[1])
        byte = static_cast<std::uint8_t>(std::clamp<int>(byte + static_cast<int>(generator.Below(41)) - 20, 0, 255));
}

void CheckRestoreLine(const km::RestoreLineSlot& slot, std::size_t groupBytes) {
    ForEachVariant(slot, [groupBytes](auto* variant, auto* plain) {
        std::uint32_t seed = 1;
        for (const std::size_t groups : kGroupCounts) {
            for (const km::MotionThresholds& thresholds : kThresholds) {
                for (const Fill fill : kFills) {
                    Bytes lines[4];
                    FillFields(lines, groups * groupBytes, fill, seed += 4);
                    const km::RestorationLines sources{lines[0].data(), lines[1].data(), lines[2].data(),
                                                       lines[3].data()};
                    const Bytes before = Filled(groups * 64 + 2 * kMargin, Fill::Random, seed);
                    Bytes expected = before;
                    Bytes actual = before;
                    plain(expected.data() + kMargin, sources, groups, thresholds);
                    variant(actual.data() + kMargin, sources, groups, thresholds);
                    ASSERT_EQ(GuardedLineDifference(actual, expected, kMargin), "")
                        << groups << " groups, thresholds " << thresholds.minimum << " " << thresholds.maximum
                        << " fill " << static_cast<int>(fill) << " seed " << seed;
                }
            }
            for (const auto side : kSides) {
                const Bytes content = Filled(groups * groupBytes, Fill::Random, 9);
                GuardedRow previous(content, side);
                GuardedRow next(content, side);
                GuardedRow above(content, side);
                GuardedRow below(content, side);
                GuardedRow dst(Bytes(groups * 64), side);
                variant(dst.Data(), {previous.Data(), next.Data(), above.Data(), below.Data()}, groups, {10, 60});
            }
        }
    });
}

TEST(DeinterlaceKernels, RestoreLineY16) { CheckRestoreLine(km::RestoreLineY16, km::kY16GroupBytes); }
TEST(DeinterlaceKernels, RestoreLineY16A) { CheckRestoreLine(km::RestoreLineY16A, km::kY16AGroupBytes); }

void CheckPresentLine(const km::PresentLineSlot& slot, std::size_t groupBytes) {
    ForEachVariant(slot, [groupBytes](auto* variant, auto* plain) {
        std::uint32_t seed = 1;
        const auto compare = [&](const Bytes& src, std::size_t groups, const std::string& what) {
            const Bytes before = Filled(groups * 64 + 2 * kMargin, Fill::Random, ++seed);
            Bytes expected = before;
            Bytes actual = before;
            plain(expected.data() + kMargin, src.data(), groups);
            variant(actual.data() + kMargin, src.data(), groups);
            ASSERT_EQ(GuardedLineDifference(actual, expected, kMargin), "")
                << groups << " groups, " << what << ", seed " << seed;
        };
        for (const std::size_t groups : kGroupCounts)
            for (const Fill fill : kFills)
                for (int round = 0; round < 4; ++round)
                    ASSERT_NO_FATAL_FAILURE(compare(Filled(groups * groupBytes, fill, ++seed), groups,
                                                    "fill " + std::to_string(static_cast<int>(fill))));
        // Every luma with every chroma value and the half steps between, in both chroma runs.
        constexpr std::size_t kGroups = 32;
        for (int luma = 0; luma < 256; ++luma) {
            Bytes src(kGroups * groupBytes, static_cast<std::uint8_t>(luma));
            for (std::size_t i = 0; i < 256; ++i) {
                std::uint8_t* const chroma = src.data() + i / 8 * groupBytes + groupBytes - 16 + i % 8;
                chroma[0] = static_cast<std::uint8_t>(i);
                chroma[8] = static_cast<std::uint8_t>(i * 3 + static_cast<std::size_t>(luma));
            }
            ASSERT_NO_FATAL_FAILURE(compare(src, kGroups, "luma " + std::to_string(luma)));
        }
        for (const std::size_t groups : kGroupCounts)
            for (const auto side : kSides) {
                GuardedRow src(Filled(groups * groupBytes, Fill::Random, 9), side);
                GuardedRow dst(Bytes(groups * 64), side);
                variant(dst.Data(), src.Data(), groups);
            }
    });
}

TEST(DeinterlaceKernels, PresentLineY16) { CheckPresentLine(km::PresentLineY16, km::kY16GroupBytes); }
TEST(DeinterlaceKernels, PresentLineY16A) { CheckPresentLine(km::PresentLineY16A, km::kY16AGroupBytes); }

}  // namespace
}  // namespace pixmorph_test
