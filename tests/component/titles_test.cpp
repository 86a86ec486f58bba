// Titles as an application uses them: through the interfaces of the shared library.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <array>
#include <cstring>
#include <vector>

namespace {

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;
using Bytes = std::vector<std::uint8_t>;

template <class Interface>
ComPtr<Interface> Create(const GUID& clsid) {
    ComPtr<Interface> object;
    EXPECT_EQ(CreateInstance(clsid, object), S_OK);
    return object;
}

class TitleMixerTest : public ::testing::Test {
protected:
    ComPtr<ITitleMixer4> mixer = Create<ITitleMixer4>(CLSID_TitleMixer3);
};

// One BGRA pixel through a method.
template <class Call>
Bytes OnePixel(Bytes title, const Bytes& image, Call call) {
    EXPECT_EQ(call(title.data(), image.data()), S_OK);
    return title;
}

// ---------------------------------------------------------------------------------------------- classes

template <class Interface>
HRESULT Answers(const GUID& clsid) {
    ComPtr<Interface> object;
    return CreateInstance(clsid, object);
}

TEST(TitleClasses, EachHasItsOwnInterfacesOnly) {
    EXPECT_EQ(Answers<ITitleMixer>(CLSID_TitleMixer), S_OK);
    EXPECT_EQ(Answers<ITitleMixer2>(CLSID_TitleMixer), E_NOINTERFACE);
    EXPECT_EQ(Answers<ITitleMixer3>(CLSID_TitleMixer), E_NOINTERFACE);
    EXPECT_EQ(Answers<ITitleMixer4>(CLSID_TitleMixer), E_NOINTERFACE);
    EXPECT_EQ(Answers<ITitleMixer>(CLSID_TitleMixer2), E_NOINTERFACE);
    EXPECT_EQ(Answers<ITitleMixer2>(CLSID_TitleMixer2), S_OK);
    EXPECT_EQ(Answers<ITitleMixer3>(CLSID_TitleMixer2), E_NOINTERFACE);
    EXPECT_EQ(Answers<ITitleMixer>(CLSID_TitleMixer3), E_NOINTERFACE);
    EXPECT_EQ(Answers<ITitleMixer2>(CLSID_TitleMixer3), E_NOINTERFACE);
    EXPECT_EQ(Answers<ITitleMixer3>(CLSID_TitleMixer3), S_OK);
    EXPECT_EQ(Answers<ITitleMixer4>(CLSID_TitleMixer3), S_OK);
    EXPECT_EQ(Answers<IY16ARLECompressor>(CLSID_Y16ARLECompressor), S_OK);
    EXPECT_EQ(Answers<ITitleMixer>(CLSID_Y16ARLECompressor), E_NOINTERFACE);
}

// The layout of the tables is a contract with callers in other languages: slots are called by number.
template <class Function>
Function Slot(void* object, std::size_t index) {
    void** const table = *static_cast<void***>(object);
    return reinterpret_cast<Function>(table[index]);
}

TEST_F(TitleMixerTest, SlotsStandInTheirOrder) {
    using Mix = HRESULT (*)(void*, std::uint8_t*, const std::uint8_t*, std::uint32_t, std::uint32_t, std::int32_t,
                            std::int32_t, std::uint32_t);
    using Convert = HRESULT (*)(void*, std::uint8_t*, const std::uint8_t*, std::uint32_t, std::uint32_t, std::int32_t,
                                std::int32_t, std::uint32_t, std::uint32_t);
    using Straighten = HRESULT (*)(void*, std::uint8_t*, const std::uint8_t*, std::uint32_t, std::uint32_t,
                                   std::int32_t, std::int32_t, std::uint32_t);
    using Lay = HRESULT (*)(void*, std::uint8_t*, const std::uint8_t*, std::uint32_t, std::uint32_t, std::int32_t,
                            std::int32_t, std::uint32_t, std::uint32_t, std::uint32_t);
    using FillByte = HRESULT (*)(void*, std::uint8_t*, std::int32_t, std::uint32_t, std::uint32_t, std::uint8_t);
    using FillDword = HRESULT (*)(void*, std::uint8_t*, std::int32_t, std::uint32_t, std::uint32_t, std::uint32_t);
    const auto object = static_cast<void*>(mixer.Get());
    const Bytes white(8, 255);
    Bytes out(8, 0);
    Slot<Mix>(object, 3)(object, out.data(), white.data(), 2, 1, 8, 8, 255);
    EXPECT_EQ(out, (Bytes{254, 254, 254, 255, 254, 254, 254, 255})) << "MovTitle";
    out.assign(8, 0);
    Slot<Mix>(object, 4)(object, out.data(), white.data(), 2, 1, 8, 8, 255);
    EXPECT_EQ(out, Bytes(8, 254)) << "AddTitle";
    Slot<Convert>(object, 6)(object, out.data(), white.data(), 2, 1, 8, 8, 127, PIXMORPH_BGR);
    EXPECT_EQ(out, Bytes(8, 127)) << "PixmorphToTitle";
    Slot<Convert>(object, 7)(object, out.data(), white.data(), 2, 1, 8, 8, 127, PIXMORPH_BGRA);
    EXPECT_EQ(out, (Bytes{255, 255, 255, 127, 255, 255, 255, 127})) << "PixmorphToNPTitle";
    out.assign(8, 0);
    Slot<Convert>(object, 8)(object, out.data(), white.data(), 2, 1, 8, 8, 255, PIXMORPH_BGR);
    EXPECT_EQ(out, (Bytes{254, 254, 254, 255, 254, 254, 254, 255})) << "AddImageToTitle";
    EXPECT_EQ(Slot<Convert>(object, 9)(object, out.data(), white.data(), 2, 1, 8, 8, 255, PIXMORPH_BGRA), E_FAIL);
    const Bytes half{64, 64, 64, 128, 64, 64, 64, 128};
    Slot<Straighten>(object, 10)(object, out.data(), half.data(), 2, 1, 8, 8, PIXMORPH_BGRA);
    EXPECT_EQ(out, (Bytes{127, 127, 127, 128, 127, 127, 127, 128})) << "ConvertTitleToImage";
    Slot<Lay>(object, 11)(object, out.data(), white.data(), 2, 1, 4, 8, 255, PIXMORPH_UYVY, PIXMORPH_BGRA);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + 4), (Bytes{128, 235, 128, 235})) << "MoveImageToUYVYBuffer";
    out.assign(8, 0);
    Slot<Lay>(object, 12)(object, out.data(), white.data(), 2, 1, 4, 8, 127, PIXMORPH_UYVY, PIXMORPH_BGRA);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + 4), (Bytes{64, 118, 64, 118})) << "AddImageToUYVYBuffer";
    Slot<FillByte>(object, 13)(object, out.data(), 8, 8, 1, 5);
    EXPECT_EQ(out, Bytes(8, 5)) << "SetImageByte";
    Slot<FillDword>(object, 15)(object, out.data(), 8, 2, 1, 0x04030201);
    EXPECT_EQ(out, (Bytes{1, 2, 3, 4, 1, 2, 3, 4})) << "SetImageDword";
}

