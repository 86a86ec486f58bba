// 64-byte registers for kernels that are written once for several instruction sets. See README.md here.
#pragma once

// The unmasked intrinsics of g++ 12 name a register that they never read, and the compiler warns about its own header.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#else
#include <immintrin.h>
#endif

#include <cstddef>
#include <cstdint>

#define PIXMORPH_SIMD simd_avx512

namespace KorvaneSoftware::PIXMORPH_SIMD {

struct Vec {
    __m512i v;
};
constexpr std::size_t kVecBytes = 64;
constexpr int kVecLanes = 4;

static inline Vec Load(const void* p) { return {_mm512_loadu_si512(p)}; }
static inline void Store(void* p, Vec a) { _mm512_storeu_si512(p, a.v); }
static inline void StoreAligned(void* p, Vec a) { _mm512_store_si512(p, a.v); }
static inline void Stream(void* p, Vec a) { _mm512_stream_si512(static_cast<__m512i*>(p), a.v); }
static inline void StreamFence() { _mm_sfence(); }
static inline Vec Zero() { return {_mm512_setzero_si512()}; }
static inline Vec Set8(int x) { return {_mm512_set1_epi8(static_cast<char>(x))}; }
static inline Vec Set16(int x) { return {_mm512_set1_epi16(static_cast<short>(x))}; }
static inline Vec Set32(int x) { return {_mm512_set1_epi32(x)}; }
static inline Vec Repeat128(const void* p) {
    return {_mm512_broadcast_i32x4(_mm_loadu_si128(static_cast<const __m128i*>(p)))};
}
static inline Vec LoadWiden8(const void* p) {
    return {_mm512_cvtepu8_epi16(_mm256_loadu_si256(static_cast<const __m256i*>(p)))};
}
static inline Vec LoadWiden16(const void* p) {
    return {_mm512_cvtepu16_epi32(_mm256_loadu_si256(static_cast<const __m256i*>(p)))};
}
static inline Vec LoadHalf(const void* p) {
    return {_mm512_castsi256_si512(_mm256_loadu_si256(static_cast<const __m256i*>(p)))};
}
static inline void StoreHalf(void* p, Vec a) {
    _mm256_storeu_si256(static_cast<__m256i*>(p), _mm512_castsi512_si256(a.v));
}

// 32-bit integers to floats and back, truncating; floats are kept as their bits.
static inline Vec IntToFloat32(Vec a) { return {_mm512_castps_si512(_mm512_cvtepi32_ps(a.v))}; }
static inline Vec FloatToInt32(Vec a) { return {_mm512_cvttps_epi32(_mm512_castsi512_ps(a.v))}; }
static inline Vec AddFloat32(Vec a, Vec b) {
    return {_mm512_castps_si512(_mm512_add_ps(_mm512_castsi512_ps(a.v), _mm512_castsi512_ps(b.v)))};
}
static inline Vec MulFloat32(Vec a, Vec b) {
    return {_mm512_castps_si512(_mm512_mul_ps(_mm512_castsi512_ps(a.v), _mm512_castsi512_ps(b.v)))};
}
static inline Vec DivideFloat32(Vec a, Vec b) {
    return {_mm512_castps_si512(_mm512_div_ps(_mm512_castsi512_ps(a.v), _mm512_castsi512_ps(b.v)))};
}

#define PIXMORPH_VEC_OP(op) _mm512_##op
#define PIXMORPH_VEC_BITOP(op) _mm512_##op##_si512
#include "foundation/simd/vec_ops.inc.h"

static inline Vec Min8u(Vec a, Vec b) { return {_mm512_min_epu8(a.v, b.v)}; }
// Takes b where the top bit of the mask byte is set.
static inline Vec Blend8(Vec a, Vec b, Vec mask) {
    return {_mm512_mask_blend_epi8(_mm512_movepi8_mask(mask.v), a.v, b.v)};
}
static inline Vec FixPack(Vec a) { return {_mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), a.v)}; }
static inline Vec PreUnpack(Vec a) {
    return {_mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), a.v)};
}
static inline void FixUnpack(Vec& low, Vec& high) {
    const __m512i first = _mm512_permutex2var_epi64(low.v, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), high.v);
    high.v = _mm512_permutex2var_epi64(low.v, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), high.v);
    low.v = first;
}
static inline bool AllZero(Vec a) { return _mm512_test_epi32_mask(a.v, a.v) == 0; }

