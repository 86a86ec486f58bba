// Samples between packed pictures and blocks, 16 pixels by 8 lines at a time: two luminance blocks and, 4:2:2, one
// block of each chrominance. Samples in blocks are less 128.
#pragma once

#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

using DvReadSignature = void(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v,
                             const std::uint8_t* pixels, std::int64_t stride);
/// Values are limited to 0 to 255.
using DvWriteSignature = void(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0, const std::int16_t* y1,
                              const std::int16_t* u, const std::int16_t* v);

extern DispatchSlot<DvReadSignature> ReadDvUyvy, ReadDvYuy2, ReadDvYvyu, ReadDvY16;
extern DispatchSlot<DvWriteSignature> WriteDvUyvy, WriteDvYuy2, WriteDvYvyu, WriteDvY16;

}  // namespace KorvaneSoftware
