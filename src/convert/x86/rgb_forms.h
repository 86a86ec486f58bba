// The forms of the kernels between YUV and RGB. The vector forms leave pictures narrower than a register of bytes to
// the plain ones.
#pragma once

#include "convert/rgb.h"

namespace KorvaneSoftware {

// From packed 4:2:2.
PIXMORPH_FORMS(ConvertSignature, UyvyToBgr, UyvyToBgra, Yuy2ToBgr, Yuy2ToBgra, YvyuToBgr, YvyuToBgra)
// From blocks.
PIXMORPH_FORMS(ConvertSignature, Y16ToBgr, Y16ToBgra, Y16AToBgr, Y16AToBgra, Y32ToBgr, Y32ToBgra, Y32AToBgr, Y32AToBgra,
               Y32ABToBgr, Y32ABToBgra)
// From planes and luma alone.
PIXMORPH_FORMS(ConvertSignature, Y422ToBgr, Y422ToBgra, I420ToBgr, I420ToBgra, Nv12ToBgr, Nv12ToBgra, Y444ToBgr,
               Y444ToBgra, Y400ToBgr)
// From samples in 16-bit words.
PIXMORPH_FORMS(ConvertSignature, P216ToBgr, P216ToBgra, S420ToBgr, S420ToBgra, P016ToBgr, P016ToBgra)
// From 4:1:1 and DV 4:2:0.
PIXMORPH_FORMS(ConvertSignature, Y41PToBgr, Y41PToBgra, Dv12ToBgr, Dv12ToBgra)
// To YUV.
PIXMORPH_FORMS(ConvertSignature, BgrToUyvy, BgraToUyvy, BgrToYuy2, BgraToYuy2, BgrToYvyu, BgraToYvyu, BgrToY16,
               BgraToY16, BgrToY16A, BgraToY16A, BgrToY422, BgraToY422, BgrToI420, BgraToI420, BgrToNv12, BgraToNv12,
               BgrToY400)
// Between the RGB formats.
PIXMORPH_FORMS(ConvertSignature, BgrToBgra, BgraToBgr)

}  // namespace KorvaneSoftware
