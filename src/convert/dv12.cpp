#include "convert/dv12.h"

#include "convert/dv_chroma.h"
#include "convert/samples.h"
#include "convert/x86/dv12_forms.h"
#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

// DV sites U on the even rows and V on the odd rows of its chroma, so between two chroma lines U is exact on odd
// picture lines and V on even ones.
DvChromaLines DvChromaLinesOf(std::int64_t y, std::int64_t height) {
    const std::int64_t last = height / 2 - 1;
    if (y == 0) return {0, 0, 0, 0};
    if (y == height - 1) return {last, last, last, last};
    const std::int64_t upper = (y - 1) / 2;
    if (y % 2 != 0) return {upper, upper, upper, upper + 1};
    return {upper, upper + 1, upper + 1, upper + 1};
}

namespace {

template <class Dst>
void Dv12To422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::int64_t height = src.height;
    for (std::int64_t y = 0; y < height; ++y) {
        const DvChromaLines lines = DvChromaLinesOf(y, height);
        const std::uint8_t* const luma = PlaneLine(src, 0, y);
        const std::uint8_t* const u0 = PlaneLine(src, 1, lines.u0);
        const std::uint8_t* const u1 = PlaneLine(src, 1, lines.u1);
        const std::uint8_t* const v0 = PlaneLine(src, 1, lines.v0);
        const std::uint8_t* const v1 = PlaneLine(src, 1, lines.v1);
        const auto to = LineAt(dst, y, y);
        for (std::size_t x = 0; x < src.width; ++x) Dst::Luma(to, x) = luma[x];
        for (std::size_t k = 0; k < src.width / 2; ++k) {
            Dst::Cb(to, k) = Mean(u0[2 * k], u1[2 * k]);
            Dst::Cr(to, k) = Mean(v0[2 * k + 1], v1[2 * k + 1]);
        }
    }
}

}  // namespace

void plain::Dv12ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Dv12To422<UyvySamples>(dst, src);
}
void plain::Dv12ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Dv12To422<Yuy2Samples>(dst, src);
}
void plain::Dv12ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Dv12To422<YvyuSamples>(dst, src);
}
void plain::Dv12ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) { Dv12To422<Y16Samples>(dst, src); }

PIXMORPH_SLOT(ConvertSlot, Dv12ToUyvy, plain::Dv12ToUyvy, simd_sse41::Dv12ToUyvy, simd_avx2::Dv12ToUyvy,
              simd_avx512::Dv12ToUyvy);
PIXMORPH_SLOT(ConvertSlot, Dv12ToYuy2, plain::Dv12ToYuy2, simd_sse41::Dv12ToYuy2, simd_avx2::Dv12ToYuy2,
              simd_avx512::Dv12ToYuy2);
PIXMORPH_SLOT(ConvertSlot, Dv12ToYvyu, plain::Dv12ToYvyu, simd_sse41::Dv12ToYvyu, simd_avx2::Dv12ToYvyu,
              simd_avx512::Dv12ToYvyu);
PIXMORPH_SLOT(ConvertSlot, Dv12ToY16, plain::Dv12ToY16, simd_sse41::Dv12ToY16, simd_avx2::Dv12ToY16,
              simd_avx512::Dv12ToY16);

}  // namespace KorvaneSoftware