TEST(TitleClasses, AllMixersMixAlike) {
    const auto first = Create<ITitleMixer>(CLSID_TitleMixer);
    const auto second = Create<ITitleMixer2>(CLSID_TitleMixer2);
    const auto third = Create<ITitleMixer3>(CLSID_TitleMixer3);
    Bytes image(36 * 4 * 3);
    for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i * 37 + i / 7);
    Bytes a(image.size(), 40), b = a, c = a;
    EXPECT_EQ(first->AddTitle(a.data(), image.data(), 36, 3, 144, 144, 200), S_OK);
    EXPECT_EQ(second->AddTitle(b.data(), image.data(), 36, 3, 144, 144, 200), S_OK);
    EXPECT_EQ(third->AddTitle(c.data(), image.data(), 36, 3, 144, 144, 200), S_OK);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, c);
    EXPECT_NE(a, Bytes(image.size(), 40));
    EXPECT_EQ(first->MovTitle(a.data(), image.data(), 36, 3, 144, 144, 200), S_OK);
    EXPECT_EQ(second->MovTitle(b.data(), image.data(), 36, 3, 144, 144, 200), S_OK);
    EXPECT_EQ(third->MovTitle(c.data(), image.data(), 36, 3, 144, 144, 200), S_OK);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, c);
}

// ----------------------------------------------------------------------------------------------- mixing

