// The colour arithmetic of the library: the formulas of one pixel. Every term is truncated on its own, as a 16-bit
// multiply-high does; a computation that sums first gives different pixels.
#pragma once

#include <cstdint>

#include "convert/colour_matrix.h"
#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

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
