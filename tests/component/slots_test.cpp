// Every method of every class, called by the number of its slot.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "component/raw_classes.h"

namespace {

using namespace raw_component;

constexpr std::uint32_t Code(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) code |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])) << (8 * i);
    return code;
}

using Bytes = std::vector<std::uint8_t>;

TEST(Slots, CopyMemory) {
    const Object object = Make("CopyMemory", "ICopyMemory");
    std::vector<std::uint8_t> source(100);
    for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint8_t>(i * 7);
    std::vector<std::uint8_t> target(100, 0xEE);
    EXPECT_EQ(object.Call<Result>(3, target.data(), source.data(), 99u), kOk);
    EXPECT_TRUE(std::equal(source.begin(), source.begin() + 99, target.begin()));
    EXPECT_EQ(target[99], 0xEE);
    EXPECT_EQ(object.Call<Result>(4, target.data() + 1, 5u, std::uint8_t{0xAB}), kOk);
    EXPECT_EQ(target[0], source[0]);
    for (int i = 1; i < 6; ++i) EXPECT_EQ(target[i], 0xAB);
    EXPECT_EQ(target[6], source[6]);
    EXPECT_EQ(object.Call<Result>(5, target.data() + 11, 2u, std::uint16_t{0x1234}), kOk);
    EXPECT_EQ(std::vector<std::uint8_t>(target.begin() + 11, target.begin() + 15),
              (std::vector<std::uint8_t>{0x34, 0x12, 0x34, 0x12}));
    EXPECT_EQ(target[15], source[15]);
    EXPECT_EQ(object.Call<Result>(6, target.data() + 21, 1u, std::uint32_t{0x12345678}), kOk);
    EXPECT_EQ(std::vector<std::uint8_t>(target.begin() + 21, target.begin() + 25),
              (std::vector<std::uint8_t>{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(object.Call<Result>(7, target.data() + 30, 3u), kOk);
    for (int i = 30; i < 33; ++i) EXPECT_EQ(target[i], 0);
    EXPECT_EQ(target[33], source[33]);
}

TEST(Slots, CopyMemoryWithNothingToDo) {
    const Object object = Make("CopyMemory", "ICopyMemory");
    void* const null = nullptr;
    EXPECT_EQ(object.Call<Result>(3, null, null, 0u), kOk);
    EXPECT_EQ(object.Call<Result>(4, null, 0u, std::uint8_t{1}), kOk);
    EXPECT_EQ(object.Call<Result>(5, null, 0u, std::uint16_t{1}), kOk);
    EXPECT_EQ(object.Call<Result>(6, null, 0u, std::uint32_t{1}), kOk);
    EXPECT_EQ(object.Call<Result>(7, null, 0u), kOk);
}

TEST(Slots, CopyMemoryRefusesNull) {
    const Object object = Make("CopyMemory", "ICopyMemory");
    void* const null = nullptr;
    std::uint8_t bytes[4] = {1, 2, 3, 4};
    void* const some = bytes;
    EXPECT_EQ(object.Call<Result>(3, null, some, 4u), kFail);
    EXPECT_EQ(object.Call<Result>(3, some, null, 4u), kFail);
    EXPECT_EQ(object.Call<Result>(4, null, 4u, std::uint8_t{9}), kFail);
    EXPECT_EQ(object.Call<Result>(5, null, 2u, std::uint16_t{9}), kFail);
    EXPECT_EQ(object.Call<Result>(6, null, 1u, std::uint32_t{9}), kFail);
    EXPECT_EQ(object.Call<Result>(7, null, 4u), kFail);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[3], 4);
}

// UYVY to YUY2 of one line: U0 Y0 V0 Y1 becomes Y0 U0 Y1 V0.
const Bytes kUyvy = {1, 2, 3, 4, 5, 6, 7, 8};
const Bytes kYuy2 = {2, 1, 4, 3, 6, 5, 8, 7};

TEST(Slots, Pixmorph) {
    const Object object = Make("Pixmorph", "IPixmorph");
    Bytes target(8);
    EXPECT_EQ(object.Call<Result>(3, target.data(), kUyvy.data(), 4u, 1u, 8, 8, 5u, 0u), kOk);
    EXPECT_EQ(target, kYuy2);
    EXPECT_EQ(object.Call<Result>(3, target.data(), kUyvy.data(), 4u, 1u, 8, 8, 999u, 0u), kInvalidArgument);
}

TEST(Slots, ColorConversion) {
    const Object object = Make("Pixmorph", "IColorConversion");
    Bytes target(8);
    std::uint8_t* targets[4] = {target.data()};
    const std::uint8_t* sources[4] = {kUyvy.data()};
    const std::int32_t strides[4] = {8};
    EXPECT_EQ(object.Call<Result>(3, &targets[0], &strides[0], &sources[0], &strides[0], 4u, 1u, 5u, 0u), kOk);
    EXPECT_EQ(target, kYuy2);

    std::uint32_t id = 77;
    EXPECT_EQ(object.Call<Result>(4, &id, Code("yuy2")), kOk);
    EXPECT_EQ(id, 5u);
    EXPECT_EQ(object.Call<Result>(4, &id, 31u), kOk);
    EXPECT_EQ(id, 31u);
    EXPECT_EQ(object.Call<Result>(4, &id, 9u), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(4, &id, Code("AYUV")), kInvalidArgument);
    EXPECT_EQ(id, 31u);
    EXPECT_EQ(object.Call<Result>(4, static_cast<std::uint32_t*>(nullptr), 5u), kPointer);

    EXPECT_EQ(object.Call<Result>(5, Code("UYVY"), Code("YUY2")), kOk);
    EXPECT_EQ(object.Call<Result>(5, 5u, 5u), kOk);
    EXPECT_EQ(object.Call<Result>(5, Code("AYUV"), 5u), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(5, 3u, 5u), kFail);
    for (const std::size_t reserved : {6, 7, 8}) EXPECT_EQ(object.Call<Result>(reserved), kNotImplemented);
}

TEST(Slots, YuvPlanar) {
    const Object object = Make("Pixmorph", "IPixmorphYUVPlanar");
    const Bytes y = {2, 4, 6, 8}, u = {1, 5}, v = {3, 7};
    Bytes target(8);
    EXPECT_EQ(object.Call<Result>(3, target.data(), y.data(), u.data(), v.data(), 4u, 1u, 8, 4, 2, 2, 0u), kOk);
    EXPECT_EQ(target, kUyvy);
    Bytes toY(4), toU(2), toV(2);
    EXPECT_EQ(object.Call<Result>(4, toY.data(), toU.data(), toV.data(), kUyvy.data(), 4u, 1u, 4, 2, 2, 8, 0u), kOk);
    EXPECT_EQ(toY, y);
    EXPECT_EQ(toU, u);
    EXPECT_EQ(toV, v);
    EXPECT_EQ(object.Call<Result>(4, toY.data(), toU.data(), toV.data(), kUyvy.data(), 4u, 1u, 4, 2, 2, 8, 999u),
              kFail);
}

TEST(Slots, Gamma) {
    const Object object = Make("Pixmorph", "IPixmorphGamma");
    for (const std::size_t set : {4, 5}) EXPECT_EQ(object.Call<Result>(set), kOk);
    EXPECT_EQ(object.Call<Result>(6, 1.0), kOk);
    Bytes source(64), target(64);
    for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint8_t>(i);
    EXPECT_EQ(object.Call<Result>(3, target.data(), source.data(), 16u, 1u, 64, 64, 8u, 8u), kOk);
    EXPECT_EQ(target, source);
    EXPECT_EQ(object.Call<Result>(3, target.data(), source.data(), 16u, 1u, 64, 64, 0u, 8u), kInvalidArgument);
}

TEST(Slots, Yuv420Planar) {
    const Object object = Make("Pixmorph", "IPixmorphToYUV420Planar");
    Bytes source(64, 128), y(32, 1), u(32, 1), v(32, 1);
    EXPECT_EQ(object.Call<Result>(3, y.data(), u.data(), v.data(), source.data(), 16u, 2u, 16, 8, 8, 32, 1u), kOk);
    EXPECT_EQ(y, Bytes(32, 128));
    EXPECT_EQ(object.Call<Result>(3, y.data(), u.data(), v.data(), source.data(), 16u, 2u, 16, 8, 8, 32, 0u),
              kInvalidArgument);
    EXPECT_EQ(
        object.Call<Result>(4, y.data(), u.data(), v.data(), source.data(), source.data(), 16u, 0u, 16, 16, 16, 32, 1u),
        kOk);
    EXPECT_EQ(
        object.Call<Result>(4, y.data(), u.data(), v.data(), source.data(), source.data(), 16u, 0u, 16, 16, 16, 32, 2u),
        kInvalidArgument);
}

TEST(Slots, StretchImage) {
    const Object object = Make("StretchImage", "IStretchImage");
    // Twice the width of one colour is that colour.
    const Bytes source = {10, 20, 30, 40, 10, 20, 30, 40};
    Bytes target(16);
    EXPECT_EQ(object.Call<Result>(3, target.data(), source.data(), 4u, 1u, 2u, 1u, 16, 8, 8u), kOk);
    EXPECT_EQ(target, (Bytes{10, 20, 30, 40, 10, 20, 30, 40, 10, 20, 30, 40, 10, 20, 30, 40}));
    EXPECT_EQ(object.Call<Result>(3, target.data(), source.data(), 4u, 1u, 2u, 1u, 16, 8, 999u), kFail);
}

TEST(Slots, ResizeImage) {
    const Object object = Make("StretchImage", "IResizeImage");
    Bytes target(8);
    std::uint8_t* targets[4] = {target.data()};
    const std::uint8_t* sources[4] = {kUyvy.data()};
    const std::int32_t strides[4] = {8};
    EXPECT_EQ(object.Call<Result>(3, &targets[0], &strides[0], &sources[0], &strides[0], 4u, 1u, 4u, 1u, 0u), kOk);
    EXPECT_EQ(target, kUyvy);
    EXPECT_EQ(object.Call<Result>(4, &targets[0], &strides[0], &sources[0], &strides[0], 4u, 1u, 4u, 1u, 5u, 0u), kOk);
    EXPECT_EQ(target, kYuy2);
    for (const std::size_t reserved : {5, 6}) EXPECT_EQ(object.Call<Result>(reserved), kNotImplemented);
}

// An opaque layer and its premultiplied form, colour * 255 * 256 >> 16.
const Bytes kOpaque = {10, 20, 30, 255, 40, 50, 60, 255};
const Bytes kPremultiplied = {9, 19, 29, 255, 39, 49, 59, 255};

void ExpectFirstTitleSlots(const Object& object) {
    Bytes title(8);
    EXPECT_EQ(object.Call<Result>(3, title.data(), kOpaque.data(), 2u, 1u, 8, 8, 255u), kOk);
    EXPECT_EQ(title, kPremultiplied);
    const Bytes other = {1, 1, 1, 255, 1, 1, 1, 255};
    EXPECT_EQ(object.Call<Result>(4, title.data(), other.data(), 2u, 1u, 8, 8, 255u), kOk);
    EXPECT_EQ(title, kPremultiplied) << "nothing shows through an opaque title";
    EXPECT_EQ(object.Call<Result>(5, static_cast<void*>(nullptr), static_cast<void*>(nullptr), 16u, 1u, 64,
                                  static_cast<void*>(nullptr)),
              kOk);
}

TEST(Slots, TitleMixers) {
    ExpectFirstTitleSlots(Make("TitleMixer", "ITitleMixer"));
    ExpectFirstTitleSlots(Make("TitleMixer2", "ITitleMixer2"));
    ExpectFirstTitleSlots(Make("TitleMixer3", "ITitleMixer3"));
    ExpectFirstTitleSlots(Make("TitleMixer3", "ITitleMixer4"));
}

TEST(Slots, TitleMixer2) {
    const Object object = Make("TitleMixer2", "ITitleMixer2");
    const Bytes transparent(64, 0);
    Bytes record(49, 0xEE);
    EXPECT_EQ(object.Call<Result>(6, record.data(), transparent.data(), 16u, 1u, 48, 64), kOk);
    // Sixteen times 255 - alpha after sixteen samples of luma.
    for (int i = 16; i < 32; ++i) EXPECT_EQ(record[static_cast<std::size_t>(i)], 255);
    EXPECT_EQ(record[48], 0xEE);
}

void ExpectImageSlots(const Object& object) {
    Bytes title(8);
    EXPECT_EQ(object.Call<Result>(6, title.data(), kOpaque.data(), 2u, 1u, 8, 8, 255u, 8u), kOk);
    EXPECT_EQ(title, kPremultiplied);
    Bytes plain(8);
    EXPECT_EQ(object.Call<Result>(7, plain.data(), kOpaque.data(), 2u, 1u, 8, 8, 255u, 8u), kOk);
    EXPECT_EQ(plain, kOpaque);
    EXPECT_EQ(object.Call<Result>(7, plain.data(), kOpaque.data(), 2u, 1u, 8, 8, 255u, 7u), kFail);
    EXPECT_EQ(object.Call<Result>(8, title.data(), kUyvy.data(), 2u, 1u, 8, 8, 255u, 0u), kOk);
    EXPECT_EQ(title, kPremultiplied);
    EXPECT_EQ(object.Call<Result>(9, title.data(), title.data(), 2u, 1u, 8, 8, 255u, 8u), kFail);
    Bytes image(8);
    EXPECT_EQ(object.Call<Result>(10, image.data(), title.data(), 2u, 1u, 8, 8, 8u), kOk);
    EXPECT_EQ(image, kPremultiplied);
    EXPECT_EQ(object.Call<Result>(10, image.data(), title.data(), 2u, 1u, 8, 8, 7u), kFail);
}

TEST(Slots, TitleMixer3) {
    ExpectImageSlots(Make("TitleMixer3", "ITitleMixer3"));
    ExpectImageSlots(Make("TitleMixer3", "ITitleMixer4"));
}

TEST(Slots, TitleMixer4) {
    const Object object = Make("TitleMixer3", "ITitleMixer4");
    Bytes frame(8, 9);
    EXPECT_EQ(object.Call<Result>(11, frame.data(), kUyvy.data(), 4u, 1u, 8, 8, 255u, 7u, 0u), kFail);
    EXPECT_EQ(object.Call<Result>(12, frame.data(), kUyvy.data(), 4u, 1u, 8, 8, 255u, 7u, 0u), kFail);
    EXPECT_EQ(frame, Bytes(8, 9));
    EXPECT_EQ(object.Call<Result>(11, frame.data(), kUyvy.data(), 4u, 1u, 8, 8, 255u, 0u, 0u), kOk);
    EXPECT_EQ(frame, kUyvy);
    EXPECT_EQ(object.Call<Result>(12, frame.data(), kUyvy.data(), 4u, 1u, 8, 8, 255u, 0u, 0u), kOk);
    EXPECT_EQ(frame, kUyvy);

    Bytes bytes(20, 0);
    EXPECT_EQ(object.Call<Result>(13, bytes.data(), 4, 3u, 2u, std::uint8_t{7}), kOk);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 9), (Bytes{7, 7, 7, 0, 7, 7, 7, 0, 0}));
    EXPECT_EQ(object.Call<Result>(14, bytes.data(), 8, 1u, 1u, std::uint16_t{0x0102}), kOk);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{2, 1, 7, 0}));
    EXPECT_EQ(object.Call<Result>(15, bytes.data(), 8, 1u, 1u, std::uint32_t{0x01020304}), kOk);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 5), (Bytes{4, 3, 2, 1, 7}));
}

