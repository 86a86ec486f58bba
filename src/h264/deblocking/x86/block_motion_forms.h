// Forms of the comparison of vectors.
#pragma once

#include "h264/deblocking/block_motion.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(H264FarVectorsSignature, H264FarVectors)

}  // namespace KorvaneSoftware
