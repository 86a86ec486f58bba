#include "jpeg/block_coder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jpeg/standard_tables.h"
#include "support/random.h"
#include "unit/jpeg/worked_blocks.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

// Bits as text, and back to stuffed bytes by the rule of the standard.
std::vector<std::uint8_t> Stuffed(std::string bits) {
    while (bits.size() % 8 != 0) bits += '0';
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < bits.size(); i += 8) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(bits.substr(i, 8), nullptr, 2)));
        if (bytes.back() == 0xFF) bytes.push_back(0);
    }
    return bytes;
}

// The scan positions whose levels are other than 0, as the quantiser finds them.
std::uint64_t Present(const std::int16_t* block, unsigned count) {
    std::uint64_t present = 0;
    for (unsigned k = 0; k < count; ++k) present |= std::uint64_t{block[km::kZigZag[k]] != 0} << k;
    return present;
}

std::vector<std::uint8_t> Encoded(const std::int16_t* block, unsigned count, bool chroma, std::int16_t predictor) {
    std::vector<std::uint8_t> bytes(1000);
    km::JpegBitWriter writer(bytes.data(), bytes.data() + bytes.size());
    if (chroma)
        km::EncodeChromaLevels(writer, block, Present(block, count), predictor);
    else
        km::EncodeLumaLevels(writer, block, Present(block, count), predictor);
    EXPECT_EQ(predictor, block[0]);
    writer.Finish();
    bytes.resize(writer.Size());
    return bytes;
}

unsigned Decode(const std::vector<std::uint8_t>& bytes, std::int16_t* block, bool chroma, std::int16_t predictor) {
    for (int i = 0; i < 64; ++i) block[i] = 0;
    km::JpegBitReader reader(bytes.data(), bytes.data() + bytes.size());
    return chroma ? km::DecodeChromaBlock(block, predictor, reader) : km::DecodeLumaBlock(block, predictor, reader);
}

TEST(JpegBlockCoder, WorkedBlocks) {
    for (const WorkedBlock& worked : kWorkedBlocks)
        for (const bool predicted : {false, true}) {
            const auto predictor = static_cast<std::int16_t>(predicted ? 20 : 0);
            const auto expected = Stuffed(predicted ? worked.bitsFrom20 : worked.bits);
            EXPECT_EQ(Encoded(worked.levels, worked.count, worked.chroma, predictor), expected);
            std::int16_t block[64];
            EXPECT_EQ(Decode(expected, block, worked.chroma, predictor), worked.count);
            for (int i = 0; i < 64; ++i) ASSERT_EQ(block[i], worked.levels[i]) << i;
        }
}

struct Levels {
    const char* name;
    std::vector<std::pair<unsigned, int>> at;  // Scan position and level.
    const char* luma;
    const char* chroma;
};
const Levels kLevels[] = {
    {"run of 16", {{17, 1}}, "00111111110010011010", "00111111101001100"},
    {"last position",
     {{0, -5}, {63, 1}},
     "10001011111111001111111110011111111100111111111111010111",
     "110010111111101011111110101111111010111111111000001"},
    {"large values",
     {{0, 1023}, {1, -1023}, {2, 511}, {40, -1}},
     "1111111011111111111111111110000011000000000011111111100000101111111111111111100111111111001111101001010",
     "111111111011111111111111111101000000000000111111011011111111111111110101111111010111011000"},
};

TEST(JpegBlockCoder, WorkedCodes) {
    for (const Levels& levels : kLevels) {
        SCOPED_TRACE(levels.name);
        std::int16_t block[64] = {};
        for (const auto& [position, level] : levels.at) block[km::kZigZag[position]] = static_cast<std::int16_t>(level);
        const unsigned count = levels.at.back().first + 1;
        EXPECT_EQ(Encoded(block, count, false, 0), Stuffed(levels.luma));
        EXPECT_EQ(Encoded(block, count, true, 0), Stuffed(levels.chroma));
    }
}

