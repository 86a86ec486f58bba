// Field restoration over registers of any width. Each 128-bit lane holds one group, in words: the eight even pixels,
// the eight odd ones, and the eight samples of each chroma, which lie beside the pixels that they belong to.
#include "deinterlace/x86/restoration_lines_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

constexpr std::size_t kOutBytes = 4 * kGroupPixels;

struct GroupWords {
    Vec even;
    Vec odd;
};
inline GroupWords PixelWords(const std::uint8_t* p, std::size_t groupBytes) {
    const Vec bytes = LoadLanes(p, groupBytes);
    return {And(bytes, Set16(0x00FF)), ShiftRight16u<8>(bytes)};
}

struct ChromaWords {
    Vec u;
    Vec v;
};
inline ChromaWords LoadChroma(const std::uint8_t* p, std::size_t groupBytes) {
    const Vec bytes = LoadLanes(p, groupBytes);
    return {UnpackLow8(bytes, Zero()), UnpackHigh8(bytes, Zero())};
}

// Stores 16 pixels per lane out of the words of their even and odd halves, each limited to a byte.
struct PixelHalf {
    Vec b, g, r, a;
};
inline void StorePixels(std::uint8_t* dst, const PixelHalf& even, const PixelHalf& odd) {
    const Vec bgEven = Pack16To8u(even.b, even.g);
    const Vec raEven = Pack16To8u(even.r, even.a);
    const Vec bgOdd = Pack16To8u(odd.b, odd.g);
    const Vec raOdd = Pack16To8u(odd.r, odd.a);
    const Vec bgPairsEven = UnpackLow8(bgEven, AlignRight<8>(bgEven, bgEven));
    const Vec raPairsEven = UnpackLow8(raEven, AlignRight<8>(raEven, raEven));
    const Vec bgPairsOdd = UnpackLow8(bgOdd, AlignRight<8>(bgOdd, bgOdd));
    const Vec raPairsOdd = UnpackLow8(raOdd, AlignRight<8>(raOdd, raOdd));
    const Vec evenLow = UnpackLow16(bgPairsEven, raPairsEven);
    const Vec evenHigh = UnpackHigh16(bgPairsEven, raPairsEven);
    const Vec oddLow = UnpackLow16(bgPairsOdd, raPairsOdd);
    const Vec oddHigh = UnpackHigh16(bgPairsOdd, raPairsOdd);
    StoreLanes(dst, kOutBytes, UnpackLow32(evenLow, oddLow));
    StoreLanes(dst + 16, kOutBytes, UnpackHigh32(evenLow, oddLow));
    StoreLanes(dst + 32, kOutBytes, UnpackLow32(evenHigh, oddHigh));
    StoreLanes(dst + 48, kOutBytes, UnpackHigh32(evenHigh, oddHigh));
}

// The thresholds as words. Motions are at most 765 and weights below 255 come from motions up to 255, so a larger range
// than 65535 gives the same weights, all 0, as that one.
struct WeightRamp {
    Vec minimum;
    Vec belowFull;  // The largest motion that is not full.
    Vec range;
    Vec rangeLess1;
    Vec reciprocal;  // 65536 / range, rounded down.
};
inline WeightRamp RampOf(const MotionThresholds& t) {
    const std::uint32_t minimum = t.minimum < 0xFFFF ? t.minimum : 0xFFFF;
    const std::uint32_t ceiling = t.maximum < 256 ? t.maximum : 256;
    const std::uint32_t belowFull = ceiling > minimum + 1 ? ceiling - 1 : minimum;
    std::uint32_t range = t.maximum > t.minimum ? t.maximum - t.minimum : 0xFFFF;
    if (range > 0xFFFF) range = 0xFFFF;
    const std::uint32_t reciprocal = range > 1 ? 65536 / range : 0xFFFF;
    return {Set16(static_cast<int>(minimum)), Set16(static_cast<int>(belowFull)), Set16(static_cast<int>(range)),
            Set16(static_cast<int>(range - 1)), Set16(static_cast<int>(reciprocal))};
}

