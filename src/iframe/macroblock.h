// How a macroblock of 16 by 16 pixels lies in memory: as two halves of eight lines, each of them Y left, Y right, Cb,
// Cr and thus an MCU of 4:2:2 as the pixel kernels of the JPEG family know it. Halves are the upper and the lower eight
// lines, or the even and the odd ones where the transform went by fields.
#pragma once

#include <cstddef>
#include <cstdint>

#include "iframe/block_kernels.h"

namespace KorvaneSoftware::iframe {

constexpr unsigned kMacroblockSize = 16;
constexpr unsigned kHalfLines = 8;
constexpr std::size_t kHalfBlocks = 4;
constexpr std::size_t kMacroblockBlocks = 8;  ///< Of 4:2:2, the only structure that is encoded.
constexpr std::size_t kMostBlocks = 12;       ///< Of 4:4:4.

/// Place in memory of each block in the order of the stream (figures 6-8 to 6-10); the last four are the right halves
/// of 4:4:4 chrominance. A 4:2:0 macroblock has the first six, its chrominance is spread to both halves afterwards.
inline constexpr std::uint8_t kBlockPlace[kMostBlocks] = {0, 1, 4, 5, 2, 3, 6, 7, 8, 9, 10, 11};

constexpr std::uint32_t MacroblocksOf(std::uint32_t pixels) { return (pixels + kMacroblockSize - 1) / kMacroblockSize; }

}  // namespace KorvaneSoftware::iframe
