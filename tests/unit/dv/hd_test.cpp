// 100 Mbit: the choice of field lines, sources that are converted, the search of its own numbers.
#include <gtest/gtest.h>

#include <memory>
#include <string_view>

#include "convert/conversion_dispatch.h"
#include "dv/dif_blocks.h"
#include "dv/segment_encoder.h"
#include "unit/dv/dv_codec_case.h"

namespace KorvaneSoftware {
namespace {

using namespace dv_test;

// Two fields of one colour each: frame lines alternate, field lines do not.
Picture Comb(std::uint32_t width, std::uint32_t height) {
    Picture picture(FMT_UYVY, width, height);
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < 2 * width; ++x)
            picture.Line(y)[x] = static_cast<std::uint8_t>(y % 2 == 0 ? 60 + x % 2 * 20 : 190 - x % 2 * 30);
    return picture;
}

TEST(DvHd, WholeMacroblocksTakeTheLinesOfFields) {
    for (const bool is50Hz : {false, true}) {
        const DvStream& stream = *FindDvStream(CODEC_DVCPRO100, 1080, is50Hz);
        const CodedFormat format = Format(CODEC_DVCPRO100, stream.codedWidth, 1080);
        const Picture source = Comb(stream.codedWidth, 1080);
        const Bytes frame =
            Encoded(is50Hz ? CreateDVCPRO100Encoder50Hz() : CreateDVCPRO100Encoder60Hz(), format, source.image);
        unsigned whole = 0;
        for (unsigned sequence = 0; sequence < stream.sequences; ++sequence) {
            if (!HasMacroblocks(stream, sequence)) continue;
            for (unsigned segment = 0; segment < kSegmentsPerSequence; ++segment)
                for (unsigned i = 0; i < kSegmentMacroblocks; ++i) {
                    const std::uint8_t* const block =
                        frame.data() + kDifSequenceBytes * sequence + VideoBlockOffset(segment, i);
                    const bool byFields =
                        PlaceMacroblock(stream, sequence, segment, i, 0).shape == MacroblockShape::k16x16;
                    whole += byFields;
                    // The first block's mode tells; those of the other seven are clear.
                    for (const unsigned at : {4u, 14u, 24u, 34u, 44u, 54u, 64u, 72u})
                        ASSERT_EQ(block[at + 1] >> 6 & 1, at == 4 && byFields) << sequence << ", " << segment;
                }
        }
        EXPECT_EQ(whole, stream.codedWidth / 16 * 67u) << "all but those of the last eight lines";
        const Decoder decoder(CreateDVCPRO100Decoder());
        ASSERT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
        Picture decoded(FMT_UYVY, stream.codedWidth, 1080);
        ASSERT_EQ(Decode(decoder, decoded.image, frame), IMG_OK);
        for (std::size_t i = 0; i < decoded.bytes.size() / 1080 * 1072; ++i)
            ASSERT_NEAR(decoded.bytes[i], source.bytes[i], 1) << i;
    }
}

TEST(DvHd, At720LinesThereAreNoFields) {
    const CodedFormat format = Format(CODEC_DVCPRO100, 960, 720);
    const Bytes frame = Encoded(CreateDVCPRO100Encoder60Hz(), format, Comb(960, 720).image);
    for (unsigned sequence = 0; sequence < 20; ++sequence)
        for (unsigned segment = 0; segment < kSegmentsPerSequence; ++segment)
            for (unsigned i = 0; i < kSegmentMacroblocks; ++i)
                ASSERT_EQ(frame[kDifSequenceBytes * sequence + VideoBlockOffset(segment, i) + 5] >> 6 & 1, 0);
}

TEST(DvHd, RgbGoesThroughUyvy) {
    for (const std::uint32_t id : {FMT_BGR, FMT_BGRA}) {
        Picture rgb(id, 1440, 1080);
        const std::size_t line = rgb.bytes.size() / 1080;
        for (std::size_t i = 0; i < rgb.bytes.size(); ++i)
            rgb.bytes[i] = static_cast<std::uint8_t>(i % line / 7 + i / line / 3 + i % 3 * 20);
        Picture uyvy(FMT_UYVY, 1440, 1080);
        ASSERT_EQ(ImageConversionDispatch(uyvy.image, rgb.image), IMG_OK);
        const CodedFormat format = Format(CODEC_DVCPRO100, 1440, 1080);
        const Bytes frame = Encoded(CreateDVCPRO100Encoder50Hz(), format, rgb.image);
        EXPECT_TRUE(frame == Encoded(CreateDVCPRO100Encoder50Hz(), format, uyvy.image)) << id;

        const Decoder decoder(CreateDVCPRO100Decoder());
        ASSERT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
        Picture expected(id, 1440, 1080), actual(id, 1440, 1080);
        ASSERT_EQ(Decode(decoder, uyvy.image, frame), IMG_OK);
        ASSERT_EQ(ImageConversionDispatch(expected.image, uyvy.image), IMG_OK);
        ASSERT_EQ(Decode(decoder, actual.image, frame), IMG_OK);
        EXPECT_TRUE(actual.bytes == expected.bytes) << id;
    }
}

// From the first number up while the segment fits, or down until it does. The written numbers run the other way.
TEST(DvHd, SearchByItsOwnNumbers) {
    for (const std::uint32_t lines : {720u, 1080u})
        for (const char* content : {"flat", "gradient", "fields", "soft", "noise", "extremes"})
            for (const unsigned segment : {0u, 13u}) {
                const DvStream& stream = *FindDvStream(CODEC_DVCPRO100, lines, false);
                const bool isExtreme = std::string_view(content) == "extremes";
                Picture source = Picture::Uyvy(stream.codedWidth, lines, isExtreme ? "noise" : content, 31);
                if (isExtreme)
                    for (std::uint8_t& byte : source.bytes) byte = byte < 128 ? 0 : 255;
                CDVImageReader reader;
                ASSERT_EQ(reader.Init(source.image, stream), IMG_OK);
                const auto encoder = std::make_unique<SegmentEncoder>();
                encoder->Configure(stream, false);
                encoder->Analyse(reader, 3, segment, 0);
                const auto fits = [&](unsigned number) { return encoder->CountAll(number) <= 3040; };
                const bool hasAc = encoder->CountAll(15) > 640;
                unsigned expected = 8;
                if (fits(8))
                    while (expected < 15 && fits(expected + 1)) ++expected;
                else
                    while (expected > 0 && !fits(expected)) --expected;
                EXPECT_TRUE(fits(expected)) << "the coarsest steps take even noise";
                encoder->Quantise();
                if (!hasAc) expected = 8;  // Nothing to search: the state stays.
                EXPECT_EQ(encoder->State(), expected) << lines << ", " << content;
                unsigned total = 0;
                for (unsigned m = 0; m < 5; ++m) {
                    const MacroblockRecord& macroblock = encoder->Macroblock(m);
                    total += macroblock.bits;
                    EXPECT_GE(macroblock.number, hasAc ? expected : 15);
                    EXPECT_EQ(WrittenNumber(stream, macroblock.number), 15 - macroblock.number);
                }
                EXPECT_LE(total, 3040u) << lines << ", " << content;
            }
}

TEST(DvHd, NoiseComesBackWithinItsStep) {
    for (const std::uint32_t height : {720u, 1080u}) {
        const std::uint32_t width = height == 720 ? 960 : 1280;
        const CodedFormat format = Format(CODEC_DVCPRO100, width, height);
        const Picture source = Picture::Uyvy(width, height, "noise", 32);
        const Bytes frame = Encoded(CreateDVCPRO100Encoder60Hz(), format, source.image);
        const Decoder decoder(CreateDVCPRO100Decoder());
        ASSERT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
        Picture decoded(FMT_UYVY, width, height);
        ASSERT_EQ(Decode(decoder, decoded.image, frame), IMG_OK);
        // Most of it is lost, the mean of each block is not.
        for (std::uint32_t y = 0; y + 16 <= height; y += 16)
            for (std::uint32_t x = 0; x < width; x += 16) {
                int difference = 0;
                for (std::uint32_t j = 0; j < 16; ++j)
                    for (std::uint32_t i = 0; i < 16; ++i)
                        difference += decoded.Line(y + j)[2 * (x + i) + 1] -
                                      source.image.planes[0][(y + j) * source.image.strides[0] + 2 * (x + i) + 1];
                ASSERT_LE(std::abs(difference), 6 * 256) << x << ", " << y;
            }
    }
}

}  // namespace
}  // namespace KorvaneSoftware
