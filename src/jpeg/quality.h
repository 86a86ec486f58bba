// From a quality to quantiser tables.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// Tables of one quality, 64 entries each in natural order, aligned for the block transforms.
struct alignas(64) QualityTables {
    std::int16_t lumaQuantisers[64];
    std::int16_t chromaQuantisers[64];
    std::int16_t lumaReciprocals[64];  ///< 2048 / quantiser, truncated.
    std::int16_t chromaReciprocals[64];
};

/// How the DC quantiser is limited to 4.
enum class DcRule {
    kAlwaysFour,  ///< Where its reciprocal is above 4. It always is: every quality quantises DC by 4.
    kAtMostFour,  ///< Where the quantiser is above 4.
};

/// Factor on the base tables, in units of 1/10000. Above 10000 it is 0.
constexpr std::uint32_t QualityFactor(std::uint32_t quality) {
    if (quality == 0) return 10000000;
    if (quality < 5000) return 10000000 / quality;
    return quality <= 10000 ? 4000 - 4 * quality / 10 : 0;
}

/// Fills all four tables. Any quality is taken; a negative one counts as above 10000.
void MakeQualityTables(QualityTables& tables, std::int32_t quality, DcRule rule);

}  // namespace KorvaneSoftware
