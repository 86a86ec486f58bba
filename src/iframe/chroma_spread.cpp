#include "iframe/chroma_spread.h"

#include <algorithm>

#include "iframe/macroblock.h"

namespace KorvaneSoftware::iframe {
namespace {

constexpr std::size_t kCb = 2;  // Place in a half; Cr follows.
constexpr std::size_t kHalfLength = kHalfBlocks * kBlockLength;

// Lines 0 to 3 of a block serve the upper half, lines 4 to 7 the lower one.
void DoubleLines(const std::int16_t* block, std::int16_t* upper, std::int16_t* lower) {
    std::int16_t copy[kBlockLength];
    std::copy_n(block, kBlockLength, copy);
    for (std::size_t line = 0; line < 8; ++line) {
        std::copy_n(copy + line / 2 * 8, 8, upper + line * 8);
        std::copy_n(copy + (4 + line / 2) * 8, 8, lower + line * 8);
    }
}

// Each pair of neighbours becomes its mean.
void HalveWidth(std::int16_t* left, const std::int16_t* right) {
    for (std::size_t line = 0; line < kBlockLength; line += 8) {
        for (std::size_t i = 0; i < 4; ++i)
            left[line + i] = static_cast<std::int16_t>((left[line + 2 * i] + left[line + 2 * i + 1] + 1) >> 1);
        for (std::size_t i = 0; i < 4; ++i)
            left[line + 4 + i] = static_cast<std::int16_t>((right[line + 2 * i] + right[line + 2 * i + 1] + 1) >> 1);
    }
}

}  // namespace

void SpreadChroma(std::int16_t* samples, std::uint32_t chromaFormat, bool byFields) {
    std::int16_t* const upper = samples + kCb * kBlockLength;
    std::int16_t* const lower = upper + kHalfLength;
    std::int16_t* const right = samples + 2 * kHalfLength;
    switch (chromaFormat) {
        case 0:
            std::fill_n(upper, 2 * kBlockLength, std::int16_t{0});
            std::fill_n(lower, 2 * kBlockLength, std::int16_t{0});
            return;
        case 1:
            if (byFields) {
                // Line k serves lines 2 k and 2 k + 1, one of each half.
                std::copy_n(upper, 2 * kBlockLength, lower);
            } else {
                DoubleLines(upper, upper, lower);
                DoubleLines(upper + kBlockLength, upper + kBlockLength, lower + kBlockLength);
            }
            return;
        case 2:
            return;
        default:
            for (std::size_t i = 0; i < 2; ++i) {
                HalveWidth(upper + i * kBlockLength, right + i * kBlockLength);
                HalveWidth(lower + i * kBlockLength, right + (2 + i) * kBlockLength);
            }
    }
}

}  // namespace KorvaneSoftware::iframe
