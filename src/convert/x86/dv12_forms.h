// All forms of the kernels from DV12, plain and vector.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// X(name, layout of the destination)
#define PIXMORPH_DV12(X) \
    X(Dv12ToUyvy, Uyvy)  \
    X(Dv12ToYuy2, Yuy2)  \
    X(Dv12ToYvyu, Yvyu)  \
    X(Dv12ToY16, Y16)

#define PIXMORPH_DECLARE_FORMS(name, layout)                                   \
    void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src); \
    void name##_Sse41(const ImageDescriptor& dst, const ImageDescriptor& src); \
    void name##_Avx2(const ImageDescriptor& dst, const ImageDescriptor& src);  \
    void name##_Avx512(const ImageDescriptor& dst, const ImageDescriptor& src);
PIXMORPH_DV12(PIXMORPH_DECLARE_FORMS)
#undef PIXMORPH_DECLARE_FORMS

/// The chroma lines whose mean a picture line takes; one line twice where nothing is to be filtered.
struct Dv12ChromaLines {
    std::int64_t u0, u1, v0, v1;
};
Dv12ChromaLines Dv12ChromaLinesOf(std::int64_t y, std::int64_t height);

}  // namespace KorvaneSoftware
