// The class Pixmorph as an application sees it.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "support/conversion_table.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005);
constexpr HRESULT kInvalidArgument = static_cast<HRESULT>(0x80070057);
constexpr HRESULT kBadPointer = static_cast<HRESULT>(0x80004003);
constexpr HRESULT kNotImplemented = static_cast<HRESULT>(0x80004001);

std::uint32_t Code(const char* text) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4 && text[i] != 0; ++i) code |= static_cast<std::uint32_t>(text[i]) << (8 * i);
    return code;
}

// Every number an application can pass, with the format that it means.
const std::map<std::uint32_t, std::string>& PublicNumbers() {
    static const std::map<std::uint32_t, std::string> numbers = [] {
        std::map<std::uint32_t, std::string> all = {
            {0, "UYVY"},  {1, "Y16"},   {2, "Y16A"},  {3, "Y32"},   {4, "Y32A"},  {5, "YUY2"},   {6, "YVYU"},
            {7, "BGR"},   {8, "BGRA"},  {10, "YV12"}, {11, "I420"}, {12, "Y32B"}, {13, "Y32AB"}, {14, "UYVY"},
            {15, "YUY2"}, {16, "NV12"}, {17, "BGR"},  {18, "BGRA"}, {24, "NV12"}, {25, "IMC2"},  {26, "IMC4"},
            {27, "P216"}, {28, "P016"}, {29, "P420"}, {30, "Y422"}, {31, "P422"}};
        for (const std::uint32_t base : {0, 5, 6, 10, 11, 24, 25, 26, 27, 28, 29, 30, 31})
            for (const std::uint32_t flags : {32, 96}) all[base + flags] = all[base];
        return all;
    }();
    return numbers;
}

const std::map<std::string, std::uint32_t>& FourCCs() {
    static const std::map<std::string, std::uint32_t> codes = {{"UYVY", 0}, {"Y16", 1},   {"Y16A", 2},  {"Y32", 3},
                                                               {"Y32A", 4}, {"YUY2", 5},  {"YVYU", 6},  {"BGR", 7},
                                                               {"BGRA", 8}, {"YV12", 10}, {"IYUV", 11}, {"NV12", 24}};
    return codes;
}

class Convert : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(km::CreateInstance(CLSID_Pixmorph, colors_), S_OK);
        ASSERT_EQ(colors_.As(simple_), S_OK);
        ASSERT_EQ(colors_.As(planar_), S_OK);
        ASSERT_EQ(colors_.As(gamma_), S_OK);
        ASSERT_EQ(colors_.As(fields_), S_OK);
    }
    // One plane on each side.
    HRESULT Run(std::uint8_t* dst, std::int32_t dstStride, const std::uint8_t* src, std::int32_t srcStride,
                std::uint32_t width, std::uint32_t height, std::uint32_t dstFormat, std::uint32_t srcFormat) {
        std::uint8_t* const dstPlanes[4] = {dst};
        const std::uint8_t* const srcPlanes[4] = {src};
        const std::int32_t dstStrides[4] = {dstStride};
        const std::int32_t srcStrides[4] = {srcStride};
        return colors_->Pixmorph(dstPlanes, dstStrides, srcPlanes, srcStrides, width, height, dstFormat, srcFormat);
    }

    km::ComPtr<IColorConversion> colors_;
    km::ComPtr<IPixmorph> simple_;
    km::ComPtr<IPixmorphYUVPlanar> planar_;
    km::ComPtr<IPixmorphGamma> gamma_;
    km::ComPtr<IPixmorphToYUV420Planar> fields_;
};

TEST_F(Convert, CheckConversionAnswersForEveryPairOfNumbers) {
    const auto table = ReadConversionTable();
    for (std::uint32_t src = 0; src < 140; ++src) {
        for (std::uint32_t dst = 0; dst < 140; ++dst) {
            const auto from = PublicNumbers().find(src);
            const auto to = PublicNumbers().find(dst);
            HRESULT expected = kInvalidArgument;
            if (from != PublicNumbers().end() && to != PublicNumbers().end())
                expected = table.at(from->second).contains(to->second) ? S_OK : kFail;
            ASSERT_EQ(colors_->CheckConversion(dst, src), expected) << src << " to " << dst;
        }
    }
}

