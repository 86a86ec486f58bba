// Slices made by hand, of blocks that have one value each: where macroblocks land, in every structure of chrominance,
// by frames and by fields, with several slices in a row and quantisers that change.
#include "iframe/slice_decoder.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;
namespace mpeg = KorvaneSoftware::iframe;

constexpr std::uint32_t kWidth = 48, kHeight = 24;
constexpr std::uint8_t kUntouched = 0xA7;
constexpr std::int32_t kPredictor = 1024;

// Writes slices with 11 bits of DC and table B.15.
class SliceMaker {
public:
    SliceMaker() : bytes_(100000) { writer_.next = bytes_.data(); }

    SliceMaker& Slice(std::uint32_t row, std::uint32_t incrementWord, std::uint32_t incrementLength,
                      std::uint32_t scaleCode = 1) {
        writer_.Align();
        writer_.Put(0x100 | (row + 1), 32);
        writer_.Put(scaleCode, 5);
        writer_.Put(0, 1);  // No intra_slice_flag: this is extra_bit_slice.
        writer_.Put(incrementWord, incrementLength);
        for (std::int32_t& predictor : predictors_) predictor = kPredictor;
        return *this;
    }
    SliceMaker& Increment(std::uint32_t word, std::uint32_t length) {
        writer_.Put(word, length);
        return *this;
    }
    SliceMaker& Next() { return Increment(1, 1); }
    // A macroblock of blocks of one value each, samples in the order of the stream.
    SliceMaker& Macroblock(std::initializer_list<int> samples, bool byFields, std::uint32_t newScaleCode = 0) {
        if (newScaleCode == 0)
            writer_.Put(2 | byFields, 2);
        else
            writer_.Put((2 | byFields) << 5 | newScaleCode, 8);
        int block = 0;
        for (const int sample : samples) {
            const int component = block < 4 ? 0 : 1 + block % 2;
            const std::int16_t levels[64] = {static_cast<std::int16_t>(8 * sample)};
            mpeg::EncodeBlock(writer_, levels, 1, component == 0 ? mpeg::kLumaSizeEncoder : mpeg::kChromaSizeEncoder,
                              predictors_[component]);
            ++block;
        }
        return *this;
    }
    std::vector<std::uint8_t> Bytes() {
        mpeg::BitWriter writer = writer_;
        writer.Flush();
        return {bytes_.data(), writer.next};
    }

private:
    std::vector<std::uint8_t> bytes_;
    mpeg::BitWriter writer_;
    std::int32_t predictors_[3] = {};
};

struct Decoded {
    km::Status status = km::IMG_OK;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(kWidth * kHeight * 2, kUntouched);

    int Y(std::uint32_t x, std::uint32_t y) const { return bytes[(y * kWidth + x) * 2 + 1]; }
    int U(std::uint32_t x, std::uint32_t y) const { return bytes[(y * kWidth + x / 2 * 2) * 2]; }
    int V(std::uint32_t x, std::uint32_t y) const { return bytes[(y * kWidth + x / 2 * 2) * 2 + 2]; }
};

Decoded Decode(SliceMaker& maker, std::uint32_t chromaFormat = 2) {
    mpeg::ParsedHeaders headers = {};
    headers.pictureType = 1;
    headers.pictureStructure = 3;
    headers.dcPrecision = 3;
    headers.vlcFormat = 1;
    headers.chromaFormat = chromaFormat;
    for (std::uint8_t& entry : headers.matrix) entry = 16;
    Decoded decoded;
    km::ImageDescriptor image;
    image.format = km::FMT_UYVY;
    image.width = kWidth;
    image.height = kHeight;
    image.planes[0] = decoded.bytes.data();
    image.strides[0] = kWidth * 2;
    mpeg::SliceDecoder decoder;
    EXPECT_EQ(decoder.BeginFrame(headers, image), km::IMG_OK);
    const std::vector<std::uint8_t> bytes = maker.Bytes();
    mpeg::RowClaims claims;
    claims.BeginFrame(mpeg::MacroblocksOf(kHeight));
    decoded.status = decoder.DecodeShare(bytes.data(), bytes.data() + bytes.size(), claims, 0);
    return decoded;
}

