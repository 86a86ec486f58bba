#include "foundation/simd/vec_sse41.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

Vec Less16(Vec a, Vec b) { return {_mm_cmplt_epi16(a.v, b.v)}; }
Vec SetLanes32(const std::uint32_t* lanes) { return Set32(static_cast<int>(lanes[0])); }

Vec LoadEights(const std::uint16_t* const* at, std::ptrdiff_t offset) { return Load(at[0] + offset); }
void StoreEights(std::uint16_t* const* at, std::ptrdiff_t offset, Vec v) { Store(at[0] + offset, v); }

Vec LoadFours(const std::uint16_t* const* at, std::ptrdiff_t offset) { return LoadHalf(at[0] + offset); }
// Two rows of four, and eight rows of two.
void StoreFours(std::uint16_t* const* at, std::ptrdiff_t offset, std::ptrdiff_t stride, Vec v) {
    StoreHalf(at[0] + offset, v);
    StoreHalf(at[0] + offset + stride, {_mm_unpackhi_epi64(v.v, v.v)});
}
template <int kLane>
void StoreTwo(std::uint16_t* p, __m128i v) {
    const int two = _mm_extract_epi32(v, kLane);
    __builtin_memcpy(p, &two, sizeof two);
}
void StoreTwos(std::uint16_t* p, std::ptrdiff_t stride, __m128i v) {
    StoreTwo<0>(p, v);
    StoreTwo<1>(p + stride, v);
    StoreTwo<2>(p + 2 * stride, v);
    StoreTwo<3>(p + 3 * stride, v);
}
void StoreTwos(std::uint16_t* const* at, std::ptrdiff_t offset, std::ptrdiff_t stride, Vec upper, Vec lower) {
    StoreTwos(at[0] + offset, stride, upper.v);
    StoreTwos(at[0] + offset + 4 * stride, stride, lower.v);
}

}  // namespace
}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware

#include "h264/deblocking/x86/edge_filters.inc.h"

namespace KorvaneSoftware {

PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaVerticalWeakWords, plain::H264LumaVerticalWeakWords, std::uint16_t,
                          LumaWeak, Vertical, 2)
PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaVerticalStrongWords, plain::H264LumaVerticalStrongWords, std::uint16_t,
                          LumaStrong, Vertical, 2)
PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaHorizontalWeakWords, plain::H264LumaHorizontalWeakWords, std::uint16_t,
                          LumaWeak, Horizontal, 2)
PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaHorizontalStrongWords, plain::H264LumaHorizontalStrongWords,
                          std::uint16_t, LumaStrong, Horizontal, 2)
PIXMORPH_H264_DEFINE_CHROMA(PIXMORPH_SIMD::H264ChromaVerticalWeakWords, plain::H264ChromaVerticalWeakWords,
                            std::uint16_t, ChromaWeak, Vertical)
PIXMORPH_H264_DEFINE_CHROMA(PIXMORPH_SIMD::H264ChromaVerticalStrongWords, plain::H264ChromaVerticalStrongWords,
                            std::uint16_t, ChromaStrong, Vertical)
PIXMORPH_H264_DEFINE_CHROMA(PIXMORPH_SIMD::H264ChromaHorizontalWeakWords, plain::H264ChromaHorizontalWeakWords,
                            std::uint16_t, ChromaWeak, Horizontal)
PIXMORPH_H264_DEFINE_CHROMA(PIXMORPH_SIMD::H264ChromaHorizontalStrongWords, plain::H264ChromaHorizontalStrongWords,
                            std::uint16_t, ChromaStrong, Horizontal)

}  // namespace KorvaneSoftware