TEST_F(TitleMixerTest, OpaqueLayersLoseOneStep) {
    for (int colour = 0; colour < 256; ++colour) {
        const auto c = static_cast<std::uint8_t>(colour);
        const Bytes result = OnePixel(Bytes(4), {c, c, c, 255}, [&](std::uint8_t* d, const std::uint8_t* s) {
            return mixer->MovTitle(d, s, 1, 1, 4, 4, 255);
        });
        const auto expected = static_cast<std::uint8_t>(colour == 0 ? 0 : colour - 1);
        EXPECT_EQ(result, (Bytes{expected, expected, expected, 255}));
    }
}

TEST_F(TitleMixerTest, FormatsThatMethodsRefuse) {
    Bytes title(64, 9);
    const Bytes before = title;
    const Bytes image(64, 200);
    EXPECT_EQ(mixer->PixmorphToNPTitle(title.data(), image.data(), 2, 2, 8, 8, 100, PIXMORPH_BGR), E_FAIL);
    EXPECT_EQ(mixer->AddTitleToImage(title.data(), image.data(), 2, 2, 8, 8, 100, PIXMORPH_BGRA), E_FAIL);
    EXPECT_EQ(mixer->AddTitleToImage(nullptr, nullptr, 0, 0, 0, 0, 0, 0), E_FAIL);
    for (const std::uint32_t format : {1u, 2u, 3u, 9u, 10u, 19u, 24u, 30u, 64u, 0x59565955u, 0xFFFFFFFFu}) {
        EXPECT_EQ(mixer->PixmorphToTitle(title.data(), image.data(), 2, 2, 8, 8, 100, format), E_FAIL) << format;
        EXPECT_EQ(mixer->PixmorphToNPTitle(title.data(), image.data(), 2, 2, 8, 8, 100, format), E_FAIL) << format;
        EXPECT_EQ(mixer->AddImageToTitle(title.data(), image.data(), 2, 2, 8, 8, 100, format), E_FAIL) << format;
        EXPECT_EQ(mixer->ConvertTitleToImage(title.data(), image.data(), 2, 2, 8, 8, format), E_FAIL) << format;
        EXPECT_EQ(mixer->MoveImageToUYVYBuffer(title.data(), image.data(), 2, 2, 4, 8, 100, 0, format), E_FAIL);
        EXPECT_EQ(mixer->AddImageToUYVYBuffer(title.data(), image.data(), 2, 2, 4, 8, 100, format, 8), E_FAIL);
        // A size of nothing does not make a format good.
        EXPECT_EQ(mixer->PixmorphToTitle(title.data(), image.data(), 2, 0, 8, 8, 100, format), E_FAIL) << format;
    }
    EXPECT_EQ(mixer->ConvertTitleToImage(title.data(), image.data(), 2, 2, 8, 8, PIXMORPH_BGR), E_FAIL);
    // YVYU is a source only.
    EXPECT_EQ(mixer->MoveImageToUYVYBuffer(title.data(), image.data(), 2, 2, 4, 8, 100, PIXMORPH_YVYU, 8), E_FAIL);
    EXPECT_EQ(title, before);
    EXPECT_EQ(mixer->PixmorphToTitle(title.data(), image.data(), 2, 2, 8, 8, 100, PIXMORPH_BGR), S_OK);
    EXPECT_NE(title, before);
}

TEST_F(TitleMixerTest, OddWidthsOfPackedSourcesAreRefused) {
    for (const std::uint32_t format : {+PIXMORPH_UYVY, +PIXMORPH_YUY2, +PIXMORPH_YVYU}) {
        Bytes out(256, 9);
        const Bytes image(256, 77);
        EXPECT_EQ(mixer->PixmorphToTitle(out.data(), image.data(), 5, 2, 20, 12, 255, format), E_FAIL);
        EXPECT_EQ(mixer->PixmorphToNPTitle(out.data(), image.data(), 5, 2, 20, 12, 255, format), E_FAIL);
        EXPECT_EQ(mixer->AddImageToTitle(out.data(), image.data(), 5, 2, 20, 12, 255, format), E_FAIL);
        EXPECT_EQ(mixer->MoveImageToUYVYBuffer(out.data(), image.data(), 5, 2, 12, 12, 255, 0, format), E_FAIL);
        EXPECT_EQ(mixer->AddImageToUYVYBuffer(out.data(), image.data(), 5, 2, 12, 12, 255, 0, format), E_FAIL);
        EXPECT_EQ(out, Bytes(256, 9));
    }
}

