#include "foundation/simd/vec_avx2.h"
#include "iframe/inverse_transform.h"
#include "iframe/x86/block_kernel_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

using namespace iframe;

/// Eight floats, one of each column.
struct Lanes {
    __m256 v;
    friend Lanes operator+(Lanes a, Lanes b) { return {_mm256_add_ps(a.v, b.v)}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {_mm256_sub_ps(a.v, b.v)}; }
    friend Lanes operator*(Lanes a, float b) { return {_mm256_mul_ps(a.v, _mm256_set1_ps(b))}; }
};

void Transpose(Lanes (&v)[8]) {
    __m256 a[8], b[8];
    for (int i = 0; i < 8; i += 2) {
        a[i] = _mm256_unpacklo_ps(v[i].v, v[i + 1].v);
        a[i + 1] = _mm256_unpackhi_ps(v[i].v, v[i + 1].v);
    }
    for (int i = 0; i < 8; i += 4) {
        b[i] = _mm256_shuffle_ps(a[i], a[i + 2], 0x44);
        b[i + 1] = _mm256_shuffle_ps(a[i], a[i + 2], 0xEE);
        b[i + 2] = _mm256_shuffle_ps(a[i + 1], a[i + 3], 0x44);
        b[i + 3] = _mm256_shuffle_ps(a[i + 1], a[i + 3], 0xEE);
    }
    for (int i = 0; i < 4; ++i) {
        v[i].v = _mm256_permute2f128_ps(b[i], b[i + 4], 0x20);
        v[i + 4].v = _mm256_permute2f128_ps(b[i], b[i + 4], 0x31);
    }
}

__m256i SamplesOf(Lanes a) {
    const __m256 clamped = _mm256_min_ps(_mm256_max_ps(a.v, _mm256_setzero_ps()), _mm256_set1_ps(255.0F));
    return _mm256_cvttps_epi32(_mm256_add_ps(clamped, _mm256_set1_ps(0.5F)));
}

void InverseTransform(std::int16_t* samples, std::int16_t* coefficients) {
    Lanes v[8];
    for (int i = 0; i < 8; ++i) {
        const __m128i words = _mm_load_si128(reinterpret_cast<const __m128i*>(coefficients + i * 8));
        v[i].v = _mm256_mul_ps(_mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(words)),
                               _mm256_load_ps(kCoefficientFactors.values + i * 8));
    }
    for (int i = 0; i < 64; i += 16)
        _mm256_store_si256(reinterpret_cast<__m256i*>(coefficients + i), _mm256_setzero_si256());
    InversePass(v);
    Transpose(v);
    InversePass(v);
    for (int i = 0; i < 8; i += 2) {
        const __m256i mixed = _mm256_packs_epi32(SamplesOf(v[i]), SamplesOf(v[i + 1]));
        const __m256i rows = _mm256_sub_epi16(_mm256_permute4x64_epi64(mixed, 0xD8), _mm256_set1_epi16(128));
        _mm256_store_si256(reinterpret_cast<__m256i*>(samples + i * 8), rows);
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::IFrameInverseTransform(std::int16_t* samples, std::int16_t* coefficients, std::size_t count) {
    for (std::size_t i = 0; i < count * kBlockLength; i += kBlockLength)
        InverseTransform(samples + i, coefficients + i);
}

}  // namespace KorvaneSoftware
