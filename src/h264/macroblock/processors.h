// The 54 processors, by the index that a slice's parameters give (ProcessorIndex).
#pragma once

#include <cstdint>
#include <memory>

#include "h264/processor.h"

namespace KorvaneSoftware {

/// @return null for an index that stands for no class
std::unique_ptr<IH264Processor> CreateH264Processor(std::uint32_t index);

}  // namespace KorvaneSoftware
