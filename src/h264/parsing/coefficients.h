// Where the readers of residual blocks put what they read: both entropy codes call Put for each level that is not 0.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// Levels as they are: DC blocks, which are transformed before they are scaled, and lossless macroblocks.
template <class Coefficient>
struct TRawCoefficients {
    Coefficient* block;        ///< Zeroed by the caller.
    const std::uint8_t* scan;  ///< Positions in `block` by index; for AC blocks from the second on.

    void Put(unsigned index, std::int32_t level) const { block[scan[index]] = static_cast<Coefficient>(level); }
};

/// Levels times the scale of their position, clauses 8.5.12.1 and 8.5.13.1.
template <class Coefficient>
struct TScaledCoefficients {
    Coefficient* block;
    const std::uint8_t* scan;
    const std::uint16_t* scale;  ///< By position.
    unsigned left;
    unsigned right;
    std::uint32_t round;

    /// `qp` is QP' (0 to 87). `fraction` says how many bits of the scale are fraction: 4 in a 4x4 block and 6 in an 8x8
    /// one with a table that holds weights (H264DequantTables), 0 and 2 with normAdjust alone, weights being 16 there.
    TScaledCoefficients(Coefficient* target, const std::uint8_t* order, const std::uint16_t* scales, unsigned qp,
                        unsigned fraction)
        : block(target),
          scan(order),
          scale(scales),
          left(qp / 6 > fraction ? qp / 6 - fraction : 0),
          right(qp / 6 < fraction ? fraction - qp / 6 : 0),
          round(right > 0 ? 1u << (right - 1) : 0) {}

    /// Products of impossible streams wrap at 32 bits.
    void Put(unsigned index, std::int32_t level) const {
        const unsigned position = scan[index];
        const std::uint32_t product = (static_cast<std::uint32_t>(level) * scale[position] << left) + round;
        block[position] = static_cast<Coefficient>(static_cast<std::int32_t>(product) >> right);
    }
};

}  // namespace KorvaneSoftware
