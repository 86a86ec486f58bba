// Sample processes of inter prediction, ITU-T H.264 clauses 8.4.2.2 and 8.4.2.3.
//
// Strides count samples. The bit depth is 8 for bytes and 8 to 14 for words, whose samples must lie within it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"
#include "h264/sample_types.h"

namespace KorvaneSoftware {

/// Interpolates a block of luma of 4, 8 or 16 columns and any number of rows. `src` is the sample at the vector's whole
/// part. With a horizontal fraction two columns left and three right of the block are read too, with a vertical one two
/// rows above and three below.
template <class Sample>
using TH264InterpolateLuma = void(Sample* dst, std::ptrdiff_t dstStride, const Sample* src, std::ptrdiff_t srcStride,
                                  int height, std::uint32_t bitDepth);
using H264InterpolateLumaBytes = TH264InterpolateLuma<std::uint8_t>;
using H264InterpolateLumaWords = TH264InterpolateLuma<std::uint16_t>;

/// Place in the tables below of a block of `width` columns and a fraction in quarter samples.
constexpr std::size_t H264LumaIndex(int width, int xFraction, int yFraction) {
    return static_cast<std::size_t>((width == 4 ? 0 : width == 8 ? 16 : 32) + yFraction * 4 + xFraction);
}
extern SlotTable<H264InterpolateLumaBytes, 48> H264LumaBytes;
extern SlotTable<H264InterpolateLumaWords, 48> H264LumaWords;

/// Interpolates a block of chroma of 2, 4 or 8 columns and any number of rows, for a fraction of 0 to 7 eighths of a
/// sample each way. One column right and one row below are read where the fraction is not 0.
template <class Sample>
using TH264InterpolateChroma = void(Sample* dst, std::ptrdiff_t dstStride, const Sample* src, std::ptrdiff_t srcStride,
                                    int height, int xFraction, int yFraction);
using H264InterpolateChromaBytes = TH264InterpolateChroma<std::uint8_t>;
using H264InterpolateChromaWords = TH264InterpolateChroma<std::uint16_t>;

/// Place in a table by width of blocks of 2, 4, 8 or 16 columns.
constexpr std::size_t H264WidthIndex(int width) { return width == 2 ? 0 : width == 4 ? 1 : width == 8 ? 2 : 3; }
extern SlotTable<H264InterpolateChromaBytes, 3> H264ChromaBytes;
extern SlotTable<H264InterpolateChromaWords, 3> H264ChromaWords;

/// Makes `dst` the rounded mean of itself and of `other`.
template <class Sample>
using TH264Average = void(Sample* dst, std::ptrdiff_t dstStride, const Sample* other, std::ptrdiff_t otherStride,
                          int height);
using H264AverageSignatureBytes = TH264Average<std::uint8_t>;
using H264AverageSignatureWords = TH264Average<std::uint16_t>;

extern SlotTable<H264AverageSignatureBytes, 4> H264AverageBytes;
extern SlotTable<H264AverageSignatureWords, 4> H264AverageWords;

/// Weights of a prediction, -128 to 128. Offsets are those of the slice times 1 << (bitDepth - 8).
struct H264Weights {
    int logDenominator;  ///< logWD, 0 to 7; 5 for implicit weights.
    int weights[2];      ///< One list: the first alone.
    int offset;          ///< Both lists: half the sum of the two, rounded up.
};

/// Weights a block in place.
template <class Sample>
using TH264Weight = void(Sample* dst, std::ptrdiff_t dstStride, int height, const H264Weights& weights,
                         std::uint32_t bitDepth);
using H264WeightSignatureBytes = TH264Weight<std::uint8_t>;
using H264WeightSignatureWords = TH264Weight<std::uint16_t>;

extern SlotTable<H264WeightSignatureBytes, 4> H264WeightBytes;
extern SlotTable<H264WeightSignatureWords, 4> H264WeightWords;

/// Makes `dst` the weighted sum of itself, list 0's prediction, and of `other`, list 1's.
template <class Sample>
using TH264WeightBoth = void(Sample* dst, std::ptrdiff_t dstStride, const Sample* other, std::ptrdiff_t otherStride,
                             int height, const H264Weights& weights, std::uint32_t bitDepth);
using H264WeightBothSignatureBytes = TH264WeightBoth<std::uint8_t>;
using H264WeightBothSignatureWords = TH264WeightBoth<std::uint16_t>;

extern SlotTable<H264WeightBothSignatureBytes, 4> H264WeightBothBytes;
extern SlotTable<H264WeightBothSignatureWords, 4> H264WeightBothWords;

/// The slots of a sample type.
template <class Sample>
struct TH264InterKernels;

template <>
struct TH264InterKernels<std::uint8_t> {
    static constexpr auto& kLuma = H264LumaBytes;
    static constexpr auto& kChroma = H264ChromaBytes;
    static constexpr auto& kAverage = H264AverageBytes;
    static constexpr auto& kWeight = H264WeightBytes;
    static constexpr auto& kWeightBoth = H264WeightBothBytes;
};

template <>
struct TH264InterKernels<std::uint16_t> {
    static constexpr auto& kLuma = H264LumaWords;
    static constexpr auto& kChroma = H264ChromaWords;
    static constexpr auto& kAverage = H264AverageWords;
    static constexpr auto& kWeight = H264WeightWords;
    static constexpr auto& kWeightBoth = H264WeightBothWords;
};

}  // namespace KorvaneSoftware
