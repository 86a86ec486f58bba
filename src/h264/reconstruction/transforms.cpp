#include "h264/reconstruction/transforms.h"

#include "h264/reconstruction/x86/transform_forms.h"

namespace KorvaneSoftware {
namespace {

// A number of 16 or 32 bits that wraps.
template <class Integer>
struct TWrapping {
    Integer value;

    constexpr TWrapping() : value(0) {}
    constexpr explicit TWrapping(std::uint32_t bits) : value(static_cast<Integer>(bits)) {}
    constexpr std::uint32_t Bits() const { return static_cast<std::uint32_t>(value); }
    friend constexpr TWrapping operator+(TWrapping a, TWrapping b) { return TWrapping(a.Bits() + b.Bits()); }
    friend constexpr TWrapping operator-(TWrapping a, TWrapping b) { return TWrapping(a.Bits() - b.Bits()); }
    friend constexpr TWrapping operator>>(TWrapping a, int count) {
        return TWrapping(static_cast<std::uint32_t>(a.value >> count));
    }
};

template <class Word>
void Transform4(Word* v, std::size_t step) {
    const Word e0 = v[0] + v[2 * step], e1 = v[0] - v[2 * step];
    const Word e2 = (v[step] >> 1) - v[3 * step], e3 = v[step] + (v[3 * step] >> 1);
    v[0] = e0 + e3;
    v[step] = e1 + e2;
    v[2 * step] = e1 - e2;
    v[3 * step] = e0 - e3;
}

template <class Word>
void Transform8(Word* v, std::size_t step) {
    const Word v0 = v[0], v1 = v[step], v2 = v[2 * step], v3 = v[3 * step];
    const Word v4 = v[4 * step], v5 = v[5 * step], v6 = v[6 * step], v7 = v[7 * step];
    const Word e0 = v0 + v4, e2 = v0 - v4, e4 = (v2 >> 1) - v6, e6 = v2 + (v6 >> 1);
    const Word e1 = v5 - v3 - v7 - (v7 >> 1), e3 = v1 + v7 - v3 - (v3 >> 1);
    const Word e5 = v7 - v1 + v5 + (v5 >> 1), e7 = v3 + v5 + v1 + (v1 >> 1);
    const Word f0 = e0 + e6, f2 = e2 + e4, f4 = e2 - e4, f6 = e0 - e6;
    const Word f1 = e1 + (e7 >> 2), f3 = e3 + (e5 >> 2), f5 = (e3 >> 2) - e5, f7 = e7 - (e1 >> 2);
    v[0] = f0 + f7;
    v[step] = f2 + f5;
    v[2 * step] = f4 + f3;
    v[3 * step] = f6 + f1;
    v[4 * step] = f6 - f1;
    v[5 * step] = f4 - f3;
    v[6 * step] = f2 - f5;
    v[7 * step] = f0 - f7;
}

template <std::size_t kSize, class Sample, class Coefficient>
void AddResidual(Sample* samples, std::ptrdiff_t stride, const Coefficient* coefficients, std::uint32_t bitDepth) {
    using Word = TWrapping<Coefficient>;
    constexpr auto kTransform = kSize == 4 ? Transform4<Word> : Transform8<Word>;
    const int maxSample = TH264SampleType<Sample>::MaxSample(bitDepth);
    Word block[kSize * kSize];
    for (std::size_t i = 0; i < kSize * kSize; ++i) block[i].value = coefficients[i];
    for (std::size_t y = 0; y < kSize; ++y) kTransform(block + y * kSize, 1);
    for (std::size_t x = 0; x < kSize; ++x) kTransform(block + x, kSize);
    for (std::size_t y = 0; y < kSize; ++y, samples += stride)
        for (std::size_t x = 0; x < kSize; ++x)
            samples[x] = ClipH264Sample<Sample>(samples[x] + ((block[y * kSize + x] + Word(32)) >> 6).value, maxSample);
}

template <std::size_t kSize, class Sample, class Coefficient>
void AddDc(Sample* samples, std::ptrdiff_t stride, const Coefficient* coefficients, std::uint32_t bitDepth) {
    using Word = TWrapping<Coefficient>;
    const int maxSample = TH264SampleType<Sample>::MaxSample(bitDepth);
    Word dc;
    dc.value = *coefficients;
    const int residual = ((dc + Word(32)) >> 6).value;
    for (std::size_t y = 0; y < kSize; ++y, samples += stride)
        for (std::size_t x = 0; x < kSize; ++x) samples[x] = ClipH264Sample<Sample>(samples[x] + residual, maxSample);
}

using Wide = TWrapping<std::int32_t>;

void Hadamard4(Wide* v, std::size_t step) {
    const Wide e0 = v[0] + v[step], e1 = v[0] - v[step];
    const Wide e2 = v[2 * step] + v[3 * step], e3 = v[2 * step] - v[3 * step];
    v[0] = e0 + e2;
    v[step] = e0 - e2;
    v[2 * step] = e1 - e3;
    v[3 * step] = e1 + e3;
}

void Hadamard2(Wide* v, std::size_t step) {
    const Wide first = v[0], second = v[step];
    v[0] = first + second;
    v[step] = first - second;
}

// Dequantises a sum that has a gain of 4 bits more than its block's AC coefficients.
Wide ScaleDc(Wide sum, int levelScale, int qp) {
    const Wide product(sum.Bits() * static_cast<std::uint32_t>(levelScale));
    if (qp >= 36) return Wide(product.Bits() << (qp / 6 - 6));
    return (product + Wide(1u << (5 - qp / 6))) >> (6 - qp / 6);
}

template <class Coefficient>
void LumaDc(Coefficient* coefficients, int levelScale, int qp) {
    Wide block[16];
    for (int i = 0; i < 16; ++i) block[i].value = coefficients[i];
    for (int i = 0; i < 4; ++i) Hadamard4(block + 4 * i, 1);
    for (int i = 0; i < 4; ++i) Hadamard4(block + i, 4);
    for (int i = 0; i < 16; ++i) coefficients[i] = static_cast<Coefficient>(ScaleDc(block[i], levelScale, qp).value);
}

template <class Coefficient>
void ChromaDc2x2(Coefficient* coefficients, int levelScale, int qp) {
    Wide block[4];
    for (int i = 0; i < 4; ++i) block[i].value = coefficients[i];
    for (int i = 0; i < 2; ++i) Hadamard2(block + 2 * i, 1);
    for (int i = 0; i < 2; ++i) Hadamard2(block + i, 2);
    for (int i = 0; i < 4; ++i) {
        const std::uint32_t scaled = block[i].Bits() * static_cast<std::uint32_t>(levelScale) << (qp / 6);
        coefficients[i] = static_cast<Coefficient>((Wide(scaled) >> 5).value);
    }
}

template <class Coefficient>
void ChromaDc2x4(Coefficient* coefficients, int levelScale, int qp) {
    Wide block[8];
    for (int i = 0; i < 8; ++i) block[i].value = coefficients[i];
    for (int i = 0; i < 4; ++i) Hadamard2(block + 2 * i, 1);
    for (int i = 0; i < 2; ++i) Hadamard4(block + i, 2);
    for (int i = 0; i < 8; ++i) coefficients[i] = static_cast<Coefficient>(ScaleDc(block[i], levelScale, qp).value);
}

}  // namespace

void plain::H264Add4x4Bytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                            std::uint32_t bitDepth) {
    AddResidual<4>(samples, stride, coefficients, bitDepth);
}
void plain::H264Add8x8Bytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                            std::uint32_t bitDepth) {
    AddResidual<8>(samples, stride, coefficients, bitDepth);
}
void plain::H264Add4x4DcBytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                              std::uint32_t bitDepth) {
    AddDc<4>(samples, stride, coefficients, bitDepth);
}
void plain::H264Add8x8DcBytes(std::uint8_t* samples, std::ptrdiff_t stride, const std::int16_t* coefficients,
                              std::uint32_t bitDepth) {
    AddDc<8>(samples, stride, coefficients, bitDepth);
}
void plain::H264Add4x4Words(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                            std::uint32_t bitDepth) {
    AddResidual<4>(samples, stride, coefficients, bitDepth);
}
void plain::H264Add8x8Words(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                            std::uint32_t bitDepth) {
    AddResidual<8>(samples, stride, coefficients, bitDepth);
}
void plain::H264Add4x4DcWords(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                              std::uint32_t bitDepth) {
    AddDc<4>(samples, stride, coefficients, bitDepth);
}
void plain::H264Add8x8DcWords(std::uint16_t* samples, std::ptrdiff_t stride, const std::int32_t* coefficients,
                              std::uint32_t bitDepth) {
    AddDc<8>(samples, stride, coefficients, bitDepth);
}

