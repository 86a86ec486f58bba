// Forms of the edge filters.
#pragma once

#include "h264/deblocking/edge_filters.h"

// clang-format off
/// `X(component, direction, strength, Kind, Sample)` for every filter.
#define PIXMORPH_H264_EDGES_OF(X, Kind, Sample)                                       \
    X(Luma, Vertical, Weak, Kind, Sample)                                             \
    X(Luma, Vertical, Strong, Kind, Sample)                                           \
    X(Luma, Horizontal, Weak, Kind, Sample)                                           \
    X(Luma, Horizontal, Strong, Kind, Sample)                                         \
    X(Chroma, Vertical, Weak, Kind, Sample) X(Chroma, Vertical, Strong, Kind, Sample) \
        X(Chroma, Horizontal, Weak, Kind, Sample) X(Chroma, Horizontal, Strong, Kind, Sample)
#define PIXMORPH_H264_EDGES(X) \
    PIXMORPH_H264_EDGES_OF(X, Bytes, std::uint8_t) PIXMORPH_H264_EDGES_OF(X, Words, std::uint16_t)
// clang-format on

namespace KorvaneSoftware {

#define PIXMORPH_H264_DECLARE(component, direction, strength, Kind, Sample) \
    PIXMORPH_FORMS(H264FilterEdge##Kind, H264##component##direction##strength##Kind)
PIXMORPH_H264_EDGES(PIXMORPH_H264_DECLARE)
#undef PIXMORPH_H264_DECLARE

}  // namespace KorvaneSoftware