TEST(JpegBlockCoder, NothingIsTwoBitsAndAnEnd) {
    const std::int16_t block[64] = {};
    EXPECT_EQ(Encoded(block, 0, false, 0), Stuffed("001010"));
    EXPECT_EQ(Encoded(block, 0, true, 0), Stuffed("0000"));
}

// Sizes of DC on both sides of every step, and the one beyond the standard: the luminance code of size 12 is not one
// that the reader knows.
TEST(JpegBlockCoder, DcOfEverySize) {
    for (int size = 0; size <= 12; ++size)
        for (const bool chroma : {false, true})
            for (const int value : {(1 << size) - 1, -(1 << size) + 1, 1 << size >> 1, -(1 << size >> 1)}) {
                if (size == 12 && !chroma) continue;
                std::int16_t block[64] = {static_cast<std::int16_t>(value)};
                std::int16_t decoded[64];
                EXPECT_EQ(Decode(Encoded(block, 1, chroma, 0), decoded, chroma, 0), 1u);
                ASSERT_EQ(decoded[0], value);
            }
    const std::int16_t large[64] = {2048};
    EXPECT_EQ(Encoded(large, 1, false, 0), Stuffed("1111111110"
                                                   "100000000000"
                                                   "1010"));
    EXPECT_EQ(Encoded(large, 1, true, 0), Stuffed("111111111110"
                                                  "100000000000"
                                                  "00"));
}

TEST(JpegBlockCoder, RandomBlocksComeBack) {
    ByteGenerator generator(3);
    std::vector<std::uint8_t> bytes(200000), words(200000);
    km::JpegBitWriter writer(bytes.data(), bytes.data() + bytes.size());
    km::WordBitWriter wordWriter(words.data(), words.data() + words.size());
    struct Coded {
        std::int16_t values[64];
        unsigned count;
    };
    std::vector<Coded> blocks(800);
    std::int16_t predictor = 0, wordPredictor = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        Coded& block = blocks[i];
        block = {};
        const unsigned density = 1 + generator.Below(40);
        block.values[0] = static_cast<std::int16_t>(static_cast<int>(generator.Below(2047)) - 1023);
        block.count = 1;
        for (unsigned k = 1; k < 64; ++k)
            if (generator.Below(density) == 0) {
                const int size = 1 + static_cast<int>(generator.Below(10));
                const int level = static_cast<int>(generator.Below(1u << size)) - (1 << size >> 1);
                block.values[km::kZigZag[k]] = static_cast<std::int16_t>(level);
                if (level != 0) block.count = k + 1;
            }
        if (i % 3 == 0) {
            km::EncodeChromaLevels(writer, block.values, Present(block.values, block.count), predictor);
            km::EncodeChromaLevels(wordWriter, block.values, Present(block.values, block.count), wordPredictor);
        } else {
            km::EncodeLumaLevels(writer, block.values, Present(block.values, block.count), predictor);
            km::EncodeLumaLevels(wordWriter, block.values, Present(block.values, block.count), wordPredictor);
        }
    }
    writer.Finish();
    wordWriter.Finish();
    ASSERT_TRUE(writer.Fits() && wordWriter.Fits());
    for (std::size_t i = 0; i + 1 < writer.Size(); ++i)
        if (bytes[i] == 0xFF) {
            ASSERT_EQ(bytes[i + 1], 0);
        }

    km::JpegBitReader reader(bytes.data(), bytes.data() + writer.Size());
    km::WordBitReader wordReader(words.data(), words.data() + wordWriter.Size());
    predictor = wordPredictor = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        std::int16_t fromBytes[64] = {}, fromWords[64] = {};
        unsigned count, wordCount;
        if (i % 3 == 0) {
            count = km::DecodeChromaBlock(fromBytes, predictor, reader);
            wordCount = km::DecodeChromaBlock(fromWords, wordPredictor, wordReader);
        } else {
            count = km::DecodeLumaBlock(fromBytes, predictor, reader);
            wordCount = km::DecodeLumaBlock(fromWords, wordPredictor, wordReader);
        }
        ASSERT_EQ(count, blocks[i].count);
        ASSERT_EQ(wordCount, blocks[i].count);
        for (int k = 0; k < 64; ++k) {
            ASSERT_EQ(fromBytes[k], blocks[i].values[k]) << "block " << i;
            ASSERT_EQ(fromWords[k], blocks[i].values[k]) << "block " << i;
        }
    }
}

