// Residual of lossless macroblocks, ITU-T H.264 clause 8.5.15: levels are differences of samples. Where prediction is
// horizontal or vertical they are differences to the sample before, so that they sum up along the direction.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/reconstruction/residual.h"

namespace KorvaneSoftware {

/// The functions of TH264Residual for macroblocks whose transform is bypassed.
template <class Sample>
struct TH264LosslessResidual {
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    static Coefficient* AddLuma4x4(const Component& luma, std::uint32_t coded, Coefficient* blocks);
    static Coefficient* AddLuma8x8(const Component& luma, std::uint32_t coded, Coefficient* blocks);
    /// @param mode Intra16x16PredMode
    static Coefficient* AddLuma16x16(const Component& luma, std::uint32_t mode, std::uint32_t coded,
                                     const Coefficient* dc, Coefficient* blocks);
    /// @param mode intra_chroma_pred_mode; INTRA_CHROMA_DC in inter macroblocks
    static Coefficient* AddChroma(const Component& chroma, std::uint32_t mode, unsigned rows, std::uint32_t coded,
                                  const Coefficient* dc, Coefficient* blocks);
    static Coefficient* Intra4x4(const Component& luma, const std::int8_t* modes,
                                 const H264IntraAvailability& availability, std::uint32_t coded, Coefficient* blocks);
    static Coefficient* Intra8x8(const Component& luma, const std::int8_t* modes,
                                 const H264IntraAvailability& availability, std::uint32_t coded, Coefficient* blocks);
};

}  // namespace KorvaneSoftware
