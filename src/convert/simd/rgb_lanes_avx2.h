// Moves of whole lanes and of 12-byte pixel groups, at 32 bytes. rgb_lanes_sse41.h says what they mean.
#pragma once

#include "foundation/simd/vec_avx2.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

inline Vec DealLanes(Vec a) { return {_mm256_permutevar8x32_epi32(a.v, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7))}; }
inline Vec DealPacked(Vec a) { return {_mm256_permutevar8x32_epi32(a.v, _mm256_setr_epi32(0, 4, 2, 6, 1, 5, 3, 7))}; }
inline Vec CollectLanes(Vec a) { return {_mm256_permutevar8x32_epi32(a.v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7))}; }
inline Vec CollectForUnpack(Vec a) {
    return {_mm256_permutevar8x32_epi32(a.v, _mm256_setr_epi32(0, 4, 2, 6, 1, 5, 3, 7))};
}

inline void StoreUpperHalf(std::uint8_t* p, Vec a) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_extracti128_si256(a.v, 1));
}

template <int Skip>
inline Vec LoadGroups12(const std::uint8_t* p) {
    return {_mm256_permutevar8x32_epi32(
        Load(p).v, _mm256_setr_epi32(Skip, Skip + 1, Skip + 2, Skip, Skip + 3, Skip + 4, Skip + 5, Skip))};
}
inline void JoinGroups12(Vec a, Vec b, Vec c, Vec d, Vec (&out)[3]) {
    // Each register's six groups go to where they stand in the output, wrapped around; index 3 is a zero.
    a.v = _mm256_permutevar8x32_epi32(a.v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 3));
    b.v = _mm256_permutevar8x32_epi32(b.v, _mm256_setr_epi32(2, 4, 5, 6, 3, 3, 0, 1));
    c.v = _mm256_permutevar8x32_epi32(c.v, _mm256_setr_epi32(5, 6, 3, 3, 0, 1, 2, 4));
    d.v = _mm256_permutevar8x32_epi32(d.v, _mm256_setr_epi32(3, 3, 0, 1, 2, 4, 5, 6));
    out[0].v = _mm256_blend_epi32(a.v, b.v, 0xC0);
    out[1].v = _mm256_blend_epi32(b.v, c.v, 0xF0);
    out[2].v = _mm256_blend_epi32(c.v, d.v, 0xFC);
}

inline void OrderSites(Vec first, Vec second, Vec& u, Vec& v) {
    u.v = _mm256_blend_epi16(first.v, _mm256_slli_epi32(second.v, 16), 0xAA);
    v.v = _mm256_blend_epi16(_mm256_srli_epi32(first.v, 16), second.v, 0xAA);
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
