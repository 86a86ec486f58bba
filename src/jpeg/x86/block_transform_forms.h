// Forms of the block transforms, one namespace per instruction set.
#pragma once

#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(BlocksSignature, FDCTBlocks, FDCTRows)
PIXMORPH_FORMS(BlockWithBitsSignature, InverseDCT)
PIXMORPH_FORMS(CountedBlocksSignature, InverseDCTBlocks)
PIXMORPH_FORMS(DequantiseSignature, DequantiseBlocks)
PIXMORPH_FORMS(QuantiseSignature, QuantiseBlock)
PIXMORPH_FORMS(QuantiseToScanSignature, QuantiseToScan)

}  // namespace KorvaneSoftware
