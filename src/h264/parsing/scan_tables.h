// The orders of coefficients, ITU-T H.264 clauses 8.5.6 and 8.5.7: raster positions by index.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// [zig-zag, field scan]
inline constexpr std::uint8_t kH264Scan4x4[2][16] = {{0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15},
                                                     {0, 4, 1, 8, 12, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15}};

inline constexpr std::uint8_t kH264Scan8x8[2][64] = {
    {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
     41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
     30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63},
    {0,  8,  16, 1,  9,  24, 32, 17, 2, 25, 40, 48, 56, 33, 10, 3,  18, 41, 49, 57, 26, 11,
     4,  19, 34, 42, 50, 58, 27, 12, 5, 20, 35, 43, 51, 59, 28, 13, 6,  21, 36, 44, 52, 60,
     29, 14, 22, 37, 45, 53, 61, 30, 7, 15, 38, 46, 54, 62, 23, 31, 39, 47, 55, 63}};

/// CAVLC codes an 8x8 block as four of sixteen coefficients, each of which takes every fourth of the scan.
struct H264CavlcScans8x8 {
    std::uint8_t position[2][4][16];  ///< [zig-zag, field scan][block][index]
};

constexpr H264CavlcScans8x8 MakeCavlcScans8x8() {
    H264CavlcScans8x8 made = {};
    for (unsigned field = 0; field < 2; ++field) {
        for (unsigned i = 0; i < 64; ++i) made.position[field][i % 4][i / 4] = kH264Scan8x8[field][i];
    }
    return made;
}

inline constexpr H264CavlcScans8x8 kH264CavlcScans8x8 = MakeCavlcScans8x8();

/// Chroma DC: raster positions in a block two wide. 4:2:0 has the order of the raster itself.
inline constexpr std::uint8_t kH264ScanDc420[4] = {0, 1, 2, 3};
inline constexpr std::uint8_t kH264ScanDc422[8] = {0, 2, 1, 4, 6, 3, 5, 7};

}  // namespace KorvaneSoftware
