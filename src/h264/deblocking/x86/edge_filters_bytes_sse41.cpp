// Sixteen lines of bytes across an edge at a time: of luma those of a macroblock, of chroma eight of Cb and eight of Cr.
#include "foundation/simd/vec_sse41.h"
#include "h264/deblocking/x86/edge_filter_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

struct Thresholds {
    Vec alpha, beta;
    Vec tc0;  ///< 0xFF in lines that are left alone.
};

Vec EqualBytes(Vec a, Vec b) { return {_mm_cmpeq_epi8(a.v, b.v)}; }
// All ones where |a - b| >= limit.
Vec IsFar(Vec distance, Vec limit) { return EqualBytes(Max8u(distance, limit), distance); }
// (a + b) >> 1
Vec FloorAvg8(Vec a, Vec b) { return Sub8(Avg8(a, b), And(Xor(a, b), Set8(1))); }

Vec FilteredLines(Vec p1, Vec p0, Vec q0, Vec q1, const Thresholds& t) {
    const Vec inside = Max8u(AbsDiff8u(p1, p0), AbsDiff8u(q1, q0));
    const Vec isOff = Or(IsFar(AbsDiff8u(p0, q0), t.alpha), IsFar(inside, t.beta));
    return AndNot(Or(isOff, EqualBytes(t.tc0, Set8(-1))), Set8(-1));
}

// Moves p0 and q0 towards each other, by (4 * (q0 - p0) + (p1 - q1) + 4) >> 3, no more than tc. That is
// ((q0 - p0) + ((p1 - q1) >> 2) + 1) >> 1, a mean of bytes once both are raised by 128. Differences are cut to 8 bits:
// in lines that are filtered those that do not fit give more than the most that tc can be, 27, all the same.
void MoveTogether(Vec p1, Vec& p0, Vec& q0, Vec q1, Vec tc) {
    const Vec bias = Set8(-128);
    const auto difference = [&](Vec a, Vec b) { return Xor({_mm_subs_epi8(Xor(a, bias).v, Xor(b, bias).v)}, bias); };
    const Vec quarter = And(ShiftRight16u<2>(difference(p1, q1)), Set8(0x3F));  // Raised by 32.
    const Vec delta = Avg8(difference(q0, p0), Add8(quarter, Set8(96)));
    const Vec up = Min8u(SubSat8u(delta, bias), tc), down = Min8u(SubSat8u(bias, delta), tc);
    p0 = SubSat8u(AddSat8u(p0, up), down);
    q0 = AddSat8u(SubSat8u(q0, up), down);
}

// Of luma s[0] to s[7] are p3, p2, p1, p0, q0, q1, q2, q3.
struct LumaWeak {
    static constexpr int kReach = 3, kChanged = 2;
    static void Run(Vec* s, const Thresholds& t, Vec mask) {
        const Vec p2 = s[1], p1 = s[2], q1 = s[5], q2 = s[6];
        // Where nothing is to change it is by no more than 0.
        const Vec tc0 = And(t.tc0, mask);
        const Vec flatP = AndNot(IsFar(AbsDiff8u(p2, s[3]), t.beta), mask);
        const Vec flatQ = AndNot(IsFar(AbsDiff8u(q2, s[4]), t.beta), mask);
        const Vec mean = Avg8(s[3], s[4]);
        const auto second = [&](Vec third, Vec middle, Vec flat) {
            const Vec most = And(tc0, flat);
            return Min8u(Max8u(FloorAvg8(third, mean), SubSat8u(middle, most)), AddSat8u(middle, most));
        };
        s[2] = second(p2, p1, flatP);
        s[5] = second(q2, q1, flatQ);
        // Masks are -1 in each lane.
        MoveTogether(p1, s[3], s[4], q1, Sub8(Sub8(tc0, flatP), flatQ));
    }
};

// Two bytes' sum: its half, and the bit that is left.
struct HalfSum {
    Vec half, odd;
    HalfSum(Vec a, Vec b) : half(FloorAvg8(a, b)), odd(And(Xor(a, b), Set8(1))) {}
};
// (a + b + c + d + 2) >> 2 of two sums. The bits left make one more only together.
Vec RoundedQuarter(const HalfSum& a, const HalfSum& b) { return Avg8(a.half, Add8(b.half, And(a.odd, b.odd))); }

