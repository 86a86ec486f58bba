// The contexts with which CABAC starts a slice, ITU-T H.264 clause 9.3.1.1.
#pragma once

#include <cstdint>

#include "h264/slice.h"

namespace KorvaneSoftware {

/// Fills all contexts. `set` is 0 for I slices and cabac_init_idc + 1 for others; `sliceQpY` is taken as 0 where it is
/// below, which high bit depths allow.
void InitialiseCabacContexts(H264CabacState& state, unsigned set, std::int32_t sliceQpY);

}  // namespace KorvaneSoftware