void plain::H264LumaDcBytes(std::int16_t* coefficients, int levelScale, int qp) {
    LumaDc(coefficients, levelScale, qp);
}
void plain::H264ChromaDc2x2Bytes(std::int16_t* coefficients, int levelScale, int qp) {
    ChromaDc2x2(coefficients, levelScale, qp);
}
void plain::H264ChromaDc2x4Bytes(std::int16_t* coefficients, int levelScale, int qp) {
    ChromaDc2x4(coefficients, levelScale, qp);
}
void plain::H264LumaDcWords(std::int32_t* coefficients, int levelScale, int qp) {
    LumaDc(coefficients, levelScale, qp);
}
void plain::H264ChromaDc2x2Words(std::int32_t* coefficients, int levelScale, int qp) {
    ChromaDc2x2(coefficients, levelScale, qp);
}
void plain::H264ChromaDc2x4Words(std::int32_t* coefficients, int levelScale, int qp) {
    ChromaDc2x4(coefficients, levelScale, qp);
}

PIXMORPH_SLOT(DispatchSlot<H264AddResidualBytes>, H264Add4x4Bytes, plain::H264Add4x4Bytes, simd_sse41::H264Add4x4Bytes,
              nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264AddResidualBytes>, H264Add8x8Bytes, plain::H264Add8x8Bytes, simd_sse41::H264Add8x8Bytes,
              nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264AddResidualBytes>, H264Add4x4DcBytes, plain::H264Add4x4DcBytes,
              simd_sse41::H264Add4x4DcBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264AddResidualBytes>, H264Add8x8DcBytes, plain::H264Add8x8DcBytes,
              simd_sse41::H264Add8x8DcBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264AddResidualWords>, H264Add4x4Words, plain::H264Add4x4Words, simd_sse41::H264Add4x4Words,
              nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264AddResidualWords>, H264Add8x8Words, plain::H264Add8x8Words, simd_sse41::H264Add8x8Words,
              nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264AddResidualWords>, H264Add4x4DcWords, plain::H264Add4x4DcWords,
              simd_sse41::H264Add4x4DcWords, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264AddResidualWords>, H264Add8x8DcWords, plain::H264Add8x8DcWords,
              simd_sse41::H264Add8x8DcWords, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264TransformDcBytes>, H264LumaDcBytes, plain::H264LumaDcBytes, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264TransformDcBytes>, H264ChromaDc2x2Bytes, plain::H264ChromaDc2x2Bytes, nullptr, nullptr,
              nullptr);
PIXMORPH_SLOT(DispatchSlot<H264TransformDcBytes>, H264ChromaDc2x4Bytes, plain::H264ChromaDc2x4Bytes, nullptr, nullptr,
              nullptr);
PIXMORPH_SLOT(DispatchSlot<H264TransformDcWords>, H264LumaDcWords, plain::H264LumaDcWords, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264TransformDcWords>, H264ChromaDc2x2Words, plain::H264ChromaDc2x2Words, nullptr, nullptr,
              nullptr);
PIXMORPH_SLOT(DispatchSlot<H264TransformDcWords>, H264ChromaDc2x4Words, plain::H264ChromaDc2x4Words, nullptr, nullptr,
              nullptr);

}  // namespace KorvaneSoftware
