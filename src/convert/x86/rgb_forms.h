// All forms of the kernels of rgb.h, plain and vector, by their names.
#pragma once

#include "convert/rgb.h"

namespace KorvaneSoftware {

#define PIXMORPH_DECLARE_PLAIN(name) void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src);
PIXMORPH_YUV_TO_RGB_VECTOR(PIXMORPH_DECLARE_PLAIN)
PIXMORPH_YUV_TO_RGB_PLAIN(PIXMORPH_DECLARE_PLAIN)
PIXMORPH_RGB_TO_YUV_VECTOR(PIXMORPH_DECLARE_PLAIN)
PIXMORPH_RGB_TO_YUV_PLAIN(PIXMORPH_DECLARE_PLAIN)
#undef PIXMORPH_DECLARE_PLAIN

}  // namespace KorvaneSoftware