TEST_F(Convert, CheckConversionTakesFourCCs) {
    const auto table = ReadConversionTable();
    for (const auto& [srcName, src] : FourCCs()) {
        for (const auto& [dstName, dst] : FourCCs()) {
            const bool hasPath = table.at(PublicNumbers().at(src)).contains(PublicNumbers().at(dst));
            const HRESULT expected = hasPath ? S_OK : kFail;
            EXPECT_EQ(colors_->CheckConversion(Code(dstName.c_str()), Code(srcName.c_str())), expected)
                << srcName << " to " << dstName;
            EXPECT_EQ(colors_->CheckConversion(dst, Code(srcName.c_str())), expected);
        }
    }
    EXPECT_EQ(colors_->CheckConversion(Code("AYUV"), Code("UYVY")), kInvalidArgument);
    EXPECT_EQ(colors_->CheckConversion(Code("UYVY"), Code("Y16R")), kInvalidArgument);
    EXPECT_EQ(colors_->CheckConversion(0xFFFFFFFF, 0), kInvalidArgument);
}

TEST_F(Convert, GetFormatIdAnswersForEveryNumberAndFourCC) {
    for (std::uint32_t number = 0; number < 300; ++number) {
        std::uint32_t id = 0xABCD;
        const bool isKnown = PublicNumbers().contains(number);
        EXPECT_EQ(colors_->GetFormatId(&id, number), isKnown ? S_OK : kInvalidArgument) << number;
        EXPECT_EQ(id, isKnown ? number : 0xABCD);
    }
    for (const auto& [name, number] : FourCCs()) {
        std::string lower = name;
        for (char& c : lower) c = static_cast<char>(std::tolower(c));
        for (const std::string& text : {name, lower}) {
            std::uint32_t id = 0xABCD;
            EXPECT_EQ(colors_->GetFormatId(&id, Code(text.c_str())), S_OK) << text;
            EXPECT_EQ(id, number) << text;
        }
    }
    std::uint32_t id = 0;
    for (const char* const unknown : {"Y16R", "AYUV", "Y422", "I420", "P216", "NV11", "NONE"})
        EXPECT_EQ(colors_->GetFormatId(&id, Code(unknown)), kInvalidArgument) << unknown;
    EXPECT_EQ(colors_->GetFormatId(nullptr, 0), kBadPointer);
    EXPECT_EQ(colors_->GetFormatId(nullptr, 9), kBadPointer);
}

TEST_F(Convert, ReservedSlotsDoNothing) {
    EXPECT_EQ(colors_->PixmorphMethod0(), kNotImplemented);
    EXPECT_EQ(colors_->PixmorphMethod1(), kNotImplemented);
    EXPECT_EQ(colors_->PixmorphMethod2(), kNotImplemented);
}

TEST_F(Convert, WidthsThatBlocksCannotHoldFail) {
    std::vector<std::uint8_t> src(721 * 2 * 4), dst(736 * 2 * 4, 7);
    EXPECT_EQ(Run(dst.data(), 1440, src.data(), 1440, 720, 2, PIXMORPH_Y16, PIXMORPH_UYVY), S_OK);
    std::fill(dst.begin(), dst.end(), std::uint8_t{7});
    EXPECT_EQ(Run(dst.data(), 1472, src.data(), 1442, 721, 2, PIXMORPH_Y16, PIXMORPH_UYVY), kFail);
    EXPECT_EQ(dst, std::vector<std::uint8_t>(dst.size(), 7));
}

