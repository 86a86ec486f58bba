// The block transforms over registers whose 128-bit lanes hold one block each: AVX2 works on two blocks at once, or on
// one in both lanes. The set's file defines NonZeroBits.
#include "jpeg/inverse_dct_table.h"
#include "jpeg/scan_masks.h"
#include "jpeg/x86/block_transform_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// The same row of the blocks of all lanes. `step` is the number of values from a lane's block to the next: 0 where all
// lanes work on one.
inline Vec LoadRow(const std::int16_t* block, int row, std::size_t step) {
    return LoadLanes(reinterpret_cast<const std::uint8_t*>(block + 8 * row), step * sizeof *block);
}
inline void StoreRow(std::int16_t* block, int row, std::size_t step, Vec v) {
    StoreLanes(reinterpret_cast<std::uint8_t*>(block + 8 * row), step * sizeof *block, v);
}

inline Vec MulHigh(Vec x, int k) { return MulHigh16s(x, Set16(k)); }
// Constants above 32767 are negative to the multiplication.
inline Vec MulHighLarge(Vec x, int k) { return Add16(MulHigh(x, k - 65536), x); }
inline Vec Twice(Vec x) { return Add16(x, x); }

inline void Transpose(Vec* v) {
    const Vec a0 = UnpackLow16(v[0], v[1]), a1 = UnpackHigh16(v[0], v[1]);
    const Vec a2 = UnpackLow16(v[2], v[3]), a3 = UnpackHigh16(v[2], v[3]);
    const Vec a4 = UnpackLow16(v[4], v[5]), a5 = UnpackHigh16(v[4], v[5]);
    const Vec a6 = UnpackLow16(v[6], v[7]), a7 = UnpackHigh16(v[6], v[7]);
    const Vec b0 = UnpackLow32(a0, a2), b1 = UnpackHigh32(a0, a2), b2 = UnpackLow32(a1, a3), b3 = UnpackHigh32(a1, a3);
    const Vec b4 = UnpackLow32(a4, a6), b5 = UnpackHigh32(a4, a6), b6 = UnpackLow32(a5, a7), b7 = UnpackHigh32(a5, a7);
    v[0] = UnpackLow64(b0, b4);
    v[1] = UnpackHigh64(b0, b4);
    v[2] = UnpackLow64(b1, b5);
    v[3] = UnpackHigh64(b1, b5);
    v[4] = UnpackLow64(b2, b6);
    v[5] = UnpackHigh64(b2, b6);
    v[6] = UnpackLow64(b3, b7);
    v[7] = UnpackHigh64(b3, b7);
}

// Both passes of the direct transform have these in common.
struct OddPart {
    Vec A, C, D;

    OddPart(Vec a, Vec b, Vec c, Vec q) {
        const Vec p = MulHigh(Add16(a, b), 32138);
        A = Sub16(MulHighLarge(a, 38532), p);
        C = Sub16(p, MulHigh(b, 25746));
        D = Sub16(q, MulHigh(c, 9041));
    }
};

inline void ForwardColumns(Vec* v) {
    const Vec one = Set16(1);
    const Vec a = Sub16(v[0], v[7]), b = Sub16(v[3], v[4]), c = Sub16(v[2], v[5]), d = Sub16(v[1], v[6]);
    const Vec s07 = Add16(v[0], v[7]), s16 = Add16(v[1], v[6]), s25 = Add16(v[2], v[5]), s34 = Add16(v[3], v[4]);
    const Vec e = Add16(s16, s25), f = Add16(s07, s34), g = Sub16(s16, s25), h = Sub16(s07, s34);
    const Vec q = MulHigh(Add16(d, c), 27246);
    const OddPart odd(a, b, c, q);
    const Vec B = Sub16(q, MulHighLarge(d, 45450));
    const Vec r = MulHigh(Add16(h, g), 30274);
    const Vec difference = Sub16(odd.C, odd.D);
    v[0] = MulHigh(Add16(Add16(e, one), f), 23170);
    v[4] = MulHigh(Add16(Sub16(f, e), one), 23170);
    v[2] = Sub16(r, MulHigh(g, 17734));
    v[6] = Sub16(MulHighLarge(h, 42814), r);
    v[1] = Add16(odd.C, odd.D);
    v[7] = Add16(odd.A, B);
    v[3] = MulHigh(Add16(Twice(Add16(Sub16(difference, B), odd.A)), one), 23170);
    v[5] = MulHigh(Add16(Twice(Add16(Sub16(difference, odd.A), B)), one), 23170);
}