struct LumaStrong {
    static constexpr int kReach = 4, kChanged = 3;
    static void Run(Vec* s, const Thresholds& t, Vec mask) {
        const Vec smallAlpha = Add8(And(ShiftRight16u<2>(t.alpha), Set8(0x3F)), Set8(2));
        const Vec small = AndNot(IsFar(AbsDiff8u(s[3], s[4]), smallAlpha), mask);
        const Vec flatP = AndNot(IsFar(AbsDiff8u(s[1], s[3]), t.beta), small);
        const Vec flatQ = AndNot(IsFar(AbsDiff8u(s[6], s[4]), t.beta), small);
        Vec p[3] = {s[3], s[2], s[1]}, q[3] = {s[4], s[5], s[6]};
        const HalfSum middle(s[3], s[4]);
        Side(p, s[0], s[5], middle, mask, flatP);
        Side(q, s[7], s[2], middle, mask, flatQ);
        for (int i = 0; i < 3; ++i) {
            s[3 - i] = p[i];
            s[4 + i] = q[i];
        }
    }

private:
    // One side, from the edge on, its fourth sample, the second of the other side, and the two at the edge.
    static void Side(Vec* v, Vec fourth, Vec other1, const HalfSum& middle, Vec mask, Vec flat) {
        const HalfSum outer(v[1], v[2]);
        // (v2 + 2 v1 + 2 v0 + 2 o0 + o1 + 4) >> 3: an odd half of v2 + o1 makes no difference.
        const Vec edge = RoundedQuarter({FloorAvg8(v[2], other1), v[1]}, middle);
        const Vec second = RoundedQuarter(outer, middle);
        // (2 v3 + 3 v2 + v1 + v0 + o0 + 4) >> 3, with half of the last four.
        const Vec lastHalf = Add8(middle.half, And(outer.odd, middle.odd));
        const Vec third = RoundedQuarter({fourth, v[2]}, {outer.half, lastHalf});
        const Vec soft = Avg8(v[1], FloorAvg8(v[0], other1));
        v[0] = Blend8(Blend8(v[0], soft, mask), edge, flat);
        v[1] = Blend8(v[1], second, flat);
        v[2] = Blend8(v[2], third, flat);
    }
};

// Of chroma: p1 to q1.
struct ChromaWeak {
    static void Run(Vec* s, const Thresholds& t, Vec mask) {
        MoveTogether(s[0], s[1], s[2], s[3], And(Add8(t.tc0, Set8(1)), mask));
    }
};
// (2a + b + c + 2) >> 2 is the mean of a with (b + c) >> 1.
struct ChromaStrong {
    static void Run(Vec* s, const Thresholds&, Vec mask) {
        const Vec p0 = Avg8(s[0], FloorAvg8(s[1], s[3])), q0 = Avg8(s[3], FloorAvg8(s[2], s[0]));
        s[1] = Blend8(s[1], p0, mask);
        s[2] = Blend8(s[2], q0, mask);
    }
};

Vec Set64(std::uint32_t low, std::uint32_t high) {
    return {_mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(low)), _mm_cvtsi32_si128(static_cast<int>(high)))};
}
int LoadInt(const std::uint8_t* p) {
    int value;
    __builtin_memcpy(&value, p, sizeof value);
    return value;
}
template <int kLane>
void StoreInt(std::uint8_t* p, Vec v) {
    const int value = _mm_extract_epi32(v.v, kLane);
    __builtin_memcpy(p, &value, sizeof value);
}
void StoreFourRows(std::uint8_t* p, std::ptrdiff_t stride, Vec rows) {
    StoreInt<0>(p, rows);
    StoreInt<1>(p + stride, rows);
    StoreInt<2>(p + 2 * stride, rows);
    StoreInt<3>(p + 3 * stride, rows);
}
// Four rows of eight bytes, of their left halves and their right ones.
void StoreEightRows(std::uint8_t* p, std::ptrdiff_t stride, Vec left, Vec right) {
    const Vec upper = UnpackLow32(left, right), lower = UnpackHigh32(left, right);
    StoreHalf(p, upper);
    StoreHalf(p + stride, UnpackHigh64(upper, upper));
    StoreHalf(p + 2 * stride, lower);
    StoreHalf(p + 3 * stride, UnpackHigh64(lower, lower));
}
template <int kLane>
void StoreShort(std::uint8_t* p, Vec v) {
    const short value = static_cast<short>(_mm_extract_epi16(v.v, kLane));
    __builtin_memcpy(p, &value, sizeof value);
}