TEST_F(TitleMixerTest, TopDownNumbersAreNotTurned) {
    Bytes image(2 * 8);
    for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(10 * i);
    Bytes plain(16), topDown(16);
    ASSERT_EQ(mixer->PixmorphToTitle(plain.data(), image.data(), 2, 2, 8, 8, 255, PIXMORPH_BGRA), S_OK);
    ASSERT_EQ(mixer->PixmorphToTitle(topDown.data(), image.data(), 2, 2, 8, 8, 255, PIXMORPH_BGRA_TOP_DOWN), S_OK);
    EXPECT_EQ(plain, topDown);
}

// Black and white lines of video; the title stores its rows from the bottom.
TEST_F(TitleMixerTest, VideoRowsAreTurned) {
    const Bytes image{128, 16, 128, 16, 128, 235, 128, 235};
    Bytes title(16);
    ASSERT_EQ(mixer->PixmorphToTitle(title.data(), image.data(), 2, 2, 8, 4, 255, PIXMORPH_UYVY), S_OK);
    EXPECT_EQ(title, (Bytes{255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255}));
    // The other way round: the first row in memory is the lowest of the frame.
    Bytes frame(8, 1);
    ASSERT_EQ(mixer->MoveImageToUYVYBuffer(frame.data(), title.data(), 2, 2, 4, 8, 255, PIXMORPH_UYVY, PIXMORPH_BGRA),
              S_OK);
    EXPECT_EQ(frame, image);
    ASSERT_EQ(mixer->MoveImageToUYVYBuffer(frame.data(), title.data(), 2, 2, 4, 8, 255, PIXMORPH_YUY2, PIXMORPH_BGRA),
              S_OK);
    EXPECT_EQ(frame, (Bytes{16, 128, 16, 128, 235, 128, 235, 128}));
}

TEST_F(TitleMixerTest, TransparentImageLeavesBlack) {
    const Bytes image{255, 255, 255, 0, 0, 0, 255, 0};
    Bytes frame(4, 77);
    ASSERT_EQ(mixer->MoveImageToUYVYBuffer(frame.data(), image.data(), 2, 1, 4, 8, 0, PIXMORPH_UYVY, PIXMORPH_BGRA),
              S_OK);
    EXPECT_EQ(frame, (Bytes{128, 16, 128, 16}));
    ASSERT_EQ(mixer->MoveImageToUYVYBuffer(frame.data(), image.data(), 2, 1, 4, 8, 0,
                                           PIXMORPH_UYVY + PIXMORPH_FULL_RANGE, PIXMORPH_BGRA),
              S_OK);
    EXPECT_EQ(frame, (Bytes{128, 0, 128, 0}));
}

TEST_F(TitleMixerTest, LastPairOfBgrRowsStays) {
    const Bytes image(6 * 3 * 2, 255);
    for (const std::uint32_t width : {1u, 2u, 3u, 4u, 5u, 6u}) {
        Bytes frame(32, 9);
        ASSERT_EQ(mixer->MoveImageToUYVYBuffer(frame.data(), image.data(), width, 2, 16, 18, 255, PIXMORPH_UYVY,
                                               PIXMORPH_BGR),
                  S_OK);
        Bytes expected(32, 9);
        for (std::uint32_t x = 2; x < width; x += 2)
            for (const std::uint32_t row : {0u, 16u}) {
                const std::uint8_t white[4] = {128, 235, 128, 235};
                std::memcpy(expected.data() + row + (x - 2) * 2, white, 4);
            }
        EXPECT_EQ(frame, expected) << width;
    }
}

// Cb follows the first pixel's alpha, Cr the second's.
TEST_F(TitleMixerTest, ChromaFollowsDifferentPixels) {
    const Bytes image{255, 0, 0, 255, 255, 0, 0, 0};  // Blue, then transparent blue.
    Bytes frame{128, 16, 128, 16};
    ASSERT_EQ(mixer->AddImageToUYVYBuffer(frame.data(), image.data(), 2, 1, 4, 8, 255, PIXMORPH_UYVY, PIXMORPH_BGRA),
              S_OK);
    EXPECT_EQ(frame[0], 240);
    EXPECT_EQ(frame[1], 41);
    EXPECT_EQ(frame[2], 128);
    EXPECT_EQ(frame[3], 16);
}