// Registers hold columns here.
inline void ForwardRows(Vec* v) {
    const Vec one = Set16(1), two = Set16(2);
    const Vec a = Sub16(v[0], v[7]), b = Sub16(v[3], v[4]), c = Sub16(v[2], v[5]), d = Sub16(v[1], v[6]);
    const Vec s07 = Add16(v[0], v[7]), s16 = Add16(v[1], v[6]), s25 = Add16(v[2], v[5]), s34 = Add16(v[3], v[4]);
    const Vec q = MulHigh(Add16(d, c), 27246);
    const OddPart odd(a, b, c, q);
    const Vec B = Sub16(q, Twice(MulHigh(d, 22725)));
    const Vec g = Sub16(s16, s25), h = Sub16(s07, s34);
    const Vec u0 = MulHigh(Add16(s07, one), 23170), u1 = MulHigh(Add16(s16, two), 23170);
    const Vec u2 = MulHigh(Add16(s25, one), 23170), u3 = MulHigh(Add16(s34, one), 23170);
    const Vec r = Add16(MulHigh(h, 30274), MulHigh(g, 30274));
    const Vec difference = Sub16(odd.C, odd.D);
    v[0] = Add16(Add16(u3, u2), Add16(u1, u0));
    v[4] = Sub16(Add16(u0, u3), Add16(u2, u1));
    v[2] = Sub16(r, MulHigh(g, 17734));
    v[6] = Sub16(Twice(MulHigh(h, 21407)), r);
    v[1] = Add16(odd.C, odd.D);
    v[7] = Add16(odd.A, B);
    v[3] = Twice(MulHigh(Add16(Sub16(difference, B), odd.A), 23170));
    v[5] = Twice(MulHigh(Add16(Sub16(difference, odd.A), B), 23170));
}

template <bool Columns>
inline void Forward(std::int16_t* block, std::size_t step) {
    Vec v[8];
    for (int i = 0; i < 8; ++i) v[i] = LoadRow(block, i, step);
    if (Columns) {
        for (Vec& row : v) row = ShiftLeft16<4>(row);
        ForwardColumns(v);
    }
    Transpose(v);
    ForwardRows(v);
    Transpose(v);
    for (int i = 0; i < 8; ++i) StoreRow(block, i, step, v[i]);
}

template <bool Columns>
inline void ForwardBlocks(std::int16_t* blocks, std::size_t count) {
    for (; count >= kVecLanes; count -= kVecLanes, blocks += kVecLanes * kBlockValues)
        Forward<Columns>(blocks, kBlockValues);
    for (; count > 0; --count, blocks += kBlockValues) Forward<Columns>(blocks, 0);
}

inline Vec Scale(int k) { return Repeat128(kInverseDctTable[k]); }

// The high half of t times a sum of 17 bits, with t above 0.
inline Vec MulHighOfSum(Vec x, Vec y, Vec t) {
    const Vec sum = Add16(x, y);
    const Vec overflown = ShiftRight16s<15>(And(Xor(x, sum), Xor(y, sum)));
    const Vec negative = ShiftRight16s<15>(x);
    // t or -t where the sum is 65536 off.
    const Vec correction = And(overflown, Sub16(Xor(t, negative), negative));
    return Add16(MulHigh16s(sum, t), correction);
}

inline void InverseColumns(Vec* r) {
    const Vec s = MulHighOfSum(r[1], r[7], Scale(0));
    const Vec a = Sub16(s, MulHigh16s(r[7], Scale(4))), b = Sub16(MulHigh16s(r[1], Scale(5)), s);
    const Vec t = MulHighOfSum(r[3], r[5], Scale(1));
    const Vec c = Sub16(t, MulHigh16s(r[5], Scale(6))), d = Sub16(t, MulHigh16s(r[3], Scale(7)));
    const Vec e = Add16(a, c), f = Add16(d, b);
    const Vec g = MulHigh(Twice(Add16(Sub16(Sub16(b, d), c), a)), 23170);
    const Vec h = MulHigh(Twice(Add16(Sub16(Sub16(d, c), b), a)), 23170);
    const Vec m = MulHigh16s(Add16(r[0], r[4]), Scale(8)), n = MulHigh16s(Sub16(r[0], r[4]), Scale(8));
    const Vec w = MulHighOfSum(r[2], r[6], Scale(9));
    const Vec x = Sub16(w, MulHigh16s(r[6], Scale(11))), y = Sub16(MulHigh16s(r[2], Scale(12)), w);
    const Vec P = Add16(m, x), Q = Add16(n, y), R = Sub16(n, y), S = Sub16(m, x);
    r[0] = Add16(e, P);
    r[1] = Add16(g, Q);
    r[2] = Add16(h, R);
    r[3] = Add16(S, f);
    r[4] = Sub16(S, f);
    r[5] = Sub16(R, h);
    r[6] = Sub16(Q, g);
    r[7] = Sub16(P, e);
}