// A white, a black and a grey column, worked out from the limited-range BT.601 row.
TEST_F(Convert, UyvyToBgraHasTheWorkedValues) {
    const std::uint8_t src[] = {128, 235, 128, 16, 128, 126, 128, 126};
    std::uint8_t dst[16] = {};
    ASSERT_EQ(Run(dst, 16, src, 8, 4, 1, PIXMORPH_BGRA, PIXMORPH_UYVY), S_OK);
    // t = 9539 * (235 << 8) >> 16 = 8756, 596 for 16, 4695 for 126. The chroma terms are 8262, 1604, 3330 and 6537:
    // (8756 + 8262 - 8841) >> 5 = 255, (596 + 8262 - 8841) >> 5 = 0, (4695 + 8262 - 8841) >> 5 = 128.
    const std::uint8_t expected[] = {255, 255, 255, 255, 0, 0, 0, 255, 128, 128, 128, 255, 128, 128, 128, 255};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(dst[i], expected[i]) << i;
}

TEST_F(Convert, TopDownNumbersTurnTheRowsAround) {
    std::vector<std::uint8_t> uyvy(2 * 8 * 4);
    ByteGenerator(3).Fill(uyvy);
    for (const auto& [bottomUp, topDown, pixel] : {std::tuple{7u, 17u, 3}, std::tuple{8u, 18u, 4}}) {
        const int row = 8 * pixel;
        std::vector<std::uint8_t> a(row * 4), b(row * 4);
        ASSERT_EQ(Run(a.data(), row, uyvy.data(), 16, 8, 4, bottomUp, 0), S_OK);
        ASSERT_EQ(Run(b.data(), row, uyvy.data(), 16, 8, 4, topDown, 0), S_OK);
        for (int y = 0; y < 4; ++y)
            EXPECT_TRUE(std::equal(a.begin() + y * row, a.begin() + (y + 1) * row, b.begin() + (3 - y) * row));
        // And back: both hold the same picture.
        std::vector<std::uint8_t> fromA(uyvy.size()), fromB(uyvy.size());
        ASSERT_EQ(Run(fromA.data(), 16, a.data(), row, 8, 4, 0, bottomUp), S_OK);
        ASSERT_EQ(Run(fromB.data(), 16, b.data(), row, 8, 4, 0, topDown), S_OK);
        EXPECT_EQ(fromA, fromB);
    }
}

TEST_F(Convert, MissingArraysAndPlanesFail) {
    std::uint8_t memory[64] = {};
    std::uint8_t* const planes[4] = {memory};
    const std::uint8_t* const readPlanes[4] = {memory};
    std::uint8_t* const none[4] = {};
    const std::uint8_t* const readNone[4] = {};
    const std::int32_t strides[4] = {16};
    EXPECT_EQ(colors_->Pixmorph(nullptr, strides, readPlanes, strides, 4, 2, 5, 0), kFail);
    EXPECT_EQ(colors_->Pixmorph(planes, nullptr, readPlanes, strides, 4, 2, 5, 0), kFail);
    EXPECT_EQ(colors_->Pixmorph(planes, strides, nullptr, strides, 4, 2, 5, 0), kFail);
    EXPECT_EQ(colors_->Pixmorph(planes, strides, readPlanes, nullptr, 4, 2, 5, 0), kFail);
    for (const std::uint32_t number : {0, 5, 7, 8, 10, 11, 17, 18, 24, 25, 26, 30}) {
        EXPECT_EQ(colors_->Pixmorph(none, strides, readPlanes, strides, 4, 2, number, 8), kFail) << number;
        EXPECT_EQ(colors_->Pixmorph(planes, strides, readNone, strides, 4, 2, 8, number), kFail) << number;
        EXPECT_EQ(colors_->Pixmorph(none, strides, readNone, strides, 4, 2, number, number), kFail) << number;
        EXPECT_EQ(colors_->Pixmorph(none, strides, readNone, strides, 0, 0, 8, number), S_OK) << number;
        EXPECT_EQ(colors_->Pixmorph(none, strides, readNone, strides, 0, 2, 8, number), S_OK) << number;
        EXPECT_EQ(colors_->Pixmorph(none, strides, readNone, strides, 4, 0, 8, number), S_OK) << number;
    }
    EXPECT_EQ(simple_->Pixmorph(nullptr, memory, 4, 2, 16, 16, 5, 0), kFail);
    EXPECT_EQ(simple_->Pixmorph(memory, nullptr, 4, 2, 16, 16, 18, 17), kFail);
    EXPECT_EQ(std::vector<std::uint8_t>(memory, memory + 64), std::vector<std::uint8_t>(64));
}

