// The forms of the block kernels.
#pragma once

#include "iframe/block_kernels.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(IFrameInverseSignature, IFrameInverseTransform)

}  // namespace KorvaneSoftware
