// Runs and records of groups of 16 pixels. A step writes kVecLanes records, one from each lane; the lanes of registers
// that come out of packs are dealt (see rgb_lanes_sse41.h) and collected at the end. All loads of a step come before
// its stores, and records are shorter than their pixels, so that both may start at the same address.
#include "foundation/sample_order.h"
#include "titles/x86/group_kernels_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

constexpr std::size_t kBgraBytes = 64;
constexpr std::size_t kY16ABytes = kY16AOrder.bytes;
constexpr std::size_t kRecord = 48;

// A group is visible when any of its alphas has a bit above the lowest.

inline bool BgraVisible(const std::uint8_t* group) {
    Vec any = Load(group);
    for (std::size_t i = kVecBytes; i < kBgraBytes; i += kVecBytes) any = Or(any, Load(group + i));
    return !AllZero(And(any, Set32(static_cast<int>(0xFE000000u))));
}

std::size_t BgraRun(const std::uint8_t* src, std::size_t count, bool visible) {
    std::size_t group = 0;
    if (!visible) {
        // Clear runs are long: four groups at a time.
        const Vec mask = Set32(static_cast<int>(0xFE000000u));
        for (; group + 4 <= count; group += 4) {
            const std::uint8_t* const p = src + group * kBgraBytes;
            Vec any = Or(Load(p), Load(p + kVecBytes));
            for (std::size_t i = 2 * kVecBytes; i < 4 * kBgraBytes; i += 2 * kVecBytes)
                any = Or(any, Or(Load(p + i), Load(p + i + kVecBytes)));
            if (!AllZero(And(any, mask))) break;
        }
    }
    while (group < count && BgraVisible(src + group * kBgraBytes) == visible) ++group;
    return group;
}

inline bool Y16AVisible(const std::uint8_t* group) {
    std::uint64_t alpha[2];
    __builtin_memcpy(alpha, group + kY16AOrder.alpha, sizeof(alpha));
    return ((alpha[0] | alpha[1]) & 0xFEFEFEFEFEFEFEFE) != 0;
}

std::size_t Y16ARun(const std::uint8_t* src, std::size_t count, bool visible) {
    constexpr std::size_t kStep = kVecLanes;
    std::size_t group = 0;
    if (!visible) {
        const Vec mask = Set8(0xFE);
        for (; group + 2 * kStep <= count; group += 2 * kStep) {
            const std::uint8_t* const alpha = src + group * kY16ABytes + kY16AOrder.alpha;
            const Vec any = Or(LoadLanes(alpha, kY16ABytes), LoadLanes(alpha + kStep * kY16ABytes, kY16ABytes));
            if (!AllZero(And(any, mask))) break;
        }
    }
    while (group < count && Y16AVisible(src + group * kY16ABytes) == visible) ++group;
    return group;
}

// Words 0..65534 divided by 255.
inline Vec DivideBy255(Vec n) { return ShiftRight16u<8>(Add16(n, Add16(ShiftRight16u<8>(n), Set16(1)))); }

/// Words of the pixels of two registers, packed: luma without offsets, alpha, and the pairs' chroma without offsets, Cb
/// at the first pixel of a pair and Cr at the second, where the alpha is that each of them goes by.
struct GroupWords {
    Vec luma, alpha, chroma;
};

inline Vec Coefficients(int low, int high) {
    return Set32(static_cast<int>(static_cast<std::uint32_t>(high) << 16 | (static_cast<std::uint32_t>(low) & 0xFFFF)));
}

inline Vec Luma32(Vec br, Vec ga) {
    // 33030 does not fit into a signed word: its half is taken and the product doubled.
    const Vec g = MulAddPairs16(ga, Coefficients(16515, 0));
    const Vec sum = Add32(Add32(MulAddPairs16(br, Coefficients(6423, 16843)), ShiftLeft32<1>(g)), Set32(32768));
    return ShiftRight32u<16>(sum);
}

alignas(16) constexpr std::uint8_t kOddDwords[16] = {0, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 0, 255, 255, 255, 255};

inline Vec Chroma32(Vec br, Vec ga) {
    const Vec cb = Add32(MulAddPairs16(br, Coefficients(28770, -9699)), MulAddPairs16(ga, Coefficients(-19071, 0)));
    const Vec cr = Add32(MulAddPairs16(br, Coefficients(-4653, 28770)), MulAddPairs16(ga, Coefficients(-24117, 0)));
    // Sums of neighbours: Cb at even places, Cr at odd ones.
    const Vec cbPairs = Add32(cb, AlignRight<4>(cb, cb));
    const Vec crPairs = Add32(cr, AlignRight<12>(cr, cr));
    const Vec pairs = Blend8(cbPairs, crPairs, Repeat128(kOddDwords));
    const Vec whole = ShiftRight32s<16>(Add32(pairs, Set32(32768)));
    // Halved towards zero.
    return ShiftRight32s<1>(Sub32(whole, ShiftRight32s<31>(whole)));
}

inline GroupWords ReadWords(const std::uint8_t* src) {
    const Vec p = Load(src);
    const Vec q = Load(src + kVecBytes);
    const Vec low = Set16(0x00FF);
    const Vec pBr = And(p, low), pGa = ShiftRight16u<8>(p);
    const Vec qBr = And(q, low), qGa = ShiftRight16u<8>(q);
    return {Pack32To16s(Luma32(pBr, pGa), Luma32(qBr, qGa)), Pack32To16s(ShiftRight32u<24>(p), ShiftRight32u<24>(q)),
            Pack32To16s(Chroma32(pBr, pGa), Chroma32(qBr, qGa))};
}

