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

}  // namespace

template <int kWidth>
void plain::H264ChromaBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* src,
                            std::ptrdiff_t srcStride, int height, int xFraction, int yFraction) {
    InterpolateChroma<kWidth>(dst, dstStride, src, srcStride, height, xFraction, yFraction);
}

template <int kWidth>
void plain::H264ChromaWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* src,
                            std::ptrdiff_t srcStride, int height, int xFraction, int yFraction) {
    InterpolateChroma<kWidth>(dst, dstStride, src, srcStride, height, xFraction, yFraction);
}

PIXMORPH_SLOT_TABLE(H264InterpolateChromaBytes, 3, H264ChromaBytes,
                    {plain::H264ChromaBytes<2>, simd_sse41::H264ChromaBytes<2>, nullptr, nullptr},
                    {plain::H264ChromaBytes<4>, simd_sse41::H264ChromaBytes<4>, nullptr, nullptr},
                    {plain::H264ChromaBytes<8>, simd_sse41::H264ChromaBytes<8>, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264InterpolateChromaWords, 3, H264ChromaWords,
                    {plain::H264ChromaWords<2>, simd_sse41::H264ChromaWords<2>, nullptr, nullptr},
                    {plain::H264ChromaWords<4>, simd_sse41::H264ChromaWords<4>, nullptr, nullptr},
                    {plain::H264ChromaWords<8>, simd_sse41::H264ChromaWords<8>, nullptr, nullptr});

}  // namespace KorvaneSoftware