// Lines of luma by segment: of sixteen lines, of eight.
alignas(16) constexpr std::uint8_t kLumaFours[16] = {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
alignas(16) constexpr std::uint8_t kLumaTwos[16] = {0, 0, 1, 1, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3};
// The same of eight lines of Cb and eight of Cr.
alignas(16) constexpr std::uint8_t kChromaFours[16] = {0, 0, 0, 0, 1, 1, 1, 1, 4, 4, 4, 4, 5, 5, 5, 5};
alignas(16) constexpr std::uint8_t kChromaTwos[16] = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7};

Thresholds SpreadLuma(const H264EdgeThresholds& t, int segment) {
    return {Set8(t.alpha), Set8(t.beta), Shuffle8(Set64(t.tc0, 0), Load(segment == 4 ? kLumaFours : kLumaTwos))};
}
Thresholds SpreadChroma(const H264EdgeThresholds (&t)[2], int segment, int first) {
    const int passed = 8 * (first / segment);
    const auto both = [](int cb, int cr) { return UnpackLow64(Set8(cb), Set8(cr)); };
    return {both(t[0].alpha, t[1].alpha), both(t[0].beta, t[1].beta),
            Shuffle8(Set64(t[0].tc0 >> passed, t[1].tc0 >> passed), Load(segment == 4 ? kChromaFours : kChromaTwos))};
}

// Eight upper and eight lower rows of eight bytes become eight columns, in `v`: rows i and i + 8 end up as neighbours,
// and then again what is four, two and one apart.
void ToColumns(Vec* v, const Vec* lower) {
    Vec a[8];
    for (int i = 0; i < 8; ++i) a[i] = UnpackLow8(v[i], lower[i]);
    for (int i = 0; i < 4; ++i) {
        v[2 * i] = UnpackLow8(a[i], a[i + 4]);
        v[2 * i + 1] = UnpackHigh8(a[i], a[i + 4]);
    }
    for (int i = 0; i < 4; ++i) {
        a[2 * i] = UnpackLow8(v[i], v[i + 4]);
        a[2 * i + 1] = UnpackHigh8(v[i], v[i + 4]);
    }
    for (int i = 0; i < 4; ++i) {
        v[2 * i] = UnpackLow8(a[i], a[i + 4]);
        v[2 * i + 1] = UnpackHigh8(a[i], a[i + 4]);
    }
}

template <class Filter>
void LumaVertical(std::uint8_t* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds, int segment) {
    const Thresholds t = SpreadLuma(thresholds, segment);
    const bool isWhole = segment == 4;
    Vec s[8], lower[8];
    for (int i = 0; i < 8; ++i) {
        const std::uint8_t* const row = samples + i * stride - 4;
        s[i] = LoadHalf(row);
        lower[i] = isWhole ? LoadHalf(row + 8 * stride) : Zero();
    }
    ToColumns(s, lower);
    const Vec mask = FilteredLines(s[2], s[3], s[4], s[5], t);
    if (AllZero(mask)) return;
    Filter::Run(s, t, mask);
    const int halves = isWhole ? 2 : 1;
    if constexpr (Filter::kChanged == 2) {
        const Vec p[2] = {UnpackLow8(s[2], s[3]), UnpackHigh8(s[2], s[3])};
        const Vec q[2] = {UnpackLow8(s[4], s[5]), UnpackHigh8(s[4], s[5])};
        for (int i = 0; i < halves; ++i) {
            StoreFourRows(samples + 8 * i * stride - 2, stride, UnpackLow16(p[i], q[i]));
            StoreFourRows(samples + (8 * i + 4) * stride - 2, stride, UnpackHigh16(p[i], q[i]));
        }
    } else {
        Vec pairs[8];  // Two columns of eight rows each: of rows 0 to 7, then of the others.
        for (int i = 0; i < 4; ++i) {
            pairs[i] = UnpackLow8(s[2 * i], s[2 * i + 1]);
            pairs[4 + i] = UnpackHigh8(s[2 * i], s[2 * i + 1]);
        }
        for (int i = 0; i < halves; ++i) {
            const Vec* const of = pairs + 4 * i;
            std::uint8_t* const rows = samples + 8 * i * stride - 4;
            StoreEightRows(rows, stride, UnpackLow16(of[0], of[1]), UnpackLow16(of[2], of[3]));
            StoreEightRows(rows + 4 * stride, stride, UnpackHigh16(of[0], of[1]), UnpackHigh16(of[2], of[3]));
        }
    }
}

