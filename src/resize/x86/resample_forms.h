// The forms of the resampling primitives. The horizontal vector forms fall back to the plain ones for plans without
// tables.
#pragma once

#include "resize/resample_rows.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(RowSignature, LinearRow8, LinearRow16, MeanRow8, MeanRow16, AreaRow8, AreaRow16)
PIXMORPH_FORMS(HalveSignature, HalveRows8)
PIXMORPH_FORMS(MeanRowsSignature, MeanRows8, MeanRows16)
PIXMORPH_FORMS(LinearRowsSignature, LinearRows8, LinearRows16)
PIXMORPH_FORMS(AreaRowsSignature, AreaRows8, AreaRows16)

}  // namespace KorvaneSoftware
