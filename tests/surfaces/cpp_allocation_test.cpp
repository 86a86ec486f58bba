// Calls allocate nothing: neither the header's part of them nor, once an object has worked on a size, the library's.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <pixmorph/pixmorph.hpp>
#include <vector>

namespace {
std::atomic<std::size_t> g_allocations{0};
}  // namespace

// The library takes these as well: a program's own come first. Not inlined, or gcc takes malloc and delete for a pair
// that does not belong together.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    g_allocations.fetch_add(1);
    return std::malloc(size > 0 ? size : 1);
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using namespace pixmorph;
using F = Format;

template <class Call>
std::size_t AllocationsOf(Call call) {
    const std::size_t before = g_allocations.load();
    call();
    return g_allocations.load() - before;
}

TEST(CppObjects, AllocateInNoCall) {
    EXPECT_GT(AllocationsOf([] { Converter converter; }), 0u) << "what the library allocates is not seen";

    std::vector<std::uint8_t> video(64 * 32 * 2), picture(64 * 32 * 4), small(48 * 24 * 4);
    const MutableView<F::UYVY> frame(video, {64, 32});
    const MutableView<F::BGRA> screen(picture, {64, 32});
    const MutableView<F::BGRA> thumbnail(small, {48, 24});
    const Converter converter;
    const Resizer resizer;
    const TitleMixer mixer;
    Deinterlacer deinterlacer;
    const auto work = [&] {
        EXPECT_TRUE(converter.Convert(frame, screen));
        EXPECT_TRUE(resizer.Resize(frame, thumbnail));
        EXPECT_TRUE(mixer.Begin(screen, screen, 100));
        EXPECT_TRUE(mixer.Overlay(screen, frame, 50));
        EXPECT_TRUE(deinterlacer.Push(frame, FieldOrder::TopFirst));
        (void)deinterlacer.Pull(frame).Why();
        EXPECT_EQ(converter.Convert(View<>(), screen).Why(), Reason::EmptySource);
    };
    for (int warmUp = 0; warmUp < 4; ++warmUp) work();
    EXPECT_EQ(AllocationsOf(work), 0u);
}

}  // namespace