template <class Filter>
void LumaHorizontal(std::uint8_t* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds) {
    const Thresholds t = SpreadLuma(thresholds, 4);
    Vec s[8];
    for (int i = -2; i < 2; ++i) s[4 + i] = Load(samples + i * stride);
    const Vec mask = FilteredLines(s[2], s[3], s[4], s[5], t);
    if (AllZero(mask)) return;
    for (int i = 2; i < Filter::kReach; ++i) {
        s[3 - i] = Load(samples - (i + 1) * stride);
        s[4 + i] = Load(samples + i * stride);
    }
    Filter::Run(s, t, mask);
    for (int i = -Filter::kChanged; i < Filter::kChanged; ++i) Store(samples + i * stride, s[4 + i]);
}

template <class Filter>
void ChromaVertical8(std::uint8_t* cb, std::uint8_t* cr, std::ptrdiff_t stride, const Thresholds& t) {
    Vec a[8], b[4];
    for (int i = 0; i < 8; ++i) {
        a[i] = {_mm_unpacklo_epi8(_mm_cvtsi32_si128(LoadInt(cb + i * stride - 2)),
                                  _mm_cvtsi32_si128(LoadInt(cr + i * stride - 2)))};
    }
    for (int i = 0; i < 4; ++i) b[i] = UnpackLow8(a[i], a[i + 4]);
    for (int i = 0; i < 2; ++i) {
        a[2 * i] = UnpackLow8(b[i], b[i + 2]);
        a[2 * i + 1] = UnpackHigh8(b[i], b[i + 2]);
    }
    Vec s[4] = {UnpackLow8(a[0], a[2]), UnpackHigh8(a[0], a[2]), UnpackLow8(a[1], a[3]), UnpackHigh8(a[1], a[3])};
    const Vec mask = FilteredLines(s[0], s[1], s[2], s[3], t);
    if (AllZero(mask)) return;
    Filter::Run(s, t, mask);
    const auto store = [stride](std::uint8_t* p, Vec rows) {
        StoreShort<0>(p, rows);
        StoreShort<1>(p + stride, rows);
        StoreShort<2>(p + 2 * stride, rows);
        StoreShort<3>(p + 3 * stride, rows);
        p += 4 * stride;
        StoreShort<4>(p, rows);
        StoreShort<5>(p + stride, rows);
        StoreShort<6>(p + 2 * stride, rows);
        StoreShort<7>(p + 3 * stride, rows);
    };
    store(cb - 1, UnpackLow8(s[1], s[2]));
    store(cr - 1, UnpackHigh8(s[1], s[2]));
}

template <class Filter>
void ChromaHorizontal8(std::uint8_t* cb, std::uint8_t* cr, std::ptrdiff_t stride, const Thresholds& t) {
    Vec s[4];
    for (int i = -2; i < 2; ++i) s[2 + i] = UnpackLow64(LoadHalf(cb + i * stride), LoadHalf(cr + i * stride));
    const Vec mask = FilteredLines(s[0], s[1], s[2], s[3], t);
    if (AllZero(mask)) return;
    Filter::Run(s, t, mask);
    for (int i = -1; i < 1; ++i) {
        StoreHalf(cb + i * stride, s[2 + i]);
        StoreHalf(cr + i * stride, UnpackHigh64(s[2 + i], s[2 + i]));
    }
}