TEST_F(TitleMixerTest, NullPicturesFailWhereTheyWouldBeTouched) {
    Bytes picture(64, 3);
    const Bytes before = picture;
    EXPECT_EQ(mixer->MovTitle(nullptr, picture.data(), 2, 2, 8, 8, 255), E_FAIL);
    EXPECT_EQ(mixer->AddTitle(picture.data(), nullptr, 2, 2, 8, 8, 255), E_FAIL);
    EXPECT_EQ(mixer->PixmorphToNPTitle(picture.data(), nullptr, 2, 2, 8, 8, 255, PIXMORPH_BGRA), E_FAIL);
    EXPECT_EQ(mixer->MovTitle(nullptr, nullptr, 2, 0, 8, 8, 255), S_OK);
    EXPECT_EQ(mixer->AddTitle(nullptr, nullptr, 0, 2, 8, 8, 255), S_OK);
    EXPECT_EQ(picture, before);
}

// ------------------------------------------------------------------------------------------------ fills

TEST_F(TitleMixerTest, FillsLeaveGaps) {
    Bytes image(64, 9);
    EXPECT_EQ(mixer->SetImageByte(image.data(), 8, 5, 3, 1), S_OK);
    for (std::size_t i = 0; i < 64; ++i) EXPECT_EQ(image[i], i < 24 && i % 8 < 5 ? 1 : 9) << i;
    image.assign(64, 9);
    // Upward from the third row, at an odd address.
    EXPECT_EQ(mixer->SetImageWord(image.data() + 1 + 20, -10, 3, 3, 0x0201), S_OK);
    for (std::size_t i = 0; i < 64; ++i) {
        const std::size_t in = i >= 1 && i < 31 ? (i - 1) % 10 : 9;
        EXPECT_EQ(image[i], in < 6 ? 1 + in % 2 : 9) << i;
    }
    image.assign(64, 9);
    EXPECT_EQ(mixer->SetImageDword(image.data(), 12, 2, 2, 0x04030201), S_OK);
    for (std::size_t i = 0; i < 64; ++i) EXPECT_EQ(image[i], i < 24 && i % 12 < 8 ? 1 + i % 4 : 9) << i;
    image.assign(64, 9);
    EXPECT_EQ(mixer->SetImageDword(image.data(), 8, 2, 2, 0x04030201), S_OK);
    for (std::size_t i = 0; i < 64; ++i) EXPECT_EQ(image[i], i < 16 ? 1 + i % 4 : 9) << i;
    EXPECT_EQ(mixer->SetImageByte(nullptr, 8, 8, 8, 1), S_OK);
    EXPECT_EQ(mixer->SetImageWord(nullptr, 8, 8, 8, 1), S_OK);
    EXPECT_EQ(mixer->SetImageDword(image.data(), 8, 0, 8, 1), S_OK);
    EXPECT_EQ(mixer->SetImageDword(image.data(), 8, 2, 0, 1), S_OK);
}

// ----------------------------------------------------------------------------------------------- streams

class TitleStreamTest : public ::testing::Test {
protected:
    HRESULT Compress(const Bytes& title, std::uint32_t width, std::uint32_t height, std::int32_t stride) {
        return mixer->CompressToRLE(&position, title.data(), width, height, stride, &cell);
    }
    std::int32_t CellAt(std::size_t offset) const {
        std::int32_t value;
        std::memcpy(&value, stream.data() + offset, 4);
        return value;
    }
    void Start(std::int32_t counter) { std::memcpy(stream.data(), &counter, 4); }
    std::size_t Written() const { return static_cast<std::size_t>(position - (stream.data() + 4)); }

    ComPtr<ITitleMixer> mixer = Create<ITitleMixer>(CLSID_TitleMixer);
    Bytes stream = [] {
        Bytes bytes(1024, 0xEE);
        std::memset(bytes.data(), 0, 4);
        return bytes;
    }();
    std::uint8_t* position = stream.data() + 4;
    std::int32_t* cell = reinterpret_cast<std::int32_t*>(stream.data());
};

void SetAlpha(Bytes& title, std::size_t pixel, std::uint8_t alpha) { title[4 * pixel + 3] = alpha; }

