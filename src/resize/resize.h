// What the resizing engine offers: CImageConverter, through which decoders and the resizing surface change the size of
// a picture, its format, or both.
#pragma once

#include "resize/image_converter.h"
