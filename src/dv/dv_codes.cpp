#include "dv/dv_codes.h"

namespace KorvaneSoftware {

namespace {

struct RunAmplitude {
    std::uint8_t run;
    std::uint8_t amplitude;
};

// The regular words of IEC 61834-2 in ascending order. With the number of words of each length they fix the code: each
// word is the one before it plus 1, extended by zeros.
constexpr RunAmplitude kWords[] = {
    {0, 1},  {0, 2},                                                                           // 2, 3 bits
    {1, 1},  {0, 3},  {0, 4},                                                                  // 4, after end of block
    {2, 1},  {1, 2},  {0, 5},  {0, 6},                                                         // 5
    {3, 1},  {4, 1},  {0, 7},  {0, 8},                                                         // 6
    {5, 1},  {6, 1},  {2, 2},  {1, 3},  {1, 4},  {0, 9},  {0, 10}, {0, 11},                    // 7
    {7, 1},  {8, 1},  {9, 1},  {10, 1}, {3, 2},  {4, 2},  {2, 3},  {1, 5},                     // 8
    {1, 6},  {1, 7},  {0, 12}, {0, 13}, {0, 14}, {0, 15}, {0, 16}, {0, 17},                    //
    {11, 1}, {12, 1}, {13, 1}, {14, 1}, {5, 2},  {6, 2},  {3, 3},  {4, 3},                     // 9
    {2, 4},  {2, 5},  {1, 8},  {0, 18}, {0, 19}, {0, 20}, {0, 21}, {0, 22},                    //
    {5, 3},  {3, 4},  {3, 5},  {2, 6},  {1, 9},  {1, 10}, {1, 11},                             // 10
    {0, 0},  {1, 0},  {6, 3},  {4, 4},  {3, 6},  {1, 12}, {1, 13}, {1, 14},                    // 11
    {2, 0},  {3, 0},  {4, 0},  {5, 0},  {7, 2},  {8, 2},  {9, 2},  {10, 2}, {7, 3},  {8, 3},   // 12
    {4, 5},  {3, 7},  {2, 7},  {2, 8},  {2, 9},  {2, 10}, {2, 11}, {1, 15}, {1, 16}, {1, 17},  //
};
constexpr std::uint8_t kWordsOfLength[] = {0, 0, 1, 1, 3, 4, 4, 8, 16, 16, 7, 8, 20};
constexpr unsigned kLongestWord = 12;

// Escapes: 1111110 and a run of 6 bits, 1111111 and an amplitude of 8 bits.
constexpr unsigned kRunEscape = 0b1111110u << 6;
constexpr unsigned kRunEscapeBits = 13;
constexpr unsigned kAmplitudeEscape = 0b1111111u << 8;
constexpr unsigned kAmplitudeEscapeBits = 15;

constexpr unsigned kRuns = 15;
constexpr unsigned kAmplitudes = 23;
using WordTable = std::array<std::array<DvCodeWord, kAmplitudes>, kRuns>;

constexpr WordTable MakeWords() {
    WordTable words{};
    unsigned code = 0;
    std::size_t next = 0;
    for (unsigned length = 2; length <= kLongestWord; ++length, code <<= 1) {
        if (length == kEndOfBlockBits) ++code;
        for (unsigned i = 0; i < kWordsOfLength[length]; ++i, ++code, ++next)
            words[kWords[next].run][kWords[next].amplitude] = {static_cast<std::uint16_t>(code),
                                                               static_cast<std::uint8_t>(length)};
    }
    return words;
}
constexpr WordTable kWordTable = MakeWords();
static_assert(kWordTable[1][17].bits == 0b111110111111, "the last word, just below the escapes");

unsigned CostOf(unsigned run, unsigned amplitude) { return DvCode(run, amplitude).length + (amplitude != 0 ? 1u : 0u); }

}  // namespace

DvCodeWord DvCode(unsigned run, unsigned amplitude) {
    if (run < kRuns && amplitude < kAmplitudes && kWordTable[run][amplitude].length != 0)
        return kWordTable[run][amplitude];
    if (amplitude == 0)
        return {static_cast<std::uint16_t>(kRunEscape | run), static_cast<std::uint8_t>(kRunEscapeBits)};
    if (run == 0)
        return {static_cast<std::uint16_t>(kAmplitudeEscape | amplitude),
                static_cast<std::uint8_t>(kAmplitudeEscapeBits)};
    return {0, 0};
}

const DvCosts& DvCodeCosts() {
    static const DvCosts kCosts = [] {
        DvCosts costs{};
        for (unsigned run = 0; run < 64; ++run)
            for (unsigned amplitude = 0; amplitude <= kLargestAmplitude; ++amplitude) {
                // Beyond the table the count is of (run, 0) and (0, amplitude), with the zero that this spares at run 0
                // left in it.
                const bool isRegular = run < kRuns && amplitude < kAmplitudes && kWordTable[run][amplitude].length != 0;
                const unsigned bits = isRegular ? CostOf(run, amplitude) : CostOf(run, 0) + CostOf(0, amplitude);
                costs[run * 256 + amplitude] = static_cast<std::uint8_t>(bits);
            }
        return costs;
    }();
    return kCosts;
}

const DvCodePairs& DvWrittenCodes() {
    static const DvCodePairs kPairs = [] {
        DvCodePairs pairs{};
        for (unsigned run = 0; run < 64; ++run)
            for (unsigned amplitude = 1; amplitude <= kLargestAmplitude; ++amplitude) {
                DvCodePair& pair = pairs[run * 256 + amplitude];
                DvCodeWord word = DvCode(run, amplitude);
                if (word.length == 0) {
                    const DvCodeWord zeros = DvCode(run - 1, 0);
                    word = DvCode(0, amplitude);
                    pair = {zeros.bits, zeros.length};
                }
                pair.bits = (pair.bits << word.length | word.bits) << 1;
                pair.length += word.length + 1u;
            }
        return pairs;
    }();
    return kPairs;
}

DvDecodeTable::DvDecodeTable() {
    const auto put = [this](unsigned bits, unsigned length, std::uint8_t advance, int amplitude) {
        const DvDecodedCode code{static_cast<std::uint8_t>(length), advance, static_cast<std::int16_t>(amplitude)};
        const unsigned first = bits << (16 - length);
        const unsigned end = first + (1u << (16 - length));
        for (unsigned window = first; window < end; ++window) {
            if (window >= kFirstLong)
                long_[window - kFirstLong] = code;
            else
                short_[window >> (16 - kShortBits)] = code;
        }
    };
    const auto putWord = [&put](DvCodeWord word, unsigned run, unsigned amplitude) {
        const auto advance = static_cast<std::uint8_t>(run + 1);
        if (amplitude == 0) {
            put(word.bits, word.length, advance, 0);
            return;
        }
        put(word.bits * 2u, word.length + 1u, advance, static_cast<int>(amplitude));
        put(word.bits * 2u + 1, word.length + 1u, advance, -static_cast<int>(amplitude));
    };
    put(kEndOfBlock, kEndOfBlockBits, kDvEndOfBlock, 0);
    for (const RunAmplitude& pair : kWords) putWord(kWordTable[pair.run][pair.amplitude], pair.run, pair.amplitude);
    // Escapes of what has a shorter word mean the same.
    for (unsigned run = 0; run < 64; ++run)
        put(kRunEscape | run, kRunEscapeBits, static_cast<std::uint8_t>(run + 1), 0);
    for (unsigned amplitude = 0; amplitude <= kLargestAmplitude; ++amplitude) {
        const unsigned bits = kAmplitudeEscape | amplitude;
        put(bits * 2, kAmplitudeEscapeBits + 1, 1, static_cast<int>(amplitude));
        put(bits * 2 + 1, kAmplitudeEscapeBits + 1, 1, -static_cast<int>(amplitude));
    }
    for (unsigned window = 0; window < pairs_.size(); ++window) {
        const unsigned bits = window << (16 - kPairBits);
        const DvDecodedCode& first = At(bits);
        const auto isWhole = [](const DvDecodedCode& code, unsigned left) {
            return code.length <= left && (code.amplitude != 0 || code.advance == kDvEndOfBlock);
        };
        DvDecodedPair& pair = pairs_[window];
        if (!isWhole(first, kPairBits)) continue;
        pair = {first.length, first.advance, first.amplitude, first.length, 0, first.amplitude};
        const DvDecodedCode& second = At(bits << first.length & 0xFFFF);
        if (first.advance == kDvEndOfBlock || !isWhole(second, kPairBits - first.length)) continue;
        pair.length = static_cast<std::uint8_t>(first.length + second.length);
        pair.secondAdvance = second.advance;
        pair.secondAmplitude = second.amplitude;
    }
}

const DvDecodeTable& DvDecodeTable::Get() {
    static const DvDecodeTable kTable;
    return kTable;
}

}  // namespace KorvaneSoftware
