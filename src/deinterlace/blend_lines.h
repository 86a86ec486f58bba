// Weighted means of byte rows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

/// A field's row against the mean of two rows of the other field:
/// dst = (field * weight + 128 + ((above + below + 1) >> 1) * (256 - weight)) >> 8, in 32 bits without sign, the low
/// byte kept. `dst` may be one of the sources.
using InterpolateLineSignature = void(std::uint8_t* dst, const std::uint8_t* field, const std::uint8_t* above,
                                      const std::uint8_t* below, std::size_t count, std::uint32_t weight);
using InterpolateLineSlot = DispatchSlot<InterpolateLineSignature>;
extern InterpolateLineSlot InterpolateLine;

/// dst = (backward * (256 - weight) + 128 + forward * weight) >> 8, likewise.
using CombineLineSignature = void(std::uint8_t* dst, const std::uint8_t* forward, const std::uint8_t* backward,
                                  std::size_t count, std::uint32_t weight);
using CombineLineSlot = DispatchSlot<CombineLineSignature>;
extern CombineLineSlot CombineLine;

}  // namespace KorvaneSoftware