TEST_F(TitleStreamTest, EmptyTitleTakesNoRoom) {
    ASSERT_EQ(Compress(Bytes(32 * 2 * 4, 0), 32, 2, 128), S_OK);
    EXPECT_EQ(Written(), 0u);
    EXPECT_EQ(CellAt(0), -4);
    EXPECT_EQ(stream[4], 0xEE);
}

TEST_F(TitleStreamTest, OnePixelKeepsItsGroup) {
    Bytes title(16 * 4, 0);
    SetAlpha(title, 15, 2);
    ASSERT_EQ(Compress(title, 16, 1, 64), S_OK);
    EXPECT_EQ(Written(), 48u);
    EXPECT_EQ(CellAt(0), 1);
    // Alpha 0: 255 in the key, (0 + 8) * 16 / 255 = 0 of luma, 1 * 128 / 255 = 0 of chroma.
    EXPECT_EQ(stream[4 + 16], 255);
    EXPECT_EQ(stream[4 + 31], 253);
    EXPECT_EQ(stream[4], 0);
    EXPECT_EQ(stream[4 + 32], 0);
    EXPECT_EQ(stream[4 + 47], 1);  // Cr of the last pair goes by alpha 2: 3 * 128 / 255 = 1.
}

TEST_F(TitleStreamTest, AlphaOfOneIsDroppedWithItsColour) {
    ASSERT_EQ(Compress(Bytes(16 * 4, 1), 16, 1, 64), S_OK);
    EXPECT_EQ(Written(), 0u);
    EXPECT_EQ(CellAt(0), -1);
}

TEST_F(TitleStreamTest, RunsOfBothKinds) {
    Bytes title(48 * 4, 0);
    SetAlpha(title, 3, 200);
    SetAlpha(title, 40, 255);
    ASSERT_EQ(Compress(title, 48, 1, 192), S_OK);
    EXPECT_EQ(CellAt(0), 1);
    EXPECT_EQ(CellAt(4 + 48), -1);
    EXPECT_EQ(CellAt(4 + 48 + 4), 1);
    EXPECT_EQ(Written(), 48u + 4 + 4 + 48);
    EXPECT_EQ(cell, reinterpret_cast<std::int32_t*>(stream.data() + 4 + 48 + 4));
    EXPECT_EQ(stream[4 + 48 + 8 + 16 + 8], 0) << "opaque pixel 8 of the last group";
}

TEST_F(TitleStreamTest, RunsGoOnFromEarlierCalls) {
    Start(5);
    Bytes title(16 * 4, 255);
    ASSERT_EQ(Compress(title, 16, 1, 64), S_OK);
    EXPECT_EQ(CellAt(0), 6);
    EXPECT_EQ(Written(), 48u);
    ASSERT_EQ(Compress(Bytes(64, 0), 16, 1, 64), S_OK);
    ASSERT_EQ(Compress(Bytes(64, 0), 16, 1, 64), S_OK);
    EXPECT_EQ(CellAt(0), 6);
    EXPECT_EQ(CellAt(4 + 48), -2);
    EXPECT_EQ(Written(), 52u);
}

TEST_F(TitleStreamTest, PremultipliedWhite) {
    ASSERT_EQ(Compress(Bytes(16 * 4, 255), 16, 1, 64), S_OK);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(stream[4 + i], 235);
        EXPECT_EQ(stream[4 + 16 + i], 0);
        EXPECT_EQ(stream[4 + 32 + i], 128);
    }
}

// The last group is read whole, and the next row starts where that leaves the source.
TEST_F(TitleStreamTest, WidthsThatAreNoMultipleOfAGroupDrift) {
    Bytes title(80 * 4, 0);
    SetAlpha(title, 18, 255);  // Between the two groups that are read.
    // Width 10 and a stride of 80 bytes: the second row starts at 64 + 80 - 40 = byte 104, pixel 26.
    ASSERT_EQ(Compress(title, 10, 2, 80), S_OK);
    EXPECT_EQ(CellAt(0), -2);
    SetAlpha(title, 41, 255);  // The last pixel of the second row's group.
    ASSERT_EQ(Compress(title, 10, 2, 80), S_OK);
    EXPECT_EQ(CellAt(0), -3);
    EXPECT_EQ(CellAt(4), 1);
    EXPECT_EQ(stream[8 + 31], 0);
}

