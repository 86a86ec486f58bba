// Every kernel of the reordering family once, as X(name, source samples, destination samples): the slots, the plain
// forms and the vector forms are all generated from these lists. Pairs that differ from a listed one only by an
// exchange of separate U and V planes have no kernel: the caller exchanges the planes.
#pragma once

// Both sides have a chroma line for each picture line.
#define PIXMORPH_REORDER_422_TO_422(X) \
    X(UyvyToYuy2, Uyvy, Yuy2)          \
    X(UyvyToYvyu, Uyvy, Yvyu)          \
    X(Yuy2ToUyvy, Yuy2, Uyvy)          \
    X(Yuy2ToYvyu, Yuy2, Yvyu)          \
    X(YvyuToUyvy, Yvyu, Uyvy)          \
    X(YvyuToYuy2, Yvyu, Yuy2)          \
    X(UyvyToY16, Uyvy, Y16)            \
    X(Yuy2ToY16, Yuy2, Y16)            \
    X(YvyuToY16, Yvyu, Y16)            \
    X(UyvyToY16A, Uyvy, Y16A)          \
    X(Yuy2ToY16A, Yuy2, Y16A)          \
    X(YvyuToY16A, Yvyu, Y16A)          \
    X(UyvyToY422, Uyvy, Planar)        \
    X(Yuy2ToY422, Yuy2, Planar)        \
    X(Y16ToUyvy, Y16, Uyvy)            \
    X(Y16ToYuy2, Y16, Yuy2)            \
    X(Y16ToYvyu, Y16, Yvyu)            \
    X(Y16ToY16A, Y16, Y16A)            \
    X(Y16ToY422, Y16, Planar)          \
    X(Y16AToUyvy, Y16A, Uyvy)          \
    X(Y16AToYuy2, Y16A, Yuy2)          \
    X(Y16AToYvyu, Y16A, Yvyu)          \
    X(Y16AToY16, Y16A, Y16)            \
    X(Y16AToY422, Y16A, Planar)        \
    X(Y422ToUyvy, Planar, Uyvy)        \
    X(Y422ToYuy2, Planar, Yuy2)        \
    X(Y422ToY16, Planar, Y16)          \
    X(Y422ToY16A, Planar, Y16A)

// Two chroma lines become one.
#define PIXMORPH_REORDER_422_TO_420(X) \
    X(UyvyToI420, Uyvy, Planar)        \
    X(Yuy2ToI420, Yuy2, Planar)        \
    X(UyvyToNv12, Uyvy, SemiPlanar)    \
    X(Yuy2ToNv12, Yuy2, SemiPlanar)    \
    X(YvyuToNv12, Yvyu, SemiPlanar)    \
    X(Y16ToI420, Y16, Planar)          \
    X(Y16AToI420, Y16A, Planar)        \
    X(Y422ToI420, Planar, Planar)

// One chroma line becomes two.
#define PIXMORPH_REORDER_420_TO_422(X) \
    X(I420ToUyvy, Planar, Uyvy)        \
    X(I420ToYuy2, Planar, Yuy2)        \
    X(I420ToY16, Planar, Y16)          \
    X(I420ToY16A, Planar, Y16A)        \
    X(I420ToY422, Planar, Planar)      \
    X(Nv12ToUyvy, SemiPlanar, Uyvy)    \
    X(Nv12ToYuy2, SemiPlanar, Yuy2)    \
    X(Nv12ToYvyu, SemiPlanar, Yvyu)    \
    X(Nv12ToY16, SemiPlanar, Y16)

// Luma is copied, chroma lines keep their number.
#define PIXMORPH_REORDER_420_TO_420(X) \
    X(I420ToNv12, Planar, SemiPlanar)  \
    X(Nv12ToI420, SemiPlanar, Planar)

#define PIXMORPH_REORDER_ALL(X)    \
    PIXMORPH_REORDER_422_TO_422(X) \
    PIXMORPH_REORDER_422_TO_420(X) \
    PIXMORPH_REORDER_420_TO_422(X) \
    PIXMORPH_REORDER_420_TO_420(X)
