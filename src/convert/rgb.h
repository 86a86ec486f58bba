// Conversions between YUV and RGB, and between the two RGB formats. See kernel.h for what a kernel may expect.
#pragma once

#include "convert/kernel.h"

namespace KorvaneSoftware {

// From packed 4:2:2.
extern ConvertSlot UyvyToBgr, UyvyToBgra, Yuy2ToBgr, Yuy2ToBgra, YvyuToBgr, YvyuToBgra;

// From blocks.
extern ConvertSlot Y16ToBgr, Y16ToBgra, Y16AToBgr, Y16AToBgra, Y32ToBgr, Y32ToBgra, Y32AToBgr, Y32AToBgra, Y32ABToBgr,
    Y32ABToBgra;

// From planes and luma alone.
extern ConvertSlot Y422ToBgr, Y422ToBgra, I420ToBgr, I420ToBgra, Nv12ToBgr, Nv12ToBgra, Y444ToBgr, Y444ToBgra,
    Y400ToBgr;

// From samples in 16-bit words.
extern ConvertSlot P216ToBgr, P216ToBgra, S420ToBgr, S420ToBgra, P016ToBgr, P016ToBgra;

// From 4:1:1 and DV 4:2:0.
extern ConvertSlot Y41PToBgr, Y41PToBgra, Dv12ToBgr, Dv12ToBgra;

// To YUV.
extern ConvertSlot BgrToUyvy, BgraToUyvy, BgrToYuy2, BgraToYuy2, BgrToYvyu, BgraToYvyu, BgrToY16, BgraToY16, BgrToY16A,
    BgraToY16A, BgrToY422, BgraToY422, BgrToI420, BgraToI420, BgrToNv12, BgraToNv12, BgrToY400;

// Between the RGB formats.
extern ConvertSlot BgrToBgra, BgraToBgr;

}  // namespace KorvaneSoftware