TEST_F(TitleStreamTest, NothingToDoAndNothingGiven) {
    Bytes title(64, 255);
    EXPECT_EQ(mixer->CompressToRLE(&position, nullptr, 16, 0, 64, &cell), S_OK);
    EXPECT_EQ(mixer->CompressToRLE(nullptr, title.data(), 16, 1, 64, &cell), S_OK);
    EXPECT_EQ(mixer->CompressToRLE(&position, title.data(), 16, 1, 64, nullptr), S_OK);
    EXPECT_EQ(mixer->CompressToRLE(&position, nullptr, 16, 1, 64, &cell), S_OK);
    std::uint8_t* nowhere = nullptr;
    EXPECT_EQ(mixer->CompressToRLE(&nowhere, title.data(), 16, 1, 64, &cell), S_OK);
    EXPECT_EQ(nowhere, nullptr);
    EXPECT_EQ(position, stream.data() + 4);
    EXPECT_EQ(cell, reinterpret_cast<std::int32_t*>(stream.data()));
    EXPECT_EQ(CellAt(0), 0);
}

TEST(TitleCable, WritesEveryGroup) {
    const auto mixer = Create<ITitleMixer2>(CLSID_TitleMixer2);
    Bytes title(2 * 32 * 4, 0);
    std::memset(title.data() + 128, 255, 64);
    Bytes out(2 * 100, 0xEE);
    ASSERT_EQ(mixer->Convert4CableTV(out.data(), title.data(), 32, 2, 100, 128), S_OK);
    EXPECT_EQ(out[16], 255);
    EXPECT_EQ(out[96], 0xEE);
    EXPECT_EQ(out[100], 235);
    EXPECT_EQ(out[116], 0);
    EXPECT_EQ(out[132], 128);
    EXPECT_EQ(out[148], 0);
    EXPECT_EQ(out[164], 255);
    const Bytes before = out;
    EXPECT_EQ(mixer->Convert4CableTV(nullptr, title.data(), 32, 2, 100, 128), S_OK);
    EXPECT_EQ(mixer->Convert4CableTV(out.data(), nullptr, 32, 2, 100, 128), S_OK);
    EXPECT_EQ(mixer->Convert4CableTV(out.data(), title.data(), 32, 0, 100, 128), S_OK);
    EXPECT_EQ(out, before);
    // A width of 10 still writes whole groups, and both sides step on by what the row lacks.
    Bytes drifting(200, 0xEE);
    ASSERT_EQ(mixer->Convert4CableTV(drifting.data(), title.data(), 10, 2, 60, 80), S_OK);
    EXPECT_EQ(drifting[47], 0);
    EXPECT_EQ(drifting[48], 0xEE);
    // The second row: 48 + 60 - 30 = 78 bytes on, from 64 + 80 - 40 = byte 104 of the source, six clear pixels.
    EXPECT_EQ(drifting[77], 0xEE);
    EXPECT_EQ(drifting[78], 0);
    EXPECT_EQ(drifting[78 + 5], 0);
    EXPECT_EQ(drifting[78 + 6], 235);
    EXPECT_EQ(drifting[78 + 48], 0xEE);
}

// -------------------------------------------------------------------------------------------- Y16A streams

class Y16AStreamTest : public ::testing::Test {
protected:
    HRESULT Compress(const Bytes& source, std::uint32_t width, std::uint32_t height, std::int32_t stride,
                     std::uint32_t type) {
        return compressor->Compress(&position, source.data(), width, height, stride, &cell, type);
    }
    std::int32_t Counter() const {
        std::int32_t value;
        std::memcpy(&value, stream.data(), 4);
        return value;
    }
    std::size_t Written() const {
        return static_cast<std::size_t>(static_cast<std::uint8_t*>(position) - (stream.data() + 4));
    }

    ComPtr<IY16ARLECompressor> compressor = Create<IY16ARLECompressor>(CLSID_Y16ARLECompressor);
    Bytes stream = [] {
        Bytes bytes(1024, 0xEE);
        std::memset(bytes.data(), 0, 4);
        return bytes;
    }();
    void* position = stream.data() + 4;
    std::int32_t* cell = reinterpret_cast<std::int32_t*>(stream.data());
};

