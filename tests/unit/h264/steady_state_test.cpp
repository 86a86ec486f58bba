// Once pictures run, one more costs neither an allocation nor a thread, and the threads of the pipeline leave with codes
// of their own. The program is linked so that the library's calls of malloc, operator new, pthread_create and
// pthread_join pass through the counters here.
#include <gtest/gtest.h>

#include <mutex>
#include <set>

#include "codec/samples.h"
#include "conformance/generated_stream.h"
#include "h264/layers.h"
#include "h264/pipeline/fusion_core.h"
#include "support/call_counters.h"
#include "support/h264_access_units.h"
#include "support/h264_pictures.h"
#include "support/h264_samples.h"
#include "support/h264_stand_in.h"

namespace {

std::mutex g_exitLock;
std::multiset<std::uint64_t>* g_exitCodes = nullptr;

}  // namespace

extern "C" {
int __real_pthread_join(pthread_t thread, void** result);

int __wrap_pthread_join(pthread_t thread, void** result) {
    void* code = nullptr;
    const int outcome = __real_pthread_join(thread, &code);
    if (result != nullptr) *result = code;
    const std::lock_guard guard(g_exitLock);
    if (g_exitCodes != nullptr) g_exitCodes->insert(reinterpret_cast<std::uintptr_t>(code));
    return outcome;
}
}

namespace h264 {
namespace {

/// Counts the processors that are made: a unit may come to its first row of a kind at any time.
class CountingLayers final : public IH264Layers {
public:
    std::unique_ptr<IH264Processor> CreateProcessor(std::uint32_t index) const override {
        ++made;
        return layers_.CreateProcessor(index);
    }
    std::unique_ptr<IH264DeblockingProcessor> CreateDeblockingProcessor(std::uint32_t index) const override {
        ++made;
        return layers_.CreateDeblockingProcessor(index);
    }
    std::unique_ptr<IH264FrameOutput> CreateOutput() const override { return layers_.CreateOutput(); }

    mutable std::atomic<unsigned> made{0};

private:
    StandInLayers layers_;
};

unsigned Allocations() { return pixmorph_test::g_allocations; }
unsigned Threads() { return pixmorph_test::g_threads; }

/// What one object adds to the count: operator new counts, and malloc behind it.
unsigned AllocationsOfOneObject() {
    static const StandInLayers layers;
    static std::unique_ptr<IH264Processor> kept;  // A compiler may leave out what is freed at once.
    const unsigned before = Allocations();
    kept = layers.CreateProcessor(0);
    return Allocations() - before;
}

/// Gives a core `count` pictures: P pictures of two slices, every eighth an IDR picture with its parameter sets.
class Feeder {
public:
    explicit Feeder(CH264FusionCore& core) : core_(core) {
        for (std::uint32_t i = 0; i < 8; ++i) {
            Bytes picture = i == 0 ? Join({PlainSps(3).Unit(), PpsValues().Unit()}) : Bytes();
            for (std::uint32_t firstMb : {0u, 7u}) {
                const Bytes slice = i == 0 ? PlainSlice(firstMb, 7, 0, 0, true) : PlainSlice(firstMb, 5, i, 2 * i);
                picture.insert(picture.end(), slice.begin(), slice.end());
            }
            pictures_.push_back(picture);
        }
    }
    unsigned Feed(unsigned count) {
        unsigned came = 0;
        for (unsigned i = 0; i < count; ++i) {
            const Bytes& bytes = pictures_[next_++ % pictures_.size()];
            CodedSample coded(bytes.data(), bytes.size(), next_);
            came += core_.Decode(&picture_, &coded) == IMG_OK;
        }
        return came;
    }

private:
    CH264FusionCore& core_;
    std::vector<Bytes> pictures_;
    PictureSample picture_;
    unsigned next_ = 0;
};

TEST(H264SteadyState, PicturesCostNoAllocationAndNoThread) {
    for (unsigned threads : {1u, 2u, 4u}) {
        CountingLayers layers;
        CH264FusionCore core(layers, threads);
        ASSERT_EQ(core.Initialize({}), IMG_OK);
        Feeder feeder(core);
        feeder.Feed(64);
        const unsigned madeBefore = layers.made;
        const unsigned allocationsBefore = Allocations();
        const unsigned threadsBefore = Threads();
        EXPECT_EQ(feeder.Feed(640), 640u);
        const unsigned spent = Allocations() - allocationsBefore;
        EXPECT_EQ(spent, (layers.made - madeBefore) * AllocationsOfOneObject()) << threads << " threads";
        EXPECT_EQ(Threads(), threadsBefore) << threads << " threads";
    }
}

TEST(H264SteadyState, RestartKeepsFramesSlicesAndMemories) {
    CountingLayers layers;
    CH264FusionCore core(layers, 2);
    ASSERT_EQ(core.Initialize({}), IMG_OK);
    Feeder feeder(core);
    feeder.Feed(64);
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(core.Restart(false), IMG_OK);
        const unsigned madeBefore = layers.made;
        const unsigned allocationsBefore = Allocations();
        EXPECT_EQ(feeder.Feed(64), 64u - 3);  // As many as the delay stay behind.
        const unsigned spent = Allocations() - allocationsBefore;
        EXPECT_EQ(spent, (layers.made - madeBefore) * AllocationsOfOneObject()) << "restart " << i;
    }
}

TEST(H264SteadyState, TheWholeDecoderAllocatesNothing) {
    const std::vector<Sample> samples = SplitIntoSamples(GeneratedStream().bytes);
    CH264FusionCore core(H264Layers(), 1);
    ASSERT_EQ(core.Initialize({}), IMG_OK);
    std::vector<std::uint8_t> pixels(42 * 24 * 3 / 2);
    const auto decode = [&](const Sample& sample) {
        CMediaSample coded;
        (void)coded.SetBuffer(const_cast<std::uint8_t*>(sample.bytes.data()), sample.bytes.size());
        (void)coded.AddDataSize(sample.bytes.size());
        CVideoSample picture;
        SetPublicFormat(*picture.GetImage(), 11);
        picture.GetImage()->width = 42;
        picture.GetImage()->height = 24;
        (void)picture.SetBuffer(pixels.data(), pixels.size());
        return core.Decode(&picture, &coded) == IMG_OK;
    };
    for (const Sample& sample : samples) decode(sample);
    for (const Sample& sample : samples) decode(sample);
    const unsigned before = Allocations();
    unsigned frames = 0;
    for (const Sample& sample : samples) frames += decode(sample);
    EXPECT_EQ(Allocations(), before);
    EXPECT_GT(frames, samples.size() / 2);
}

TEST(H264Threads, LeaveWithTheirCodes) {
    EXPECT_EQ(CH264Thread::Main(nullptr), 0x5DECBADu);
    for (unsigned threads : {1u, 2u, 4u}) {
        std::multiset<std::uint64_t> codes;
        const unsigned before = Threads();
        {
            StandInLayers layers;
            CH264FusionCore core(layers, threads);
            ASSERT_EQ(core.Initialize({}), IMG_OK);
            Feeder(core).Feed(20);
            const std::lock_guard guard(g_exitLock);
            g_exitCodes = &codes;
        }
        const std::lock_guard guard(g_exitLock);
        g_exitCodes = nullptr;
        EXPECT_EQ(Threads() - before, threads - 1);
        std::multiset<std::uint64_t> expected;
        for (unsigned i = 1; i < threads; ++i) expected.insert(0x5DEC000 + i);
        EXPECT_EQ(codes, expected);
    }
}

}  // namespace
}  // namespace h264
