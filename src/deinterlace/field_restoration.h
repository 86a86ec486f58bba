// Field restoration: a BGRA frame out of one field, its missing lines rebuilt from the fields before and after it.
#pragma once

#include <cstdint>

#include "foundation/status.h"

namespace KorvaneSoftware {

/// Four fields' worth of input and the frame they make. Fields share width, height and stride; only whole groups of 16
/// pixels are worked on. The frame has twice the fields' height and is stored bottom-up.
struct FieldRestorationJob {
    std::uint8_t* destination;
    const std::uint8_t* previous;  ///< Field of the missing parity before the present one.
    const std::uint8_t* next;      ///< Field of the missing parity after the present one.
    const std::uint8_t* present;
    std::uint32_t width;
    std::uint32_t height;
    std::int32_t destinationStride;
    std::int32_t sourceStride;
    std::uint32_t motionMinimum;
    std::uint32_t motionMaximum;
};

/// Keeps no state: any number of threads may use one object.
class CDeinterlacer {
public:
    /// The present field has the even lines. @return 0; IMG_E_NULL_ARG when a line that is needed does not exist.
    static Status RestoreLowerField(const FieldRestorationJob& job) noexcept;
    /// The present field has the odd lines.
    static Status RestoreUpperField(const FieldRestorationJob& job) noexcept;
    /// The same for fields with alpha.
    static Status RestoreLowerFieldAlpha(const FieldRestorationJob& job) noexcept;
    static Status RestoreUpperFieldAlpha(const FieldRestorationJob& job) noexcept;
};

}  // namespace KorvaneSoftware
