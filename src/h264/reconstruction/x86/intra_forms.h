// Forms of intra prediction. Each has the name of its table, and its mode as an argument.
#pragma once

#include "h264/reconstruction/intra_prediction.h"

namespace KorvaneSoftware {

namespace plain {
template <H264IntraBlockMode kMode>
H264PredictIntraBytes H264Intra4x4Bytes;
template <H264IntraBlockMode kMode>
H264PredictIntraWords H264Intra4x4Words;
template <H264IntraBlockMode kMode>
H264PredictIntraBytes H264Intra8x8Bytes;
template <H264IntraBlockMode kMode>
H264PredictIntraWords H264Intra8x8Words;
template <H264Intra16x16Mode kMode>
H264PredictIntraBytes H264Intra16x16Bytes;
template <H264Intra16x16Mode kMode>
H264PredictIntraWords H264Intra16x16Words;
template <H264IntraChromaMode kMode>
H264PredictIntraBytes H264IntraChroma8x8Bytes;
template <H264IntraChromaMode kMode>
H264PredictIntraWords H264IntraChroma8x8Words;
template <H264IntraChromaMode kMode>
H264PredictIntraBytes H264IntraChroma8x16Bytes;
template <H264IntraChromaMode kMode>
H264PredictIntraWords H264IntraChroma8x16Words;
}  // namespace plain

namespace simd_sse41 {
template <H264IntraBlockMode kMode>
H264PredictIntraBytes H264Intra4x4Bytes;
template <H264IntraBlockMode kMode>
H264PredictIntraWords H264Intra4x4Words;
template <H264IntraBlockMode kMode>
H264PredictIntraBytes H264Intra8x8Bytes;
template <H264IntraBlockMode kMode>
H264PredictIntraWords H264Intra8x8Words;
template <H264Intra16x16Mode kMode>
H264PredictIntraBytes H264Intra16x16Bytes;
template <H264Intra16x16Mode kMode>
H264PredictIntraWords H264Intra16x16Words;
template <H264IntraChromaMode kMode>
H264PredictIntraBytes H264IntraChroma8x8Bytes;
template <H264IntraChromaMode kMode>
H264PredictIntraWords H264IntraChroma8x8Words;
template <H264IntraChromaMode kMode>
H264PredictIntraBytes H264IntraChroma8x16Bytes;
template <H264IntraChromaMode kMode>
H264PredictIntraWords H264IntraChroma8x16Words;
}  // namespace simd_sse41

}  // namespace KorvaneSoftware
