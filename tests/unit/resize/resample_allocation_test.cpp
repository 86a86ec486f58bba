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

}  // namespace

extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __wrap_malloc(std::size_t size) {
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __real_malloc(size);
}

void* operator new(std::size_t size) {
    if (void* const block = std::malloc(size)) return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

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

}  // namespace
}  // namespace pixmorph_test
