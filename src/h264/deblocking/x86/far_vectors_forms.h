// Forms of the comparison of vectors.
#pragma once

#include "h264/deblocking/far_vectors.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(H264FarVectorsSignature, H264FarVectors)

}  // namespace KorvaneSoftware
