#include "foundation/simd/vec_avx2.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

inline std::uint64_t NonZeroBytes(Vec a) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(a.v, _mm256_setzero_si256()))) ^
           0xFFFFFFFFu;
}

}  // namespace
}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware

#include "dv/x86/dv_blocks.inc.h"
