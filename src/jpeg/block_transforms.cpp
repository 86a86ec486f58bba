#include "jpeg/block_transforms.h"

#include <cstring>

#include "jpeg/standard_tables.h"
#include "jpeg/x86/block_transform_forms.h"

namespace KorvaneSoftware {

void InitBlockTransforms() {
    // Initialised once by the first caller; the others wait for it.
    [[maybe_unused]] static const std::int32_t status = CpuInitAuto();
}

void ClearBlocks(std::int16_t* blocks, std::size_t count) {
    std::memset(blocks, 0, count * kBlockValues * sizeof *blocks);
}

void plain::DequantiseBlocks(std::int16_t* blocks, const std::int16_t* table, std::size_t count) {
    for (std::size_t i = 0; i < count * kBlockValues; ++i)
        blocks[i] = static_cast<std::int16_t>(blocks[i] * table[i % kBlockValues]);
}

unsigned plain::QuantiseBlock(std::int16_t* levels, const std::int16_t* block, const std::int16_t* reciprocals) {
    for (std::size_t i = 0; i < kBlockValues; ++i)
        levels[i] = static_cast<std::int16_t>((block[i] * reciprocals[i] + 16384) >> 15);
    unsigned count = kBlockValues;
    while (count > 0 && levels[kZigZag[count - 1]] == 0) --count;
    return count;
}

// Levels 0 to 3 are processors older than SSE4.1. That of level 5 has AVX, and its forms ask for AVX2 as well.
PIXMORPH_LEVEL_SLOT(LevelSlot<BlocksSignature>, FDCTBlocks, plain::FDCTBlocks, plain::FDCTBlocks, plain::FDCTBlocks,
                    plain::FDCTBlocks, plain::FDCTBlocks, plain::FDCTBlocks);
PIXMORPH_LEVEL_SLOT(LevelSlot<BlocksSignature>, FDCTRows, plain::FDCTRows, plain::FDCTRows, plain::FDCTRows,
                    plain::FDCTRows, plain::FDCTRows, plain::FDCTRows);
PIXMORPH_LEVEL_SLOT(LevelSlot<BlockWithBitsSignature>, InverseDCT, plain::InverseDCT, plain::InverseDCT,
                    plain::InverseDCT, plain::InverseDCT, plain::InverseDCT, plain::InverseDCT);
PIXMORPH_LEVEL_SLOT(LevelSlot<CountedBlocksSignature>, InverseDCTBlocks, plain::InverseDCTBlocks,
                    plain::InverseDCTBlocks, plain::InverseDCTBlocks, plain::InverseDCTBlocks, plain::InverseDCTBlocks,
                    plain::InverseDCTBlocks);
PIXMORPH_LEVEL_SLOT(LevelSlot<DequantiseSignature>, DequantiseBlocks, plain::DequantiseBlocks, plain::DequantiseBlocks,
                    plain::DequantiseBlocks, plain::DequantiseBlocks, plain::DequantiseBlocks, plain::DequantiseBlocks);
PIXMORPH_LEVEL_SLOT(LevelSlot<QuantiseSignature>, QuantiseBlock, plain::QuantiseBlock, plain::QuantiseBlock,
                    plain::QuantiseBlock, plain::QuantiseBlock, plain::QuantiseBlock, plain::QuantiseBlock);

}  // namespace KorvaneSoftware
