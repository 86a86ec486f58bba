// Changes of size within one format, as the converter makes them, with tables and memory for one call alone.
#pragma once

#include "foundation/aligned_memory.h"
#include "resize/resize_passes.h"

namespace pixmorph_test {

inline KorvaneSoftware::Status Resize(const KorvaneSoftware::ImageDescriptor* dst,
                                      const KorvaneSoftware::ImageDescriptor* src) {
    using namespace KorvaneSoftware;
    ResizePlan plan;
    if (const Status status = PlanResize(plan, *dst, *src); status != IMG_OK) return status;
    AlignedBuffer memory;
    if (plan.between.format != FMT_NONE) {
        memory.Reserve(ImageTemporarySize(&plan.between));
        if (const Status status = ImageSetTemporaryPlanes(&plan.between, memory.Data()); status != IMG_OK)
            return status;
    }
    RowPlans rowPlans;
    RunResize(plan, rowPlans);
    return IMG_OK;
}

}  // namespace pixmorph_test
