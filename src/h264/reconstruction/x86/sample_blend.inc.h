// Averages and weights over the registers of the including file.
#include "h264/reconstruction/x86/inter_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "h264/reconstruction/x86/sample_lanes.inc.h"

template <class Lanes, int kWidth>
constexpr int kStep = kWidth < Lanes::kSamples ? kWidth : Lanes::kSamples;

// Rows fill whole registers, or are four bytes.
template <class Lanes, int kWidth>
void Average(typename Lanes::Sample* dst, std::ptrdiff_t dstStride, const typename Lanes::Sample* other,
             std::ptrdiff_t otherStride, int height) {
    constexpr int kSamples = static_cast<int>(kVecBytes / sizeof(typename Lanes::Sample));
    for (int y = 0; y < height; ++y, dst += dstStride, other += otherStride) {
        if constexpr (kWidth < kSamples) {
            int first, second;
            __builtin_memcpy(&first, dst, sizeof(first));
            __builtin_memcpy(&second, other, sizeof(second));
            const Vec mean = Lanes::MeanOfRows(Set32(first), Set32(second));
            __builtin_memcpy(dst, &mean, sizeof(first));
        } else {
            for (int x = 0; x < kWidth; x += kSamples)
                Store(dst + x, Lanes::MeanOfRows(Load(dst + x), Load(other + x)));
        }
    }
}

// Weighted sums of two predictions' lanes; `weights` holds both in each 32 bits.
struct WeightedSum {
    Vec weights, round;
    int shift;

    WeightedSum(int first, int second, int roundBy, int shiftBy)
        : weights(
              Set32(static_cast<int>((static_cast<unsigned>(first) & 0xFFFF) | static_cast<unsigned>(second) << 16))),
          round(Set32(roundBy)),
          shift(shiftBy) {}
    Vec Scaled(Vec pairs) const { return ShiftRight32sBy(Add32(MulAddPairs16(pairs, weights), round), shift); }
    Vec Of(ByteLanes, Vec a, Vec b, Vec offset) const {
        return Add16(Pack32To16s(Scaled(UnpackLow16(a, b)), Scaled(UnpackHigh16(a, b))), offset);
    }
    Vec Of(WordLanes, Vec a, Vec b, Vec offset) const { return Add32(Scaled(Or(a, ShiftLeft32<16>(b))), offset); }
};

template <class Lanes, int kWidth>
void WeightBoth(typename Lanes::Sample* dst, std::ptrdiff_t dstStride, const typename Lanes::Sample* other,
                std::ptrdiff_t otherStride, int height, const H264Weights& weights, int maxSample) {
    constexpr int kCount = kStep<Lanes, kWidth>;
    const WeightedSum sum(weights.weights[0], weights.weights[1], 1 << weights.logDenominator,
                          weights.logDenominator + 1);
    const Vec offset = Lanes::Set(weights.offset), top = Lanes::Set(maxSample);
    for (int y = 0; y < height; ++y, dst += dstStride, other += otherStride) {
        for (int x = 0; x < kWidth; x += kCount) {
            const Vec value = sum.Of(Lanes(), Lanes::template LoadSamples<kCount>(dst + x),
                                     Lanes::template LoadSamples<kCount>(other + x), offset);
            Lanes::template StoreSamples<kCount>(dst + x, Lanes::Clip(value, top));
        }
    }
}

template <class Lanes, int kWidth>
void Weight(typename Lanes::Sample* dst, std::ptrdiff_t dstStride, int height, const H264Weights& weights,
            int maxSample) {
    constexpr int kCount = kStep<Lanes, kWidth>;
    const WeightedSum sum(weights.weights[0], 0, (1 << weights.logDenominator) >> 1, weights.logDenominator);
    const Vec offset = Lanes::Set(weights.offset), top = Lanes::Set(maxSample);
    for (int y = 0; y < height; ++y, dst += dstStride) {
        for (int x = 0; x < kWidth; x += kCount) {
            const Vec value = sum.Of(Lanes(), Lanes::template LoadSamples<kCount>(dst + x), Zero(), offset);
            Lanes::template StoreSamples<kCount>(dst + x, Lanes::Clip(value, top));
        }
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

template <int kWidth>
void PIXMORPH_SIMD::H264AverageBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* other,
                                     std::ptrdiff_t otherStride, int height) {
    Average<ByteLanes, kWidth>(dst, dstStride, other, otherStride, height);
}
template <int kWidth>
void PIXMORPH_SIMD::H264WeightBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, int height, const H264Weights& weights,
                                    std::uint32_t) {
    Weight<ByteLanes, kWidth>(dst, dstStride, height, weights, 255);
}
template <int kWidth>
void PIXMORPH_SIMD::H264WeightBothBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* other,
                                        std::ptrdiff_t otherStride, int height, const H264Weights& weights,
                                        std::uint32_t) {
    WeightBoth<ByteLanes, kWidth>(dst, dstStride, other, otherStride, height, weights, 255);
}

template <int kWidth>
void PIXMORPH_SIMD::H264AverageWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* other,
                                     std::ptrdiff_t otherStride, int height) {
    Average<WordLanes, kWidth>(dst, dstStride, other, otherStride, height);
}
template <int kWidth>
void PIXMORPH_SIMD::H264WeightWords(std::uint16_t* dst, std::ptrdiff_t dstStride, int height,
                                    const H264Weights& weights, std::uint32_t bitDepth) {
    Weight<WordLanes, kWidth>(dst, dstStride, height, weights, (1 << bitDepth) - 1);
}
template <int kWidth>
void PIXMORPH_SIMD::H264WeightBothWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* other,
                                        std::ptrdiff_t otherStride, int height, const H264Weights& weights,
                                        std::uint32_t bitDepth) {
    WeightBoth<WordLanes, kWidth>(dst, dstStride, other, otherStride, height, weights, (1 << bitDepth) - 1);
}

}  // namespace KorvaneSoftware
