// What quality means: matrix, scale and reciprocals of a frame.
#pragma once

#include <cstdint>

namespace KorvaneSoftware::iframe {

struct EncoderTables {
    std::uint32_t scaleType;                   ///< q_scale_type
    std::uint32_t scaleCode;                   ///< quantiser_scale_code
    alignas(64) std::int16_t reciprocals[64];  ///< For QuantiseToScan, in natural order.
    alignas(64) std::uint16_t matrix[64];      ///< The advanced flavour's intra matrix, in natural order.
};

/// Elementary flavour: the default matrix, and a scale that goes down in 21 steps of quality.
/// @param quality  taken as 1 to 10000
void SetElementaryTables(EncoderTables& tables, std::int32_t quality);
/// Advanced flavour: a fixed scale of 16, and a matrix of its own that goes with the frame.
void SetAdvancedTables(EncoderTables& tables, std::int32_t quality);

}  // namespace KorvaneSoftware::iframe
