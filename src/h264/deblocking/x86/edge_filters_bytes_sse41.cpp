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

// p2 to q2; what is left of tC0 in `t` is 0 where nothing is to change.
void FilterLumaWeak(Vec* s, const Thresholds& t, Vec mask) {
    const Vec p2 = s[0], p1 = s[1], q1 = s[4], q2 = s[5];
    const Vec tc0 = And(t.tc0, mask);
    const Vec flatP = AndNot(IsFar(AbsDiff8u(p2, s[2]), t.beta), mask);
    const Vec flatQ = AndNot(IsFar(AbsDiff8u(q2, s[3]), t.beta), mask);
    const Vec mean = Avg8(s[2], s[3]);
    const auto second = [&](Vec third, Vec middle, Vec flat) {
        const Vec most = And(tc0, flat);
        return Min8u(Max8u(FloorAvg8(third, mean), SubSat8u(middle, most)), AddSat8u(middle, most));
    };
    s[1] = second(p2, p1, flatP);
    s[4] = second(q2, q1, flatQ);
    // Masks are -1 in each lane.
    MoveTogether(p1, s[2], s[3], q1, Sub8(Sub8(tc0, flatP), flatQ));
}

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

// Rows i, i + 8 of two registers' halves end up as neighbours; done four times, rows have become columns.
template <int kRows>
void LumaVerticalWeak(std::uint8_t* samples, std::ptrdiff_t stride, const Thresholds& t) {
    Vec a[8], b[8];
    for (int i = 0; i < 8; ++i) {
        const std::uint8_t* const row = samples + i * stride - 4;
        const Vec other = kRows == 16 ? LoadHalf(row + 8 * stride) : Zero();
        a[i] = UnpackLow8(LoadHalf(row), other);
    }
    for (int i = 0; i < 4; ++i) {
        b[2 * i] = UnpackLow8(a[i], a[i + 4]);
        b[2 * i + 1] = UnpackHigh8(a[i], a[i + 4]);
    }
    // b[0], b[2], b[4], b[6] hold p3 to p0 of every fourth row, the others q0 to q3.
    for (int i = 0; i < 4; ++i) {
        a[2 * i] = UnpackLow8(b[i], b[i + 4]);
        a[2 * i + 1] = UnpackHigh8(b[i], b[i + 4]);
    }
    // a[0]: p3, p2 of even rows; a[1]: p1, p0; a[2]: q0, q1; a[3]: q2, q3; a[4] to a[7]: of odd rows.
    Vec s[6] = {UnpackHigh8(a[0], a[4]), UnpackLow8(a[1], a[5]),  UnpackHigh8(a[1], a[5]),
                UnpackLow8(a[2], a[6]),  UnpackHigh8(a[2], a[6]), UnpackLow8(a[3], a[7])};
    const Vec mask = FilteredLines(s[1], s[2], s[3], s[4], t);
    if (AllZero(mask)) return;
    FilterLumaWeak(s, t, mask);
    const Vec p[2] = {UnpackLow8(s[1], s[2]), UnpackHigh8(s[1], s[2])};
    const Vec q[2] = {UnpackLow8(s[3], s[4]), UnpackHigh8(s[3], s[4])};
    for (int i = 0; i < kRows / 8; ++i) {
        StoreFourRows(samples + 8 * i * stride - 2, stride, UnpackLow16(p[i], q[i]));
        StoreFourRows(samples + (8 * i + 4) * stride - 2, stride, UnpackHigh16(p[i], q[i]));
    }
}

void LumaHorizontalWeak(std::uint8_t* samples, std::ptrdiff_t stride, const Thresholds& t) {
    Vec s[6];
    for (int i = -2; i < 2; ++i) s[3 + i] = Load(samples + i * stride);
    const Vec mask = FilteredLines(s[1], s[2], s[3], s[4], t);
    if (AllZero(mask)) return;
    s[0] = Load(samples - 3 * stride);
    s[5] = Load(samples + 2 * stride);
    FilterLumaWeak(s, t, mask);
    for (int i = -2; i < 2; ++i) Store(samples + i * stride, s[3 + i]);
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
    const Thresholds t = SpreadLuma(thresholds, segment);
    if (segment == 4) {
        LumaVerticalWeak<16>(samples, stride, t);
    } else {
        LumaVerticalWeak<8>(samples, stride, t);
    }
}

void PIXMORPH_SIMD::H264LumaHorizontalWeakBytes(std::uint8_t* samples, std::ptrdiff_t stride,
                                                const H264EdgeThresholds& thresholds, int segment,
                                                std::uint32_t bitDepth) {
    if (segment != 4) return plain::H264LumaHorizontalWeakBytes(samples, stride, thresholds, segment, bitDepth);
    LumaHorizontalWeak(samples, stride, SpreadLuma(thresholds, segment));
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
