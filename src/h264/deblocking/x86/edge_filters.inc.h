// Filters of words: eight lines across an edge in each 128 bits. The including file says how eights are loaded.
#include "h264/deblocking/x86/edge_filter_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// Above this sums of eight samples pass 16 bits.
constexpr std::uint32_t kMostBits = 12;

struct Thresholds {
    Vec alpha, smallAlpha, beta, tc0, maxSample;
};

// All ones where |a - b| < limit.
Vec IsNear(Vec a, Vec b, Vec limit) { return Less16(Abs16(Sub16(a, b)), limit); }
Vec ClipTo(Vec value, Vec limit) { return Min16s(Max16s(value, Sub16(Zero(), limit)), limit); }
Vec Twice(Vec a) { return Add16(a, a); }

// s[0] to s[7] are p3, p2, p1, p0, q0, q1, q2, q3.
Vec FilteredLines(const Vec* s, const Thresholds& t) {
    const Vec inside = And(IsNear(s[2], s[3], t.beta), IsNear(s[5], s[4], t.beta));
    return And(Less16(Set16(-1), t.tc0), And(inside, IsNear(s[3], s[4], t.alpha)));
}

// Moves the two samples at the edge towards each other, by no more than tc.
void MoveTogether(Vec* s, Vec tc, Vec mask, Vec maxSample) {
    const Vec step = Add16(ShiftLeft16<2>(Sub16(s[4], s[3])), Sub16(s[2], s[5]));
    const Vec delta = And(ClipTo(ShiftRight16s<3>(Add16(step, Set16(4))), tc), mask);
    s[3] = Min16s(Max16s(Add16(s[3], delta), Zero()), maxSample);
    s[4] = Min16s(Max16s(Sub16(s[4], delta), Zero()), maxSample);
}

// kReach: rows that are read on each side of the edge; kChanged: samples that change on each side.
struct LumaWeak {
    static constexpr int kReach = 3, kChanged = 2;
    static void Run(Vec* s, const Thresholds& t, Vec mask) {
        const Vec flatP = IsNear(s[1], s[3], t.beta), flatQ = IsNear(s[6], s[4], t.beta);
        const Vec mean = Avg16(s[3], s[4]);
        const auto second = [&](Vec third, Vec middle, Vec flat) {
            const Vec change = ShiftRight16s<1>(Sub16(Add16(third, mean), Twice(middle)));
            return Add16(middle, And(ClipTo(change, t.tc0), And(flat, mask)));
        };
        const Vec p1 = second(s[1], s[2], flatP), q1 = second(s[6], s[5], flatQ);
        // Masks are -1 in each lane.
        MoveTogether(s, Sub16(Sub16(t.tc0, flatP), flatQ), mask, t.maxSample);
        s[2] = p1;
        s[5] = q1;
    }
};

struct ChromaWeak {
    static constexpr int kReach = 2, kChanged = 1;
    static void Run(Vec* s, const Thresholds& t, Vec mask) {
        MoveTogether(s, Add16(t.tc0, Set16(1)), mask, t.maxSample);
    }
};

// (2a + b + c + 2) >> 2
Vec Smooth(Vec a, Vec b, Vec c) { return ShiftRight16s<2>(Add16(Add16(Twice(a), b), Add16(c, Set16(2)))); }

