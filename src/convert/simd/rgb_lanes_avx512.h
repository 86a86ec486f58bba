// Moves of whole lanes and of 12-byte pixel groups, at 64 bytes. rgb_lanes_sse41.h says what they mean.
#pragma once

#include "foundation/simd/vec_avx512.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

inline Vec DealLanes(Vec a) {
    return {_mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), a.v)};
}
inline Vec DealPacked(Vec a) {
    return {_mm512_permutexvar_epi32(_mm512_setr_epi32(0, 8, 2, 10, 1, 9, 3, 11, 4, 12, 6, 14, 5, 13, 7, 15), a.v)};
}
// Dealing to four lanes is a transpose, its own inverse.
inline Vec CollectLanes(Vec a) { return DealLanes(a); }
inline Vec CollectForUnpack(Vec a) {
    return {_mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 2, 6, 8, 12, 10, 14, 1, 5, 3, 7, 9, 13, 11, 15), a.v)};
}

inline void StoreUpperHalf(std::uint8_t* p, Vec a) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_extracti64x4_epi64(a.v, 1));
}

template <int Skip>
inline Vec LoadGroups12(const std::uint8_t* p) {
    return {_mm512_permutexvar_epi32(
        _mm512_setr_epi32(Skip, Skip + 1, Skip + 2, Skip, Skip + 3, Skip + 4, Skip + 5, Skip, Skip + 6, Skip + 7,
                          Skip + 8, Skip, Skip + 9, Skip + 10, Skip + 11, Skip),
        Load(p).v)};
}
inline void JoinGroups12(Vec a, Vec b, Vec c, Vec d, Vec (&out)[3]) {
    out[0].v =
        _mm512_permutex2var_epi32(a.v, _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 16, 17, 18, 20), b.v);
    out[1].v = _mm512_permutex2var_epi32(
        b.v, _mm512_setr_epi32(5, 6, 8, 9, 10, 12, 13, 14, 16, 17, 18, 20, 21, 22, 24, 25), c.v);
    out[2].v = _mm512_permutex2var_epi32(
        c.v, _mm512_setr_epi32(10, 12, 13, 14, 16, 17, 18, 20, 21, 22, 24, 25, 26, 28, 29, 30), d.v);
}

inline void OrderSites(Vec first, Vec second, Vec& u, Vec& v) {
    // Words of each pair of words exchanged, and merged in by a mask: one instruction instead of a shift and a blend.
    const __m512i exchange = _mm512_set4_epi32(0x0D0C0F0E, 0x09080B0A, 0x05040706, 0x01000302);
    u.v = _mm512_mask_shuffle_epi8(first.v, 0xCCCCCCCCCCCCCCCC, second.v, exchange);
    v.v = _mm512_mask_shuffle_epi8(second.v, 0x3333333333333333, first.v, exchange);
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
