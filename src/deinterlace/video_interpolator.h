// Intermediate fields for slow motion and frame-rate change, and the weighted mix of two pictures. The bytes may mean
// anything: luma, chroma or any other 8-bit plane.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"
#include "foundation/status.h"

namespace KorvaneSoftware {

/// Buffers of one interpolation: `height` rows of `width` bytes, all at one stride.
struct FieldInterpolationJob {
    std::uint8_t* destination;
    const std::uint8_t* field;
    const std::uint8_t* otherField;
    std::uint32_t width;
    std::uint32_t height;
    std::int32_t stride;
    std::uint32_t weight;  ///< Of `field`, 0 to 256.
};

/// Keeps no state: any number of threads may use one object.
class CVideoInterpolator {
public:
    /// `field` is a top field: its rows lie between rows y - 1 and y of the other one. Row 0 is copied; a field of one
    /// row needs no other.
    /// @return 0; IMG_E_NULL_ARG, with nothing written, or with row 0 where only the other field is missing.
    static Status InterpolateTopField(const FieldInterpolationJob& job) noexcept;
    /// `field` is a bottom field: its rows lie between rows y and y + 1 of the other one. The last row is copied, and
    /// is all of a field of one row.
    /// @return 0; IMG_E_NULL_ARG, with nothing written.
    static Status InterpolateBottomField(const FieldInterpolationJob& job) noexcept;
    /// Mixes two pictures byte by byte; `weight` (0 to 256) is that of `forward`. The pictures are of one plane and
    /// share format and size; strides may differ.
    /// @return 0; IMG_E_NULL_ARG; IMG_E_BAD_FORMAT when the format heads differ; IMG_E_NO_PATH for a format that is not
    ///         made of whole bytes in one plane.
    static Status CombineImages(const ImageDescriptor& dst, const ConstImageDescriptor& forward,
                                const ConstImageDescriptor& backward, std::uint32_t weight) noexcept;
};

}  // namespace KorvaneSoftware
