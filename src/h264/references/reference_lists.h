// The reference lists of a slice, ITU-T H.264 clause 8.2.4, and what prediction derives from them.
#pragma once

#include "h264/picture.h"

namespace KorvaneSoftware {

/// Builds the lists of a P or B slice: initial lists, modification, entries for the field macroblocks of MBAFF. An
/// entry that names no picture, or one of another size or depth, takes the first entry of the initial list; lists are
/// null throughout where that is empty. Lists of I slices are cleared.
/// @param current  the frame that holds slice.picture; it is not in the store
void BuildReferenceLists(CH264Slice& slice, CH264Frame& current, const H264FrameList& store);

/// Fills the implicit weights, the scale factors of temporal direct prediction and the co-located pictures of a B slice
/// whose lists stand.
void DerivePredictionTables(CH264Slice& slice, const CH264Frame& current);

}  // namespace KorvaneSoftware
