// Once a sequence runs, a frame costs neither an allocation nor a thread.
#include <gtest/gtest.h>

#include "deinterlace/deinterlace_filter_yadif.h"
#include "support/call_counters.h"
#include "support/picture.h"

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
