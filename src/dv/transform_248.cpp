// The 2-4-8 transform of IEC 61834-2: four-point transforms of the sums and of the differences of line pairs, then the
// rows as in an 8-8 block.
#include "dv/x86/dv_kernel_forms.h"

namespace KorvaneSoftware {

namespace {

std::int16_t Cut(int x) { return static_cast<std::int16_t>(x); }

int MulHigh(int x, int k) { return Cut(x) * k >> 16; }

// Four-point transform down a column of `v`, from values of which each is the sum or difference of two lines.
void TransformQuarter(std::int16_t* v, int a, int b, int c, int d) {
    v[0] = Cut(MulHigh((a + d) + 1 + (b + c), 23170));
    v[8] = Cut(MulHigh((a - d) + (b - c), 30274) - MulHigh(b - c, 17734));
    v[16] = Cut(MulHigh((a + d) - (b + c) + 1, 23170));
    v[24] = Cut(MulHigh(a - d, 42814) - MulHigh((a - d) + (b - c), 30274));
}

// The inverse works with factors of 15 bits and keeps 6 fractional bits between its passes. Overflow of its sums, which
// damaged data alone can bring, wraps; what passes 16 bits between the passes is limited.
constexpr int kBetween = 6;

// cos(k pi / 16) / 2 in 15 bits.
constexpr int kC1 = 16069, kC2 = 15137, kC3 = 13623, kC4 = 11585, kC5 = 9102, kC6 = 6270, kC7 = 3196;

std::uint32_t Product(int x, int k) { return static_cast<std::uint32_t>(x * k); }
int Signed(std::uint32_t x) { return static_cast<int>(x); }

std::int16_t Limit(int x) { return static_cast<std::int16_t>(x < -32768 ? -32768 : x > 32767 ? 32767 : x); }

std::int16_t BetweenPasses(std::uint32_t sum) {
    constexpr int kShift = 15 - kBetween;
    return Limit(Signed(sum + (1u << (kShift - 1))) >> kShift);
}

std::int16_t Sample(std::uint32_t sum) {
    constexpr int kShift = 15 + kBetween;
    return Limit(Signed(sum + (1u << (kShift - 1))) >> kShift);
}

struct Quarter {
    std::uint32_t value[4];
};

Quarter InvertQuarter(const std::int16_t* v) {
    const std::uint32_t e = Product(v[0], kC4) + Product(v[16], kC4);
    const std::uint32_t f = Product(v[0], kC4) - Product(v[16], kC4);
    const std::uint32_t g = Product(v[8], kC2) + Product(v[24], kC6);
    const std::uint32_t h = Product(v[8], kC6) - Product(v[24], kC2);
    return {{e + g, f + h, f - h, e - g}};
}

void InvertColumn(std::int16_t* v) {
    const Quarter sums = InvertQuarter(v);
    const Quarter differences = InvertQuarter(v + 32);
    for (int pair = 0; pair < 4; ++pair) {
        v[16 * pair] = BetweenPasses(sums.value[pair] + differences.value[pair]);
        v[16 * pair + 8] = BetweenPasses(sums.value[pair] - differences.value[pair]);
    }
}

void InvertRow(std::int16_t* v) {
    const int x0 = v[0], x1 = v[1], x2 = v[2], x3 = v[3], x4 = v[4], x5 = v[5], x6 = v[6], x7 = v[7];
    const std::uint32_t e = Product(x0, kC4) + Product(x4, kC4), f = Product(x0, kC4) - Product(x4, kC4);
    const std::uint32_t g = Product(x2, kC2) + Product(x6, kC6), h = Product(x2, kC6) - Product(x6, kC2);
    const std::uint32_t even[4] = {e + g, f + h, f - h, e - g};
    const std::uint32_t odd[4] = {
        Product(x1, kC1) + Product(x3, kC3) + Product(x5, kC5) + Product(x7, kC7),
        Product(x1, kC3) - Product(x3, kC7) - Product(x5, kC1) - Product(x7, kC5),
        Product(x1, kC5) - Product(x3, kC1) + Product(x5, kC7) + Product(x7, kC3),
        Product(x1, kC7) - Product(x3, kC5) + Product(x5, kC3) - Product(x7, kC1),
    };
    for (int i = 0; i < 4; ++i) {
        v[i] = Sample(even[i] + odd[i]);
        v[7 - i] = Sample(even[i] - odd[i]);
    }
}

}  // namespace

void plain::FDCT248Columns(std::int16_t* blocks, const std::int16_t* samples, std::size_t count) {
    for (; count-- > 0; blocks += kDvBlockValues, samples += kDvBlockValues)
        for (int column = 0; column < 8; ++column) {
            const std::int16_t* const r = samples + column;
            const auto sum = [r](int pair) { return (r[16 * pair] + r[16 * pair + 8]) * 16; };
            const auto difference = [r](int pair) { return (r[16 * pair] - r[16 * pair + 8]) * 16; };
            TransformQuarter(blocks + column, sum(0), sum(1), sum(2), sum(3));
            TransformQuarter(blocks + column + 32, difference(0), difference(1), difference(2), difference(3));
        }
}

void plain::InverseDCT248(std::int16_t* block, unsigned count) {
    if (count < 2) {
        const std::int16_t value = Cut((block[0] + 4) >> 3);
        for (std::size_t i = 0; i < kDvBlockValues; ++i) block[i] = value;
        return;
    }
    for (int column = 0; column < 8; ++column) InvertColumn(block + column);
    for (int row = 0; row < 8; ++row) InvertRow(block + 8 * row);
}

PIXMORPH_SLOT(DispatchSlot<Dv248ColumnsSignature>, FDCT248Columns, plain::FDCT248Columns, simd_sse41::FDCT248Columns,
              simd_avx2::FDCT248Columns, simd_avx512::FDCT248Columns);
PIXMORPH_SLOT(DispatchSlot<DvInverse248Signature>, InverseDCT248, plain::InverseDCT248, simd_sse41::InverseDCT248,
              nullptr, nullptr);

}  // namespace KorvaneSoftware
