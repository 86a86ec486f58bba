#include "iframe/encoder_tables.h"

#include <algorithm>

#include "codec/coded_format.h"
#include "iframe/stream_tables.h"

namespace KorvaneSoftware::iframe {
namespace {

/// A row of table 7-6 by its two indices.
struct Scale {
    std::uint8_t type;
    std::uint8_t code;
};
/// From small to large: 1 to 8, 10 to 24 by 2, 26, 28.
constexpr Scale kScales[18] = {{1, 1},  {1, 2},  {1, 3},  {1, 4},  {1, 5},  {1, 6},  {1, 7},  {1, 8},  {1, 9},
                               {1, 10}, {1, 11}, {1, 12}, {1, 13}, {1, 14}, {1, 15}, {1, 16}, {0, 13}, {0, 14}};
/// Index into kScales by quality / 500.
constexpr std::uint8_t kScaleOfQuality[21] = {17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 1, 0, 0, 0};

constexpr std::uint32_t kAdvancedScaleType = 1;
constexpr std::uint32_t kAdvancedScaleCode = 12;

// Rows of eight.
// clang-format off
constexpr std::uint8_t kBaseMatrix[64] = {
    16, 16, 19, 23, 28, 34, 40, 48,
    16, 17, 20, 24, 29, 35, 41, 49,
    19, 20, 22, 26, 31, 36, 43, 51,
    23, 24, 26, 29, 34, 39, 46, 54,
    28, 29, 31, 34, 38, 43, 50, 59,
    34, 35, 36, 39, 43, 49, 56, 65,
    40, 41, 43, 46, 50, 56, 64, 73,
    48, 49, 51, 54, 59, 65, 73, 83,
};
// clang-format on

// The direct transform gives 16 times the orthonormal coefficient: a level is that over matrix * scale / 16.
void SetReciprocals(EncoderTables& tables, const auto& matrix) {
    const std::uint32_t scale = kQuantiserScale[tables.scaleType][tables.scaleCode];
    for (int i = 0; i < 64; ++i) tables.reciprocals[i] = static_cast<std::int16_t>(32768 / (matrix[i] * scale));
    // DC has 11 bits: its level is the orthonormal coefficient.
    tables.reciprocals[0] = 2048;
}

std::uint32_t QualityInRange(std::int32_t quality) {
    return static_cast<std::uint32_t>(std::clamp(quality, std::int32_t{1}, kBestQuality));
}

}  // namespace

void SetElementaryTables(EncoderTables& tables, std::int32_t quality) {
    const Scale scale = kScales[kScaleOfQuality[QualityInRange(quality) / 500]];
    tables.scaleType = scale.type;
    tables.scaleCode = scale.code;
    SetReciprocals(tables, kDefaultIntraMatrix);
}

void SetAdvancedTables(EncoderTables& tables, std::int32_t quality) {
    const std::uint32_t q = QualityInRange(quality);
    const std::uint32_t factor = q < 5000 ? 10000000 / q - 400 : 3100 - q * 3 / 10;
    for (int i = 0; i < 64; ++i)
        tables.matrix[i] = static_cast<std::uint16_t>(std::clamp((kBaseMatrix[i] * factor + 5000) / 10000, 1u, 255u));
    tables.scaleType = kAdvancedScaleType;
    tables.scaleCode = kAdvancedScaleCode;
    SetReciprocals(tables, tables.matrix);
    tables.matrix[0] = 8;
}

}  // namespace KorvaneSoftware::iframe
