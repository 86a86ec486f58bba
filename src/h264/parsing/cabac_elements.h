// The elements of the macroblock layer in CABAC slices, ITU-T H.264 clauses 9.3.2 and 9.3.3.1. What depends on
// neighbours comes from the caller as an increment or as the neighbours' values. Readers throw on impossible syntax.
#pragma once

#include <algorithm>
#include <cstdint>

#include "h264/parsing/cabac_engine.h"
#include "h264/parsing/syntax_error.h"

namespace KorvaneSoftware {

/// mb_type of Table 7-11 in P and B slices begins at 5 and 23.
constexpr unsigned kH264FirstIntraTypeP = 5;
constexpr unsigned kH264FirstIntraTypeB = 23;

/// `increment`: neighbours that are not skipped, 0 to 2.
inline bool CabacSkipFlagP(H264CabacReader& bins, unsigned increment) { return bins.Bin(11 + increment) != 0; }
inline bool CabacSkipFlagB(H264CabacReader& bins, unsigned increment) { return bins.Bin(24 + increment) != 0; }
/// `increment`: neighbouring pairs of field macroblocks.
inline bool CabacFieldFlag(H264CabacReader& bins, unsigned increment) { return bins.Bin(70 + increment) != 0; }
/// `increment`: neighbours with the flag set.
inline bool CabacTransform8x8Flag(H264CabacReader& bins, unsigned increment) { return bins.Bin(399 + increment) != 0; }
inline bool CabacEndOfSlice(H264CabacReader& bins) { return bins.Terminate(); }

namespace cabac {

/// I_PCM and the Intra_16x16 types, 1 to 25; the contexts are those of the five bins behind the terminating one.
inline unsigned IntraTypeRest(H264CabacReader& bins, unsigned luma, unsigned chroma, unsigned chroma2, unsigned mode1,
                              unsigned mode0) {
    if (bins.Terminate()) return 25;
    unsigned type = 1 + 12 * bins.Bin(luma);
    if (bins.Bin(chroma) != 0) type += 4 + 4 * bins.Bin(chroma2);
    type += 2 * bins.Bin(mode1);
    return type + bins.Bin(mode0);
}

/// Intra types behind their prefix in P and B slices.
inline unsigned IntraTypeSuffix(H264CabacReader& bins, unsigned first) {
    if (bins.Bin(first) == 0) return 0;
    return IntraTypeRest(bins, first + 1, first + 2, first + 2, first + 3, first + 3);
}

inline unsigned TwoBins(H264CabacReader& bins, unsigned context) {
    const unsigned high = bins.Bin(context);
    return high * 2 + bins.Bin(context);
}

}  // namespace cabac

/// mb_type of an I slice, 0 to 25 (Table 7-11). `increment`: neighbours that are not I_NxN.
inline unsigned CabacMbTypeI(H264CabacReader& bins, unsigned increment) {
    if (bins.Bin(3 + increment) == 0) return 0;
    return cabac::IntraTypeRest(bins, 3 + 3, 3 + 4, 3 + 5, 3 + 6, 3 + 7);
}

/// mb_type of a P slice: 0 to 3 (Table 7-13), or kH264FirstIntraTypeP and up.
inline unsigned CabacMbTypeP(H264CabacReader& bins) {
    if (bins.Bin(14) != 0) return kH264FirstIntraTypeP + cabac::IntraTypeSuffix(bins, 17);
    if (bins.Bin(15) == 0) return 3 * bins.Bin(16);
    return 2 - bins.Bin(17);
}

/// mb_type of a B slice: 0 to 22 (Table 7-14), or kH264FirstIntraTypeB and up. `increment`: neighbours that are neither
/// B_Skip nor B_Direct_16x16.
inline unsigned CabacMbTypeB(H264CabacReader& bins, unsigned increment) {
    if (bins.Bin(27 + increment) == 0) return 0;
    if (bins.Bin(27 + 3) == 0) return 1 + bins.Bin(27 + 5);
    unsigned code = bins.Bin(27 + 4) * 8;
    code += bins.Bin(27 + 5) * 4;
    code += cabac::TwoBins(bins, 27 + 5);
    if (code < 8) return 3 + code;
    switch (code) {
        case 13:
            return kH264FirstIntraTypeB + cabac::IntraTypeSuffix(bins, 32);
        case 14:
            return 11;
        case 15:
            return 22;
        default:
            return 12 + (code - 8) * 2 + bins.Bin(27 + 5);
    }
}

/// sub_mb_type, 0 to 3 (Table 7-17).
inline unsigned CabacSubMbTypeP(H264CabacReader& bins) {
    if (bins.Bin(21) != 0) return 0;
    if (bins.Bin(22) == 0) return 1;
    return 3 - bins.Bin(23);
}

/// sub_mb_type, 0 to 12 (Table 7-18).
inline unsigned CabacSubMbTypeB(H264CabacReader& bins) {
    if (bins.Bin(36) == 0) return 0;
    if (bins.Bin(37) == 0) return 1 + bins.Bin(39);
    if (bins.Bin(38) == 0) return 3 + cabac::TwoBins(bins, 39);
    if (bins.Bin(39) == 0) return 7 + cabac::TwoBins(bins, 39);
    return 11 + bins.Bin(39);
}

/// The mode of an Intra_4x4 or Intra_8x8 block, 0 to 8, from the one that is predicted.
inline unsigned CabacIntraMode(H264CabacReader& bins, unsigned predicted) {
    if (bins.Bin(68) != 0) return predicted;
    unsigned mode = bins.Bin(69);
    mode += bins.Bin(69) * 2;
    mode += bins.Bin(69) * 4;
    return mode + (mode >= predicted ? 1 : 0);
}

/// intra_chroma_pred_mode, 0 to 3. `increment`: intra neighbours, without I_PCM, whose mode is not 0.
inline unsigned CabacIntraChromaMode(H264CabacReader& bins, unsigned increment) {
    if (bins.Bin(64 + increment) == 0) return 0;
    if (bins.Bin(64 + 3) == 0) return 1;
    return 2 + bins.Bin(64 + 3);
}

/// The luma bits of coded_block_pattern. Of `left` bits 1 and 3 count, which lie beside blocks 0 and 2; of `top` bits 2
/// and 3. A neighbour that is not there, or is I_PCM, has all bits set; a skipped one none.
inline unsigned CabacCodedLuma(H264CabacReader& bins, unsigned left, unsigned top) {
    const auto uncoded = [](unsigned pattern, unsigned block) { return (~pattern >> block) & 1; };
    unsigned coded = bins.Bin(73 + uncoded(left, 1) + 2 * uncoded(top, 2));
    coded |= bins.Bin(73 + uncoded(coded, 0) + 2 * uncoded(top, 3)) << 1;
    coded |= bins.Bin(73 + uncoded(left, 3) + 2 * uncoded(coded, 0)) << 2;
    coded |= bins.Bin(73 + uncoded(coded, 2) + 2 * uncoded(coded, 1)) << 3;
    return coded;
}

/// The chroma part, 0 to 2, from those of the neighbours: 0 for one that is not there, 2 for I_PCM.
inline unsigned CabacCodedChroma(H264CabacReader& bins, unsigned left, unsigned top) {
    const auto increment = [&](bool a, bool b) { return (a ? 1u : 0u) + (b ? 2u : 0u); };
    if (bins.Bin(77 + increment(left != 0, top != 0)) == 0) return 0;
    return 1 + bins.Bin(77 + 4 + increment(left == 2, top == 2));
}

/// mb_qp_delta from -(26 + bdOffset / 2) to 25 + bdOffset / 2. `previous` says whether that of the macroblock before
/// was not 0; `bdOffset` is QpBdOffsetY.
inline std::int32_t CabacQpDelta(H264CabacReader& bins, bool previous, unsigned bdOffset) {
    if (bins.Bin(60 + (previous ? 1 : 0)) == 0) return 0;
    const unsigned most = 52 + bdOffset;
    unsigned code = 1;
    for (unsigned context = 62; bins.Bin(context) != 0; context = 63) {
        if (++code > most) ThrowImpossibleSyntax("mb_qp_delta");
    }
    // The lowest value has no positive counterpart.
    if (code == most - 1) ThrowImpossibleSyntax("mb_qp_delta");
    const std::int32_t magnitude = static_cast<std::int32_t>((code + 1) / 2);
    return (code & 1) != 0 ? magnitude : -magnitude;
}

/// ref_idx from 0 to `most`. `increment`: 1 if the left neighbour's index is above 0, and 2 if the upper one's is.
inline unsigned CabacRefIdx(H264CabacReader& bins, unsigned increment, unsigned most) {
    unsigned value = 0;
    for (unsigned context = 54 + increment; bins.Bin(context) != 0; context = value < 2 ? 58 : 59) {
        if (++value > most) ThrowImpossibleSyntax("ref_idx");
    }
    return value;
}

/// A component of mvd. `first` is 40 for the horizontal, 47 for the vertical one; `sum` the neighbours' absolute
/// differences, added.
inline std::int32_t CabacMvd(H264CabacReader& bins, unsigned first, unsigned sum) {
    constexpr unsigned kMostSuffixBits = 15;
    if (bins.Bin(first + (sum < 3 ? 0 : sum > 32 ? 2 : 1)) == 0) return 0;
    unsigned magnitude = 1;
    while (magnitude < 9 && bins.Bin(first + std::min(magnitude + 2, 6u)) != 0) ++magnitude;
    if (magnitude == 9) {
        std::uint32_t suffix = 0;
        if (!bins.ExpGolomb(3, kMostSuffixBits, suffix)) ThrowImpossibleSyntax("mvd");
        magnitude += suffix;
    }
    const std::int32_t value = static_cast<std::int32_t>(magnitude);
    return bins.Bypass() != 0 ? -value : value;
}

}  // namespace KorvaneSoftware
