// Vector forms of the field restoration lines, one file per instruction set.
#pragma once

#include "deinterlace/field_restoration.h"

namespace KorvaneSoftware {

#define PIXMORPH_RESTORATION(set)                                                                    \
    void RestoreLineY16_##set(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,  \
                              const MotionThresholds& thresholds);                                   \
    void RestoreLineY16A_##set(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups, \
                               const MotionThresholds& thresholds);                                  \
    void PresentLineY16_##set(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups);       \
    void PresentLineY16A_##set(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups);

PIXMORPH_RESTORATION(Plain)
PIXMORPH_RESTORATION(Sse41)
PIXMORPH_RESTORATION(Avx2)
PIXMORPH_RESTORATION(Avx512)

#undef PIXMORPH_RESTORATION

}  // namespace KorvaneSoftware
