// Filters of one edge, ITU-T H.264 clause 8.7.2.
//
// Strides count samples. The bit depth is 8 for bytes and 8 to 14 for words.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"
#include "h264/deblocking/edge_thresholds.h"

namespace KorvaneSoftware {

/// Filters an edge of luma, 4 * `segment` samples. `samples` is the first behind the edge, right of a vertical edge or
/// below a horizontal one. Up to three samples on each side are changed, and four are read.
/// @param segment samples of a segment: 4, or 2 at the left edge of macroblocks of an MBAFF picture
template <class Sample>
using TH264FilterLumaEdge = void(Sample* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds,
                                 int segment, std::uint32_t bitDepth);
using H264FilterLumaBytes = TH264FilterLumaEdge<std::uint8_t>;
using H264FilterLumaWords = TH264FilterLumaEdge<std::uint16_t>;

/// Filters the same edge of Cb and of Cr. One sample on each side is changed, and two are read.
/// @param thresholds of Cb and Cr
/// @param segment    1, 2 or 4; 2 for horizontal edges
template <class Sample>
using TH264FilterChromaEdge = void(Sample* cb, Sample* cr, std::ptrdiff_t stride,
                                   const H264EdgeThresholds (&thresholds)[2], int segment, std::uint32_t bitDepth);
using H264FilterChromaBytes = TH264FilterChromaEdge<std::uint8_t>;
using H264FilterChromaWords = TH264FilterChromaEdge<std::uint16_t>;

extern DispatchSlot<H264FilterLumaBytes> H264LumaVerticalWeakBytes;
extern DispatchSlot<H264FilterLumaBytes> H264LumaVerticalStrongBytes;
extern DispatchSlot<H264FilterLumaBytes> H264LumaHorizontalWeakBytes;
extern DispatchSlot<H264FilterLumaBytes> H264LumaHorizontalStrongBytes;
extern DispatchSlot<H264FilterChromaBytes> H264ChromaVerticalWeakBytes;
extern DispatchSlot<H264FilterChromaBytes> H264ChromaVerticalStrongBytes;
extern DispatchSlot<H264FilterChromaBytes> H264ChromaHorizontalWeakBytes;
extern DispatchSlot<H264FilterChromaBytes> H264ChromaHorizontalStrongBytes;
extern DispatchSlot<H264FilterLumaWords> H264LumaVerticalWeakWords;
extern DispatchSlot<H264FilterLumaWords> H264LumaVerticalStrongWords;
extern DispatchSlot<H264FilterLumaWords> H264LumaHorizontalWeakWords;
extern DispatchSlot<H264FilterLumaWords> H264LumaHorizontalStrongWords;
extern DispatchSlot<H264FilterChromaWords> H264ChromaVerticalWeakWords;
extern DispatchSlot<H264FilterChromaWords> H264ChromaVerticalStrongWords;
extern DispatchSlot<H264FilterChromaWords> H264ChromaHorizontalWeakWords;
extern DispatchSlot<H264FilterChromaWords> H264ChromaHorizontalStrongWords;

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
