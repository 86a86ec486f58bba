// Blocks are too narrow for wider registers: a row of 8 sums of 16 bits fills one.
#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/transform_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "foundation/simd/transpose_words.inc.h"

// Lanes of 16 bits: operations of the transforms for bytes.
struct Sums16 {
    Vec v;
    friend Sums16 operator+(Sums16 a, Sums16 b) { return {Add16(a.v, b.v)}; }
    friend Sums16 operator-(Sums16 a, Sums16 b) { return {Sub16(a.v, b.v)}; }
    template <int N>
    Sums16 Shifted() const {
        return {ShiftRight16s<N>(v)};
    }
};

// Lanes of 32 bits, for words.
struct Sums32 {
    Vec v;
    friend Sums32 operator+(Sums32 a, Sums32 b) { return {Add32(a.v, b.v)}; }
    friend Sums32 operator-(Sums32 a, Sums32 b) { return {Sub32(a.v, b.v)}; }
    template <int N>
    Sums32 Shifted() const {
        return {ShiftRight32s<N>(v)};
    }
};

template <class Sums>
void Transform4(Sums* v) {
    const Sums e0 = v[0] + v[2], e1 = v[0] - v[2];
    const Sums e2 = v[1].template Shifted<1>() - v[3], e3 = v[1] + v[3].template Shifted<1>();
    v[0] = e0 + e3;
    v[1] = e1 + e2;
    v[2] = e1 - e2;
    v[3] = e0 - e3;
}

template <class Sums>
void Transform8(Sums* v) {
    const Sums e0 = v[0] + v[4], e2 = v[0] - v[4];
    const Sums e4 = v[2].template Shifted<1>() - v[6], e6 = v[2] + v[6].template Shifted<1>();
    const Sums e1 = v[5] - v[3] - v[7] - v[7].template Shifted<1>();
    const Sums e3 = v[1] + v[7] - v[3] - v[3].template Shifted<1>();
    const Sums e5 = v[7] - v[1] + v[5] + v[5].template Shifted<1>();
    const Sums e7 = v[3] + v[5] + v[1] + v[1].template Shifted<1>();
    const Sums f0 = e0 + e6, f2 = e2 + e4, f4 = e2 - e4, f6 = e0 - e6;
    const Sums f1 = e1 + e7.template Shifted<2>(), f3 = e3 + e5.template Shifted<2>();
    const Sums f5 = e3.template Shifted<2>() - e5, f7 = e7 - e1.template Shifted<2>();
    v[0] = f0 + f7;
    v[1] = f2 + f5;
    v[2] = f4 + f3;
    v[3] = f6 + f1;
    v[4] = f6 - f1;
    v[5] = f4 - f3;
    v[6] = f2 - f5;
    v[7] = f0 - f7;
}

void Transpose4(Sums32* v) {
    const Vec a = UnpackLow32(v[0].v, v[1].v), b = UnpackHigh32(v[0].v, v[1].v);
    const Vec c = UnpackLow32(v[2].v, v[3].v), d = UnpackHigh32(v[2].v, v[3].v);
    v[0].v = UnpackLow64(a, c);
    v[1].v = UnpackHigh64(a, c);
    v[2].v = UnpackLow64(b, d);
    v[3].v = UnpackHigh64(b, d);
}

Vec LoadFourBytes(const std::uint8_t* p) {
    int bytes;
    __builtin_memcpy(&bytes, p, sizeof(bytes));
    return {_mm_cvtepu8_epi16(_mm_cvtsi32_si128(bytes))};
}
void StoreFourBytes(std::uint8_t* p, Vec words) {
    const int bytes = _mm_cvtsi128_si32(Pack16To8u(words, words).v);
    __builtin_memcpy(p, &bytes, sizeof(bytes));
}

// Four samples of 16 bits and their residuals. The sum is clipped in 32 bits.
void AddFourWords(std::uint16_t* samples, Sums32 residual, Vec maxSample) {
    const Vec before = {_mm_cvtepu16_epi32(LoadHalf(samples).v)};
    StoreNarrow32To16(samples, Min32s(Add32(before, residual.v), maxSample));
}

// One residual for all samples: bytes take what is above zero with saturation, and lose what is below.
struct DcOfBytes {
    Vec above, below;

    explicit DcOfBytes(std::int16_t coefficient) {
        const Vec residual = ShiftRight16s<6>(Add16(Set16(coefficient), Set16(32)));
        above = Pack16To8u(residual, residual);
        const Vec negative = Sub16(Zero(), residual);
        below = Pack16To8u(negative, negative);
    }
    Vec AddedTo(Vec samples) const { return {_mm_subs_epu8(_mm_adds_epu8(samples.v, above.v), below.v)}; }
};

// Words are no deeper than 14 bits, so that the sum with a residual that is no more than them stays within 16.
struct DcOfWords {
    Vec residual, maxSample;

