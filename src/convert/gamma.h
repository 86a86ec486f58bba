// Gamma correction: the table of the process and the one conversion that applies it.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

inline constexpr double kGammaPal = 2.8;
inline constexpr double kGammaNtsc = 2.2;

/// Fills the table: entry i is (i / 255) ^ exponent * 255, rounded. It is one for the whole process and starts as
/// identity. The exponent is not checked; of a value beyond a byte the low eight bits stay.
void SetGammaExponent(double exponent);
/// Entry `index` of the table.
std::uint8_t GammaValue(std::uint8_t index);

/// Y16A to BGRA by the rounded BT.601 numbers in double precision, each chroma pair serving both its pixels; the table
/// is applied to blue, green and red, alpha is copied. Widths are multiples of 16.
/// @return IMG_E_NULL_ARG when a plane is missing.
Status ConvertWithGamma(const ImageDescriptor& dst, const ConstImageDescriptor& src);

}  // namespace KorvaneSoftware
