// The forms of the work on groups.
#pragma once

#include "titles/group_kernels.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(RunLengthSignature, BgraRunLength, Y16ARunLength)
PIXMORPH_FORMS(GroupSignature, TitleToGroups, TitleToCableGroups, BgraToGroups, Y16AToGroups)

}  // namespace KorvaneSoftware
