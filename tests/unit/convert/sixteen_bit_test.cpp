// Samples in 16-bit words to and from bytes, against a recomputation sample by sample.
#include "convert/sixteen_bit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "convert/conversion_dispatch.h"
#include "foundation/store_policy.h"
#include "support/features.h"
#include "support/picture.h"

namespace pixmorph_test {
namespace {

int WordOf(const TestPlane& plane, std::size_t row, std::size_t index) {
    const std::uint8_t* const bytes = plane.Row(row) + 2 * index;
    return bytes[0] | bytes[1] << 8;
}

// Chroma word k of component 0 (U) or 1 (V) in a chroma line.
int ChromaWord(const TestPicture& picture, int component, std::size_t row, std::size_t k) {
    const std::uint32_t format = picture.Desc().format;
    const TestPlane& plane = picture.Planes()[1];
    if (format == km::FMT_P216 || format == km::FMT_P016) return WordOf(plane, row, 2 * k + component);
    return WordOf(plane, row, k + component * (picture.Desc().width / 2));
}

std::uint8_t Byte(const TestPicture& picture, int channel, std::size_t row, std::size_t index) {
    const auto at = [&](std::size_t plane, std::size_t byte) { return picture.Planes()[plane].Row(row)[byte]; };
    switch (picture.Desc().format) {
        case km::FMT_UYVY:
            return at(0, channel == 0 ? 2 * index + 1 : 4 * index + (channel == 1 ? 0 : 2));
        case km::FMT_YUY2:
            return at(0, channel == 0 ? 2 * index : 4 * index + (channel == 1 ? 1 : 3));
        case km::FMT_YVYU:
            return at(0, channel == 0 ? 2 * index : 4 * index + (channel == 1 ? 3 : 1));
        case km::FMT_NV12:
            return channel == 0 ? at(0, index) : at(1, 2 * index + channel - 1);
        default:
            return at(channel, index);
    }
}

int Rounded(int word, int extraBits) {
    return std::min(255, extraBits == 0 ? word : (word + (1 << extraBits) / 2) >> extraBits);
}
int RoundedMean(int a, int b, int extraBits) { return std::min(255, (a + b + (1 << extraBits)) >> (extraBits + 1)); }

constexpr std::uint32_t kWidth = 70, kHeight = 6;

struct DepthPair {
    std::uint32_t dst, src;
};

class RightJustified : public testing::TestWithParam<DepthPair> {};

TEST_P(RightJustified, WordsAreRoundedToBytes) {
    const auto [dstFormat, srcFormat] = GetParam();
    const bool from420 = srcFormat == km::FMT_S420;
    const bool to420 = dstFormat == km::FMT_I420;
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const int bits : {0, 1, 2, 4, 8}) {
            TestPicture src(srcFormat, kWidth, kHeight, {8, false, 0}, 0, static_cast<std::uint8_t>(bits));
            // Depths of luma and chroma are told apart.
            src.Desc().chromaExtraBits = static_cast<std::uint8_t>(bits + 1);
            TestPicture dst(dstFormat, kWidth, kHeight, {12, false, 4});
            src.Fill(Fill::Random, 100 + bits);
            ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
            for (std::uint32_t y = 0; y < kHeight; ++y)
                for (std::uint32_t x = 0; x < kWidth; ++x)
                    ASSERT_EQ(Byte(dst, 0, y, x), Rounded(WordOf(src.Plane(0), y, x), bits)) << bits;
            for (std::uint32_t y = 0; y < (to420 ? kHeight / 2 : kHeight); ++y) {
                for (std::uint32_t k = 0; k < kWidth / 2; ++k) {
                    for (const int component : {0, 1}) {
                        const std::uint32_t line = from420 && !to420 ? y / 2 : y;
                        const int word = ChromaWord(src, component, line, k);
                        int expected = Rounded(word, bits + 1);
                        if (from420 && !to420 && y % 2 == 1 && y + 1 < kHeight)
                            expected = RoundedMean(word, ChromaWord(src, component, line + 1, k), bits + 1);
                        ASSERT_EQ(Byte(dst, 1 + component, y, k), expected) << bits << " line " << y << " pair " << k;
                    }
                }
            }
            EXPECT_TRUE(dst.GuardsIntact());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(SixteenBit, RightJustified,
                         testing::Values(DepthPair{km::FMT_UYVY, km::FMT_S420}, DepthPair{km::FMT_YUY2, km::FMT_S420},
                                         DepthPair{km::FMT_YVYU, km::FMT_S420}, DepthPair{km::FMT_I420, km::FMT_S420},
                                         DepthPair{km::FMT_UYVY, km::FMT_S422}, DepthPair{km::FMT_YUY2, km::FMT_S422},
                                         DepthPair{km::FMT_YVYU, km::FMT_S422}, DepthPair{km::FMT_Y422, km::FMT_S422}));

class LeftJustified : public testing::TestWithParam<DepthPair> {};

TEST_P(LeftJustified, HighBytesAreTaken) {
    const auto [dstFormat, srcFormat] = GetParam();
    const bool from420 = srcFormat == km::FMT_P016;
    const bool to420 = dstFormat == km::FMT_NV12;
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        // The extra bits do not count here.
        TestPicture src(srcFormat, kWidth, kHeight, {4, false, 0}, 0, 2);
        TestPicture dst(dstFormat, kWidth, kHeight, {12, false, 4});
        src.Fill(Fill::Random, level);
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
        for (std::uint32_t y = 0; y < kHeight; ++y)
            for (std::uint32_t x = 0; x < kWidth; ++x) ASSERT_EQ(Byte(dst, 0, y, x), WordOf(src.Plane(0), y, x) / 256);
        for (std::uint32_t y = 0; y < (to420 ? kHeight / 2 : kHeight); ++y) {
            for (std::uint32_t k = 0; k < kWidth / 2; ++k) {
                for (const int component : {0, 1}) {
                    int expected;
                    if (from420 && to420) {
                        expected = ChromaWord(src, component, y, k) / 256;
                    } else if (to420) {
                        expected =
                            (ChromaWord(src, component, 2 * y, k) + 1 + ChromaWord(src, component, 2 * y + 1, k)) / 512;
                    } else if (!from420) {
                        expected = ChromaWord(src, component, y, k) / 256;
                    } else if (y % 2 == 1 && y + 1 < kHeight) {
                        // Not rounded, unlike the mean above.
                        expected =
                            (ChromaWord(src, component, y / 2, k) + ChromaWord(src, component, y / 2 + 1, k)) / 512;
                    } else {
                        expected = ChromaWord(src, component, y / 2, k) / 256;
                    }
                    ASSERT_EQ(Byte(dst, 1 + component, y, k), expected) << "line " << y << " pair " << k;
                }
            }
        }
        EXPECT_TRUE(dst.GuardsIntact());
    }
}

INSTANTIATE_TEST_SUITE_P(SixteenBit, LeftJustified,
                         testing::Values(DepthPair{km::FMT_UYVY, km::FMT_P216}, DepthPair{km::FMT_YUY2, km::FMT_P216},
                                         DepthPair{km::FMT_NV12, km::FMT_P216}, DepthPair{km::FMT_UYVY, km::FMT_P016},
                                         DepthPair{km::FMT_YUY2, km::FMT_P016}, DepthPair{km::FMT_NV12, km::FMT_P016}));

// Frames that do not fit the cache are written another way where lines start at cache lines.
TEST(SixteenBit, LargeFramesAreTheSameAtEveryLevel) {
    constexpr std::uint32_t kWide = 1024;
    const auto height = static_cast<std::uint32_t>(km::CachedBytes(km::CacheShare::Half) / kWide / 2 * 2 + 4);
    for (const auto& [dstFormat, srcFormat] :
         {DepthPair{km::FMT_UYVY, km::FMT_P216}, DepthPair{km::FMT_YUY2, km::FMT_P016},
          DepthPair{km::FMT_UYVY, km::FMT_S422}, DepthPair{km::FMT_YUY2, km::FMT_S420},
          DepthPair{km::FMT_NV12, km::FMT_P216}, DepthPair{km::FMT_NV12, km::FMT_P016},
          DepthPair{km::FMT_Y422, km::FMT_S422}, DepthPair{km::FMT_I420, km::FMT_S420}}) {
        TestPicture src(srcFormat, kWide, height, {}, 0, 2);
        src.Fill(Fill::Random, dstFormat);
        for (const PictureLayout& layout : {PictureLayout{}, {64, true, 0}, {0, false, 4}}) {
            TestPicture expected(dstFormat, kWide, height, layout), actual(dstFormat, kWide, height, layout);
            {
                const RestrictedFeatures restricted(km::FEATURES_PLAIN);
                ASSERT_EQ(km::ImageConversionDispatch(expected.Desc(), src.Desc()), km::IMG_OK);
            }
            for (const std::uint32_t level : FeatureLevels()) {
                const RestrictedFeatures restricted(level);
                ASSERT_EQ(km::ImageConversionDispatch(actual.Desc(), src.Desc()), km::IMG_OK);
                EXPECT_EQ(actual.FirstDifference(expected), "") << srcFormat << " at level " << level;
                EXPECT_TRUE(actual.GuardsIntact());
            }
        }
    }
}

// One word everywhere, as one byte everywhere.
int ByteOfWord(std::uint32_t srcFormat, std::uint16_t word, std::uint8_t extraBits) {
    TestPicture src(srcFormat, 4, 4, {}, 0, extraBits), dst(km::FMT_UYVY, 4, 4);
    for (TestPlane& plane : src.Planes())
        for (std::size_t row = 0; row < plane.Rows(); ++row)
            for (std::size_t i = 0; i < plane.RowBytes(); i += 2) std::memcpy(plane.Row(row) + i, &word, 2);
    EXPECT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
    const int byte = dst.Plane(0).Row(0)[0];
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(dst.Plane(0).Row(row)[i], byte);
    return byte;
}

TEST(SixteenBit, WorkedWords) {
    EXPECT_EQ(ByteOfWord(km::FMT_S420, 1023, 2), 255);
    EXPECT_EQ(ByteOfWord(km::FMT_S420, 1021, 2), 255);
    EXPECT_EQ(ByteOfWord(km::FMT_S420, 513, 2), 128);
    EXPECT_EQ(ByteOfWord(km::FMT_S420, 514, 2), 129);
    EXPECT_EQ(ByteOfWord(km::FMT_S420, 300, 0), 255);
    EXPECT_EQ(ByteOfWord(km::FMT_S420, 200, 0), 200);
    EXPECT_EQ(ByteOfWord(km::FMT_S422, 65535, 8), 255);
    EXPECT_EQ(ByteOfWord(km::FMT_S422, 65535, 16), 1);
    EXPECT_EQ(ByteOfWord(km::FMT_S422, 65535, 17), 0);
    EXPECT_EQ(ByteOfWord(km::FMT_S422, 65535, 255), 0);
    EXPECT_EQ(ByteOfWord(km::FMT_P016, 0x8000, 2), 128);
    EXPECT_EQ(ByteOfWord(km::FMT_P216, 0xFFFF, 2), 255);
}

TEST(SixteenBit, BytesAreWidenedByTheLumaDepth) {
    for (const int bits : {0, 2, 8, 9, 16, 255}) {
        for (const std::uint32_t format : {km::FMT_S420, km::FMT_S422}) {
            TestPicture src(km::FMT_I420, 14, 6, {2, false, 0}), dst(format, 14, 6, {8, false, 0});
            dst.Desc().lumaExtraBits = static_cast<std::uint8_t>(bits);
            dst.Desc().chromaExtraBits = 5;
            src.Fill(Fill::Random, 3);
            ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
            const auto widened = [bits](int byte) { return bits > 16 ? 0 : (byte << bits) & 0xFFFF; };
            for (std::size_t y = 0; y < 6; ++y)
                for (std::size_t x = 0; x < 14; ++x)
                    ASSERT_EQ(WordOf(dst.Plane(0), y, x), widened(src.Plane(0).Row(y)[x]));
            // 4:2:2 has every chroma line twice.
            for (std::size_t y = 0; y < dst.Plane(1).Rows(); ++y)
                for (std::size_t k = 0; k < 7; ++k)
                    for (const int component : {0, 1})
                        ASSERT_EQ(ChromaWord(dst, component, y, k),
                                  widened(src.Plane(1 + component).Row(format == km::FMT_S420 ? y : y / 2)[k]));
            EXPECT_TRUE(dst.GuardsIntact());
        }
    }
    TestPicture src(km::FMT_Y400, 14, 3), dst(km::FMT_S400, 14, 3, {5, false, 1}, 0, 4);
    src.Fill(Fill::Random, 9);
    ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
    for (std::size_t y = 0; y < 3; ++y)
        for (std::size_t x = 0; x < 14; ++x) ASSERT_EQ(WordOf(dst.Plane(0), y, x), src.Plane(0).Row(y)[x] * 16);
    EXPECT_TRUE(dst.GuardsIntact());
}

}  // namespace
}  // namespace pixmorph_test
