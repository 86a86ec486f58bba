#include "resize/resize_plan.h"

#include "resize/resample_rows.h"

namespace KorvaneSoftware {

namespace {

// Strides are 32-bit at the surface: no picture has longer lines.
constexpr std::uint64_t kLargestLine = 0x7FFFFFFF;

/// Whether the format can be resized at all. The planar formats outside PlaneShiftTable have passes by name only.
Status CheckFormat(const FormatHead& desc) {
    if (FormatInfoOf(desc) != nullptr && PlaneShiftsOf(desc.format).planeCount != 0) return IMG_OK;
    return HasTraits(desc.format, FORMAT_RESIZED_BY_NAME) ? IMG_E_NO_PATH : IMG_E_UNSUPPORTED;
}

Status CheckSize(const FormatHead& desc) {
    const FormatInfo& info = *FormatInfoOf(desc);
    if (desc.width == 0 || desc.height == 0 || desc.width % info.xAlign != 0 || desc.height % info.yAlign != 0)
        return HasTraits(desc.format, FORMAT_PACKED_422) ? IMG_E_BAD_SIZE : IMG_E_BAD_ALIGNMENT;
    const bool tooLarge =
        LineBytes(LineKindOf(desc.format, 0), desc.width) > kLargestLine || desc.height > kLargestLine;
    return tooLarge ? IMG_E_BAD_SIZE : IMG_OK;
}

ResizeRoute RouteOf(const FormatHead& dst, const FormatHead& src) {
    if (dst.height == src.height) return ResizeRoute::Horizontal;
    if (dst.width == src.width) return ResizeRoute::Vertical;
    if (HasTraits(src.format, FORMAT_RESIZED_DIRECTLY)) {
        const auto isRatio = [&](std::uint64_t acrossSrc, std::uint64_t acrossDst, std::uint64_t down) {
            return src.width * acrossDst == dst.width * acrossSrc && src.height == dst.height * down;
        };
        if (isRatio(2, 1, 2)) return ResizeRoute::Halve;
        const bool lineFits = LineBytes(LineKindOf(src.format, 0), src.width) <= kResizeLineBytes;
        if (lineFits && (isRatio(8, 3, 2) || isRatio(3, 1, 3))) return ResizeRoute::ThroughLine;
    }
    // Fewer lines early; when enlarging, lines first only where that halves the picture between.
    const ImageDescriptor wider = HeadAt(src, dst.width, src.height);
    const ImageDescriptor lower = HeadAt(src, src.width, dst.height);
    const bool isVerticalFirst = dst.height < src.height || ImageBufferSizeAligned(&lower, kTemporaryAlignment) <
                                                                ImageBufferSizeAligned(&wider, kTemporaryAlignment) >>
                                                                1;
    return isVerticalFirst ? ResizeRoute::VerticalFirst : ResizeRoute::HorizontalFirst;
}

}  // namespace

ImageDescriptor HeadAt(const FormatHead& picture, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor head = {picture};
    head.width = width;
    head.height = height;
    return head;
}

Status PlanResize(ResizePlan& plan, const ImageDescriptor& dst, const ConstImageDescriptor& src) noexcept {
    if (const Status status = CheckFormat(src); status != IMG_OK) return status;
    if (dst.format != src.format) return IMG_E_BAD_FORMAT;
    if (const Status status = CheckSize(dst); status != IMG_OK) return status;
    if (const Status status = CheckSize(src); status != IMG_OK) return status;
    plan.dst = dst;
    plan.src = src;
    if (const Status status = ImageCompletePlanes(&plan.dst); status != IMG_OK) return status;
    if (const Status status = ImageCompletePlanes(&plan.src); status != IMG_OK) return status;
    plan.route = RouteOf(dst, src);
    plan.between = {};
    if (plan.route == ResizeRoute::VerticalFirst) plan.between = HeadAt(src, src.width, dst.height);
    if (plan.route == ResizeRoute::HorizontalFirst) plan.between = HeadAt(src, dst.width, src.height);
    return IMG_OK;
}

}  // namespace KorvaneSoftware