template <class Filter>
void ChromaVertical(std::uint8_t* cb, std::uint8_t* cr, std::ptrdiff_t stride,
                    const H264EdgeThresholds (&thresholds)[2], int segment) {
    for (int first = 0; first < 4 * segment; first += 8)
        ChromaVertical8<Filter>(cb + first * stride, cr + first * stride, stride,
                                SpreadChroma(thresholds, segment, first));
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::H264LumaVerticalWeakBytes(std::uint8_t* samples, std::ptrdiff_t stride,
                                              const H264EdgeThresholds& thresholds, int segment, std::uint32_t) {
    LumaVertical<LumaWeak>(samples, stride, thresholds, segment);
}

void PIXMORPH_SIMD::H264LumaVerticalStrongBytes(std::uint8_t* samples, std::ptrdiff_t stride,
                                                const H264EdgeThresholds& thresholds, int segment, std::uint32_t) {
    LumaVertical<LumaStrong>(samples, stride, thresholds, segment);
}

void PIXMORPH_SIMD::H264LumaHorizontalWeakBytes(std::uint8_t* samples, std::ptrdiff_t stride,
                                                const H264EdgeThresholds& thresholds, int segment,
                                                std::uint32_t bitDepth) {
    if (segment != 4) return plain::H264LumaHorizontalWeakBytes(samples, stride, thresholds, segment, bitDepth);
    LumaHorizontal<LumaWeak>(samples, stride, thresholds);
}

void PIXMORPH_SIMD::H264LumaHorizontalStrongBytes(std::uint8_t* samples, std::ptrdiff_t stride,
                                                  const H264EdgeThresholds& thresholds, int segment,
                                                  std::uint32_t bitDepth) {
    if (segment != 4) return plain::H264LumaHorizontalStrongBytes(samples, stride, thresholds, segment, bitDepth);
    LumaHorizontal<LumaStrong>(samples, stride, thresholds);
}

void PIXMORPH_SIMD::H264ChromaVerticalWeakBytes(std::uint8_t* cb, std::uint8_t* cr, std::ptrdiff_t stride,
                                                const H264EdgeThresholds (&thresholds)[2], int segment,
                                                std::uint32_t bitDepth) {
    if (segment < 2) return plain::H264ChromaVerticalWeakBytes(cb, cr, stride, thresholds, segment, bitDepth);
    ChromaVertical<ChromaWeak>(cb, cr, stride, thresholds, segment);
}

void PIXMORPH_SIMD::H264ChromaVerticalStrongBytes(std::uint8_t* cb, std::uint8_t* cr, std::ptrdiff_t stride,
                                                  const H264EdgeThresholds (&thresholds)[2], int segment,
                                                  std::uint32_t bitDepth) {
    if (segment < 2) return plain::H264ChromaVerticalStrongBytes(cb, cr, stride, thresholds, segment, bitDepth);
    ChromaVertical<ChromaStrong>(cb, cr, stride, thresholds, segment);
}

void PIXMORPH_SIMD::H264ChromaHorizontalWeakBytes(std::uint8_t* cb, std::uint8_t* cr, std::ptrdiff_t stride,
                                                  const H264EdgeThresholds (&thresholds)[2], int segment,
                                                  std::uint32_t bitDepth) {
    if (segment != 2) return plain::H264ChromaHorizontalWeakBytes(cb, cr, stride, thresholds, segment, bitDepth);
    ChromaHorizontal8<ChromaWeak>(cb, cr, stride, SpreadChroma(thresholds, segment, 0));
}

void PIXMORPH_SIMD::H264ChromaHorizontalStrongBytes(std::uint8_t* cb, std::uint8_t* cr, std::ptrdiff_t stride,
                                                    const H264EdgeThresholds (&thresholds)[2], int segment,
                                                    std::uint32_t bitDepth) {
    if (segment != 2) return plain::H264ChromaHorizontalStrongBytes(cb, cr, stride, thresholds, segment, bitDepth);
    ChromaHorizontal8<ChromaStrong>(cb, cr, stride, SpreadChroma(thresholds, segment, 0));
}

}  // namespace KorvaneSoftware
