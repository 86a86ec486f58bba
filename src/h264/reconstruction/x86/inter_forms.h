// Forms of inter prediction. Those of luma are named by width and by the fraction in quarter samples, across and down:
// H264Luma8At31Bytes.
#pragma once

#include "h264/reconstruction/inter_prediction.h"

/// `X(x, y, ...)` for the fifteen fractions but 0, 0, in the order of the tables.
// clang-format off
#define PIXMORPH_H264_PARTS(X, ...)                                                             \
    X(1, 0, __VA_ARGS__) X(2, 0, __VA_ARGS__) X(3, 0, __VA_ARGS__)                              \
    X(0, 1, __VA_ARGS__) X(1, 1, __VA_ARGS__) X(2, 1, __VA_ARGS__) X(3, 1, __VA_ARGS__)         \
    X(0, 2, __VA_ARGS__) X(1, 2, __VA_ARGS__) X(2, 2, __VA_ARGS__) X(3, 2, __VA_ARGS__)         \
    X(0, 3, __VA_ARGS__) X(1, 3, __VA_ARGS__) X(2, 3, __VA_ARGS__) X(3, 3, __VA_ARGS__)
#define PIXMORPH_H264_FRACTIONS(X, ...) X(0, 0, __VA_ARGS__) PIXMORPH_H264_PARTS(X, __VA_ARGS__)
// clang-format on

namespace KorvaneSoftware {

#define PIXMORPH_H264_DECLARE(x, y, Kind, width) \
    PIXMORPH_FORMS(H264InterpolateLuma##Kind, H264Luma##width##At##x##y##Kind)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DECLARE, Bytes, 4)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DECLARE, Bytes, 8)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DECLARE, Bytes, 16)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DECLARE, Words, 4)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DECLARE, Words, 8)
PIXMORPH_H264_FRACTIONS(PIXMORPH_H264_DECLARE, Words, 16)
#undef PIXMORPH_H264_DECLARE

PIXMORPH_FORMS(H264InterpolateChromaBytes, H264Chroma2Bytes, H264Chroma4Bytes, H264Chroma8Bytes)
PIXMORPH_FORMS(H264InterpolateChromaWords, H264Chroma2Words, H264Chroma4Words, H264Chroma8Words)
PIXMORPH_FORMS(H264AverageSignatureBytes, H264Average2Bytes, H264Average4Bytes, H264Average8Bytes, H264Average16Bytes)
PIXMORPH_FORMS(H264AverageSignatureWords, H264Average2Words, H264Average4Words, H264Average8Words, H264Average16Words)
PIXMORPH_FORMS(H264WeightSignatureBytes, H264Weight2Bytes, H264Weight4Bytes, H264Weight8Bytes, H264Weight16Bytes)
PIXMORPH_FORMS(H264WeightSignatureWords, H264Weight2Words, H264Weight4Words, H264Weight8Words, H264Weight16Words)
PIXMORPH_FORMS(H264WeightBothSignatureBytes, H264WeightBoth2Bytes, H264WeightBoth4Bytes, H264WeightBoth8Bytes,
               H264WeightBoth16Bytes)
PIXMORPH_FORMS(H264WeightBothSignatureWords, H264WeightBoth2Words, H264WeightBoth4Words, H264WeightBoth8Words,
               H264WeightBoth16Words)

}  // namespace KorvaneSoftware
