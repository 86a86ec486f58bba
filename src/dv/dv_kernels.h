// What is done to the blocks of a segment between samples and codes. A block is 64 16-bit values, aligned to 64 bytes.
// Blocks of samples, coefficients of the transforms and dequantised coefficients are in natural order; an encoder's
// weighted coefficients are in coded order, where the areas of the quantiser are ranges.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dv/dv_tables.h"
#include "foundation/dispatch.h"

namespace KorvaneSoftware {

/// What an encoder's choices go by.
struct DvBlockMeasure {
    std::uint32_t activity;  ///< Sum of the magnitudes of all 64 weighted coefficients.
    std::uint32_t greatest;  ///< Greatest magnitude but that of position 0.
};

using Dv248ColumnsSignature = void(std::int16_t* blocks, const std::int16_t* samples, std::size_t count);
using DvWeighSignature = DvBlockMeasure(std::int16_t* block, const std::int16_t* weights);
using DvScanSignature = void(std::int16_t* coded, const std::int16_t* block, const std::uint8_t* scan);
using DvQuantiseSignature = std::uint64_t(std::uint8_t* amplitudes, const std::int16_t* coded,
                                          const std::int16_t* reciprocals);
using DvHdQuantiseSignature = std::uint64_t(std::uint8_t* amplitudes, const std::int16_t* coded, unsigned step);
using DvDequantiseSignature = void(std::int16_t* block, const std::int16_t* steps, const std::int16_t* inverseWeights);
using DvHdDequantiseSignature = void(std::int16_t* block, int step, const std::int16_t* weights);
using DvInverse248Signature = void(std::int16_t* block, unsigned count);

/// First pass of the 2-4-8 transform of samples less 128: the columns, scaled by 16. FDCTRows completes it.
extern DispatchSlot<Dv248ColumnsSignature> FDCT248Columns;

/// block = (block * weights + 16384) >> 15, and its measure.
extern DispatchSlot<DvWeighSignature> WeighDvBlock;
/// block = (block * weights + 4096) >> 13, and its measure.
extern DispatchSlot<DvWeighSignature> WeighHdBlock;

/// coded[p] = block[scan[p]].
extern DispatchSlot<DvScanSignature> ScanDvBlock;

/// amplitudes = |(coded * reciprocals + 16384) >> 15|, limited to 255, reciprocals being 2048 / step.
/// @return bit p for each position p but 0 whose amplitude is not 0
extern DispatchSlot<DvQuantiseSignature> QuantiseDvBlock;
/// amplitudes = |coded / (16 * step)|, rounded, limited to 255. `step` is 1 to 416. See HdDivisor.
extern DispatchSlot<DvHdQuantiseSignature> QuantiseHdBlock;

/// All positions but 0: c = block * steps, cut to 16 bits, block = (c * inverseWeights + 16384) >> 15. Position 0 is
/// multiplied by 4.
extern DispatchSlot<DvDequantiseSignature> DequantiseDvBlock;
/// All positions but 0: block = (block * step * weights + 16) >> 5, cut to 16 bits. Position 0 is multiplied by 4.
extern DispatchSlot<DvHdDequantiseSignature> DequantiseHdBlock;

/// Inverse 2-4-8 transform in place, out: samples less 128. With a `count` (last coded position that may be other than
/// 0, plus 1) below 2 all outputs are (block[0] + 4) >> 3.
extern DispatchSlot<DvInverse248Signature> InverseDCT248;

/// Division by 16 * step as forms of all widths do it: quotient = (min(value + half, 32767) * multiplier >> 16) >>
/// shift, arithmetically.
struct HdDivisor {
    std::int16_t half;
    std::int16_t multiplier;
    std::uint8_t shift;
};
constexpr HdDivisor HdDivisorOf(unsigned step) {
    // The largest multiplier below 2^15, rounded up so that whole multiples do not fall short.
    const unsigned divisor = 16 * step;
    unsigned shift = 0;
    while ((0x10000u << (shift + 1)) / divisor < 0x7FFF) ++shift;
    const unsigned multiplier = ((0x10000u << shift) + divisor - 1) / divisor;
    return {static_cast<std::int16_t>(divisor / 2), static_cast<std::int16_t>(multiplier),
            static_cast<std::uint8_t>(shift)};
}

}  // namespace KorvaneSoftware
