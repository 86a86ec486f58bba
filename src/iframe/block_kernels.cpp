#include "iframe/block_kernels.h"

#include "iframe/inverse_transform.h"
#include "iframe/x86/block_kernel_forms.h"

namespace KorvaneSoftware {
namespace {

using namespace iframe;

// Clamped, then rounded half up, then moved down to the level of the pixel kernels.
std::int16_t SampleOf(float value) {
    value = value > 0.0F ? value : 0.0F;
    value = value < 255.0F ? value : 255.0F;
    return static_cast<std::int16_t>(static_cast<int>(value + 0.5F) - 128);
}

void InverseTransform(std::int16_t* samples, std::int16_t* coefficients) {
    float rows[8][8];
    float line[8];
    // Across: the store holds one column of coefficients after the other.
    for (int row = 0; row < 8; ++row) {
        for (int column = 0; column < 8; ++column) {
            const int i = column * 8 + row;
            line[column] = static_cast<float>(coefficients[i]) * kCoefficientFactors.values[i];
            coefficients[i] = 0;
        }
        InversePass(line);
        for (int x = 0; x < 8; ++x) rows[row][x] = line[x];
    }
    for (int x = 0; x < 8; ++x) {
        for (int row = 0; row < 8; ++row) line[row] = rows[row][x];
        InversePass(line);
        for (int y = 0; y < 8; ++y) samples[y * 8 + x] = SampleOf(line[y]);
    }
}

}  // namespace

void plain::IFrameInverseTransform(std::int16_t* samples, std::int16_t* coefficients, std::size_t count) {
    for (std::size_t i = 0; i < count * kBlockLength; i += kBlockLength)
        InverseTransform(samples + i, coefficients + i);
}

PIXMORPH_SLOT(DispatchSlot<IFrameInverseSignature>, IFrameInverseTransform, plain::IFrameInverseTransform,
              simd_sse41::IFrameInverseTransform, simd_avx2::IFrameInverseTransform,
              simd_avx512::IFrameInverseTransform);
}  // namespace KorvaneSoftware