// P016 has no geometry: planes and strides are the caller's, and nothing can be derived.
TEST_F(Convert, P016NeedsAllItsPlanes) {
    std::vector<std::uint8_t> luma(2 * 4 * 4, 0x40), chroma(2 * 4 * 2, 0x80), dst(8 * 4, 1);
    const std::uint8_t* planes[4] = {luma.data(), chroma.data()};
    std::uint8_t* const to[4] = {dst.data()};
    const std::int32_t strides[4] = {8, 8};
    const std::int32_t toStride[4] = {8};
    ASSERT_EQ(colors_->Pixmorph(to, toStride, planes, strides, 4, 4, PIXMORPH_UYVY, PIXMORPH_P016), S_OK);
    for (std::size_t i = 0; i < dst.size(); ++i) EXPECT_EQ(dst[i], i % 2 == 0 ? 0x80 : 0x40) << i;
    planes[1] = nullptr;
    std::fill(dst.begin(), dst.end(), std::uint8_t{1});
    EXPECT_EQ(colors_->Pixmorph(to, toStride, planes, strides, 4, 4, PIXMORPH_UYVY, PIXMORPH_P016), kFail);
    EXPECT_EQ(dst, std::vector<std::uint8_t>(dst.size(), 1));
    EXPECT_EQ(colors_->CheckConversion(PIXMORPH_P016, PIXMORPH_P016), kFail);
}

// The block destinations of the 10-bit 4:2:2 planes have a path, but it wants three planes.
TEST_F(Convert, TenBitPlanesToBlocksNeedThreePlanes) {
    std::vector<std::uint8_t> src(16 * 2 * 2 * 2);
    for (std::size_t i = 0; i < src.size(); i += 2) src[i] = 0x48;  // 0x0248: (0x248 + 2) >> 2 = 0x92
    for (std::size_t i = 1; i < src.size(); i += 2) src[i] = 0x02;
    std::vector<std::uint8_t> y(32, 1), u(16, 1), v(16, 1);
    EXPECT_EQ(colors_->CheckConversion(PIXMORPH_Y16, PIXMORPH_P422), S_OK);
    EXPECT_EQ(Run(y.data(), 16, src.data(), 32, 16, 2, PIXMORPH_Y16, PIXMORPH_P422), kFail);
    EXPECT_EQ(y, std::vector<std::uint8_t>(32, 1));
    std::uint8_t* const dst[4] = {y.data(), u.data(), v.data()};
    const std::int32_t dstStrides[4] = {16, 8, 8};
    const std::uint8_t* const planes[4] = {src.data()};
    const std::int32_t strides[4] = {32};
    EXPECT_EQ(colors_->Pixmorph(dst, dstStrides, planes, strides, 16, 2, PIXMORPH_Y16, PIXMORPH_P422), S_OK);
    EXPECT_EQ(y, std::vector<std::uint8_t>(32, 0x92));
    EXPECT_EQ(u, std::vector<std::uint8_t>(16, 0x92));
    EXPECT_EQ(v, std::vector<std::uint8_t>(16, 0x92));
}

