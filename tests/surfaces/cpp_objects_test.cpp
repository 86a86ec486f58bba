// The objects of pixmorph.hpp give the bytes of direct calls of the components, and say why where they cannot.
#include <gtest/gtest.h>

#include <cstring>
#include <pixmorph/pixmorph.hpp>
#include <vector>

namespace {

using namespace pixmorph;
using KorvaneSoftware::ComPtr;
using F = Format;
using Memory = std::vector<std::uint8_t>;

Memory Noise(std::size_t size, std::uint32_t seed = 1) {
    Memory memory(size);
    for (std::uint8_t& byte : memory) {
        seed = seed * 1664525 + 1013904223;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    return memory;
}

template <class Interface>
ComPtr<Interface> Make(const GUID& clsid) {
    ComPtr<Interface> object;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(clsid, object), S_OK);
    return object;
}

TEST(CppConverter, ConvertsTopDownPicturesAsTheTopDownNumbersDo) {
    constexpr std::uint32_t kWidth = 64, kHeight = 8;
    const Memory uyvy = Noise(kWidth * kHeight * 2);
    Memory direct(kWidth * kHeight * 4), wrapped(direct.size());
    ASSERT_EQ(Make<IPixmorph>(CLSID_Pixmorph)
                  ->Pixmorph(direct.data(), uyvy.data(), kWidth, kHeight, kWidth * 4, kWidth * 2,
                             PIXMORPH_BGRA_TOP_DOWN, PIXMORPH_UYVY_BT709),
              S_OK);
    Converter converter;
    const View<F::UYVY_BT709> video(uyvy, {kWidth, kHeight});
    const MutableView<F::BGRA> screen(wrapped, {kWidth, kHeight});
    EXPECT_TRUE(converter.Convert(video, screen));
    EXPECT_EQ(wrapped, direct);
    EXPECT_NE(wrapped, Memory(wrapped.size()));

    // Bottom-up, as the plain number means it.
    ASSERT_EQ(Make<IPixmorph>(CLSID_Pixmorph)
                  ->Pixmorph(direct.data(), uyvy.data(), kWidth, kHeight, kWidth * 4, kWidth * 2, PIXMORPH_BGRA,
                             PIXMORPH_UYVY_BT709),
              S_OK);
    EXPECT_TRUE(converter.Convert(video, screen.Flipped()));
    EXPECT_EQ(wrapped, direct);
}

TEST(CppConverter, ConvertsEveryPairAsTheComponentDoes) {
    constexpr Size kSize{64, 4};
    Converter converter;
    const auto component = Make<IColorConversion>(CLSID_Pixmorph);
    for (const FormatInfo& from : kFormats)
        for (const FormatInfo& to : kFormats) {
            if (!CanConvert(from.base, to.base)) continue;
            const Memory memory = Noise(MemoryBytes(from.base, kSize));
            Memory direct(MemoryBytes(to.base, kSize)), wrapped(direct.size());
            const View<> source(from.base, memory, kSize);
            EXPECT_TRUE(converter.Convert(source, MutableView<>(to.base, wrapped, kSize)));

            const MutableView<> destination(to.base, direct, kSize);
            std::uint8_t* const dst[4] = {destination.Plane(0), destination.Plane(1), destination.Plane(2)};
            const std::int32_t dstStrides[4] = {destination.Stride(0), destination.Stride(1), destination.Stride(2)};
            const std::uint8_t* const src[4] = {source.Plane(0), source.Plane(1), source.Plane(2)};
            const std::int32_t srcStrides[4] = {source.Stride(0), source.Stride(1), source.Stride(2)};
            // 17 and 18 are the top-down names of 7 and 8.
            const auto number = [](const FormatInfo& info) {
                return static_cast<std::uint32_t>(info.base) + (info.isRgb ? 10 : 0);
            };
            ASSERT_EQ(component->Pixmorph(dst, dstStrides, src, srcStrides, kSize.width, kSize.height, number(to),
                                          number(from)),
                      S_OK);
            EXPECT_EQ(wrapped, direct) << from.name << " to " << to.name;
        }
}

TEST(CppConverter, ConvertsCropsAndFieldsWithoutTouchingTheRest) {
    const Memory whole = Noise(MemoryBytes(F::IYUV, {64, 16}));
    Memory out(64 * 16 * 4, 77), reference(64 * 16 * 4);
    Converter converter;
    const View<F::IYUV> source(whole, {64, 16});
    EXPECT_TRUE(converter.Convert(source, MutableView<F::BGRA>(reference, {64, 16})));
    const MutableView<F::BGRA> destination(out, {64, 16});
    EXPECT_TRUE(converter.Convert(source.Crop({16, 4, 32, 8}), destination.Crop({16, 4, 32, 8})));
    for (std::uint32_t y = 0; y < 16; ++y)
        for (std::uint32_t x = 0; x < 64; ++x) {
            const std::size_t at = (y * 64 + x) * 4;
            const bool isInside = x >= 16 && x < 48 && y >= 4 && y < 12;
            if (!isInside) {
                EXPECT_EQ(out[at], 77) << x << " " << y;
            } else if (x < 47 && y < 11 && y > 4) {
                // Away from the edges, where chroma beyond them has its share, both are the same.
                EXPECT_EQ(out[at], reference[at]) << x << " " << y;
            }
        }
}

TEST(CppConverter, SaysWhyNot) {
    Memory memory(4096);
    Converter converter;
    const MutableView<> a(F::UYVY, memory, {16, 4}), b(F::BGRA, memory, {16, 4}), small(F::BGRA, memory, {8, 4});
    EXPECT_EQ(converter.Convert(View<>(), b).Why(), Reason::EmptySource);
    EXPECT_EQ(converter.Convert(a, MutableView<>()).Why(), Reason::EmptyDestination);
    EXPECT_EQ(converter.Convert(a, small).Why(), Reason::SizesDiffer);
    const Status status = converter.Convert(b, MutableView<>(F::P422, memory, {16, 4}));
    EXPECT_EQ(status.Why(), Reason::NoPath);
    EXPECT_EQ(status.Result(), E_FAIL);
    EXPECT_STREQ(status.Method(), "Converter::Convert");
    EXPECT_STREQ(status.Message(), "there is no path between the formats");
}

TEST(CppResizer, GivesTheBytesOfBothInterfaces) {
    const Memory uyvy = Noise(64 * 32 * 2);
    Memory direct(48 * 24 * 4), wrapped(direct.size());
    Resizer resizer;
    {
        const std::uint8_t* const from[4] = {uyvy.data()};
        const std::int32_t fromStrides[4] = {128};
        std::uint8_t* const to[4] = {direct.data()};
        const std::int32_t toStrides[4] = {48 * 4};
        ASSERT_EQ(Make<IResizeImage>(CLSID_StretchImage)
                      ->ResizePixmorph(to, toStrides, from, fromStrides, 48, 24, 64, 32, PIXMORPH_BGRA_TOP_DOWN,
                                       PIXMORPH_UYVY),
                  S_OK);
        EXPECT_TRUE(resizer.Resize(View<F::UYVY>(uyvy, {64, 32}), MutableView<F::BGRA>(wrapped, {48, 24})));
        EXPECT_EQ(wrapped, direct);
    }
    {
        const Memory iyuv = Noise(64 * 32 * 3 / 2);
        direct.assign(48 * 24 * 3 / 2, 0);
        wrapped.assign(direct.size(), 0);
        ASSERT_EQ(Make<IStretchImage>(CLSID_StretchImage)
                      ->StretchImage(direct.data(), iyuv.data(), 48, 24, 64, 32, 48, 64, PIXMORPH_IYUV),
                  S_OK);
        EXPECT_TRUE(resizer.Resize(View<F::IYUV>(iyuv, {64, 32}), MutableView<F::IYUV>(wrapped, {48, 24})));
        EXPECT_EQ(wrapped, direct);
        // What one stride for all planes cannot describe.
        const View<F::IYUV> part = View<F::IYUV>(iyuv, {64, 32}).Crop({0, 16, 64, 16});
        EXPECT_EQ(resizer.Resize(part, MutableView<F::IYUV>(wrapped, {48, 24})).Why(), Reason::UnequalStrides);
        EXPECT_EQ(resizer.Resize(View<F::IYUV>(iyuv, {64, 32}), MutableView<F::BGR>(wrapped, {16, 8})).Why(),
                  Reason::UnequalStrides);
    }
    EXPECT_EQ(resizer.Resize(View<F::UYVY>(uyvy, {64, 32}), MutableView<F::UYVY>(wrapped, {15, 8})).Why(),
              Reason::UnevenSize);
    EXPECT_EQ(resizer.Resize(View<>(F::Y16, uyvy, {32, 32}), MutableView<>(F::Y16, wrapped, {16, 8})).Why(),
              Reason::NoPath);
}

TEST(CppTitleMixer, BuildsAndLaysATitleAsTheComponentDoes) {
    constexpr std::uint32_t kWidth = 32, kHeight = 8;
    const Memory text = Noise(kWidth * kHeight * 4, 2), plate = Noise(kWidth * kHeight * 4, 3);
    const Memory background = Noise(kWidth * kHeight * 2, 4);
    const auto direct = Make<ITitleMixer4>(CLSID_TitleMixer3);
    constexpr std::int32_t kStride = kWidth * 4;
    // The component counts lines from the bottom; the views of bottom-up memory are flipped.
    Memory title(kWidth * kHeight * 4), image(title.size()), video = background;
    ASSERT_EQ(direct->MovTitle(title.data(), text.data(), kWidth, kHeight, kStride, kStride, 200), S_OK);
    ASSERT_EQ(direct->AddTitle(title.data(), plate.data(), kWidth, kHeight, kStride, kStride, 255), S_OK);
    ASSERT_EQ(direct->ConvertTitleToImage(image.data(), title.data(), kWidth, kHeight, kStride, kStride, PIXMORPH_BGRA),
              S_OK);
    ASSERT_EQ(direct->AddImageToUYVYBuffer(video.data(), image.data(), kWidth, kHeight, kWidth * 2, kStride, 128,
                                           PIXMORPH_UYVY_BT709, PIXMORPH_BGRA),
              S_OK);
    Memory stream(TitleMixer::RunLengthBound({kWidth, kHeight})), directStream(stream.size());
    auto* counter = reinterpret_cast<std::int32_t*>(directStream.data());
    std::uint8_t* write = directStream.data() + 4;
    ASSERT_EQ(
        direct->CompressToRLE(&write, title.data() + kStride * (kHeight - 1), kWidth, kHeight, -kStride, &counter),
        S_OK);

    TitleMixer mixer;
    Memory title2(title.size()), image2(title.size()), video2 = background;
    const auto up = [](const Memory& memory) { return View<F::BGRA>(memory, {kWidth, kHeight}).Flipped(); };
    const auto titleView = MutableView<F::BGRA>(title2, {kWidth, kHeight}).Flipped();
    const auto imageView = MutableView<F::BGRA>(image2, {kWidth, kHeight}).Flipped();
    const MutableView<F::UYVY_BT709> videoView(video2, {kWidth, kHeight});
    EXPECT_TRUE(mixer.Begin(up(text), titleView, 200));
    EXPECT_TRUE(mixer.AddBeneath(up(plate), titleView));
    EXPECT_EQ(title2, title);
    EXPECT_TRUE(mixer.ToImage(titleView, imageView));
    EXPECT_EQ(image2, image);
    EXPECT_TRUE(mixer.Overlay(imageView, videoView, 128));
    EXPECT_EQ(video2, video);
    const Result<std::size_t> bytes = mixer.CompressRuns(titleView, stream);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(*bytes, static_cast<std::size_t>(write - directStream.data()));
    EXPECT_EQ(stream, directStream);

    EXPECT_EQ(mixer.CompressRuns(titleView, std::span(stream).first(stream.size() - 1)).Outcome().Why(),
              Reason::BufferTooSmall);
    EXPECT_EQ(mixer.CompressRuns(titleView.Crop({0, 0, 24, 8}), stream).Outcome().Why(), Reason::UnevenSize);
    EXPECT_EQ(mixer.Overlay(View<>(F::NV12, text, {kWidth, kHeight}), videoView).Why(), Reason::UnknownFormat);
    EXPECT_EQ(mixer.Begin(View<F::UYVY>(text, {31, 8}), MutableView<F::BGRA>(title2, {31, 8})).Why(),
              Reason::UnevenSize);
}

TEST(CppTitleMixer, ReplacesAFrame) {
    const Memory image = Noise(16 * 2 * 4);
    Memory direct(16 * 2 * 2), wrapped(direct.size());
    ASSERT_EQ(
        Make<ITitleMixer4>(CLSID_TitleMixer3)
            ->MoveImageToUYVYBuffer(direct.data(), image.data() + 64, 16, 2, 32, -64, 90, PIXMORPH_YUY2, PIXMORPH_BGRA),
        S_OK);
    EXPECT_TRUE(TitleMixer().Replace(View<F::BGRA>(image, {16, 2}), MutableView<F::YUY2>(wrapped, {16, 2}), 90));
    EXPECT_EQ(wrapped, direct);
}

TEST(CppDeinterlacer, LagsOneFrameAndGivesTheComponentsBytes) {
    constexpr std::uint32_t kWidth = 64, kHeight = 32;
    const auto direct = Make<IVideoDeinterlacer>(CLSID_VideoDeinterlacer);
    ASSERT_EQ(direct->Initialize(2), S_OK);
    Deinterlacer deinterlacer(SpatialCheck::Off);
    Memory expected(kWidth * kHeight * 3 / 2), wrapped(expected.size());
    for (std::uint32_t frame = 0; frame < 5; ++frame) {
        const Memory memory = Noise(expected.size(), frame);
        const std::uint8_t* const from[4] = {memory.data()};
        const std::int32_t strides[4] = {kWidth};
        ASSERT_EQ(direct->SetSourceFrame(from, strides, kWidth, kHeight, PIXMORPH_IYUV, PIXMORPH_BOTTOM_FIELD_FIRST),
                  S_OK);
        EXPECT_TRUE(deinterlacer.Push(View<F::IYUV>(memory, {kWidth, kHeight}), FieldOrder::BottomFirst));
        for (const Keep keep : {Keep::Top, Keep::Bottom, Keep::First, Keep::Second}) {
            const Status status = deinterlacer.Pull(MutableView<F::IYUV>(wrapped, {kWidth, kHeight}), keep);
            if (frame < 2) {
                EXPECT_EQ(status.Why(), Reason::Pending);
                EXPECT_EQ(status.Result(), E_PENDING);
                continue;
            }
            EXPECT_TRUE(status);
            std::uint8_t* const to[4] = {expected.data()};
            ASSERT_EQ(direct->GetFrame(to, strides, kWidth, kHeight, PIXMORPH_IYUV, static_cast<std::uint32_t>(keep)),
                      S_OK);
            EXPECT_EQ(wrapped, expected);
        }
    }
    EXPECT_TRUE(deinterlacer.Reset());
    EXPECT_EQ(deinterlacer.Pull(MutableView<F::IYUV>(wrapped, {kWidth, kHeight})).Why(), Reason::Pending);
    EXPECT_EQ(deinterlacer.Push(View<F::IYUV>(), FieldOrder::TopFirst).Why(), Reason::EmptySource);
}

TEST(CppCodec, EncodesAndDecodesTheComponentsBytes) {
    constexpr std::int32_t kWidth = 64, kHeight = 32;
    const Memory bgra = Noise(kWidth * kHeight * 4);
    const auto direct = Make<IVideoEncoder>(CLSID_VideoCodec);
    ASSERT_EQ(direct->EncSetFormat(9, kWidth, kHeight), S_OK);
    ASSERT_EQ(direct->EncSetQuality(5000), S_OK);
    Memory expected(1 << 16), coded(expected.size());
    std::uint32_t size = 0;
    const std::uint8_t* const from[4] = {bgra.data() + kWidth * 4 * (kHeight - 1)};
    const std::int32_t strides[4] = {-kWidth * 4};
    ASSERT_EQ(direct->Encode(expected.data(), 1 << 16, &size, from, strides, PIXMORPH_BGRA), S_OK);

    Encoder encoder(Codec::MotionJpeg, {kWidth, kHeight});
    ASSERT_TRUE(encoder.Ready());
    EXPECT_TRUE(encoder.SetQuality(5000));
    const View<F::BGRA> picture(bgra, {kWidth, kHeight});
    const Result<std::size_t> bytes = encoder.Encode(picture, coded);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(*bytes, size);
    EXPECT_EQ(coded, expected);

    ComPtr<IVideoDecoder> directDecoder;
    ASSERT_EQ(direct->QueryInterface(IID_IVideoDecoder, directDecoder.Put()), S_OK);
    ASSERT_EQ(directDecoder->DecSetFormat(9, kWidth, kHeight), S_OK);
    Memory expectedFrame(kWidth * kHeight * 2), frame(expectedFrame.size());
    std::uint8_t* const to[4] = {expectedFrame.data()};
    const std::int32_t toStrides[4] = {kWidth * 2};
    ASSERT_EQ(directDecoder->Decode(to, toStrides, PIXMORPH_UYVY, coded.data(), static_cast<std::int32_t>(size)), S_OK);
    Decoder decoder(Codec::MotionJpeg, {kWidth, kHeight});
    const std::span<const std::uint8_t> stream = std::span(coded).first(*bytes);
    EXPECT_TRUE(decoder.Decode(stream, MutableView<F::UYVY>(frame, {kWidth, kHeight})));
    EXPECT_EQ(frame, expectedFrame);

    EXPECT_EQ(encoder.SetQuality(10001).Why(), Reason::OutOfRange);
    EXPECT_EQ(encoder.Encode(picture.Crop({0, 0, 32, 32}), coded).Outcome().Why(), Reason::SizesDiffer);
    EXPECT_EQ(encoder.Encode(picture, {}).Outcome().Why(), Reason::BufferTooSmall);
    EXPECT_EQ(decoder.Decode({}, MutableView<F::UYVY>(frame, {kWidth, kHeight})).Why(), Reason::BufferTooSmall);
    EXPECT_EQ(Encoder(Codec::H264, {16, 16}).Ready().Why(), Reason::NoSuchCodec);
    EXPECT_EQ(Encoder(Codec::DV, {64, 64}).Ready().Why(), Reason::OutOfRange);
    EXPECT_EQ(Decoder(Codec{11}, {64, 64}).Ready().Why(), Reason::OutOfRange);
    EXPECT_EQ(Encoder(Codec::MotionJpeg, {0, 16}).Encode(picture, coded).Outcome().Why(), Reason::OutOfRange);
}

TEST(CppCodec, TakesPlanesInSequenceAlone) {
    Memory memory(64 * 64 * 2), coded(1 << 16);
    Encoder encoder(Codec::MotionJpeg, {64, 32});
    const View<> tall(F::IYUV, memory, {64, 64});
    EXPECT_EQ(encoder.Encode(tall.Crop({0, 0, 64, 32}), coded).Outcome().Why(), Reason::SeparatePlanes);
    EXPECT_EQ(encoder.Encode(View<>(F::IYUV, memory, {64, 32}), coded).Outcome().Why(), Reason::Refused);
    const Memory noise = Noise(64 * 32 * 4);
    for (const Format format : {F::BGR, F::BGRA, F::UYVY, F::YUY2, F::YVYU_BT709})
        EXPECT_TRUE(encoder.Encode(View<>(format, noise, {64, 32}), coded));
}

TEST(CppCodec, KnowsWhenItWasMovedFrom) {
    Encoder encoder(Codec::MotionJpeg, {16, 16});
    const Encoder other = std::move(encoder);
    EXPECT_TRUE(other.Ready());
    Memory memory(1 << 12);
    EXPECT_EQ(encoder.Encode(View<F::UYVY>(memory, {16, 16}), memory).Outcome().Why(), Reason::OutOfMemory);
    EXPECT_EQ(encoder.SetQuality(1).Why(), Reason::OutOfMemory);
}

TEST(CppObjects, KeepTheLibraryLoadedAndMove) {
    {
        Converter first;
        EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
        IColorConversion* const object = first.Get();
        const Converter second = std::move(first);
        EXPECT_EQ(second.Get(), object);
        EXPECT_EQ(first.Get(), nullptr);
        Memory memory(64);
        EXPECT_EQ(first.Convert(View<F::UYVY>(memory, {2, 1}), MutableView<F::BGRA>(memory, {2, 1})).Why(),
                  Reason::OutOfMemory);
    }
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

}  // namespace
