// Forms of the inverse transforms.
#pragma once

#include "h264/reconstruction/transforms.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(H264AddResidualBytes, H264Add4x4Bytes, H264Add8x8Bytes, H264Add4x4DcBytes, H264Add8x8DcBytes)
PIXMORPH_FORMS(H264AddResidualWords, H264Add4x4Words, H264Add8x8Words, H264Add4x4DcWords, H264Add8x8DcWords)
PIXMORPH_FORMS(H264TransformDcBytes, H264LumaDcBytes, H264ChromaDc2x2Bytes, H264ChromaDc2x4Bytes)
PIXMORPH_FORMS(H264TransformDcWords, H264LumaDcWords, H264ChromaDc2x2Words, H264ChromaDc2x4Words)

}  // namespace KorvaneSoftware
