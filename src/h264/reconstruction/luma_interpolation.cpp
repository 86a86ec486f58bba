#include "h264/reconstruction/inter_prediction.h"
#include "h264/reconstruction/x86/inter_forms.h"

namespace KorvaneSoftware {
namespace {

template <class Sample>
struct Interpolation {
    std::ptrdiff_t stride;
    int maxSample;

    template <class Value>
    static int Filter(Value at) {
        return at(-2) - 5 * at(-1) + 20 * at(0) + 20 * at(1) - 5 * at(2) + at(3);
    }
    int Clip(int value) const { return ClipH264Sample<Sample>(value, maxSample); }
    static int SumAcross(const Sample* p) {
        return Filter([&](int i) { return int{p[i]}; });
    }
    // The half samples right of p, below it, and at the centre between p and its neighbour right and below.
    int Across(const Sample* p) const { return Clip((SumAcross(p) + 16) >> 5); }
    int Down(const Sample* p) const {
        return Clip((Filter([&](int i) { return int{p[i * stride]}; }) + 16) >> 5);
    }
    int Centre(const Sample* p) const {
        return Clip((Filter([&](int i) { return SumAcross(p + i * stride); }) + 512) >> 10);
    }
    // A quarter sample is the mean of the two nearest whole and half samples; between diagonals of half samples.
    template <int kX, int kY>
    int At(const Sample* p) const {
        const Sample* const below = p + (kY == 3 ? stride : 0);
        const Sample* const right = p + (kX == 3 ? 1 : 0);
        if constexpr (kX == 0 && kY == 0) return *p;
        if constexpr (kX == 2 && kY == 0) return Across(p);
        if constexpr (kX == 0 && kY == 2) return Down(p);
        if constexpr (kX == 2 && kY == 2) return Centre(p);
        if constexpr (kY == 0) return (Across(p) + *right + 1) >> 1;
        if constexpr (kX == 0) return (Down(p) + *below + 1) >> 1;
        if constexpr (kX == 2) return (Centre(p) + Across(below) + 1) >> 1;
        if constexpr (kY == 2) return (Centre(p) + Down(right) + 1) >> 1;
        return (Across(below) + Down(right) + 1) >> 1;
    }
};

template <int kWidth, int kX, int kY, class Sample>
void Interpolate(Sample* dst, std::ptrdiff_t dstStride, const Sample* src, std::ptrdiff_t srcStride, int height,
                 std::uint32_t bitDepth) {
    const Interpolation<Sample> plane = {srcStride, TH264SampleType<Sample>::MaxSample(bitDepth)};
    for (int y = 0; y < height; ++y, dst += dstStride, src += srcStride)
        for (int x = 0; x < kWidth; ++x) dst[x] = static_cast<Sample>(plane.template At<kX, kY>(src + x));
}

}  // namespace

template <int kWidth, int kXFraction, int kYFraction>
void plain::H264LumaBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* src,
                          std::ptrdiff_t srcStride, int height, std::uint32_t bitDepth) {
    Interpolate<kWidth, kXFraction, kYFraction>(dst, dstStride, src, srcStride, height, bitDepth);
}

template <int kWidth, int kXFraction, int kYFraction>
void plain::H264LumaWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* src,
                          std::ptrdiff_t srcStride, int height, std::uint32_t bitDepth) {
    Interpolate<kWidth, kXFraction, kYFraction>(dst, dstStride, src, srcStride, height, bitDepth);
}

