// The variable-length code of IEC 61834-2: a run of zeros and the amplitude behind it, then a sign bit.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

/// Bits of the head of a block (DC value, mode, class) and of its end-of-block code.
constexpr unsigned kBlockHeadBits = 12;
constexpr unsigned kEndOfBlock = 0b0110;
constexpr unsigned kEndOfBlockBits = 4;
/// What a block costs that has no AC value.
constexpr unsigned kLeastBlockBits = kBlockHeadBits + kEndOfBlockBits;
/// Amplitudes are coded up to this.
constexpr unsigned kLargestAmplitude = 255;
constexpr unsigned kLongestDvCode = 16;

/// A code word, without its sign bit.
struct DvCodeWord {
    std::uint16_t bits;
    std::uint8_t length;
};

/// The word for `run` zeros followed by `amplitude`, 0 for none. Length 0 when there is no such word: then the run is
/// coded as (run - 1, 0), which stands for `run` zeros, and the amplitude as (0, amplitude).
DvCodeWord DvCode(unsigned run, unsigned amplitude);

/// Bits of (run, amplitude) by `run * 256 + amplitude`, sign bit included, for the search of quantisers. A pair without
/// a word of its own counts as (run, 0) and (0, amplitude).
using DvCosts = std::array<std::uint8_t, 64 * 256>;
const DvCosts& DvCodeCosts();

/// What to write for (run, amplitude): up to two words and room for the sign in the last bit.
struct DvCodePair {
    std::uint32_t bits;
    std::uint32_t length;
};
using DvCodePairs = std::array<DvCodePair, 64 * 256>;
const DvCodePairs& DvWrittenCodes();

/// One step of decoding.
struct DvDecodedCode {
    std::uint8_t length;     ///< Sign bit included.
    std::uint8_t advance;    ///< Coded positions to go on by; kDvEndOfBlock at the end of the block.
    std::int16_t amplitude;  ///< With its sign; 0 stores nothing.
};
constexpr std::uint8_t kDvEndOfBlock = 128;

/// Two steps at once, each with an amplitude or the end of the block. Where the window holds one alone, the second step
/// stores the first one's amplitude again.
struct DvDecodedPair {
    std::uint8_t firstLength;  ///< 0 where the first code goes beyond the window or is a run alone.
    std::uint8_t firstAdvance;
    std::int16_t firstAmplitude;
    std::uint8_t length;  ///< Of both; nothing follows the end of the block.
    std::uint8_t secondAdvance;
    std::int16_t secondAmplitude;
};

/// Most codes are short, and one look-up decodes two of them. Two look-ups decode any 16 bits: the code is complete,
/// every pattern is one. The first takes the top bits; patterns of longer codes go on to the second, whose part of the
/// table begins where the first step says.
class DvDecodeTable {
public:
    static const DvDecodeTable& Get();

    /// @param window  the next 16 bits
    const DvDecodedCode& At(unsigned window) const {
        return window < kFirstLong ? short_[window >> (16 - kShortBits)] : long_[window - kFirstLong];
    }

    static constexpr unsigned kPairBits = 11;
    /// @param window  the next kPairBits bits
    const DvDecodedPair& PairAt(unsigned window) const { return pairs_[window]; }

private:
    DvDecodeTable();

    static constexpr unsigned kShortBits = 10;
    // Every code longer than 10 bits with its sign begins with 11111.
    static constexpr unsigned kFirstLong = 0xF800;

    std::array<DvDecodedCode, (kFirstLong >> (16 - kShortBits))> short_;
    std::array<DvDecodedCode, 0x10000 - kFirstLong> long_;
    std::array<DvDecodedPair, 1u << kPairBits> pairs_{};
};

}  // namespace KorvaneSoftware
