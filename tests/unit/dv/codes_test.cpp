#include "dv/dv_codes.h"

#include <gtest/gtest.h>

#include <string>

namespace KorvaneSoftware {
namespace {

unsigned Bits(const std::string& word) { return static_cast<unsigned>(std::stoul(word, nullptr, 2)); }

struct Word {
    unsigned run, amplitude;
    const char* bits;
};

// From the code table of IEC 61834-2, without sign bits.
constexpr Word kWords[] = {{0, 1, "00"},
                           {0, 2, "010"},
                           {1, 1, "0111"},
                           {0, 4, "1001"},
                           {2, 1, "10100"},
                           {0, 6, "10111"},
                           {3, 1, "110000"},
                           {0, 8, "110011"},
                           {5, 1, "1101000"},
                           {0, 11, "1101111"},
                           {7, 1, "11100000"},
                           {1, 5, "11100111"},
                           {1, 6, "11101000"},
                           {0, 17, "11101111"},
                           {11, 1, "111100000"},
                           {0, 22, "111101111"},
                           {5, 3, "1111100000"},
                           {1, 11, "1111100110"},
                           {0, 0, "11111001110"},
                           {1, 0, "11111001111"},
                           {6, 3, "11111010000"},
                           {1, 14, "11111010101"},
                           {2, 0, "111110101100"},
                           {5, 0, "111110101111"},
                           {7, 2, "111110110000"},
                           {4, 5, "111110110110"},
                           {2, 11, "111110111100"},
                           {1, 17, "111110111111"},
                           {6, 0, "1111110000110"},
                           {61, 0, "1111110111101"},
                           {0, 23, "111111100010111"},
                           {0, 255, "111111111111111"}};

TEST(DvCodes, WordsOfTheStandard) {
    for (const Word& word : kWords) {
        const DvCodeWord code = DvCode(word.run, word.amplitude);
        EXPECT_EQ(code.length, std::string(word.bits).size()) << word.run << ", " << word.amplitude;
        EXPECT_EQ(code.bits, Bits(word.bits)) << word.run << ", " << word.amplitude;
    }
    EXPECT_EQ(DvCode(1, 18).length, 0);
    EXPECT_EQ(DvCode(15, 1).length, 0);
}

// The largest amplitude that has a word with each run.
constexpr unsigned kLargest[] = {22, 17, 11, 7, 5, 3, 3, 3, 3, 2, 2, 1, 1, 1, 1};

TEST(DvCodes, CostsCountWhatHasNoWordAsTwo) {
    const DvCosts& costs = DvCodeCosts();
    const auto length = [](unsigned run, unsigned amplitude) {
        return DvCode(run, amplitude).length + (amplitude > 0 ? 1u : 0u);
    };
    for (unsigned run = 0; run < 63; ++run)
        for (unsigned amplitude = 1; amplitude <= 255; ++amplitude) {
            const bool hasWord = amplitude <= (run < 15 ? kLargest[run] : 0);
            const unsigned expected = hasWord ? length(run, amplitude) : length(run, 0) + length(0, amplitude);
            ASSERT_EQ(costs[run * 256 + amplitude], expected) << run << ", " << amplitude;
        }
    EXPECT_EQ(costs[0 * 256 + 32], 27) << "(0, 0) of 11 bits counts although it is not written";
}

TEST(DvCodes, WritesARunWithoutWordAsOneZeroLess) {
    const DvCodePairs& pairs = DvWrittenCodes();
    EXPECT_EQ(pairs[0 * 256 + 32].length, 16u);
    EXPECT_EQ(pairs[0 * 256 + 32].bits, Bits("1111111001000000"));
    EXPECT_EQ(pairs[1 * 256 + 18].length, 11u + 10u);
    EXPECT_EQ(pairs[1 * 256 + 18].bits, Bits("111110011101111010110"));
    EXPECT_EQ(pairs[20 * 256 + 1].length, 13u + 3u);
    EXPECT_EQ(pairs[20 * 256 + 1].bits, Bits("1111110010011000"));
    EXPECT_EQ(pairs[3 * 256 + 2].bits, Bits("111001000"));
}

TEST(DvCodes, EveryPatternDecodesAndEachWordToItself) {
    const DvDecodeTable& table = DvDecodeTable::Get();
    double share = 0;
    for (unsigned window = 0; window < 0x10000;) {
        const DvDecodedCode& code = table.At(window);
        ASSERT_GE(code.length, 3) << window;
        ASSERT_LE(code.length, kLongestDvCode) << window;
        const unsigned step = 1u << (16 - code.length);
        ASSERT_EQ(window % step, 0u) << "a code begins at a multiple of its room";
        for (unsigned next = window; next < window + step; ++next) {
            ASSERT_EQ(table.At(next).length, code.length);
            ASSERT_EQ(table.At(next).amplitude, code.amplitude);
        }
        share += 1.0 / (1 << code.length);
        window += step;
    }
    EXPECT_DOUBLE_EQ(share, 1.0);
    for (const Word& word : kWords) {
        for (unsigned sign = 0; sign < (word.amplitude > 0 ? 2u : 1u); ++sign) {
            const std::string bits = word.bits + std::string(word.amplitude > 0 ? (sign != 0 ? "1" : "0") : "");
            const DvDecodedCode& code = table.At(Bits(bits) << (16 - bits.size()));
            EXPECT_EQ(code.length, bits.size());
            EXPECT_EQ(code.advance, word.run + 1);
            EXPECT_EQ(code.amplitude, sign != 0 ? -static_cast<int>(word.amplitude) : static_cast<int>(word.amplitude));
        }
    }
    EXPECT_EQ(table.At(Bits("0110") << 12).length, 4);
    EXPECT_EQ(table.At(Bits("0110") << 12).advance, kDvEndOfBlock);
}

// Two steps at once are the two single ones.
TEST(DvCodes, PairsAreTwoCodes) {
    const DvDecodeTable& table = DvDecodeTable::Get();
    constexpr unsigned kBits = DvDecodeTable::kPairBits;
    unsigned twos = 0;
    for (unsigned window = 0; window < 1u << kBits; ++window) {
        const unsigned bits = window << (16 - kBits);
        const DvDecodedPair& pair = table.PairAt(window);
        const DvDecodedCode& first = table.At(bits);
        const bool isEnd = first.advance == kDvEndOfBlock;
        if (first.length > kBits || (first.amplitude == 0 && !isEnd)) {
            EXPECT_EQ(pair.firstLength, 0) << window;
            continue;
        }
        EXPECT_EQ(pair.firstLength, first.length) << window;
        EXPECT_EQ(pair.firstAdvance, first.advance) << window;
        EXPECT_EQ(pair.firstAmplitude, first.amplitude) << window;
        const DvDecodedCode& second = table.At(bits << first.length & 0xFFFF);
        if (isEnd || first.length + second.length > kBits ||
            (second.amplitude == 0 && second.advance != kDvEndOfBlock)) {
            EXPECT_EQ(pair.length, first.length) << window;
            EXPECT_EQ(pair.secondAdvance, 0) << window;
            EXPECT_EQ(pair.secondAmplitude, first.amplitude) << window;
            continue;
        }
        ++twos;
        EXPECT_EQ(pair.length, first.length + second.length) << window;
        EXPECT_EQ(pair.secondAdvance, second.advance) << window;
        EXPECT_EQ(pair.secondAmplitude, second.amplitude) << window;
    }
    EXPECT_GT(twos, 1u << (kBits - 1)) << "most windows hold two";
}

}  // namespace
}  // namespace KorvaneSoftware
