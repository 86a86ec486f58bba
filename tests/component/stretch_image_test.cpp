// The class StretchImage as an application sees it.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

#include "component/stretch_image_expected.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

constexpr HRESULT kFail = static_cast<HRESULT>(0x80004005);
constexpr HRESULT kNotImplemented = static_cast<HRESULT>(0x80004001);

using Bytes = std::vector<std::uint8_t>;

Bytes RandomBytes(std::size_t size, std::uint32_t seed) {
    Bytes bytes(size);
    ByteGenerator(seed).Fill(bytes);
    return bytes;
}

struct Side {
    std::uint32_t format;
    std::uint32_t width;
    std::uint32_t height;
    std::uint8_t* planes[4];
    std::int32_t strides[4];
};

class StretchImage : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(km::CreateInstance(CLSID_StretchImage, stretch_), S_OK);
        ASSERT_EQ(stretch_.As(resize_), S_OK);
    }

    HRESULT Resize(const Side& dst, const Side& src) {
        return resize_->ResizePixmorph(dst.planes, dst.strides, src.planes, src.strides, dst.width, dst.height,
                                       src.width, src.height, dst.format, src.format);
    }

    km::ComPtr<IStretchImage> stretch_;
    km::ComPtr<IResizeImage> resize_;
};

TEST_F(StretchImage, GivesTheExpectedBytesInEveryFormat) {
    for (const ExpectedStretch& row : kExpectedStretches) {
        Bytes src = RandomBytes(8 * 96 * 72 + 4096, row.srcSeed);
        Bytes dst = RandomBytes(8 * 96 * 72 + 4096, row.dstSeed);
        const HRESULT result =
            stretch_->StretchImage(dst.data() + 1024, src.data() + 1024, row.dstWidth, row.dstHeight, row.srcWidth,
                                   row.srcHeight, row.dstStride, row.srcStride, row.format);
        EXPECT_EQ(result, row.succeeds ? S_OK : kFail);
        EXPECT_EQ(HashBytes(dst), row.hash) << "format " << row.format << " " << row.srcWidth << "x" << row.srcHeight
                                            << " to " << row.dstWidth << "x" << row.dstHeight;
    }
}

TEST_F(StretchImage, TakesCodesInEitherCase) {
    const Bytes src = RandomBytes(64 * 32 * 2, 1);
    Bytes byNumber(32 * 32 * 2), byCode(32 * 32 * 2);
    ASSERT_EQ(stretch_->StretchImage(byNumber.data(), src.data(), 32, 32, 64, 32, 64, 128, PIXMORPH_YUY2), S_OK);
    ASSERT_EQ(stretch_->StretchImage(byCode.data(), src.data(), 32, 32, 64, 32, 64, 128, 0x32797579), S_OK);
    EXPECT_EQ(byCode, byNumber);
}

TEST_F(StretchImage, TopDownNumbersAreStretchedLikeBottomUpOnes) {
    const Bytes src = RandomBytes(20 * 20 * 4, 2);
    Bytes bottomUp(30 * 30 * 4), topDown(30 * 30 * 4);
    ASSERT_EQ(stretch_->StretchImage(bottomUp.data(), src.data(), 30, 30, 20, 20, 120, 80, PIXMORPH_BGRA), S_OK);
    ASSERT_EQ(stretch_->StretchImage(topDown.data(), src.data(), 30, 30, 20, 20, 120, 80, PIXMORPH_BGRA_TOP_DOWN),
              S_OK);
    EXPECT_EQ(topDown, bottomUp);
}

TEST_F(StretchImage, SameSizeIsACopyOfAnyFormat) {
    for (const std::uint32_t format : {PIXMORPH_UYVY, PIXMORPH_Y16, PIXMORPH_P216, PIXMORPH_BGR}) {
        const Bytes src = RandomBytes(32 * 8 * 4, 3);
        Bytes dst(src.size(), 0);
        ASSERT_EQ(stretch_->StretchImage(dst.data(), src.data(), 32, 4, 32, 4, 128, 128, format), S_OK) << format;
        EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 64), Bytes(src.begin(), src.begin() + 64)) << format;
    }
}

