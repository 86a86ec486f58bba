// The forms of the line filters.
#pragma once

#include "deinterlace/line_filter.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(FilterLineSignature, FilterPlaneLine, FilterUyvyLine, FilterYuy2Line)

}  // namespace KorvaneSoftware
