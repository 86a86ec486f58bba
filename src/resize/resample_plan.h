// Plans of horizontal resampling, made once for each pair of sizes and kept.
#pragma once

#include <memory>

#include "resize/resample_rows.h"

namespace KorvaneSoftware {

/// The plan for lines of a kind between two widths above 0. Plans are shared by all threads and never change; the last
/// ones used are kept, so that only the first picture of a new size allocates. May throw for want of memory.
std::shared_ptr<const RowPlan> FindRowPlan(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth);

/// The same, made anew.
std::shared_ptr<const RowPlan> MakeRowPlan(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth);

}  // namespace KorvaneSoftware
