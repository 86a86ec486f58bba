#include "deinterlace/restoration_lines.h"

#include <algorithm>
#include <cstdlib>

#include "deinterlace/x86/restoration_lines_forms.h"
#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

namespace {

// How far a pixel follows the present field, 0 to 255.
std::uint32_t WeightOf(std::uint32_t motion, const MotionThresholds& thresholds) {
    if (motion <= thresholds.minimum) return 0;
    if (motion < thresholds.maximum && motion <= 255)
        return (motion - thresholds.minimum) * 255 / (thresholds.maximum - thresholds.minimum);
    return 255;
}

// The samples at one offset of the four lines.
struct FourSamples {
    std::uint32_t previous, next, above, below;

    std::uint32_t Motion() const {
        return static_cast<std::uint32_t>(std::abs(static_cast<int>(previous) - static_cast<int>(next)));
    }
    // Each of the two sums loses its low bit before the division: rounding them together gives other pixels.
    std::int32_t Mix(std::uint32_t weight) const {
        return static_cast<std::int32_t>(
            ((((above + below) * weight) >> 1) + (((previous + next) * (255 - weight)) >> 1)) / 255);
    }
};

FourSamples SamplesAt(const RestorationLines& lines, std::size_t offset) {
    return {lines.previous[offset], lines.next[offset], lines.above[offset], lines.below[offset]};
}

// BT.601 at video levels in 1/65536, each offset with the 16 and 128 of the sample ranges and a rounding half in it.
void StoreRebuilt(std::uint8_t* dst, std::int32_t luma, std::int32_t u, std::int32_t v) {
    const std::int32_t y = 76284 * luma;
    dst[0] = ClampToByte((y + 132252 * u - 18116032) >> 16);
    dst[1] = ClampToByte((y - 53281 * v - 25690 * u + 8920512) >> 16);
    dst[2] = ClampToByte((y + 104595 * v - 14575936) >> 16);
}

template <bool HasAlpha>
void RestoreLine(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,
                 const MotionThresholds& thresholds) {
    constexpr BlockOrder kOrder = kFieldOrder<HasAlpha>;
    for (std::size_t pair = 0; pair < groups * 8; ++pair, dst += 8) {
        const std::size_t group = pair / 8 * kOrder.bytes;
        const std::size_t k = pair % 8;
        const FourSamples u = SamplesAt(lines, group + kOrder.u + k);
        const FourSamples v = SamplesAt(lines, group + kOrder.v + k);
        FourSamples y[2];
        std::uint32_t weight[2];
        for (std::size_t i = 0; i < 2; ++i) {
            y[i] = SamplesAt(lines, group + 2 * k + i);
            weight[i] = WeightOf(y[i].Motion() + u.Motion() + v.Motion(), thresholds);
            if constexpr (HasAlpha) {
                const FourSamples alpha = SamplesAt(lines, group + kOrder.alpha + 2 * k + i);
                if (alpha.above + alpha.below < 256) weight[i] = 255;
                dst[4 * i + 3] = ClampToByte(alpha.Mix(weight[i]));
            } else {
                dst[4 * i + 3] = 0;
            }
        }
        // The pair shares its chroma: U follows the weight of the first pixel, V that of the second.
        const std::int32_t mixedU = u.Mix(weight[0]);
        const std::int32_t mixedV = v.Mix(weight[1]);
        for (std::size_t i = 0; i < 2; ++i) StoreRebuilt(dst + 4 * i, y[i].Mix(weight[i]), mixedU, mixedV);
    }
}

std::uint8_t TruncateToByte(double value) {
    if (value > 255) return 255;
    if (value < 0) return 0;
    return static_cast<std::uint8_t>(value);
}

// In double precision, in this order of operations and without fused multiply-add: some sums lie so close to a whole
// number that any other evaluation truncates to the neighbouring byte.
void StorePresent(std::uint8_t* dst, double y, double u, double v) {
    dst[0] = TruncateToByte((u - 128) * 2.017 + (y - 16) * 1.164 + 0.5);
    dst[1] = TruncateToByte((y - 16) * 1.164 - (u - 128) * 0.392 - (v - 128) * 0.813 + 0.5);
    dst[2] = TruncateToByte((v - 128) * 1.596 + (y - 16) * 1.164 + 0.5);
}

template <bool HasAlpha>
void PresentLine(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    constexpr BlockOrder kOrder = kFieldOrder<HasAlpha>;
    const std::size_t pairs = groups * 8;
    const auto chromaAt = [src](std::size_t pair, std::size_t run) -> double {
        const std::uint8_t sample = src[pair / 8 * kOrder.bytes + run + pair % 8];
        return sample;
    };
    for (std::size_t pair = 0; pair < pairs; ++pair, dst += 8) {
        const std::size_t group = pair / 8 * kOrder.bytes;
        const std::size_t k = pair % 8;
        const double u = chromaAt(pair, kOrder.u);
        const double v = chromaAt(pair, kOrder.v);
        // The second pixel lies between two chroma samples; after the last sample of the row there is none.
        const std::size_t behind = std::min(pair + 1, pairs - 1);
        StorePresent(dst, src[group + 2 * k], u, v);
        StorePresent(dst + 4, src[group + 2 * k + 1], (u + chromaAt(behind, kOrder.u)) / 2,
                     (v + chromaAt(behind, kOrder.v)) / 2);
        for (std::size_t i = 0; i < 2; ++i)
            dst[4 * i + 3] = HasAlpha ? src[group + kOrder.alpha + 2 * k + i] : std::uint8_t{255};
    }
}

}  // namespace

void plain::RestoreLineY16(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,
                           const MotionThresholds& thresholds) {
    RestoreLine<false>(dst, lines, groups, thresholds);
}
void plain::RestoreLineY16A(std::uint8_t* dst, const RestorationLines& lines, std::size_t groups,
                            const MotionThresholds& thresholds) {
    RestoreLine<true>(dst, lines, groups, thresholds);
}
void plain::PresentLineY16(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    PresentLine<false>(dst, src, groups);
}
void plain::PresentLineY16A(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    PresentLine<true>(dst, src, groups);
}

PIXMORPH_SLOT(RestoreLineSlot, RestoreLineY16, plain::RestoreLineY16, simd_sse41::RestoreLineY16,
              simd_avx2::RestoreLineY16, simd_avx512::RestoreLineY16);
PIXMORPH_SLOT(RestoreLineSlot, RestoreLineY16A, plain::RestoreLineY16A, simd_sse41::RestoreLineY16A,
              simd_avx2::RestoreLineY16A, simd_avx512::RestoreLineY16A);
PIXMORPH_SLOT(PresentLineSlot, PresentLineY16, plain::PresentLineY16, simd_sse41::PresentLineY16,
              simd_avx2::PresentLineY16, simd_avx512::PresentLineY16);
PIXMORPH_SLOT(PresentLineSlot, PresentLineY16A, plain::PresentLineY16A, simd_sse41::PresentLineY16A,
              simd_avx2::PresentLineY16A, simd_avx512::PresentLineY16A);

}  // namespace KorvaneSoftware
