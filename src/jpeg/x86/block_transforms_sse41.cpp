#include "foundation/simd/vec_sse41.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

// A bit for each value of a block that is not 0.
inline std::uint64_t NonZeroBits(const Vec (&v)[8]) {
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; i += 2) {
        const Vec bytes = Pack16To8s(v[i], v[i + 1]);
        const int zero = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes.v, _mm_setzero_si128()));
        bits |= static_cast<std::uint64_t>(~zero & 0xFFFF) << (8 * i);
    }
    return bits;
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD

#include "jpeg/x86/block_transforms.inc.h"