TEST_F(StretchImage, RefusesWhatCannotBeResized) {
    const Bytes src = RandomBytes(65536, 4);
    Bytes dst(65536, 9);
    const Bytes untouched = dst;
    const auto stretch = [&](std::uint32_t format, std::uint32_t dstWidth, std::uint32_t dstHeight,
                             std::uint32_t srcWidth, std::uint32_t srcHeight) {
        return stretch_->StretchImage(dst.data(), src.data(), dstWidth, dstHeight, srcWidth, srcHeight, 128, 128,
                                      format);
    };
    for (const std::uint32_t format :
         {1u, 2u, 3u, 4u, 12u, 13u, 25u, 26u, 27u, 28u, 29u, 31u, 9u, 19u, 200u, 0x56555941u})
        EXPECT_EQ(stretch(format, 16, 16, 32, 32), kFail) << format;
    EXPECT_EQ(stretch(PIXMORPH_UYVY, 15, 16, 32, 32), kFail);
    EXPECT_EQ(stretch(PIXMORPH_UYVY, 16, 16, 31, 32), kFail);
    EXPECT_EQ(stretch(PIXMORPH_YUY2, 31, 16, 31, 32), kFail);
    EXPECT_EQ(stretch(PIXMORPH_IYUV, 16, 15, 32, 32), kFail);
    EXPECT_EQ(stretch(PIXMORPH_NV12, 16, 16, 32, 31), kFail);
    EXPECT_EQ(stretch(PIXMORPH_BGRA, 0, 16, 32, 32), kFail);
    EXPECT_EQ(stretch(PIXMORPH_BGRA, 16, 16, 32, 0), kFail);
    EXPECT_EQ(stretch(PIXMORPH_BGR, 0, 0, 32, 32), kFail);
    EXPECT_EQ(stretch(PIXMORPH_UYVY, 0x7FFFFFFE, 0x7FFFFFFE, 32, 32), kFail);
    EXPECT_EQ(stretch(PIXMORPH_UYVY, 32, 32, 0xFFFFFFFE, 0xFFFFFFFF), kFail);
    EXPECT_EQ(stretch_->StretchImage(nullptr, src.data(), 16, 16, 32, 32, 64, 64, 0), kFail);
    EXPECT_EQ(stretch_->StretchImage(dst.data(), nullptr, 16, 16, 32, 32, 64, 64, 0), kFail);
    EXPECT_EQ(dst, untouched);
}

TEST_F(StretchImage, OddHeightsAreLegalWhereLinesShareNoChroma) {
    const Bytes src = RandomBytes(2 * 128 * 21, 5);
    Bytes dst(2 * 192 * 35);
    for (const std::uint32_t format : {PIXMORPH_UYVY, PIXMORPH_BGR, PIXMORPH_BGRA, PIXMORPH_Y422})
        EXPECT_EQ(stretch_->StretchImage(dst.data(), src.data(), 48, 35, 32, 21, 192, 128, format), S_OK) << format;
}

TEST_F(StretchImage, ReservedMethodsAreNotImplemented) {
    EXPECT_EQ(resize_->ResizeImageMethod1(), kNotImplemented);
    EXPECT_EQ(resize_->ResizeImageMethod2(), kNotImplemented);
}

// All source planes take the first source stride, all destination planes their own.
TEST_F(StretchImage, SourceStridesAfterTheFirstAreIgnored) {
    Bytes src = RandomBytes(3 * 64 * 32, 6);
    Bytes dst(3 * 32 * 32, 0);
    const Side from{PIXMORPH_IYUV, 32, 32, {src.data(), src.data() + 64 * 32, src.data() + 128 * 32}, {64, 7, -300, 1}};
    const Side to{
        PIXMORPH_IYUV, 16, 32, {dst.data(), dst.data() + 32 * 16, dst.data() + 32 * 16 + 400}, {16, 9, 11, 0}};
    ASSERT_EQ(Resize(to, from), S_OK);
    Bytes expected(dst.size(), 0);
    const auto halve = [&](std::size_t at, std::size_t stride, std::size_t srcAt, std::size_t width,
                           std::size_t height) {
        for (std::size_t y = 0; y < height; ++y)
            for (std::size_t x = 0; x < width; ++x)
                expected[at + y * stride + x] =
                    static_cast<std::uint8_t>((src[srcAt + y * 64 + 2 * x] + 1 + src[srcAt + y * 64 + 2 * x + 1]) >> 1);
    };
    halve(0, 16, 0, 16, 32);
    halve(32 * 16, 9, 64 * 32, 8, 16);
    halve(32 * 16 + 400, 11, 128 * 32, 8, 16);
    EXPECT_EQ(dst, expected);
}

