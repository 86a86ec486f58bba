// Where the blocks of a macroblock lie in its DIF block.
#pragma once

#include "dv/dv_image.h"

namespace KorvaneSoftware {

constexpr std::int8_t kEmptyPlace = -1;

/// A place in a video DIF block. Each begins and ends at a byte.
struct DvBlockPlace {
    std::uint8_t offset;  ///< From the first byte of the DIF block.
    std::uint8_t bytes;
    std::int8_t block;  ///< Number of the block in the macroblock, or kEmptyPlace.
};

struct DvBlockLayout {
    std::uint8_t places;
    DvBlockPlace place[kMostMacroblockBlocks];
};

/// At 50 Mbit the places of Y1 and Y3 hold blocks without content, whose free space serves the others.
constexpr DvBlockLayout kLayout25 = {6, {{4, 14, 0}, {18, 14, 1}, {32, 14, 2}, {46, 14, 3}, {60, 10, 4}, {70, 10, 5}}};
constexpr DvBlockLayout kLayout50 = {
    6, {{4, 14, 0}, {18, 14, kEmptyPlace}, {32, 14, 1}, {46, 14, kEmptyPlace}, {60, 10, 2}, {70, 10, 3}}};
constexpr DvBlockLayout kLayout100 = {
    8, {{4, 10, 0}, {14, 10, 1}, {24, 10, 2}, {34, 10, 3}, {44, 10, 4}, {54, 10, 5}, {64, 8, 6}, {72, 8, 7}}};

constexpr const DvBlockLayout& BlockLayoutOf(const DvStream& stream) {
    if (stream.IsHd()) return kLayout100;
    return stream.sampling == DvSampling::k422 ? kLayout50 : kLayout25;
}

/// Bits of a segment behind the heads of its five DIF blocks.
constexpr unsigned kSegmentBits = 5 * 76 * 8;

}  // namespace KorvaneSoftware
