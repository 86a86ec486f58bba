// 16-byte registers for kernels that are written once for several instruction sets. See README.md here.
#pragma once

#include <smmintrin.h>

#include <cstddef>
#include <cstdint>

#define PIXMORPH_SIMD simd_sse41

namespace KorvaneSoftware::PIXMORPH_SIMD {

struct Vec {
    __m128i v;
};
constexpr std::size_t kVecBytes = 16;
constexpr int kVecLanes = 1;  // 128-bit lanes

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
// Words widened to 32 bits: kVecBytes / 2 bytes are read.
static inline Vec LoadWiden16(const void* p) {
    return {_mm_cvtepu16_epi32(_mm_loadl_epi64(static_cast<const __m128i*>(p)))};
}
// Half a register, kVecBytes / 2 bytes.
static inline Vec LoadHalf(const void* p) { return {_mm_loadl_epi64(static_cast<const __m128i*>(p))}; }
static inline void StoreHalf(void* p, Vec a) { _mm_storel_epi64(static_cast<__m128i*>(p), a.v); }

// 32-bit integers to floats and back, truncating; floats are kept as their bits.
static inline Vec IntToFloat32(Vec a) { return {_mm_castps_si128(_mm_cvtepi32_ps(a.v))}; }
static inline Vec FloatToInt32(Vec a) { return {_mm_cvttps_epi32(_mm_castsi128_ps(a.v))}; }
static inline Vec AddFloat32(Vec a, Vec b) {
    return {_mm_castps_si128(_mm_add_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v)))};
}
static inline Vec MulFloat32(Vec a, Vec b) {
    return {_mm_castps_si128(_mm_mul_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v)))};
}
static inline Vec DivideFloat32(Vec a, Vec b) {
    return {_mm_castps_si128(_mm_div_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v)))};
}

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

// 128-bit lanes of two registers, seen as one row: the even ones into the first, the odd ones into the second.
// FixUnpack is the inverse.
static inline void Deinterleave128(Vec&, Vec&) {}
// 128-bit lanes of three registers, seen as one row: every third one. Interleave128 is the inverse.
static inline void Deinterleave128(Vec&, Vec&, Vec&) {}
static inline void Interleave128(Vec&, Vec&, Vec&) {}

// Double words of two neighbouring lanes, of one register or (here) of two: 0 1 4 5, then 2 6 3 7. SplitLanePairs is
// the inverse.
static inline void JoinLanePairs(Vec& a, Vec& b) {
    const __m128i first = _mm_unpacklo_epi64(a.v, b.v);
    b.v = _mm_unpackhi_epi32(a.v, b.v);
    a.v = first;
}
static inline void SplitLanePairs(Vec& a, Vec& b) {
    const __m128i ordered = _mm_shuffle_epi32(b.v, _MM_SHUFFLE(3, 1, 2, 0));
    b.v = _mm_unpackhi_epi64(a.v, ordered);
    a.v = _mm_unpacklo_epi64(a.v, ordered);
}

// 16 bytes for each 128-bit lane, each from an offset of its own.
static inline Vec LoadLanes128(const std::uint8_t* base, const std::uint32_t* offsets) {
    return Load(base + offsets[0]);
}
// Lanes of 16 or 32 bits narrowed without a change of order, saturated as unsigned: kVecBytes / 2 or / 4 bytes.
static inline void StoreNarrow16To8(void* p, Vec a) {
    _mm_storel_epi64(static_cast<__m128i*>(p), _mm_packus_epi16(a.v, a.v));
}
static inline void StoreNarrow32To16(void* p, Vec a) {
    _mm_storel_epi64(static_cast<__m128i*>(p), _mm_packus_epi32(a.v, a.v));
}
static inline void StoreNarrow32To8(void* p, Vec a) {
    const __m128i words = _mm_packus_epi32(a.v, a.v);
    const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    __builtin_memcpy(p, &bytes, sizeof(bytes));
}
// Signed 32-bit lanes times `scale` plus 0.5, truncated; conversion, product and sum are each rounded to single
// precision.
static inline Vec ScaleAndRound32(Vec a, float scale) {
    const __m128 product = _mm_mul_ps(_mm_cvtepi32_ps(a.v), _mm_set1_ps(scale));
    return {_mm_cvttps_epi32(_mm_add_ps(product, _mm_set1_ps(0.5f)))};
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
