// Horizontal resampling over registers of any width, driven by the tables of a plan.
#include "resize/x86/resample_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// A group of four blocks fills this many registers of samples that are twice or four times as wide as stored ones.
constexpr int kParts = 4 / kVecLanes;
constexpr std::size_t kWindow = 16;

/// Tables of one group, advanced from group to group.
struct GroupTables {
    const std::uint32_t* windows;
    const std::uint8_t* shuffles;
    const std::uint8_t* weights;

    explicit GroupTables(const RowPlan& plan) : windows(plan.windows), shuffles(plan.shuffles), weights(plan.weights) {}
    void Advance(std::uint32_t steps) {
        windows += steps * 4;
        shuffles += steps * 4 * kWindow;
        weights += steps * 4 * kWindow;
    }
    /// The samples of one step of a part of the group, shuffled into place.
    Vec Gather(const std::uint8_t* src, std::size_t step, int part) const {
        const std::size_t block = step * 4 + static_cast<std::size_t>(part * kVecLanes);
        return Shuffle8(LoadLanes128(src, windows + block), Load(shuffles + block * kWindow));
    }
    Vec WeightsOf(std::size_t step, int part) const {
        return Load(weights + (step * 4 + static_cast<std::size_t>(part * kVecLanes)) * kWindow);
    }
};

/// The tables of a group of one step, in registers. Stores through byte pointers may alias anything, so that a compiler
/// would load them anew for each group.
struct HeldTables {
    std::uint32_t windows[4];
    Vec shuffles[kParts];
    Vec weights[kParts];

    explicit HeldTables(const GroupTables& tables) {
        for (int i = 0; i < 4; ++i) windows[i] = tables.windows[i];
        for (int part = 0; part < kParts; ++part) {
            shuffles[part] = Load(tables.shuffles + static_cast<std::size_t>(part) * kVecBytes);
            weights[part] = Load(tables.weights + static_cast<std::size_t>(part) * kVecBytes);
        }
    }
    Vec Gather(const std::uint8_t* src, std::size_t, int part) const {
        return Shuffle8(LoadLanes128(src, windows + part * kVecLanes), shuffles[part]);
    }
    Vec WeightsOf(std::size_t, int part) const { return weights[part]; }
};

/// Calls body(output, source, tables) for each group of `groupBytes` output bytes.
template <bool OneStep, class Body>
inline void ForEachGroup(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan, std::size_t groupBytes,
                         Body body) {
    const std::uint32_t count = plan.groupCount;
    const std::uint32_t steps = OneStep ? 1 : plan.stepCount;
    std::uint8_t* const lastOutput = dst + plan.dstBytes - groupBytes;
    GroupTables tables(plan);
    std::uint32_t group = 0;
    if (plan.regularCount != 0) {
        const std::uint32_t regular = plan.regularCount;
        const std::size_t advance = plan.regularAdvance;
        const std::uint8_t* from = src;
        if constexpr (OneStep) {
            const HeldTables held(tables);
            for (; group < regular; ++group, from += advance, dst += groupBytes)
                body(group + 1 < count ? dst : lastOutput, from, held);
        } else {
            for (; group < regular; ++group, from += advance, dst += groupBytes)
                body(group + 1 < count ? dst : lastOutput, from, tables);
        }
        tables.Advance(steps);
    }
    for (; group < count; ++group, dst += groupBytes) {
        body(group + 1 < count ? dst : lastOutput, src, tables);
        tables.Advance(steps);
    }
}

/// 32 words as bytes.
inline void StoreWordsAsBytes(std::uint8_t* dst, const Vec (&words)[kParts]) {
    if constexpr (kParts == 1) {
        StoreNarrow16To8(dst, words[0]);
    } else {
        for (int part = 0; part < kParts; part += 2)
            Store(dst + static_cast<std::size_t>(part / 2) * kVecBytes,
                  FixPack(Pack16To8u(words[part], words[part + 1])));
    }
}