TEST_F(Convert, PlanarMethodsMoveBetweenPlanesAndPackedPictures) {
    // 4 by 2, planes with strides of their own.
    const std::uint8_t y[] = {1, 2, 3, 4, 0, 5, 6, 7, 8, 0};
    const std::uint8_t u[] = {11, 12, 0, 13, 14, 0};
    const std::uint8_t v[] = {21, 22, 0, 0, 23, 24, 0, 0};
    std::uint8_t packed[16] = {};
    ASSERT_EQ(planar_->ConvertYUVPlanarToImage(packed, y, u, v, 4, 2, 8, 5, 3, 4, PIXMORPH_YUY2), S_OK);
    const std::uint8_t expected[] = {1, 11, 2, 21, 3, 12, 4, 22, 5, 13, 6, 23, 7, 14, 8, 24};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(packed[i], expected[i]) << i;
    std::uint8_t y2[10] = {}, u2[6] = {}, v2[8] = {};
    ASSERT_EQ(planar_->PixmorphToYUVPlanar(y2, u2, v2, packed, 4, 2, 5, 3, 4, 8, PIXMORPH_YUY2), S_OK);
    EXPECT_TRUE(std::equal(y, y + 10, y2));
    EXPECT_TRUE(std::equal(u, u + 6, u2));
    EXPECT_TRUE(std::equal(v, v + 8, v2));

    EXPECT_EQ(planar_->ConvertYUVPlanarToImage(packed, y, u, v, 4, 2, 8, 5, 3, 4, Code("YUY2")), kFail);
    EXPECT_EQ(planar_->PixmorphToYUVPlanar(y2, u2, v2, packed, 4, 2, 5, 3, 4, 8, 9), kFail);
    EXPECT_EQ(planar_->ConvertYUVPlanarToImage(packed, y, u, v, 4, 2, 8, 5, 3, 4, PIXMORPH_NV12), kFail);
    EXPECT_EQ(planar_->ConvertYUVPlanarToImage(packed, y, u, v, 3, 2, 8, 5, 3, 4, PIXMORPH_YUY2), kFail);
    EXPECT_EQ(planar_->ConvertYUVPlanarToImage(nullptr, y, u, v, 4, 2, 8, 5, 3, 4, PIXMORPH_YUY2), kFail);
}

// Numbers 17 and 18 are not turned around here.
TEST_F(Convert, PlanarMethodsStoreRgbBottomUpUnderBothNumbers) {
    std::vector<std::uint8_t> y(4 * 2), uv(2 * 2, 128), a(32), b(32);
    ByteGenerator(5).Fill(y);
    ASSERT_EQ(planar_->ConvertYUVPlanarToImage(a.data(), y.data(), uv.data(), uv.data(), 4, 2, 16, 4, 2, 2, 8), S_OK);
    ASSERT_EQ(planar_->ConvertYUVPlanarToImage(b.data(), y.data(), uv.data(), uv.data(), 4, 2, 16, 4, 2, 2, 18), S_OK);
    EXPECT_EQ(a, b);
}

// The matrix is that of the planes, BT.601, whatever the number of the other side says; words are taken as 8 bits deep.
TEST_F(Convert, PlanarMethodsIgnoreMatrixAndDepthOfTheNumber) {
    const std::uint16_t words[] = {200, 300, 200, 300, 90, 91, 92, 93};  // 2 by 2: Y, then U V side by side.
    std::uint8_t y[4] = {}, u[2] = {}, v[2] = {};
    const auto* const src = reinterpret_cast<const std::uint8_t*>(words);
    ASSERT_EQ(planar_->PixmorphToYUVPlanar(y, u, v, src, 2, 2, 2, 1, 1, 4, PIXMORPH_P422), S_OK);
    EXPECT_EQ(y[0], 200);
    EXPECT_EQ(y[1], 255);
    EXPECT_EQ(u[0], 90);
    EXPECT_EQ(v[1], 93);
}

