// Primitives of resampling: one line of a picture made from one line (horizontal) or from several (vertical). There are
// three filters, chosen by the two sizes alone:
//
//   linear  to enlarge; the first and the last sample of both sides coincide
//   mean    to halve exactly: (a + 1 + b) >> 1
//   area    to reduce otherwise: each sample is the mean of the W / D samples that it covers, fractions included
//
// A horizontal primitive walks every channel of a line on its own; a vertical one works on whole lines, channels or
// not.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

enum class ResampleFilter : std::uint8_t { Copy, Linear, Mean, Area };

/// The filter for one direction; both sizes are above 0.
constexpr ResampleFilter ChooseFilter(std::uint32_t source, std::uint32_t dest) {
    if (source == dest) return ResampleFilter::Copy;
    if (source < dest) return ResampleFilter::Linear;
    return source == 2 * std::uint64_t{dest} ? ResampleFilter::Mean : ResampleFilter::Area;
}

/// How the channels of a line are interleaved.
enum class LineKind : std::uint8_t {
    Planar,  ///< One channel of bytes.
    Pairs,   ///< Two channels of bytes, a pair for each position: the chroma of NV12.
    Bgr,
    Bgra,
    Uyvy,   ///< Packed 4:2:2 with luma in the odd bytes.
    Yuy2,   ///< Packed 4:2:2 with luma in the even bytes, in either order of chroma.
    Words,  ///< One channel of 16-bit words.
};

/// One channel of a line; offset and step in samples.
struct LineChannel {
    std::uint8_t offset;
    std::uint8_t step;
    std::uint8_t widthShift;  ///< The channel has width >> widthShift samples.
};

struct LineLayout {
    std::uint8_t sampleBytes;
    std::uint8_t samplesPerPixel;
    std::uint8_t channelCount;
    LineChannel channels[4];
};

const LineLayout& LayoutOf(LineKind kind);

/// The kind of the lines of a plane of a format that can be resized.
LineKind LineKindOf(std::uint32_t format, std::uint32_t plane);

inline std::size_t LineSamples(LineKind kind, std::uint32_t width) {
    return std::size_t{LayoutOf(kind).samplesPerPixel} * width;
}
inline std::size_t LineBytes(LineKind kind, std::uint32_t width) {
    return LayoutOf(kind).sampleBytes * LineSamples(kind, width);
}

/// The source samples that one sample of an area average covers, in parts of which a source sample has `inner`. There
/// are at least two samples, since the source is larger. The weights add up to the source's size.
struct AreaSpan {
    std::uint32_t first;
    std::uint32_t count;
    std::uint32_t firstWeight;
    std::uint32_t innerWeight;
    std::uint32_t lastWeight;
};

constexpr AreaSpan AreaSpanOf(std::uint32_t source, std::uint32_t dest, std::uint32_t index) {
    const std::uint64_t begin = std::uint64_t{index} * source;
    const std::uint64_t end = begin + source;
    const std::uint64_t first = begin / dest;
    const std::uint64_t last = (end - 1) / dest;
    return {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last - first + 1),
            static_cast<std::uint32_t>((first + 1) * dest - begin), dest,
            static_cast<std::uint32_t>(end - last * dest)};
}

/// How a weighted sum becomes a sample. What holds is the single-precision product with the reciprocal; `narrow` says
/// that integers of 16 bits give the same (see MakeAreaScale).
struct AreaScale {
    float reciprocal;  ///< 1 / source size, in single precision.
    bool narrow;
    std::uint32_t divisor;  ///< Common divisor of the sizes: narrow weights are the weights divided by it.
    std::uint16_t bias;     ///< Narrow: sample = ((sum + bias) * multiplier) >> (16 + shift).
    std::uint16_t multiplier;
    std::uint16_t shift;
};

AreaScale MakeAreaScale(std::uint32_t source, std::uint32_t dest);

/// The sample of an exact sum. Conversion, product and sum are each rounded to single precision: that is the
/// definition, and an exact division differs where the mean lies near a half.
inline std::uint32_t AreaValue(std::uint64_t sum, float reciprocal, std::uint32_t limit) {
    const float scaled = static_cast<float>(sum) * reciprocal;
    const auto value = static_cast<std::uint32_t>(scaled + 0.5f);
    return value < limit ? value : limit;
}