TEST(Slots, Y16ARLECompressor) {
    const Object object = Make("Y16ARLECompressor", "IY16ARLECompressor");
    EXPECT_EQ(object.Call<Result>(3, static_cast<void*>(nullptr), kOpaque.data(), 16u, 1u, 64,
                                  static_cast<void*>(nullptr), 8u),
              kInvalidArgument);
    // Two transparent groups of 16 pixels: one run of -2 and nothing after it.
    const Bytes transparent(128, 0);
    std::int32_t stream[20] = {};
    void* position = stream + 1;
    std::int32_t* counter = stream;
    EXPECT_EQ(object.Call<Result>(3, &position, transparent.data(), 32u, 1u, 128, &counter, 8u), kOk);
    EXPECT_EQ(stream[0], -2);
    EXPECT_EQ(counter, stream);
    EXPECT_EQ(position, static_cast<void*>(stream + 1));
}

TEST(Slots, DeinterlaceMaker) {
    const Object object = Make("DeinterlaceMaker", "IDeinterlaceMaker");
    // Two field lines with alphas 77 and 33 make four picture lines, bottom-up: each method has its own pattern of
    // present, copied and rebuilt lines. A rebuilt line has alpha 0, or the mean (77 + 33) / 2 in the alpha forms.
    Bytes field(96, 128);
    std::fill(field.begin() + 16, field.begin() + 32, std::uint8_t{77});
    std::fill(field.begin() + 64, field.begin() + 80, std::uint8_t{33});
    const auto alphas = [&](std::size_t slot) {
        Bytes target(256, 1);
        EXPECT_EQ(object.Call<Result>(slot, target.data(), field.data(), field.data(), field.data(), 16u, 2u, 64, 48,
                                      10u, 20u),
                  kOk);
        return std::vector<int>{target[195], target[131], target[67], target[3]};
    };
    EXPECT_EQ(alphas(3), (std::vector<int>{255, 0, 255, 255}));
    EXPECT_EQ(alphas(4), (std::vector<int>{255, 255, 0, 255}));
    EXPECT_EQ(alphas(5), (std::vector<int>{77, 55, 33, 33}));
    EXPECT_EQ(alphas(6), (std::vector<int>{77, 77, 55, 33}));
}

