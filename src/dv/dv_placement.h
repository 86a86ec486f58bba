// Where a macroblock of a video segment lies in the picture.
#pragma once

#include "dv/dv_streams.h"

namespace KorvaneSoftware {

/// Luminance area of a macroblock. 32x8 has its four luminance blocks side by side, 16x16 two by two, 16x8 two alone.
enum class MacroblockShape : std::uint8_t { k16x16, k32x8, k16x8 };

struct MacroblockPlace {
    std::uint16_t x;  ///< Luminance samples of the coded picture.
    std::uint16_t y;
    MacroblockShape shape;
};

/// Whether a DIF sequence of the frame carries macroblocks. At 50 Hz and 100 Mbit some do not: their blocks carry
/// nothing but DIF IDs.
bool HasMacroblocks(const DvStream& stream, unsigned sequence);

/// Place `i` (0 to 4) of segment `segment` of a sequence that has macroblocks.
/// @param phase  of 720 lines: 0 for a frame in channels 0 and 1, 2 for one in channels 2 and 3; otherwise 0
MacroblockPlace PlaceMacroblock(const DvStream& stream, unsigned sequence, unsigned segment, unsigned i,
                                unsigned phase);

}  // namespace KorvaneSoftware
