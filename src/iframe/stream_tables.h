// The tables of ISO/IEC 13818-2 that intra pictures need, entered once. What codes and decodes by them is built from
// these at compile time (block_codes.h).
//
// A code word is kept as a number with a one before its first bit: 0x6 is the word "10".
#pragma once

#include <cstdint>

namespace KorvaneSoftware::iframe {

// Rows of eight, and words by run.
// clang-format off

/// Natural position (row * 8 + column) of each place in the zigzag scan, Figure 7-2.
inline constexpr std::uint8_t kZigzagScan[64] = {
     0,  1,  8, 16,  9,  2,  3, 10,
    17, 24, 32, 25, 18, 11,  4,  5,
    12, 19, 26, 33, 40, 48, 41, 34,
    27, 20, 13,  6,  7, 14, 21, 28,
    35, 42, 49, 56, 57, 50, 43, 36,
    29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46,
    53, 60, 61, 54, 47, 55, 62, 63,
};

/// The same for the alternate scan, Figure 7-3.
inline constexpr std::uint8_t kAlternateScan[64] = {
     0,  8, 16, 24,  1,  9,  2, 10,
    17, 25, 32, 40, 48, 56, 57, 49,
    41, 33, 26, 18,  3, 11,  4, 12,
    19, 27, 34, 42, 50, 58, 35, 43,
    51, 59, 20, 28,  5, 13,  6, 14,
    21, 29, 36, 44, 52, 60, 37, 45,
    53, 61, 22, 30,  7, 15, 23, 31,
    38, 46, 54, 62, 39, 47, 55, 63,
};

/// Default matrix for intra blocks in natural order, clause 6.3.11.
inline constexpr std::uint8_t kDefaultIntraMatrix[64] = {
     8, 16, 19, 22, 26, 27, 29, 34,
    16, 16, 22, 24, 27, 29, 34, 37,
    19, 22, 26, 27, 29, 34, 34, 38,
    22, 22, 26, 27, 29, 34, 37, 40,
    22, 26, 27, 29, 32, 35, 40, 48,
    26, 27, 29, 32, 35, 40, 48, 58,
    26, 27, 29, 34, 38, 46, 56, 69,
    27, 29, 35, 38, 46, 56, 69, 83,
};

/// Table 7-6: the scale of each quantiser_scale_code by q_scale_type. Code 0 is forbidden.
inline constexpr std::uint8_t kQuantiserScale[2][32] = {
    {0,  2,  4,  6,  8,  10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30,
     32, 34, 36, 38, 40, 42, 44, 46, 48, 50, 52, 54, 56, 58, 60, 62},
    {0,  1,  2,  3,  4,  5,  6,  7,  8,  10, 12, 14, 16, 18, 20,  22,
     24, 28, 32, 36, 40, 44, 48, 52, 56, 64, 72, 80, 88, 96, 104, 112},
};

/// Table B.1: increments 1 to 33.
inline constexpr std::uint16_t kAddressIncrementWords[33] = {
    0x3,   0xB,   0xA,   0x13,  0x12,  0x23,  0x22,  0x87,  0x86,  0x10B, 0x10A,
    0x109, 0x108, 0x107, 0x106, 0x417, 0x416, 0x415, 0x414, 0x413, 0x412, 0x823,
    0x822, 0x821, 0x820, 0x81F, 0x81E, 0x81D, 0x81C, 0x81B, 0x81A, 0x819, 0x818,
};
/// Table B.1: macroblock_escape, which adds 33.
inline constexpr std::uint16_t kAddressEscapeWord = 0x808;

/// Table B.12: sizes 0 to 11 of luminance DC differences.
inline constexpr std::uint16_t kLumaDcSizeWords[12] = {
    0xC, 0x4, 0x5, 0xD, 0xE, 0x1E, 0x3E, 0x7E, 0xFE, 0x1FE, 0x3FE, 0x3FF,
};
/// Table B.13: the same for chrominance.
inline constexpr std::uint16_t kChromaDcSizeWords[12] = {
    0x4, 0x5, 0x6, 0xE, 0x1E, 0x3E, 0x7E, 0xFE, 0x1FE, 0x3FE, 0x7FE, 0x7FF,
};

/// Tables B.14 and B.15 have words for runs 0 to 31, for each of them levels 1 to these.
inline constexpr std::uint8_t kLevelsOfRun[32] = {40, 18, 5, 4, 3, 3, 3, 2, 2, 2, 2, 2, 2, 2, 2, 2,
                                                  2,  1,  1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
constexpr int kCoefficientWords = 111;

/// The words of one table without the sign bit that follows, in ascending order of run, then level.
struct CoefficientWords {
    std::uint32_t words[kCoefficientWords];
    std::uint32_t endOfBlock;
};

/// Table B.14, intra_vlc_format 0. Its second word for a first coefficient is of no use in intra blocks.
inline constexpr CoefficientWords kTableB14 = {
    {
        // Run 0.
        0x7, 0x14, 0x25, 0x86, 0x126, 0x121, 0x40A, 0x101D, 0x1018, 0x1013, 0x1010, 0x201A, 0x2019, 0x2018,
        0x2017, 0x401F, 0x401E, 0x401D, 0x401C, 0x401B, 0x401A, 0x4019, 0x4018, 0x4017, 0x4016, 0x4015,
        0x4014, 0x4013, 0x4012, 0x4011, 0x4010, 0x8018, 0x8017, 0x8016, 0x8015, 0x8014, 0x8013, 0x8012,
        0x8011, 0x8010,
        // Run 1.
        0xB, 0x46, 0x125, 0x40C, 0x101B, 0x2016, 0x2015, 0x801F, 0x801E, 0x801D, 0x801C, 0x801B, 0x801A,
        0x8019, 0x10013, 0x10012, 0x10011, 0x10010,
        // Runs 2 to 6: five, four and three levels.
        0x15, 0x84, 0x40B, 0x1014, 0x2014, 0x27, 0x124, 0x101C, 0x2013, 0x26, 0x40F, 0x1012, 0x47, 0x409,
        0x2012, 0x45, 0x101E, 0x10014,
        // Runs 7 to 16: two levels.
        0x44, 0x1015, 0x87, 0x1011, 0x85, 0x2011, 0x127, 0x2010, 0x123, 0x1001A, 0x122, 0x10019, 0x120,
        0x10018, 0x40E, 0x10017, 0x40D, 0x10016, 0x408, 0x10015,
        // Runs 17 to 31: one level.
        0x101F, 0x101A, 0x1019, 0x1017, 0x1016, 0x201F, 0x201E, 0x201D, 0x201C, 0x201B, 0x1001F, 0x1001E,
        0x1001D, 0x1001C, 0x1001B,
    },
    0x6,
};

/// Table B.15, intra_vlc_format 1.
inline constexpr CoefficientWords kTableB15 = {
    {
        // Run 0.
        0x6, 0xE, 0x17, 0x3C, 0x3D, 0x45, 0x44, 0xFB, 0xFC, 0x123, 0x122, 0x1FA, 0x1FB, 0x1FE, 0x1FF, 0x401F,
        0x401E, 0x401D, 0x401C, 0x401B, 0x401A, 0x4019, 0x4018, 0x4017, 0x4016, 0x4015, 0x4014, 0x4013,
        0x4012, 0x4011, 0x4010, 0x8018, 0x8017, 0x8016, 0x8015, 0x8014, 0x8013, 0x8012, 0x8011, 0x8010,
        // Run 1.
        0xA, 0x26, 0xF9, 0x127, 0x120, 0x2016, 0x2015, 0x801F, 0x801E, 0x801D, 0x801C, 0x801B, 0x801A, 0x8019,
        0x10013, 0x10012, 0x10011, 0x10010,
        // Runs 2 to 6: five, four and three levels.
        0x25, 0x87, 0x1FC, 0x40C, 0x2014, 0x27, 0x126, 0x101C, 0x2013, 0x46, 0x1FD, 0x1012, 0x47, 0x204,
        0x2012, 0x86, 0x101E, 0x10014,
        // Runs 7 to 16: two levels.
        0x84, 0x1015, 0x85, 0x1011, 0xF8, 0x2011, 0xFA, 0x2010, 0x121, 0x1001A, 0x125, 0x10019, 0x124,
        0x10018, 0x205, 0x10017, 0x207, 0x10016, 0x40D, 0x10015,
        // Runs 17 to 31: one level.
        0x101F, 0x101A, 0x1019, 0x1017, 0x1016, 0x201F, 0x201E, 0x201D, 0x201C, 0x201B, 0x1001F, 0x1001E,
        0x1001D, 0x1001C, 0x1001B,
    },
    0x16,
};

/// Table B.16: the escape word of both tables; 6 bits of run and 12 bits of signed level follow.
constexpr std::uint32_t kCoefficientEscapeWord = 0x41;

// clang-format on

}  // namespace KorvaneSoftware::iframe
