#include "jpeg/block_transforms.h"

#include <cstring>

#include "jpeg/standard_tables.h"
#include "jpeg/x86/block_transform_forms.h"

namespace KorvaneSoftware {

void InitBlockTransforms() {
    // Initialised once by the first caller; the others wait for it.
    [[maybe_unused]] static const std::int32_t status = CpuInitAuto();
}

// No vector form is faster than the library's: 3.9 ns for the four blocks of an MCU.
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

std::uint64_t plain::QuantiseToScan(std::int16_t* levels, const std::int16_t* block, const std::int16_t* reciprocals) {
    plain::QuantiseBlock(levels, block, reciprocals);
    std::uint64_t mask = 0;
    for (std::size_t k = 0; k < kBlockValues; ++k) mask |= std::uint64_t{levels[kZigZag[k]] != 0} << k;
    return mask;
}

// Levels 0 to 3 are processors older than SSE4.1.
#define PIXMORPH_BLOCK_SLOT(Signature, name)                                                            \
    PIXMORPH_LEVEL_SLOT(LevelSlot<Signature>, name, plain::name, plain::name, plain::name, plain::name, \
                        simd_sse41::name, simd_avx2::name)

PIXMORPH_BLOCK_SLOT(BlocksSignature, FDCTBlocks);
PIXMORPH_BLOCK_SLOT(BlocksSignature, FDCTRows);
PIXMORPH_BLOCK_SLOT(BlockWithBitsSignature, InverseDCT);
PIXMORPH_BLOCK_SLOT(CountedBlocksSignature, InverseDCTBlocks);
PIXMORPH_BLOCK_SLOT(DequantiseSignature, DequantiseBlocks);
PIXMORPH_BLOCK_SLOT(QuantiseSignature, QuantiseBlock);
PIXMORPH_BLOCK_SLOT(QuantiseToScanSignature, QuantiseToScan);

}  // namespace KorvaneSoftware
