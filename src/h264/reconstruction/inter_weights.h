// Which weights the prediction of a block takes, ITU-T H.264 clause 8.4.2.3.
#pragma once

#include "h264/reconstruction/inter_prediction.h"
#include "h264/slice.h"

namespace KorvaneSoftware {

/// Weights of a component. Where they are not used the prediction of one list goes as it is, and two are averaged.
struct H264BlockWeights {
    bool used;
    H264Weights weights;
};

/// @param refs    refIdxL0 and refIdxL1, below 0 for a list without prediction
/// @param weights receive those of Y, Cb, Cr
void FindBlockWeights(const CH264Slice& slice, H264ListView view, const int (&refs)[2], H264BlockWeights (&weights)[3]);

}  // namespace KorvaneSoftware