TEST_F(StretchImage, ResizeImageIsResizePixmorphWithOneFormat) {
    Bytes src = RandomBytes(64 * 48 * 2, 7);
    Bytes one(40 * 30 * 2), other(40 * 30 * 2), stretched(40 * 30 * 2);
    Side from{PIXMORPH_UYVY, 64, 48, {src.data()}, {128}};
    Side to{PIXMORPH_UYVY, 40, 30, {one.data()}, {80}};
    ASSERT_EQ(Resize(to, from), S_OK);
    to.planes[0] = other.data();
    ASSERT_EQ(resize_->ResizeImage(to.planes, to.strides, from.planes, from.strides, 40, 30, 64, 48, PIXMORPH_UYVY),
              S_OK);
    ASSERT_EQ(stretch_->StretchImage(stretched.data(), src.data(), 40, 30, 64, 48, 80, 128, PIXMORPH_UYVY), S_OK);
    EXPECT_EQ(one, other);
    EXPECT_EQ(one, stretched);
}

TEST_F(StretchImage, TopDownNumbersFlipOneSide) {
    Bytes src = RandomBytes(24 * 18 * 4, 8);
    Bytes bottomUp(36 * 30 * 4), topDown(36 * 30 * 4), both(36 * 30 * 4);
    Side from{PIXMORPH_BGRA, 24, 18, {src.data()}, {96}};
    Side to{PIXMORPH_BGRA, 36, 30, {bottomUp.data()}, {144}};
    ASSERT_EQ(Resize(to, from), S_OK);
    to.planes[0] = topDown.data();
    to.format = PIXMORPH_BGRA_TOP_DOWN;
    ASSERT_EQ(Resize(to, from), S_OK);
    for (std::size_t y = 0; y < 30; ++y)
        for (std::size_t x = 0; x < 144; ++x) ASSERT_EQ(topDown[y * 144 + x], bottomUp[(29 - y) * 144 + x]);
    // Flipped on both sides the picture's bottom line still comes first.
    Bytes flipped(src.size());
    for (std::size_t y = 0; y < 18; ++y)
        std::copy_n(src.begin() + static_cast<std::ptrdiff_t>(y * 96), 96,
                    flipped.begin() + static_cast<std::ptrdiff_t>((17 - y) * 96));
    from.planes[0] = flipped.data();
    from.format = PIXMORPH_BGRA_TOP_DOWN;
    to.planes[0] = both.data();
    ASSERT_EQ(Resize(to, from), S_OK);
    EXPECT_EQ(both, topDown);
}

