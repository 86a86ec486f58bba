// What is done to whole blocks here and nowhere else. Blocks are 64 values, aligned to 64 bytes and one behind the other.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

namespace iframe {
constexpr std::size_t kBlockLength = 64;
}

/// Coefficients to samples: the inverse transform of clause 7.5, accurate to well within what IEEE 1180 asks, as the
/// JPEG family's is not. It works in floats with multiplications and additions in one fixed order, so that all forms
/// agree to the last bit; results are clamped before they are narrowed, so that no coefficients overflow.
/// @param samples       receives samples less 128, row by row.
/// @param coefficients  transposed: column by column. Each from -2048 to 2047. They are left zero.
/// @param count         blocks, an even number.
using IFrameInverseSignature = void(std::int16_t* samples, std::int16_t* coefficients, std::size_t count);
extern DispatchSlot<IFrameInverseSignature> IFrameInverseTransform;

}  // namespace KorvaneSoftware
