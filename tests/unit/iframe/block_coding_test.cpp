// Blocks to bits and back: worked blocks bit by bit, all levels and runs both ways, and what damage does.
#include "iframe/block_coding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <iterator>
#include <string>
#include <vector>

#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace mpeg = KorvaneSoftware::iframe;
using Block = std::int16_t[64];

std::uint64_t MapOf(const Block& levels) {
    std::uint64_t map = 0;
    for (int place = 0; place < 64; ++place) map |= std::uint64_t{levels[mpeg::kZigzagScan[place]] != 0} << place;
    return map;
}

// The bits of a block, and those of a marking one behind them so that the end shows.
std::string BitsOf(const Block& levels, int predictor, const mpeg::SizeEncoder& sizes) {
    std::uint8_t bytes[256] = {};
    mpeg::BitWriter writer;
    writer.next = bytes;
    std::int32_t dc = predictor;
    mpeg::EncodeBlock(writer, levels, MapOf(levels), sizes, dc);
    EXPECT_EQ(dc, levels[0]);
    writer.Put(1, 1);
    writer.Flush();
    EXPECT_LE(writer.next - bytes, static_cast<std::ptrdiff_t>(mpeg::kMaxBlockBytes));
    std::string bits;
    for (const std::uint8_t* byte = bytes; byte != writer.next; ++byte)
        for (int bit = 7; bit >= 0; --bit) bits += (*byte >> bit & 1) != 0 ? '1' : '0';
    return bits.substr(0, bits.rfind('1'));
}

// The bits of one AC level behind a DC difference of 0 ("100"), without the end of block ("0110").
std::string AcBits(int run, int level) {
    Block levels = {};
    levels[mpeg::kZigzagScan[run + 1]] = static_cast<std::int16_t>(level);
    const std::string bits = BitsOf(levels, 0, mpeg::kLumaSizeEncoder);
    EXPECT_EQ(bits.substr(0, 3), "100");
    EXPECT_EQ(bits.substr(bits.size() - 4), "0110");
    return bits.substr(3, bits.size() - 7);
}

TEST(IFrameBlocks, SingleLevels) {
    EXPECT_EQ(AcBits(0, 1), "100");
    EXPECT_EQ(AcBits(0, -2), "1101");
    EXPECT_EQ(AcBits(5, 3), "00000000100100");
    EXPECT_EQ(AcBits(31, 1), "00000000000110110");
    EXPECT_EQ(AcBits(0, 40), "0000000000100000");
    EXPECT_EQ(AcBits(0, 41), "000001000000000000101001");
    EXPECT_EQ(AcBits(40, -1), "000001101000111111111111");
    EXPECT_EQ(AcBits(3, -2047), "000001000011100000000001");
}

