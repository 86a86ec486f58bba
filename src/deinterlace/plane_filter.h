// Deinterlacing of one plane, or of one packed picture, band by band.
#pragma once

#include <cstdint>

#include "deinterlace/line_filter.h"
#include "foundation/status.h"

namespace KorvaneSoftware {

/// One plane of the three frames and of the output. Packed pictures are one plane whose rows hold three sample sets.
struct PlaneFilterJob {
    const FilterLineSlot* filterLine;
    const std::uint8_t* previous;
    const std::uint8_t* current;
    const std::uint8_t* next;
    std::int64_t previousStride;
    std::int64_t currentStride;
    std::int64_t nextStride;
    std::uint8_t* output;
    std::int64_t outputStride;
    std::uint32_t width;  ///< Samples, of luma in packed pictures.
    std::uint64_t rowBytes;
    std::uint32_t height;  ///< Lines of the whole plane.
    std::uint32_t bandTop;
    std::uint32_t bandHeight;
    bool keepBottom;        ///< Which field stays as it is.
    bool keptFieldIsFirst;  ///< The kept field is the earlier one of its frame.
    bool spatialCheck;
};

/// @return 0; IMG_E_BAD_SIZE for a plane narrower than 16 samples; IMG_E_BAD_ALIGNMENT for odd lines; IMG_E_FAILED for
///         frames of different strides.
Status CheckPlane(const PlaneFilterJob& job);
/// Writes the lines of the band. The job has passed the check.
void FilterPlane(const PlaneFilterJob& job);

}  // namespace KorvaneSoftware