TEST_F(Convert, Y16FieldsWeaveIntoPlanesOfTheLumaStride) {
    constexpr int kWidth = 16, kHeight = 8, kStride = 16;
    std::vector<std::uint8_t> first(32 * 4), second(32 * 4);
    for (int line = 0; line < 4; ++line) {
        for (int i = 0; i < 32; ++i) {
            const int sample = i < 16 ? 0 : i < 24 ? 100 : 200;  // Y, U, V
            first[line * 32 + i] = static_cast<std::uint8_t>(sample + line);
            second[line * 32 + i] = static_cast<std::uint8_t>(sample + 10 + line);
        }
    }
    std::vector<std::uint8_t> y(kStride * kHeight, 1), u(kStride * kHeight / 2, 1), v(kStride * kHeight / 2, 1);
    ASSERT_EQ(fields_->PixmorphToYUV420Planar2(y.data(), u.data(), v.data(), first.data(), second.data(), kWidth,
                                               kHeight, kStride, kStride, kStride, 32, Code("Y16")),
              S_OK);
    for (int line = 0; line < kHeight; ++line)
        for (int x = 0; x < kWidth; ++x) EXPECT_EQ(y[line * kStride + x], (line % 2 != 0 ? 10 : 0) + line / 2);
    // Chroma line r of a field is the rounded mean of its lines 2r and 2r + 1: 101 for lines 0 and 1 (100.5 rounded
    // up).
    for (int line = 0; line < kHeight / 2; ++line) {
        for (int x = 0; x < kWidth; ++x) {
            const int mean = (line % 2 != 0 ? 10 : 0) + (line / 2) * 2 + 1;
            EXPECT_EQ(u[line * kStride + x], x < 8 ? 100 + mean : 1);
            EXPECT_EQ(v[line * kStride + x], x < 8 ? 200 + mean : 1);
        }
    }
}

// The second field starts a luma stride into each plane: with chroma of half the stride it lands two chroma lines down.
TEST_F(Convert, Y16FieldsShiftInPlanesOfHalfTheStride) {
    std::vector<std::uint8_t> first(32 * 2, 50), second(32 * 2, 90);
    std::vector<std::uint8_t> y(16 * 4, 1), u(8 * 4, 1), v(8 * 4, 1);
    ASSERT_EQ(fields_->PixmorphToYUV420Planar2(y.data(), u.data(), v.data(), first.data(), second.data(), 16, 4, 16, 8,
                                               8, 32, 1),
              S_OK);
    for (int line = 0; line < 4; ++line) {
        const std::uint8_t expected = line == 0 ? 50 : line == 2 ? 90 : 1;
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(u[line * 8 + x], expected) << line;
            EXPECT_EQ(v[line * 8 + x], expected) << line;
        }
    }
}

TEST_F(Convert, Y16ToPlanesTakesNothingElse) {
    std::vector<std::uint8_t> src(32 * 4, 60), y(64), u(32), v(32);
    const auto one = [&](std::uint32_t width, std::uint32_t height, std::uint32_t format) {
        return fields_->PixmorphToYUV420Planar(y.data(), u.data(), v.data(), src.data(), width, height, 16, 8, 8, 32,
                                               format);
    };
    const auto two = [&](std::uint32_t width, std::uint32_t height, std::uint32_t format) {
        return fields_->PixmorphToYUV420Planar2(y.data(), u.data(), v.data(), src.data(), src.data(), width, height, 16,
                                                8, 8, 32, format);
    };
    EXPECT_EQ(one(16, 4, 1), S_OK);
    EXPECT_EQ(y, std::vector<std::uint8_t>(64, 60));
    EXPECT_EQ(one(16, 4, Code("y16")), S_OK);
    for (const std::uint32_t format : {0u, 2u, 9u, Code("UYVY"), 0xFFFFFFFFu}) {
        EXPECT_EQ(one(16, 4, format), kInvalidArgument);
        EXPECT_EQ(two(16, 4, format), kInvalidArgument);
    }
    EXPECT_EQ(one(8, 4, 1), kFail);
    EXPECT_EQ(one(16, 3, 1), kFail);
    EXPECT_EQ(two(8, 4, 1), kFail);
    EXPECT_EQ(two(16, 2, 1), kFail);
    EXPECT_EQ(one(0, 0, 1), S_OK);
    EXPECT_EQ(two(0, 0, 1), S_OK);
    EXPECT_EQ(
        fields_->PixmorphToYUV420Planar2(y.data(), nullptr, v.data(), src.data(), src.data(), 16, 4, 16, 8, 8, 32, 1),
        kFail);
    EXPECT_EQ(
        fields_->PixmorphToYUV420Planar2(y.data(), u.data(), v.data(), nullptr, src.data(), 16, 4, 16, 8, 8, 32, 1),
        kFail);
}