// A compiler moves whole samples as well as a vector form does. Registers of AVX2 are filled by 16 bytes or 8 words that
// were widened.
// clang-format off
PIXMORPH_SLOT_TABLE(H264InterpolateLumaBytes, 48, H264LumaBytes,
    {plain::H264LumaBytes<4, 0, 0>, nullptr, nullptr, nullptr},
    {plain::H264LumaBytes<4, 1, 0>, simd_sse41::H264LumaBytes<4, 1, 0>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 2, 0>, simd_sse41::H264LumaBytes<4, 2, 0>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 3, 0>, simd_sse41::H264LumaBytes<4, 3, 0>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 0, 1>, simd_sse41::H264LumaBytes<4, 0, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 1, 1>, simd_sse41::H264LumaBytes<4, 1, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 2, 1>, simd_sse41::H264LumaBytes<4, 2, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 3, 1>, simd_sse41::H264LumaBytes<4, 3, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 0, 2>, simd_sse41::H264LumaBytes<4, 0, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 1, 2>, simd_sse41::H264LumaBytes<4, 1, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 2, 2>, simd_sse41::H264LumaBytes<4, 2, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 3, 2>, simd_sse41::H264LumaBytes<4, 3, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 0, 3>, simd_sse41::H264LumaBytes<4, 0, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 1, 3>, simd_sse41::H264LumaBytes<4, 1, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 2, 3>, simd_sse41::H264LumaBytes<4, 2, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<4, 3, 3>, simd_sse41::H264LumaBytes<4, 3, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 0, 0>, nullptr, nullptr, nullptr},
    {plain::H264LumaBytes<8, 1, 0>, simd_sse41::H264LumaBytes<8, 1, 0>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 2, 0>, simd_sse41::H264LumaBytes<8, 2, 0>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 3, 0>, simd_sse41::H264LumaBytes<8, 3, 0>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 0, 1>, simd_sse41::H264LumaBytes<8, 0, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 1, 1>, simd_sse41::H264LumaBytes<8, 1, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 2, 1>, simd_sse41::H264LumaBytes<8, 2, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 3, 1>, simd_sse41::H264LumaBytes<8, 3, 1>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 0, 2>, simd_sse41::H264LumaBytes<8, 0, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 1, 2>, simd_sse41::H264LumaBytes<8, 1, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 2, 2>, simd_sse41::H264LumaBytes<8, 2, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 3, 2>, simd_sse41::H264LumaBytes<8, 3, 2>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 0, 3>, simd_sse41::H264LumaBytes<8, 0, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 1, 3>, simd_sse41::H264LumaBytes<8, 1, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 2, 3>, simd_sse41::H264LumaBytes<8, 2, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<8, 3, 3>, simd_sse41::H264LumaBytes<8, 3, 3>, nullptr, nullptr},
    {plain::H264LumaBytes<16, 0, 0>, nullptr, nullptr, nullptr},
    {plain::H264LumaBytes<16, 1, 0>, simd_sse41::H264LumaBytes<16, 1, 0>, simd_avx2::H264LumaBytes<16, 1, 0>, nullptr},
    {plain::H264LumaBytes<16, 2, 0>, simd_sse41::H264LumaBytes<16, 2, 0>, simd_avx2::H264LumaBytes<16, 2, 0>, nullptr},
    {plain::H264LumaBytes<16, 3, 0>, simd_sse41::H264LumaBytes<16, 3, 0>, simd_avx2::H264LumaBytes<16, 3, 0>, nullptr},
    {plain::H264LumaBytes<16, 0, 1>, simd_sse41::H264LumaBytes<16, 0, 1>, simd_avx2::H264LumaBytes<16, 0, 1>, nullptr},
    {plain::H264LumaBytes<16, 1, 1>, simd_sse41::H264LumaBytes<16, 1, 1>, simd_avx2::H264LumaBytes<16, 1, 1>, nullptr},
    {plain::H264LumaBytes<16, 2, 1>, simd_sse41::H264LumaBytes<16, 2, 1>, simd_avx2::H264LumaBytes<16, 2, 1>, nullptr},
    {plain::H264LumaBytes<16, 3, 1>, simd_sse41::H264LumaBytes<16, 3, 1>, simd_avx2::H264LumaBytes<16, 3, 1>, nullptr},
    {plain::H264LumaBytes<16, 0, 2>, simd_sse41::H264LumaBytes<16, 0, 2>, simd_avx2::H264LumaBytes<16, 0, 2>, nullptr},
    {plain::H264LumaBytes<16, 1, 2>, simd_sse41::H264LumaBytes<16, 1, 2>, simd_avx2::H264LumaBytes<16, 1, 2>, nullptr},
    {plain::H264LumaBytes<16, 2, 2>, simd_sse41::H264LumaBytes<16, 2, 2>, simd_avx2::H264LumaBytes<16, 2, 2>, nullptr},
    {plain::H264LumaBytes<16, 3, 2>, simd_sse41::H264LumaBytes<16, 3, 2>, simd_avx2::H264LumaBytes<16, 3, 2>, nullptr},
    {plain::H264LumaBytes<16, 0, 3>, simd_sse41::H264LumaBytes<16, 0, 3>, simd_avx2::H264LumaBytes<16, 0, 3>, nullptr},
    {plain::H264LumaBytes<16, 1, 3>, simd_sse41::H264LumaBytes<16, 1, 3>, simd_avx2::H264LumaBytes<16, 1, 3>, nullptr},
    {plain::H264LumaBytes<16, 2, 3>, simd_sse41::H264LumaBytes<16, 2, 3>, simd_avx2::H264LumaBytes<16, 2, 3>, nullptr},
    {plain::H264LumaBytes<16, 3, 3>, simd_sse41::H264LumaBytes<16, 3, 3>, simd_avx2::H264LumaBytes<16, 3, 3>, nullptr});

