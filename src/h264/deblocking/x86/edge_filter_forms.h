// Forms of the edge filters.
#pragma once

#include "h264/deblocking/edge_filters.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(H264FilterLumaBytes, H264LumaVerticalWeakBytes, H264LumaVerticalStrongBytes, H264LumaHorizontalWeakBytes,
               H264LumaHorizontalStrongBytes)
PIXMORPH_FORMS(H264FilterLumaWords, H264LumaVerticalWeakWords, H264LumaVerticalStrongWords, H264LumaHorizontalWeakWords,
               H264LumaHorizontalStrongWords)
PIXMORPH_FORMS(H264FilterChromaBytes, H264ChromaVerticalWeakBytes, H264ChromaVerticalStrongBytes,
               H264ChromaHorizontalWeakBytes, H264ChromaHorizontalStrongBytes)
PIXMORPH_FORMS(H264FilterChromaWords, H264ChromaVerticalWeakWords, H264ChromaVerticalStrongWords,
               H264ChromaHorizontalWeakWords, H264ChromaHorizontalStrongWords)

}  // namespace KorvaneSoftware
