// Block kernels over registers of any width. Values are in the order that memory has them but in FDCT248Columns, where
// each 128-bit lane has a row of another block. The set's file defines NonZeroBytes.
#include "dv/x86/dv_kernel_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

constexpr std::size_t kWords = kVecBytes / 2;

inline std::uint32_t SumOf32(Vec v) {
    alignas(64) std::uint8_t bytes[kVecBytes];
    Store(bytes, v);
    __m128i sum = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes));
    for (std::size_t i = 16; i < kVecBytes; i += 16)
        sum = _mm_add_epi32(sum, _mm_load_si128(reinterpret_cast<const __m128i*>(bytes + i)));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0x4E));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0xB1));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sum));
}

inline std::uint32_t GreatestOf16u(Vec v) {
    alignas(64) std::uint8_t bytes[kVecBytes];
    Store(bytes, v);
    __m128i greatest = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes));
    for (std::size_t i = 16; i < kVecBytes; i += 16)
        greatest = _mm_max_epu16(greatest, _mm_load_si128(reinterpret_cast<const __m128i*>(bytes + i)));
    // The smallest of the complements.
    const __m128i all = _mm_set1_epi16(-1);
    return 0xFFFF ^ static_cast<std::uint32_t>(_mm_extract_epi16(_mm_minpos_epu16(_mm_xor_si128(greatest, all)), 0));
}

// All ones but in the first word.
alignas(64) constexpr std::uint16_t kAcMask[32] = {0,      0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
                                                   0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
                                                   0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
                                                   0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};

// Weighs and measures; magnitudes stay below 32768.
template <class Product>
inline DvBlockMeasure Weigh(std::int16_t* block, const std::int16_t* weights, Product product) {
    Vec sum = Zero();
    Vec greatest = Zero();
    for (std::size_t i = 0; i < kDvBlockValues; i += kWords) {
        const Vec weighted = product(Load(block + i), Load(weights + i));
        Store(block + i, weighted);
        const Vec magnitude = Abs16(weighted);
        sum = Add32(sum, MulAddPairs16(magnitude, Set16(1)));
        greatest = Max16u(greatest, i == 0 ? And(magnitude, Load(kAcMask)) : magnitude);
    }
    return {SumOf32(sum), GreatestOf16u(greatest)};
}

// Stores 64 magnitudes as bytes. @return a bit for each that is not 0, but for the first
template <class Level>
inline std::uint64_t StoreAmplitudes(std::uint8_t* amplitudes, Level level) {
    std::uint64_t mask = 0;
    for (std::size_t i = 0; i < kDvBlockValues; i += kVecBytes) {
        const Vec bytes = FixPack(Pack16To8u(Abs16(level(i)), Abs16(level(i + kWords))));
        Store(amplitudes + i, bytes);
        mask |= NonZeroBytes(bytes) << i;
    }
    return mask & ~std::uint64_t{1};
}

inline Vec MulHigh(Vec x, int k) { return MulHigh16s(x, Set16(k)); }

inline Vec LoadRow(const std::int16_t* block, int row, std::size_t step) {
    return LoadLanes(reinterpret_cast<const std::uint8_t*>(block + 8 * row), step);
}
inline void StoreRow(std::int16_t* block, int row, std::size_t step, Vec v) {
    StoreLanes(reinterpret_cast<std::uint8_t*>(block + 8 * row), step, v);
}

inline void TransformQuarter(std::int16_t* block, std::size_t step, Vec a, Vec b, Vec c, Vec d) {
    const Vec ad = Add16(a, d), bc = Add16(b, c), am = Sub16(a, d), bm = Sub16(b, c);
    const Vec one = Set16(1);
    const Vec middle = MulHigh(Add16(am, bm), 30274);
    StoreRow(block, 0, step, MulHigh(Add16(Add16(ad, one), bc), 23170));
    StoreRow(block, 1, step, Sub16(middle, MulHigh(bm, 17734)));
    StoreRow(block, 2, step, MulHigh(Add16(Sub16(ad, bc), one), 23170));
    // A constant above 32767 is negative to the multiplication.
    StoreRow(block, 3, step, Sub16(Add16(MulHigh(am, 42814 - 65536), am), middle));
}

