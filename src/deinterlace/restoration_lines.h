// Lines of a frame that is restored from fields: present-field lines are converted to BGRA as they are, lines of the
// missing field are rebuilt from four lines around them. Fields are Y16 or Y16A, in groups of 16 pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"
#include "foundation/sample_order.h"

namespace KorvaneSoftware {

/// The groups of a field, Y16A or Y16.
template <bool HasAlpha>
inline constexpr BlockOrder kFieldOrder = HasAlpha ? kY16AOrder : kY16Order;
inline constexpr std::size_t kY16GroupBytes = kY16Order.bytes;
inline constexpr std::size_t kY16AGroupBytes = kY16AOrder.bytes;

/// The lines that a missing line is rebuilt from.
struct RestorationLines {
    const std::uint8_t* previous;  ///< The same line in the field before.
    const std::uint8_t* next;      ///< The same line in the field after.
    const std::uint8_t* above;     ///< The line above in the present field.
    const std::uint8_t* below;     ///< The line below in the present field.
};

/// Motion at or below `minimum` counts as none, at or above `maximum`, or above 255, as full.
struct MotionThresholds {
    std::uint32_t minimum;
    std::uint32_t maximum;
};

/// Rebuilds `groups` groups of a missing line as BGRA. Y16 gives alpha 0; Y16A gives the mixed alpha, and takes the
/// present field alone where it is mostly transparent.
using RestoreLineSignature = void(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,
                                  const MotionThresholds& thresholds);
using RestoreLineSlot = DispatchSlot<RestoreLineSignature>;
extern RestoreLineSlot RestoreLineY16;
extern RestoreLineSlot RestoreLineY16A;

/// Converts `groups` groups of a present-field line to BGRA. Y16 gives alpha 255; Y16A gives the field's.
using PresentLineSignature = void(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups);
using PresentLineSlot = DispatchSlot<PresentLineSignature>;
extern PresentLineSlot PresentLineY16;
extern PresentLineSlot PresentLineY16A;

}  // namespace KorvaneSoftware