struct RecordWords {
    Vec luma, chroma;
};

// What the words of pixels become. Luma without offsets is 0..219 and chroma -112..112.

/// Premultiplied pixels: the offsets of the levels are multiplied by alpha.
template <bool kClamped>
struct Premultiplied {
    static RecordWords Apply(const GroupWords& w) {
        const Vec black = DivideBy255(ShiftLeft16<4>(Add16(w.alpha, Set16(8))));
        const Vec zero = DivideBy255(ShiftLeft16<7>(Add16(w.alpha, Set16(1))));
        const Vec chroma = Add16(w.chroma, zero);
        return {Add16(w.luma, black), kClamped ? chroma : And(chroma, Set16(0x00FF))};
    }
};

/// Straight pixels: samples with offsets, 16..240, times alpha, plus 128: 61328 at most.
struct Multiplied {
    static RecordWords Apply(const GroupWords& w) {
        return {Times(Add16(w.luma, Set16(16)), w.alpha), Times(Add16(w.chroma, Set16(128)), w.alpha)};
    }
    static Vec Times(Vec value, Vec alpha) { return DivideBy255(Add16(MulLow16(value, alpha), Set16(128))); }
};

// Even bytes of a lane, then odd ones.
alignas(16) constexpr std::uint8_t kEvenThenOdd[16] = {0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15};

template <class Offsets>
struct BgraGroups {
    static constexpr std::size_t kGroupBytes = kBgraBytes;
    static void Run(std::uint8_t* dst, const std::uint8_t* src) {
        const GroupWords low = ReadWords(src);
        const GroupWords high = ReadWords(src + 2 * kVecBytes);
        const RecordWords lowRecord = Offsets::Apply(low);
        const RecordWords highRecord = Offsets::Apply(high);
        const Vec alpha = CollectLanes(Pack16To8u(low.alpha, high.alpha));
        const Vec chroma = CollectLanes(Pack16To8u(lowRecord.chroma, highRecord.chroma));
        StoreLanes(dst, kRecord, CollectLanes(Pack16To8u(lowRecord.luma, highRecord.luma)));
        StoreLanes(dst + 16, kRecord, Xor(alpha, Set8(-1)));
        StoreLanes(dst + 32, kRecord, Shuffle8(chroma, Repeat128(kEvenThenOdd)));
    }
};

struct Y16AGroups {
    static constexpr std::size_t kGroupBytes = kY16ABytes;
    static void Run(std::uint8_t* dst, const std::uint8_t* src) {
        const Vec luma = LoadLanes(src, kY16ABytes);
        const Vec alpha = LoadLanes(src + kY16AOrder.alpha, kY16ABytes);
        const Vec chroma = LoadLanes(src + kY16AOrder.u, kY16ABytes);
        StoreLanes(dst, kRecord, UpperBytesOfProducts(luma, alpha));
        StoreLanes(dst + 16, kRecord, Xor(alpha, Set8(-1)));
        // The eight Cb go by the even alphas and the eight Cr behind them by the odd ones.
        StoreLanes(dst + 32, kRecord, UpperBytesOfProducts(chroma, Shuffle8(alpha, Repeat128(kEvenThenOdd))));
    }
    static Vec UpperBytesOfProducts(Vec a, Vec b) {
        const Vec zero = Zero();
        return Pack16To8u(ShiftRight16u<8>(MulLow16(UnpackLow8(a, zero), UnpackLow8(b, zero))),
                          ShiftRight16u<8>(MulLow16(UnpackHigh8(a, zero), UnpackHigh8(b, zero))));
    }
};

template <class Groups>
void WriteGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    constexpr std::size_t kStep = kVecLanes;
    std::size_t group = 0;
    for (; group + kStep <= count; group += kStep)
        Groups::Run(dst + group * kRecord, src + group * Groups::kGroupBytes);
    if (group == count) return;
    alignas(64) std::uint8_t from[kStep * Groups::kGroupBytes] = {};
    alignas(64) std::uint8_t to[kStep * kRecord];
    __builtin_memcpy(from, src + group * Groups::kGroupBytes, (count - group) * Groups::kGroupBytes);
    Groups::Run(to, from);
    __builtin_memcpy(dst + group * kRecord, to, (count - group) * kRecord);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

std::size_t PIXMORPH_SIMD::BgraRunLength(const std::uint8_t* src, std::size_t count, bool visible) {
    return BgraRun(src, count, visible);
}
std::size_t PIXMORPH_SIMD::Y16ARunLength(const std::uint8_t* src, std::size_t count, bool visible) {
    return Y16ARun(src, count, visible);
}
void PIXMORPH_SIMD::TitleToGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    WriteGroups<BgraGroups<Premultiplied<false>>>(dst, src, count);
}
void PIXMORPH_SIMD::TitleToCableGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    WriteGroups<BgraGroups<Premultiplied<true>>>(dst, src, count);
}
void PIXMORPH_SIMD::BgraToGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    WriteGroups<BgraGroups<Multiplied>>(dst, src, count);
}
void PIXMORPH_SIMD::Y16AToGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    WriteGroups<Y16AGroups>(dst, src, count);
}

}  // namespace KorvaneSoftware
