// 32-byte registers for kernels that are written once for several instruction sets. See README.md here.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#define PIXMORPH_SIMD simd_avx2

namespace KorvaneSoftware::PIXMORPH_SIMD {

struct Vec {
    __m256i v;
};
constexpr std::size_t kVecBytes = 32;
constexpr int kVecLanes = 2;

static inline Vec Load(const void* p) { return {_mm256_loadu_si256(static_cast<const __m256i*>(p))}; }
static inline void Store(void* p, Vec a) { _mm256_storeu_si256(static_cast<__m256i*>(p), a.v); }
static inline void StoreAligned(void* p, Vec a) { _mm256_store_si256(static_cast<__m256i*>(p), a.v); }
static inline void Stream(void* p, Vec a) { _mm256_stream_si256(static_cast<__m256i*>(p), a.v); }
static inline void StreamFence() { _mm_sfence(); }
static inline Vec Zero() { return {_mm256_setzero_si256()}; }
static inline Vec Set8(int x) { return {_mm256_set1_epi8(static_cast<char>(x))}; }
static inline Vec Set16(int x) { return {_mm256_set1_epi16(static_cast<short>(x))}; }
static inline Vec Set32(int x) { return {_mm256_set1_epi32(x)}; }
static inline Vec Repeat128(const void* p) {
    return {_mm256_broadcastsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(p)))};
}
static inline Vec LoadWiden8(const void* p) {
    return {_mm256_cvtepu8_epi16(_mm_loadu_si128(static_cast<const __m128i*>(p)))};
}
static inline Vec LoadWiden16(const void* p) {
    return {_mm256_cvtepu16_epi32(_mm_loadu_si128(static_cast<const __m128i*>(p)))};
}
static inline Vec LoadHalf(const void* p) {
    return {_mm256_castsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(p)))};
}
static inline void StoreHalf(void* p, Vec a) {
    _mm_storeu_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(a.v));
}

// 32-bit integers to floats and back, truncating; floats are kept as their bits.
static inline Vec IntToFloat32(Vec a) { return {_mm256_castps_si256(_mm256_cvtepi32_ps(a.v))}; }
static inline Vec FloatToInt32(Vec a) { return {_mm256_cvttps_epi32(_mm256_castsi256_ps(a.v))}; }
static inline Vec AddFloat32(Vec a, Vec b) {
    return {_mm256_castps_si256(_mm256_add_ps(_mm256_castsi256_ps(a.v), _mm256_castsi256_ps(b.v)))};
}
static inline Vec MulFloat32(Vec a, Vec b) {
    return {_mm256_castps_si256(_mm256_mul_ps(_mm256_castsi256_ps(a.v), _mm256_castsi256_ps(b.v)))};
}
static inline Vec DivideFloat32(Vec a, Vec b) {
    return {_mm256_castps_si256(_mm256_div_ps(_mm256_castsi256_ps(a.v), _mm256_castsi256_ps(b.v)))};
}

#define PIXMORPH_VEC_OP(op) _mm256_##op
#define PIXMORPH_VEC_BITOP(op) _mm256_##op##_si256
#include "foundation/simd/vec_ops.inc.h"

static inline Vec Min8u(Vec a, Vec b) { return {_mm256_min_epu8(a.v, b.v)}; }
static inline Vec Blend8(Vec a, Vec b, Vec mask) { return {_mm256_blendv_epi8(a.v, b.v, mask.v)}; }
static inline Vec FixPack(Vec a) { return {_mm256_permute4x64_epi64(a.v, 0xD8)}; }
static inline Vec PreUnpack(Vec a) { return {_mm256_permute4x64_epi64(a.v, 0xD8)}; }
static inline void FixUnpack(Vec& low, Vec& high) {
    const __m256i first = _mm256_permute2x128_si256(low.v, high.v, 0x20);
    high.v = _mm256_permute2x128_si256(low.v, high.v, 0x31);
    low.v = first;
}
static inline bool AllZero(Vec a) { return _mm256_testz_si256(a.v, a.v) != 0; }