TEST_F(Y16AStreamTest, Arguments) {
    const Bytes source(512, 255);
    EXPECT_EQ(Compress(source, 15, 1, 64, 8), E_INVALIDARG);
    EXPECT_EQ(Compress(source, 16, 0, 64, 8), E_INVALIDARG);
    EXPECT_EQ(Compress(source, 16, 1, 64, 5), E_INVALIDARG);
    EXPECT_EQ(compressor->Compress(nullptr, source.data(), 16, 1, 64, &cell, 8), E_INVALIDARG);
    EXPECT_EQ(compressor->Compress(&position, nullptr, 16, 1, 64, &cell, 8), E_INVALIDARG);
    EXPECT_EQ(compressor->Compress(&position, source.data(), 16, 1, 64, nullptr, 8), E_INVALIDARG);
    EXPECT_EQ(Written(), 0u);
    EXPECT_EQ(Counter(), 0);
    EXPECT_EQ(Compress(source, 31, 2, 128, 8), S_OK);
    EXPECT_EQ(Counter(), 2);
    EXPECT_EQ(Written(), 96u);
}

TEST_F(Y16AStreamTest, OpaqueWhite) {
    ASSERT_EQ(Compress(Bytes(64, 255), 16, 1, 64, PIXMORPH_BGRA), S_OK);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(stream[4 + i], 235);
        EXPECT_EQ(stream[4 + 16 + i], 0);
        EXPECT_EQ(stream[4 + 32 + i], 128);
    }
}

TEST_F(Y16AStreamTest, AlphaOfOneEverywhere) {
    ASSERT_EQ(Compress(Bytes(64 * 6, 1), 48, 2, 192, PIXMORPH_BGRA), S_OK);
    EXPECT_EQ(Counter(), -6);
    ASSERT_EQ(Compress(Bytes(48 * 6, 1), 48, 2, 144, PIXMORPH_Y16A), S_OK);
    EXPECT_EQ(Counter(), -12);
    EXPECT_EQ(Written(), 0u);
}

TEST_F(Y16AStreamTest, TransparentPixelsOfAVisibleGroup) {
    Bytes source(48, 200);
    std::memset(source.data() + 16, 0, 16);
    source[16 + 5] = 128;
    ASSERT_EQ(Compress(source, 16, 1, 48, PIXMORPH_Y16A), S_OK);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(stream[4 + i], i == 5 ? 100 : 0);
        EXPECT_EQ(stream[4 + 16 + i], i == 5 ? 127 : 255);
    }
    for (int k = 0; k < 8; ++k) {
        EXPECT_EQ(stream[4 + 32 + k], 0);
        EXPECT_EQ(stream[4 + 40 + k], k == 2 ? 100 : 0) << "Cr goes by the second pixel's alpha";
    }
}

TEST_F(Y16AStreamTest, RowOrder) {
    // BGRA is compressed from its last row in memory, Y16A from its first.
    Bytes bgra(128, 255);
    std::memset(bgra.data(), 0, 64);
    for (int i = 0; i < 16; ++i) bgra[4 * i + 3] = 255;
    ASSERT_EQ(Compress(bgra, 16, 2, 64, PIXMORPH_BGRA), S_OK);
    EXPECT_EQ(Counter(), 2);
    EXPECT_EQ(stream[4], 235);
    EXPECT_EQ(stream[4 + 48], 16);
    Bytes y16a(96, 255);
    std::memset(y16a.data(), 50, 16);
    ASSERT_EQ(Compress(y16a, 16, 2, 48, PIXMORPH_Y16A), S_OK);
    EXPECT_EQ(Counter(), 4);
    EXPECT_EQ(stream[4 + 96], 49);
    EXPECT_EQ(stream[4 + 144], 254);
}

TEST_F(Y16AStreamTest, MissingRoomFailsWithoutAByteWritten) {
    position = nullptr;
    EXPECT_EQ(Compress(Bytes(64, 255), 16, 1, 64, PIXMORPH_BGRA), E_FAIL);
    EXPECT_EQ(Counter(), 0);
    EXPECT_EQ(position, nullptr);
    position = stream.data() + 4;
    cell = nullptr;
    EXPECT_EQ(Compress(Bytes(64, 255), 16, 1, 64, PIXMORPH_BGRA), E_FAIL);
    EXPECT_EQ(Written(), 0u);
    EXPECT_EQ(stream[4], 0xEE);
}

}  // namespace
