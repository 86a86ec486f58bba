#include "foundation/simd/vec_sse41.h"
#include "iframe/inverse_transform.h"
#include "iframe/x86/block_kernel_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

using namespace iframe;

/// Four floats, one of each of four columns.
struct Lanes {
    __m128 v;
    friend Lanes operator+(Lanes a, Lanes b) { return {_mm_add_ps(a.v, b.v)}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {_mm_sub_ps(a.v, b.v)}; }
    friend Lanes operator*(Lanes a, float b) { return {_mm_mul_ps(a.v, _mm_set1_ps(b))}; }
};

__m128i SamplesOf(Lanes a) {
    const __m128 clamped = _mm_min_ps(_mm_max_ps(a.v, _mm_setzero_ps()), _mm_set1_ps(255.0F));
    return _mm_cvttps_epi32(_mm_add_ps(clamped, _mm_set1_ps(0.5F)));
}

// Half a block at a time: all of it would not fit the registers.
void InverseTransform(std::int16_t* samples, std::int16_t* coefficients) {
    alignas(16) float rows[64];
    for (int half = 0; half < 8; half += 4) {
        Lanes v[8];
        for (int i = 0; i < 8; ++i) {
            const __m128i words = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(coefficients + i * 8 + half));
            v[i].v = _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvtepi16_epi32(words)),
                                _mm_load_ps(kCoefficientFactors.values + i * 8 + half));
        }
        InversePass(v);
        for (int i = 0; i < 8; i += 4) {
            _MM_TRANSPOSE4_PS(v[i].v, v[i + 1].v, v[i + 2].v, v[i + 3].v);
            for (int row = 0; row < 4; ++row) _mm_store_ps(rows + (half + row) * 8 + i, v[i + row].v);
        }
    }
    for (int i = 0; i < 64; i += 8) _mm_store_si128(reinterpret_cast<__m128i*>(coefficients + i), _mm_setzero_si128());
    for (int half = 0; half < 8; half += 4) {
        Lanes v[8];
        for (int i = 0; i < 8; ++i) v[i].v = _mm_load_ps(rows + i * 8 + half);
        InversePass(v);
        for (int i = 0; i < 8; i += 2) {
            const __m128i pair =
                _mm_sub_epi16(_mm_packs_epi32(SamplesOf(v[i]), SamplesOf(v[i + 1])), _mm_set1_epi16(128));
            _mm_storel_epi64(reinterpret_cast<__m128i*>(samples + i * 8 + half), pair);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(samples + i * 8 + 8 + half), _mm_srli_si128(pair, 8));
        }
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::IFrameInverseTransform(std::int16_t* samples, std::int16_t* coefficients, std::size_t count) {
    for (std::size_t i = 0; i < count * kBlockLength; i += kBlockLength)
        InverseTransform(samples + i, coefficients + i);
}

}  // namespace KorvaneSoftware