// Sixteen ones are no code: they cost nothing, and the block is over after the last position.
TEST(JpegBlockCoder, BadCodeEndsTheBlock) {
    const auto bytes = Stuffed(
        "00"
        "1111111111111111"
        "1111111111111111");
    std::int16_t block[64] = {}, predictor = 7;
    km::JpegBitReader reader(bytes.data(), bytes.data() + bytes.size());
    EXPECT_EQ(km::DecodeLumaBlock(block, predictor, reader), 64u);
    EXPECT_EQ(block[0], 7);
    for (int i = 1; i < 64; ++i) ASSERT_EQ(block[i], 0);
    EXPECT_EQ(reader.Peek(16), 0xFFFFu);
}

// A run that leads past the block ends it; the bits of its value are gone.
TEST(JpegBlockCoder, RunPastTheEnd) {
    std::string bits = "00";
    for (int i = 0; i < 3; ++i) bits += "11111111001";  // Sixteen zeros: position 48.
    bits +=
        "1111111111110101"
        "1";  // Run 15 and size 1.
    bits += "110";
    const auto bytes = Stuffed(bits);
    std::int16_t block[64] = {}, predictor = 0;
    km::JpegBitReader reader(bytes.data(), bytes.data() + bytes.size());
    EXPECT_EQ(km::DecodeLumaBlock(block, predictor, reader), 49u);
    EXPECT_EQ(reader.Peek(3), 6u);
}

TEST(JpegBits, ReaderStopsAtItsEnd) {
    const std::uint8_t bytes[] = {0xA5, 0xFF};
    km::JpegBitReader reader(bytes, bytes + 2, 4);
    EXPECT_EQ(reader.Peek(12), 0x5FFu);
    for (int i = 0; i < 10; ++i) {
        reader.Fill();
        reader.Skip(40);
    }
    reader.Fill();
    EXPECT_EQ(reader.Peek(32), 0u);
    EXPECT_LT(reader.BitsLeft(), 0);
    km::JpegBitReader nothing(bytes, bytes);
    EXPECT_EQ(nothing.Peek(32), 0u);
}

TEST(JpegBits, WriterStopsAtItsEndAndGoesOnCounting) {
    for (std::size_t room = 0; room < 40; ++room) {
        std::vector<std::uint8_t> bytes(room + 16, 0xEE);
        km::JpegBitWriter writer(bytes.data(), bytes.data() + room);
        for (int i = 0; i < 9; ++i) writer.Put(0xFF12FF, 24);
        writer.Finish();
        EXPECT_EQ(writer.Size(), 45u);
        EXPECT_FALSE(writer.Fits());
        for (std::size_t i = 0; i < room; ++i) ASSERT_EQ(bytes[i], "\xFF\x00\x12\xFF\x00"[i % 5] & 0xFF);
        for (std::size_t i = room; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 0xEE);
    }
}

TEST(JpegBits, WordsHaveTheLowByteFirst) {
    std::uint8_t bytes[16] = {};
    km::WordBitWriter writer(bytes, bytes + 16);
    for (const unsigned word : {0x1234u, 0xFFFFu, 0x5678u, 0x9ABCu, 0xDEFu}) writer.Put(word, 16);
    writer.Put(1, 1);
    writer.Finish();
    const std::uint8_t expected[12] = {0x34, 0x12, 0xFF, 0xFF, 0x78, 0x56, 0xBC, 0x9A, 0xEF, 0x0D, 0x00, 0x80};
    ASSERT_EQ(writer.Size(), 12u);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(bytes[i], expected[i]) << i;
}

}  // namespace
}  // namespace pixmorph_test
