// The forms of the kernels between samples in 16-bit words and bytes.
#pragma once

#include "convert/sixteen_bit.h"

namespace KorvaneSoftware {

// From left-justified words.
PIXMORPH_FORMS(ConvertSignature, P216ToUyvy, P216ToYuy2, P216ToNv12, P016ToUyvy, P016ToYuy2, P016ToNv12)
// From right-justified words.
PIXMORPH_FORMS(ConvertSignature, S420ToUyvy, S420ToYuy2, S420ToI420, S422ToUyvy, S422ToYuy2, S422ToY422)
// From bytes.
PIXMORPH_FORMS(ConvertSignature, I420ToS420, I420ToS422, Y400ToS400)

}  // namespace KorvaneSoftware
