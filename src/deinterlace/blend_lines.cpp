#include "deinterlace/blend_lines.h"

#include "deinterlace/x86/blend_lines_forms.h"
#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

void plain::InterpolateLine(std::uint8_t* dst, const std::uint8_t* field, const std::uint8_t* above,
                            const std::uint8_t* below, std::size_t count, std::uint32_t weight) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t mean = Mean(above[i], below[i]);
        dst[i] = static_cast<std::uint8_t>((field[i] * weight + 128 + mean * (256 - weight)) >> 8);
    }
}

void plain::CombineLine(std::uint8_t* dst, const std::uint8_t* forward, const std::uint8_t* backward, std::size_t count,
                        std::uint32_t weight) {
    for (std::size_t i = 0; i < count; ++i)
        dst[i] = static_cast<std::uint8_t>((backward[i] * (256 - weight) + 128 + forward[i] * weight) >> 8);
}

PIXMORPH_SLOT(InterpolateLineSlot, InterpolateLine, plain::InterpolateLine, simd_sse41::InterpolateLine,
              simd_avx2::InterpolateLine, simd_avx512::InterpolateLine);
PIXMORPH_SLOT(CombineLineSlot, CombineLine, plain::CombineLine, simd_sse41::CombineLine, simd_avx2::CombineLine,
              simd_avx512::CombineLine);

}  // namespace KorvaneSoftware
