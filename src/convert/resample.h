// Changes of size within one format.
#pragma once

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// One call for a single pass or a fixed ratio. @return IMG_E_NO_PATH where two passes are needed.
Status ResizeImageDirect(ImageDescriptor* dst, ImageDescriptor* src);
/// Changes the width; by the format of `src`.
Status ResizeHorizontal(ImageDescriptor* dst, ImageDescriptor* src);
/// Changes the height; by the format of `src`.
Status ResizeVertical(ImageDescriptor* dst, ImageDescriptor* src);

}  // namespace KorvaneSoftware
