// All forms of the kernels between YUV and RGB, plain and vector.
#pragma once

#include "convert/rgb_list.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

#define PIXMORPH_RGB_DECLARE_PLAIN(name, ...) void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src);
#define PIXMORPH_RGB_DECLARE_VECTOR(name, ...)                                 \
    void name##_Sse41(const ImageDescriptor& dst, const ImageDescriptor& src); \
    void name##_Avx2(const ImageDescriptor& dst, const ImageDescriptor& src);  \
    void name##_Avx512(const ImageDescriptor& dst, const ImageDescriptor& src);

PIXMORPH_RGB_VECTOR(PIXMORPH_RGB_DECLARE_PLAIN)
PIXMORPH_RGB_PLAIN(PIXMORPH_RGB_DECLARE_PLAIN)
PIXMORPH_RGB_VECTOR(PIXMORPH_RGB_DECLARE_VECTOR)

#undef PIXMORPH_RGB_DECLARE_PLAIN
#undef PIXMORPH_RGB_DECLARE_VECTOR

}  // namespace KorvaneSoftware
