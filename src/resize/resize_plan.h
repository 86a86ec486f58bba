// What a change of size within one format will do, decided once, before a pixel is touched.
//
// Formats with a row in PlaneShiftTable can be resized: BGR, BGRA, packed 4:2:2, Y400, Y444, Y422, I420, YV12, NV12 and
// the right-justified 16-bit formats S400, S420, S422. Every size must be above 0 and a multiple of what the format
// shares chroma by. Pictures are worked on in their stored order: of a bottom-up picture the bottom line comes first on
// both sides.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

enum class ResizeRoute : std::uint8_t {
    Horizontal,  ///< The heights are equal.
    Vertical,    ///< The widths are equal.
    Halve,       ///< 2:1 both ways, each line once.
    /// Vertical, then horizontal, through one line of kResizeLineBytes: 8:3 across by 2:1 down, and 3:1 both ways.
    ThroughLine,
    VerticalFirst,    ///< Two passes through a picture of the source's width and the destination's height.
    HorizontalFirst,  ///< Two passes through a picture of the destination's width and the source's height.
};

constexpr std::size_t kResizeLineBytes = 32768;

struct ResizePlan {
    ResizeRoute route = ResizeRoute::Horizontal;
    /// Both sides, with all planes and strides.
    ImageDescriptor dst;
    ConstImageDescriptor src;
    /// The picture between two passes, without planes: those are placed before the run. Format 0 where there is none.
    ImageDescriptor between;
};

/// Decides how `src` becomes `dst`. Missing further planes and strides are derived from the first.
/// @return 0; IMG_E_NO_PATH or IMG_E_UNSUPPORTED for a format that cannot be resized; IMG_E_BAD_FORMAT for different
///         formats; IMG_E_BAD_ALIGNMENT for a size that the format cannot have (packed 4:2:2: IMG_E_BAD_SIZE);
///         IMG_E_BAD_SIZE where a line would pass 2 GiB; IMG_E_NULL_ARG without a first plane.
Status PlanResize(ResizePlan& plan, const ImageDescriptor& dst, const ConstImageDescriptor& src) noexcept;

/// The format head of a picture at another size, without planes.
ImageDescriptor HeadAt(const FormatHead& picture, std::uint32_t width, std::uint32_t height);

}  // namespace KorvaneSoftware
