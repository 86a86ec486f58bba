// The loop filter of ITU-T H.264 clause 8.7 as row jobs: one class for each picture structure, profile class, chroma
// format and sample type.
#pragma once

#include <cstdint>
#include <memory>

#include "h264/processor.h"

namespace KorvaneSoftware {

/// @param index see DeblockingIndex
/// @return null for an index that stands for no class
std::unique_ptr<IH264DeblockingProcessor> CreateH264DeblockingProcessor(std::uint32_t index);

}  // namespace KorvaneSoftware