/// Weight of the earlier of two neighbours, in 1/32768.
constexpr std::int32_t kFullWeight = 32768;

struct LinearTap {
    std::uint32_t index;
    std::int32_t weight;  ///< kFullWeight: the sample at `index` alone; there may be none behind it.
};

/// Scale of linear weights; `dest` is above 1.
inline float LinearScale(std::uint32_t dest) { return 32768.0f / static_cast<float>(dest - 1); }

/// Weight of a distance counted in 1 / (dest - 1), single precision throughout.
inline std::int32_t LinearWeight(std::uint32_t distance, float scale) {
    return static_cast<std::int32_t>(static_cast<float>(distance) * scale + 0.5f);
}

/// The source samples of one sample of a linear interpolation; `dest` is above 1 and not below `source`.
LinearTap LinearTapOf(std::uint32_t source, std::uint32_t dest, std::uint32_t index, float scale);

/// A weight of kFullWeight gives `earlier`. The product of 16-bit samples stays below 2^31 - 2^14.
constexpr std::int32_t LinearValue(std::int32_t earlier, std::int32_t later, std::int32_t weight) {
    return ((weight * (earlier - later) + 0x4000) >> 15) + later;
}

/// What a horizontal primitive needs to know. Vector forms work from tables: blocks of output samples, each made from
/// windows of 16 source bytes that are shuffled into place. Four blocks form a group.
struct RowPlan {
    LineKind kind = LineKind::Planar;
    ResampleFilter filter = ResampleFilter::Copy;
    std::uint32_t srcWidth = 0;
    std::uint32_t dstWidth = 0;
    std::size_t dstBytes = 0;
    AreaScale area = {};

    /// Mean filter: order of 16 source bytes in which neighbours are to be averaged; a group of 16 gives 8. The first
    /// byte is 255 where no such order exists.
    std::uint8_t pairOrder[16] = {255};

    std::uint32_t groupCount = 0;  ///< 0: no tables, only the plain form can run.
    std::uint32_t stepCount = 0;   ///< Windows of each block.
    bool wide = false;             ///< Blocks of 4 samples and 16-bit weights, not of 8 samples.
    /// At a ratio of small numbers groups repeat: this many of them from the first on share one table, and the windows
    /// of each lie `regularAdvance` bytes behind those of the one before. 0 or at least 2.
    std::uint32_t regularCount = 0;
    std::uint32_t regularAdvance = 0;
    // Tables of the shared group, if any, and then of each further group. A group ends where the next begins, and the
    // last one at the end of the line, over its neighbour if need be.
    const std::uint32_t* windows = nullptr;  ///< First source byte of each window: 4 for each step.
    const std::uint8_t* shuffles = nullptr;  ///< 16 bytes for each window.
    const std::uint8_t* weights = nullptr;   ///< 16 bytes for each window (linear: for each block, at its first step).
};

using RowSignature = void(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);
/// Two lines averaged, then the result halved horizontally.
using HalveSignature = void(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, const RowPlan& plan);
using MeanRowsSignature = void(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples);
using LinearRowsSignature = void(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later,
                                 std::size_t samples, std::int32_t weight);
/// `src` is the first line of the span.
using AreaRowsSignature = void(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,
                               const AreaSpan& span, const AreaScale& scale);

using RowSlot = DispatchSlot<RowSignature>;
using HalveSlot = DispatchSlot<HalveSignature>;
using MeanRowsSlot = DispatchSlot<MeanRowsSignature>;
using LinearRowsSlot = DispatchSlot<LinearRowsSignature>;
using AreaRowsSlot = DispatchSlot<AreaRowsSignature>;

// Destination and source never overlap. Lines of words may lie at any address.
extern RowSlot LinearRow8;
extern RowSlot LinearRow16;
extern RowSlot MeanRow8;
extern RowSlot MeanRow16;
extern RowSlot AreaRow8;
extern RowSlot AreaRow16;
extern HalveSlot HalveRows8;
extern MeanRowsSlot MeanRows8;
extern MeanRowsSlot MeanRows16;
extern LinearRowsSlot LinearRows8;
extern LinearRowsSlot LinearRows16;
extern AreaRowsSlot AreaRows8;
extern AreaRowsSlot AreaRows16;

/// Runs the plan's filter on one line.
void ResampleRow(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);

}  // namespace KorvaneSoftware