// As many blocks as there are lanes, `step` bytes from one to the next.
inline void TransformColumns(std::int16_t* blocks, const std::int16_t* samples, std::size_t step) {
    Vec sum[4], difference[4];
    for (int pair = 0; pair < 4; ++pair) {
        const Vec upper = LoadRow(samples, 2 * pair, step), lower = LoadRow(samples, 2 * pair + 1, step);
        sum[pair] = ShiftLeft16<4>(Add16(upper, lower));
        difference[pair] = ShiftLeft16<4>(Sub16(upper, lower));
    }
    TransformQuarter(blocks, step, sum[0], sum[1], sum[2], sum[3]);
    TransformQuarter(blocks + 32, step, difference[0], difference[1], difference[2], difference[3]);
}

}  // namespace

void FDCT248Columns(std::int16_t* blocks, const std::int16_t* samples, std::size_t count) {
    constexpr std::size_t kBlockBytes = kDvBlockValues * sizeof(std::int16_t);
    constexpr std::size_t kLanes = kVecLanes;
    if (count < kLanes) {
        // All lanes do the same.
        for (std::size_t i = 0; i < count; ++i)
            TransformColumns(blocks + kDvBlockValues * i, samples + kDvBlockValues * i, 0);
        return;
    }
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        TransformColumns(blocks + kDvBlockValues * i, samples + kDvBlockValues * i, kBlockBytes);
    // The last blocks together with some that are done.
    if (i < count)
        TransformColumns(blocks + kDvBlockValues * (count - kLanes), samples + kDvBlockValues * (count - kLanes),
                         kBlockBytes);
}

DvBlockMeasure WeighDvBlock(std::int16_t* block, const std::int16_t* weights) {
    return Weigh(block, weights, [](Vec c, Vec w) { return MulHighRound16(c, w); });
}

DvBlockMeasure WeighHdBlock(std::int16_t* block, const std::int16_t* weights) {
    return Weigh(block, weights, [](Vec c, Vec w) {
        const Vec low = MulLow16(c, w);
        const Vec rounding = And(ShiftRight16u<12>(low), Set16(1));
        return Add16(Add16(ShiftLeft16<3>(MulHigh16s(c, w)), ShiftRight16u<13>(low)), rounding);
    });
}

std::uint64_t QuantiseDvBlock(std::uint8_t* amplitudes, const std::int16_t* coded, const std::int16_t* reciprocals) {
    return StoreAmplitudes(amplitudes,
                           [=](std::size_t i) { return MulHighRound16(Load(coded + i), Load(reciprocals + i)); });
}

std::uint64_t QuantiseHdBlock(std::uint8_t* amplitudes, const std::int16_t* coded, unsigned step) {
    const HdDivisor divisor = HdDivisorOf(step);
    const Vec half = Set16(divisor.half), multiplier = Set16(divisor.multiplier);
    // A shift to the right, of 2 at the least, as a multiplication.
    const Vec shift = Set16(1 << (16 - divisor.shift));
    return StoreAmplitudes(amplitudes, [=](std::size_t i) {
        return MulHigh16s(MulHigh16s(AddSat16s(Load(coded + i), half), multiplier), shift);
    });
}

void DequantiseDvBlock(std::int16_t* block, const std::int16_t* steps, const std::int16_t* inverseWeights) {
    const int dc = block[0];
    for (std::size_t i = 0; i < kDvBlockValues; i += kWords)
        Store(block + i, MulHighRound16(MulLow16(Load(block + i), Load(steps + i)), Load(inverseWeights + i)));
    block[0] = static_cast<std::int16_t>(dc * 4);
}

void DequantiseHdBlock(std::int16_t* block, int step, const std::int16_t* weights) {
    const int dc = block[0];
    const Vec steps = Set32(step), half = Set32(16);
    const auto scaled = [=](Vec product) {
        const Vec value = ShiftRight32s<5>(Add32(MulLow32(product, steps), half));
        return ShiftRight32s<16>(ShiftLeft32<16>(value));
    };
    for (std::size_t i = 0; i < kDvBlockValues; i += kWords) {
        const Vec level = Load(block + i), weight = Load(weights + i);
        const Vec low = MulAddPairs16(UnpackLow16(level, Zero()), UnpackLow16(weight, Zero()));
        const Vec high = MulAddPairs16(UnpackHigh16(level, Zero()), UnpackHigh16(weight, Zero()));
        Store(block + i, Pack32To16s(scaled(low), scaled(high)));
    }
    block[0] = static_cast<std::int16_t>(dc * 4);
}

}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
