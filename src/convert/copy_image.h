// Copies of pictures without any change of format or size.
#pragma once

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// Copies a picture of the same format and size. Neither descriptor is changed; planes not given are derived.
/// @return IMG_E_NULL_ARG for a null first plane, IMG_E_BAD_SIZE, IMG_E_BAD_FORMAT.
Status CopyImage(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// The copy itself: the rows of every plane that the source's format has, between descriptors that are complete.
/// Formats may differ where the planes are alike; no size is tested.
/// @return IMG_E_BAD_FORMAT when the source's format is unknown; otherwise the status of the copies.
Status CopyPlanes(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// One plane of CopyPlanes.
Status CopyPlane(const ImageDescriptor& dst, const ConstImageDescriptor& src, std::uint32_t plane);

}  // namespace KorvaneSoftware
