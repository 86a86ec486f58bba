#include "jpeg/quality.h"

namespace KorvaneSoftware {
namespace {

// clang-format off
constexpr std::uint16_t kLumaBase[64] = {
    16,  8, 11, 16, 22,  31,  43,  60,
     8,  9, 12, 17, 23,  32,  44,  62,
    11, 12, 15, 20, 26,  36,  49,  67,
    16, 17, 20, 24, 31,  41,  55,  75,
    22, 23, 26, 31, 39,  50,  65,  86,
    31, 32, 36, 41, 50,  62,  79, 104,
    43, 44, 49, 55, 65,  79, 100, 128,
    60, 62, 67, 75, 86, 104, 128, 160,
};
constexpr std::uint16_t kChromaBase[64] = {
     16,  32,  46,  66,  95, 136, 196, 282,
     32,  38,  51,  71, 100, 142, 203, 291,
     46,  51,  63,  84, 114, 159, 224, 316,
     66,  71,  84, 105, 136, 186, 257, 358,
     95, 100, 114, 136, 175, 231, 308, 416,
    136, 142, 159, 186, 231, 291, 382, 512,
    196, 203, 224, 257, 308, 382, 491, 638,
    282, 291, 316, 358, 416, 512, 638, 810,
};
// clang-format on

void MakeTable(const std::uint16_t (&base)[64], std::uint32_t factor, DcRule rule, std::int16_t* quantisers,
               std::int16_t* reciprocals) {
    for (int i = 0; i < 64; ++i) {
        std::uint32_t t = (base[i] * factor + 5000) / 10000;  // 32 bits: wraps where it does not fit.
        t = t < 1 ? 1 : t > 255 ? 255 : t;
        quantisers[i] = static_cast<std::int16_t>(t);
        reciprocals[i] = static_cast<std::int16_t>(2048 / t);
    }
    if (rule == DcRule::kAlwaysFour ? reciprocals[0] > 4 : quantisers[0] > 4) {
        quantisers[0] = 4;
        reciprocals[0] = 512;
    }
}

}  // namespace

void MakeQualityTables(QualityTables& tables, std::int32_t quality, DcRule rule) {
    const std::uint32_t factor = QualityFactor(static_cast<std::uint32_t>(quality));
    MakeTable(kLumaBase, factor, rule, tables.lumaQuantisers, tables.lumaReciprocals);
    MakeTable(kChromaBase, factor, rule, tables.chromaQuantisers, tables.chromaReciprocals);
}

}  // namespace KorvaneSoftware
