#include "deinterlace/plane_filter.h"

#include <algorithm>

#include "foundation/arithmetic.h"
#include "foundation/block_ops.h"

namespace KorvaneSoftware {

namespace {

constexpr std::uint32_t kSmallestWidth = 16;

class PlaneLines {
public:
    explicit PlaneLines(const PlaneFilterJob& job)
        : job_(job),
          earlier_(job.keptFieldIsFirst ? job.previous : job.current),
          later_(job.keptFieldIsFirst ? job.current : job.next) {}

    void Copy(std::int64_t from, std::int64_t to) const { CopyCached(Output(to), Current(from), job_.rowBytes); }

    // Planes of two lines have no third one: neighbours are looked for within the plane.
    void Mean(std::int64_t line, std::int64_t a, std::int64_t b) const {
        const std::int64_t last = std::int64_t{job_.height} - 1;
        const std::uint8_t* const first = Current(std::clamp<std::int64_t>(a, 0, last));
        const std::uint8_t* const second = Current(std::clamp<std::int64_t>(b, 0, last));
        std::uint8_t* const dst = Output(line);
        for (std::uint64_t i = 0; i < job_.rowBytes; ++i) dst[i] = KorvaneSoftware::Mean(first[i], second[i]);
    }

    void Filter(std::int64_t line) const {
        const std::int64_t offset = line * job_.currentStride;
        (*job_.filterLine)(Output(line),
                           {job_.current + offset, job_.previous + offset, job_.next + offset, earlier_ + offset,
                            later_ + offset, static_cast<std::ptrdiff_t>(job_.currentStride)},
                           job_.width, job_.spatialCheck);
    }

private:
    const std::uint8_t* Current(std::int64_t line) const { return job_.current + line * job_.currentStride; }
    std::uint8_t* Output(std::int64_t line) const { return job_.output + line * job_.outputStride; }

    const PlaneFilterJob& job_;
    const std::uint8_t* earlier_;
    const std::uint8_t* later_;
};

}  // namespace

Status CheckPlane(const PlaneFilterJob& job) {
    if (job.width < kSmallestWidth) return IMG_E_BAD_SIZE;
    if (job.height % 2 != 0 || job.bandTop % 2 != 0 || job.bandHeight % 2 != 0) return IMG_E_BAD_ALIGNMENT;
    if (job.previousStride != job.currentStride || job.nextStride != job.currentStride) return IMG_E_FAILED;
    return IMG_OK;
}

void FilterPlane(const PlaneFilterJob& job) {
    if (job.bandHeight == 0) return;
    const PlaneLines lines(job);
    const std::int64_t height = job.height;
    const std::int64_t top = job.bandTop;
    const std::int64_t bottom = top + job.bandHeight;
    // The first and the last line pair have no line of the kept field on one side of the missing line.
    if (top == 0) {
        if (job.keepBottom) {
            lines.Copy(1, 0);
            lines.Copy(1, 1);
        } else {
            lines.Copy(0, 0);
            lines.Mean(1, 0, 2);
        }
    }
    const std::int64_t end = bottom == height ? height - 2 : bottom;
    for (std::int64_t y = std::max<std::int64_t>(top, 2); y < end; y += 2) {
        if (job.keepBottom) {
            lines.Filter(y);
            lines.Copy(y + 1, y + 1);
        } else {
            lines.Copy(y, y);
            lines.Filter(y + 1);
        }
    }
    if (bottom == height) {
        const std::int64_t y = height - 2;
        if (job.keepBottom) {
            lines.Mean(y, y - 1, y + 1);
            lines.Copy(y + 1, y + 1);
        } else {
            lines.Copy(y, y);
            lines.Copy(y, y + 1);
        }
    }
}

}  // namespace KorvaneSoftware
