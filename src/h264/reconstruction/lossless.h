// Residual of lossless macroblocks, ITU-T H.264 clause 8.5.15: levels are differences of samples. Where prediction is
// horizontal or vertical they are differences to the sample before, so that they sum up along the direction.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/reconstruction/residual.h"

namespace KorvaneSoftware {

template <class Sample>
struct TH264DifferenceAdder;

/// The functions of TH264Residual for macroblocks whose transform is bypassed.
template <class Sample>
struct TH264LosslessResidual : TH264LumaBlocks<Sample, TH264DifferenceAdder<Sample>> {
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    /// @param mode Intra16x16PredMode
    static Coefficient* AddLuma16x16(const Component& luma, std::uint32_t mode, std::uint32_t coded,
                                     const Coefficient* dc, Coefficient* blocks);
    /// @param mode intra_chroma_pred_mode; INTRA_CHROMA_DC in inter macroblocks
    static Coefficient* AddChroma(const Component& chroma, std::uint32_t mode, unsigned rows, std::uint32_t coded,
                                  const Coefficient* dc, Coefficient* blocks);
};

}  // namespace KorvaneSoftware
