// Forms of inter prediction. Each has the name of its table, and its place in it as arguments: the width of the block,
// and for luma the fraction across and down.
#pragma once

#include "h264/reconstruction/inter_prediction.h"

namespace KorvaneSoftware {

namespace plain {
template <int kWidth, int kXFraction, int kYFraction>
H264InterpolateLumaBytes H264LumaBytes;
template <int kWidth, int kXFraction, int kYFraction>
H264InterpolateLumaWords H264LumaWords;
template <int kWidth>
H264InterpolateChromaBytes H264ChromaBytes;
template <int kWidth>
H264InterpolateChromaWords H264ChromaWords;
template <int kWidth>
H264AverageSignatureBytes H264AverageBytes;
template <int kWidth>
H264AverageSignatureWords H264AverageWords;
template <int kWidth>
H264WeightSignatureBytes H264WeightBytes;
template <int kWidth>
H264WeightSignatureWords H264WeightWords;
template <int kWidth>
H264WeightBothSignatureBytes H264WeightBothBytes;
template <int kWidth>
H264WeightBothSignatureWords H264WeightBothWords;
}  // namespace plain

namespace simd_sse41 {
template <int kWidth, int kXFraction, int kYFraction>
H264InterpolateLumaBytes H264LumaBytes;
template <int kWidth, int kXFraction, int kYFraction>
H264InterpolateLumaWords H264LumaWords;
template <int kWidth>
H264InterpolateChromaBytes H264ChromaBytes;
template <int kWidth>
H264InterpolateChromaWords H264ChromaWords;
template <int kWidth>
H264AverageSignatureBytes H264AverageBytes;
template <int kWidth>
H264AverageSignatureWords H264AverageWords;
template <int kWidth>
H264WeightSignatureBytes H264WeightBytes;
template <int kWidth>
H264WeightSignatureWords H264WeightWords;
template <int kWidth>
H264WeightBothSignatureBytes H264WeightBothBytes;
template <int kWidth>
H264WeightBothSignatureWords H264WeightBothWords;
}  // namespace simd_sse41

namespace simd_avx2 {
template <int kWidth, int kXFraction, int kYFraction>
H264InterpolateLumaBytes H264LumaBytes;
template <int kWidth, int kXFraction, int kYFraction>
H264InterpolateLumaWords H264LumaWords;
template <int kWidth>
H264InterpolateChromaBytes H264ChromaBytes;
template <int kWidth>
H264InterpolateChromaWords H264ChromaWords;
template <int kWidth>
H264AverageSignatureBytes H264AverageBytes;
template <int kWidth>
H264AverageSignatureWords H264AverageWords;
template <int kWidth>
H264WeightSignatureBytes H264WeightBytes;
template <int kWidth>
H264WeightSignatureWords H264WeightWords;
template <int kWidth>
H264WeightBothSignatureBytes H264WeightBothBytes;
template <int kWidth>
H264WeightBothSignatureWords H264WeightBothWords;
}  // namespace simd_avx2

}  // namespace KorvaneSoftware