TEST(Slots, VideoInterpolation) {
    for (const char* interface : {"IVideoInterpolation", "IVideoInterpolation2"}) {
        const Object object = Make("VideoInterpolation", interface);
        const Bytes own = {10, 20}, other = {100, 100};
        Bytes target(2);
        // The top row is copied, or else the bottom row.
        EXPECT_EQ(object.Call<Result>(3, target.data(), own.data(), other.data(), 1u, 2u, 1, 0u), kOk);
        EXPECT_EQ(target, (Bytes{10, 100}));
        EXPECT_EQ(object.Call<Result>(4, target.data(), own.data(), other.data(), 1u, 2u, 1, 0u), kOk);
        EXPECT_EQ(target, (Bytes{100, 20}));
    }
    const Object object = Make("VideoInterpolation", "IVideoInterpolation2");
    const Bytes forward(4, 100), backward(4, 50);
    Bytes target(4);
    EXPECT_EQ(object.Call<Result>(5, target.data(), forward.data(), backward.data(), 4, 4u, 1u, 256u), kOk);
    EXPECT_EQ(target, forward);
    EXPECT_EQ(object.Call<Result>(5, target.data(), forward.data(), backward.data(), 4, 4u, 1u, 0u), kOk);
    EXPECT_EQ(target, backward);
    for (const std::size_t reserved : {6, 7, 8}) EXPECT_EQ(object.Call<Result>(reserved), kNotImplemented);
}