// later + ((later - earlier) * -weight + 0x4000 >> 15): differences of bytes times weights from -32768 to 0 fit the
// rounding product of 16 bits.
template <bool OneStep>
void LinearBytes(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    const Vec laterMinusEarlier = Set16(0x01FF);
    const std::uint32_t steps = plan.stepCount;
    ForEachGroup<OneStep>(dst, src, plan, 32, [&](std::uint8_t* output, const std::uint8_t* from, const auto& tables) {
        Vec words[kParts];
        for (int part = 0; part < kParts; ++part) {
            Vec pairs = tables.Gather(from, 0, part);
            if constexpr (!OneStep)
                for (std::uint32_t step = 1; step < steps; ++step) pairs = Or(pairs, tables.Gather(from, step, part));
            const Vec difference = MulAddPairs8(pairs, laterMinusEarlier);
            words[part] = Add16(ShiftRight16u<8>(pairs), MulHighRound16(difference, tables.WeightsOf(0, part)));
        }
        StoreWordsAsBytes(output, words);
    });
}

void LinearWords(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    const Vec low = Set32(0xFFFF);
    const Vec half = Set32(0x4000);
    const std::uint32_t steps = plan.stepCount;
    ForEachGroup<false>(dst, src, plan, 32, [&](std::uint8_t* output, const std::uint8_t* from, const auto& tables) {
        for (int part = 0; part < kParts; ++part) {
            Vec pairs = tables.Gather(from, 0, part);
            for (std::uint32_t step = 1; step < steps; ++step) pairs = Or(pairs, tables.Gather(from, step, part));
            const Vec later = ShiftRight32u<16>(pairs);
            const Vec product = MulLow32(Sub32(And(pairs, low), later), tables.WeightsOf(0, part));
            StoreNarrow32To16(output + static_cast<std::size_t>(part) * (kVecBytes / 2),
                              Add32(later, ShiftRight32s<15>(Add32(product, half))));
        }
    });
}

// Sums below 2^15: a plan is narrow only then.
template <bool OneStep, bool Shifted>
void AreaNarrow(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    const Vec bias = Set16(plan.area.bias);
    const Vec multiplier = Set16(plan.area.multiplier);
    const int shift = plan.area.shift;
    const std::uint32_t steps = plan.stepCount;
    ForEachGroup<OneStep>(dst, src, plan, 32, [&](std::uint8_t* output, const std::uint8_t* from, const auto& tables) {
        Vec words[kParts];
        for (int part = 0; part < kParts; ++part) {
            Vec sum = Add16(bias, MulAddPairs8(tables.Gather(from, 0, part), tables.WeightsOf(0, part)));
            if constexpr (!OneStep)
                for (std::uint32_t step = 1; step < steps; ++step)
                    sum = Add16(sum, MulAddPairs8(tables.Gather(from, step, part), tables.WeightsOf(step, part)));
            words[part] = MulHigh16u(sum, multiplier);
            if constexpr (Shifted) words[part] = ShiftRight16uBy(words[part], shift);
        }
        StoreWordsAsBytes(output, words);
    });
}

void AreaNarrowAny(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    if (plan.stepCount == 1)
        (plan.area.shift == 0 ? AreaNarrow<true, false> : AreaNarrow<true, true>)(dst, src, plan);
    else
        (plan.area.shift == 0 ? AreaNarrow<false, false> : AreaNarrow<false, true>)(dst, src, plan);
}

// Sums of 32 bits. Words are moved to the signed range for the product; with weights that add up to the source's size
// that takes 32768 times the size off the sum, which the start value puts back.
template <bool Words>
void AreaWide(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    const Vec start = Words ? Set32(static_cast<int>(plan.srcWidth << 15)) : Zero();
    const Vec flip = Words ? Set16(-0x8000) : Zero();
    const float reciprocal = plan.area.reciprocal;
    const std::uint32_t steps = plan.stepCount;
    ForEachGroup<false>(dst, src, plan, Words ? 32 : 16,
                        [&](std::uint8_t* output, const std::uint8_t* from, const auto& tables) {
                            for (int part = 0; part < kParts; ++part) {
                                Vec sum = start;
                                for (std::uint32_t step = 0; step < steps; ++step) {
                                    const Vec samples = Xor(tables.Gather(from, step, part), flip);
                                    sum = Add32(sum, MulAddPairs16(samples, tables.WeightsOf(step, part)));
                                }
                                const Vec value = ScaleAndRound32(sum, reciprocal);
                                if constexpr (Words)
                                    StoreNarrow32To16(output + static_cast<std::size_t>(part) * (kVecBytes / 2), value);
                                else
                                    StoreNarrow32To8(output + static_cast<std::size_t>(part) * (kVecBytes / 4), value);
                            }
                        });
}

