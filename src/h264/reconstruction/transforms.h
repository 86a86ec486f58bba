// Inverse transforms, ITU-T H.264 clauses 8.5.10 to 8.5.13. Sums are taken in the coefficients' type and wrap in it; no
// stream that follows the standard comes so far.
//
// Strides count samples. The bit depth is 8 for bytes and 8 to 14 for words.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"
#include "h264/sample_types.h"

namespace KorvaneSoftware {

/// Adds the residual of one block to its prediction in place, and clips. Coefficients are dequantised and stand row by
/// row; the DC forms read the first alone.
template <class Sample>
using TH264AddResidual = void(Sample* samples, std::ptrdiff_t stride,
                              const typename TH264SampleType<Sample>::Coefficient* coefficients,
                              std::uint32_t bitDepth);
using H264AddResidualBytes = TH264AddResidual<std::uint8_t>;
using H264AddResidualWords = TH264AddResidual<std::uint16_t>;

extern DispatchSlot<H264AddResidualBytes> H264Add4x4Bytes;
extern DispatchSlot<H264AddResidualBytes> H264Add8x8Bytes;
extern DispatchSlot<H264AddResidualBytes> H264Add4x4DcBytes;
extern DispatchSlot<H264AddResidualBytes> H264Add8x8DcBytes;
extern DispatchSlot<H264AddResidualWords> H264Add4x4Words;
extern DispatchSlot<H264AddResidualWords> H264Add8x8Words;
extern DispatchSlot<H264AddResidualWords> H264Add4x4DcWords;
extern DispatchSlot<H264AddResidualWords> H264Add8x8DcWords;

/// Transforms and dequantises the DC coefficients of a macroblock's component in place: a matrix row by row, 4x4 for
/// luma, 2x2 for chroma 4:2:0, four rows of 2 for chroma 4:2:2. Entry i becomes the first coefficient of the block at
/// place i.
/// @param levelScale LevelScale4x4(qp % 6, 0, 0)
/// @param qp QP'Y, QP'c, or QP'c + 3 for 4:2:2; of which levelScale is taken too
template <class Sample>
using TH264TransformDc = void(typename TH264SampleType<Sample>::Coefficient* coefficients, int levelScale, int qp);
using H264TransformDcBytes = TH264TransformDc<std::uint8_t>;
using H264TransformDcWords = TH264TransformDc<std::uint16_t>;

extern DispatchSlot<H264TransformDcBytes> H264LumaDcBytes;
extern DispatchSlot<H264TransformDcBytes> H264ChromaDc2x2Bytes;
extern DispatchSlot<H264TransformDcBytes> H264ChromaDc2x4Bytes;
extern DispatchSlot<H264TransformDcWords> H264LumaDcWords;
extern DispatchSlot<H264TransformDcWords> H264ChromaDc2x2Words;
extern DispatchSlot<H264TransformDcWords> H264ChromaDc2x4Words;

/// The slots of a sample type.
template <class Sample>
struct TH264Transforms;

template <>
struct TH264Transforms<std::uint8_t> {
    static constexpr auto& kAdd4x4 = H264Add4x4Bytes;
    static constexpr auto& kAdd8x8 = H264Add8x8Bytes;
    static constexpr auto& kAdd4x4Dc = H264Add4x4DcBytes;
    static constexpr auto& kAdd8x8Dc = H264Add8x8DcBytes;
    static constexpr auto& kLumaDc = H264LumaDcBytes;
    static constexpr auto& kChromaDc2x2 = H264ChromaDc2x2Bytes;
    static constexpr auto& kChromaDc2x4 = H264ChromaDc2x4Bytes;
};

template <>
struct TH264Transforms<std::uint16_t> {
    static constexpr auto& kAdd4x4 = H264Add4x4Words;
    static constexpr auto& kAdd8x8 = H264Add8x8Words;
    static constexpr auto& kAdd4x4Dc = H264Add4x4DcWords;
    static constexpr auto& kAdd8x8Dc = H264Add8x8DcWords;
    static constexpr auto& kLumaDc = H264LumaDcWords;
    static constexpr auto& kChromaDc2x2 = H264ChromaDc2x2Words;
    static constexpr auto& kChromaDc2x4 = H264ChromaDc2x4Words;
};

}  // namespace KorvaneSoftware
