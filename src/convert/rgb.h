// Conversions between YUV and RGB, and between the two RGB formats. See kernel.h for what a kernel may expect.
#pragma once

#include "convert/kernel.h"
#include "convert/rgb_list.h"

namespace KorvaneSoftware {

#define PIXMORPH_RGB_DECLARE_SLOT(name, ...) extern constinit ConvertSlot name;
PIXMORPH_RGB_VECTOR(PIXMORPH_RGB_DECLARE_SLOT)
PIXMORPH_RGB_PLAIN(PIXMORPH_RGB_DECLARE_SLOT)
#undef PIXMORPH_RGB_DECLARE_SLOT

}  // namespace KorvaneSoftware
