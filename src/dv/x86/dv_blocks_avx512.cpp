#include "foundation/simd/vec_avx512.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

inline std::uint64_t NonZeroBytes(Vec a) { return _mm512_test_epi8_mask(a.v, a.v); }

}  // namespace
}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware

#include "dv/x86/dv_blocks.inc.h"

namespace KorvaneSoftware {

// With registers of half a block each, reordering is two look-ups in both.
void simd_avx512::ScanDvBlock(std::int16_t* coded, const std::int16_t* block, const std::uint8_t* scan) {
    const __m512i low = _mm512_loadu_si512(block), high = _mm512_loadu_si512(block + 32);
    for (int half = 0; half < 2; ++half) {
        const __m256i positions = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(scan + 32 * half));
        _mm512_storeu_si512(coded + 32 * half, _mm512_permutex2var_epi16(low, _mm512_cvtepu8_epi16(positions), high));
    }
}

}  // namespace KorvaneSoftware
