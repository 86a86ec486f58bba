// Look-up tables of the variable-length codes, built at compile time from the standard's words (stream_tables.h).
#pragma once

#include "iframe/stream_tables.h"

namespace KorvaneSoftware::iframe {

/// A word and its length in bits, as they are written.
struct Code {
    std::uint32_t bits;
    std::uint32_t length;
};

/// Takes the marking one off a word of the tables.
constexpr Code CodeOfWord(std::uint32_t word) {
    std::uint32_t length = 0;
    while (word >> (length + 1) != 0) ++length;
    return {word - (1u << length), length};
}

constexpr Code kEndOfBlock = CodeOfWord(kTableB15.endOfBlock);
constexpr Code kCoefficientEscape = CodeOfWord(kCoefficientEscapeWord);

/// Levels of table B.15 by run; a length of 0 means that the escape serves. The last bit is the sign, 0 here.
constexpr std::uint32_t kCodedRuns = 32;
constexpr std::uint32_t kCodedLevels = 41;
struct CoefficientEncoder {
    Code codes[kCodedRuns][kCodedLevels];
};
constexpr CoefficientEncoder MakeCoefficientEncoder(const CoefficientWords& table) {
    CoefficientEncoder encoder = {};
    const std::uint32_t* word = table.words;
    for (std::uint32_t run = 0; run < kCodedRuns; ++run) {
        for (std::uint32_t level = 1; level <= kLevelsOfRun[run]; ++level) {
            const Code code = CodeOfWord(*word++);
            encoder.codes[run][level] = {code.bits << 1, code.length + 1};
        }
    }
    return encoder;
}
inline constexpr CoefficientEncoder kCoefficientEncoder = MakeCoefficientEncoder(kTableB15);

/// The words of DC sizes by size.
struct SizeEncoder {
    Code codes[12];
};
constexpr SizeEncoder MakeSizeEncoder(const std::uint16_t (&words)[12]) {
    SizeEncoder encoder = {};
    for (int size = 0; size < 12; ++size) encoder.codes[size] = CodeOfWord(words[size]);
    return encoder;
}
inline constexpr SizeEncoder kLumaSizeEncoder = MakeSizeEncoder(kLumaDcSizeWords);
inline constexpr SizeEncoder kChromaSizeEncoder = MakeSizeEncoder(kChromaDcSizeWords);

/// DC sizes by the next 10 bits. Both tables are complete: every pattern is a word.
constexpr std::uint32_t kSizePeekBits = 10;
struct SizeDecoder {
    struct Entry {
        std::uint8_t size;
        std::uint8_t length;
    };
    Entry entries[1 << kSizePeekBits];
};
constexpr SizeDecoder MakeSizeDecoder(const std::uint16_t (&words)[12]) {
    SizeDecoder decoder = {};
    for (std::uint8_t size = 0; size < 12; ++size) {
        const Code code = CodeOfWord(words[size]);
        const std::uint32_t tail = kSizePeekBits - code.length;
        for (std::uint32_t i = 0; i < 1u << tail; ++i)
            decoder.entries[(code.bits << tail) + i] = {size, static_cast<std::uint8_t>(code.length)};
    }
    return decoder;
}
inline constexpr SizeDecoder kLumaSizeDecoder = MakeSizeDecoder(kLumaDcSizeWords);
inline constexpr SizeDecoder kChromaSizeDecoder = MakeSizeDecoder(kChromaDcSizeWords);

/// What the next bits of a block mean.
struct CoefficientEntry {
    std::int8_t level;     ///< Signed; 0 when the entry is no level: `advance` then tells what it is.
    std::uint8_t advance;  ///< Places in the scan: run plus 1.
    std::uint8_t length;   ///< Bits of the word, its sign among them.
};
constexpr std::uint8_t kAdvanceInvalid = 0;
constexpr std::uint8_t kAdvanceEscape = 1;
constexpr std::uint8_t kAdvanceEndOfBlock = 2;

/// Words of up to 11 bits with their sign are found by the next 11 bits. All longer ones begin with seven zeros: the
/// next 17 bits, below 1024, find them in the second table.
constexpr std::uint32_t kShortPeekBits = 11;
constexpr std::uint32_t kLongPeekBits = 17;
constexpr std::uint32_t kLongEntries = 1024;
struct CoefficientDecoder {
    CoefficientEntry shortWords[1 << kShortPeekBits];
    CoefficientEntry longWords[kLongEntries];
};
constexpr void EnterWord(CoefficientDecoder& decoder, Code code, CoefficientEntry entry) {
    entry.length = static_cast<std::uint8_t>(code.length);
    const bool isShort = code.length <= kShortPeekBits;
    const std::uint32_t tail = (isShort ? kShortPeekBits : kLongPeekBits) - code.length;
    CoefficientEntry* entries = isShort ? decoder.shortWords : decoder.longWords;
    for (std::uint32_t i = 0; i < 1u << tail; ++i) entries[(code.bits << tail) + i] = entry;
}
constexpr CoefficientDecoder MakeCoefficientDecoder(const CoefficientWords& table) {
    CoefficientDecoder decoder = {};
    const std::uint32_t* word = table.words;
    for (std::uint32_t run = 0; run < kCodedRuns; ++run) {
        for (int level = 1; level <= kLevelsOfRun[run]; ++level) {
            const Code code = CodeOfWord(*word++);
            for (std::uint32_t sign = 0; sign < 2; ++sign)
                EnterWord(
                    decoder, {code.bits << 1 | sign, code.length + 1},
                    {static_cast<std::int8_t>(sign != 0 ? -level : level), static_cast<std::uint8_t>(run + 1), 0});
        }
    }
    EnterWord(decoder, CodeOfWord(table.endOfBlock), {0, kAdvanceEndOfBlock, 0});
    EnterWord(decoder, kCoefficientEscape, {0, kAdvanceEscape, 0});
    return decoder;
}
/// By intra_vlc_format.
inline constexpr CoefficientDecoder kCoefficientDecoders[2] = {MakeCoefficientDecoder(kTableB14),
                                                               MakeCoefficientDecoder(kTableB15)};

}  // namespace KorvaneSoftware::iframe
