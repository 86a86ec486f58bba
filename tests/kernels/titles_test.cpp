// Title kernels: every variant against the plain form, with ordinary and streaming stores, all region alphas that may
// reach a vector form, and in place where both sides have one layout.
#include <ostream>
#include <string>
#include <vector>

#include "kernels/kernel_check.h"
#include "support/guard_page.h"
#include "support/picture.h"
#include "titles/group_kernels.h"
#include "titles/title_kernels.h"

namespace pixmorph_test {
namespace {

struct TitleCase {
    const km::TitleSlot* slot;
    std::uint32_t dstFormat;
    std::uint32_t srcFormat;
};

const TitleCase kCases[] = {
    {&km::MovTitleBgra, km::FMT_BGRA, km::FMT_BGRA},   {&km::MovTitleBgr, km::FMT_BGRA, km::FMT_BGR},
    {&km::MovTitleUyvy, km::FMT_BGRA, km::FMT_UYVY},   {&km::MovTitleYuy2, km::FMT_BGRA, km::FMT_YUY2},
    {&km::MovTitleYvyu, km::FMT_BGRA, km::FMT_YVYU},   {&km::NPTitleBgra, km::FMT_BGRA, km::FMT_BGRA},
    {&km::NPTitleUyvy, km::FMT_BGRA, km::FMT_UYVY},    {&km::NPTitleYuy2, km::FMT_BGRA, km::FMT_YUY2},
    {&km::NPTitleYvyu, km::FMT_BGRA, km::FMT_YVYU},    {&km::AddTitleBgra, km::FMT_BGRA, km::FMT_BGRA},
    {&km::AddTitleBgr, km::FMT_BGRA, km::FMT_BGR},     {&km::AddTitleUyvy, km::FMT_BGRA, km::FMT_UYVY},
    {&km::AddTitleYuy2, km::FMT_BGRA, km::FMT_YUY2},   {&km::AddTitleYvyu, km::FMT_BGRA, km::FMT_YVYU},
    {&km::TitleToImage, km::FMT_BGRA, km::FMT_BGRA},   {&km::MoveBgraToUyvy, km::FMT_UYVY, km::FMT_BGRA},
    {&km::MoveBgraToYuy2, km::FMT_YUY2, km::FMT_BGRA}, {&km::MoveBgrToUyvy, km::FMT_UYVY, km::FMT_BGR},
    {&km::MoveBgrToYuy2, km::FMT_YUY2, km::FMT_BGR},   {&km::MoveUyvyToUyvy, km::FMT_UYVY, km::FMT_UYVY},
    {&km::MoveUyvyToYuy2, km::FMT_YUY2, km::FMT_UYVY}, {&km::MoveYuy2ToUyvy, km::FMT_UYVY, km::FMT_YUY2},
    {&km::MoveYuy2ToYuy2, km::FMT_YUY2, km::FMT_YUY2}, {&km::MoveYvyuToUyvy, km::FMT_UYVY, km::FMT_YVYU},
    {&km::MoveYvyuToYuy2, km::FMT_YUY2, km::FMT_YVYU}, {&km::AddBgraToUyvy, km::FMT_UYVY, km::FMT_BGRA},
    {&km::AddBgraToYuy2, km::FMT_YUY2, km::FMT_BGRA},  {&km::AddBgrToUyvy, km::FMT_UYVY, km::FMT_BGR},
    {&km::AddBgrToYuy2, km::FMT_YUY2, km::FMT_BGR},    {&km::AddUyvyToUyvy, km::FMT_UYVY, km::FMT_UYVY},
    {&km::AddUyvyToYuy2, km::FMT_YUY2, km::FMT_UYVY},  {&km::AddYuy2ToUyvy, km::FMT_UYVY, km::FMT_YUY2},
    {&km::AddYuy2ToYuy2, km::FMT_YUY2, km::FMT_YUY2},  {&km::AddYvyuToUyvy, km::FMT_UYVY, km::FMT_YVYU},
    {&km::AddYvyuToYuy2, km::FMT_YUY2, km::FMT_YVYU},
};

const bool kChecked = [] {
    for (const TitleCase& c : kCases) ChecksSlots{c.slot};
    return true;
}();
const ChecksSlots kCheckedGroups{&km::BgraRunLength,      &km::Y16ARunLength, &km::TitleToGroups,
                                 &km::TitleToCableGroups, &km::BgraToGroups,  &km::Y16AToGroups};

void PrintTo(const TitleCase& c, std::ostream* out) { *out << c.slot->Name(); }

class TitleKernels : public testing::TestWithParam<TitleCase> {};
INSTANTIATE_TEST_SUITE_P(Titles, TitleKernels, testing::ValuesIn(kCases),
                         [](const auto& instance) { return SlotLabel(*instance.param.slot); });

bool IsRgb(std::uint32_t format) { return format == km::FMT_BGR || format == km::FMT_BGRA; }

constexpr std::uint32_t kPairs[] = {1,  2,  3,  4,  5,  7,  8,  9,  11, 12, 15, 16, 17,
                                    23, 24, 31, 32, 33, 47, 63, 64, 65, 77, 90, 101};
constexpr std::uint32_t kRegionAlphas[] = {0, 1, 2, 77, 127, 128, 254, 255};
constexpr PictureLayout kLayouts[] = {{0, false, 0}, {64, false, 0}, {52, false, 4}, {12, true, 8}, {7, false, 3}};
// A title that covers all is a case of its own.
constexpr Fill kDstFills[] = {Fill::Random, Fill::Extremes, Fill::Max};
constexpr Fill kFills[] = {Fill::Random, Fill::Extremes, Fill::Ramp, Fill::Max, Fill::Zero};

TEST_P(TitleKernels, VariantsEqualThePlainForm) {
    const TitleCase& c = GetParam();
    ByteGenerator generator(7);
    // Only RGB pictures have odd widths.
    const std::uint32_t odd = IsRgb(c.srcFormat) ? 1 : 0;
    ForEachVariant(*c.slot, [&](km::TitleSignature* variant, km::TitleSignature* plain) {
        for (const std::uint32_t pairs : kPairs) {
            for (const std::uint32_t width : {2 * pairs, 2 * pairs - odd}) {
                for (const Fill fill : kFills) {
                    const std::uint32_t seed = generator.Below(1u << 30);
                    const auto matrix = static_cast<std::uint16_t>(generator.Below(4));
                    const PictureLayout& dstLayout = kLayouts[generator.Below(5)];
                    const PictureLayout& srcLayout = kLayouts[generator.Below(5)];
                    TestPicture src(c.srcFormat, width, 2, srcLayout, matrix);
                    TestPicture dst(c.dstFormat, width, 2, dstLayout, matrix);
                    src.Fill(fill, seed);
                    dst.Fill(kDstFills[generator.Below(3)], seed + 9);
                    const std::uint32_t alpha = kRegionAlphas[generator.Below(8)];
                    TestPicture expected = dst;
                    plain(expected.Desc(), src.Desc(), {alpha, km::Stores::Cached});
                    for (const km::Stores stores : {km::Stores::Cached, km::Stores::Streaming}) {
                        TestPicture actual = dst;
                        variant(actual.Desc(), src.Desc(), {alpha, stores});
                        const std::string context = std::to_string(width) + " wide, alpha " + std::to_string(alpha) +
                                                    " matrix " + std::to_string(matrix) + " seed " +
                                                    std::to_string(seed) + " stores " +
                                                    std::to_string(static_cast<int>(stores));
                        ASSERT_EQ(actual.FirstDifference(expected), "") << context;
                        ASSERT_TRUE(actual.GuardsIntact()) << context;
                    }
                    if (c.dstFormat != c.srcFormat) continue;
                    TestPicture plainInPlace = src;
                    TestPicture inPlace = src;
                    plain(plainInPlace.Desc(), plainInPlace.Desc(), {alpha, km::Stores::Cached});
                    variant(inPlace.Desc(), inPlace.Desc(), {alpha, km::Stores::Cached});
                    ASSERT_EQ(inPlace.FirstDifference(plainInPlace), "") << width << " wide, in place, seed " << seed;
                }
            }
        }
    });
}

// Rows that share their memory show the order in which they are taken: source rows as they lie.
TEST_P(TitleKernels, TakesRowsInOneOrder) {
    const TitleCase& c = GetParam();
    ForEachVariant(*c.slot, [&](km::TitleSignature* variant, km::TitleSignature* plain) {
        TestPicture src(c.srcFormat, 150, 5);
        TestPicture expected(c.dstFormat, 150, 1);
        src.Fill(Fill::Random, 31);
        expected.Fill(Fill::Random, 32);
        TestPicture actual = expected;
        for (TestPicture* dst : {&expected, &actual}) {
            dst->Desc().height = 5;
            dst->Desc().strides[0] = 0;
        }
        plain(expected.Desc(), src.Desc(), {99, km::Stores::Cached});
        variant(actual.Desc(), src.Desc(), {99, km::Stores::Cached});
        EXPECT_EQ(actual.FirstDifference(expected), "") << "seeds 31 and 32";
    });
}

// One row whose buffers end, or start, at a page that cannot be touched.
TEST_P(TitleKernels, StaysInItsRows) {
    const TitleCase& c = GetParam();
    ForEachVariant(*c.slot, [&](km::TitleSignature* variant, km::TitleSignature*) {
        std::vector<std::uint32_t> widths;
        for (std::uint32_t width = 2; width <= 72; width += IsRgb(c.srcFormat) ? 1 : 2) widths.push_back(width);
        // Wide enough for streaming stores at every register size.
        for (std::uint32_t width = 126; width <= 210; width += 6) widths.push_back(width);
        for (const std::uint32_t width : widths) {
            for (const auto side : {GuardPageBuffer::Side::Start, GuardPageBuffer::Side::End}) {
                km::ImageDescriptor dst{{c.dstFormat, width, 1}};
                km::ImageDescriptor src{{c.srcFormat, width, 1}};
                GuardPageBuffer dstBytes(km::ImagePlaneRowBytes(&dst, 0), side);
                GuardPageBuffer srcBytes(km::ImagePlaneRowBytes(&src, 0), side);
                dst.planes[0] = dstBytes.Data();
                src.planes[0] = srcBytes.Data();
                variant(dst, src, {255, km::Stores::Cached});
                variant(dst, src, {255, km::Stores::Streaming});
            }
        }
    });
}

// Every colour with every alpha; division and rounding leave no room for sampling.
void CheckColoursWithAlphas(const km::TitleSlot& slot) {
    TestPicture src(km::FMT_BGRA, 256, 256);
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int colour = 0; colour < 256; ++colour)
            for (int c = 0; c < 4; ++c)
                src.Plane(0).Row(alpha)[4 * colour + c] =
                    static_cast<std::uint8_t>(c == 3 ? alpha : (colour + 85 * c) & 255);
    ForEachVariant(slot, [&](km::TitleSignature* variant, km::TitleSignature* plain) {
        for (std::uint32_t alpha = 0; alpha < 256; alpha += 15) {
            TestPicture expected(km::FMT_BGRA, 256, 256);
            expected.Fill(Fill::Random, alpha);
            TestPicture actual = expected;
            plain(expected.Desc(), src.Desc(), {alpha, km::Stores::Cached});
            variant(actual.Desc(), src.Desc(), {alpha, km::Stores::Cached});
            ASSERT_EQ(actual.FirstDifference(expected), "") << "alpha and seed " << alpha;
        }
    });
}

TEST(TitleKernelColours, MovTitleBgra) { CheckColoursWithAlphas(km::MovTitleBgra); }
TEST(TitleKernelColours, NPTitleBgra) { CheckColoursWithAlphas(km::NPTitleBgra); }
TEST(TitleKernelColours, AddTitleBgra) { CheckColoursWithAlphas(km::AddTitleBgra); }
TEST(TitleKernelColours, TitleToImage) { CheckColoursWithAlphas(km::TitleToImage); }

// ---------------------------------------------------------------------------------------------- groups

std::vector<std::uint8_t> Alphas(std::size_t groups, bool y16a, std::uint32_t visiblePercent, std::uint32_t seed) {
    std::vector<std::uint8_t> bytes(groups * (y16a ? 48 : 64));
    ByteGenerator generator(seed);
    generator.Fill(bytes);
    for (std::size_t group = 0; group < groups; ++group) {
        std::uint8_t* const alpha = bytes.data() + (y16a ? group * 48 + 16 : group * 64 + 3);
        const std::size_t step = y16a ? 1 : 4;
        for (int i = 0; i < 16; ++i) alpha[i * step] &= 1;
        // A single pixel decides, with the smallest alpha that counts or any other.
        if (generator.Below(100) < visiblePercent)
            alpha[generator.Below(16) * step] =
                static_cast<std::uint8_t>(generator.Below(2) == 0 ? 2 : 2 + generator.Below(254));
    }
    return bytes;
}

void CheckRunLength(const km::RunLengthSlot& slot, bool y16a) {
    ForEachVariant(slot, [&](auto* variant, auto* plain) {
        std::uint32_t seed = 1;
        for (const std::size_t groups : {1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 33}) {
            for (const std::uint32_t percent : {0, 3, 30, 90, 100}) {
                const std::vector<std::uint8_t> bytes = Alphas(groups, y16a, percent, seed++);
                for (const auto side : {GuardPageBuffer::Side::Start, GuardPageBuffer::Side::End}) {
                    GuardPageBuffer guarded(bytes.size(), side);
                    std::memcpy(guarded.Data(), bytes.data(), bytes.size());
                    for (std::size_t first = 0; first < groups; ++first)
                        for (const bool visible : {false, true}) {
                            const std::uint8_t* const at = guarded.Data() + first * (y16a ? 48 : 64);
                            ASSERT_EQ(variant(at, groups - first, visible), plain(at, groups - first, visible))
                                << "group " << first << " of " << groups << ", visible " << visible << ", seed "
                                << seed - 1;
                        }
                }
            }
        }
        ASSERT_EQ(variant(nullptr, 0, true), 0u);
    });
}

TEST(GroupKernels, BgraRunLength) { CheckRunLength(km::BgraRunLength, false); }
TEST(GroupKernels, Y16ARunLength) { CheckRunLength(km::Y16ARunLength, true); }

void CheckGroups(const km::GroupSlot& slot, std::size_t groupBytes) {
    ForEachVariant(slot, [&](auto* variant, auto* plain) {
        std::uint32_t seed = 1;
        for (const std::size_t groups : {1, 2, 3, 4, 5, 8, 9, 33}) {
            for (const Fill fill : kFills) {
                for (int repeat = 0; repeat < 8; ++repeat) {
                    std::vector<std::uint8_t> bytes(groups * groupBytes);
                    FillBytes(bytes, fill, ++seed);
                    for (const auto side : {GuardPageBuffer::Side::Start, GuardPageBuffer::Side::End}) {
                        GuardPageBuffer src(bytes.size(), side);
                        GuardPageBuffer dst(groups * 48, side);
                        std::memcpy(src.Data(), bytes.data(), bytes.size());
                        std::vector<std::uint8_t> expected(groups * 48);
                        plain(expected.data(), src.Data(), groups);
                        variant(dst.Data(), src.Data(), groups);
                        const std::string context = std::to_string(groups) + " groups, seed " + std::to_string(seed);
                        ASSERT_EQ(LineDifference({dst.Data(), groups * 48}, expected), "") << context;
                        variant(src.Data(), src.Data(), groups);
                        ASSERT_EQ(LineDifference({src.Data(), groups * 48}, expected), "") << context << ", in place";
                    }
                }
            }
        }
    });
}

TEST(GroupKernels, TitleToGroups) { CheckGroups(km::TitleToGroups, 64); }
TEST(GroupKernels, TitleToCableGroups) { CheckGroups(km::TitleToCableGroups, 64); }
TEST(GroupKernels, BgraToGroups) { CheckGroups(km::BgraToGroups, 64); }
TEST(GroupKernels, Y16AToGroups) { CheckGroups(km::Y16AToGroups, 48); }

}  // namespace
}  // namespace pixmorph_test
