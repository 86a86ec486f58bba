// The inverse 2-4-8 transform: a register holds a row or a column of the block.
#include "foundation/simd/vec_sse41.h"

#include "dv/x86/dv_kernel_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// cos(k pi / 16) / 2 in 15 bits.
constexpr int kC1 = 16069, kC2 = 15137, kC3 = 13623, kC4 = 11585, kC5 = 9102, kC6 = 6270, kC7 = 3196;

inline Vec Pair(int low, int high) {
    return Set32(static_cast<int>(static_cast<unsigned>(high) << 16 | (low & 0xFFFF)));
}

// 32-bit sums of eight lanes in two registers.
struct Wide {
    Vec low, high;
};
inline Wide Add(Wide a, Wide b) { return {Add32(a.low, b.low), Add32(a.high, b.high)}; }
inline Wide Sub(Wide a, Wide b) { return {Sub32(a.low, b.low), Sub32(a.high, b.high)}; }

// Words of two registers side by side.
inline Wide Interleave(Vec a, Vec b) { return {UnpackLow16(a, b), UnpackHigh16(a, b)}; }
inline Wide Products(Wide pairs, int k0, int k1) {
    const Vec factors = Pair(k0, k1);
    return {MulAddPairs16(pairs.low, factors), MulAddPairs16(pairs.high, factors)};
}

template <int kShift>
inline Vec Narrow(Wide sum) {
    const Vec half = Set32(1 << (kShift - 1));
    return Pack32To16s(ShiftRight32s<kShift>(Add32(sum.low, half)), ShiftRight32s<kShift>(Add32(sum.high, half)));
}

// Four-point inverse of values 0 to 3.
inline void InvertQuarter(Wide* out, Vec v0, Vec v1, Vec v2, Vec v3) {
    const Wide even = Interleave(v0, v2), odd = Interleave(v1, v3);
    const Wide e = Products(even, kC4, kC4), f = Products(even, kC4, -kC4);
    const Wide g = Products(odd, kC2, kC6), h = Products(odd, kC6, -kC2);
    out[0] = Add(e, g);
    out[1] = Add(f, h);
    out[2] = Sub(f, h);
    out[3] = Sub(e, g);
}

inline void Transpose(Vec* v) {
    Vec a[8], b[8];
    for (int i = 0; i < 4; ++i) {
        a[2 * i] = UnpackLow16(v[2 * i], v[2 * i + 1]);
        a[2 * i + 1] = UnpackHigh16(v[2 * i], v[2 * i + 1]);
    }
    for (int i = 0; i < 2; ++i) {
        b[4 * i] = UnpackLow32(a[4 * i], a[4 * i + 2]);
        b[4 * i + 1] = UnpackHigh32(a[4 * i], a[4 * i + 2]);
        b[4 * i + 2] = UnpackLow32(a[4 * i + 1], a[4 * i + 3]);
        b[4 * i + 3] = UnpackHigh32(a[4 * i + 1], a[4 * i + 3]);
    }
    for (int i = 0; i < 4; ++i) {
        v[2 * i] = UnpackLow64(b[i], b[i + 4]);
        v[2 * i + 1] = UnpackHigh64(b[i], b[i + 4]);
    }
}

inline void InvertColumns(Vec* v) {
    Wide sums[4], differences[4];
    InvertQuarter(sums, v[0], v[1], v[2], v[3]);
    InvertQuarter(differences, v[4], v[5], v[6], v[7]);
    for (int pair = 0; pair < 4; ++pair) {
        v[2 * pair] = Narrow<9>(Add(sums[pair], differences[pair]));
        v[2 * pair + 1] = Narrow<9>(Sub(sums[pair], differences[pair]));
    }
}

// Registers hold columns here.
inline void InvertRows(Vec* v) {
    Wide even[4];
    InvertQuarter(even, v[0], v[2], v[4], v[6]);
    const Wide x13 = Interleave(v[1], v[3]), x57 = Interleave(v[5], v[7]);
    const Wide odd[4] = {Add(Products(x13, kC1, kC3), Products(x57, kC5, kC7)),
                         Add(Products(x13, kC3, -kC7), Products(x57, -kC1, -kC5)),
                         Add(Products(x13, kC5, -kC1), Products(x57, kC7, kC3)),
                         Add(Products(x13, kC7, -kC5), Products(x57, kC3, -kC1))};
    for (int i = 0; i < 4; ++i) {
        v[i] = Narrow<21>(Add(even[i], odd[i]));
        v[7 - i] = Narrow<21>(Sub(even[i], odd[i]));
    }
}

}  // namespace

void InverseDCT248(std::int16_t* block, unsigned count) {
    if (count < 2) {
        const Vec value = Set16((block[0] + 4) >> 3);
        for (int row = 0; row < 8; ++row) Store(block + 8 * row, value);
        return;
    }
    Vec v[8];
    for (int row = 0; row < 8; ++row) v[row] = Load(block + 8 * row);
    InvertColumns(v);
    Transpose(v);
    InvertRows(v);
    Transpose(v);
    for (int row = 0; row < 8; ++row) Store(block + 8 * row, v[row]);
}

}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
