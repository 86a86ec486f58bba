// Where the samples of packed and block formats lie: the one description that plain samples, vector code, titles and
// deinterlacing share.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

/// Packed 4:2:2: places within the four bytes of a pixel pair.
struct PackedOrder {
    std::uint8_t y0, y1, u, v;

    constexpr bool IsLumaFirst() const { return y0 < u; }
    constexpr bool IsVFirst() const { return v < u; }
};
inline constexpr PackedOrder kUyvyOrder{1, 3, 0, 2};
inline constexpr PackedOrder kYuy2Order{0, 2, 1, 3};
inline constexpr PackedOrder kYvyuOrder{0, 2, 3, 1};

/// Y41P: the places of 8 luma samples in their group, U0 Y0 V0 Y1 U4 Y2 V4 Y3 Y4 Y5 Y6 Y7, and of the first of its two
/// chroma pairs.
struct Y41POrder {
    static constexpr std::size_t kPixels = 8;
    static constexpr std::size_t kBytes = 12;
    static constexpr std::size_t kLuma[kPixels] = {1, 3, 5, 7, 8, 9, 10, 11};
    static constexpr std::size_t kU = 0;
    static constexpr std::size_t kV = 2;
    static constexpr std::size_t kPairStep = 4;  ///< From a chroma pair to the other.
};

/// Pixels of a block, the group that block formats, runs of titles and field restoration work in.
inline constexpr std::size_t kGroupPixels = 16;

/// Blocks: their bytes, and where the runs of 16 luma, 16 alpha, 8 U and 8 V samples start. V follows U.
struct BlockOrder {
    std::uint8_t bytes, y, alpha, u, v;

    static constexpr std::uint8_t kNone = 255;
    constexpr bool HasAlpha() const { return alpha != kNone; }
};
inline constexpr BlockOrder kY16Order{32, 0, BlockOrder::kNone, 16, 24};
inline constexpr BlockOrder kY16AOrder{48, 0, 16, 32, 40};
// Two pictures in turns: these are the first of Y32 and Y32A, and the second of Y32A.
inline constexpr BlockOrder kY32Order{64, 0, BlockOrder::kNone, 32, 40};
inline constexpr BlockOrder kY32AOrder{80, 0, 32, 48, 56};
inline constexpr BlockOrder kY32ABOrder{80, 16, 32, 64, 72};

}  // namespace KorvaneSoftware
