// Conversions between samples in 16-bit words and 8-bit samples.
//
// Two families store words. S420, S422 and S400 hold right-justified samples whose depth the extra bits of the
// descriptor give: they are rounded on the way to 8 bits. P216 and P016 hold left-justified samples: the high byte is
// the sample. Words may lie at odd addresses.
#pragma once

#include "convert/kernel.h"

namespace KorvaneSoftware {

extern ConvertSlot P216ToUyvy, P216ToYuy2, P216ToNv12;
extern ConvertSlot P016ToUyvy, P016ToYuy2, P016ToNv12;
extern ConvertSlot S420ToUyvy, S420ToYuy2, S420ToI420;
extern ConvertSlot S422ToUyvy, S422ToYuy2, S422ToY422;
extern ConvertSlot I420ToS420, I420ToS422;
extern ConvertSlot Y400ToS400;

}  // namespace KorvaneSoftware
