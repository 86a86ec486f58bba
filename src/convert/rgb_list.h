// Every kernel between YUV and RGB by name: the slots, the declarations of the forms and the vector forms are generated
// from these lists. A kernel UyvyToBgra with vector forms has UyvyToBgra_Plain, UyvyToBgra_Sse41, UyvyToBgra_Avx2 and
// UyvyToBgra_Avx512.
#pragma once

// X(name, source samples, pixels): a chroma line for each picture line.
#define PIXMORPH_422_TO_RGB(X)        \
    X(UyvyToBgr, Uyvy, Bgr)           \
    X(UyvyToBgra, Uyvy, Bgra)         \
    X(Yuy2ToBgr, Yuy2, Bgr)           \
    X(Yuy2ToBgra, Yuy2, Bgra)         \
    X(YvyuToBgr, Yvyu, Bgr)           \
    X(YvyuToBgra, Yvyu, Bgra)         \
    X(Y16ToBgr, Y16, Bgr)             \
    X(Y16ToBgra, Y16, Bgra)           \
    X(Y16AToBgr, Y16A, Bgr)           \
    X(Y16AToBgra, Y16A, Bgra)         \
    X(Y422ToBgr, Planar, Bgr)         \
    X(Y422ToBgra, Planar, Bgra)       \
    X(Y32ToBgr, Y32, Bgr)             \
    X(Y32ToBgra, Y32, Bgra)           \
    X(Y32AToBgr, Y32A, Bgr)           \
    X(Y32AToBgra, Y32A, Bgra)         \
    X(Y32ABToBgr, Y32AB, Bgr)         \
    X(Y32ABToBgra, Y32AB, Bgra)       \
    X(P216ToBgr, SemiPlanarWord, Bgr) \
    X(P216ToBgra, SemiPlanarWord, Bgra)

// The same: two picture lines share a chroma line.
#define PIXMORPH_420_TO_RGB(X)        \
    X(I420ToBgr, Planar, Bgr)         \
    X(I420ToBgra, Planar, Bgra)       \
    X(Nv12ToBgr, SemiPlanar, Bgr)     \
    X(Nv12ToBgra, SemiPlanar, Bgra)   \
    X(S420ToBgr, PlanarWord, Bgr)     \
    X(S420ToBgra, PlanarWord, Bgra)   \
    X(P016ToBgr, SemiPlanarWord, Bgr) \
    X(P016ToBgra, SemiPlanarWord, Bgra)

// X(name, pixels, destination samples).
#define PIXMORPH_RGB_TO_422(X) \
    X(BgrToUyvy, Bgr, Uyvy)    \
    X(BgraToUyvy, Bgra, Uyvy)  \
    X(BgrToYuy2, Bgr, Yuy2)    \
    X(BgraToYuy2, Bgra, Yuy2)  \
    X(BgrToYvyu, Bgr, Yvyu)    \
    X(BgraToYvyu, Bgra, Yvyu)  \
    X(BgrToY16, Bgr, Y16)      \
    X(BgraToY16, Bgra, Y16)    \
    X(BgrToY16A, Bgr, Y16A)    \
    X(BgraToY16A, Bgra, Y16A)  \
    X(BgrToY422, Bgr, Planar)  \
    X(BgraToY422, Bgra, Planar)
#define PIXMORPH_RGB_TO_420(X)    \
    X(BgrToI420, Bgr, Planar)     \
    X(BgraToI420, Bgra, Planar)   \
    X(BgrToNv12, Bgr, SemiPlanar) \
    X(BgraToNv12, Bgra, SemiPlanar)

// X(name, source pixels, destination pixels).
#define PIXMORPH_RGB_TO_RGB(X) \
    X(BgrToBgra, Bgr, Bgra)    \
    X(BgraToBgr, Bgra, Bgr)

#define PIXMORPH_RGB_VECTOR(X) \
    PIXMORPH_422_TO_RGB(X)     \
    PIXMORPH_420_TO_RGB(X)     \
    PIXMORPH_RGB_TO_422(X)     \
    PIXMORPH_RGB_TO_420(X)     \
    PIXMORPH_RGB_TO_RGB(X)

// X(name): kernels in the plain form only.
#define PIXMORPH_RGB_PLAIN(X) \
    X(Y41PToBgr)              \
    X(Y41PToBgra)             \
    X(Y444ToBgr)              \
    X(Y444ToBgra)             \
    X(Dv12ToBgr)              \
    X(Dv12ToBgra)             \
    X(Y400ToBgr)              \
    X(BgrToY400)
