// Changes of size and format allocate on the first picture of a size only.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "convert/conversion_dispatch.h"
#include "resize/image_converter.h"
#include "support/features.h"
#include "support/picture.h"

namespace {

std::atomic<int> g_allocations{0};
// Allocations that still succeed; below 0, all do.
std::atomic<int> g_granted{-1};

}  // namespace

extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __wrap_malloc(std::size_t size) {
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (g_granted == 0) return nullptr;
    if (g_granted > 0) --g_granted;
    return __real_malloc(size);
}

// Not inlined, or gcc takes malloc and delete for a pair that does not belong together.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const block = std::malloc(size)) return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace pixmorph_test {
namespace {

using namespace KorvaneSoftware;

struct Change {
    std::uint32_t dstFormat, dstWidth, dstHeight, srcFormat, srcWidth, srcHeight;
};

constexpr Change kChanges[] = {
    {FMT_UYVY, 64, 48, FMT_UYVY, 96, 72},  {FMT_UYVY, 128, 90, FMT_UYVY, 48, 36}, {FMT_UYVY, 48, 36, FMT_UYVY, 96, 72},
    {FMT_BGRA, 64, 48, FMT_BGRA, 96, 72},  {FMT_I420, 64, 48, FMT_I420, 96, 72},  {FMT_NV12, 64, 48, FMT_NV12, 96, 96},
    {FMT_BGRA, 64, 48, FMT_UYVY, 128, 72}, {FMT_UYVY, 64, 48, FMT_I420, 48, 36},  {FMT_Y16, 64, 48, FMT_BGR, 96, 72},
    {FMT_NV12, 64, 48, FMT_UYVY, 128, 96}, {FMT_S420, 64, 48, FMT_I420, 128, 36},
};

TEST(ResampleAllocation, NothingIsAllocatedInTheSteadyState) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        ImageConverterPtr converter(CreateImageConverter());
        converter->SetConverter(&ImageConversionDispatch);
        for (const Change& change : kChanges) {
            TestPicture src(change.srcFormat, change.srcWidth, change.srcHeight);
            TestPicture dst(change.dstFormat, change.dstWidth, change.dstHeight);
            src.Fill(Fill::Random, 1);
            ASSERT_EQ(converter->Convert(&dst.Desc(), &src.Desc()), IMG_OK) << change.dstFormat;
            const TestPicture first = dst;
            const int before = g_allocations;
            const Status again = converter->Convert(&dst.Desc(), &src.Desc());
            const Status third = converter->Convert(&dst.Desc(), &src.Desc());
            const int after = g_allocations;
            EXPECT_EQ(again, IMG_OK);
            EXPECT_EQ(third, IMG_OK);
            EXPECT_EQ(after, before) << change.dstFormat << " from " << change.srcFormat;
            EXPECT_EQ(dst.FirstDifference(first), "");
        }
        // A size of its own at each level, so that the counter is seen to count.
        const std::uint32_t width = 1000 + level % 1009;
        TestPicture src(FMT_Y400, width, 30), dst(FMT_Y400, 600, 20);
        const int before = g_allocations;
        ASSERT_EQ(converter->Convert(&dst.Desc(), &src.Desc()), IMG_OK);
        EXPECT_GT(g_allocations, before);
    }
}

// Enlarges and reduces to `count` sizes in turn, and counts the allocations of rounds 3 and 4.
int AllocationsInRotation(std::uint32_t format, std::uint32_t count) {
    ImageConverterPtr converter(CreateImageConverter());
    TestPicture src(format, 320, 16);
    src.Fill(Fill::Random, 1);
    TestPicture room(format, 320 + 2 * count, 24);
    int before = 0;
    for (int round = 0; round < 4; ++round) {
        if (round == 2) before = g_allocations;
        for (std::uint32_t i = 0; i < count; ++i) {
            ImageDescriptor dst = room.Desc();
            dst.width = 160 + 4 * i + 2;
            if (dst.width > room.Desc().width) dst.width = room.Desc().width - 2 * (i % 16);
            EXPECT_EQ(converter->Convert(&dst, &src.Desc()), IMG_OK);
        }
    }
    return g_allocations - before;
}

TEST(ResampleAllocation, FortySizesInRotationAllocateNothing) {
    EXPECT_EQ(AllocationsInRotation(FMT_I420, 40), 0);
    EXPECT_EQ(AllocationsInRotation(FMT_UYVY, 40), 0);
    EXPECT_EQ(AllocationsInRotation(FMT_BGR, 40), 0);
}

TEST(ResampleAllocation, NorDoMoreSizesThanAreKept) { EXPECT_EQ(AllocationsInRotation(FMT_Y444, 400), 0); }

// Without memory for tables the plain forms make the picture; with memory again the tables are made.
TEST(ResampleAllocation, TablesThatCannotBeHadAreDoneWithout) {
    for (const std::uint32_t format : {FMT_Y400, FMT_UYVY, FMT_BGR, FMT_NV12, FMT_S420}) {
        for (const std::uint32_t width : {222u, 428u}) {
            const TestPicture src = [&] {
                TestPicture picture(format, 300, 8);
                picture.Fill(Fill::Random, 2);
                return picture;
            }();
            TestPicture expected(format, width, 8);
            ASSERT_EQ(ImageConverterPtr(CreateImageConverter())->Convert(&expected.Desc(), &src.Desc()), IMG_OK);
            for (const int granted : {0, 1}) {
                ImageConverterPtr converter(CreateImageConverter());
                TestPicture dst(format, width, 8);
                g_granted = granted;
                const Status status = converter->Convert(&dst.Desc(), &src.Desc());
                g_granted = -1;
                ASSERT_EQ(status, IMG_OK) << format;
                EXPECT_EQ(dst.FirstDifference(expected), "") << format << " " << granted;
                const int before = g_allocations;
                ASSERT_EQ(converter->Convert(&dst.Desc(), &src.Desc()), IMG_OK);
                EXPECT_GT(g_allocations, before) << "the tables are tried again";
                EXPECT_EQ(dst.FirstDifference(expected), "") << format;
            }
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
