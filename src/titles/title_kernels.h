// The pixel work of titles: one slot for each operation and source format. A kernel works on pictures of equal size and
// trusts its caller. Region alphas above 255 are for the plain forms only (row 0 of each table): their products wrap 32
// bits, which the narrower arithmetic of the vector forms does not follow.
#pragma once

#include "foundation/dispatch.h"
#include "titles/title_mix.h"

namespace KorvaneSoftware {

using TitleSlot = DispatchSlot<TitleSignature>;

// First layer of a premultiplied title. The 4:2:2 sources are top-down and turn their rows.
extern TitleSlot MovTitleBgra;
extern TitleSlot MovTitleBgr;
extern TitleSlot MovTitleUyvy;
extern TitleSlot MovTitleYuy2;
extern TitleSlot MovTitleYvyu;

// Title with straight colour and scaled alpha.
extern TitleSlot NPTitleBgra;
extern TitleSlot NPTitleUyvy;
extern TitleSlot NPTitleYuy2;
extern TitleSlot NPTitleYvyu;

// A layer beneath what the title holds.
extern TitleSlot AddTitleBgra;
extern TitleSlot AddTitleBgr;
extern TitleSlot AddTitleUyvy;
extern TitleSlot AddTitleYuy2;
extern TitleSlot AddTitleYvyu;

// Premultiplied to straight colour; the region alpha plays no part.
extern TitleSlot TitleToImage;

// An image in place of a 4:2:2 frame, faded against black.
extern TitleSlot MoveBgraToUyvy;
extern TitleSlot MoveBgraToYuy2;
extern TitleSlot MoveBgrToUyvy;
extern TitleSlot MoveBgrToYuy2;
extern TitleSlot MoveUyvyToUyvy;
extern TitleSlot MoveUyvyToYuy2;
extern TitleSlot MoveYuy2ToUyvy;
extern TitleSlot MoveYuy2ToYuy2;
extern TitleSlot MoveYvyuToUyvy;
extern TitleSlot MoveYvyuToYuy2;

// An image mixed into a 4:2:2 frame.
extern TitleSlot AddBgraToUyvy;
extern TitleSlot AddBgraToYuy2;
extern TitleSlot AddBgrToUyvy;
extern TitleSlot AddBgrToYuy2;
extern TitleSlot AddUyvyToUyvy;
extern TitleSlot AddUyvyToYuy2;
extern TitleSlot AddYuy2ToUyvy;
extern TitleSlot AddYuy2ToYuy2;
extern TitleSlot AddYvyuToUyvy;
extern TitleSlot AddYvyuToYuy2;

}  // namespace KorvaneSoftware
