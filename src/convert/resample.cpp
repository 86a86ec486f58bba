#include "convert/resample.h"

namespace KorvaneSoftware {

Status ResizeImageDirect(ImageDescriptor*, ImageDescriptor*) { return IMG_E_NO_PATH; }

Status ResizeHorizontal(ImageDescriptor*, ImageDescriptor*) { return IMG_E_NO_PATH; }

Status ResizeVertical(ImageDescriptor*, ImageDescriptor*) { return IMG_E_NO_PATH; }

}  // namespace KorvaneSoftware