TEST(IFrameSlices, RowsBelongToTheFirstShareThatComes) {
    mpeg::RowClaims claims;
    claims.BeginFrame(3);
    EXPECT_TRUE(claims.Admits(0, 0));
    EXPECT_TRUE(claims.Admits(1, 1));
    EXPECT_TRUE(claims.Admits(1, 1));
    EXPECT_FALSE(claims.Admits(1, 0));
    EXPECT_TRUE(claims.Admits(2, 0));
    ASSERT_TRUE(claims.TakeLeftRows());
    for (unsigned share = 0; share < 2; ++share) {
        EXPECT_FALSE(claims.Admits(0, share));
        EXPECT_TRUE(claims.Admits(1, share));
        EXPECT_FALSE(claims.Admits(2, share));
    }
    claims.BeginFrame(3);
    EXPECT_TRUE(claims.Admits(1, 0));
    EXPECT_FALSE(claims.TakeLeftRows());
}

TEST(IFrameSlices, FrameMacroblock) {
    SliceMaker maker;
    maker.Slice(0, 1, 1).Macroblock({10, 20, 30, 40, 50, 60, 70, 80}, false);
    const Decoded d = Decode(maker);
    EXPECT_EQ(d.status, km::IMG_OK);
    for (std::uint32_t y = 0; y < kHeight; ++y) {
        for (std::uint32_t x = 0; x < kWidth; ++x) {
            const bool inside = x < 16 && y < 16;
            ASSERT_EQ(d.Y(x, y), !inside ? kUntouched : 10 + (x / 8 + y / 8 * 2) * 10) << x << ", " << y;
            ASSERT_EQ(d.U(x, y), !inside ? kUntouched : y < 8 ? 50 : 70) << x << ", " << y;
            ASSERT_EQ(d.V(x, y), !inside ? kUntouched : y < 8 ? 60 : 80) << x << ", " << y;
        }
    }
}

// The lower macroblock row has eight lines, four of each field.
TEST(IFrameSlices, FieldMacroblocks) {
    SliceMaker maker;
    for (const std::uint32_t row : {0u, 1u}) maker.Slice(row, 1, 1).Macroblock({10, 20, 30, 40, 50, 60, 70, 80}, true);
    const Decoded d = Decode(maker);
    for (std::uint32_t y = 0; y < kHeight; ++y) {
        for (std::uint32_t x = 0; x < 16; ++x) {
            ASSERT_EQ(d.Y(x, y), 10 + static_cast<int>(x / 8 + y % 2 * 2) * 10) << x << ", " << y;
            ASSERT_EQ(d.U(x, y), y % 2 == 0 ? 50 : 70);
            ASSERT_EQ(d.V(x, y), y % 2 == 0 ? 60 : 80);
        }
        ASSERT_EQ(d.Y(16, y), kUntouched);
    }
}

// Chrominance of 4:2:0 goes by frames even where luminance goes by fields. One value a block cannot tell its lines; a
// chroma_spread test does.
TEST(IFrameSlices, OtherChromaFormats) {
    for (const bool byFields : {false, true}) {
        SliceMaker maker;
        maker.Slice(0, 1, 1).Macroblock({10, 20, 30, 40, 50, 60}, byFields);
        const Decoded d = Decode(maker, 1);
        for (std::uint32_t y = 0; y < 16; ++y) {
            ASSERT_EQ(d.Y(9, y), 20 + static_cast<int>(byFields ? y % 2 : y / 8) * 20) << y;
            ASSERT_EQ(d.U(3, y), 50);
            ASSERT_EQ(d.V(13, y), 60);
        }
    }
    SliceMaker none;
    none.Slice(0, 1, 1).Macroblock({10, 20, 30, 40}, false);
    const Decoded grey = Decode(none, 0);
    SliceMaker full;
    full.Slice(0, 1, 1).Macroblock({10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120}, false);
    const Decoded wide = Decode(full, 3);
    for (std::uint32_t y = 0; y < 16; ++y) {
        for (std::uint32_t x = 0; x < 16; ++x) {
            ASSERT_EQ(grey.Y(x, y), 10 + static_cast<int>(x / 8 + y / 8 * 2) * 10);
            ASSERT_EQ(grey.U(x, y), 128);
            ASSERT_EQ(grey.V(x, y), 128);
            ASSERT_EQ(wide.U(x, y), 50 + static_cast<int>(x / 8 * 40 + y / 8 * 20));
            ASSERT_EQ(wide.V(x, y), 60 + static_cast<int>(x / 8 * 40 + y / 8 * 20));
        }
    }
}

