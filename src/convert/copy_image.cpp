#include "convert/copy_image.h"

#include "convert/samples.h"
#include "foundation/block_ops.h"

namespace KorvaneSoftware {

Status CopyPlane(const ImageDescriptor& dst, const ConstImageDescriptor& src, std::uint32_t plane) {
    const std::uint64_t rowBytes = ImagePlaneRowBytes(&src, plane);
    const std::uint64_t rows = ImagePlaneHeight(&src, plane);
    if (rowBytes == 0 || rows == 0) return IMG_OK;
    if (src.planes[plane] == nullptr || dst.planes[plane] == nullptr) return IMG_E_NULL_ARG;
    const auto contiguous = static_cast<std::int64_t>(rowBytes);
    if (src.strides[plane] == contiguous && dst.strides[plane] == contiguous)
        return CopySized(dst.planes[plane], src.planes[plane], rowBytes * rows);
    const int index = static_cast<int>(plane);
    for (std::uint64_t row = 0; row < rows; ++row) {
        const auto line = static_cast<std::int64_t>(row);
        CopyStreaming(PlaneLine(dst, index, line), PlaneLine(src, index, line), rowBytes);
    }
    return IMG_OK;
}

Status CopyPlanes(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::uint32_t planes = ImagePlaneCount(&src);
    if (planes == 0) return IMG_E_BAD_FORMAT;
    if (src.width == 0 || src.height == 0) return IMG_OK;
    // A missing plane is found before the first is written.
    for (std::uint32_t plane = 0; plane < planes; ++plane)
        if (src.planes[plane] == nullptr || dst.planes[plane] == nullptr) return IMG_E_NULL_ARG;
    for (std::uint32_t plane = 0; plane < planes; ++plane)
        if (const Status status = CopyPlane(dst, src, plane); status != IMG_OK) return status;
    return IMG_OK;
}

Status CopyImage(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    return Guarded([&] {
        if (dst.width != src.width || dst.height != src.height) return IMG_E_BAD_SIZE;
        if (dst.format != src.format) return IMG_E_BAD_FORMAT;
        ImageDescriptor to = dst;
        ConstImageDescriptor from = src;
        if (const Status status = ImageCompletePlanes(&to); status != IMG_OK) return status;
        if (const Status status = ImageCompletePlanes(&from); status != IMG_OK) return status;
        return CopyPlanes(to, from);
    });
}

}  // namespace KorvaneSoftware
