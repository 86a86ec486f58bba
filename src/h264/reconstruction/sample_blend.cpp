#include "h264/reconstruction/inter_prediction.h"
#include "h264/reconstruction/x86/inter_forms.h"

namespace KorvaneSoftware {
namespace {

template <int kWidth, class Sample>
void InterpolateChroma(Sample* dst, std::ptrdiff_t dstStride, const Sample* src, std::ptrdiff_t srcStride, int height,
                       int xFraction, int yFraction) {
    // What has weight 0 is not looked for outside the block.
    const int right = xFraction != 0 ? 1 : 0;
    const std::ptrdiff_t below = yFraction != 0 ? srcStride : 0;
    for (int y = 0; y < height; ++y, dst += dstStride, src += srcStride) {
        for (int x = 0; x < kWidth; ++x) {
            const int upper = (8 - xFraction) * src[x] + xFraction * src[x + right];
            const int lower = (8 - xFraction) * src[x + below] + xFraction * src[x + below + right];
            dst[x] = static_cast<Sample>(((8 - yFraction) * upper + yFraction * lower + 32) >> 6);
        }
    }
}

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

#define PIXMORPH_H264_DEFINE_BLEND(Kind, Sample, width)                                                                \
    void plain::H264Average##width##Kind(Sample* dst, std::ptrdiff_t dstStride, const Sample* other,                   \
                                         std::ptrdiff_t otherStride, int height) {                                     \
        Average<width>(dst, dstStride, other, otherStride, height);                                                    \
    }                                                                                                                  \
    void plain::H264Weight##width##Kind(Sample* dst, std::ptrdiff_t dstStride, int height, const H264Weights& weights, \
                                        std::uint32_t bitDepth) {                                                      \
        Weight<width>(dst, dstStride, height, weights, bitDepth);                                                      \
    }                                                                                                                  \
    void plain::H264WeightBoth##width##Kind(Sample* dst, std::ptrdiff_t dstStride, const Sample* other,                \
                                            std::ptrdiff_t otherStride, int height, const H264Weights& weights,        \
                                            std::uint32_t bitDepth) {                                                  \
        WeightBoth<width>(dst, dstStride, other, otherStride, height, weights, bitDepth);                              \
    }
#define PIXMORPH_H264_DEFINE_CHROMA(Kind, Sample, width)                                                      \
    void plain::H264Chroma##width##Kind(Sample* dst, std::ptrdiff_t dstStride, const Sample* src,             \
                                        std::ptrdiff_t srcStride, int height, int xFraction, int yFraction) { \
        InterpolateChroma<width>(dst, dstStride, src, srcStride, height, xFraction, yFraction);               \
    }
PIXMORPH_H264_DEFINE_CHROMA(Bytes, std::uint8_t, 2)
PIXMORPH_H264_DEFINE_CHROMA(Bytes, std::uint8_t, 4)
PIXMORPH_H264_DEFINE_CHROMA(Bytes, std::uint8_t, 8)
PIXMORPH_H264_DEFINE_CHROMA(Words, std::uint16_t, 2)
PIXMORPH_H264_DEFINE_CHROMA(Words, std::uint16_t, 4)
PIXMORPH_H264_DEFINE_CHROMA(Words, std::uint16_t, 8)
PIXMORPH_H264_DEFINE_BLEND(Bytes, std::uint8_t, 2)
PIXMORPH_H264_DEFINE_BLEND(Bytes, std::uint8_t, 4)
PIXMORPH_H264_DEFINE_BLEND(Bytes, std::uint8_t, 8)
PIXMORPH_H264_DEFINE_BLEND(Bytes, std::uint8_t, 16)
PIXMORPH_H264_DEFINE_BLEND(Words, std::uint16_t, 2)
PIXMORPH_H264_DEFINE_BLEND(Words, std::uint16_t, 4)
PIXMORPH_H264_DEFINE_BLEND(Words, std::uint16_t, 8)
PIXMORPH_H264_DEFINE_BLEND(Words, std::uint16_t, 16)
#undef PIXMORPH_H264_DEFINE_BLEND
#undef PIXMORPH_H264_DEFINE_CHROMA

