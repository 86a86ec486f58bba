#include "h264/reconstruction/inter_prediction.h"
#include "h264/reconstruction/x86/inter_forms.h"

namespace KorvaneSoftware {
namespace {

template <int kWidth, class Sample>
void Average(Sample* dst, std::ptrdiff_t dstStride, const Sample* other, std::ptrdiff_t otherStride, int height) {
    for (int y = 0; y < height; ++y, dst += dstStride, other += otherStride)
        for (int x = 0; x < kWidth; ++x) dst[x] = static_cast<Sample>((dst[x] + other[x] + 1) >> 1);
}

template <int kWidth, class Sample>
void Weight(Sample* dst, std::ptrdiff_t dstStride, int height, const H264Weights& weights, std::uint32_t bitDepth) {
    const int maxSample = TH264SampleType<Sample>::MaxSample(bitDepth);
    const int round = (1 << weights.logDenominator) >> 1;
    for (int y = 0; y < height; ++y, dst += dstStride) {
        for (int x = 0; x < kWidth; ++x) {
            const int weighted = (dst[x] * weights.weights[0] + round) >> weights.logDenominator;
            dst[x] = ClipH264Sample<Sample>(weighted + weights.offset, maxSample);
        }
    }
}

template <int kWidth, class Sample>
void WeightBoth(Sample* dst, std::ptrdiff_t dstStride, const Sample* other, std::ptrdiff_t otherStride, int height,
                const H264Weights& weights, std::uint32_t bitDepth) {
    const int maxSample = TH264SampleType<Sample>::MaxSample(bitDepth);
    const int round = 1 << weights.logDenominator;
    for (int y = 0; y < height; ++y, dst += dstStride, other += otherStride) {
        for (int x = 0; x < kWidth; ++x) {
            const int sum = dst[x] * weights.weights[0] + other[x] * weights.weights[1] + round;
            dst[x] = ClipH264Sample<Sample>((sum >> (weights.logDenominator + 1)) + weights.offset, maxSample);
        }
    }
}

}  // namespace

template <int kWidth>
void plain::H264AverageBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* other,
                             std::ptrdiff_t otherStride, int height) {
    Average<kWidth>(dst, dstStride, other, otherStride, height);
}
template <int kWidth>
void plain::H264WeightBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, int height, const H264Weights& weights,
                            std::uint32_t bitDepth) {
    Weight<kWidth>(dst, dstStride, height, weights, bitDepth);
}
template <int kWidth>
void plain::H264WeightBothBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* other,
                                std::ptrdiff_t otherStride, int height, const H264Weights& weights,
                                std::uint32_t bitDepth) {
    WeightBoth<kWidth>(dst, dstStride, other, otherStride, height, weights, bitDepth);
}

template <int kWidth>
void plain::H264AverageWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* other,
                             std::ptrdiff_t otherStride, int height) {
    Average<kWidth>(dst, dstStride, other, otherStride, height);
}
template <int kWidth>
void plain::H264WeightWords(std::uint16_t* dst, std::ptrdiff_t dstStride, int height, const H264Weights& weights,
                            std::uint32_t bitDepth) {
    Weight<kWidth>(dst, dstStride, height, weights, bitDepth);
}
template <int kWidth>
void plain::H264WeightBothWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* other,
                                std::ptrdiff_t otherStride, int height, const H264Weights& weights,
                                std::uint32_t bitDepth) {
    WeightBoth<kWidth>(dst, dstStride, other, otherStride, height, weights, bitDepth);
}

// Two samples are too few for registers, and one of SSE4.1 holds most rows.
PIXMORPH_SLOT_TABLE(H264AverageSignatureBytes, 4, H264AverageBytes,
                    {plain::H264AverageBytes<2>, nullptr, nullptr, nullptr},
                    {plain::H264AverageBytes<4>, simd_sse41::H264AverageBytes<4>, nullptr, nullptr},
                    {plain::H264AverageBytes<8>, nullptr, nullptr, nullptr},
                    {plain::H264AverageBytes<16>, nullptr, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264AverageSignatureWords, 4, H264AverageWords,
                    {plain::H264AverageWords<2>, nullptr, nullptr, nullptr},
                    {plain::H264AverageWords<4>, nullptr, nullptr, nullptr},
                    {plain::H264AverageWords<8>, nullptr, nullptr, nullptr},
                    {plain::H264AverageWords<16>, simd_sse41::H264AverageWords<16>, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264WeightSignatureBytes, 4, H264WeightBytes,
                    {plain::H264WeightBytes<2>, nullptr, nullptr, nullptr},
                    {plain::H264WeightBytes<4>, simd_sse41::H264WeightBytes<4>, nullptr, nullptr},
                    {plain::H264WeightBytes<8>, simd_sse41::H264WeightBytes<8>, nullptr, nullptr},
                    {plain::H264WeightBytes<16>, simd_sse41::H264WeightBytes<16>, simd_avx2::H264WeightBytes<16>,
                     nullptr});
PIXMORPH_SLOT_TABLE(H264WeightSignatureWords, 4, H264WeightWords,
                    {plain::H264WeightWords<2>, nullptr, nullptr, nullptr},
                    {plain::H264WeightWords<4>, simd_sse41::H264WeightWords<4>, nullptr, nullptr},
                    {plain::H264WeightWords<8>, simd_sse41::H264WeightWords<8>, simd_avx2::H264WeightWords<8>, nullptr},
                    {plain::H264WeightWords<16>, simd_sse41::H264WeightWords<16>, simd_avx2::H264WeightWords<16>,
                     nullptr});
PIXMORPH_SLOT_TABLE(H264WeightBothSignatureBytes, 4, H264WeightBothBytes,
                    {plain::H264WeightBothBytes<2>, nullptr, nullptr, nullptr},
                    {plain::H264WeightBothBytes<4>, simd_sse41::H264WeightBothBytes<4>, nullptr, nullptr},
                    {plain::H264WeightBothBytes<8>, simd_sse41::H264WeightBothBytes<8>, nullptr, nullptr},
                    {plain::H264WeightBothBytes<16>, simd_sse41::H264WeightBothBytes<16>,
                     simd_avx2::H264WeightBothBytes<16>, nullptr});
PIXMORPH_SLOT_TABLE(
    H264WeightBothSignatureWords, 4, H264WeightBothWords, {plain::H264WeightBothWords<2>, nullptr, nullptr, nullptr},
    {plain::H264WeightBothWords<4>, simd_sse41::H264WeightBothWords<4>, nullptr, nullptr},
    {plain::H264WeightBothWords<8>, simd_sse41::H264WeightBothWords<8>, simd_avx2::H264WeightBothWords<8>, nullptr},
    {plain::H264WeightBothWords<16>, simd_sse41::H264WeightBothWords<16>, simd_avx2::H264WeightBothWords<16>, nullptr});

}  // namespace KorvaneSoftware
