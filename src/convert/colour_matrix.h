// The fixed-point colour matrices, derived from the luma weights of ITU-R BT.601 and BT.709. Coefficients are the real
// ones in 1/8192, rounded to the nearest; offsets follow from what the truncated products leave (below).
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// YUV to RGB: coefficients in 1/8192, offsets in 1/32 of an 8-bit sample.
struct YuvToRgbRow {
    std::uint32_t yGain, uToB, uToG, vToG, vToR, bOffset, gOffset, rOffset;
};

/// RGB to YUV: coefficients in 1/8192, offsets in 1/32 of an 8-bit sample (with the rounding half included).
struct RgbToYuvRow {
    std::uint32_t bToY, gToY, rToY, bToU, gToU, rToU, bToV, gToV, rToV, yOffset, cOffset;
};

/// A colour space: the weights of red and blue in luma, and the range of the samples.
struct ColourSpace {
    double kr, kb;
    double lumaRange, chromaRange;  ///< From black to white, and from end to end of chroma.
    std::uint32_t black;            ///< Luma of black.

    consteval double Kg() const { return 1 - kr - kb; }
};

inline constexpr ColourSpace kBt601 = {0.299, 0.114, 219, 224, 16};
inline constexpr ColourSpace kBt709 = {0.2126, 0.0722, 219, 224, 16};
inline constexpr ColourSpace kBt601FullRange = {0.299, 0.114, 255, 255, 0};

/// A real coefficient in 1/8192.
consteval std::uint32_t FixedPoint(double coefficient) { return static_cast<std::uint32_t>(coefficient * 8192 + 0.5); }

// The offsets take back what black and neutral chroma contribute, and round: half of the 32 that the shift by 5 divides
// by. Where the luma term loses its fraction to truncation (a gain other than 1) it is one unit more, which weighs on
// all three sums with its own sign.
consteval YuvToRgbRow DeriveYuvToRgb(const ColourSpace& space) {
    const double luma = 255 / space.lumaRange;
    const double chroma = 255 / space.chromaRange;
    YuvToRgbRow row{};
    row.yGain = FixedPoint(luma);
    row.uToB = FixedPoint(chroma * 2 * (1 - space.kb));
    row.uToG = FixedPoint(chroma * 2 * (1 - space.kb) * space.kb / space.Kg());
    row.vToG = FixedPoint(chroma * 2 * (1 - space.kr) * space.kr / space.Kg());
    row.vToR = FixedPoint(chroma * 2 * (1 - space.kr));
    // A product of the kernels: a coefficient and a sample with 8 fractional bits, the low 16 bits dropped.
    const auto term = [](std::uint32_t coefficient, std::uint32_t sample) {
        return (coefficient * (sample << 8)) >> 16;
    };
    const std::uint32_t black = term(row.yGain, space.black);
    const std::uint32_t half = row.yGain == 8192 ? 16 : 17;
    row.bOffset = black + term(row.uToB, 128) - half;
    row.gOffset = term(row.uToG, 128) + term(row.vToG, 128) - black + half;
    row.rOffset = black + term(row.vToR, 128) - half;
    return row;
}

// Here each sum has three truncated terms. In luma all three lose, and the half is one unit more; in chroma one loses
// and two gain, and it is one unit less.
consteval RgbToYuvRow DeriveRgbToYuv(const ColourSpace& space) {
    const double luma = space.lumaRange / 255;
    const double chroma = space.chromaRange / 255 / 2;
    RgbToYuvRow row{};
    row.bToY = FixedPoint(luma * space.kb);
    row.gToY = FixedPoint(luma * space.Kg());
    row.rToY = FixedPoint(luma * space.kr);
    row.bToU = FixedPoint(chroma);
    row.gToU = FixedPoint(chroma * space.Kg() / (1 - space.kb));
    row.rToU = FixedPoint(chroma * space.kr / (1 - space.kb));
    row.bToV = FixedPoint(chroma * space.kb / (1 - space.kr));
    row.gToV = FixedPoint(chroma * space.Kg() / (1 - space.kr));
    row.rToV = FixedPoint(chroma);
    row.yOffset = space.black * 32 + 17;
    row.cOffset = 128 * 32 + 15;
    return row;
}

/// By the two low bits of ImageDescriptor::colorMatrix: 1 and 2 are the same.
inline constexpr YuvToRgbRow kYuvToRgb[4] = {DeriveYuvToRgb(kBt601), DeriveYuvToRgb(kBt709), DeriveYuvToRgb(kBt709),
                                             DeriveYuvToRgb(kBt601FullRange)};
inline constexpr RgbToYuvRow kRgbToYuv[4] = {DeriveRgbToYuv(kBt601), DeriveRgbToYuv(kBt709), DeriveRgbToYuv(kBt709),
                                             DeriveRgbToYuv(kBt601FullRange)};

}  // namespace KorvaneSoftware
