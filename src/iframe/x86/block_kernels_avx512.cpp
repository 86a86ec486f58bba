#include "foundation/simd/vec_avx512.h"
#include "iframe/inverse_transform.h"
#include "iframe/x86/block_kernel_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

using namespace iframe;

/// Sixteen floats: one of each column of a block in the lower half, of the next block in the upper half.
struct Lanes {
    __m512 v;
    friend Lanes operator+(Lanes a, Lanes b) { return {_mm512_add_ps(a.v, b.v)}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {_mm512_sub_ps(a.v, b.v)}; }
    friend Lanes operator*(Lanes a, float b) { return {_mm512_mul_ps(a.v, _mm512_set1_ps(b))}; }
};

// Both halves for themselves.
void Transpose(Lanes (&v)[8]) {
    const __m512i lower = _mm512_setr_epi32(0, 1, 2, 3, 16, 17, 18, 19, 8, 9, 10, 11, 24, 25, 26, 27);
    const __m512i upper = _mm512_setr_epi32(4, 5, 6, 7, 20, 21, 22, 23, 12, 13, 14, 15, 28, 29, 30, 31);
    __m512 a[8], b[8];
    for (int i = 0; i < 8; i += 2) {
        a[i] = _mm512_unpacklo_ps(v[i].v, v[i + 1].v);
        a[i + 1] = _mm512_unpackhi_ps(v[i].v, v[i + 1].v);
    }
    for (int i = 0; i < 8; i += 4) {
        b[i] = _mm512_shuffle_ps(a[i], a[i + 2], 0x44);
        b[i + 1] = _mm512_shuffle_ps(a[i], a[i + 2], 0xEE);
        b[i + 2] = _mm512_shuffle_ps(a[i + 1], a[i + 3], 0x44);
        b[i + 3] = _mm512_shuffle_ps(a[i + 1], a[i + 3], 0xEE);
    }
    for (int i = 0; i < 4; ++i) {
        v[i].v = _mm512_permutex2var_ps(b[i], lower, b[i + 4]);
        v[i + 4].v = _mm512_permutex2var_ps(b[i], upper, b[i + 4]);
    }
}

void InverseTransformTwo(std::int16_t* samples, std::int16_t* coefficients) {
    Lanes v[8];
    for (int i = 0; i < 8; ++i) {
        const __m128i first = _mm_load_si128(reinterpret_cast<const __m128i*>(coefficients + i * 8));
        const __m128i second = _mm_load_si128(reinterpret_cast<const __m128i*>(coefficients + 64 + i * 8));
        const __m512i words = _mm512_cvtepi16_epi32(_mm256_inserti128_si256(_mm256_castsi128_si256(first), second, 1));
        const __m512 factors = _mm512_castpd_ps(
            _mm512_broadcast_f64x4(_mm256_castps_pd(_mm256_load_ps(kCoefficientFactors.values + i * 8))));
        v[i].v = _mm512_mul_ps(_mm512_cvtepi32_ps(words), factors);
    }
    for (int i = 0; i < 128; i += 32) _mm512_store_si512(coefficients + i, _mm512_setzero_si512());
    InversePass(v);
    Transpose(v);
    InversePass(v);
    for (int i = 0; i < 8; ++i) {
        const __m512 clamped = _mm512_min_ps(_mm512_max_ps(v[i].v, _mm512_setzero_ps()), _mm512_set1_ps(255.0F));
        const __m512i rounded = _mm512_cvttps_epi32(_mm512_add_ps(clamped, _mm512_set1_ps(0.5F)));
        const __m256i rows = _mm256_sub_epi16(_mm512_cvtepi32_epi16(rounded), _mm256_set1_epi16(128));
        _mm_store_si128(reinterpret_cast<__m128i*>(samples + i * 8), _mm256_castsi256_si128(rows));
        _mm_store_si128(reinterpret_cast<__m128i*>(samples + 64 + i * 8), _mm256_extracti128_si256(rows, 1));
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::IFrameInverseTransform(std::int16_t* samples, std::int16_t* coefficients, std::size_t count) {
    for (std::size_t i = 0; i < count * kBlockLength; i += 2 * kBlockLength)
        InverseTransformTwo(samples + i, coefficients + i);
}

}  // namespace KorvaneSoftware
