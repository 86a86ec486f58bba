// 32-byte registers for kernels that are written once for several instruction sets. See README.md here.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#define PIXMORPH_SIMD simd_avx2
#define PIXMORPH_SIMD_NAME(primitive) primitive##_Avx2

namespace KorvaneSoftware::PIXMORPH_SIMD {

struct Vec {
    __m256i v;
};
constexpr std::size_t kVecBytes = 32;
constexpr int kVecLanes = 2;

#define PIXMORPH_VEC_UNARY(name, op) \
    static inline Vec name(Vec a) { return {op(a.v)}; }
#define PIXMORPH_VEC_BINARY(name, op) \
    static inline Vec name(Vec a, Vec b) { return {op(a.v, b.v)}; }
#define PIXMORPH_VEC_SHIFT(name, op) \
    template <int N>                 \
    static inline Vec name(Vec a) {  \
        return {op(a.v, N)};         \
    }

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
static inline Vec LoadHalf(const void* p) {
    return {_mm256_castsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(p)))};
}
static inline void StoreHalf(void* p, Vec a) {
    _mm_storeu_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(a.v));
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
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvttpd_epi32(low.v)), _mm256_cvttpd_epi32(high.v),
                                    1)};
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
