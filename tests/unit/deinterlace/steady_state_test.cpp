// Once a sequence runs, a frame costs neither an allocation nor a thread. The program is linked so that the library's
// calls of malloc, operator new and pthread_create pass through the counters here.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "deinterlace/deinterlace_filter_yadif.h"
#include "support/picture.h"

namespace {

std::atomic<unsigned> g_allocations{0};
std::atomic<unsigned> g_threads{0};

void* CountedNew(std::size_t size) {
    ++g_allocations;
    return std::malloc(size);
}

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*), void* context);

void* __wrap_malloc(std::size_t size) {
    ++g_allocations;
    return __real_malloc(size);
}
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                          void* context) {
    ++g_threads;
    return __real_pthread_create(thread, attributes, function, context);
}
}

void* operator new(std::size_t size) {
    if (void* const memory = CountedNew(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return CountedNew(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace pixmorph_test {
namespace {

TEST(SteadyState, AllocatesNothingAndStartsNoThread) {
    auto* const filter = new km::CDeinterlaceFilterYADIF;
    g_threads = 0;
    ASSERT_EQ(filter->Initialize({0, 0, 0, 0}), km::IMG_OK);
    EXPECT_EQ(g_threads, km::WorkerTeam::DecideCount(km::CDeinterlaceFilterYADIF::kMostThreads, 0) - 1);
    TestPicture uyvy(km::FMT_UYVY, 64, 128);
    TestPicture rgb(km::FMT_BGRA, 64, 128);
    TestPicture output(km::FMT_UYVY, 64, 128);
    const auto frame = [&] {
        km::Status status = filter->SetSourceFrame(uyvy.Desc(), 5);
        status |= filter->SetSourceFrame(rgb.Desc(), 5);
        status |= filter->GetFrame(output.Desc(), 2);
        status |= filter->GetFrame(rgb.Desc(), 3);
        return status;
    };
    g_allocations = 0;
    for (int i = 0; i < 3; ++i) filter->SetSourceFrame(uyvy.Desc(), 5);
    EXPECT_GE(g_allocations, 3u) << "the counters see nothing";
    ASSERT_EQ(frame(), km::IMG_OK);
    g_allocations = 0;
    g_threads = 0;
    for (int i = 0; i < 5; ++i) ASSERT_EQ(frame(), km::IMG_OK);
    EXPECT_EQ(g_allocations, 0u);
    EXPECT_EQ(g_threads, 0u);
    filter->Release();
}

// A smaller picture fits where a larger one was.
TEST(SteadyState, SmallerFramesReuseTheBuffers) {
    auto* const filter = new km::CDeinterlaceFilterYADIF;
    ASSERT_EQ(filter->Initialize({0, 0, 0, 0}), km::IMG_OK);
    TestPicture large(km::FMT_UYVY, 64, 128);
    TestPicture small(km::FMT_I420, 48, 64);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(filter->SetSourceFrame(large.Desc(), 5), km::IMG_OK);
    g_allocations = 0;
    for (int i = 0; i < 3; ++i) ASSERT_EQ(filter->SetSourceFrame(small.Desc(), 5), km::IMG_OK);
    EXPECT_EQ(g_allocations, 0u);
    filter->Release();
}

}  // namespace
}  // namespace pixmorph_test
