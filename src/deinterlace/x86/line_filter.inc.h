// The line filter over registers of any width. All of it fits unsigned bytes, the bound included, once the signed terms
// are split into their positive parts: only the scores, sums of three distances, need 16 bits.
#include "deinterlace/x86/line_filter_forms.h"
#include "foundation/sample_order.h"
#include "foundation/simd/walk_line.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// Neighbours in a plane, `J` samples to the right.
struct PlaneTaps {
    template <int J>
    static inline Vec At(const std::uint8_t* p) {
        return Load(p + J);
    }
};

// In packed 4:2:2 luma samples are two bytes apart and chroma samples of one kind four: a register is filtered as it
// lies in memory, each byte with the neighbours of its own set.
template <PackedOrder kPackedOrder>
struct PackedTaps {
    static constexpr PackedOrder kOrder = kPackedOrder;
    static constexpr int kChromaBytes = kOrder.IsLumaFirst() ? 0xFF00 : 0x00FF;  // Of each word.

    template <int J>
    static inline Vec At(const std::uint8_t* p) {
        if constexpr (J == 0) return Load(p);
        return Blend8(Load(p + 2 * J), Load(p + 4 * J), Set16(kChromaBytes));
    }
};
using UyvyTaps = PackedTaps<kUyvyOrder>;
using Yuy2Taps = PackedTaps<kYuy2Order>;

// Words of a register of bytes; the halves are those of the lane-wise unpacks, which the lane-wise packs undo.
struct Words {
    Vec low;
    Vec high;
};

inline Words SumOfThree(Vec a, Vec b, Vec c) {
    const Vec ones = Set8(1);
    return {Add16(MulAddPairs8(UnpackLow8(a, b), ones), UnpackLow8(c, Zero())),
            Add16(MulAddPairs8(UnpackHigh8(a, b), ones), UnpackHigh8(c, Zero()))};
}
inline Words Minus(Words a, Words b) { return {Sub16(a.low, b.low), Sub16(a.high, b.high)}; }
inline Words Lesser(Words a, Words b) { return {Min16s(a.low, b.low), Min16s(a.high, b.high)}; }
// Bytes whose top bit is the sign of each word.
inline Vec Signs(Words a) { return Pack16To8s(a.low, a.high); }
// `a` where `sign` is negative, more than any score elsewhere.
inline Vec OnlyWhereNegative(Vec a, Vec sign) { return Or(a, AndNot(ShiftRight16s<15>(sign), Set16(0x4000))); }

// Score of direction `J` from the lines above and below, which are given from three samples to the left on.
template <int J>
inline Words Score(const Vec* above, const Vec* below) {
    const Vec* const a = above + 3 + J;
    const Vec* const b = below + 3 - J;
    return SumOfThree(AbsDiff8u(a[-1], b[-1]), AbsDiff8u(a[0], b[0]), AbsDiff8u(a[1], b[1]));
}
template <int J>
inline Vec MeanAlong(const Vec* above, const Vec* below) {
    return Avg8(above[3 + J], below[3 - J]);
}

template <class Taps>
inline Vec SpatialEstimate(const std::uint8_t* above, const std::uint8_t* below) {
    const Vec a[7] = {
        Taps::template At<-3>(above), Taps::template At<-2>(above), Taps::template At<-1>(above), Load(above),
        Taps::template At<1>(above),  Taps::template At<2>(above),  Taps::template At<3>(above)};
    const Vec b[7] = {
        Taps::template At<-3>(below), Taps::template At<-2>(below), Taps::template At<-1>(below), Load(below),
        Taps::template At<1>(below),  Taps::template At<2>(below),  Taps::template At<3>(below)};
    Words best = Score<0>(a, b);
    const Words left = Score<-1>(a, b);
    const Words leftGain = Minus(left, best);
    Vec estimate = Blend8(MeanAlong<0>(a, b), MeanAlong<-1>(a, b), Signs(leftGain));
    best = Lesser(best, left);
    Words farLeft = Score<-2>(a, b);
    farLeft = {OnlyWhereNegative(farLeft.low, leftGain.low), OnlyWhereNegative(farLeft.high, leftGain.high)};
    estimate = Blend8(estimate, MeanAlong<-2>(a, b), Signs(Minus(farLeft, best)));
    best = Lesser(best, farLeft);
    const Words right = Score<1>(a, b);
    const Vec rightSigns = Signs(Minus(right, best));
    const Vec farRightSigns = Signs(Minus(Score<2>(a, b), right));
    const Vec rightMean = Blend8(MeanAlong<1>(a, b), MeanAlong<2>(a, b), farRightSigns);
    return Blend8(estimate, rightMean, rightSigns);
}

inline Vec Load2Avg(const std::uint8_t* p, const std::uint8_t* q) { return Avg8(Load(p), Load(q)); }

