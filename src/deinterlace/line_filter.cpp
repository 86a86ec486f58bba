#include "deinterlace/line_filter.h"

#include <algorithm>
#include <cstdlib>

#include "deinterlace/x86/line_filter_forms.h"
#include "foundation/arithmetic.h"
#include "foundation/sample_order.h"

namespace KorvaneSoftware {

namespace {

int Distance(int a, int b) { return std::abs(a - b); }

// Sum of the distances along one direction: three pairs side by side, the upper ones starting at `a`, the lower at `b`.
int Score(const std::uint8_t* a, const std::uint8_t* b, std::ptrdiff_t step) {
    return Distance(a[0], b[0]) + Distance(a[step], b[step]) + Distance(a[2 * step], b[2 * step]);
}

// The mean along the direction in which the lines above and below agree best.
int SpatialEstimate(const std::uint8_t* above, const std::uint8_t* below, std::ptrdiff_t step) {
    const auto scoreAt = [=](std::ptrdiff_t j) { return Score(above + (j - 1) * step, below + (-j - 1) * step, step); };
    const auto meanAt = [=](std::ptrdiff_t j) { return Mean(above[j * step], below[-j * step]); };
    int estimate = meanAt(0);
    int best = scoreAt(0);
    if (const int left = scoreAt(-1); left < best) {
        best = left;
        estimate = meanAt(-1);
        if (const int farLeft = scoreAt(-2); farLeft < left) {
            best = farLeft;
            estimate = meanAt(-2);
        }
    }
    if (const int right = scoreAt(1); right < best) {
        estimate = meanAt(1);
        if (scoreAt(2) < right) estimate = meanAt(2);
    }
    return estimate;
}

std::uint8_t FilterSample(const FilterSources& sources, std::ptrdiff_t x, std::ptrdiff_t step, bool spatialCheck) {
    const std::ptrdiff_t stride = sources.stride;
    const int c = sources.current[x - stride];
    const int e = sources.current[x + stride];
    const int d = Mean(sources.earlier[x], sources.later[x]);
    const int change = Mean(Distance(sources.earlier[x], sources.later[x]), 0);
    const int before = Mean(Distance(sources.previous[x - stride], c), Distance(sources.previous[x + stride], e));
    const int behind = Mean(Distance(sources.next[x - stride], c), Distance(sources.next[x + stride], e));
    int bound = std::max({change, before, behind});
    if (spatialCheck) {
        const int b = Mean(sources.earlier[x - 2 * stride], sources.later[x - 2 * stride]) - c;
        const int f = Mean(sources.earlier[x + 2 * stride], sources.later[x + 2 * stride]) - e;
        const int low = std::min({d - e, d - c, std::max(b, f)});
        const int high = std::max({d - e, d - c, std::min(b, f)});
        bound = std::max({bound, low, -high});
    }
    const int estimate = SpatialEstimate(sources.current + x - stride, sources.current + x + stride, step);
    if (estimate > d + bound) return static_cast<std::uint8_t>(d + bound);
    return static_cast<std::uint8_t>(std::max(estimate, d - bound));
}

FilterSources Advanced(const FilterSources& sources, std::ptrdiff_t bytes) {
    return {sources.current + bytes, sources.previous + bytes, sources.next + bytes,
            sources.earlier + bytes, sources.later + bytes,    sources.stride};
}

template <PackedOrder kOrder>
void FilterPackedLine(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck) {
    FilterSamples(dst + kOrder.y0, Advanced(sources, kOrder.y0), 2, width, 0, width, spatialCheck);
    for (const std::ptrdiff_t set : {kOrder.u, kOrder.v})
        FilterSamples(dst + set, Advanced(sources, set), 4, width / 2, 0, width / 2, spatialCheck);
}

}  // namespace

void FilterSamples(std::uint8_t* dst, const FilterSources& sources, std::size_t step, std::size_t count,
                   std::size_t first, std::size_t last, bool spatialCheck) {
    for (std::size_t i = first; i < last; ++i) {
        const auto x = static_cast<std::ptrdiff_t>(i * step);
        if (count <= kFilterNarrow || i < kFilterEdge || i + kFilterEdge >= count)
            dst[x] = static_cast<std::uint8_t>(
                Mean(sources.current[x - sources.stride], sources.current[x + sources.stride]));
        else
            dst[x] = FilterSample(sources, x, static_cast<std::ptrdiff_t>(step), spatialCheck);
    }
}

void plain::FilterPlaneLine(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck) {
    FilterSamples(dst, sources, 1, width, 0, width, spatialCheck);
}
void plain::FilterUyvyLine(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck) {
    FilterPackedLine<kUyvyOrder>(dst, sources, width, spatialCheck);
}
void plain::FilterYuy2Line(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck) {
    FilterPackedLine<kYuy2Order>(dst, sources, width, spatialCheck);
}

PIXMORPH_SLOT(FilterLineSlot, FilterPlaneLine, plain::FilterPlaneLine, simd_sse41::FilterPlaneLine,
              simd_avx2::FilterPlaneLine, simd_avx512::FilterPlaneLine);
PIXMORPH_SLOT(FilterLineSlot, FilterUyvyLine, plain::FilterUyvyLine, simd_sse41::FilterUyvyLine,
              simd_avx2::FilterUyvyLine, simd_avx512::FilterUyvyLine);
PIXMORPH_SLOT(FilterLineSlot, FilterYuy2Line, plain::FilterYuy2Line, simd_sse41::FilterYuy2Line,
              simd_avx2::FilterYuy2Line, simd_avx512::FilterYuy2Line);

}  // namespace KorvaneSoftware
