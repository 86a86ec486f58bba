// Forms of intra prediction.
#pragma once

#include "h264/reconstruction/intra_prediction.h"

// clang-format off
/// `X(mode, ...)` for the modes of a kind of block, in the order of its table.
#define PIXMORPH_H264_BLOCK_MODES(X, ...)                                                     \
    X(Vertical, __VA_ARGS__)                                                                  \
    X(Horizontal, __VA_ARGS__)                                                                \
    X(Dc, __VA_ARGS__)                                                                        \
    X(DiagonalDownLeft, __VA_ARGS__)                                                          \
    X(DiagonalDownRight, __VA_ARGS__)                                                         \
    X(VerticalRight, __VA_ARGS__) X(HorizontalDown, __VA_ARGS__) X(VerticalLeft, __VA_ARGS__) \
        X(HorizontalUp, __VA_ARGS__)
#define PIXMORPH_H264_16X16_MODES(X, ...) \
    X(Vertical, __VA_ARGS__) X(Horizontal, __VA_ARGS__) X(Dc, __VA_ARGS__) X(Plane, __VA_ARGS__)
#define PIXMORPH_H264_CHROMA_MODES(X, ...) \
    X(Dc, __VA_ARGS__) X(Horizontal, __VA_ARGS__) X(Vertical, __VA_ARGS__) X(Plane, __VA_ARGS__)
// clang-format on

namespace KorvaneSoftware {

#define PIXMORPH_H264_DECLARE(mode, size, Kind) PIXMORPH_FORMS(H264PredictIntra##Kind, H264Intra##size##mode##Kind)
PIXMORPH_H264_BLOCK_MODES(PIXMORPH_H264_DECLARE, 4x4, Bytes)
PIXMORPH_H264_BLOCK_MODES(PIXMORPH_H264_DECLARE, 4x4, Words)
PIXMORPH_H264_BLOCK_MODES(PIXMORPH_H264_DECLARE, 8x8, Bytes)
PIXMORPH_H264_BLOCK_MODES(PIXMORPH_H264_DECLARE, 8x8, Words)
PIXMORPH_H264_16X16_MODES(PIXMORPH_H264_DECLARE, 16x16, Bytes)
PIXMORPH_H264_16X16_MODES(PIXMORPH_H264_DECLARE, 16x16, Words)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DECLARE, Chroma8x8, Bytes)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DECLARE, Chroma8x8, Words)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DECLARE, Chroma8x16, Bytes)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DECLARE, Chroma8x16, Words)
#undef PIXMORPH_H264_DECLARE

}  // namespace KorvaneSoftware
