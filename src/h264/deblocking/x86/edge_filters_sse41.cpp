// Eight lines across an edge at a time, in lanes of 16 bits. Wider registers would hold a whole edge of luma, but half
// of the edges must be transposed, and chroma has no more than eight lines.
#include "foundation/simd/vec_sse41.h"
#include "h264/deblocking/x86/edge_filter_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "foundation/simd/transpose_words.inc.h"

// Above this sums of eight samples pass 16 bits.
constexpr std::uint32_t kMostBits = 12;

struct Thresholds {
    Vec alpha, smallAlpha, beta, maxSample;
};

// All ones where |a - b| < limit.
Vec IsNear(Vec a, Vec b, Vec limit) { return {_mm_cmplt_epi16(Abs16(Sub16(a, b)).v, limit.v)}; }
Vec ClipTo(Vec value, Vec limit) { return Min16s(Max16s(value, Sub16(Zero(), limit)), limit); }
Vec Twice(Vec a) { return Add16(a, a); }

// s[0] to s[7] are p3, p2, p1, p0, q0, q1, q2, q3.
Vec FilteredLines(const Vec* s, const Thresholds& t, Vec tc0) {
    const Vec isOn = {_mm_cmpgt_epi16(tc0.v, Set16(-1).v)};
    const Vec inside = And(IsNear(s[2], s[3], t.beta), IsNear(s[5], s[4], t.beta));
    return And(isOn, And(inside, IsNear(s[3], s[4], t.alpha)));
}

// Moves the two samples at the edge towards each other, by no more than tc.
void MoveTogether(Vec* s, Vec tc, Vec mask, Vec maxSample) {
    const Vec step = Add16(ShiftLeft16<2>(Sub16(s[4], s[3])), Sub16(s[2], s[5]));
    const Vec delta = And(ClipTo(ShiftRight16s<3>(Add16(step, Set16(4))), tc), mask);
    s[3] = Min16s(Max16s(Add16(s[3], delta), Zero()), maxSample);
    s[4] = Min16s(Max16s(Sub16(s[4], delta), Zero()), maxSample);
}

struct LumaWeak {
    static void Run(Vec* s, const Thresholds& t, Vec tc0) {
        const Vec mask = FilteredLines(s, t, tc0);
        const Vec flatP = IsNear(s[1], s[3], t.beta), flatQ = IsNear(s[6], s[4], t.beta);
        const Vec mean = Avg16(s[3], s[4]);
        const auto second = [&](Vec third, Vec middle, Vec flat) {
            const Vec change = ShiftRight16s<1>(Sub16(Add16(third, mean), Twice(middle)));
            return Add16(middle, And(ClipTo(change, tc0), And(flat, mask)));
        };
        const Vec p1 = second(s[1], s[2], flatP), q1 = second(s[6], s[5], flatQ);
        // Masks are -1 in each lane.
        MoveTogether(s, Sub16(Sub16(tc0, flatP), flatQ), mask, t.maxSample);
        s[2] = p1;
        s[5] = q1;
    }
};

struct ChromaWeak {
    static void Run(Vec* s, const Thresholds& t, Vec tc0) {
        MoveTogether(s, Add16(tc0, Set16(1)), FilteredLines(s, t, tc0), t.maxSample);
    }
};

// (2a + b + c + 2) >> 2
Vec Smooth(Vec a, Vec b, Vec c) { return ShiftRight16s<2>(Add16(Add16(Twice(a), b), Add16(c, Set16(2)))); }

struct LumaStrong {
    static void Run(Vec* s, const Thresholds& t, Vec tc0) {
        const Vec mask = FilteredLines(s, t, tc0);
        const Vec small = And(mask, IsNear(s[3], s[4], t.smallAlpha));
        const Vec flatP = And(small, IsNear(s[1], s[3], t.beta)), flatQ = And(small, IsNear(s[6], s[4], t.beta));
        Vec p[3] = {s[3], s[2], s[1]}, q[3] = {s[4], s[5], s[6]};
        Side(p, s[0], s[4], s[5], mask, flatP);
        Side(q, s[7], s[3], s[2], mask, flatQ);
        for (int i = 0; i < 3; ++i) {
            s[3 - i] = p[i];
            s[4 + i] = q[i];
        }
    }

private:
    // One side, from the edge on, its fourth sample, and the two nearest of the other side.
    static void Side(Vec* v, Vec fourth, Vec other0, Vec other1, Vec mask, Vec flat) {
        const Vec near = Add16(Add16(v[0], v[1]), Add16(v[2], other0));  // All four of the first mean.
        const Vec edge = Add16(Add16(Twice(near), Sub16(other1, v[2])), Set16(4));
        const Vec outer = Add16(Add16(near, Twice(Add16(fourth, v[2]))), Set16(4));
        const Vec soft = Smooth(v[1], v[0], other1);
        v[0] = Blend8(Blend8(v[0], soft, mask), ShiftRight16s<3>(edge), flat);
        v[1] = Blend8(v[1], ShiftRight16s<2>(Add16(near, Set16(2))), flat);
        v[2] = Blend8(v[2], ShiftRight16s<3>(outer), flat);
    }
};

