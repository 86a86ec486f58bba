// Vertical resampling over registers of any width: whole lines at once.
#include "resize/x86/resample_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

/// Weights of an area average, two lines at a time.
struct RowWeights {
    std::uint32_t first;
    std::uint32_t inner;
    std::uint32_t last;
    std::uint32_t count;

    std::uint32_t Of(std::uint32_t row) const { return row == 0 ? first : (row + 1 < count ? inner : last); }
    // An odd last line is paired with itself at no weight.
    std::uint32_t Second(std::uint32_t row) const { return row + 1 < count ? Of(row + 1) : 0; }
};

inline Vec BytePair(const RowWeights& weights, std::uint32_t row) {
    return Set16(static_cast<int>(weights.Of(row) | weights.Second(row) << 8));
}
inline Vec WordPair(const RowWeights& weights, std::uint32_t row) {
    return Set32(static_cast<int>(weights.Of(row) | weights.Second(row) << 16));
}

/// The pairs of lines of an average: the first, those inside, which all have the same weights, and the last.
struct PairWeights {
    Vec first;
    Vec inner;
    Vec last;
};

template <class MakePair>
inline PairWeights WeightsOfPairs(const RowWeights& weights, MakePair pair) {
    const std::uint32_t lastRow = (weights.count - 1) & ~1u;
    return {pair(weights, 0), pair(weights, lastRow > 2 ? 2 : 0), pair(weights, lastRow)};
}

/// Calls add(line a, line b, weights) for each pair of lines; Pairs is their number, or 0 for any above 2.
template <int Pairs, class Add>
inline void ForEachPair(const std::uint8_t* src, std::int64_t stride, std::uint32_t count, const PairWeights& weights,
                        Add add) {
    add(src, src + stride, weights.first);
    if constexpr (Pairs == 1) return;
    std::uint32_t row = 2;
    if constexpr (Pairs != 2) {
        for (; row + 2 < count; row += 2) {
            src += 2 * stride;
            add(src, src + stride, weights.inner);
        }
    }
    src += 2 * stride;
    add(src, row + 1 < count ? src + stride : src, weights.last);
}

/// Calls body(byte) for each register of a line that is at least one long.
template <class Body>
inline void ForEachPlace(std::size_t bytes, Body body) {
    std::size_t i = 0;
    for (; i + kVecBytes <= bytes; i += kVecBytes) body(i);
    if (i < bytes) body(bytes - kVecBytes);
}

// Sums below 2^15 by the terms of MakeAreaScale.
template <int Pairs, bool Shifted>
void AverageNarrow(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t bytes,
                   const RowWeights& weights, const AreaScale& scale) {
    const PairWeights pairs = WeightsOfPairs(weights, BytePair);
    const Vec bias = Set16(scale.bias);
    const Vec multiplier = Set16(scale.multiplier);
    const int shift = scale.shift;
    const auto finish = [&](Vec sum) {
        const Vec value = MulHigh16u(sum, multiplier);
        if constexpr (Shifted) return ShiftRight16uBy(value, shift);
        return value;
    };
    ForEachPlace(bytes, [&](std::size_t i) {
        Vec low = bias;
        Vec high = bias;
        ForEachPair<Pairs>(src + i, stride, weights.count, pairs,
                           [&](const std::uint8_t* a, const std::uint8_t* b, Vec weight) {
                               const Vec x = Load(a);
                               const Vec y = Load(b);
                               low = Add16(low, MulAddPairs8(UnpackLow8(x, y), weight));
                               high = Add16(high, MulAddPairs8(UnpackHigh8(x, y), weight));
                           });
        Store(dst + i, Pack16To8u(finish(low), finish(high)));
    });
}

template <int Pairs>
void AverageNarrowAny(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t bytes,
                      const RowWeights& weights, const AreaScale& scale) {
    (scale.shift == 0 ? AverageNarrow<Pairs, false> : AverageNarrow<Pairs, true>)(dst, src, stride, bytes, weights,
                                                                                  scale);
}

void AverageWideBytes(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t bytes,
                      const RowWeights& weights, float reciprocal) {
    const PairWeights pairs = WeightsOfPairs(weights, WordPair);
    ForEachPlace(bytes, [&](std::size_t i) {
        Vec sums[4] = {Zero(), Zero(), Zero(), Zero()};
        const auto add = [&](const std::uint8_t* a, const std::uint8_t* b, Vec weight) {
            const Vec x = Load(a);
            const Vec y = Load(b);
            const Vec low = UnpackLow8(x, y);
            const Vec high = UnpackHigh8(x, y);
            sums[0] = Add32(sums[0], MulAddPairs16(UnpackLow8(low, Zero()), weight));
            sums[1] = Add32(sums[1], MulAddPairs16(UnpackHigh8(low, Zero()), weight));
            sums[2] = Add32(sums[2], MulAddPairs16(UnpackLow8(high, Zero()), weight));
            sums[3] = Add32(sums[3], MulAddPairs16(UnpackHigh8(high, Zero()), weight));
        };
        if (weights.count <= 2)
            ForEachPair<1>(src + i, stride, weights.count, pairs, add);
        else
            ForEachPair<0>(src + i, stride, weights.count, pairs, add);
        for (Vec& sum : sums) sum = ScaleAndRound32(sum, reciprocal);
        Store(dst + i, Pack16To8u(Pack32To16s(sums[0], sums[1]), Pack32To16s(sums[2], sums[3])));
    });
}

