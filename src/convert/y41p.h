// Conversions from Y41P (4:1:1, groups of 8 pixels in 12 bytes) to 4:2:2. Widths are multiples of 8, of 16 where a
// block format is written.
#pragma once

#include "convert/kernel.h"

namespace KorvaneSoftware {

extern ConvertSlot Y41PToUyvy, Y41PToYuy2, Y41PToYvyu, Y41PToY16;

}  // namespace KorvaneSoftware
