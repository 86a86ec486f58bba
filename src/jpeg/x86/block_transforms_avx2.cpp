#include "foundation/simd/vec_avx2.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

// A bit for each value of a block that is not 0.
inline std::uint64_t NonZeroBits(const Vec (&v)[4]) {
    std::uint64_t bits = 0;
    for (int i = 0; i < 4; i += 2) {
        const Vec bytes = FixPack(Pack16To8s(v[i], v[i + 1]));
        const auto zero =
            static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes.v, _mm256_setzero_si256())));
        bits |= static_cast<std::uint64_t>(~zero) << (16 * i);
    }
    return bits;
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD

#include "jpeg/x86/block_transforms.inc.h"