TEST_F(Convert, GammaCopiesEqualFormatsInWholeBlocks) {
    std::vector<std::uint8_t> src(20 * 2 * 2), dst(src.size(), 1);
    ByteGenerator(9).Fill(src);
    ASSERT_EQ(gamma_->SetGammaNtsc(), S_OK);
    ASSERT_EQ(gamma_->PixmorphGamma(dst.data(), src.data(), 20, 2, 40, 40, PIXMORPH_UYVY, Code("UYVY")), S_OK);
    ASSERT_EQ(gamma_->SetGamma(1.0), S_OK);
    for (std::size_t i = 0; i < dst.size(); ++i) EXPECT_EQ(dst[i], i % 40 < 32 ? src[i] : 1) << i;
    // The outcome of the copy is not reported.
    EXPECT_EQ(gamma_->PixmorphGamma(nullptr, src.data(), 16, 2, 40, 40, 0, 0), S_OK);
    EXPECT_EQ(gamma_->PixmorphGamma(dst.data(), src.data(), 16, 2, 40, 40, 9, 9), S_OK);
}

TEST_F(Convert, GammaAppliesToY16AAndBgraOnly) {
    // Alpha 0 to 15, Y 16 + 14 i, neutral chroma: 1.164 * 14 i, rounded.
    std::uint8_t src[48] = {};
    for (int i = 0; i < 16; ++i) {
        src[i] = static_cast<std::uint8_t>(16 + 14 * i);
        src[16 + i] = static_cast<std::uint8_t>(i);
        src[32 + i] = 128;
    }
    const int linear[] = {0, 16, 33, 49, 65, 81, 98, 114, 130, 147, 163, 179, 196, 212, 228, 244};
    std::uint8_t dst[64] = {};
    ASSERT_EQ(gamma_->SetGamma(1.0), S_OK);
    ASSERT_EQ(gamma_->PixmorphGamma(dst, src, 16, 1, 64, 48, PIXMORPH_BGRA, PIXMORPH_Y16A), S_OK);
    for (int i = 0; i < 16; ++i) {
        for (int channel = 0; channel < 3; ++channel) EXPECT_EQ(dst[4 * i + channel], linear[i]) << i;
        EXPECT_EQ(dst[4 * i + 3], i);
    }
    // Exponent 2: 16 * 16 / 255 = 1.004, 98 * 98 / 255 = 37.66, 244 * 244 / 255 = 233.47.
    ASSERT_EQ(gamma_->SetGamma(2.0), S_OK);
    ASSERT_EQ(gamma_->PixmorphGamma(dst, src, 31, 1, 64, 48, Code("BGRA"), Code("Y16A")), S_OK);
    ASSERT_EQ(gamma_->SetGamma(1.0), S_OK);
    EXPECT_EQ(dst[4], 1);
    EXPECT_EQ(dst[4 * 6 + 1], 38);
    EXPECT_EQ(dst[4 * 15 + 2], 233);
    EXPECT_EQ(gamma_->PixmorphGamma(dst, src, 16, 1, 64, 48, PIXMORPH_BGR, PIXMORPH_Y16A), kInvalidArgument);
    EXPECT_EQ(gamma_->PixmorphGamma(dst, src, 16, 1, 64, 48, PIXMORPH_Y16A, PIXMORPH_BGRA), kInvalidArgument);
    EXPECT_EQ(gamma_->PixmorphGamma(nullptr, src, 16, 1, 64, 48, PIXMORPH_BGRA, PIXMORPH_Y16A), kFail);
    EXPECT_EQ(gamma_->SetGammaPal(), S_OK);
    EXPECT_EQ(gamma_->SetGamma(1.0), S_OK);
}

}  // namespace
}  // namespace pixmorph_test