// Increment 2 is 011, increment 3 is 010.
TEST(IFrameSlices, SeveralSlicesInARow) {
    SliceMaker maker;
    maker.Slice(0, 2, 3).Macroblock({31, 31, 31, 31, 31, 31, 31, 31}, false);
    maker.Slice(0, 1, 1)
        .Macroblock({11, 11, 11, 11, 11, 11, 11, 11}, false)
        .Next()
        .Macroblock({21, 21, 21, 21, 21, 21, 21, 21}, false);
    const Decoded d = Decode(maker);
    EXPECT_EQ(d.status, km::IMG_OK);
    for (std::uint32_t x = 0; x < kWidth; ++x) ASSERT_EQ(d.Y(x, 15), 11 + static_cast<int>(x / 16) * 10) << x;
}

TEST(IFrameSlices, ColumnsAndSkipsThatCannotBe) {
    SliceMaker outside;
    outside.Slice(0, 3, 4).Macroblock({11, 11, 11, 11, 11, 11, 11, 11}, false);  // 0011 is increment 4: column 3 of 3.
    Decoded d = Decode(outside);
    EXPECT_EQ(d.status, km::IMG_E_MALFORMED);
    EXPECT_EQ(d.bytes, Decoded().bytes);
    SliceMaker escape;
    escape.Slice(0, 8, 11).Macroblock({11, 11, 11, 11, 11, 11, 11, 11}, false);  // 33 and more.
    EXPECT_EQ(Decode(escape).status, km::IMG_E_MALFORMED);
    SliceMaker skip;  // Increment 2 within a slice.
    skip.Slice(0, 1, 1).Macroblock({11, 11, 11, 11, 11, 11, 11, 11}, false).Increment(3, 3);
    skip.Macroblock({22, 22, 22, 22, 22, 22, 22, 22}, false);
    d = Decode(skip);
    EXPECT_EQ(d.status, km::IMG_E_MALFORMED);
    EXPECT_EQ(d.Y(15, 0), 11);
    EXPECT_EQ(d.Y(16, 0), kUntouched);
    EXPECT_EQ(d.Y(32, 0), kUntouched);
    SliceMaker below;
    below.Slice(2, 1, 1).Macroblock({11, 11, 11, 11, 11, 11, 11, 11}, false);
    d = Decode(below);
    EXPECT_EQ(d.status, km::IMG_OK);
    EXPECT_EQ(d.bytes, Decoded().bytes);
}

// The scale stays until the next macroblock that changes it; code 0 is no scale.
TEST(IFrameSlices, QuantiserChanges) {
    SliceMaker maker;
    const std::initializer_list<int> grey = {128, 128, 128, 128, 128, 128, 128, 128};
    maker.Slice(0, 1, 1).Macroblock(grey, false, 31).Next().Macroblock(grey, true, 5);
    const Decoded d = Decode(maker);
    EXPECT_EQ(d.status, km::IMG_OK);
    EXPECT_EQ(d.Y(31, 15), 128);
    SliceMaker zero;
    zero.Slice(0, 1, 1, 0).Macroblock(grey, false);
    EXPECT_EQ(Decode(zero).status, km::IMG_E_MALFORMED);
}

}  // namespace
}  // namespace pixmorph_test