/// Means of neighbours, which `order` brings together: two registers become one.
inline Vec MeanOfPairs(Vec first, Vec second, Vec order) {
    const Vec ones = Set8(1);
    const Vec low = Avg16(MulAddPairs8(Shuffle8(first, order), ones), Zero());
    const Vec high = Avg16(MulAddPairs8(Shuffle8(second, order), ones), Zero());
    return FixPack(Pack16To8u(low, high));
}

/// Calls body(output byte) for each full register, the last one moved back to end with the line. The line is at least
/// one register long and a multiple of the order's unit, so that the order holds there as well.
template <class Body>
inline void ForEachRegister(std::size_t bytes, Body body) {
    std::size_t i = 0;
    for (; i + kVecBytes <= bytes; i += kVecBytes) body(i);
    if (i < bytes) body(bytes - kVecBytes);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::LinearRow8(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    if (plan.groupCount == 0)
        plain::LinearRow8(dst, src, plan);
    else
        (plan.stepCount == 1 ? LinearBytes<true> : LinearBytes<false>)(dst, src, plan);
}

void PIXMORPH_SIMD::LinearRow16(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    (plan.groupCount == 0 ? plain::LinearRow16 : LinearWords)(dst, src, plan);
}

void PIXMORPH_SIMD::AreaRow8(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    if (plan.groupCount == 0)
        plain::AreaRow8(dst, src, plan);
    else
        (plan.wide ? AreaWide<false> : AreaNarrowAny)(dst, src, plan);
}

void PIXMORPH_SIMD::AreaRow16(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    (plan.groupCount == 0 ? plain::AreaRow16 : AreaWide<true>)(dst, src, plan);
}

void PIXMORPH_SIMD::MeanRow8(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    if (plan.groupCount != 0) {
        AreaNarrowAny(dst, src, plan);
    } else if (plan.pairOrder[0] == 255 || plan.dstBytes < kVecBytes) {
        plain::MeanRow8(dst, src, plan);
    } else {
        const Vec order = Repeat128(plan.pairOrder);
        ForEachRegister(plan.dstBytes, [&](std::size_t i) {
            Store(dst + i, MeanOfPairs(Load(src + 2 * i), Load(src + 2 * i + kVecBytes), order));
        });
    }
}

void PIXMORPH_SIMD::HalveRows8(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, const RowPlan& plan) {
    if (plan.pairOrder[0] == 255 || plan.dstBytes < kVecBytes) {
        plain::HalveRows8(dst, a, b, plan);
        return;
    }
    const Vec order = Repeat128(plan.pairOrder);
    ForEachRegister(plan.dstBytes, [&](std::size_t i) {
        const Vec first = Avg8(Load(a + 2 * i), Load(b + 2 * i));
        const Vec second = Avg8(Load(a + 2 * i + kVecBytes), Load(b + 2 * i + kVecBytes));
        Store(dst + i, MeanOfPairs(first, second, order));
    });
}

void PIXMORPH_SIMD::MeanRow16(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan) {
    if (plan.dstBytes < kVecBytes) {
        plain::MeanRow16(dst, src, plan);
        return;
    }
    const Vec low = Set32(0xFFFF);
    const auto mean = [&](Vec pairs) { return Avg16(And(pairs, low), ShiftRight32u<16>(pairs)); };
    ForEachRegister(plan.dstBytes, [&](std::size_t i) {
        Store(dst + i, FixPack(Pack32To16u(mean(Load(src + 2 * i)), mean(Load(src + 2 * i + kVecBytes)))));
    });
}

}  // namespace KorvaneSoftware
