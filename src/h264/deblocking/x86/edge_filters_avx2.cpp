#include "foundation/simd/vec_avx2.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

Vec Less16(Vec a, Vec b) { return {_mm256_cmpgt_epi16(b.v, a.v)}; }
Vec Join(__m128i low, __m128i high) { return {_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1)}; }
__m128i High(Vec v) { return _mm256_extracti128_si256(v.v, 1); }
__m128i Low(Vec v) { return _mm256_castsi256_si128(v.v); }
Vec SetLanes32(const std::uint32_t* lanes) {
    return Join(_mm_set1_epi32(static_cast<int>(lanes[0])), _mm_set1_epi32(static_cast<int>(lanes[1])));
}

__m128i LoadEight(const std::uint16_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
void StoreFour(void* p, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }

Vec LoadEights(const std::uint16_t* const* at, std::ptrdiff_t offset) {
    return Join(LoadEight(at[0] + offset), LoadEight(at[1] + offset));
}
void StoreEights(std::uint16_t* const* at, std::ptrdiff_t offset, Vec v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at[0] + offset), Low(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at[1] + offset), High(v));
}

// Two rows of four.
void StoreFours(std::uint16_t* p, std::ptrdiff_t stride, __m128i v) {
    StoreFour(p, v);
    StoreFour(p + stride, _mm_unpackhi_epi64(v, v));
}
void StoreFours(std::uint16_t* const* at, std::ptrdiff_t offset, std::ptrdiff_t stride, Vec v) {
    StoreFours(at[0] + offset, stride, Low(v));
    StoreFours(at[1] + offset, stride, High(v));
}
}  // namespace
}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware

#include "h264/deblocking/x86/edge_filters.inc.h"

namespace KorvaneSoftware {

PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaVerticalWeakWords, simd_sse41::H264LumaVerticalWeakWords,
                          std::uint16_t, LumaWeak, Vertical, 4)
PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaVerticalStrongWords, simd_sse41::H264LumaVerticalStrongWords,
                          std::uint16_t, LumaStrong, Vertical, 4)
PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaHorizontalWeakWords, simd_sse41::H264LumaHorizontalWeakWords,
                          std::uint16_t, LumaWeak, Horizontal, 4)
PIXMORPH_H264_DEFINE_LUMA(PIXMORPH_SIMD::H264LumaHorizontalStrongWords, simd_sse41::H264LumaHorizontalStrongWords,
                          std::uint16_t, LumaStrong, Horizontal, 4)
PIXMORPH_H264_DEFINE_CHROMA(PIXMORPH_SIMD::H264ChromaHorizontalWeakWords, plain::H264ChromaHorizontalWeakWords,
                            std::uint16_t, ChromaWeak, Horizontal)
PIXMORPH_H264_DEFINE_CHROMA(PIXMORPH_SIMD::H264ChromaHorizontalStrongWords, plain::H264ChromaHorizontalStrongWords,
                            std::uint16_t, ChromaStrong, Horizontal)

}  // namespace KorvaneSoftware