TEST(IFrameBlocks, WorkedLumaBlock) {
    const Block levels = {1076, 27, 0, 2, 0, 0, 0, 0, 18, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(BitsOf(levels, 1024, mpeg::kLumaSizeEncoder),
              "111101101000000000001010000000000001110100010011000010100110");
}

TEST(IFrameBlocks, WorkedChromaBlock) {
    const Block levels = {596, -14, 2, -1, 0, 0, 0, 0, -22, 6, 2, 1, 0, 0, 0, 0, 3,
                          3,   1,   0, 0,  0, 0, 0, 0, 2,   0, 0, 0, 0, 0, 0, 1, 1};
    EXPECT_EQ(BitsOf(levels, 629, mpeg::kChromaSizeEncoder),
              "11111001111011111110100000000011001101110000101011001011100011100100110010010000011100110");
}

// The end of block follows a level at the last place too.
TEST(IFrameBlocks, FullBlock) {
    Block levels;
    std::fill(std::begin(levels), std::end(levels), std::int16_t{1});
    std::string expected = "001";
    for (int i = 1; i < 64; ++i) expected += "100";
    EXPECT_EQ(BitsOf(levels, 0, mpeg::kLumaSizeEncoder), expected + "0110");
}

mpeg::BlockSyntax SyntaxOf(const std::uint8_t* scan, int vlcFormat, int dcFactor, int weight) {
    mpeg::BlockSyntax syntax;
    syntax.coefficients = &mpeg::kCoefficientDecoders[vlcFormat];
    syntax.scan = scan;
    syntax.dcFactor = dcFactor;
    std::fill(std::begin(syntax.weights), std::end(syntax.weights), weight);
    return syntax;
}

std::vector<std::uint8_t> BytesOf(const std::string& bits) {
    std::vector<std::uint8_t> bytes((bits.size() + 7) / 8);
    for (std::size_t i = 0; i < bits.size(); ++i)
        if (bits[i] == '1') bytes[i / 8] = static_cast<std::uint8_t>(bytes[i / 8] | 0x80 >> i % 8);
    return bytes;
}

bool Decode(const std::string& bits, const mpeg::BlockSyntax& syntax, Block& coefficients, std::int32_t predictor = 0) {
    const std::vector<std::uint8_t> bytes = BytesOf(bits);
    mpeg::BitReader reader(bytes.data(), bytes.size());
    std::fill(std::begin(coefficients), std::end(coefficients), std::int16_t{0});
    return mpeg::DecodeBlock(reader, syntax, mpeg::kLumaSizeDecoder, predictor, coefficients) && !reader.IsPastEnd();
}

// Random blocks with every size of level and run, through table B.15 and back. A weight of 16 leaves levels as they
// are.
TEST(IFrameBlocks, RoundTrip) {
    ByteGenerator generator(9);
    const mpeg::BlockSyntax syntax = SyntaxOf(mpeg::kZigzagScan, 1, 1, 16);
    for (int round = 0; round < 20000; ++round) {
        Block levels = {};
        levels[0] = static_cast<std::int16_t>(generator.Below(2041));
        const std::uint32_t step = 1 + generator.Below(40), largest = 1u << generator.Below(12);
        for (std::uint32_t place = 1 + generator.Below(step); place < 64; place += 1 + generator.Below(step)) {
            const auto level = static_cast<std::int16_t>(std::min(1 + generator.Below(largest), 2047u));
            levels[mpeg::kZigzagScan[place]] = static_cast<std::int16_t>(generator.Next() % 2 != 0 ? -level : level);
        }
        const auto predictor = static_cast<std::int32_t>(generator.Below(2041));
        Block decoded;
        ASSERT_TRUE(Decode(BitsOf(levels, predictor, mpeg::kLumaSizeEncoder), syntax, decoded, predictor)) << round;
        int sum = 0;
        for (const std::int16_t level : levels) sum += level;
        if (sum % 2 == 0) levels[63] = static_cast<std::int16_t>(levels[63] % 2 != 0 ? levels[63] - 1 : levels[63] + 1);
        ASSERT_TRUE(std::equal(std::begin(levels), std::end(levels), decoded)) << round;
    }
}

// Levels by the words of table B.14: 11s, 0100s, 011s, escape; end of block 10.
TEST(IFrameBlocks, DecodesTableB14) {
    Block coefficients;
    ASSERT_TRUE(
        Decode("100"
               "110"
               "01001"
               "0111"
               "000001"
               "000010"
               "000000110010"
               "10",
               SyntaxOf(mpeg::kZigzagScan, 0, 8, 16), coefficients, 100));
    EXPECT_EQ(coefficients[0], 800);
    EXPECT_EQ(coefficients[1], 1);
    EXPECT_EQ(coefficients[8], -2);
    EXPECT_EQ(coefficients[9], -1);
    EXPECT_EQ(coefficients[10], 50);
    EXPECT_EQ(coefficients[63], 1);  // The sum was even.
}

// Scaling truncates towards zero, saturates at 12 bits, and follows the scan.
TEST(IFrameBlocks, Scales) {
    Block coefficients;
    // Levels 3, -3, 2000 and -2000 at places 1 to 4 of the alternate scan.
    ASSERT_TRUE(
        Decode("100"
               "01110"
               "01111"
               "000001"
               "000000"
               "011111010000"
               "000001"
               "000000"
               "100000110000"
               "0110",
               SyntaxOf(mpeg::kAlternateScan, 1, 2, 21), coefficients, 511));
    EXPECT_EQ(coefficients[0], 1022);
    EXPECT_EQ(coefficients[8], 3);  // 63 / 16
    EXPECT_EQ(coefficients[16], -3);
    EXPECT_EQ(coefficients[24], 2047);
    EXPECT_EQ(coefficients[1], -2048);
}

TEST(IFrameBlocks, RefusesWhatIsNoCode) {
    const mpeg::BlockSyntax b15 = SyntaxOf(mpeg::kZigzagScan, 1, 8, 16), b14 = SyntaxOf(mpeg::kZigzagScan, 0, 8, 16);
    Block coefficients;
    EXPECT_FALSE(
        Decode("100"
               "0000000000000000",
               b15, coefficients));  // No word.
    EXPECT_FALSE(
        Decode("100"
               "0000000000000000",
               b14, coefficients));
    EXPECT_FALSE(
        Decode("100"
               "000001"
               "000000"
               "000000000000"
               "0110",
               b15, coefficients));  // Level 0.
    EXPECT_FALSE(
        Decode("100"
               "000001"
               "000000"
               "100000000000"
               "0110",
               b15, coefficients));  // Level -2048.
    EXPECT_FALSE(
        Decode("100"
               "000001"
               "111111"
               "000000000001"
               "0110",
               b15, coefficients));  // Place 64.
    EXPECT_TRUE(
        Decode("100"
               "000001"
               "111110"
               "000000000001"
               "0110",
               b15, coefficients));  // Place 63.
    EXPECT_FALSE(
        Decode("100"
               "100"
               "100",
               b15, coefficients));  // Cut.
    EXPECT_FALSE(Decode("", b15, coefficients));
}

// Any bytes at all, in a block of memory of their size.
TEST(IFrameBlocks, ReadsNothingBehindTheEnd) {
    ByteGenerator generator(10);
    for (int round = 0; round < 20000; ++round) {
        std::vector<std::uint8_t> bytes(generator.Below(40));
        generator.Fill(bytes);
        bytes.shrink_to_fit();
        mpeg::BitReader reader(bytes.data(), bytes.size());
        const mpeg::BlockSyntax syntax = SyntaxOf(mpeg::kZigzagScan, round % 2, 8, 16);
        std::int32_t predictor = 0;
        for (int block = 0; block < 100; ++block) {
            Block coefficients = {};
            if (!mpeg::DecodeBlock(reader, syntax, mpeg::kChromaSizeDecoder, predictor, coefficients)) break;
            ASSERT_LT(block, 99) << "zeros decode";
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
