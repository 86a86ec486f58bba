// One 8 by 8 block to bits and back.
#pragma once

#include <cstdint>

#include "iframe/bit_reader.h"
#include "iframe/bit_writer.h"
#include "iframe/block_codes.h"

namespace KorvaneSoftware::iframe {

/// Most bytes that one coded block takes: 21 bits of DC, 63 escapes of 24 bits, 4 bits of end of block.
constexpr std::uint32_t kMaxBlockBytes = 193;

/// Writes a block of levels with table B.15 and the zigzag scan.
/// @param levels     in natural order; AC levels are within -2047 to 2047.
/// @param nonZero    bit k is set where the level at place k of the scan is not 0.
/// @param sizes      words of DC sizes for the component.
/// @param predictor  the component's last DC level; becomes this block's.
void EncodeBlock(BitWriter& writer, const std::int16_t* levels, std::uint64_t nonZero, const SizeEncoder& sizes,
                 std::int32_t& predictor);

/// How the blocks of a slice are read.
struct BlockSyntax {
    const CoefficientDecoder* coefficients;  ///< By intra_vlc_format.
    const std::uint8_t* scan;                ///< Position in the store of each place of the scan.
    std::int32_t dcFactor;                   ///< 8, 4, 2 or 1, by intra_dc_precision.
    /// By place in the scan: matrix entry times quantiser scale. Entry 0 is not read.
    alignas(64) std::int32_t weights[64];
};

/// Reads a block and restores its coefficients by clause 7.4: scaling, saturation to 12 bits and mismatch control.
/// @param coefficients  64 zeros, to be filled in.
/// @param predictor     the component's last DC level; becomes this block's.
/// @return false for a bit pattern that is no code, and for coefficients behind the 64th. The block is then half read.
bool DecodeBlock(BitReader& reader, const BlockSyntax& syntax, const SizeDecoder& sizes, std::int32_t& predictor,
                 std::int16_t* coefficients);

}  // namespace KorvaneSoftware::iframe
