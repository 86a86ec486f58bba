#include "deinterlace/video_interpolator.h"

#include "deinterlace/blend_lines.h"
#include "foundation/block_ops.h"

namespace KorvaneSoftware {

namespace {

bool LacksMemory(const FieldInterpolationJob& job) { return job.destination == nullptr || job.field == nullptr; }

std::int64_t RowOffset(const FieldInterpolationJob& job, std::int64_t row) { return row * job.stride; }

void InterpolateRow(const FieldInterpolationJob& job, std::int64_t row, std::int64_t above, std::int64_t below) {
    InterpolateLine(job.destination + RowOffset(job, row), job.field + RowOffset(job, row),
                    job.otherField + RowOffset(job, above), job.otherField + RowOffset(job, below), job.width,
                    job.weight);
}

Status CopyRow(const FieldInterpolationJob& job, std::int64_t row) {
    std::uint8_t* const dst = job.destination + RowOffset(job, row);
    const std::uint8_t* const src = job.field + RowOffset(job, row);
    return dst == src ? IMG_OK : CopySized(dst, src, job.width);
}

// Bytes per pixel of the formats that can be mixed byte by byte; 0 for the others.
std::uint32_t MixableBytesPerPixel(const FormatHead& image) {
    return HasTraits(image.format, FORMAT_MIXED_BY_BYTES) ? FormatInfoOf(image)->plane0Bits / 8u : 0;
}

bool SameHead(const FormatHead& a, const FormatHead& b) {
    return a.format == b.format && a.width == b.width && a.height == b.height && a.lumaExtraBits == b.lumaExtraBits &&
           a.chromaExtraBits == b.chromaExtraBits;
}

}  // namespace

Status CVideoInterpolator::InterpolateTopField(const FieldInterpolationJob& job) noexcept {
    if (LacksMemory(job)) return IMG_E_NULL_ARG;
    return Guarded([&]() -> Status {
        const std::int64_t height = job.height;
        if (height == 0) return IMG_OK;
        const Status status = CopyRow(job, 0);
        if (height == 1) return status;
        if (job.otherField == nullptr) return IMG_E_NULL_ARG;
        for (std::int64_t y = 1; y < height; ++y) InterpolateRow(job, y, y - 1, y);
        return status;
    });
}

Status CVideoInterpolator::InterpolateBottomField(const FieldInterpolationJob& job) noexcept {
    if (LacksMemory(job)) return IMG_E_NULL_ARG;
    return Guarded([&]() -> Status {
        const std::int64_t height = job.height;
        if (height == 0) return IMG_OK;
        if (height > 1 && job.otherField == nullptr) return IMG_E_NULL_ARG;
        for (std::int64_t y = 0; y + 1 < height; ++y) InterpolateRow(job, y, y, y + 1);
        return CopyRow(job, height - 1);
    });
}

Status CVideoInterpolator::CombineImages(const ImageDescriptor& dst, const ConstImageDescriptor& forward,
                                         const ConstImageDescriptor& backward, std::uint32_t weight) noexcept {
    if (dst.planes[0] == nullptr || forward.planes[0] == nullptr || backward.planes[0] == nullptr)
        return IMG_E_NULL_ARG;
    if (!SameHead(dst, forward) || !SameHead(dst, backward)) return IMG_E_BAD_FORMAT;
    const std::uint32_t bytesPerPixel = MixableBytesPerPixel(dst);
    if (bytesPerPixel == 0) return IMG_E_NO_PATH;
    return Guarded([&]() -> Status {
        const std::size_t rowBytes = std::size_t{dst.width} * bytesPerPixel;
        for (std::int64_t y = 0; y < std::int64_t{dst.height}; ++y)
            CombineLine(dst.planes[0] + y * dst.strides[0], forward.planes[0] + y * forward.strides[0],
                        backward.planes[0] + y * backward.strides[0], rowBytes, weight);
        return IMG_OK;
    });
}

}  // namespace KorvaneSoftware
