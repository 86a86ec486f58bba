// Forms of the block kernels, one namespace per instruction set.
#pragma once

#include "dv/dv_kernels.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(Dv248ColumnsSignature, FDCT248Columns)
PIXMORPH_FORMS(DvWeighSignature, WeighDvBlock, WeighHdBlock)
PIXMORPH_FORMS(DvScanSignature, ScanDvBlock)
PIXMORPH_FORMS(DvQuantiseSignature, QuantiseDvBlock)
PIXMORPH_FORMS(DvHdQuantiseSignature, QuantiseHdBlock)
PIXMORPH_FORMS(DvDequantiseSignature, DequantiseDvBlock)
PIXMORPH_FORMS(DvHdDequantiseSignature, DequantiseHdBlock)
PIXMORPH_FORMS(DvInverse248Signature, InverseDCT248)

}  // namespace KorvaneSoftware