// Conversion and resizing in one call give the bytes of the two calls in the order that asks for the smaller picture
// between: a smaller BGRA is resized first, a larger NV12 converted first.
TEST_F(StretchImage, FormatAndSizeTogether) {
    km::ComPtr<IColorConversion> colors;
    ASSERT_EQ(km::CreateInstance(CLSID_Pixmorph, colors), S_OK);
    Bytes src = RandomBytes(64 * 48 * 2, 9);
    const Side from{PIXMORPH_UYVY, 64, 48, {src.data()}, {128}};
    {
        Bytes dst(40 * 30 * 4), small(40 * 30 * 2), expected(40 * 30 * 4);
        ASSERT_EQ(Resize({PIXMORPH_BGRA, 40, 30, {dst.data()}, {160}}, from), S_OK);
        ASSERT_EQ(Resize({PIXMORPH_UYVY, 40, 30, {small.data()}, {80}}, from), S_OK);
        std::uint8_t* const out[4] = {expected.data()};
        const std::uint8_t* const in[4] = {small.data()};
        const std::int32_t outStride[4] = {160}, inStride[4] = {80};
        ASSERT_EQ(colors->Pixmorph(out, outStride, in, inStride, 40, 30, PIXMORPH_BGRA, PIXMORPH_UYVY), S_OK);
        EXPECT_EQ(dst, expected);
    }
    {
        Bytes dst(96 * 72 * 3 / 2), whole(64 * 48 * 3 / 2), expected(96 * 72 * 3 / 2);
        ASSERT_EQ(Resize({PIXMORPH_NV12, 96, 72, {dst.data()}, {96}}, from), S_OK);
        std::uint8_t* const out[4] = {whole.data()};
        const std::uint8_t* const in[4] = {src.data()};
        const std::int32_t outStride[4] = {64}, inStride[4] = {128};
        ASSERT_EQ(colors->Pixmorph(out, outStride, in, inStride, 64, 48, PIXMORPH_NV12, PIXMORPH_UYVY), S_OK);
        ASSERT_EQ(stretch_->StretchImage(expected.data(), whole.data(), 96, 72, 64, 48, 96, 64, PIXMORPH_NV12), S_OK);
        EXPECT_EQ(dst, expected);
    }
}

// A block format cannot be resized, so the resize runs in the other format, whatever the sizes.
TEST_F(StretchImage, BlockFormatsAreConvertedLast) {
    Bytes src = RandomBytes(96 * 36 * 3, 10);
    Bytes dst(64 * 24 * 2), small(64 * 24 * 3), expected(64 * 24 * 2);
    const Side from{PIXMORPH_BGR, 96, 36, {src.data()}, {288}};
    ASSERT_EQ(Resize({PIXMORPH_Y16, 64, 24, {dst.data()}, {128}}, from), S_OK);
    ASSERT_EQ(Resize({PIXMORPH_BGR, 64, 24, {small.data()}, {192}}, from), S_OK);
    km::ComPtr<IPixmorph> convert;
    ASSERT_EQ(km::CreateInstance(CLSID_Pixmorph, convert), S_OK);
    ASSERT_EQ(convert->Pixmorph(expected.data(), small.data(), 64, 24, 128, 192, PIXMORPH_Y16, PIXMORPH_BGR), S_OK);
    EXPECT_EQ(dst, expected);
}

// A picture between conversion and resizing has chroma lines for the last luma line of an odd height as well, before
// the resizer refuses that height. Each case has an object of its own: one that has worked before has larger buffers.
TEST(StretchImageOddSizes, PicturesBetweenHoldAllTheirPlanes) {
    struct Size {
        std::uint32_t dstWidth, dstHeight, srcWidth, srcHeight;
    };
    constexpr Size kSizes[] = {{1440, 960, 720, 481}, {132, 22, 88, 27}, {128, 3, 126, 3}, {24, 63, 54, 63},
                               {64, 50, 64, 25},      {30, 8, 62, 1},    {64, 34, 63, 17}, {32, 16, 64, 33}};
    constexpr std::uint32_t kFormats[] = {0, 5, 7, 8, 10, 11, 16, 24, 25, 26, 27, 28, 29, 30, 31};
    for (const Size& size : kSizes)
        for (const std::uint32_t dstFormat : kFormats)
            for (const std::uint32_t srcFormat : kFormats)
                for (const std::uint32_t matrix : {0u, 32u, 96u}) {
                    if (matrix != 0 && (dstFormat < 10 || dstFormat == 16)) continue;
                    km::ComPtr<IResizeImage> resize;
                    ASSERT_EQ(km::CreateInstance(CLSID_StretchImage, resize), S_OK);
                    // Rows of 4 bytes a pixel, and every plane as large as the first.
                    const std::uint32_t srcStride = 4 * size.srcWidth, dstStride = 4 * size.dstWidth;
                    const std::size_t srcPlane = std::size_t{srcStride} * (size.srcHeight + 1);
                    const std::size_t dstPlane = std::size_t{dstStride} * (size.dstHeight + 1);
                    Bytes src(3 * srcPlane, 77), dst(3 * dstPlane);
                    Side from{srcFormat,
                              size.srcWidth,
                              size.srcHeight,
                              {src.data(), src.data() + srcPlane, src.data() + 2 * srcPlane},
                              {}};
                    Side to{dstFormat + matrix,
                            size.dstWidth,
                            size.dstHeight,
                            {dst.data(), dst.data() + dstPlane, dst.data() + 2 * dstPlane},
                            {}};
                    std::fill(std::begin(from.strides), std::end(from.strides), static_cast<std::int32_t>(srcStride));
                    std::fill(std::begin(to.strides), std::end(to.strides), static_cast<std::int32_t>(dstStride));
                    const HRESULT result =
                        resize->ResizePixmorph(to.planes, to.strides, from.planes, from.strides, to.width, to.height,
                                               from.width, from.height, to.format, from.format);
                    // Chroma of half the lines cannot be resized from or to an odd height.
                    const auto isHalved = [](std::uint32_t format) {
                        return format == 10 || format == 11 || (format >= 24 && format <= 26) || format == 16;
                    };
                    if (isHalved(srcFormat) && size.srcHeight % 2 != 0) {
                        EXPECT_EQ(result, kFail) << to.format << " from " << from.format;
                    }
                }
}

