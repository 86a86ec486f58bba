// The forms of the field restoration lines. The vector forms leave lines shorter than their unit of work to the plain
// ones.
#pragma once

#include "deinterlace/restoration_lines.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(RestoreLineSignature, RestoreLineY16, RestoreLineY16A)
PIXMORPH_FORMS(PresentLineSignature, PresentLineY16, PresentLineY16A)

}  // namespace KorvaneSoftware