    DcOfWords(std::int32_t coefficient, std::uint32_t bitDepth) : maxSample(Set16((1 << bitDepth) - 1)) {
        const Vec top = Set32((1 << bitDepth) - 1);
        const Vec wide = ShiftRight32s<6>(Add32(Set32(coefficient), Set32(32)));
        const Vec clipped = Min32s(Max32s(wide, Sub32(Zero(), top)), top);
        residual = Pack32To16s(clipped, clipped);
    }
    Vec AddedTo(Vec samples) const { return Min16s(Max16s(Add16(samples, residual), Zero()), maxSample); }
};

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::H264Add4x4Bytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                                    std::uint32_t) {
    Sums16 v[4];
    for (int i = 0; i < 4; ++i) v[i].v = LoadHalf(coefficients + 4 * i);
    for (int pass = 0; pass < 2; ++pass) {
        // Columns become rows, then the registers' sums are those of rows, and the other way round.
        const Vec a = UnpackLow16(v[0].v, v[1].v), b = UnpackLow16(v[2].v, v[3].v);
        const Vec low = UnpackLow32(a, b), high = UnpackHigh32(a, b);
        v[0].v = low;
        v[1].v = UnpackHigh64(low, low);
        v[2].v = high;
        v[3].v = UnpackHigh64(high, high);
        Transform4(v);
    }
    const Sums16 round = {Set16(32)};
    for (int y = 0; y < 4; ++y, samples += stride)
        StoreFourBytes(samples, Add16(LoadFourBytes(samples), (v[y] + round).Shifted<6>().v));
}

void PIXMORPH_SIMD::H264Add8x8Bytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                                    std::uint32_t) {
    Sums16 v[8];
    for (int i = 0; i < 8; ++i) v[i].v = Load(coefficients + 8 * i);
    for (int pass = 0; pass < 2; ++pass) {
        Vec rows[8];
        for (int i = 0; i < 8; ++i) rows[i] = v[i].v;
        TransposeWords(rows);
        for (int i = 0; i < 8; ++i) v[i].v = rows[i];
        Transform8(v);
    }
    const Sums16 round = {Set16(32)};
    for (int y = 0; y < 8; ++y, samples += stride)
        StoreNarrow16To8(samples, Add16(LoadWiden8(samples), (v[y] + round).Shifted<6>().v));
}

void PIXMORPH_SIMD::H264Add4x4Words(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                                    std::uint32_t bitDepth) {
    Sums32 v[4];
    for (int i = 0; i < 4; ++i) v[i].v = Load(coefficients + 4 * i);
    for (int pass = 0; pass < 2; ++pass) {
        Transpose4(v);
        Transform4(v);
    }
    const Sums32 round = {Set32(32)};
    const Vec maxSample = Set32((1 << bitDepth) - 1);
    for (int y = 0; y < 4; ++y, samples += stride) AddFourWords(samples, (v[y] + round).Shifted<6>(), maxSample);
}

void PIXMORPH_SIMD::H264Add8x8Words(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                                    std::uint32_t bitDepth) {
    // Four rows at a time, transposed, then four columns.
    Sums32 rows[2][8];
    for (int half = 0; half < 2; ++half) {
        Sums32* const v = rows[half];
        for (int part = 0; part < 2; ++part) {
            for (int i = 0; i < 4; ++i) v[4 * part + i].v = Load(coefficients + 8 * (4 * half + i) + 4 * part);
            Transpose4(v + 4 * part);
        }
        Transform8(v);
    }
    const Sums32 round = {Set32(32)};
    const Vec maxSample = Set32((1 << bitDepth) - 1);
    for (int part = 0; part < 2; ++part) {
        Sums32 v[8];
        for (int half = 0; half < 2; ++half) {
            for (int i = 0; i < 4; ++i) v[4 * half + i] = rows[half][4 * part + i];
            Transpose4(v + 4 * half);
        }
        Transform8(v);
        std::uint16_t* row = samples + 4 * part;
        for (int y = 0; y < 8; ++y, row += stride) AddFourWords(row, (v[y] + round).Shifted<6>(), maxSample);
    }
}

void PIXMORPH_SIMD::H264Add4x4DcBytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                                      std::uint32_t) {
    const DcOfBytes dc(*coefficients);
    for (int y = 0; y < 4; ++y, samples += stride) {
        int bytes;
        __builtin_memcpy(&bytes, samples, sizeof(bytes));
        bytes = _mm_cvtsi128_si32(dc.AddedTo({_mm_cvtsi32_si128(bytes)}).v);
        __builtin_memcpy(samples, &bytes, sizeof(bytes));
    }
}

void PIXMORPH_SIMD::H264Add8x8DcBytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                                      std::uint32_t) {
    const DcOfBytes dc(*coefficients);
    for (int y = 0; y < 8; ++y, samples += stride) StoreHalf(samples, dc.AddedTo(LoadHalf(samples)));
}

void PIXMORPH_SIMD::H264Add4x4DcWords(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                                      std::uint32_t bitDepth) {
    const DcOfWords dc(*coefficients, bitDepth);
    for (int y = 0; y < 4; ++y, samples += stride) StoreHalf(samples, dc.AddedTo(LoadHalf(samples)));
}

void PIXMORPH_SIMD::H264Add8x8DcWords(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                                      std::uint32_t bitDepth) {
    const DcOfWords dc(*coefficients, bitDepth);
    for (int y = 0; y < 8; ++y, samples += stride) Store(samples, dc.AddedTo(Load(samples)));
}

}  // namespace KorvaneSoftware
