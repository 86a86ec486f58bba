// From one packed 4:2:2 order to another.
#pragma once

#include "foundation/sample_order.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// Byte shuffle that turns one packed order into another.
template <PackedOrder kTo, PackedOrder kFrom>
struct PackedShuffle {
    alignas(16) std::uint8_t bytes[16] = {};

    constexpr PackedShuffle() {
        for (int pair = 0; pair < 16; pair += 4) {
            bytes[pair + kTo.y0] = static_cast<std::uint8_t>(pair + kFrom.y0);
            bytes[pair + kTo.y1] = static_cast<std::uint8_t>(pair + kFrom.y1);
            bytes[pair + kTo.u] = static_cast<std::uint8_t>(pair + kFrom.u);
            bytes[pair + kTo.v] = static_cast<std::uint8_t>(pair + kFrom.v);
        }
    }
};

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