static inline Vec LoadLanes(const std::uint8_t* p, std::size_t stride) {
    const auto at = [](const std::uint8_t* lane) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(lane)); };
    const __m256i low = _mm256_inserti128_si256(_mm256_castsi128_si256(at(p)), at(p + stride), 1);
    const __m256i high = _mm256_inserti128_si256(_mm256_castsi128_si256(at(p + 2 * stride)), at(p + 3 * stride), 1);
    return {_mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1)};
}
static inline void StoreLanes(std::uint8_t* p, std::size_t stride, Vec a) {
    const auto put = [](std::uint8_t* lane, __m128i x) { _mm_storeu_si128(reinterpret_cast<__m128i*>(lane), x); };
    const __m256i low = _mm512_castsi512_si256(a.v);
    const __m256i high = _mm512_extracti64x4_epi64(a.v, 1);
    put(p, _mm256_castsi256_si128(low));
    put(p + stride, _mm256_extracti128_si256(low, 1));
    put(p + 2 * stride, _mm256_castsi256_si128(high));
    put(p + 3 * stride, _mm256_extracti128_si256(high, 1));
}

// Doubles. A register of 32-bit integers is two of doubles.
struct VecDouble {
    __m512d v;
};
static inline VecDouble SetDouble(double x) { return {_mm512_set1_pd(x)}; }
static inline VecDouble AddDouble(VecDouble a, VecDouble b) { return {_mm512_add_pd(a.v, b.v)}; }
static inline VecDouble SubDouble(VecDouble a, VecDouble b) { return {_mm512_sub_pd(a.v, b.v)}; }
static inline VecDouble MulDouble(VecDouble a, VecDouble b) { return {_mm512_mul_pd(a.v, b.v)}; }
static inline VecDouble LowToDouble(Vec a) { return {_mm512_cvtepi32_pd(_mm512_castsi512_si256(a.v))}; }
static inline VecDouble HighToDouble(Vec a) { return {_mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(a.v, 1))}; }
static inline Vec TruncateDoubles(VecDouble low, VecDouble high) {
    return {_mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvttpd_epi32(low.v)), _mm512_cvttpd_epi32(high.v), 1)};
}

