#include "h264/reconstruction/intra_availability.h"

namespace KorvaneSoftware {
namespace {

// Blocks by place whose upper right neighbour lies in the macroblock and is decoded before them.
constexpr std::uint32_t kTopRightInside = 0x5750;

}  // namespace

std::uint32_t H264IntraAvailability::Of4x4(unsigned place) const {
    const unsigned x = place % 4, y = place / 4;
    const std::uint32_t leftHalf = y < 2 ? NEIGHBOUR_LEFT_UPPER : NEIGHBOUR_LEFT_LOWER;
    const bool top = y > 0 || (macroblock & NEIGHBOUR_TOP) != 0;
    const bool left = x > 0 || (macroblock & leftHalf) != 0;
    const bool corner = x == 0 ? corners[y] : top;
    const bool right = y > 0 ? (kTopRightInside >> place & 1) != 0 : x < 3 ? top : topRight;
    return (left ? NEIGHBOUR_LEFT : 0u) | (top ? NEIGHBOUR_TOP : 0u) | (corner ? NEIGHBOUR_TOP_LEFT : 0u) |
           (right ? NEIGHBOUR_TOP_RIGHT : 0u);
}

std::uint32_t H264IntraAvailability::Of8x8(unsigned block) const {
    constexpr unsigned kPlaces[4] = {0, 2, 8, 10};
    const std::uint32_t found = Of4x4(kPlaces[block]) & ~std::uint32_t{NEIGHBOUR_TOP_RIGHT};
    const bool right = block == 0 ? (macroblock & NEIGHBOUR_TOP) != 0 : block == 1 ? topRight : block == 2;
    return found | (right ? NEIGHBOUR_TOP_RIGHT : 0u);
}

H264IntraAvailability FindIntraAvailability(const H264Neighbours& neighbours, const H264MacroblockRecord* beside,
                                            bool constrained) {
    const auto usable = [=](const H264MacroblockRecord* mb) {
        return mb != nullptr && (!constrained || (mb->mbType & kH264InterBits) == 0);
    };
    const bool mixed = beside == nullptr || usable(beside);
    H264IntraAvailability found = {};
    if (mixed && usable(neighbours.left[0])) found.macroblock |= NEIGHBOUR_LEFT_UPPER;
    if (mixed && usable(neighbours.left[1])) found.macroblock |= NEIGHBOUR_LEFT_LOWER;
    if (usable(neighbours.top)) found.macroblock |= NEIGHBOUR_TOP;
    found.topRight = usable(neighbours.topRight);
    for (unsigned row = 0; row < 4; ++row) found.corners[row] = usable(neighbours.corners[row].mb);
    if (found.corners[0]) found.macroblock |= NEIGHBOUR_TOP_LEFT;
    return found;
}

}  // namespace KorvaneSoftware
