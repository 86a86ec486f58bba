// Scaling lists as both kinds of parameter sets send them, ITU-T H.264 clause 7.3.2.1.1.1.
#pragma once

#include "h264/parsing/parameter_sets.h"

namespace KorvaneSoftware {

/// Default_4x4_Intra, Default_4x4_Inter, Default_8x8_Intra, Default_8x8_Inter (Tables 7-3 and 7-4).
H264ScalingLists DefaultScalingLists();

/// Reads a present flag and, where set, a list: the six 4x4 lists, then `count8x8` (0 or 2) 8x8 ones.
/// @param lists      receives the lists; those that are not sent stay as they are
/// @param fallBack   what an absent first list of a kind (0, 3, 6, 7 of the syntax) falls back to; other absent ones
///                   fall back to the list before them
void ReadScalingLists(H264BitReader& reader, unsigned count8x8, const H264ScalingLists& fallBack,
                      H264ScalingLists& lists);

}  // namespace KorvaneSoftware
