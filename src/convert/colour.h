// The colour arithmetic of the library: fixed-point tables and the formulas of one pixel. Every term is truncated on
// its own, as a 16-bit multiply-high does; a computation that sums first gives different pixels.
#pragma once

#include <cstdint>

#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

/// YUV to RGB: coefficients in 1/8192, offsets in 1/32 of an 8-bit sample.
struct YuvToRgbRow {
    std::uint32_t yGain, uToB, uToG, vToG, vToR, bOffset, gOffset, rOffset;
};

/// RGB to YUV: coefficients in 1/8192, offsets in 1/32 of an 8-bit sample (with the rounding half included).
struct RgbToYuvRow {
    std::uint32_t bToY, gToY, rToY, bToU, gToU, rToU, bToV, gToV, rToV, yOffset, cOffset;
};

// ITU-R BT.601 and BT.709 at video levels, BT.601 at full range; rows 1 and 2 are the same.
inline constexpr YuvToRgbRow kYuvToRgb[4] = {
    {9539, 16525, 3209, 6660, 13075, 8841, 4355, 7116},
    {9539, 17305, 1747, 4366, 14686, 9231, 2477, 7922},
    {9539, 17305, 1747, 4366, 14686, 9231, 2477, 7922},
    {8192, 14516, 2819, 5850, 11485, 7242, 4350, 5726},
};
inline constexpr RgbToYuvRow kRgbToYuv[4] = {
    {802, 4130, 2104, 3598, 2384, 1214, 585, 3013, 3598, 529, 4111},
    {508, 5032, 1496, 3598, 2774, 824, 330, 3268, 3598, 529, 4111},
    {508, 5032, 1496, 3598, 2774, 824, 330, 3268, 3598, 529, 4111},
    {934, 4809, 2449, 4096, 2714, 1382, 666, 3430, 4096, 17, 4111},
};

constexpr const YuvToRgbRow& YuvToRgbOf(std::uint16_t colorMatrix) { return kYuvToRgb[colorMatrix & 3]; }
constexpr const RgbToYuvRow& RgbToYuvOf(std::uint16_t colorMatrix) { return kRgbToYuv[colorMatrix & 3]; }

/// Coefficient times a sample of 8.8 bits, the low 16 bits of the product dropped.
constexpr std::int32_t MulHigh(std::uint32_t coefficient, std::uint32_t sample) {
    return static_cast<std::int32_t>((coefficient * sample) >> 16);
}

struct Bgr {
    std::uint8_t b, g, r;
};

struct Chroma {
    std::uint8_t u, v;
};

/// One pixel; luma and chroma in 8.8 form.
constexpr Bgr YuvToBgr(const YuvToRgbRow& m, std::uint32_t y, std::uint32_t u, std::uint32_t v) {
    const std::int32_t t = MulHigh(m.yGain, y);
    return {
        ClampToByte((t + MulHigh(m.uToB, u) - static_cast<std::int32_t>(m.bOffset)) >> 5),
        ClampToByte((t + static_cast<std::int32_t>(m.gOffset) - MulHigh(m.uToG, u) - MulHigh(m.vToG, v)) >> 5),
        ClampToByte((t + MulHigh(m.vToR, v) - static_cast<std::int32_t>(m.rOffset)) >> 5),
    };
}

/// Luma of a pixel; b, g, r in 8.8 form.
constexpr std::uint8_t RgbToLuma(const RgbToYuvRow& m, std::uint32_t b, std::uint32_t g, std::uint32_t r) {
    return ClampToByte(
        (MulHigh(m.bToY, b) + MulHigh(m.gToY, g) + MulHigh(m.rToY, r) + static_cast<std::int32_t>(m.yOffset)) >> 5);
}

/// Chroma of a pixel or of the mean of several; b, g, r in 8.8 form.
constexpr Chroma RgbToChroma(const RgbToYuvRow& m, std::uint32_t b, std::uint32_t g, std::uint32_t r) {
    const auto offset = static_cast<std::int32_t>(m.cOffset);
    return {
        ClampToByte((MulHigh(m.bToU, b) - MulHigh(m.gToU, g) - MulHigh(m.rToU, r) + offset) >> 5),
        ClampToByte((MulHigh(m.rToV, r) - MulHigh(m.gToV, g) - MulHigh(m.bToV, b) + offset) >> 5),
    };
}

}  // namespace KorvaneSoftware
