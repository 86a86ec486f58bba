// The forms of the weighted means.
#pragma once

#include "deinterlace/blend_lines.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(InterpolateLineSignature, InterpolateLine)
PIXMORPH_FORMS(CombineLineSignature, CombineLine)

}  // namespace KorvaneSoftware
