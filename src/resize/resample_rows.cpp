#include "resize/resample_rows.h"

#include <cstring>
#include <numeric>

#include "foundation/image_descriptor.h"
#include "resize/x86/resample_forms.h"

namespace KorvaneSoftware {

namespace {

// Indexed by LineKind.
constexpr LineLayout kLayouts[] = {
    {1, 1, 1, {{0, 1, 0}}},
    {1, 2, 2, {{0, 2, 0}, {1, 2, 0}}},
    {1, 3, 3, {{0, 3, 0}, {1, 3, 0}, {2, 3, 0}}},
    {1, 4, 4, {{0, 4, 0}, {1, 4, 0}, {2, 4, 0}, {3, 4, 0}}},
    {1, 2, 3, {{1, 2, 0}, {0, 4, 1}, {2, 4, 1}}},
    {1, 2, 3, {{0, 2, 0}, {1, 4, 1}, {3, 4, 1}}},
    {2, 1, 1, {{0, 1, 0}}},
};

template <class Sample>
constexpr std::uint32_t kLimit = static_cast<Sample>(~Sample{0});

// Words may lie at any address, so samples are moved as bytes; compilers make plain loads and stores of it.
template <class Sample>
Sample Get(const std::uint8_t* line, std::size_t index) {
    Sample value;
    std::memcpy(&value, line + index * sizeof(Sample), sizeof(Sample));
    return value;
}

template <class Sample>
void Put(std::uint8_t* line, std::size_t index, std::uint32_t value) {
    const auto sample = static_cast<Sample>(value);
    std::memcpy(line + index * sizeof(Sample), &sample, sizeof(Sample));
}

constexpr std::uint32_t MeanValue(std::uint32_t a, std::uint32_t b) { return (a + 1 + b) >> 1; }

// Calls body(dst, src, step, source size, destination size) for each channel, with the lines at its first sample.
template <class Body>
void ForEachChannel(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan, Body&& body) {
    const LineLayout& layout = LayoutOf(plan.kind);
    for (int i = 0; i < layout.channelCount; ++i) {
        const LineChannel& channel = layout.channels[i];
        const std::size_t offset = std::size_t{channel.offset} * layout.sampleBytes;
        body(dst + offset, src + offset, std::size_t{channel.step}, plan.srcWidth >> channel.widthShift,
             plan.dstWidth >> channel.widthShift);
    }
}

template <class Sample>
void RunLinear(std::uint8_t* dstLine, const std::uint8_t* srcLine, const RowPlan& plan) {
    ForEachChannel(
        dstLine, srcLine, plan,
        [](std::uint8_t* dst, const std::uint8_t* src, std::size_t step, std::uint32_t source, std::uint32_t dest) {
            const float scale = LinearScale(dest);
            std::uint32_t distance = dest - 1;
            std::size_t index = 0;
            for (std::uint32_t i = 0; i < dest; ++i) {
                std::int32_t value = Get<Sample>(src, index * step);
                if (distance != dest - 1)
                    value = LinearValue(value, Get<Sample>(src, (index + 1) * step), LinearWeight(distance, scale));
                Put<Sample>(dst, i * step, static_cast<std::uint32_t>(value));
                if (distance > source - 1) {
                    distance -= source - 1;
                } else {
                    distance += dest - source;
                    ++index;
                }
            }
        });
}

template <class Sample>
void RunMean(std::uint8_t* dstLine, const std::uint8_t* srcLine, const RowPlan& plan) {
    ForEachChannel(dstLine, srcLine, plan,
                   [](std::uint8_t* dst, const std::uint8_t* src, std::size_t step, std::uint32_t, std::uint32_t dest) {
                       for (std::size_t i = 0; i < dest; ++i)
                           Put<Sample>(dst, i * step,
                                       MeanValue(Get<Sample>(src, 2 * i * step), Get<Sample>(src, (2 * i + 1) * step)));
                   });
}

// The sample on which an output sample ends is split between it and the next one. Sums are exact in 64 bits: a line of
// 16-bit samples passes 32 bits at a width of 65536.
template <class Sample>
void RunArea(std::uint8_t* dstLine, const std::uint8_t* srcLine, const RowPlan& plan) {
    ForEachChannel(
        dstLine, srcLine, plan,
        [](std::uint8_t* dst, const std::uint8_t* src, std::size_t step, std::uint32_t source, std::uint32_t dest) {
            const float reciprocal = 1.0f / static_cast<float>(source);
            std::uint64_t position = 0;
            std::uint64_t carry = 0;
            std::size_t index = 0;
            for (std::uint32_t i = 0; i < dest; ++i) {
                std::uint64_t sum = carry;
                std::uint64_t sample = 0;
                while (position < source) {
                    sample = Get<Sample>(src, index++ * step);
                    position += dest;
                    sum += sample * dest;
                }
                position -= source;
                carry = sample * position;
                sum -= carry;
                Put<Sample>(dst, i * step, AreaValue(sum, reciprocal, kLimit<Sample>));
            }
        });
}

template <class Sample>
void MixMean(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    for (std::size_t i = 0; i < samples; ++i) Put<Sample>(dst, i, MeanValue(Get<Sample>(a, i), Get<Sample>(b, i)));
}

template <class Sample>
void MixLinear(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later, std::size_t samples,
               std::int32_t weight) {
    for (std::size_t i = 0; i < samples; ++i)
        Put<Sample>(dst, i,
                    static_cast<std::uint32_t>(LinearValue(Get<Sample>(earlier, i), Get<Sample>(later, i), weight)));
}

template <class Sample>
void MixArea(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples, const AreaSpan& span,
             const AreaScale& scale) {
    for (std::size_t i = 0; i < samples; ++i) {
        const std::uint8_t* line = src;
        std::uint64_t sum = std::uint64_t{Get<Sample>(line, i)} * span.firstWeight;
        for (std::uint32_t row = 1; row + 1 < span.count; ++row) {
            line += stride;
            sum += std::uint64_t{Get<Sample>(line, i)} * span.innerWeight;
        }
        line += stride;
        sum += std::uint64_t{Get<Sample>(line, i)} * span.lastWeight;
        Put<Sample>(dst, i, AreaValue(sum, scale.reciprocal, kLimit<Sample>));
    }
}

}  // namespace

void plain::LinearRow8(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunLinear<std::uint8_t>(dst, src, plan);
}
void plain::MeanRow8(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunMean<std::uint8_t>(dst, src, plan);
}
void plain::AreaRow8(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunArea<std::uint8_t>(dst, src, plan);
}
void plain::MeanRows8(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    MixMean<std::uint8_t>(dst, a, b, samples);
}
void plain::LinearRows8(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later, std::size_t samples,
                        std::int32_t weight) {
    MixLinear<std::uint8_t>(dst, earlier, later, samples, weight);
}
void plain::AreaRows8(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,
                      const AreaSpan& span, const AreaScale& scale) {
    MixArea<std::uint8_t>(dst, src, stride, samples, span, scale);
}
void plain::LinearRow16(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunLinear<std::uint16_t>(dst, src, plan);
}
void plain::MeanRow16(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunMean<std::uint16_t>(dst, src, plan);
}
void plain::AreaRow16(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunArea<std::uint16_t>(dst, src, plan);
}
void plain::MeanRows16(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    MixMean<std::uint16_t>(dst, a, b, samples);
}
void plain::LinearRows16(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later, std::size_t samples,
                         std::int32_t weight) {
    MixLinear<std::uint16_t>(dst, earlier, later, samples, weight);
}
void plain::AreaRows16(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,
                       const AreaSpan& span, const AreaScale& scale) {
    MixArea<std::uint16_t>(dst, src, stride, samples, span, scale);
}

void plain::HalveRows8(std::uint8_t* dstLine, const std::uint8_t* a, const std::uint8_t* b, const RowPlan& plan) {
    const std::ptrdiff_t toSecond = b - a;
    ForEachChannel(
        dstLine, a, plan,
        [toSecond](std::uint8_t* dst, const std::uint8_t* src, std::size_t step, std::uint32_t, std::uint32_t dest) {
            const auto column = [&](std::size_t i) {
                return MeanValue(src[i * step], src[static_cast<std::ptrdiff_t>(i * step) + toSecond]);
            };
            for (std::size_t i = 0; i < dest; ++i)
                Put<std::uint8_t>(dst, i * step, MeanValue(column(2 * i), column(2 * i + 1)));
        });
}

PIXMORPH_SLOT(RowSlot, LinearRow8, plain::LinearRow8, simd_sse41::LinearRow8, simd_avx2::LinearRow8,
              simd_avx512::LinearRow8);
PIXMORPH_SLOT(RowSlot, LinearRow16, plain::LinearRow16, simd_sse41::LinearRow16, simd_avx2::LinearRow16,
              simd_avx512::LinearRow16);
PIXMORPH_SLOT(RowSlot, MeanRow8, plain::MeanRow8, simd_sse41::MeanRow8, simd_avx2::MeanRow8, simd_avx512::MeanRow8);
PIXMORPH_SLOT(RowSlot, MeanRow16, plain::MeanRow16, simd_sse41::MeanRow16, simd_avx2::MeanRow16,
              simd_avx512::MeanRow16);
PIXMORPH_SLOT(RowSlot, AreaRow8, plain::AreaRow8, simd_sse41::AreaRow8, simd_avx2::AreaRow8, simd_avx512::AreaRow8);
PIXMORPH_SLOT(RowSlot, AreaRow16, plain::AreaRow16, simd_sse41::AreaRow16, simd_avx2::AreaRow16,
              simd_avx512::AreaRow16);
PIXMORPH_SLOT(HalveSlot, HalveRows8, plain::HalveRows8, simd_sse41::HalveRows8, simd_avx2::HalveRows8,
              simd_avx512::HalveRows8);
PIXMORPH_SLOT(MeanRowsSlot, MeanRows8, plain::MeanRows8, simd_sse41::MeanRows8, simd_avx2::MeanRows8,
              simd_avx512::MeanRows8);
PIXMORPH_SLOT(MeanRowsSlot, MeanRows16, plain::MeanRows16, simd_sse41::MeanRows16, simd_avx2::MeanRows16,
              simd_avx512::MeanRows16);
PIXMORPH_SLOT(LinearRowsSlot, LinearRows8, plain::LinearRows8, simd_sse41::LinearRows8, simd_avx2::LinearRows8,
              simd_avx512::LinearRows8);
PIXMORPH_SLOT(LinearRowsSlot, LinearRows16, plain::LinearRows16, simd_sse41::LinearRows16, simd_avx2::LinearRows16,
              simd_avx512::LinearRows16);
PIXMORPH_SLOT(AreaRowsSlot, AreaRows8, plain::AreaRows8, simd_sse41::AreaRows8, simd_avx2::AreaRows8,
              simd_avx512::AreaRows8);
PIXMORPH_SLOT(AreaRowsSlot, AreaRows16, plain::AreaRows16, simd_sse41::AreaRows16, simd_avx2::AreaRows16,
              simd_avx512::AreaRows16);

namespace {

// Largest width of which 255 times is exact in single precision.
constexpr std::uint32_t kLargestExactSource = 65536;
// Largest reduced size whose sums stay below 2^15, and for which the multiplier below divides exactly.
constexpr std::uint32_t kLargestNarrowSource = 128;

}  // namespace

const LineLayout& LayoutOf(LineKind kind) { return kLayouts[static_cast<int>(kind)]; }

LineKind LineKindOf(std::uint32_t format, std::uint32_t plane) {
    if (HasTraits(format, FORMAT_WORD_PLANES)) return LineKind::Words;
    if (HasTraits(format, FORMAT_PACKED_422))
        return HasTraits(format, FORMAT_LUMA_FIRST) ? LineKind::Yuy2 : LineKind::Uyvy;
    const FormatInfo& info = *FormatInfoOf({format});
    if (plane > 0) return info.planeCount == 2 ? LineKind::Pairs : LineKind::Planar;
    if (info.plane0Bits == 24) return LineKind::Bgr;
    return info.plane0Bits == 32 ? LineKind::Bgra : LineKind::Planar;
}

// With both sizes divided by their common divisor, sums are at most 255 * n for the reduced source size n. In single
// precision the mean of such a sum is off by less than 2^-15, but two neighbouring means differ by 1 / n, so that only
// a mean of exactly k + 1/2 can be rounded to either side. It exists for even n alone. There the sum is exact, the
// product is not below k + 1/2 when the reciprocal was not rounded down, and rounding half up is what comes out;
// otherwise some halves go up and some go down, and only the floating-point form is right.
//
// Division by n of x <= 255.5 * n: with m = ceil(2^(16 + s) / n) the excess e = m * n - 2^(16 + s) must satisfy
// x * e < 2^(16 + s). The loop finds the smallest such s; below 129 there always is one with m < 2^16.
AreaScale MakeAreaScale(std::uint32_t source, std::uint32_t dest) {
    AreaScale scale{};
    scale.reciprocal = 1.0f / static_cast<float>(source);
    scale.divisor = std::gcd(source, dest);
    const std::uint32_t reduced = source / scale.divisor;
    const bool roundedDown = static_cast<double>(scale.reciprocal) * source < 1.0;
    if (source > kLargestExactSource || reduced > kLargestNarrowSource || (reduced % 2 == 0 && roundedDown))
        return scale;
    scale.narrow = true;
    scale.bias = static_cast<std::uint16_t>(reduced / 2);
    const std::uint32_t largest = 255 * reduced + scale.bias;
    for (scale.shift = 0;; ++scale.shift) {
        const std::uint32_t one = 65536u << scale.shift;
        const std::uint32_t multiplier = (one + reduced - 1) / reduced;
        if (std::uint64_t{largest} * (multiplier * reduced - one) >= one) continue;
        scale.multiplier = static_cast<std::uint16_t>(multiplier);
        return scale;
    }
}

LinearTap LinearTapOf(std::uint32_t source, std::uint32_t dest, std::uint32_t index, float scale) {
    const std::uint64_t position = std::uint64_t{index} * (source - 1);
    const auto distance = static_cast<std::uint32_t>(dest - 1 - position % (dest - 1));
    return {static_cast<std::uint32_t>(position / (dest - 1)),
            distance == dest - 1 ? kFullWeight : LinearWeight(distance, scale)};
}

void ResampleRow(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    const bool words = plan.kind == LineKind::Words;
    switch (plan.filter) {
        case ResampleFilter::Copy:
            std::memcpy(dst, src, LineBytes(plan.kind, plan.dstWidth));
            break;
        case ResampleFilter::Mean:
            (words ? MeanRow16 : MeanRow8)(dst, src, plan);
            break;
        case ResampleFilter::Linear:
            (words ? LinearRow16 : LinearRow8)(dst, src, plan);
            break;
        case ResampleFilter::Area:
            (words ? AreaRow16 : AreaRow8)(dst, src, plan);
            break;
    }
}

}  // namespace KorvaneSoftware