// Words are moved to the signed range for the product; the weights add up to `total`, so that 32768 times as much is
// missing from the sum and is what it starts with.
void AverageWords(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t bytes,
                  const RowWeights& weights, float reciprocal, std::uint32_t total) {
    const PairWeights pairs = WeightsOfPairs(weights, WordPair);
    const Vec flip = Set16(-0x8000);
    const Vec start = Set32(static_cast<int>(total << 15));
    ForEachPlace(bytes, [&](std::size_t i) {
        Vec low = start;
        Vec high = start;
        const auto add = [&](const std::uint8_t* a, const std::uint8_t* b, Vec weight) {
            const Vec x = Xor(Load(a), flip);
            const Vec y = Xor(Load(b), flip);
            low = Add32(low, MulAddPairs16(UnpackLow16(x, y), weight));
            high = Add32(high, MulAddPairs16(UnpackHigh16(x, y), weight));
        };
        if (weights.count <= 2)
            ForEachPair<1>(src + i, stride, weights.count, pairs, add);
        else
            ForEachPair<0>(src + i, stride, weights.count, pairs, add);
        Store(dst + i, Pack32To16u(ScaleAndRound32(low, reciprocal), ScaleAndRound32(high, reciprocal)));
    });
}

/// Whether 16-bit weights and 32-bit sums hold an average of samples up to `limit`.
inline bool FitsWide(const AreaSpan& span, std::uint64_t total, std::uint32_t limit) {
    return span.innerWeight <= 0x7FFF && total * limit <= 0x7FFFFFFF;
}

inline std::uint64_t TotalWeight(const AreaSpan& span) {
    return std::uint64_t{span.firstWeight} + std::uint64_t{span.count - 2} * span.innerWeight + span.lastWeight;
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::MeanRows8(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    if (samples < kVecBytes)
        plain::MeanRows8(dst, a, b, samples);
    else
        ForEachPlace(samples, [&](std::size_t i) { Store(dst + i, Avg8(Load(a + i), Load(b + i))); });
}

void PIXMORPH_SIMD::MeanRows16(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    if (2 * samples < kVecBytes)
        plain::MeanRows16(dst, a, b, samples);
    else
        ForEachPlace(2 * samples, [&](std::size_t i) { Store(dst + i, Avg16(Load(a + i), Load(b + i))); });
}

// As for lines across: the negated weight times later - earlier fits the rounding product of 16 bits.
void PIXMORPH_SIMD::LinearRows8(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later,
                                std::size_t samples, std::int32_t weight) {
    if (samples < kVecBytes) {
        plain::LinearRows8(dst, earlier, later, samples, weight);
        return;
    }
    const Vec laterMinusEarlier = Set16(0x01FF);
    const Vec negated = Set16(-weight);
    const auto mix = [&](Vec pairs) {
        return Add16(ShiftRight16u<8>(pairs), MulHighRound16(MulAddPairs8(pairs, laterMinusEarlier), negated));
    };
    ForEachPlace(samples, [&](std::size_t i) {
        const Vec x = Load(earlier + i);
        const Vec y = Load(later + i);
        Store(dst + i, Pack16To8u(mix(UnpackLow8(x, y)), mix(UnpackHigh8(x, y))));
    });
}

void PIXMORPH_SIMD::LinearRows16(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later,
                                 std::size_t samples, std::int32_t weight) {
    if (2 * samples < kVecBytes) {
        plain::LinearRows16(dst, earlier, later, samples, weight);
        return;
    }
    const Vec factor = Set32(weight);
    const Vec half = Set32(0x4000);
    const auto mix = [&](Vec x, Vec y) {
        return Add32(y, ShiftRight32s<15>(Add32(MulLow32(Sub32(x, y), factor), half)));
    };
    ForEachPlace(2 * samples, [&](std::size_t i) {
        const Vec x = Load(earlier + i);
        const Vec y = Load(later + i);
        Store(dst + i, Pack32To16u(mix(UnpackLow16(x, Zero()), UnpackLow16(y, Zero())),
                                   mix(UnpackHigh16(x, Zero()), UnpackHigh16(y, Zero()))));
    });
}

void PIXMORPH_SIMD::AreaRows8(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,
                              const AreaSpan& span, const AreaScale& scale) {
    if (samples < kVecBytes || !(scale.narrow || FitsWide(span, TotalWeight(span), 255))) {
        plain::AreaRows8(dst, src, stride, samples, span, scale);
        return;
    }
    const std::uint32_t divisor = scale.narrow ? scale.divisor : 1;
    const RowWeights weights{span.firstWeight / divisor, span.innerWeight / divisor, span.lastWeight / divisor,
                             span.count};
    if (!scale.narrow)
        AverageWideBytes(dst, src, stride, samples, weights, scale.reciprocal);
    else if (span.count <= 2)
        AverageNarrowAny<1>(dst, src, stride, samples, weights, scale);
    else if (span.count <= 4)
        AverageNarrowAny<2>(dst, src, stride, samples, weights, scale);
    else
        AverageNarrowAny<0>(dst, src, stride, samples, weights, scale);
}

void PIXMORPH_SIMD::AreaRows16(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,
                               const AreaSpan& span, const AreaScale& scale) {
    const std::uint64_t total = TotalWeight(span);
    if (2 * samples < kVecBytes || !FitsWide(span, total, 65535)) {
        plain::AreaRows16(dst, src, stride, samples, span, scale);
        return;
    }
    const RowWeights weights{span.firstWeight, span.innerWeight, span.lastWeight, span.count};
    AverageWords(dst, src, stride, 2 * samples, weights, scale.reciprocal, static_cast<std::uint32_t>(total));
}

}  // namespace KorvaneSoftware
