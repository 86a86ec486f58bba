// Conversions from DV12 (4:2:0 as DV carries it, U and V sited on different lines) to 4:2:2. Widths are multiples of
// 16, heights of 2.
#pragma once

#include "convert/kernel.h"

namespace KorvaneSoftware {

extern ConvertSlot Dv12ToUyvy, Dv12ToYuy2, Dv12ToYvyu, Dv12ToY16;

}  // namespace KorvaneSoftware
