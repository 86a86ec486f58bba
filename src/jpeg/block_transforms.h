// What is done to 8 by 8 blocks of 16-bit values between samples and coded levels. A block is 64 values in natural
// order, row by row, aligned to 64 bytes; several blocks follow each other. The transforms are networks of
// multiplications that keep the high half: their constants and roundings are part of the coded formats, so a frame
// decoded by another DCT differs in the low bits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

constexpr std::size_t kBlockValues = 64;

/// Selects the level of the block transforms for this processor, the first time that it is called. Whatever makes an
/// object that uses block transforms calls it before the first block.
void InitBlockTransforms();

using BlocksSignature = void(std::int16_t* blocks, std::size_t count);
using CountedBlocksSignature = void(std::int16_t* blocks, const std::uint8_t* counts, std::size_t count);
using BlockWithBitsSignature = void(std::int16_t* block, unsigned count, unsigned bits);
using DequantiseSignature = void(std::int16_t* blocks, const std::int16_t* table, std::size_t count);
using QuantiseToScanSignature = std::uint64_t(std::int16_t* levels, const std::int16_t* block,
                                              const std::int16_t* reciprocals);
using QuantiseSignature = unsigned(std::int16_t* levels, const std::int16_t* block, const std::int16_t* reciprocals);

/// Direct DCT in place. In: samples less 128. Out: 16 times the orthonormal coefficients.
extern LevelSlot<BlocksSignature> FDCTBlocks;
/// Its second pass alone, over the rows of blocks whose columns are done.
extern LevelSlot<BlocksSignature> FDCTRows;

/// Inverse DCT in place of one block of dequantised coefficients, out: samples less 128. The work splits by `count`,
/// the number of scan positions that may be other than 0: below 2 all outputs are the rounded first value, up to 10
/// only the top left triangle is read, above that all of it. What overflows wraps. `bits` scales the output: 0 for
/// 8-bit samples.
extern LevelSlot<BlockWithBitsSignature> InverseDCT;
/// InverseDCT with bits 0 of each block with its count.
extern LevelSlot<CountedBlocksSignature> InverseDCTBlocks;

/// Multiplies each block by the table, which holds 64 values in natural order; the low 16 bits are kept.
extern LevelSlot<DequantiseSignature> DequantiseBlocks;

/// levels = (block * reciprocals + 16384) >> 15. The table is in natural order. `levels` may be `block`.
/// @return the coefficient count: the last scan position that is not 0, plus 1, or 0
extern LevelSlot<QuantiseSignature> QuantiseBlock;
/// The same. @return bit k for each scan position k whose level is not 0
extern LevelSlot<QuantiseToScanSignature> QuantiseToScan;

/// Zeroes `count` blocks.
void ClearBlocks(std::int16_t* blocks, std::size_t count);

}  // namespace KorvaneSoftware
