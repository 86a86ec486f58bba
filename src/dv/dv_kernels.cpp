#include "dv/dv_kernels.h"

#include <algorithm>
#include <cstdlib>

#include "dv/x86/dv_kernel_forms.h"

namespace KorvaneSoftware {

namespace {

std::int16_t Cut(int x) { return static_cast<std::int16_t>(x); }

DvBlockMeasure Measure(const std::int16_t* block) {
    DvBlockMeasure measure{0, 0};
    for (std::size_t i = 0; i < kDvBlockValues; ++i) {
        const auto magnitude = static_cast<std::uint32_t>(std::abs(int{block[i]}));
        measure.activity += magnitude;
        if (i > 0) measure.greatest = std::max(measure.greatest, magnitude);
    }
    return measure;
}

// Stores what a quantiser made of position p.
void PutAmplitude(std::uint8_t* amplitudes, std::uint64_t& mask, std::size_t p, int level) {
    amplitudes[p] = static_cast<std::uint8_t>(std::min(std::abs(level), 255));
    if (p > 0 && level != 0) mask |= std::uint64_t{1} << p;
}

}  // namespace

DvBlockMeasure plain::WeighDvBlock(std::int16_t* block, const std::int16_t* weights) {
    for (std::size_t i = 0; i < kDvBlockValues; ++i) block[i] = Cut((block[i] * weights[i] + 16384) >> 15);
    return Measure(block);
}

DvBlockMeasure plain::WeighHdBlock(std::int16_t* block, const std::int16_t* weights) {
    for (std::size_t i = 0; i < kDvBlockValues; ++i) block[i] = Cut((block[i] * weights[i] + 4096) >> 13);
    return Measure(block);
}

void plain::ScanDvBlock(std::int16_t* coded, const std::int16_t* block, const std::uint8_t* scan) {
    for (std::size_t p = 0; p < kDvBlockValues; ++p) coded[p] = block[scan[p]];
}

std::uint64_t plain::QuantiseDvBlock(std::uint8_t* amplitudes, const std::int16_t* coded,
                                     const std::int16_t* reciprocals) {
    std::uint64_t mask = 0;
    for (std::size_t p = 0; p < kDvBlockValues; ++p)
        PutAmplitude(amplitudes, mask, p, (coded[p] * reciprocals[p] + 16384) >> 15);
    return mask;
}

std::uint64_t plain::QuantiseHdBlock(std::uint8_t* amplitudes, const std::int16_t* coded, unsigned step) {
    const HdDivisor divisor = HdDivisorOf(step);
    std::uint64_t mask = 0;
    for (std::size_t p = 0; p < kDvBlockValues; ++p) {
        const int raised = std::min(coded[p] + divisor.half, 32767);
        PutAmplitude(amplitudes, mask, p, (raised * divisor.multiplier >> 16) >> divisor.shift);
    }
    return mask;
}

void plain::DequantiseDvBlock(std::int16_t* block, const std::int16_t* steps, const std::int16_t* inverseWeights) {
    block[0] = Cut(block[0] * 4);
    for (std::size_t i = 1; i < kDvBlockValues; ++i)
        block[i] = Cut((Cut(block[i] * steps[i]) * inverseWeights[i] + 16384) >> 15);
}

void plain::DequantiseHdBlock(std::int16_t* block, int step, const std::int16_t* weights) {
    block[0] = Cut(block[0] * 4);
    for (std::size_t i = 1; i < kDvBlockValues; ++i) block[i] = Cut((block[i] * weights[i] * step + 16) >> 5);
}

PIXMORPH_SLOT(DispatchSlot<DvWeighSignature>, WeighDvBlock, plain::WeighDvBlock, simd_sse41::WeighDvBlock,
              simd_avx2::WeighDvBlock, simd_avx512::WeighDvBlock);
PIXMORPH_SLOT(DispatchSlot<DvWeighSignature>, WeighHdBlock, plain::WeighHdBlock, simd_sse41::WeighHdBlock,
              simd_avx2::WeighHdBlock, simd_avx512::WeighHdBlock);
PIXMORPH_SLOT(DispatchSlot<DvScanSignature>, ScanDvBlock, plain::ScanDvBlock, nullptr, nullptr,
              simd_avx512::ScanDvBlock);
PIXMORPH_SLOT(DispatchSlot<DvQuantiseSignature>, QuantiseDvBlock, plain::QuantiseDvBlock, simd_sse41::QuantiseDvBlock,
              simd_avx2::QuantiseDvBlock, simd_avx512::QuantiseDvBlock);
PIXMORPH_SLOT(DispatchSlot<DvHdQuantiseSignature>, QuantiseHdBlock, plain::QuantiseHdBlock, simd_sse41::QuantiseHdBlock,
              simd_avx2::QuantiseHdBlock, simd_avx512::QuantiseHdBlock);
PIXMORPH_SLOT(DispatchSlot<DvDequantiseSignature>, DequantiseDvBlock, plain::DequantiseDvBlock,
              simd_sse41::DequantiseDvBlock, simd_avx2::DequantiseDvBlock, simd_avx512::DequantiseDvBlock);
PIXMORPH_SLOT(DispatchSlot<DvHdDequantiseSignature>, DequantiseHdBlock, plain::DequantiseHdBlock,
              simd_sse41::DequantiseHdBlock, simd_avx2::DequantiseHdBlock, simd_avx512::DequantiseHdBlock);

}  // namespace KorvaneSoftware
