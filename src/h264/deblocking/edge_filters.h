// Filters of one edge, ITU-T H.264 clause 8.7.2, and their thresholds.
//
// Strides count samples. The bit depth is 8 for bytes and 8 to 14 for words.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"
#include "h264/sample_types.h"

namespace KorvaneSoftware {

/// Thresholds of an edge of four segments, scaled to the bit depth.
struct H264EdgeThresholds {
    int alpha;
    int beta;
    std::int16_t tc0[4];  ///< By segment; below 0 where the filter leaves it alone. Strong filters look at the sign.
};

/// Thresholds for a strength of 1 to 3 or none (0) in each segment. Segments of strength 4 are left to StrongThresholds.
/// @param qp mean of the two macroblocks' QP, of chroma that of the mapped ones: without the extension by bit depth
/// @param offsetA FilterOffsetA
/// @param offsetB FilterOffsetB
/// @return thresholds with an alpha of 0 where nothing can be filtered
H264EdgeThresholds WeakH264Thresholds(int qp, int offsetA, int offsetB, const std::uint8_t (&strengths)[4],
                                      std::uint32_t bitDepth);
/// The same for the segments of strength 4.
H264EdgeThresholds StrongH264Thresholds(int qp, int offsetA, int offsetB, const std::uint8_t (&strengths)[4],
                                        std::uint32_t bitDepth);

/// Filters an edge of 4 * `segment` samples. `samples` is the first behind the edge, right of a vertical edge or below
/// a horizontal one. Luma changes up to three samples on each side, and reads four; chroma changes one, and reads two.
/// Across a vertical edge four samples on each side must be there in any case: what is not changed may be written back.
/// @param segment samples of a segment: 4 for luma, 2 for chroma that has half as many; half of that at the left edge
/// of macroblocks of an MBAFF picture
template <class Sample>
using TH264FilterEdge = void(Sample* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds, int segment,
                             std::uint32_t bitDepth);
using H264FilterEdgeBytes = TH264FilterEdge<std::uint8_t>;
using H264FilterEdgeWords = TH264FilterEdge<std::uint16_t>;

extern DispatchSlot<H264FilterEdgeBytes> H264LumaVerticalWeakBytes;
extern DispatchSlot<H264FilterEdgeBytes> H264LumaVerticalStrongBytes;
extern DispatchSlot<H264FilterEdgeBytes> H264LumaHorizontalWeakBytes;
extern DispatchSlot<H264FilterEdgeBytes> H264LumaHorizontalStrongBytes;
extern DispatchSlot<H264FilterEdgeBytes> H264ChromaVerticalWeakBytes;
extern DispatchSlot<H264FilterEdgeBytes> H264ChromaVerticalStrongBytes;
extern DispatchSlot<H264FilterEdgeBytes> H264ChromaHorizontalWeakBytes;
extern DispatchSlot<H264FilterEdgeBytes> H264ChromaHorizontalStrongBytes;
extern DispatchSlot<H264FilterEdgeWords> H264LumaVerticalWeakWords;
extern DispatchSlot<H264FilterEdgeWords> H264LumaVerticalStrongWords;
extern DispatchSlot<H264FilterEdgeWords> H264LumaHorizontalWeakWords;
extern DispatchSlot<H264FilterEdgeWords> H264LumaHorizontalStrongWords;
extern DispatchSlot<H264FilterEdgeWords> H264ChromaVerticalWeakWords;
extern DispatchSlot<H264FilterEdgeWords> H264ChromaVerticalStrongWords;
extern DispatchSlot<H264FilterEdgeWords> H264ChromaHorizontalWeakWords;
extern DispatchSlot<H264FilterEdgeWords> H264ChromaHorizontalStrongWords;

/// The slots of a sample type.
template <class Sample>
struct TH264EdgeFilters;

template <>
struct TH264EdgeFilters<std::uint8_t> {
    static constexpr auto& kLumaVerticalWeak = H264LumaVerticalWeakBytes;
    static constexpr auto& kLumaVerticalStrong = H264LumaVerticalStrongBytes;
    static constexpr auto& kLumaHorizontalWeak = H264LumaHorizontalWeakBytes;
    static constexpr auto& kLumaHorizontalStrong = H264LumaHorizontalStrongBytes;
    static constexpr auto& kChromaVerticalWeak = H264ChromaVerticalWeakBytes;
    static constexpr auto& kChromaVerticalStrong = H264ChromaVerticalStrongBytes;
    static constexpr auto& kChromaHorizontalWeak = H264ChromaHorizontalWeakBytes;
    static constexpr auto& kChromaHorizontalStrong = H264ChromaHorizontalStrongBytes;
};

template <>
struct TH264EdgeFilters<std::uint16_t> {
    static constexpr auto& kLumaVerticalWeak = H264LumaVerticalWeakWords;
    static constexpr auto& kLumaVerticalStrong = H264LumaVerticalStrongWords;
    static constexpr auto& kLumaHorizontalWeak = H264LumaHorizontalWeakWords;
    static constexpr auto& kLumaHorizontalStrong = H264LumaHorizontalStrongWords;
    static constexpr auto& kChromaVerticalWeak = H264ChromaVerticalWeakWords;
    static constexpr auto& kChromaVerticalStrong = H264ChromaVerticalStrongWords;
    static constexpr auto& kChromaHorizontalWeak = H264ChromaHorizontalWeakWords;
    static constexpr auto& kChromaHorizontalStrong = H264ChromaHorizontalStrongWords;
};

}  // namespace KorvaneSoftware
