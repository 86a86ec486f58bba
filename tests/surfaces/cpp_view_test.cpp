// Where the planes of a view lie, worked out by hand.
#include <gtest/gtest.h>

#include <pixmorph/pixmorph.hpp>
#include <vector>

namespace {

using namespace pixmorph;
using F = Format;

TEST(CppView, TakesTheMemoryOfItsFormat) {
    EXPECT_EQ(MemoryBytes(F::IYUV, {1920, 1080}), 3110400u);
    EXPECT_EQ(MemoryBytes(F::UYVY, {720, 576}), 829440u);
    EXPECT_EQ(MemoryBytes(F::BGR, {3, 2}), 18u);
    EXPECT_EQ(MemoryBytes(F::BGR, {3, 2}, 12), 21u) << "the last line has no gap";
    EXPECT_EQ(MemoryBytes(F::P216, {4, 2}), 32u);
    EXPECT_EQ(MemoryBytes(F::P016, {4, 2}), 24u);
    EXPECT_EQ(MemoryBytes(F::P420, {4, 2}), 24u);
    EXPECT_EQ(MemoryBytes(F::Y16A, {32, 2}), 192u);
    // Odd sizes: chroma is rounded up.
    EXPECT_EQ(MemoryBytes(F::IYUV, {5, 3}), 6u * 4 + 3u * 2 * 2);
    EXPECT_EQ(MemoryBytes(F::NV12, {5, 3}), 6u * 4 + 6u * 2);
    // Side by side: the two halves of two lines, up to the end of the right one.
    EXPECT_EQ(MemoryBytes(F::IMC4, {8, 4}, 16), 16u * 4 + 8 + 16 + 4);
    EXPECT_EQ(MemoryBytes(F::UYVY, {4, 2}, 7), 0u) << "the stride is too short";
    EXPECT_EQ(MemoryBytes(F::UYVY, {0, 2}), 0u);
    EXPECT_EQ(MemoryBytes(F::BGRA, {0xFFFFFFFF, 0xFFFFFFFF}), 0u);
    EXPECT_EQ(MemoryBytes(Format{9}, {16, 16}), 0u);
}

TEST(CppView, IsEmptyWhereMemoryIsTooSmall) {
    std::vector<std::uint8_t> memory(3110400);
    EXPECT_TRUE((View<F::IYUV>(memory, {1920, 1080})));
    memory.pop_back();
    EXPECT_FALSE((View<F::IYUV>(memory, {1920, 1080})));
    EXPECT_FALSE((View<F::UYVY>(memory, {16, 2}, 30)));
    EXPECT_FALSE((View<>(Format{9}, memory, {16, 2})));
    EXPECT_FALSE((View<F::UYVY>(memory, {0, 2})));
    EXPECT_FALSE(View<F::UYVY>());
}

TEST(CppView, PlacesPlanesOneAfterTheOther) {
    std::vector<std::uint8_t> memory(4096);
    const std::uint8_t* const base = memory.data();
    const View<F::IYUV> iyuv(memory, {8, 6}, 16);
    EXPECT_EQ(iyuv.Plane(1), base + 96);
    EXPECT_EQ(iyuv.Plane(2), base + 96 + 24);
    EXPECT_EQ(iyuv.Stride(1), 8);
    EXPECT_TRUE(iyuv.HasPlanesInSequence());
    const View<F::IMC2> imc(memory, {8, 6}, 16);
    EXPECT_EQ(imc.Plane(1), base + 96);
    EXPECT_EQ(imc.Plane(2), base + 96 + 8);
    EXPECT_EQ(imc.Stride(2), 16);
    const View<F::NV12> nv12(memory, {8, 6});
    EXPECT_EQ(nv12.Plane(1), base + 48);
    EXPECT_EQ(nv12.Plane(2), nullptr);
    EXPECT_EQ(nv12.Line(1, 2).data(), base + 48 + 16);
    EXPECT_EQ(nv12.Line(1, 2).size(), 8u);
    EXPECT_TRUE(nv12.Line(1, 3).empty());
}

TEST(CppView, CropsWherePixelsAndLinesMayBeParted) {
    std::vector<std::uint8_t> memory(4096);
    std::uint8_t* const base = memory.data();
    const MutableView<F::IYUV> iyuv(memory, {16, 8}, 32);
    const auto part = iyuv.Crop({4, 2, 8, 4});
    ASSERT_TRUE(part);
    EXPECT_EQ(part.Plane(0), base + 2 * 32 + 4);
    EXPECT_EQ(part.Plane(1), base + 256 + 16 + 2);
    EXPECT_EQ(part.Plane(2), base + 256 + 64 + 16 + 2);
    EXPECT_EQ(part.GetSize(), (Size{8, 4}));
    EXPECT_FALSE(part.HasPlanesInSequence());
    for (const Rect& bad : {Rect{1, 0, 8, 4}, Rect{0, 1, 8, 4}, Rect{0, 0, 7, 4}, Rect{0, 0, 8, 3}, Rect{10, 0, 8, 4},
                            Rect{0, 6, 8, 4}, Rect{0, 0, 0, 4}, Rect{0xFFFFFFFE, 0, 8, 4}})
        EXPECT_FALSE(iyuv.Crop(bad)) << bad.x << " " << bad.y << " " << bad.width << " " << bad.height;

    const auto p420 = View<F::P420>(memory, {16, 8}).Crop({4, 2, 4, 2});
    EXPECT_EQ(p420.Plane(0), base + 2 * 32 + 8);
    EXPECT_EQ(p420.Plane(1), base + 256 + 16 + 4);
    const auto blocks = View<F::Y16A>(memory, {48, 2}).Crop({16, 1, 32, 1});
    EXPECT_EQ(blocks.Plane(0), base + 144 + 48);
    const auto bgr = View<F::BGR>(memory, {5, 3}).Crop({1, 2, 3, 1});
    EXPECT_EQ(bgr.Plane(0), base + 2 * 15 + 3);
}

TEST(CppView, FlipsEveryPlane) {
    std::vector<std::uint8_t> memory(4096);
    const std::uint8_t* const base = memory.data();
    const auto flipped = View<F::IYUV>(memory, {8, 6}).Flipped();
    EXPECT_EQ(flipped.Plane(0), base + 5 * 8);
    EXPECT_EQ(flipped.Stride(0), -8);
    EXPECT_EQ(flipped.Plane(1), base + 48 + 2 * 4);
    EXPECT_EQ(flipped.Stride(1), -4);
    EXPECT_EQ(flipped.Line(0, 0).data(), base + 40);
    EXPECT_EQ(flipped.Line(0, 5).data(), base);
    const auto again = flipped.Flipped();
    EXPECT_EQ(again.Plane(2), base + 48 + 12);
    EXPECT_EQ(again.Stride(2), 4);
}

TEST(CppView, PartsTheFields) {
    std::vector<std::uint8_t> memory(4096);
    const std::uint8_t* const base = memory.data();
    const View<F::IYUV> frame(memory, {8, 8});
    const auto bottom = frame.Field(1);
    EXPECT_EQ(bottom.Height(), 4u);
    EXPECT_EQ(bottom.Plane(0), base + 8);
    EXPECT_EQ(bottom.Stride(0), 16);
    EXPECT_EQ(bottom.Plane(1), base + 64 + 4);
    EXPECT_EQ(frame.Field(0).Plane(1), base + 64);
    EXPECT_FALSE((View<F::IYUV>(memory, {8, 6}).Field(0)));
    EXPECT_TRUE((View<F::UYVY>(memory, {8, 6}).Field(0)));
    EXPECT_FALSE(frame.Field(2));
}

TEST(CppView, TakesSeparatePlanes) {
    std::vector<std::uint8_t> y(64), u(16), v(16);
    const std::span<std::uint8_t> planes[] = {y, u, v};
    const std::int32_t strides[] = {8, 4, 4};
    const auto view = MutableView<F::IYUV>::FromPlanes(F::IYUV, planes, strides, {8, 8});
    ASSERT_TRUE(view);
    EXPECT_EQ(view.Plane(2), v.data());
    EXPECT_FALSE(view.HasPlanesInSequence());
    EXPECT_FALSE(MutableView<F::IYUV>::FromPlanes(F::IYUV, planes, strides, {8, 10}));
    EXPECT_FALSE(MutableView<F::IYUV>::FromPlanes(F::IYUV, planes, strides, {10, 8}));
    EXPECT_FALSE(MutableView<F::IYUV>::FromPlanes(F::YV12, planes, strides, {8, 8}));
    EXPECT_FALSE(MutableView<>::FromPlanes(F::IYUV, std::span(planes).first(2), strides, {8, 8}));
    const View<> any = view;
    EXPECT_EQ(any.GetFormat(), F::IYUV);
    EXPECT_EQ(any.As<F::IYUV>().Plane(1), u.data());
    EXPECT_FALSE(any.As<F::YV12>());
}

TEST(CppView, TakesWords) {
    std::vector<std::uint16_t> words(32);
    const MutableView<F::P216> view(Bytes(std::span(words)), {8, 2});
    ASSERT_TRUE(view);
    EXPECT_EQ(view.Plane(1), reinterpret_cast<std::uint8_t*>(words.data() + 16));
}

}  // namespace