// The register of samples at byte `x` of the line.
template <class Taps, bool SpatialCheck>
inline Vec FilterAt(const FilterSources& s, std::size_t x) {
    const std::uint8_t* const above = s.current + x - s.stride;
    const std::uint8_t* const below = s.current + x + s.stride;
    const Vec c = Load(above);
    const Vec e = Load(below);
    const Vec earlier = Load(s.earlier + x);
    const Vec later = Load(s.later + x);
    const Vec d = Avg8(earlier, later);
    const Vec change = Avg8(AbsDiff8u(earlier, later), Zero());
    const Vec before =
        Avg8(AbsDiff8u(Load(s.previous + x - s.stride), c), AbsDiff8u(Load(s.previous + x + s.stride), e));
    const Vec behind = Avg8(AbsDiff8u(Load(s.next + x - s.stride), c), AbsDiff8u(Load(s.next + x + s.stride), e));
    Vec bound = Max8u(change, Max8u(before, behind));
    if constexpr (SpatialCheck) {
        // The bound is at least 0, so of the lower limit and of the negated upper one only positive parts matter, and
        // the positive part passes through minimum and maximum.
        const std::ptrdiff_t two = 2 * s.stride;
        const Vec up = Load2Avg(s.earlier + x - two, s.later + x - two);
        const Vec down = Load2Avg(s.earlier + x + two, s.later + x + two);
        const Vec low = Min8u(Min8u(SubSat8u(d, e), SubSat8u(d, c)), Max8u(SubSat8u(up, c), SubSat8u(down, e)));
        const Vec high = Min8u(Min8u(SubSat8u(e, d), SubSat8u(c, d)), Max8u(SubSat8u(c, up), SubSat8u(e, down)));
        bound = Max8u(bound, Max8u(low, high));
    }
    // Saturation at 0 and 255 changes nothing: the estimate lies between them.
    return Max8u(Min8u(SpatialEstimate<Taps>(above, below), AddSat8u(d, bound)), SubSat8u(d, bound));
}

// Bytes `first` to `last` (not included), at least one register of them.
template <class Taps, bool SpatialCheck>
void FilterRun(std::uint8_t* dst, const FilterSources& sources, std::size_t first, std::size_t last) {
    WalkLine<kVecBytes>(first, last, [&](std::size_t x) { Store(dst + x, FilterAt<Taps, SpatialCheck>(sources, x)); });
}

template <class Taps>
void FilterRun(std::uint8_t* dst, const FilterSources& sources, std::size_t first, std::size_t last,
               bool spatialCheck) {
    if (spatialCheck)
        FilterRun<Taps, true>(dst, sources, first, last);
    else
        FilterRun<Taps, false>(dst, sources, first, last);
}

void FilterPlane(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck) {
    if (width < kVecBytes + 2 * kFilterEdge) {
        FilterSamples(dst, sources, 1, width, 0, width, spatialCheck);
        return;
    }
    FilterSamples(dst, sources, 1, width, 0, kFilterEdge, spatialCheck);
    FilterRun<PlaneTaps>(dst, sources, kFilterEdge, width - kFilterEdge, spatialCheck);
    FilterSamples(dst, sources, 1, width, width - kFilterEdge, width, spatialCheck);
}

inline FilterSources Advanced(const FilterSources& s, std::size_t bytes) {
    return {s.current + bytes, s.previous + bytes, s.next + bytes, s.earlier + bytes, s.later + bytes, s.stride};
}

template <class Taps>
void FilterPacked(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck) {
    constexpr std::size_t kLumaByte = Taps::kOrder.y0;
    // Registers serve the bytes at which both luma and chroma have all their neighbours.
    const std::size_t pairs = width / 2;
    const std::size_t first = 4 * kFilterEdge;
    const std::size_t last = 4 * pairs - first;
    const bool vectors = 4 * pairs >= 2 * first + kVecBytes;
    if (vectors) FilterRun<Taps>(dst, sources, first, last, spatialCheck);
    const std::size_t firstPair = vectors ? kFilterEdge : pairs;
    const std::size_t lastPair = vectors ? pairs - kFilterEdge : pairs;
    const FilterSources luma = Advanced(sources, kLumaByte);
    FilterSamples(dst + kLumaByte, luma, 2, width, 0, 2 * firstPair, spatialCheck);
    FilterSamples(dst + kLumaByte, luma, 2, width, 2 * lastPair, width, spatialCheck);
    for (std::size_t set = 1 - kLumaByte; set < 4; set += 2) {
        const FilterSources chroma = Advanced(sources, set);
        FilterSamples(dst + set, chroma, 4, pairs, 0, firstPair, spatialCheck);
        FilterSamples(dst + set, chroma, 4, pairs, lastPair, pairs, spatialCheck);
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::FilterPlaneLine(std::uint8_t* dst, const FilterSources& sources, std::size_t width,
                                    bool spatialCheck) {
    FilterPlane(dst, sources, width, spatialCheck);
}
void PIXMORPH_SIMD::FilterUyvyLine(std::uint8_t* dst, const FilterSources& sources, std::size_t width,
                                   bool spatialCheck) {
    FilterPacked<UyvyTaps>(dst, sources, width, spatialCheck);
}
void PIXMORPH_SIMD::FilterYuy2Line(std::uint8_t* dst, const FilterSources& sources, std::size_t width,
                                   bool spatialCheck) {
    FilterPacked<Yuy2Taps>(dst, sources, width, spatialCheck);
}

}  // namespace KorvaneSoftware
