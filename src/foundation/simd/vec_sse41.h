// 16-byte registers for kernels that are written once for several instruction sets. See README.md here.
#pragma once

#include <smmintrin.h>

#include <cstddef>
#include <cstdint>

#define PIXMORPH_SIMD simd_sse41
#define PIXMORPH_SIMD_NAME(primitive) primitive##_Sse41

namespace KorvaneSoftware::PIXMORPH_SIMD {

struct Vec {
    __m128i v;
};
constexpr std::size_t kVecBytes = 16;
constexpr int kVecLanes = 1;  // 128-bit lanes

#define PIXMORPH_VEC_UNARY(name, op) \
    static inline Vec name(Vec a) { return {op(a.v)}; }
#define PIXMORPH_VEC_BINARY(name, op) \
    static inline Vec name(Vec a, Vec b) { return {op(a.v, b.v)}; }
#define PIXMORPH_VEC_SHIFT(name, op) \
    template <int N>                 \
    static inline Vec name(Vec a) {  \
        return {op(a.v, N)};         \
    }

static inline Vec Load(const void* p) { return {_mm_loadu_si128(static_cast<const __m128i*>(p))}; }
static inline void Store(void* p, Vec a) { _mm_storeu_si128(static_cast<__m128i*>(p), a.v); }
static inline void StoreAligned(void* p, Vec a) { _mm_store_si128(static_cast<__m128i*>(p), a.v); }
static inline void Stream(void* p, Vec a) { _mm_stream_si128(static_cast<__m128i*>(p), a.v); }
static inline void StreamFence() { _mm_sfence(); }
static inline Vec Zero() { return {_mm_setzero_si128()}; }
static inline Vec Set8(int x) { return {_mm_set1_epi8(static_cast<char>(x))}; }
static inline Vec Set16(int x) { return {_mm_set1_epi16(static_cast<short>(x))}; }
static inline Vec Set32(int x) { return {_mm_set1_epi32(x)}; }
// The same 16 bytes in every 128-bit lane.
static inline Vec Repeat128(const void* p) { return {_mm_loadu_si128(static_cast<const __m128i*>(p))}; }
// Bytes widened to 16 bits: kVecBytes / 2 bytes are read.
static inline Vec LoadWiden8(const void* p) {
    return {_mm_cvtepu8_epi16(_mm_loadl_epi64(static_cast<const __m128i*>(p)))};
}
// Half a register, kVecBytes / 2 bytes.
static inline Vec LoadHalf(const void* p) { return {_mm_loadl_epi64(static_cast<const __m128i*>(p))}; }
static inline void StoreHalf(void* p, Vec a) { _mm_storel_epi64(static_cast<__m128i*>(p), a.v); }

#define PIXMORPH_VEC_OP(op) _mm_##op
#define PIXMORPH_VEC_BITOP(op) _mm_##op##_si128
#include "foundation/simd/vec_ops.inc.h"

static inline Vec Min8u(Vec a, Vec b) { return {_mm_min_epu8(a.v, b.v)}; }
static inline Vec Blend8(Vec a, Vec b, Vec mask) { return {_mm_blendv_epi8(a.v, b.v, mask.v)}; }
// Order of 64-bit quarters after a lane-wise pack: with one lane nothing is to be done.
static inline Vec FixPack(Vec a) { return a; }
// Before lane-wise unpacks, so that Low and High together keep the order of the whole register.
static inline Vec PreUnpack(Vec a) { return a; }
// 128-bit halves of two registers after lane-wise unpacks, put in memory order.
static inline void FixUnpack(Vec&, Vec&) {}
static inline bool AllZero(Vec a) { return _mm_testz_si128(a.v, a.v) != 0; }
// One 16-byte load or store per 128-bit lane, `stride` bytes apart.
static inline Vec LoadLanes(const std::uint8_t* p, std::size_t) { return Load(p); }
static inline void StoreLanes(std::uint8_t* p, std::size_t, Vec a) { Store(p, a); }

// Doubles. A register of 32-bit integers is two of doubles.
struct VecDouble {
    __m128d v;
};
static inline VecDouble SetDouble(double x) { return {_mm_set1_pd(x)}; }
static inline VecDouble AddDouble(VecDouble a, VecDouble b) { return {_mm_add_pd(a.v, b.v)}; }
static inline VecDouble SubDouble(VecDouble a, VecDouble b) { return {_mm_sub_pd(a.v, b.v)}; }
static inline VecDouble MulDouble(VecDouble a, VecDouble b) { return {_mm_mul_pd(a.v, b.v)}; }
static inline VecDouble LowToDouble(Vec a) { return {_mm_cvtepi32_pd(a.v)}; }
static inline VecDouble HighToDouble(Vec a) { return {_mm_cvtepi32_pd(_mm_unpackhi_epi64(a.v, a.v))}; }
static inline Vec TruncateDoubles(VecDouble low, VecDouble high) {
    return {_mm_unpacklo_epi64(_mm_cvttpd_epi32(low.v), _mm_cvttpd_epi32(high.v))};
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
