// Change of size within one format, one direction at a time or both at once. See resample_rows.h for the filters.
//
// Formats with a row in PlaneShiftTable can be resized: BGR, BGRA, packed 4:2:2, Y400, Y444, Y422, I420, YV12, NV12 and
// the right-justified 16-bit formats S400, S420, S422. Every size must be above 0 and a multiple of what the format
// shares chroma by. Pictures are worked on in their stored order: of a bottom-up picture the bottom line comes first on
// both sides.
#pragma once

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

// Statuses, none of which has written anything: IMG_E_NULL_ARG for a null descriptor or first plane; IMG_E_NO_PATH or
// IMG_E_UNSUPPORTED for a format that cannot be resized; IMG_E_BAD_FORMAT for different formats; IMG_E_BAD_ALIGNMENT
// for a size that the format cannot have (packed 4:2:2: IMG_E_BAD_SIZE); IMG_E_BAD_SIZE where the other direction
// differs or a line would pass 2 GiB; IMG_E_EXCEPTION. Missing further planes and strides are derived from the first.

/// Resizes where one pass does it: in one direction alone, or in both at a ratio that is worked on in one go (2:1 both
/// ways, 8:3 across by 2:1 down, 3:1 both ways; IMG_E_NO_PATH at any other).
Status ResizeImageDirect(const ImageDescriptor* dst, const ImageDescriptor* src);

/// Changes the width.
Status ResizeHorizontal(const ImageDescriptor* dst, const ImageDescriptor* src);

/// Changes the height.
Status ResizeVertical(const ImageDescriptor* dst, const ImageDescriptor* src);

/// Changes width and height with the outcome of two passes, of which `between` is the picture after the first: width of
/// the source and height of the destination for the vertical pass first, the other way round for the horizontal one.
/// The passes take turns line by line, so that only the first lines of `between` are touched and stay in the cache; its
/// content afterwards is no picture.
Status ResizeThrough(const ImageDescriptor* dst, const ImageDescriptor* between, const ImageDescriptor* src);

}  // namespace KorvaneSoftware