TEST(Slots, VideoDeinterlacer) {
    const Object object = Make("VideoDeinterlacer", "IVideoDeinterlacer");
    Bytes frame(32 * 8 * 2, 128);
    std::uint8_t* planes[4] = {frame.data()};
    const std::int32_t strides[4] = {64};
    const auto setSource = [&](std::uint32_t structure) {
        return object.Call<Result>(4, &planes[0], &strides[0], 32u, 8u, 0u, structure);
    };
    Bytes output(frame.size(), 1);
    std::uint8_t* outputs[4] = {output.data()};
    const auto getFrame = [&] { return object.Call<Result>(5, &outputs[0], &strides[0], 32u, 8u, 0u, 0u); };
    EXPECT_EQ(setSource(5), kNotImplemented);
    EXPECT_EQ(getFrame(), kNotImplemented);
    EXPECT_EQ(object.Call<Result>(3, 4u), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, 0u), kOk);
    EXPECT_EQ(setSource(4), kInvalidArgument);
    EXPECT_EQ(setSource(5), kOk);
    EXPECT_EQ(getFrame(), static_cast<Result>(0x8000000A));
    EXPECT_EQ(setSource(5), kOk);
    EXPECT_EQ(setSource(5), kOk);
    EXPECT_EQ(getFrame(), kOk);
    EXPECT_EQ(output, frame);
}

}  // namespace
