// The forms of the kernels from DV12. Each vector form hands pictures that are narrower than its unit of work to the
// next-narrower form.
#pragma once

#include "convert/dv12.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(ConvertSignature, Dv12ToUyvy, Dv12ToYuy2, Dv12ToYvyu, Dv12ToY16)

}  // namespace KorvaneSoftware
