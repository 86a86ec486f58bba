// The elements of CAVLC slices, ITU-T H.264 clauses 9.1 and 9.2. Every reader throws on syntax that cannot be before it
// looks anything up or stores anything outside a block.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "h264/parsing/bit_reader.h"
#include "h264/parsing/cavlc_tables.h"
#include "h264/parsing/syntax_error.h"

namespace KorvaneSoftware {

/// What kind of block, which selects the tables.
enum class H264CavlcBlock {
    FULL,   ///< 16 coefficients: 4x4 blocks, DC of Intra_16x16, a quarter of an 8x8 block.
    AC,     ///< 15: AC of Intra_16x16 and of chroma.
    DC420,  ///< 4: DC of Cb or Cr.
    DC422,  ///< 8
};

/// nC from the numbers of coefficients of the blocks to the left and above, each counted only where it is there.
inline unsigned PredictCoefficientCount(bool hasLeft, unsigned left, bool hasTop, unsigned top) {
    if (hasLeft && hasTop) return (left + top + 1) >> 1;
    return (hasLeft ? left : 0) + (hasTop ? top : 0);
}

/// ue(v) with its highest value.
inline std::uint32_t ReadBoundedUe(H264BitReader& reader, std::uint32_t most, const char* element) {
    const std::uint32_t value = reader.ReadUe();
    if (value > most) ThrowImpossibleSyntax(element);
    return value;
}

/// se(v) from `least` to `most`.
inline std::int32_t ReadBoundedSe(H264BitReader& reader, std::int32_t least, std::int32_t most, const char* element) {
    const std::int32_t value = reader.ReadSe();
    if (value < least || value > most) ThrowImpossibleSyntax(element);
    return value;
}

/// te(v) with its highest value: reference indices. Nothing is read where there is only one value.
inline std::uint32_t ReadTe(H264BitReader& reader, std::uint32_t most, const char* element) {
    if (most > 1) return ReadBoundedUe(reader, most, element);
    return most == 1 && !reader.ReadFlag() ? 1 : 0;
}

/// me(v) of 4:2:0 and 4:2:2: luma in bits 0 to 3, chroma in bits 4 and 5.
inline unsigned ReadCodedBlockPattern(H264BitReader& reader, bool intra) {
    return cavlc::kCodedBlockPattern[intra ? 0 : 1][ReadBoundedUe(reader, 47, "coded_block_pattern")];
}

/// Whether nothing but the stop bit is left, asked behind each macroblock.
inline bool CavlcDataEnded(H264BitReader& reader) {
    const std::int64_t left = reader.BitsLeft();
    if (left >= 9) return false;
    if (left <= 0) return true;
    return reader.PeekBits(static_cast<unsigned>(left)) == 1u << (left - 1);
}

namespace cavlc {

inline unsigned Take(H264BitReader& reader, Symbol symbol, const char* element) {
    if (symbol.length == 0) ThrowImpossibleSyntax(element);
    reader.SkipBits(symbol.length);
    return symbol.value;
}

/// TotalCoeff x 4 + TrailingOnes. `nC` has no meaning for chroma DC.
template <H264CavlcBlock Kind>
inline unsigned ReadCoeffToken(H264BitReader& reader, unsigned nC) {
    constexpr const char* kElement = "coeff_token";
    const std::uint32_t bits = reader.PeekBits(32);
    if constexpr (Kind == H264CavlcBlock::DC420) return Take(reader, kCoeffToken420.Find(bits), kElement);
    if constexpr (Kind == H264CavlcBlock::DC422) return Take(reader, kCoeffToken422.Find(bits), kElement);
    if (nC >= 8) return Take(reader, kCoeffTokenFixed.Find(bits), kElement);
    constexpr std::uint8_t kClasses[8] = {0, 0, 1, 1, 2, 2, 2, 2};
    return Take(reader, kCoeffToken[kClasses[nC]].Find(bits), kElement);
}

template <H264CavlcBlock Kind>
inline unsigned ReadTotalZeros(H264BitReader& reader, unsigned total) {
    constexpr const char* kElement = "total_zeros";
    const std::uint32_t bits = reader.PeekBits(32);
    if constexpr (Kind == H264CavlcBlock::DC420)
        return Take(reader, kTotalZeros420.rows[total - 1].Find(bits), kElement);
    if constexpr (Kind == H264CavlcBlock::DC422)
        return Take(reader, kTotalZeros422.rows[total - 1].Find(bits), kElement);
    return Take(reader, kTotalZeros.rows[total - 1].Find(bits), kElement);
}

/// Longest level_prefix: that of 14-bit samples, whose levels have 22 bits.
constexpr unsigned kMostLevelPrefix = 25;

/// A level that is no trailing one. `extra` is 2 for the first where fewer than three ones were told, since it cannot
/// be one more of them.
inline std::int32_t ReadLevel(H264BitReader& reader, unsigned suffixLength, unsigned extra) {
    const std::uint32_t bits = reader.PeekBits(32);
    const unsigned prefix = static_cast<unsigned>(std::countl_zero(bits));
    if (prefix > kMostLevelPrefix) ThrowImpossibleSyntax("level_prefix");
    reader.SkipBits(prefix + 1);
    std::uint32_t code = std::min(prefix, 15u) << suffixLength;
    unsigned suffixBits = suffixLength;
    if (prefix >= 14) {
        if (prefix >= 15) {
            suffixBits = prefix - 3;
            code += (suffixLength == 0 ? 15 : 0) + (prefix >= 16 ? (1u << (prefix - 3)) - 4096 : 0);
        } else if (suffixLength == 0) {
            suffixBits = 4;
        }
    }
    code += reader.ReadBits(suffixBits) + extra;
    const std::int32_t magnitude = static_cast<std::int32_t>((code >> 1) + 1);
    return (code & 1) != 0 ? -magnitude : magnitude;
}

}  // namespace cavlc

/// Reads a block and puts its levels into `target` (see coefficients.h), the last of the scan first. `nC` has no meaning
/// for chroma DC. @return the number of levels, total_coeff
template <H264CavlcBlock Kind, class Target>
inline unsigned ReadCavlcBlock(H264BitReader& reader, unsigned nC, const Target& target) {
    constexpr unsigned kSize = Kind == H264CavlcBlock::FULL    ? 16
                               : Kind == H264CavlcBlock::AC    ? 15
                               : Kind == H264CavlcBlock::DC422 ? 8
                                                               : 4;
    const unsigned token = cavlc::ReadCoeffToken<Kind>(reader, nC);
    const unsigned total = token >> 2;
    if (total == 0) return 0;
    if (total > kSize) ThrowImpossibleSyntax("coeff_token");
    const unsigned ones = token & 3;

    std::int32_t levels[16];
    unsigned count = 0;
    for (; count < ones; ++count) levels[count] = reader.ReadFlag() ? -1 : 1;
    if (count < total) {
        unsigned suffixLength = total > 10 && ones < 3 ? 1 : 0;
        unsigned extra = ones < 3 ? 2 : 0;
        for (; count < total; ++count) {
            const std::int32_t level = cavlc::ReadLevel(reader, suffixLength, extra);
            levels[count] = level;
            extra = 0;
            if (suffixLength == 0) suffixLength = 1;
            const std::int32_t magnitude = level < 0 ? -level : level;
            if (magnitude > 3 << (suffixLength - 1) && suffixLength < 6) ++suffixLength;
        }
    }

    unsigned zeros = total < kSize ? cavlc::ReadTotalZeros<Kind>(reader, total) : 0;
    if (total + zeros > kSize) ThrowImpossibleSyntax("total_zeros");
    unsigned index = total + zeros - 1;
    for (unsigned i = 0;; ++i) {
        target.Put(index, levels[i]);
        if (i + 1 == total) break;
        unsigned run = 0;
        if (zeros > 0) {
            const auto& table = cavlc::kRunBefore.rows[std::min(zeros, 7u) - 1];
            run = cavlc::Take(reader, table.Find(reader.PeekBits(32)), "run_before");
            if (run > zeros) ThrowImpossibleSyntax("run_before");
            zeros -= run;
        }
        index -= run + 1;
    }
    return total;
}

}  // namespace KorvaneSoftware
