// Conversions between YUV and RGB, and between the two RGB formats. See kernel.h for what a kernel may expect.
#pragma once

#include "convert/kernel.h"

namespace KorvaneSoftware {

// Which slots there are. A list calls X with each primitive's name; the first name of each family is where its forms
// are found: X(UyvyToBgra) stands for UyvyToBgra_Plain, UyvyToBgra_Sse41, UyvyToBgra_Avx2 and UyvyToBgra_Avx512.

/// Kernels that have vector forms.
#define PIXMORPH_YUV_TO_RGB_VECTOR(X) \
    X(UyvyToBgr)                      \
    X(UyvyToBgra)                     \
    X(Yuy2ToBgr)                      \
    X(Yuy2ToBgra)                     \
    X(YvyuToBgr)                      \
    X(YvyuToBgra)                     \
    X(Y16ToBgr)                       \
    X(Y16ToBgra)                      \
    X(Y16AToBgr)                      \
    X(Y16AToBgra)                     \
    X(Y422ToBgr)                      \
    X(Y422ToBgra)                     \
    X(I420ToBgr)                      \
    X(I420ToBgra)                     \
    X(Nv12ToBgr)                      \
    X(Nv12ToBgra)

/// Kernels that exist in the plain form only.
#define PIXMORPH_YUV_TO_RGB_PLAIN(X) \
    X(Y32ToBgr)                      \
    X(Y32ToBgra)                     \
    X(Y32AToBgr)                     \
    X(Y32AToBgra)                    \
    X(Y32ABToBgr)                    \
    X(Y32ABToBgra)                   \
    X(Y41PToBgr)                     \
    X(Y41PToBgra)                    \
    X(Y444ToBgr)                     \
    X(Y444ToBgra)                    \
    X(Y400ToBgr)                     \
    X(Dv12ToBgr)                     \
    X(Dv12ToBgra)                    \
    X(S420ToBgr)                     \
    X(S420ToBgra)                    \
    X(P216ToBgr)                     \
    X(P216ToBgra)                    \
    X(P016ToBgr)                     \
    X(P016ToBgra)

#define PIXMORPH_RGB_TO_YUV_VECTOR(X) \
    X(BgrToUyvy)                      \
    X(BgrToYuy2)                      \
    X(BgrToYvyu)                      \
    X(BgrToY16)                       \
    X(BgrToY16A)                      \
    X(BgrToY422)                      \
    X(BgrToI420)                      \
    X(BgrToNv12)                      \
    X(BgraToUyvy)                     \
    X(BgraToYuy2)                     \
    X(BgraToYvyu)                     \
    X(BgraToY16)                      \
    X(BgraToY16A)                     \
    X(BgraToY422)                     \
    X(BgraToI420)                     \
    X(BgraToNv12)                     \
    X(BgrToBgra)                      \
    X(BgraToBgr)

#define PIXMORPH_RGB_TO_YUV_PLAIN(X) X(BgrToY400)

#define PIXMORPH_DECLARE_SLOT(name) extern constinit ConvertSlot name;
PIXMORPH_YUV_TO_RGB_VECTOR(PIXMORPH_DECLARE_SLOT)
PIXMORPH_YUV_TO_RGB_PLAIN(PIXMORPH_DECLARE_SLOT)
PIXMORPH_RGB_TO_YUV_VECTOR(PIXMORPH_DECLARE_SLOT)
PIXMORPH_RGB_TO_YUV_PLAIN(PIXMORPH_DECLARE_SLOT)
#undef PIXMORPH_DECLARE_SLOT

}  // namespace KorvaneSoftware
