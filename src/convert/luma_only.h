// Conversions between luma alone (Y400) and pictures with chroma: chroma is dropped, or 128 where there is none.
#pragma once

#include "convert/kernel.h"

namespace KorvaneSoftware {

/// Luma between chroma bytes of 128; YVYU is written as YUY2. Widths are even.
extern ConvertSlot Y400ToUyvy, Y400ToYuy2;

/// Luma copied into a picture with a luma plane of its own, its further planes (as the destination's format has them)
/// filled with 128.
Status CopyLumaFillChroma(const ImageDescriptor& dst, const ConstImageDescriptor& src);

}  // namespace KorvaneSoftware