struct ChromaStrong {
    static void Run(Vec* s, const Thresholds& t, Vec tc0) {
        const Vec mask = FilteredLines(s, t, tc0);
        const Vec p0 = Smooth(s[2], s[3], s[5]), q0 = Smooth(s[5], s[4], s[2]);
        s[3] = Blend8(s[3], p0, mask);
        s[4] = Blend8(s[4], q0, mask);
    }
};

Vec LoadEight(const std::uint8_t* p) { return LoadWiden8(p); }
Vec LoadEight(const std::uint16_t* p) { return Load(p); }
void StoreEight(std::uint8_t* p, Vec v) { StoreNarrow16To8(p, v); }
void StoreEight(std::uint16_t* p, Vec v) { Store(p, v); }

// Rows across a horizontal edge that a filter reads and writes, on each side.
template <class Filter>
constexpr int kReach = 4;
template <>
constexpr int kReach<ChromaWeak> = 2;
template <>
constexpr int kReach<ChromaStrong> = 2;

struct Vertical {
    template <class Filter, class Sample>
    static void FilterEight(Sample* samples, std::ptrdiff_t stride, const Thresholds& t, Vec tc0) {
        Vec v[8];
        for (int i = 0; i < 8; ++i) v[i] = LoadEight(samples + i * stride - 4);
        TransposeWords(v);
        if (AllZero(FilteredLines(v, t, tc0))) return;
        Filter::Run(v, t, tc0);
        TransposeWords(v);
        for (int i = 0; i < 8; ++i) StoreEight(samples + i * stride - 4, v[i]);
    }
    static std::ptrdiff_t Along(std::ptrdiff_t stride) { return stride; }
};

struct Horizontal {
    template <class Filter, class Sample>
    static void FilterEight(Sample* samples, std::ptrdiff_t stride, const Thresholds& t, Vec tc0) {
        constexpr int kRows = kReach<Filter>, kWritten = kRows - 1;
        Vec v[8];
        for (int i = -kRows; i < kRows; ++i) v[4 + i] = LoadEight(samples + i * stride);
        Filter::Run(v, t, tc0);
        for (int i = -kWritten; i < kWritten; ++i) StoreEight(samples + i * stride, v[4 + i]);
    }
    static std::ptrdiff_t Along(std::ptrdiff_t) { return 1; }
};

// tc0 of the segments in eight lines, of which the first is the edge's line `from`.
Vec SpreadTc0(const H264EdgeThresholds& thresholds, int from, int segment) {
    alignas(16) std::int16_t lanes[8];
    for (int i = 0; i < 8; ++i) lanes[i] = thresholds.tc0[(from + i) / segment];
    return Load(lanes);
}

template <class Filter, class Direction, class Sample>
void FilterEdge(Sample* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds, int segment,
                std::uint32_t bitDepth) {
    const Thresholds t = {Set16(thresholds.alpha), Set16((thresholds.alpha >> 2) + 2), Set16(thresholds.beta),
                          Set16((1 << bitDepth) - 1)};
    for (int from = 0; from < 4 * segment; from += 8, samples += 8 * Direction::Along(stride))
        Direction::template FilterEight<Filter>(samples, stride, t, SpreadTc0(thresholds, from, segment));
}

}  // namespace
}  // namespace PIXMORPH_SIMD

#define PIXMORPH_H264_DEFINE(component, direction, strength, Kind, Sample)                                            \
    void PIXMORPH_SIMD::H264##component##direction##strength##Kind(Sample* samples, std::ptrdiff_t stride,            \
                                                                   const H264EdgeThresholds& thresholds, int segment, \
                                                                   std::uint32_t bitDepth) {                          \
        if (segment == 1 || bitDepth > kMostBits)                                                                     \
            return plain::H264##component##direction##strength##Kind(samples, stride, thresholds, segment, bitDepth); \
        FilterEdge<component##strength, direction>(samples, stride, thresholds, segment, bitDepth);                   \
    }
PIXMORPH_H264_EDGES(PIXMORPH_H264_DEFINE)
#undef PIXMORPH_H264_DEFINE

}  // namespace KorvaneSoftware
