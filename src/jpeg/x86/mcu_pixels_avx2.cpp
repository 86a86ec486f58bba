#include "foundation/simd/vec_avx2.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

inline Vec LoadLines(const std::uint8_t* first, const std::uint8_t* second) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(second));
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1)};
}
inline void StoreLines(std::uint8_t* first, std::uint8_t* second, Vec v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(first), _mm256_castsi256_si128(v.v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(second), _mm256_extracti128_si256(v.v, 1));
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD

#include "jpeg/x86/mcu_pixels.inc.h"
