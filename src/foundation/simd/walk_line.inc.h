// The walk along a run of samples that any register width shares.
#pragma once

#include <cstddef>

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// Calls `step` for each kStep samples from `first` to `last`, which is at least kStep on. The last step may overlap
/// the one before it, which writes the same bytes again.
template <std::size_t kStep, class Step>
inline void WalkLine(std::size_t first, std::size_t last, const Step& step) {
    std::size_t x = first;
    for (; x + kStep <= last; x += kStep) step(x);
    if (x < last) step(last - kStep);
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
