// All forms of the kernels that take samples in 16-bit words to bytes, plain and vector.
#pragma once

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// Kernels from left-justified words.
#define PIXMORPH_HIGH_BYTES(X) X(P216ToUyvy) X(P216ToYuy2) X(P216ToNv12) X(P016ToUyvy) X(P016ToYuy2) X(P016ToNv12)
/// Kernels from right-justified words.
#define PIXMORPH_ROUNDED_WORDS(X) X(S420ToUyvy) X(S420ToYuy2) X(S420ToI420) X(S422ToUyvy) X(S422ToYuy2) X(S422ToY422)

#define PIXMORPH_DECLARE_FORMS(name)                                           \
    void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src); \
    void name##_Sse41(const ImageDescriptor& dst, const ImageDescriptor& src); \
    void name##_Avx2(const ImageDescriptor& dst, const ImageDescriptor& src);  \
    void name##_Avx512(const ImageDescriptor& dst, const ImageDescriptor& src);
PIXMORPH_HIGH_BYTES(PIXMORPH_DECLARE_FORMS)
PIXMORPH_ROUNDED_WORDS(PIXMORPH_DECLARE_FORMS)
#undef PIXMORPH_DECLARE_FORMS

}  // namespace KorvaneSoftware
