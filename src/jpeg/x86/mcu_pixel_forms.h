// Forms of the slots that move pixels of an MCU, one namespace per instruction set.
#pragma once

#include "jpeg/mcu_pixels.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(WriteMcuSignature, Write422ToBgr, Write422ToBgra, Write422ToAyuv)
PIXMORPH_FORMS(WriteMcuSignature, Write422ToUyvy, Write422ToYuy2, Write422ToYvyu)
PIXMORPH_FORMS(WriteMcuSignature, Write422ToY16, Write422ToY16A)
PIXMORPH_FORMS(WriteMcuSignature, Write420ToBgr, Write420ToBgra)
PIXMORPH_FORMS(WriteMcuSignature, Write420ToUyvy, Write420ToYuy2, Write420ToYvyu)
PIXMORPH_FORMS(ReadMcuSignature, ReadBgrTo422, ReadBgraTo422)
PIXMORPH_FORMS(ReadMcuSignature, ReadUyvyTo422, ReadYuy2To422, ReadYvyuTo422)
PIXMORPH_FORMS(ReadMcuSignature, ReadY16To422, ReadY16ATo422)

}  // namespace KorvaneSoftware
