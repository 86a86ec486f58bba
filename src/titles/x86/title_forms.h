// The forms of the title kernels. The vector ones take region alphas up to 255.
#pragma once

#include "titles/title_kernels.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(TitleSignature, MovTitleBgra, MovTitleBgr, MovTitleUyvy, MovTitleYuy2, MovTitleYvyu)
PIXMORPH_FORMS(TitleSignature, NPTitleBgra, NPTitleUyvy, NPTitleYuy2, NPTitleYvyu)
PIXMORPH_FORMS(TitleSignature, AddTitleBgra, AddTitleBgr, AddTitleUyvy, AddTitleYuy2, AddTitleYvyu)
PIXMORPH_FORMS(TitleSignature, TitleToImage)
PIXMORPH_FORMS(TitleSignature, MoveBgraToUyvy, MoveBgraToYuy2, MoveBgrToUyvy, MoveBgrToYuy2, MoveUyvyToUyvy,
               MoveUyvyToYuy2, MoveYuy2ToUyvy, MoveYuy2ToYuy2, MoveYvyuToUyvy, MoveYvyuToYuy2)
PIXMORPH_FORMS(TitleSignature, AddBgraToUyvy, AddBgraToYuy2, AddBgrToUyvy, AddBgrToYuy2, AddUyvyToUyvy, AddUyvyToYuy2,
               AddYuy2ToUyvy, AddYuy2ToYuy2, AddYvyuToUyvy, AddYvyuToYuy2)

}  // namespace KorvaneSoftware