struct LumaStrong {
    static constexpr int kReach = 4, kChanged = 3;
    static void Run(Vec* s, const Thresholds& t, Vec mask) {
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
    static constexpr int kReach = 2, kChanged = 1;
    static void Run(Vec* s, const Thresholds&, Vec mask) {
        const Vec p0 = Smooth(s[2], s[3], s[5]), q0 = Smooth(s[5], s[4], s[2]);
        s[3] = Blend8(s[3], p0, mask);
        s[4] = Blend8(s[4], q0, mask);
    }
};

#include "foundation/simd/transpose_words.inc.h"

// Across a vertical edge of luma four samples on each side are loaded, of chroma two.
struct Vertical {
    static constexpr bool kIsVertical = true;
    template <class Filter, class Sample>
    static void Filter8(Sample* const* at, std::ptrdiff_t stride, const Thresholds& t) {
        Vec v[8];
        constexpr bool kIsChroma = Filter::kReach == 2;
        if constexpr (kIsChroma) {
            for (int i = 0; i < 8; ++i) v[i] = LoadFours(at, i * stride - 2);
            Vec a[4], b[4];
            for (int i = 0; i < 4; ++i) a[i] = UnpackLow16(v[i], v[i + 4]);
            for (int i = 0; i < 2; ++i) {
                b[2 * i] = UnpackLow16(a[i], a[i + 2]);
                b[2 * i + 1] = UnpackHigh16(a[i], a[i + 2]);
            }
            for (int i = 0; i < 2; ++i) {
                v[2 + 2 * i] = UnpackLow16(b[i], b[i + 2]);
                v[3 + 2 * i] = UnpackHigh16(b[i], b[i + 2]);
            }
        } else {
            for (int i = 0; i < 8; ++i) v[i] = LoadEights(at, i * stride - 4);
            TransposeWords(v);
        }
        const Vec mask = FilteredLines(v, t);
        if (AllZero(mask)) return;
        Filter::Run(v, t, mask);
        if constexpr (Filter::kChanged == 1) {
            StoreTwos(at, -1, stride, UnpackLow16(v[3], v[4]), UnpackHigh16(v[3], v[4]));
        } else if constexpr (Filter::kChanged == 2) {
            const Vec p[2] = {UnpackLow16(v[2], v[3]), UnpackHigh16(v[2], v[3])};
            const Vec q[2] = {UnpackLow16(v[4], v[5]), UnpackHigh16(v[4], v[5])};
            for (int i = 0; i < 2; ++i) {
                StoreFours(at, 4 * i * stride - 2, stride, UnpackLow32(p[i], q[i]));
                StoreFours(at, (4 * i + 2) * stride - 2, stride, UnpackHigh32(p[i], q[i]));
            }
        } else {
            TransposeWords(v);
            for (int i = 0; i < 8; ++i) StoreEights(at, i * stride - 4, v[i]);
        }
    }
    static std::ptrdiff_t Along(std::ptrdiff_t stride) { return stride; }
};

struct Horizontal {
    static constexpr bool kIsVertical = false;
    template <class Filter, class Sample>
    static void Filter8(Sample* const* at, std::ptrdiff_t stride, const Thresholds& t) {
        Vec v[8];
        for (int i = -Filter::kReach; i < Filter::kReach; ++i) v[4 + i] = LoadEights(at, i * stride);
        const Vec mask = FilteredLines(v, t);
        if (AllZero(mask)) return;
        Filter::Run(v, t, mask);
        for (int i = -Filter::kChanged; i < Filter::kChanged; ++i) StoreEights(at, i * stride, v[4 + i]);
    }
    static std::ptrdiff_t Along(std::ptrdiff_t) { return 1; }
};

// tC0 of the segments of eight lines in their lanes: each byte in the upper half of its lanes, which keeps the sign.
alignas(16) constexpr std::uint8_t kSpreadFours[16] = {0x80, 0, 0x80, 0, 0x80, 0, 0x80, 0,
                                                       0x80, 1, 0x80, 1, 0x80, 1, 0x80, 1};
alignas(16) constexpr std::uint8_t kSpreadTwos[16] = {0x80, 0, 0x80, 0, 0x80, 1, 0x80, 1,
                                                      0x80, 2, 0x80, 2, 0x80, 3, 0x80, 3};

// The thresholds of one edge for each 128 bits. `tc0` starts with the segments of these eight lines.
struct EightThresholds {
    std::uint32_t alpha[kVecLanes], beta[kVecLanes], tc0[kVecLanes];

