// The passes of a change of size, line by line. See resample_rows.h for the filters.
#pragma once

#include "resize/resize_plan.h"
#include "resize/row_plans.h"

namespace KorvaneSoftware {

/// Carries out a plan, whose picture between, if it has one, has its planes. The passes take turns line by line, so
/// that only the first lines of that picture are touched and stay in the cache; its content afterwards is no picture.
void RunResize(const ResizePlan& plan, RowPlans& rowPlans) noexcept;

}  // namespace KorvaneSoftware