// The weight of each motion. `full` is not 0 where the weight is 255 at any motion.
inline Vec WeightsOf(Vec motion, const WeightRamp& ramp, Vec full) {
    const Vec above = SubSat16u(motion, ramp.minimum);
    const Vec dividend = Sub16(ShiftLeft16<8>(above), above);  // At most 255 * 255 where the ramp decides.
    // With the reciprocal rounded down the quotient is right or one too small; then the remainder reaches the range.
    const Vec quotient = MulHigh16u(dividend, ramp.reciprocal);
    const Vec remainder = Sub16(dividend, MulLow16(quotient, ramp.range));
    const Vec ones = Set16(1);
    const Vec weight = Add16(quotient, Min16u(SubSat16u(remainder, ramp.rangeLess1), ones));
    const Vec isFull = Min16u(Or(SubSat16u(motion, ramp.belowFull), full), ones);
    return Min16u(Or(weight, Sub16(ShiftLeft16<8>(isFull), isFull)), Set16(255));
}

// A weight and its complement, in the high bytes of words.
struct WeightPair {
    Vec present;
    Vec temporal;
};
inline WeightPair PairOf(Vec weight) {
    const Vec high = ShiftLeft16<8>(weight);
    return {high, Sub16(Set16(0xFF00), high)};
}

// ((above + below) * w >> 1) + ((previous + next) * (255 - w) >> 1), divided by 255. Sums are at most 510 and products
// have 17 bits: as high words of (sum << 7) * (w << 8) they come out halved. The dividend is at most 65025, for which
// 0x8081 / 2^23 is an exact reciprocal of 255.
inline Vec Mix(const WeightPair& w, Vec above, Vec below, Vec previous, Vec next) {
    const Vec present = MulHigh16u(ShiftLeft16<7>(Add16(above, below)), w.present);
    const Vec temporal = MulHigh16u(ShiftLeft16<7>(Add16(previous, next)), w.temporal);
    return ShiftRight16u<7>(MulHigh16u(Add16(present, temporal), Set16(0x8081)));
}

inline Vec AbsDiffWords(Vec a, Vec b) { return Abs16(Sub16(a, b)); }

// Sums of pairs of words times pairs of coefficients, less their low 16 bits.
inline Vec HighOfPairs(Vec lowPairs, Vec highPairs, Vec coefficients, Vec lowAdded, Vec highAdded) {
    return Pack32To16s(ShiftRight32s<16>(Add32(MulAddPairs16(lowPairs, coefficients), lowAdded)),
                       ShiftRight32s<16>(Add32(MulAddPairs16(highPairs, coefficients), highAdded)));
}
inline Vec Coefficients(int first, int second) {
    return Set32(
        static_cast<int>((static_cast<std::uint32_t>(second) << 16) | (static_cast<std::uint32_t>(first) & 0xFFFF)));
}

// The coefficients in 1/65536 exceed 16 bits; what lies above is added in whole samples:
//   76284 = 65536 + 10748, 132252 = 2 * 65536 + 1180, 53281 = 65536 - 12255, 104595 = 2 * 65536 - 26477,
//   -18116032 = -277 * 65536 + 37440, 8920512 = 136 * 65536 + 7616, -14575936 = -223 * 65536 + 38592.
inline PixelHalf ToBgr(Vec y, const ChromaWords& chroma, Vec alpha) {
    const Vec u = chroma.u;
    const Vec v = chroma.v;
    const Vec yuLow = UnpackLow16(y, u);
    const Vec yuHigh = UnpackHigh16(y, u);
    const Vec yvLow = UnpackLow16(y, v);
    const Vec yvHigh = UnpackHigh16(y, v);
    const Vec ones = Set16(1);
    const Vec uToG = Coefficients(-25690, 7616);
    const Vec b = HighOfPairs(yuLow, yuHigh, Coefficients(10748, 1180), Set32(37440), Set32(37440));
    const Vec g = HighOfPairs(yvLow, yvHigh, Coefficients(10748, 12255), MulAddPairs16(UnpackLow16(u, ones), uToG),
                              MulAddPairs16(UnpackHigh16(u, ones), uToG));
    const Vec r = HighOfPairs(yvLow, yvHigh, Coefficients(10748, -26477), Set32(38592), Set32(38592));
    return {Add16(Add16(b, y), Sub16(Add16(u, u), Set16(277))), Add16(Add16(g, y), Sub16(Set16(136), v)),
            Add16(Add16(r, y), Sub16(Add16(v, v), Set16(223))), alpha};
}

