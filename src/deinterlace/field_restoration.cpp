#include "deinterlace/field_restoration.h"

#include "deinterlace/restoration_lines.h"

namespace KorvaneSoftware {

namespace {

enum class Missing { Lower, Upper };

// Whether a pixel would be fetched through a null pointer. The neighbouring fields are looked at only where there is a
// line to rebuild.
bool LacksMemory(const FieldRestorationJob& job) {
    if (job.destination == nullptr || job.present == nullptr) return true;
    return job.height > 1 && (job.previous == nullptr || job.next == nullptr);
}

Status Restore(const FieldRestorationJob& job, Missing missing, const PresentLineSlot& presentLine,
               const RestoreLineSlot& restoreLine) noexcept {
    const std::size_t groups = job.width / kGroupPixels;
    const std::int64_t height = job.height;
    if (groups == 0 || height == 0) return IMG_OK;
    if (LacksMemory(job)) return IMG_E_NULL_ARG;
    const std::int64_t present = missing == Missing::Lower ? 0 : 1;
    const auto pictureLine = [&job, height](std::int64_t line) {
        return job.destination + (2 * height - 1 - line) * job.destinationStride;
    };
    const auto fieldLine = [&job](const std::uint8_t* field, std::int64_t line) {
        return field + line * job.sourceStride;
    };
    return Guarded([&]() -> Status {
        const MotionThresholds thresholds{job.motionMinimum, job.motionMaximum};
        // The edge line of the missing field has a neighbour on one side only and repeats it.
        if (missing == Missing::Upper) presentLine(pictureLine(0), job.present, groups);
        for (std::int64_t i = 0; i < height; ++i) {
            const std::uint8_t* const above = fieldLine(job.present, i);
            presentLine(pictureLine(2 * i + present), above, groups);
            if (i + 1 == height) break;
            const std::int64_t rebuilt = i + present;
            restoreLine(
                pictureLine(2 * i + present + 1),
                {fieldLine(job.previous, rebuilt), fieldLine(job.next, rebuilt), above, fieldLine(job.present, i + 1)},
                groups, thresholds);
        }
        if (missing == Missing::Lower)
            presentLine(pictureLine(2 * height - 1), fieldLine(job.present, height - 1), groups);
        return IMG_OK;
    });
}

}  // namespace

Status CDeinterlacer::RestoreLowerField(const FieldRestorationJob& job) noexcept {
    return Restore(job, Missing::Lower, PresentLineY16, RestoreLineY16);
}

Status CDeinterlacer::RestoreUpperField(const FieldRestorationJob& job) noexcept {
    return Restore(job, Missing::Upper, PresentLineY16, RestoreLineY16);
}

Status CDeinterlacer::RestoreLowerFieldAlpha(const FieldRestorationJob& job) noexcept {
    return Restore(job, Missing::Lower, PresentLineY16A, RestoreLineY16A);
}

Status CDeinterlacer::RestoreUpperFieldAlpha(const FieldRestorationJob& job) noexcept {
    return Restore(job, Missing::Upper, PresentLineY16A, RestoreLineY16A);
}

}  // namespace KorvaneSoftware
