// Conversions that move samples between layouts without colour arithmetic: packed, block, planar and semi-planar 4:2:2
// and 4:2:0. Where the number of chroma lines changes, chroma passes the vertical filters of reorder.cpp; nothing else
// is computed. Alpha is dropped, or 255 where the source has none.
//
// Widths are even, multiples of 16 where a block format takes part; heights are even where a 4:2:0 format takes part.
// Size zero is harmless, strides may be negative. The packed formats convert among themselves in place as well.
//
// A picture with exchanged U and V planes (YV12 and its kin, a YVYU source that goes to planes, a YVYU destination from
// planes) is converted by exchanging the planes in the descriptor.
#pragma once

#include "convert/kernel.h"

namespace KorvaneSoftware {

// Packed 4:2:2 among themselves.
extern ConvertSlot UyvyToYuy2, UyvyToYvyu;
extern ConvertSlot Yuy2ToUyvy, Yuy2ToYvyu;
extern ConvertSlot YvyuToUyvy, YvyuToYuy2;

// Packed to block, planar and semi-planar.
extern ConvertSlot UyvyToY16, UyvyToY16A, UyvyToY422, UyvyToI420, UyvyToNv12;
extern ConvertSlot Yuy2ToY16, Yuy2ToY16A, Yuy2ToY422, Yuy2ToI420, Yuy2ToNv12;
extern ConvertSlot YvyuToY16, YvyuToY16A, YvyuToNv12;

// Block to packed, planar and each other.
extern ConvertSlot Y16ToUyvy, Y16ToYuy2, Y16ToYvyu, Y16ToY16A, Y16ToY422, Y16ToI420;
extern ConvertSlot Y16AToUyvy, Y16AToYuy2, Y16AToYvyu, Y16AToY16, Y16AToY422, Y16AToI420;

// Planar to packed, block and each other.
extern ConvertSlot Y422ToUyvy, Y422ToYuy2, Y422ToY16, Y422ToY16A, Y422ToI420;
extern ConvertSlot I420ToUyvy, I420ToYuy2, I420ToY16, I420ToY16A, I420ToY422, I420ToNv12;

// Semi-planar to packed, block and planar.
extern ConvertSlot Nv12ToUyvy, Nv12ToYuy2, Nv12ToYvyu, Nv12ToY16, Nv12ToI420;

}  // namespace KorvaneSoftware
