// Scan orders, areas, quantiser steps and weights of the family. Coefficients are numbered in two ways: by natural
// position (row * 8 + column; in mode 2-4-8 rows 0 to 3 are those of the sums of line pairs, 4 to 7 those of the
// differences) and by coded position, the place in the scan of the block's mode. Areas go by coded position alike in
// both modes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

constexpr std::size_t kDvBlockValues = 64;

/// DCT modes, as a block's mode bit has them.
enum DvDctMode : std::uint8_t { DV_DCT_88 = 0, DV_DCT_248 = 1 };

using DvScan = std::array<std::uint8_t, kDvBlockValues>;
using DvFactors = std::array<std::int16_t, kDvBlockValues>;

namespace dv_tables {

/// The diagonal scan of 8-8 blocks: natural position by coded position (IEC 61834-2; the same as ITU-T T.81 Figure
/// A.6).
constexpr DvScan MakeScan88() {
    DvScan scan{};
    int row = 0, column = 0;
    for (std::uint8_t& natural : scan) {
        natural = static_cast<std::uint8_t>(8 * row + column);
        const bool isRising = (row + column) % 2 == 0;
        int& ahead = isRising ? column : row;
        int& behind = isRising ? row : column;
        if (ahead == 7) {
            ++behind;
        } else {
            ++ahead;
            if (behind > 0) --behind;
        }
    }
    return scan;
}

/// The scan of 2-4-8 blocks (IEC 61834-2): sums and differences in turn, along the listed positions of a half.
constexpr DvScan MakeScan248() {
    constexpr std::uint8_t kHalf[kDvBlockValues / 2] = {0,  1, 8, 2,  9,  16, 24, 17, 10, 3, 4,  11, 18, 25, 26, 19,
                                                        12, 5, 6, 13, 20, 27, 28, 21, 14, 7, 15, 22, 29, 30, 23, 31};
    DvScan scan{};
    for (std::size_t i = 0; i < kDvBlockValues / 2; ++i) {
        scan[2 * i] = kHalf[i];
        scan[2 * i + 1] = static_cast<std::uint8_t>(kHalf[i] + 32);
    }
    return scan;
}

constexpr DvScan kScans[2] = {MakeScan88(), MakeScan248()};

/// First coded position of each area; position 0, the DC value, belongs to none.
constexpr std::uint8_t kAreaStarts[5] = {1, 6, 21, 43, 64};

constexpr unsigned AreaOf(std::size_t codedPosition) {
    unsigned area = 0;
    while (area < 3 && codedPosition >= kAreaStarts[area + 1]) ++area;
    return area;
}

/// Patterns of steps by area, as shifts (IEC 61834-2; the patterns are numbered here).
constexpr std::uint8_t kStepShifts[13][4] = {{0, 0, 0, 0}, {0, 0, 0, 1}, {0, 0, 1, 1}, {0, 1, 1, 2}, {1, 1, 2, 2},
                                             {1, 2, 2, 3}, {2, 2, 3, 3}, {2, 3, 3, 4}, {3, 3, 4, 4}, {1, 1, 1, 1},
                                             {1, 1, 1, 2}, {3, 4, 4, 5}, {4, 4, 5, 5}};

/// Pattern of each class and quantisation number.
constexpr std::uint8_t kStepPattern[4][16] = {{5, 5, 4, 4, 3, 3, 2, 2, 1, 0, 0, 0, 0, 0, 0, 0},
                                              {7, 6, 6, 5, 5, 4, 4, 3, 3, 2, 2, 1, 0, 0, 0, 0},
                                              {8, 8, 7, 7, 6, 6, 5, 5, 4, 4, 3, 3, 2, 2, 1, 0},
                                              {12, 11, 11, 8, 8, 7, 7, 6, 6, 5, 5, 4, 4, 10, 9, 9}};

constexpr unsigned StepShift(unsigned quantiserClass, unsigned number, std::size_t codedPosition) {
    return kStepShifts[kStepPattern[quantiserClass][number]][AreaOf(codedPosition)];
}

/// Steps of 100 Mbit streams by quantisation number, for class 0; each class doubles them (SMPTE 370M). There are no
/// areas.
constexpr std::uint8_t kHdSteps[16] = {1, 1, 2, 3, 4, 5, 6, 7, 8, 16, 18, 20, 22, 24, 28, 52};

// The weights of IEC 61834-2 follow from these, with cos(m pi / 16): amplitude = orthonormal coefficient * w(row) *
// w(column) / 2.
constexpr double kCos[8] = {1.0,
                            0.98078528040323044913,
                            0.92387953251128675613,
                            0.83146961230254523708,
                            0.70710678118654752440,
                            0.55557023301960222474,
                            0.38268343236508977173,
                            0.19509032201612826785};
constexpr double kLineWeight[8] = {1.0,
                                   kCos[4] / (4 * kCos[7] * kCos[2]),
                                   kCos[4] / (2 * kCos[6]),
                                   1 / (2 * kCos[5]),
                                   7.0 / 8,
                                   kCos[4] / kCos[3],
                                   kCos[4] / kCos[2],
                                   kCos[4] / kCos[1]};

constexpr double WeightAt(DvDctMode mode, std::size_t natural) {
    const std::size_t row = natural / 8;
    return kLineWeight[mode == DV_DCT_88 ? row : row % 4 * 2] * kLineWeight[natural % 8];
}

/// Weights in 15 fractional bits, by natural position. They take 16 times an orthonormal coefficient to 16 times its
/// amplitude at step 1. The DC value of a block has the weight 1/4.
constexpr DvFactors MakeWeights(DvDctMode mode) {
    DvFactors weights{};
    for (std::size_t i = 0; i < kDvBlockValues; ++i) weights[i] = static_cast<std::int16_t>(WeightAt(mode, i) * 16384);
    weights[0] = 8192;
    return weights;
}

/// Inverse weights in 15 fractional bits, with a factor of 2 for a coefficient that is 4 times its amplitude. The DC
/// value takes no part.
constexpr DvFactors MakeInverseWeights(DvDctMode mode) {
    DvFactors weights{};
    for (std::size_t i = 0; i < kDvBlockValues; ++i)
        weights[i] = static_cast<std::int16_t>(16384 / WeightAt(mode, i) + 0.5);
    return weights;
}

constexpr DvFactors kWeights[2] = {MakeWeights(DV_DCT_88), MakeWeights(DV_DCT_248)};
constexpr DvFactors kInverseWeights[2] = {MakeInverseWeights(DV_DCT_88), MakeInverseWeights(DV_DCT_248)};

/// Weights of 100 Mbit streams (SMPTE 370M), by coded position of the 8-8 scan. Orthonormal coefficient = amplitude *
/// step * weight / 32.
constexpr std::int16_t kHdScanWeights[4][kDvBlockValues] = {
    // 1080 lines, luminance.
    {128, 16, 16, 17, 17, 17, 18, 18, 18, 18, 18,  18, 19, 18,  18,  19,  19,  19,  19,  19, 19, 42,
     38,  40, 40, 40, 38, 42, 44, 43, 41, 41, 41,  41, 43, 44,  45,  45,  42,  42,  42,  45, 45, 48,
     46,  43, 43, 46, 48, 49, 48, 44, 48, 49, 101, 98, 98, 101, 104, 109, 104, 116, 116, 123},
    // 1080 lines, chrominance.
    {128, 16, 16, 17, 17, 17,  25,  25,  25,  25,  26,  25,  26,  25,  26,  26,  26,  27,  27,  26, 26, 42,
     38,  40, 40, 40, 38, 42,  44,  43,  41,  41,  41,  41,  43,  44,  91,  91,  84,  84,  84,  91, 91, 96,
     93,  86, 86, 93, 96, 197, 191, 177, 191, 197, 203, 197, 197, 203, 209, 219, 209, 232, 232, 246},
    // 720 lines, luminance.
    {128, 16, 16, 17, 17, 17, 18, 18, 18, 18, 18,  18,  19,  18,  18,  19,  19,  19,  19,  19, 19, 42,
     38,  40, 40, 40, 38, 42, 44, 43, 41, 41, 41,  41,  43,  44,  68,  68,  63,  63,  63,  68, 68, 96,
     92,  86, 86, 92, 96, 98, 96, 88, 96, 98, 202, 196, 196, 202, 208, 218, 208, 232, 232, 246},
    // 720 lines, chrominance. The 192 at position 45 breaks the symmetry of the table; it is the published figure.
    {128, 24,  24,  26,  26,  26,  36,  36,  36,  36,  36,  36,  38,  36,  36,  38,  38,  38,  38,  38,  38,  84,
     76,  80,  80,  80,  76,  84,  88,  86,  82,  82,  82,  82,  86,  88,  182, 182, 168, 168, 168, 182, 182, 192,
     186, 192, 172, 186, 192, 394, 382, 354, 382, 394, 406, 394, 394, 406, 418, 438, 418, 464, 464, 492}};

/// The same by natural position.
constexpr DvFactors NaturalHdWeights(unsigned table) {
    DvFactors weights{};
    for (std::size_t i = 0; i < kDvBlockValues; ++i) weights[kScans[DV_DCT_88][i]] = kHdScanWeights[table][i];
    return weights;
}

/// Row of the 100 Mbit tables for a picture of so many lines.
constexpr unsigned HdTable(unsigned lines, bool isChroma) { return (lines == 1080 ? 0u : 2u) + (isChroma ? 1u : 0u); }

}  // namespace dv_tables

}  // namespace KorvaneSoftware