TEST_F(StretchImage, UnknownNumbersInResizePixmorph) {
    Bytes src = RandomBytes(4096, 11);
    Bytes dst(4096, 9);
    const Bytes untouched = dst;
    const Side from{PIXMORPH_UYVY, 32, 16, {src.data()}, {64}};
    // An unknown destination takes the source as it is: a success that writes nothing.
    EXPECT_EQ(Resize({9, 16, 16, {dst.data()}, {64}}, from), S_OK);
    EXPECT_EQ(Resize({77, 32, 16, {dst.data()}, {64}}, from), S_OK);
    EXPECT_EQ(Resize({PIXMORPH_UYVY, 16, 16, {dst.data()}, {64}}, {77, 32, 16, {src.data()}, {64}}), kFail);
    EXPECT_EQ(Resize({PIXMORPH_UYVY, 32, 16, {dst.data()}, {64}}, {77, 32, 16, {src.data()}, {64}}), kFail);
    EXPECT_EQ(dst, untouched);
}

TEST_F(StretchImage, RefusesNullPointers) {
    Bytes src = RandomBytes(4096, 12);
    Bytes dst(4096, 9);
    const Bytes untouched = dst;
    const Side from{PIXMORPH_BGRA_TOP_DOWN, 16, 16, {src.data()}, {64}};
    const Side to{PIXMORPH_BGRA_TOP_DOWN, 8, 8, {dst.data()}, {64}};
    EXPECT_EQ(Resize({PIXMORPH_BGRA_TOP_DOWN, 8, 8, {nullptr}, {64}}, from), kFail);
    EXPECT_EQ(Resize(to, {PIXMORPH_BGRA_TOP_DOWN, 16, 16, {nullptr}, {64}}), kFail);
    const auto call = [&](bool dstPlanes, bool dstStrides, bool srcPlanes, bool srcStrides) {
        return resize_->ResizePixmorph(dstPlanes ? to.planes : nullptr, dstStrides ? to.strides : nullptr,
                                       srcPlanes ? from.planes : nullptr, srcStrides ? from.strides : nullptr, 8, 8, 16,
                                       16, PIXMORPH_BGRA, PIXMORPH_BGRA);
    };
    EXPECT_EQ(call(false, true, true, true), kFail);
    EXPECT_EQ(call(true, false, true, true), kFail);
    EXPECT_EQ(call(true, true, false, true), kFail);
    EXPECT_EQ(call(true, true, true, false), kFail);
    EXPECT_EQ(dst, untouched);
}

TEST_F(StretchImage, AnswersForBothInterfaces) {
    km::ComPtr<IStretchImage> back;
    ASSERT_EQ(resize_.As(back), S_OK);
    km::ComPtr<ICopyMemory> other;
    EXPECT_EQ(resize_.As(other), static_cast<HRESULT>(0x80004002));
}

}  // namespace
}  // namespace pixmorph_test