static inline void Deinterleave128(Vec& even, Vec& odd) {
    const __m512i first = _mm512_permutex2var_epi64(even.v, _mm512_setr_epi64(0, 1, 4, 5, 8, 9, 12, 13), odd.v);
    odd.v = _mm512_permutex2var_epi64(even.v, _mm512_setr_epi64(2, 3, 6, 7, 10, 11, 14, 15), odd.v);
    even.v = first;
}
static inline void Deinterleave128(Vec& a, Vec& b, Vec& c) {
    // Lanes 0 3 6 9, then 1 4 7 10, then 2 5 8 11, where b holds 4 to 7 and c 8 to 11.
    const __m512i ab0 = _mm512_permutex2var_epi64(a.v, _mm512_setr_epi64(0, 1, 6, 7, 12, 13, 0, 0), b.v);
    const __m512i ab1 = _mm512_permutex2var_epi64(a.v, _mm512_setr_epi64(2, 3, 8, 9, 14, 15, 0, 0), b.v);
    const __m512i ab2 = _mm512_permutex2var_epi64(a.v, _mm512_setr_epi64(4, 5, 10, 11, 0, 0, 0, 0), b.v);
    a.v = _mm512_permutex2var_epi64(ab0, _mm512_setr_epi64(0, 1, 2, 3, 4, 5, 10, 11), c.v);
    b.v = _mm512_permutex2var_epi64(ab1, _mm512_setr_epi64(0, 1, 2, 3, 4, 5, 12, 13), c.v);
    c.v = _mm512_permutex2var_epi64(ab2, _mm512_setr_epi64(0, 1, 2, 3, 8, 9, 14, 15), c.v);
}
static inline void Interleave128(Vec& a, Vec& b, Vec& c) {
    const __m512i ab0 = _mm512_permutex2var_epi64(a.v, _mm512_setr_epi64(0, 1, 8, 9, 0, 0, 2, 3), b.v);
    const __m512i ab1 = _mm512_permutex2var_epi64(a.v, _mm512_setr_epi64(10, 11, 0, 0, 4, 5, 12, 13), b.v);
    const __m512i ab2 = _mm512_permutex2var_epi64(a.v, _mm512_setr_epi64(0, 0, 6, 7, 14, 15, 0, 0), b.v);
    a.v = _mm512_permutex2var_epi64(ab0, _mm512_setr_epi64(0, 1, 2, 3, 8, 9, 6, 7), c.v);
    b.v = _mm512_permutex2var_epi64(ab1, _mm512_setr_epi64(0, 1, 10, 11, 4, 5, 6, 7), c.v);
    c.v = _mm512_permutex2var_epi64(ab2, _mm512_setr_epi64(12, 13, 2, 3, 4, 5, 14, 15), c.v);
}
static inline void JoinLanePairs(Vec& a, Vec& b) {
    const __m512i order = _mm512_setr_epi32(0, 1, 4, 5, 2, 6, 3, 7, 8, 9, 12, 13, 10, 14, 11, 15);
    a.v = _mm512_permutexvar_epi32(order, a.v);
    b.v = _mm512_permutexvar_epi32(order, b.v);
}
static inline void SplitLanePairs(Vec& a, Vec& b) {
    const __m512i order = _mm512_setr_epi32(0, 1, 4, 6, 2, 3, 5, 7, 8, 9, 12, 14, 10, 11, 13, 15);
    a.v = _mm512_permutexvar_epi32(order, a.v);
    b.v = _mm512_permutexvar_epi32(order, b.v);
}

static inline Vec LoadLanes128(const std::uint8_t* base, const std::uint32_t* offsets) {
    // Broadcasts under a mask are loads alone; inserts would each take the one port that shuffles need.
    const auto lane = [&](int i) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(base + offsets[i])); };
    __m512i v = _mm512_castsi128_si512(lane(0));
    v = _mm512_mask_broadcast_i32x4(v, 0x00F0, lane(1));
    v = _mm512_mask_broadcast_i32x4(v, 0x0F00, lane(2));
    return {_mm512_mask_broadcast_i32x4(v, 0xF000, lane(3))};
}
static inline void StoreNarrow16To8(void* p, Vec a) {
    _mm256_storeu_si256(static_cast<__m256i*>(p), _mm512_cvtusepi16_epi8(a.v));
}
static inline void StoreNarrow32To16(void* p, Vec a) {
    _mm256_storeu_si256(static_cast<__m256i*>(p), _mm512_cvtusepi32_epi16(a.v));
}
static inline void StoreNarrow32To8(void* p, Vec a) {
    _mm_storeu_si128(static_cast<__m128i*>(p), _mm512_cvtusepi32_epi8(a.v));
}
static inline Vec ScaleAndRound32(Vec a, float scale) {
    const __m512 product = _mm512_mul_ps(_mm512_cvtepi32_ps(a.v), _mm512_set1_ps(scale));
    return {_mm512_cvttps_epi32(_mm512_add_ps(product, _mm512_set1_ps(0.5f)))};
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