// Two samples are too few for registers, and one of SSE4.1 holds most rows.
#define PIXMORPH_H264_PLAIN(name) \
    { plain::name, nullptr, nullptr, nullptr }
#define PIXMORPH_H264_SSE41(name) \
    { plain::name, simd_sse41::name, nullptr, nullptr }
#define PIXMORPH_H264_AVX2(name) \
    { plain::name, simd_sse41::name, simd_avx2::name, nullptr }

PIXMORPH_SLOT_TABLE(H264InterpolateChromaBytes, 3, H264ChromaBytes, PIXMORPH_H264_PLAIN(H264Chroma2Bytes),
                    PIXMORPH_H264_SSE41(H264Chroma4Bytes), PIXMORPH_H264_SSE41(H264Chroma8Bytes));
PIXMORPH_SLOT_TABLE(H264InterpolateChromaWords, 3, H264ChromaWords, PIXMORPH_H264_PLAIN(H264Chroma2Words),
                    PIXMORPH_H264_SSE41(H264Chroma4Words), PIXMORPH_H264_AVX2(H264Chroma8Words));
PIXMORPH_SLOT_TABLE(H264AverageSignatureBytes, 4, H264AverageBytes, PIXMORPH_H264_PLAIN(H264Average2Bytes),
                    PIXMORPH_H264_SSE41(H264Average4Bytes), PIXMORPH_H264_PLAIN(H264Average8Bytes),
                    PIXMORPH_H264_PLAIN(H264Average16Bytes));
PIXMORPH_SLOT_TABLE(H264AverageSignatureWords, 4, H264AverageWords, PIXMORPH_H264_PLAIN(H264Average2Words),
                    PIXMORPH_H264_PLAIN(H264Average4Words), PIXMORPH_H264_PLAIN(H264Average8Words),
                    PIXMORPH_H264_AVX2(H264Average16Words));
PIXMORPH_SLOT_TABLE(H264WeightSignatureBytes, 4, H264WeightBytes, PIXMORPH_H264_PLAIN(H264Weight2Bytes),
                    PIXMORPH_H264_SSE41(H264Weight4Bytes), PIXMORPH_H264_SSE41(H264Weight8Bytes),
                    PIXMORPH_H264_AVX2(H264Weight16Bytes));
PIXMORPH_SLOT_TABLE(H264WeightSignatureWords, 4, H264WeightWords, PIXMORPH_H264_PLAIN(H264Weight2Words),
                    PIXMORPH_H264_SSE41(H264Weight4Words), PIXMORPH_H264_AVX2(H264Weight8Words),
                    PIXMORPH_H264_AVX2(H264Weight16Words));
PIXMORPH_SLOT_TABLE(H264WeightBothSignatureBytes, 4, H264WeightBothBytes, PIXMORPH_H264_PLAIN(H264WeightBoth2Bytes),
                    PIXMORPH_H264_SSE41(H264WeightBoth4Bytes), PIXMORPH_H264_SSE41(H264WeightBoth8Bytes),
                    PIXMORPH_H264_AVX2(H264WeightBoth16Bytes));
PIXMORPH_SLOT_TABLE(H264WeightBothSignatureWords, 4, H264WeightBothWords, PIXMORPH_H264_PLAIN(H264WeightBoth2Words),
                    PIXMORPH_H264_SSE41(H264WeightBoth4Words), PIXMORPH_H264_AVX2(H264WeightBoth8Words),
                    PIXMORPH_H264_AVX2(H264WeightBoth16Words));

#undef PIXMORPH_H264_PLAIN
#undef PIXMORPH_H264_SSE41
#undef PIXMORPH_H264_AVX2

}  // namespace KorvaneSoftware