    void Put(int lane, const H264EdgeThresholds& t, int first, int segment) {
        alpha[lane] = t.alpha * 0x10001u;
        beta[lane] = t.beta * 0x10001u;
        tc0[lane] = t.tc0 >> 8 * (first / segment);
    }
    Thresholds Spread(int segment, std::uint32_t bitDepth) const {
        const Vec scale = Set16(1 << (bitDepth - 8));
        const Vec order = Repeat128(segment == 4 ? kSpreadFours : kSpreadTwos);
        const Vec scaledAlpha = MulLow16(SetLanes32(alpha), scale);
        return {scaledAlpha, Add16(ShiftRight16u<2>(scaledAlpha), Set16(2)), MulLow16(SetLanes32(beta), scale),
                MulLow16(ShiftRight16s<8>(Shuffle8(SetLanes32(tc0), order)), scale), Set16((1 << bitDepth) - 1)};
    }
};

template <class Filter, class Direction, class Sample>
void FilterLuma(Sample* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds, int segment,
                std::uint32_t bitDepth) {
    for (int first = 0; first < 4 * segment; first += 8 * kVecLanes) {
        EightThresholds eights;
        Sample* at[kVecLanes];
        for (int lane = 0; lane < kVecLanes; ++lane) {
            at[lane] = samples + (first + 8 * lane) * Direction::Along(stride);
            eights.Put(lane, thresholds, first + 8 * lane, segment);
        }
        Direction::template Filter8<Filter>(at, stride, eights.Spread(segment, bitDepth));
    }
}

template <class Filter, class Direction, class Sample>
void FilterChroma(Sample* cb, Sample* cr, std::ptrdiff_t stride, const H264EdgeThresholds (&thresholds)[2], int segment,
                  std::uint32_t bitDepth) {
    Sample* const planes[2] = {cb, cr};
    for (int first = 0; first < 4 * segment; first += 8) {
        for (int plane = 0; plane < 2; plane += kVecLanes) {
            EightThresholds eights;
            Sample* at[kVecLanes];
            for (int lane = 0; lane < kVecLanes; ++lane) {
                at[lane] = planes[plane + lane] + first * Direction::Along(stride);
                eights.Put(lane, thresholds[plane + lane], first, segment);
            }
            Direction::template Filter8<Filter>(at, stride, eights.Spread(segment, bitDepth));
        }
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

// A form for edges of `least` samples in a segment and more; `narrower` does the others and those too deep.
#define PIXMORPH_H264_DEFINE_LUMA(form, narrower, Sample, Filter, Direction, least)                             \
    void form(Sample* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds, int segment,        \
              std::uint32_t bitDepth) {                                                                         \
        if (segment < least || bitDepth > PIXMORPH_SIMD::kMostBits)                                             \
            return narrower(samples, stride, thresholds, segment, bitDepth);                                    \
        PIXMORPH_SIMD::FilterLuma<PIXMORPH_SIMD::Filter, PIXMORPH_SIMD::Direction>(samples, stride, thresholds, \
                                                                                   segment, bitDepth);          \
    }
#define PIXMORPH_H264_DEFINE_CHROMA(form, narrower, Sample, Filter, Direction)                                      \
    void form(Sample* cb, Sample* cr, std::ptrdiff_t stride, const H264EdgeThresholds(&thresholds)[2], int segment, \
              std::uint32_t bitDepth) {                                                                             \
        if (segment < 2 || bitDepth > PIXMORPH_SIMD::kMostBits)                                                     \
            return narrower(cb, cr, stride, thresholds, segment, bitDepth);                                         \
        PIXMORPH_SIMD::FilterChroma<PIXMORPH_SIMD::Filter, PIXMORPH_SIMD::Direction>(cb, cr, stride, thresholds,    \
                                                                                     segment, bitDepth);            \
    }

}  // namespace KorvaneSoftware