// Registers hold columns here.
inline void InverseRows(Vec* x) {
    const Vec a = Add16(x[3], MulHigh(Twice(x[5]), 21895)), b = Sub16(x[5], MulHigh(Twice(x[3]), 21895));
    const Vec c = Add16(x[1], MulHigh(x[7], 13036)), d = Sub16(MulHigh(x[1], 13036), x[7]);
    const Vec e = Add16(c, a), f = Add16(b, d);
    const Vec g = MulHigh(Twice(Add16(Sub16(Sub16(d, b), a), c)), 23170);
    const Vec h = MulHigh(Twice(Add16(Sub16(Sub16(b, a), d), c)), 23170);
    const Vec m = Add16(x[0], x[4]), n = Sub16(x[0], x[4]);
    const Vec p = Add16(x[2], MulHigh(x[6], 27146)), q = Sub16(MulHigh(x[2], 27146), x[6]);
    const Vec P = Add16(n, q), Q = Sub16(n, q), mp = Add16(m, p), mq = Sub16(m, p);
    x[0] = Add16(mp, e);
    x[7] = Sub16(mp, e);
    x[1] = Add16(g, P);
    x[6] = Sub16(P, g);
    x[2] = Add16(Q, h);
    x[5] = Sub16(Q, h);
    x[3] = Add16(mq, f);
    x[4] = Sub16(mq, f);
}

// (v + 16) >> 5 in more than 16 bits.
inline Vec Rounded(Vec v) { return ShiftRight16s<1>(Add16(ShiftRight16s<4>(v), Set16(1))); }

inline void FullInverse(std::int16_t* block, std::size_t step) {
    Vec v[8];
    for (int i = 0; i < 8; ++i) v[i] = ShiftLeft16<4>(LoadRow(block, i, step));
    InverseColumns(v);
    for (Vec& row : v) row = Twice(row);
    Transpose(v);
    InverseRows(v);
    Transpose(v);
    for (int i = 0; i < 8; ++i) StoreRow(block, i, step, Rounded(v[i]));
}

// What the values of the top left corner are scaled by: those outside its triangle, which ten scan positions do not
// reach, stay.
constexpr std::int16_t kTriangle[4][8] = {{16, 16, 16, 16}, {16, 16, 16, 1}, {16, 16, 1, 1}, {16, 1, 1, 1}};

inline void ShortInverse(std::int16_t* block, std::size_t step) {
    Vec v[4];
    for (int i = 0; i < 4; ++i) v[i] = MulLow16(LoadRow(block, i, step), Repeat128(kTriangle[i]));
    // Four rows of four values to four columns.
    const Vec t0 = UnpackLow16(v[0], v[1]), t1 = UnpackLow16(v[2], v[3]);
    const Vec low = UnpackLow32(t0, t1), high = UnpackHigh32(t0, t1);
    const Vec x0 = low, x1 = UnpackHigh64(low, low), x2 = high, x3 = UnpackHigh64(high, high);

    const Vec a = MulHigh16s(x1, Scale(0)), b = MulHigh16s(x3, Scale(1));
    const Vec c = MulHigh16s(x3, Scale(2)), d = MulHigh16s(x1, Scale(3));
    const Vec g = MulHigh(Twice(Add16(Sub16(Add16(d, c), b), a)), 23170);
    const Vec h = MulHigh(Twice(Sub16(Sub16(Sub16(a, c), b), d)), 23170);
    const Vec m = MulHigh16s(x0, Scale(8)), p = MulHigh16s(x2, Scale(9)), q = MulHigh16s(x2, Scale(10));
    const Vec ab = Add16(a, b), dc = Sub16(d, c);
    const Vec mp = Add16(m, p), mq = Add16(m, q), mMinusQ = Sub16(m, q), mMinusP = Sub16(m, p);
    const Vec o0 = Add16(mp, ab), o7 = Sub16(mp, ab), o1 = Add16(g, mq), o6 = Sub16(mq, g);
    const Vec o2 = Add16(h, mMinusQ), o5 = Sub16(mMinusQ, h), o3 = Add16(mMinusP, dc), o4 = Sub16(mMinusP, dc);

    // Eight columns of four values to four rows.
    const Vec w0 = UnpackLow16(o0, o1), w1 = UnpackLow16(o2, o3), w2 = UnpackLow16(o4, o5), w3 = UnpackLow16(o6, o7);
    const Vec z0 = UnpackLow32(w0, w1), z1 = UnpackHigh32(w0, w1), z2 = UnpackLow32(w2, w3), z3 = UnpackHigh32(w2, w3);
    const Vec y0 = Twice(UnpackLow64(z0, z2)), y1 = Twice(UnpackHigh64(z0, z2));
    const Vec y2 = Twice(UnpackLow64(z1, z3)), y3 = Twice(UnpackHigh64(z1, z3));

    const Vec j = MulHigh(Twice(y3), 21895), k = MulHigh(y1, 13036), l = MulHigh(y2, 27146);
    const Vec u = MulHigh(Twice(Add16(Sub16(Add16(j, k), y3), y1)), 23170);
    const Vec t = MulHigh(Twice(Sub16(Sub16(Sub16(y1, j), y3), k)), 23170);
    const Vec even = Add16(y0, y2), odd = Add16(y1, y3), minus = Sub16(y0, y2), kj = Sub16(k, j);
    const Vec plusL = Add16(y0, l), minusL = Sub16(y0, l);
    StoreRow(block, 0, step, Rounded(Add16(even, odd)));
    StoreRow(block, 7, step, Rounded(Sub16(even, odd)));
    StoreRow(block, 1, step, Rounded(Add16(u, plusL)));
    StoreRow(block, 6, step, Rounded(Sub16(plusL, u)));
    StoreRow(block, 2, step, Rounded(Add16(t, minusL)));
    StoreRow(block, 5, step, Rounded(Sub16(minusL, t)));
    StoreRow(block, 3, step, Rounded(Add16(minus, kj)));
    StoreRow(block, 4, step, Rounded(Sub16(minus, kj)));
}

