// Residual blocks of CABAC slices, ITU-T H.264 clause 7.3.5.3.3 with the contexts of clauses 9.3.3.1.1.9 and 9.3.3.1.3.
#pragma once

#include <algorithm>
#include <cstdint>

#include "h264/parsing/cabac_engine.h"
#include "h264/parsing/syntax_error.h"

namespace KorvaneSoftware {

/// What kind of block: ctxBlockCat, with the chroma DC apart by format.
enum class H264CabacBlock { LUMA_DC, LUMA_AC, LUMA_4X4, CHROMA_DC420, CHROMA_DC422, CHROMA_AC, LUMA_8X8 };

namespace cabac {

/// Where the contexts of a kind begin, Table 9-34 with the offsets of Table 9-40.
struct BlockContexts {
    unsigned size;            ///< Coefficients.
    unsigned codedBlockFlag;  ///< 8x8 blocks have none outside 4:4:4.
    unsigned significant[2];  ///< [frame, field]
    unsigned last[2];
    unsigned level;
};

inline constexpr BlockContexts kBlockContexts[7] = {
    {16, 85, {105, 277}, {166, 338}, 227},
    {15, 85 + 4, {105 + 15, 277 + 15}, {166 + 15, 338 + 15}, 227 + 10},
    {16, 85 + 8, {105 + 29, 277 + 29}, {166 + 29, 338 + 29}, 227 + 20},
    {4, 85 + 12, {105 + 44, 277 + 44}, {166 + 44, 338 + 44}, 227 + 30},
    {8, 85 + 12, {105 + 44, 277 + 44}, {166 + 44, 338 + 44}, 227 + 30},
    {15, 85 + 16, {105 + 47, 277 + 47}, {166 + 47, 338 + 47}, 227 + 39},
    {64, 0, {402, 436}, {417, 451}, 426},
};

/// ctxIdxInc of significant_coeff_flag in 8x8 blocks, Table 9-43: [frame, field].
inline constexpr std::uint8_t kSignificant8x8[2][63] = {
    {0, 1, 2,  3,  4,  5,  5, 4, 4, 3, 3,  4,  4, 4, 5, 5,  4,  4,  4,  4, 3, 3,  6,  7, 7,  7,  8,  9,  10, 9,  8, 7,
     7, 6, 11, 12, 13, 11, 6, 7, 8, 9, 14, 10, 9, 8, 6, 11, 12, 13, 11, 6, 9, 14, 10, 9, 11, 12, 13, 11, 14, 10, 12},
    {0,  1,  1,  2,  2,  3,  3,  4,  5,  6,  7,  7,  7, 8,  4,  5,  6,  9,  10, 10, 8,
     11, 12, 11, 9,  9,  10, 10, 8,  11, 12, 11, 9,  9, 10, 10, 8,  11, 12, 11, 9,  9,
     10, 10, 8,  13, 13, 9,  9,  10, 10, 8,  13, 13, 9, 9,  10, 10, 14, 14, 14, 14, 14}};
inline constexpr std::uint8_t kLast8x8[63] = {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2,
                                              2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3, 4, 4,
                                              4, 4, 4, 4, 4, 4, 5, 5, 5, 5, 6, 6, 6, 6, 7, 7, 7, 7, 8, 8, 8};

template <H264CabacBlock Kind>
inline unsigned SignificantIncrement(unsigned index, bool field) {
    if constexpr (Kind == H264CabacBlock::LUMA_8X8) return kSignificant8x8[field ? 1 : 0][index];
    if constexpr (Kind == H264CabacBlock::CHROMA_DC422) return std::min(index / 2, 2u);
    return index;  // Three flags in the DC of 4:2:0, so that its limit of 2 is kept.
}

template <H264CabacBlock Kind>
inline unsigned LastIncrement(unsigned index) {
    if constexpr (Kind == H264CabacBlock::LUMA_8X8) return kLast8x8[index];
    return SignificantIncrement<Kind>(index, false);
}

/// Most bits behind the prefix of a level's suffix: that of 14-bit samples, whose levels have 22 bits.
constexpr unsigned kMostLevelSuffixBits = 21;

}  // namespace cabac

/// coded_block_flag. `increment`: 1 for the left and 2 for the upper block if that one's flag is set, or stands for set.
template <H264CabacBlock Kind>
inline bool CabacCodedBlockFlag(H264CabacReader& bins, unsigned increment) {
    static_assert(Kind != H264CabacBlock::LUMA_8X8);
    return bins.Bin(cabac::kBlockContexts[static_cast<unsigned>(Kind)].codedBlockFlag + increment) != 0;
}

/// Reads a block behind its coded_block_flag and puts its levels into `target` (see coefficients.h), the last of the
/// scan first. `field` says whether the macroblock is one of a field. @return the number of levels
template <H264CabacBlock Kind, class Target>
inline unsigned ReadCabacBlock(H264CabacReader& reader, bool field, const Target& target) {
    constexpr cabac::BlockContexts kContexts = cabac::kBlockContexts[static_cast<unsigned>(Kind)];
    H264CabacReader bins = reader;

    const unsigned significant = kContexts.significant[field ? 1 : 0];
    const unsigned last = kContexts.last[field ? 1 : 0];
    std::uint8_t indices[kContexts.size];
    unsigned count = 0;
    unsigned index = 0;
    for (; index < kContexts.size - 1; ++index) {
        if (bins.Bin(significant + cabac::SignificantIncrement<Kind>(index, field)) == 0) continue;
        indices[count++] = static_cast<std::uint8_t>(index);
        if (bins.Bin(last + cabac::LastIncrement<Kind>(index)) != 0) break;
    }
    // Without a last one before it the coefficient at the end is there unsaid.
    if (index == kContexts.size - 1) indices[count++] = static_cast<std::uint8_t>(index);

    constexpr bool kChromaDc = Kind == H264CabacBlock::CHROMA_DC420 || Kind == H264CabacBlock::CHROMA_DC422;
    constexpr unsigned kMostGreater = kChromaDc ? 3 : 4;
    unsigned equalToOne = 0;
    unsigned greater = 0;
    for (unsigned i = count; i-- > 0;) {
        std::uint32_t magnitude = 1;
        if (bins.Bin(kContexts.level + (greater != 0 ? 0 : std::min(4u, 1 + equalToOne))) == 0) {
            ++equalToOne;
        } else {
            const unsigned context = kContexts.level + 5 + std::min(kMostGreater, greater);
            magnitude = 2;
            while (magnitude < 15 && bins.Bin(context) != 0) ++magnitude;
            if (magnitude == 15) {
                // Rare, and done on a copy of its own, so that the other one can stay in registers.
                H264CabacReader suffixBins = bins;
                std::uint32_t suffix = 0;
                if (!suffixBins.ExpGolomb(0, cabac::kMostLevelSuffixBits, suffix)) {
                    ThrowImpossibleSyntax("coeff_abs_level_minus1");
                }
                bins = suffixBins;
                magnitude += suffix;
            }
            ++greater;
        }
        const std::int32_t level = static_cast<std::int32_t>(magnitude);
        target.Put(indices[i], bins.Bypass() != 0 ? -level : level);
    }
    reader = bins;
    return count;
}

}  // namespace KorvaneSoftware