template <bool HasAlpha>
inline void RestoreGroups(std::uint8_t* dst, const RestorationLines& lines, std::size_t offset,
                          const WeightRamp& ramp) {
    constexpr BlockOrder kOrder = kFieldOrder<HasAlpha>;
    constexpr std::size_t kBytes = kOrder.bytes;
    constexpr std::size_t kChroma = kOrder.u;
    const GroupWords py = PixelWords(lines.previous + offset, kBytes);
    const GroupWords ny = PixelWords(lines.next + offset, kBytes);
    const GroupWords ay = PixelWords(lines.above + offset, kBytes);
    const GroupWords by = PixelWords(lines.below + offset, kBytes);
    const ChromaWords pc = LoadChroma(lines.previous + offset + kChroma, kBytes);
    const ChromaWords nc = LoadChroma(lines.next + offset + kChroma, kBytes);
    const ChromaWords ac = LoadChroma(lines.above + offset + kChroma, kBytes);
    const ChromaWords bc = LoadChroma(lines.below + offset + kChroma, kBytes);
    const Vec chromaMotion = Add16(AbsDiffWords(pc.u, nc.u), AbsDiffWords(pc.v, nc.v));
    const Vec evenMotion = Add16(chromaMotion, AbsDiffWords(py.even, ny.even));
    const Vec oddMotion = Add16(chromaMotion, AbsDiffWords(py.odd, ny.odd));
    GroupWords pa{Zero(), Zero()}, na = pa, aa = pa, ba = pa;
    Vec evenFull = Zero();
    Vec oddFull = Zero();
    if constexpr (HasAlpha) {
        pa = PixelWords(lines.previous + offset + kOrder.alpha, kBytes);
        na = PixelWords(lines.next + offset + kOrder.alpha, kBytes);
        aa = PixelWords(lines.above + offset + kOrder.alpha, kBytes);
        ba = PixelWords(lines.below + offset + kOrder.alpha, kBytes);
        evenFull = SubSat16u(Set16(256), Add16(aa.even, ba.even));
        oddFull = SubSat16u(Set16(256), Add16(aa.odd, ba.odd));
    }
    const WeightPair evenWeight = PairOf(WeightsOf(evenMotion, ramp, evenFull));
    const WeightPair oddWeight = PairOf(WeightsOf(oddMotion, ramp, oddFull));
    const ChromaWords chroma{Mix(evenWeight, ac.u, bc.u, pc.u, nc.u), Mix(oddWeight, ac.v, bc.v, pc.v, nc.v)};
    Vec evenAlpha = Zero();
    Vec oddAlpha = Zero();
    if constexpr (HasAlpha) {
        evenAlpha = Mix(evenWeight, aa.even, ba.even, pa.even, na.even);
        oddAlpha = Mix(oddWeight, aa.odd, ba.odd, pa.odd, na.odd);
    }
    StorePixels(dst, ToBgr(Mix(evenWeight, ay.even, by.even, py.even, ny.even), chroma, evenAlpha),
                ToBgr(Mix(oddWeight, ay.odd, by.odd, py.odd, ny.odd), chroma, oddAlpha));
}

template <bool HasAlpha>
void RestoreLine(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,
                 const MotionThresholds& thresholds, RestoreLineSignature* shortLine) {
    constexpr std::size_t kBytes = kFieldOrder<HasAlpha>.bytes;
    constexpr std::size_t kLanes = static_cast<std::size_t>(kVecLanes);
    if (groups < kLanes) return shortLine(dst, lines, groups, thresholds);
    const WeightRamp ramp = RampOf(thresholds);
    std::size_t group = 0;
    for (; group + kLanes <= groups; group += kLanes)
        RestoreGroups<HasAlpha>(dst + group * kOutBytes, lines, group * kBytes, ramp);
    if (group < groups) {
        group = groups - kLanes;
        RestoreGroups<HasAlpha>(dst + group * kOutBytes, lines, group * kBytes, ramp);
    }
}

// Words as two registers of doubles for each half.
struct Doubles {
    VecDouble part[4];
};
inline Doubles ToDoubles(Vec words) {
    // Each word in the high half of its double word, shifted down with its sign.
    const Vec low = ShiftRight32s<16>(UnpackLow16(Zero(), words));
    const Vec high = ShiftRight32s<16>(UnpackHigh16(Zero(), words));
    return {{LowToDouble(low), HighToDouble(low), LowToDouble(high), HighToDouble(high)}};
}
inline Vec ToWords(const Doubles& d) {
    return Pack32To16s(TruncateDoubles(d.part[0], d.part[1]), TruncateDoubles(d.part[2], d.part[3]));
}