PIXMORPH_SLOT_TABLE(H264InterpolateLumaWords, 48, H264LumaWords,
    {plain::H264LumaWords<4, 0, 0>, nullptr, nullptr, nullptr},
    {plain::H264LumaWords<4, 1, 0>, simd_sse41::H264LumaWords<4, 1, 0>, nullptr, nullptr},
    {plain::H264LumaWords<4, 2, 0>, simd_sse41::H264LumaWords<4, 2, 0>, nullptr, nullptr},
    {plain::H264LumaWords<4, 3, 0>, simd_sse41::H264LumaWords<4, 3, 0>, nullptr, nullptr},
    {plain::H264LumaWords<4, 0, 1>, simd_sse41::H264LumaWords<4, 0, 1>, nullptr, nullptr},
    {plain::H264LumaWords<4, 1, 1>, simd_sse41::H264LumaWords<4, 1, 1>, nullptr, nullptr},
    {plain::H264LumaWords<4, 2, 1>, simd_sse41::H264LumaWords<4, 2, 1>, nullptr, nullptr},
    {plain::H264LumaWords<4, 3, 1>, simd_sse41::H264LumaWords<4, 3, 1>, nullptr, nullptr},
    {plain::H264LumaWords<4, 0, 2>, simd_sse41::H264LumaWords<4, 0, 2>, nullptr, nullptr},
    {plain::H264LumaWords<4, 1, 2>, simd_sse41::H264LumaWords<4, 1, 2>, nullptr, nullptr},
    {plain::H264LumaWords<4, 2, 2>, simd_sse41::H264LumaWords<4, 2, 2>, nullptr, nullptr},
    {plain::H264LumaWords<4, 3, 2>, simd_sse41::H264LumaWords<4, 3, 2>, nullptr, nullptr},
    {plain::H264LumaWords<4, 0, 3>, simd_sse41::H264LumaWords<4, 0, 3>, nullptr, nullptr},
    {plain::H264LumaWords<4, 1, 3>, simd_sse41::H264LumaWords<4, 1, 3>, nullptr, nullptr},
    {plain::H264LumaWords<4, 2, 3>, simd_sse41::H264LumaWords<4, 2, 3>, nullptr, nullptr},
    {plain::H264LumaWords<4, 3, 3>, simd_sse41::H264LumaWords<4, 3, 3>, nullptr, nullptr},
    {plain::H264LumaWords<8, 0, 0>, nullptr, nullptr, nullptr},
    {plain::H264LumaWords<8, 1, 0>, simd_sse41::H264LumaWords<8, 1, 0>, simd_avx2::H264LumaWords<8, 1, 0>, nullptr},
    {plain::H264LumaWords<8, 2, 0>, simd_sse41::H264LumaWords<8, 2, 0>, simd_avx2::H264LumaWords<8, 2, 0>, nullptr},
    {plain::H264LumaWords<8, 3, 0>, simd_sse41::H264LumaWords<8, 3, 0>, simd_avx2::H264LumaWords<8, 3, 0>, nullptr},
    {plain::H264LumaWords<8, 0, 1>, simd_sse41::H264LumaWords<8, 0, 1>, simd_avx2::H264LumaWords<8, 0, 1>, nullptr},
    {plain::H264LumaWords<8, 1, 1>, simd_sse41::H264LumaWords<8, 1, 1>, simd_avx2::H264LumaWords<8, 1, 1>, nullptr},
    {plain::H264LumaWords<8, 2, 1>, simd_sse41::H264LumaWords<8, 2, 1>, simd_avx2::H264LumaWords<8, 2, 1>, nullptr},
    {plain::H264LumaWords<8, 3, 1>, simd_sse41::H264LumaWords<8, 3, 1>, simd_avx2::H264LumaWords<8, 3, 1>, nullptr},
    {plain::H264LumaWords<8, 0, 2>, simd_sse41::H264LumaWords<8, 0, 2>, simd_avx2::H264LumaWords<8, 0, 2>, nullptr},
    {plain::H264LumaWords<8, 1, 2>, simd_sse41::H264LumaWords<8, 1, 2>, simd_avx2::H264LumaWords<8, 1, 2>, nullptr},
    {plain::H264LumaWords<8, 2, 2>, simd_sse41::H264LumaWords<8, 2, 2>, simd_avx2::H264LumaWords<8, 2, 2>, nullptr},
    {plain::H264LumaWords<8, 3, 2>, simd_sse41::H264LumaWords<8, 3, 2>, simd_avx2::H264LumaWords<8, 3, 2>, nullptr},
    {plain::H264LumaWords<8, 0, 3>, simd_sse41::H264LumaWords<8, 0, 3>, simd_avx2::H264LumaWords<8, 0, 3>, nullptr},
    {plain::H264LumaWords<8, 1, 3>, simd_sse41::H264LumaWords<8, 1, 3>, simd_avx2::H264LumaWords<8, 1, 3>, nullptr},
    {plain::H264LumaWords<8, 2, 3>, simd_sse41::H264LumaWords<8, 2, 3>, simd_avx2::H264LumaWords<8, 2, 3>, nullptr},
    {plain::H264LumaWords<8, 3, 3>, simd_sse41::H264LumaWords<8, 3, 3>, simd_avx2::H264LumaWords<8, 3, 3>, nullptr},
    {plain::H264LumaWords<16, 0, 0>, nullptr, nullptr, nullptr},
    {plain::H264LumaWords<16, 1, 0>, simd_sse41::H264LumaWords<16, 1, 0>, simd_avx2::H264LumaWords<16, 1, 0>, nullptr},
    {plain::H264LumaWords<16, 2, 0>, simd_sse41::H264LumaWords<16, 2, 0>, simd_avx2::H264LumaWords<16, 2, 0>, nullptr},
    {plain::H264LumaWords<16, 3, 0>, simd_sse41::H264LumaWords<16, 3, 0>, simd_avx2::H264LumaWords<16, 3, 0>, nullptr},
    {plain::H264LumaWords<16, 0, 1>, simd_sse41::H264LumaWords<16, 0, 1>, simd_avx2::H264LumaWords<16, 0, 1>, nullptr},
    {plain::H264LumaWords<16, 1, 1>, simd_sse41::H264LumaWords<16, 1, 1>, simd_avx2::H264LumaWords<16, 1, 1>, nullptr},
    {plain::H264LumaWords<16, 2, 1>, simd_sse41::H264LumaWords<16, 2, 1>, simd_avx2::H264LumaWords<16, 2, 1>, nullptr},
    {plain::H264LumaWords<16, 3, 1>, simd_sse41::H264LumaWords<16, 3, 1>, simd_avx2::H264LumaWords<16, 3, 1>, nullptr},
    {plain::H264LumaWords<16, 0, 2>, simd_sse41::H264LumaWords<16, 0, 2>, simd_avx2::H264LumaWords<16, 0, 2>, nullptr},
    {plain::H264LumaWords<16, 1, 2>, simd_sse41::H264LumaWords<16, 1, 2>, simd_avx2::H264LumaWords<16, 1, 2>, nullptr},
    {plain::H264LumaWords<16, 2, 2>, simd_sse41::H264LumaWords<16, 2, 2>, simd_avx2::H264LumaWords<16, 2, 2>, nullptr},
    {plain::H264LumaWords<16, 3, 2>, simd_sse41::H264LumaWords<16, 3, 2>, simd_avx2::H264LumaWords<16, 3, 2>, nullptr},
    {plain::H264LumaWords<16, 0, 3>, simd_sse41::H264LumaWords<16, 0, 3>, simd_avx2::H264LumaWords<16, 0, 3>, nullptr},
    {plain::H264LumaWords<16, 1, 3>, simd_sse41::H264LumaWords<16, 1, 3>, simd_avx2::H264LumaWords<16, 1, 3>, nullptr},
    {plain::H264LumaWords<16, 2, 3>, simd_sse41::H264LumaWords<16, 2, 3>, simd_avx2::H264LumaWords<16, 2, 3>, nullptr},
    {plain::H264LumaWords<16, 3, 3>, simd_sse41::H264LumaWords<16, 3, 3>, simd_avx2::H264LumaWords<16, 3, 3>, nullptr});
// clang-format on

}  // namespace KorvaneSoftware
