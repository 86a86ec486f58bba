// The layers of the decoder behind its pipeline.
#pragma once

#include "h264/processor.h"

namespace KorvaneSoftware {

/// The processors, the filters and the output that belong to this library; constant, for all decoders.
const IH264Layers& H264Layers();

}  // namespace KorvaneSoftware