// `luma` less 16, chroma doubled and less 256: halves of samples are whole numbers then. Halving a factor is exact, so
// the products are those of the definition. Truncation before the limits gives the same bytes as behind them.
inline PixelHalf PresentHalf(Vec luma, Vec doubledU, Vec doubledV, Vec alpha) {
    const Doubles y = ToDoubles(luma);
    const Doubles u = ToDoubles(doubledU);
    const Doubles v = ToDoubles(doubledV);
    const VecDouble half = SetDouble(0.5);
    Doubles b, g, r;
    for (int i = 0; i < 4; ++i) {
        const VecDouble gained = MulDouble(y.part[i], SetDouble(1.164));
        b.part[i] = AddDouble(AddDouble(MulDouble(u.part[i], SetDouble(2.017 / 2)), gained), half);
        g.part[i] = AddDouble(SubDouble(SubDouble(gained, MulDouble(u.part[i], SetDouble(0.392 / 2))),
                                        MulDouble(v.part[i], SetDouble(0.813 / 2))),
                              half);
        r.part[i] = AddDouble(AddDouble(MulDouble(v.part[i], SetDouble(1.596 / 2)), gained), half);
    }
    return {ToWords(b), ToWords(g), ToWords(r), alpha};
}

// The groups from `src` on; one more group behind them is read for the chroma between groups.
template <bool HasAlpha>
inline void PresentGroups(std::uint8_t* dst, const std::uint8_t* src) {
    constexpr BlockOrder kOrder = kFieldOrder<HasAlpha>;
    constexpr std::size_t kBytes = kOrder.bytes;
    constexpr std::size_t kChroma = kOrder.u;
    const GroupWords y = PixelWords(src, kBytes);
    const ChromaWords here = LoadChroma(src + kChroma, kBytes);
    const ChromaWords behind = LoadChroma(src + kBytes + kChroma, kBytes);
    const Vec nextU = AlignRight<2>(behind.u, here.u);
    const Vec nextV = AlignRight<2>(behind.v, here.v);
    GroupWords alpha{Set16(255), Set16(255)};
    if constexpr (HasAlpha) alpha = PixelWords(src + kOrder.alpha, kBytes);
    const Vec lumaZero = Set16(16);
    const Vec chromaZero = Set16(256);
    StorePixels(dst,
                PresentHalf(Sub16(y.even, lumaZero), Sub16(Add16(here.u, here.u), chromaZero),
                            Sub16(Add16(here.v, here.v), chromaZero), alpha.even),
                PresentHalf(Sub16(y.odd, lumaZero), Sub16(Add16(here.u, nextU), chromaZero),
                            Sub16(Add16(here.v, nextV), chromaZero), alpha.odd));
}

template <bool HasAlpha>
void PresentLine(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups, PresentLineSignature* shortLine) {
    constexpr std::size_t kBytes = kFieldOrder<HasAlpha>.bytes;
    constexpr std::size_t kLanes = static_cast<std::size_t>(kVecLanes);
    if (groups < kLanes) return shortLine(dst, src, groups);
    for (std::size_t group = 0; group + kLanes < groups; group += kLanes)
        PresentGroups<HasAlpha>(dst + group * kOutBytes, src + group * kBytes);
    // The last groups pass through a copy in which one more group repeats the last chroma samples: a sample and itself
    // have it for their mean.
    std::uint8_t last[(kLanes + 1) * kBytes];
    const std::uint8_t* const from = src + (groups - kLanes) * kBytes;
    for (std::size_t i = 0; i < kLanes * kBytes; ++i) last[i] = from[i];
    for (std::size_t i = kLanes * kBytes; i < sizeof(last); ++i) last[i] = 0;
    last[kLanes * kBytes + kBytes - 16] = last[kLanes * kBytes - 9];
    last[kLanes * kBytes + kBytes - 8] = last[kLanes * kBytes - 1];
    PresentGroups<HasAlpha>(dst + (groups - kLanes) * kOutBytes, last);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::RestoreLineY16(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,
                                   const MotionThresholds& thresholds) {
    RestoreLine<false>(dst, lines, groups, thresholds, plain::RestoreLineY16);
}
void PIXMORPH_SIMD::RestoreLineY16A(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,
                                    const MotionThresholds& thresholds) {
    RestoreLine<true>(dst, lines, groups, thresholds, plain::RestoreLineY16A);
}
void PIXMORPH_SIMD::PresentLineY16(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    PresentLine<false>(dst, src, groups, plain::PresentLineY16);
}
void PIXMORPH_SIMD::PresentLineY16A(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    PresentLine<true>(dst, src, groups, plain::PresentLineY16A);
}

}  // namespace KorvaneSoftware
