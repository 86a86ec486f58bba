// What the plain forms of layers share.
#pragma once

#include <algorithm>
#include <cstdint>

namespace KorvaneSoftware {

/// One channel of a layer added to what is there.
inline std::uint8_t AddSaturated(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::uint8_t>(std::min(a + b, 255u));
}

}  // namespace KorvaneSoftware
