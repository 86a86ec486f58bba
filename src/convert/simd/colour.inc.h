// The colour arithmetic of colour.h on registers of 16-bit words, shared by all kernels that turn samples into RGB or
// back. A multiply-high of unsigned words is the truncated product that the plain forms compute term by term.
#pragma once

#include "convert/colour.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// A row of the YUV to RGB table, each value in every word.
struct YuvToRgbVectors {
    Vec yGain, uToB, uToG, vToG, vToR, bOffset, gOffset, rOffset;
};

struct RgbToYuvVectors {
    Vec bToY, gToY, rToY, bToU, gToU, rToU, bToV, gToV, rToV, yOffset, cOffset;
};

struct BgrVectors {
    Vec b, g, r;
};

struct ChromaVectors {
    Vec u, v;
};

// All values of both tables are below 32768.
inline Vec RepeatWord(std::uint32_t value) { return Set16(static_cast<int>(value)); }

inline YuvToRgbVectors LoadYuvToRgb(std::uint16_t colorMatrix) {
    const YuvToRgbRow& m = kYuvToRgb[colorMatrix & 3];
    return {RepeatWord(m.yGain), RepeatWord(m.uToB),    RepeatWord(m.uToG),    RepeatWord(m.vToG),
            RepeatWord(m.vToR),  RepeatWord(m.bOffset), RepeatWord(m.gOffset), RepeatWord(m.rOffset)};
}

inline RgbToYuvVectors LoadRgbToYuv(std::uint16_t colorMatrix) {
    const RgbToYuvRow& m = kRgbToYuv[colorMatrix & 3];
    return {RepeatWord(m.bToY), RepeatWord(m.gToY),    RepeatWord(m.rToY),   RepeatWord(m.bToU),
            RepeatWord(m.gToU), RepeatWord(m.rToU),    RepeatWord(m.bToV),   RepeatWord(m.gToV),
            RepeatWord(m.rToV), RepeatWord(m.yOffset), RepeatWord(m.cOffset)};
}

/// B, G and R of pixels whose luma and chroma are 8.8 words. The results are signed words that a saturating pack to
/// unsigned bytes clamps. Over all rows and all words each sum stays within -9231 + 0 and 9538 + 17304, and G within
/// 4355 - 3208 - 6659 and 9538 + 4355, so no sum leaves the signed word.
inline BgrVectors YuvToBgr(const YuvToRgbVectors& m, Vec y, Vec u, Vec v) {
    const Vec t = MulHigh16u(y, m.yGain);
    return {ShiftRight16s<5>(Sub16(Add16(t, MulHigh16u(u, m.uToB)), m.bOffset)),
            ShiftRight16s<5>(Sub16(Sub16(Add16(t, m.gOffset), MulHigh16u(u, m.uToG)), MulHigh16u(v, m.vToG))),
            ShiftRight16s<5>(Sub16(Add16(t, MulHigh16u(v, m.vToR)), m.rOffset))};
}

/// Luma of pixels whose B, G and R are 8.8 words, in 1/32: the caller shifts. From bytes the sum is 17 at least and,
/// with the largest row (934 + 4809 + 2449 = 8192), 8160 + 17 at most, so that sum >> 5 needs no clamp.
inline Vec RgbToLuma32(const RgbToYuvVectors& m, Vec b, Vec g, Vec r) {
    return Add16(Add16(MulHigh16u(b, m.bToY), MulHigh16u(g, m.gToY)), Add16(MulHigh16u(r, m.rToY), m.yOffset));
}

/// Chroma in 1/32 alike. From bytes or means of bytes, words of 65280 at most, the positive term is 4080 at most, and
/// so is the sum of the two negative ones (2714 + 1382 = 666 + 3430 = 4096): both results lie between 4111 - 4080 and
/// 4111 + 4080, below 8192, and need no clamp.
inline ChromaVectors RgbToChroma32(const RgbToYuvVectors& m, Vec b, Vec g, Vec r) {
    return {Sub16(Sub16(Add16(MulHigh16u(b, m.bToU), m.cOffset), MulHigh16u(g, m.gToU)), MulHigh16u(r, m.rToU)),
            Sub16(Sub16(Add16(MulHigh16u(r, m.rToV), m.cOffset), MulHigh16u(g, m.gToV)), MulHigh16u(b, m.bToV))};
}

/// Two registers of sums in 1/32, each 0..8191, as bytes: `low` in the low bytes of the words, `high` in the high ones.
inline Vec MergeBytes32(Vec low, Vec high) {
    return Or(ShiftRight16u<5>(low), And(ShiftLeft16<3>(high), Set16(0xFF00)));
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
