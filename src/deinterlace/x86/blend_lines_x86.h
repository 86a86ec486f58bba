// Vector forms of the weighted means, one file per instruction set.
#pragma once

#include "deinterlace/blend_lines.h"

namespace KorvaneSoftware {

#define PIXMORPH_BLENDS(set)                                                                             \
    void InterpolateLine_##set(std::uint8_t* dst, const std::uint8_t* field, const std::uint8_t* above,  \
                               const std::uint8_t* below, std::size_t count, std::uint32_t weight);      \
    void CombineLine_##set(std::uint8_t* dst, const std::uint8_t* forward, const std::uint8_t* backward, \
                           std::size_t count, std::uint32_t weight);

PIXMORPH_BLENDS(Sse41)
PIXMORPH_BLENDS(Avx2)
PIXMORPH_BLENDS(Avx512)

#undef PIXMORPH_BLENDS

}  // namespace KorvaneSoftware
