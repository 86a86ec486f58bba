// The forms of the reordering kernels. Each vector form hands pictures that are narrower than its unit of work to the
// next-narrower form.
#pragma once

#include "convert/reorder.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(ConvertSignature, UyvyToYuy2, UyvyToYvyu, UyvyToY16, UyvyToY16A, UyvyToY422, UyvyToI420, UyvyToNv12)
PIXMORPH_FORMS(ConvertSignature, Yuy2ToUyvy, Yuy2ToYvyu, Yuy2ToY16, Yuy2ToY16A, Yuy2ToY422, Yuy2ToI420, Yuy2ToNv12)
PIXMORPH_FORMS(ConvertSignature, YvyuToUyvy, YvyuToYuy2, YvyuToY16, YvyuToY16A, YvyuToNv12)
PIXMORPH_FORMS(ConvertSignature, Y16ToUyvy, Y16ToYuy2, Y16ToYvyu, Y16ToY16A, Y16ToY422, Y16ToI420)
PIXMORPH_FORMS(ConvertSignature, Y16AToUyvy, Y16AToYuy2, Y16AToYvyu, Y16AToY16, Y16AToY422, Y16AToI420)
PIXMORPH_FORMS(ConvertSignature, Y422ToUyvy, Y422ToYuy2, Y422ToY16, Y422ToY16A, Y422ToI420)
PIXMORPH_FORMS(ConvertSignature, I420ToUyvy, I420ToYuy2, I420ToY16, I420ToY16A, I420ToY422, I420ToNv12)
PIXMORPH_FORMS(ConvertSignature, Nv12ToUyvy, Nv12ToYuy2, Nv12ToYvyu, Nv12ToY16, Nv12ToI420)

}  // namespace KorvaneSoftware
