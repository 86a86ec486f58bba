#include "foundation/simd/vec_sse41.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

inline std::uint64_t NonZeroBytes(Vec a) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(a.v, _mm_setzero_si128()))) ^ 0xFFFFu;
}

}  // namespace
}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware

#include "dv/x86/dv_blocks.inc.h"
