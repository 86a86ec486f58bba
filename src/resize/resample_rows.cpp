#include "resize/resample_rows.h"

#include <cstring>
#include <numeric>

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

void LinearRow8_Plain(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunLinear<std::uint8_t>(dst, src, plan);
}
void MeanRow8_Plain(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunMean<std::uint8_t>(dst, src, plan);
}
void AreaRow8_Plain(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunArea<std::uint8_t>(dst, src, plan);
}
void MeanRows8_Plain(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    MixMean<std::uint8_t>(dst, a, b, samples);
}
void LinearRows8_Plain(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later, std::size_t samples,
                       std::int32_t weight) {
    MixLinear<std::uint8_t>(dst, earlier, later, samples, weight);
}
void AreaRows8_Plain(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,
                     const AreaSpan& span, const AreaScale& scale) {
    MixArea<std::uint8_t>(dst, src, stride, samples, span, scale);
}
void LinearRow16_Plain(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunLinear<std::uint16_t>(dst, src, plan);
}
void MeanRow16_Plain(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunMean<std::uint16_t>(dst, src, plan);
}
void AreaRow16_Plain(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    RunArea<std::uint16_t>(dst, src, plan);
}
void MeanRows16_Plain(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    MixMean<std::uint16_t>(dst, a, b, samples);
}
void LinearRows16_Plain(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later, std::size_t samples,
                        std::int32_t weight) {
    MixLinear<std::uint16_t>(dst, earlier, later, samples, weight);
}
void AreaRows16_Plain(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,
                      const AreaSpan& span, const AreaScale& scale) {
    MixArea<std::uint16_t>(dst, src, stride, samples, span, scale);
}

void HalveRows8_Plain(std::uint8_t* dstLine, const std::uint8_t* a, const std::uint8_t* b, const RowPlan& plan) {
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

namespace {

// The forms of a primitive, from plain to most demanding.
#define PIXMORPH_RESAMPLE_ROWS(Slot, primitive)                                                              \
    constexpr Slot::Entry k##primitive##Forms[] = {{FEATURES_PLAIN, primitive##_Plain, #primitive "_Plain"}, \
                                                   {FEATURES_SSE41, primitive##_Sse41, #primitive "_Sse41"}, \
                                                   {FEATURES_AVX2, primitive##_Avx2, #primitive "_Avx2"},    \
                                                   {FEATURES_AVX512BW, primitive##_Avx512, #primitive "_Avx512"}};

PIXMORPH_RESAMPLE_ROWS(RowSlot, LinearRow8)
PIXMORPH_RESAMPLE_ROWS(RowSlot, LinearRow16)
PIXMORPH_RESAMPLE_ROWS(RowSlot, MeanRow8)
PIXMORPH_RESAMPLE_ROWS(RowSlot, MeanRow16)
PIXMORPH_RESAMPLE_ROWS(RowSlot, AreaRow8)
PIXMORPH_RESAMPLE_ROWS(RowSlot, AreaRow16)
PIXMORPH_RESAMPLE_ROWS(HalveSlot, HalveRows8)
PIXMORPH_RESAMPLE_ROWS(MeanRowsSlot, MeanRows8)
PIXMORPH_RESAMPLE_ROWS(MeanRowsSlot, MeanRows16)
PIXMORPH_RESAMPLE_ROWS(LinearRowsSlot, LinearRows8)
PIXMORPH_RESAMPLE_ROWS(LinearRowsSlot, LinearRows16)
PIXMORPH_RESAMPLE_ROWS(AreaRowsSlot, AreaRows8)
PIXMORPH_RESAMPLE_ROWS(AreaRowsSlot, AreaRows16)

#undef PIXMORPH_RESAMPLE_ROWS

}  // namespace

constinit RowSlot LinearRow8{"LinearRow8", kLinearRow8Forms, &ResolveOnFirstCall<LinearRow8>::Call};
constinit RowSlot LinearRow16{"LinearRow16", kLinearRow16Forms, &ResolveOnFirstCall<LinearRow16>::Call};
constinit RowSlot MeanRow8{"MeanRow8", kMeanRow8Forms, &ResolveOnFirstCall<MeanRow8>::Call};
constinit RowSlot MeanRow16{"MeanRow16", kMeanRow16Forms, &ResolveOnFirstCall<MeanRow16>::Call};
constinit RowSlot AreaRow8{"AreaRow8", kAreaRow8Forms, &ResolveOnFirstCall<AreaRow8>::Call};
constinit RowSlot AreaRow16{"AreaRow16", kAreaRow16Forms, &ResolveOnFirstCall<AreaRow16>::Call};
constinit HalveSlot HalveRows8{"HalveRows8", kHalveRows8Forms, &ResolveOnFirstCall<HalveRows8>::Call};
constinit MeanRowsSlot MeanRows8{"MeanRows8", kMeanRows8Forms, &ResolveOnFirstCall<MeanRows8>::Call};
constinit MeanRowsSlot MeanRows16{"MeanRows16", kMeanRows16Forms, &ResolveOnFirstCall<MeanRows16>::Call};
constinit LinearRowsSlot LinearRows8{"LinearRows8", kLinearRows8Forms, &ResolveOnFirstCall<LinearRows8>::Call};
constinit LinearRowsSlot LinearRows16{"LinearRows16", kLinearRows16Forms, &ResolveOnFirstCall<LinearRows16>::Call};
constinit AreaRowsSlot AreaRows8{"AreaRows8", kAreaRows8Forms, &ResolveOnFirstCall<AreaRows8>::Call};
constinit AreaRowsSlot AreaRows16{"AreaRows16", kAreaRows16Forms, &ResolveOnFirstCall<AreaRows16>::Call};

namespace {

const SlotRegistration kRegistration{&LinearRow8,   &LinearRow16, &MeanRow8,  &MeanRow16,  &AreaRow8,
                                     &AreaRow16,    &HalveRows8,  &MeanRows8, &MeanRows16, &LinearRows8,
                                     &LinearRows16, &AreaRows8,   &AreaRows16};

// Largest width of which 255 times is exact in single precision.
constexpr std::uint32_t kLargestExactSource = 65536;
// Largest reduced size whose sums stay below 2^15, and for which the multiplier below divides exactly.
constexpr std::uint32_t kLargestNarrowSource = 128;

}  // namespace

const LineLayout& LayoutOf(LineKind kind) { return kLayouts[static_cast<int>(kind)]; }

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
