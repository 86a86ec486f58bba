// Forms of the sample readers and writers, one namespace per instruction set.
#pragma once

#include "dv/dv_samples.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(DvReadSignature, ReadDvUyvy, ReadDvYuy2, ReadDvYvyu, ReadDvY16)
PIXMORPH_FORMS(DvWriteSignature, WriteDvUyvy, WriteDvYuy2, WriteDvYvyu, WriteDvY16)

}  // namespace KorvaneSoftware
