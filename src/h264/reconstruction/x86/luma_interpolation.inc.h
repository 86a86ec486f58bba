// Luma interpolation over the registers of the including file, for rows that fill them (of 4 bytes: half of them).
#include "h264/reconstruction/x86/inter_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "h264/reconstruction/x86/sample_lanes.inc.h"

// a - 5b + 20c + 20d - 5e + f. Sums of bytes lie within 16 bits.
template <class Lanes>
Vec Filter(Vec a, Vec b, Vec c, Vec d, Vec e, Vec f) {
    const Vec inner = Lanes::Sub(Lanes::template ShiftLeft<2>(Lanes::Add(c, d)), Lanes::Add(b, e));
    return Lanes::Add(Lanes::Add(Lanes::Add(a, f), inner), Lanes::template ShiftLeft<2>(inner));
}

// The same of sums, rounded and scaled to samples.
Vec FilterSums(ByteLanes, const Vec (&v)[6]) {
    const Vec outer = Add16(v[0], v[5]), middle = Add16(v[1], v[4]), inner = Add16(v[2], v[3]);
    const Vec outerWeights = Set32(static_cast<int>(0xFFFB0001u));  // 1, -5
    const Vec innerWeights = Set32(0x00010014);                     // 20, 1
    const Vec round = Set16(512);
    const Vec low = Add32(MulAddPairs16(UnpackLow16(outer, middle), outerWeights),
                          MulAddPairs16(UnpackLow16(inner, round), innerWeights));
    const Vec high = Add32(MulAddPairs16(UnpackHigh16(outer, middle), outerWeights),
                           MulAddPairs16(UnpackHigh16(inner, round), innerWeights));
    return Pack32To16s(ShiftRight32s<10>(low), ShiftRight32s<10>(high));
}
Vec FilterSums(WordLanes, const Vec (&v)[6]) {
    return ShiftRight32s<10>(Add32(Filter<WordLanes>(v[0], v[1], v[2], v[3], v[4], v[5]), Set32(512)));
}

// Half samples down a column of registers, row by row. Rows are taken as pairs of neighbours: a pair is the upper, then
// the middle, then the lower one of three. Nothing is read where it is not used.
template <class Lanes, int kCount, bool kUsed>
class DownFilter {
public:
    using Sample = typename Lanes::Sample;

    DownFilter(const Sample* p, std::ptrdiff_t stride) : next_(p + 3 * stride), stride_(stride) {
        if constexpr (!kUsed) return;
        Vec row = Lanes::template LoadRow<kCount>(p - 2 * stride);
        for (int i = 0; i < 4; ++i) {
            last_ = Lanes::template LoadRow<kCount>(p + (i - 1) * stride);
            pairs_[i] = Lanes::Pairs(row, last_);
            row = last_;
        }
    }
    // The sums of the next row.
    Vec Next() {
        const Vec row = Lanes::template LoadRow<kCount>(next_);
        pairs_[4] = Lanes::Pairs(last_, row);
        last_ = row;
        next_ += stride_;
        const Vec outer = Lanes::Add(Lanes::MultiplyPairs(pairs_[0], Lanes::PairWeights(1, -5)),
                                     Lanes::MultiplyPairs(pairs_[4], Lanes::PairWeights(-5, 1)));
        const Vec sum = Lanes::Add(outer, Lanes::MultiplyPairs(pairs_[2], Lanes::PairWeights(20, 20)));
        for (int i = 0; i < 4; ++i) pairs_[i] = pairs_[i + 1];
        return sum;
    }

private:
    const Sample* next_;
    std::ptrdiff_t stride_;
    Vec last_, pairs_[5];
};

// One register's columns.
template <class Lanes, int kCount>
struct Columns {
    using Sample = typename Lanes::Sample;
    std::ptrdiff_t stride;
    Vec maxSample;

    static Vec At(const Sample* p) { return Lanes::template LoadSamples<kCount>(p); }
    static Vec SumAcross(const Sample* p) {
        return Filter<Lanes>(At(p - 2), At(p - 1), At(p), At(p + 1), At(p + 2), At(p + 3));
    }
    Vec Half(Vec sum) const {
        return Lanes::Clip(Lanes::template ShiftRight<5>(Lanes::Add(sum, Lanes::Set(16))), maxSample);
    }
    Vec Across(const Sample* p) const { return Half(SumAcross(p)); }
    static Vec Mean(Vec a, Vec b) { return Lanes::template ShiftRight<1>(Lanes::Add(Lanes::Add(a, b), Lanes::Set(1))); }

    template <int kX, int kY>
    void Run(Sample* dst, std::ptrdiff_t dstStride, const Sample* p, int height) const {
        constexpr bool kCentre = (kX == 2 && kY != 0) || (kY == 2 && kX != 0);
        DownFilter<Lanes, kCount, kX != 2 && kY != 0> down(p + (kX == 3 ? 1 : 0), stride);
        // Sums of the rows about the centre: each is taken once and moves up.
        Vec sums[6];
        if constexpr (kCentre)
            for (int i = 0; i < 5; ++i) sums[i] = SumAcross(p + (i - 2) * stride);
        for (int y = 0; y < height; ++y, dst += dstStride, p += stride) {
            const Sample* const below = p + (kY == 3 ? stride : 0);
            Vec value;
            if constexpr (kCentre) {
                sums[5] = SumAcross(p + 3 * stride);
                value = Lanes::Clip(FilterSums(Lanes(), sums), maxSample);
                if constexpr (kX != 2)
                    value = Mean(value, Half(down.Next()));
                else if constexpr (kY != 2)
                    value = Mean(value, Half(sums[kY == 3 ? 3 : 2]));
                for (int i = 0; i < 5; ++i) sums[i] = sums[i + 1];
            } else if constexpr (kX == 0 && kY == 0) {
                value = At(p);
            } else if constexpr (kY == 0) {
                value = kX == 2 ? Across(p) : Mean(Across(p), At(p + (kX == 3 ? 1 : 0)));
            } else if constexpr (kX == 0) {
                const Vec half = Half(down.Next());
                value = kY == 2 ? half : Mean(half, At(below));
            } else {
                value = Mean(Across(below), Half(down.Next()));
            }
            Lanes::template StoreSamples<kCount>(dst, value);
        }
    }
};

template <class Lanes, int kWidth, int kX, int kY>
void Interpolate(typename Lanes::Sample* dst, std::ptrdiff_t dstStride, const typename Lanes::Sample* src,
                 std::ptrdiff_t srcStride, int height, int maxSample) {
    constexpr int kCount = kWidth < Lanes::kSamples ? kWidth : Lanes::kSamples;
    const Columns<Lanes, kCount> columns = {srcStride, Lanes::Set(maxSample)};
    for (int x = 0; x < kWidth; x += kCount) columns.template Run<kX, kY>(dst + x, dstStride, src + x, height);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

template <int kWidth, int kXFraction, int kYFraction>
void PIXMORPH_SIMD::H264LumaBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* src,
                                  std::ptrdiff_t srcStride, int height, std::uint32_t) {
    Interpolate<ByteLanes, kWidth, kXFraction, kYFraction>(dst, dstStride, src, srcStride, height, 255);
}

template <int kWidth, int kXFraction, int kYFraction>
void PIXMORPH_SIMD::H264LumaWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* src,
                                  std::ptrdiff_t srcStride, int height, std::uint32_t bitDepth) {
    Interpolate<WordLanes, kWidth, kXFraction, kYFraction>(dst, dstStride, src, srcStride, height, (1 << bitDepth) - 1);
}

}  // namespace KorvaneSoftware
