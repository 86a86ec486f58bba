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

#define PIXMORPH_H264_DEFINE(x, y, Kind, Sample, width)                                                         \
    void plain::H264Luma##width##At##x##y##Kind(Sample* dst, std::ptrdiff_t dstStride, const Sample* src,       \
                                                std::ptrdiff_t srcStride, int height, std::uint32_t bitDepth) { \
        Interpolate<width, x, y>(dst, dstStride, src, srcStride, height, bitDepth);                             \
    }
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DEFINE, Bytes, std::uint8_t, 4)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DEFINE, Bytes, std::uint8_t, 8)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DEFINE, Bytes, std::uint8_t, 16)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DEFINE, Words, std::uint16_t, 4)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DEFINE, Words, std::uint16_t, 8)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DEFINE, Words, std::uint16_t, 16)
#undef PIXMORPH_H264_DEFINE

// Registers of AVX2 are filled by 16 bytes or 8 words that were widened.
// A compiler moves whole samples as well as a vector form does.
#define PIXMORPH_H264_COPY(Kind, width) {plain::H264Luma##width##At00##Kind, nullptr, nullptr, nullptr},
#define PIXMORPH_H264_NARROW(x, y, Kind, width) \
    {plain::H264Luma##width##At##x##y##Kind, simd_sse41::H264Luma##width##At##x##y##Kind, nullptr, nullptr},
#define PIXMORPH_H264_WIDE(x, y, Kind, width)                                             \
    {plain::H264Luma##width##At##x##y##Kind, simd_sse41::H264Luma##width##At##x##y##Kind, \
     simd_avx2::H264Luma##width##At##x##y##Kind, nullptr},

PIXMORPH_SLOT_TABLE(H264InterpolateLumaBytes, 48, H264LumaBytes,
                    PIXMORPH_H264_COPY(Bytes, 4) PIXMORPH_H264_PARTS(PIXMORPH_H264_NARROW, Bytes, 4)
                        PIXMORPH_H264_COPY(Bytes, 8) PIXMORPH_H264_PARTS(PIXMORPH_H264_NARROW, Bytes, 8)
                            PIXMORPH_H264_COPY(Bytes, 16) PIXMORPH_H264_PARTS(PIXMORPH_H264_WIDE, Bytes, 16));
PIXMORPH_SLOT_TABLE(H264InterpolateLumaWords, 48, H264LumaWords,
                    PIXMORPH_H264_COPY(Words, 4) PIXMORPH_H264_PARTS(PIXMORPH_H264_NARROW, Words, 4)
                        PIXMORPH_H264_COPY(Words, 8) PIXMORPH_H264_PARTS(PIXMORPH_H264_WIDE, Words, 8)
                            PIXMORPH_H264_COPY(Words, 16) PIXMORPH_H264_PARTS(PIXMORPH_H264_WIDE, Words, 16));

#undef PIXMORPH_H264_COPY
#undef PIXMORPH_H264_NARROW
#undef PIXMORPH_H264_WIDE

}  // namespace KorvaneSoftware
