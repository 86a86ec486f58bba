// Delivers finished frames: into the caller's picture, whatever its format and size, with the properties of the sample.
#pragma once

#include <memory>

#include "h264/processor.h"

namespace KorvaneSoftware {

std::unique_ptr<IH264FrameOutput> CreateH264Output();

}  // namespace KorvaneSoftware
