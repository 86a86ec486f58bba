// Bits of a block's values, from natural to scan order.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// For each row of a block and each pattern of its eight values, the bits at their scan positions.
struct ScanMasks {
    std::uint64_t rows[8][256];
};
extern const ScanMasks kScanMasks;

/// Bit k: whether scan position k is set, from bits in natural order.
static inline std::uint64_t ScanMaskOf(std::uint64_t natural) {
    std::uint64_t mask = 0;
    for (int row = 0; row < 8; ++row) mask |= kScanMasks.rows[row][natural >> (8 * row) & 255];
    return mask;
}

}  // namespace KorvaneSoftware