static inline Vec LoadLanes(const std::uint8_t* p, std::size_t stride) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + stride));
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1)};
}
static inline void StoreLanes(std::uint8_t* p, std::size_t stride, Vec a) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(a.v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + stride), _mm256_extracti128_si256(a.v, 1));
}

struct VecDouble {
    __m256d v;
};
static inline VecDouble SetDouble(double x) { return {_mm256_set1_pd(x)}; }
static inline VecDouble AddDouble(VecDouble a, VecDouble b) { return {_mm256_add_pd(a.v, b.v)}; }
static inline VecDouble SubDouble(VecDouble a, VecDouble b) { return {_mm256_sub_pd(a.v, b.v)}; }
static inline VecDouble MulDouble(VecDouble a, VecDouble b) { return {_mm256_mul_pd(a.v, b.v)}; }
static inline VecDouble LowToDouble(Vec a) { return {_mm256_cvtepi32_pd(_mm256_castsi256_si128(a.v))}; }
static inline VecDouble HighToDouble(Vec a) { return {_mm256_cvtepi32_pd(_mm256_extracti128_si256(a.v, 1))}; }
static inline Vec TruncateDoubles(VecDouble low, VecDouble high) {
    return {
        _mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvttpd_epi32(low.v)), _mm256_cvttpd_epi32(high.v), 1)};
}

static inline void Deinterleave128(Vec& even, Vec& odd) { FixUnpack(even, odd); }
static inline void Deinterleave128(Vec& a, Vec& b, Vec& c) {
    const __m256i first = _mm256_permute2x128_si256(a.v, b.v, 0x30);
    const __m256i second = _mm256_permute2x128_si256(a.v, c.v, 0x21);
    c.v = _mm256_permute2x128_si256(b.v, c.v, 0x30);
    b.v = second;
    a.v = first;
}
static inline void Interleave128(Vec& a, Vec& b, Vec& c) {
    const __m256i first = _mm256_permute2x128_si256(a.v, b.v, 0x20);
    const __m256i second = _mm256_permute2x128_si256(c.v, a.v, 0x30);
    c.v = _mm256_permute2x128_si256(b.v, c.v, 0x31);
    b.v = second;
    a.v = first;
}
static inline void JoinLanePairs(Vec& a, Vec& b) {
    const __m256i order = _mm256_setr_epi32(0, 1, 4, 5, 2, 6, 3, 7);
    a.v = _mm256_permutevar8x32_epi32(a.v, order);
    b.v = _mm256_permutevar8x32_epi32(b.v, order);
}
static inline void SplitLanePairs(Vec& a, Vec& b) {
    const __m256i order = _mm256_setr_epi32(0, 1, 4, 6, 2, 3, 5, 7);
    a.v = _mm256_permutevar8x32_epi32(a.v, order);
    b.v = _mm256_permutevar8x32_epi32(b.v, order);
}

static inline Vec LoadLanes128(const std::uint8_t* base, const std::uint32_t* offsets) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base + offsets[0]));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base + offsets[1]));
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1)};
}
static inline void StoreNarrow16To8(void* p, Vec a) {
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(a.v, a.v), 0xD8);
    _mm_storeu_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(bytes));
}
static inline void StoreNarrow32To16(void* p, Vec a) {
    const __m256i words = _mm256_permute4x64_epi64(_mm256_packus_epi32(a.v, a.v), 0xD8);
    _mm_storeu_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(words));
}
static inline void StoreNarrow32To8(void* p, Vec a) {
    const __m256i words = _mm256_permute4x64_epi64(_mm256_packus_epi32(a.v, a.v), 0xD8);
    const __m128i low = _mm256_castsi256_si128(words);
    _mm_storel_epi64(static_cast<__m128i*>(p), _mm_packus_epi16(low, low));
}
static inline Vec ScaleAndRound32(Vec a, float scale) {
    const __m256 product = _mm256_mul_ps(_mm256_cvtepi32_ps(a.v), _mm256_set1_ps(scale));
    return {_mm256_cvttps_epi32(_mm256_add_ps(product, _mm256_set1_ps(0.5f)))};
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