inline void FlatInverse(std::int16_t* block) {
    const Vec value = Set16((block[0] + 4) >> 3);
    for (std::size_t i = 0; i < kBlockValues; i += kVecBytes / sizeof *block) Store(block + i, value);
}

// 0, 1 and 2: flat, short and full.
inline int PathOf(unsigned count) { return (count >= 2) + (count > 10); }

inline void InverseOnPath(std::int16_t* block, int path, std::size_t step) {
    if (path == 2)
        FullInverse(block, step);
    else
        ShortInverse(block, step);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::FDCTBlocks(std::int16_t* blocks, std::size_t count) { ForwardBlocks<true>(blocks, count); }
void PIXMORPH_SIMD::FDCTRows(std::int16_t* blocks, std::size_t count) { ForwardBlocks<false>(blocks, count); }

void PIXMORPH_SIMD::InverseDCT(std::int16_t* block, unsigned count, unsigned bits) {
    if (bits != 0) return plain::InverseDCT(block, count, bits);
    const int path = PathOf(count);
    if (path == 0) return FlatInverse(block);
    InverseOnPath(block, path, 0);
}

void PIXMORPH_SIMD::InverseDCTBlocks(std::int16_t* blocks, const std::uint8_t* counts, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, blocks += kBlockValues) {
        const int path = PathOf(counts[i]);
        if (path == 0) {
            FlatInverse(blocks);
        } else if (kVecLanes == 2 && i + 1 < count && PathOf(counts[i + 1]) == path) {
            InverseOnPath(blocks, path, kBlockValues);
            blocks += kBlockValues;
            ++i;
        } else {
            InverseOnPath(blocks, path, 0);
        }
    }
}

void PIXMORPH_SIMD::DequantiseBlocks(std::int16_t* blocks, const std::int16_t* table, std::size_t count) {
    for (; count > 0; --count, blocks += kBlockValues)
        for (std::size_t i = 0; i < kBlockValues; i += kVecBytes / sizeof *blocks)
            Store(blocks + i, MulLow16(Load(blocks + i), Load(table + i)));
}

std::uint64_t PIXMORPH_SIMD::QuantiseToScan(std::int16_t* levels, const std::int16_t* block,
                                            const std::int16_t* reciprocals) {
    constexpr std::size_t kValues = kVecBytes / sizeof *levels;
    Vec v[kBlockValues / kValues];
    for (std::size_t i = 0; i < kBlockValues / kValues; ++i) {
        v[i] = MulHighRound16(Load(block + kValues * i), Load(reciprocals + kValues * i));
        Store(levels + kValues * i, v[i]);
    }
    return ScanMaskOf(NonZeroBits(v));
}

unsigned PIXMORPH_SIMD::QuantiseBlock(std::int16_t* levels, const std::int16_t* block,
                                      const std::int16_t* reciprocals) {
    const std::uint64_t mask = QuantiseToScan(levels, block, reciprocals);
    return mask == 0 ? 0 : 64 - static_cast<unsigned>(__builtin_clzll(mask));
}

}  // namespace KorvaneSoftware
