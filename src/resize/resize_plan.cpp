#include "resize/resize_plan.h"

#include "resize/resample_rows.h"

namespace KorvaneSoftware {

namespace {

// Strides are 32-bit at the surface: no picture has longer lines.
constexpr std::uint64_t kLargestLine = 0x7FFFFFFF;

constexpr bool IsPacked(std::uint32_t format) { return format == FMT_UYVY || format == FMT_YUY2 || format == FMT_YVYU; }

/// Whether the format can be resized at all. The planar formats outside PlaneShiftTable have passes by name only.
Status CheckFormat(const ImageDescriptor& desc) {
    if (FormatInfoOf(desc) != nullptr && PlaneShiftsOf(desc.format).planeCount != 0) return IMG_OK;
    switch (desc.format) {
        case FMT_IMC1:
        case FMT_IMC2:
        case FMT_IMC3:
        case FMT_IMC4:
        case FMT_P420:
        case FMT_P422:
            return IMG_E_NO_PATH;
        default:
            return IMG_E_UNSUPPORTED;
    }
}

Status CheckSize(const ImageDescriptor& desc) {
    const FormatInfo& info = *FormatInfoOf(desc);
    if (desc.width == 0 || desc.height == 0 || desc.width % info.xAlign != 0 || desc.height % info.yAlign != 0)
        return IsPacked(desc.format) ? IMG_E_BAD_SIZE : IMG_E_BAD_ALIGNMENT;
    const bool tooLarge =
        LineBytes(LineKindOf(desc.format, 0), desc.width) > kLargestLine || desc.height > kLargestLine;
    return tooLarge ? IMG_E_BAD_SIZE : IMG_OK;
}

/// Formats that are resized in both directions at once where the ratio allows it.
bool HasFixedRatios(std::uint32_t format) {
    switch (format) {
        case FMT_BGRA:
        case FMT_Y444:
        case FMT_UYVY:
        case FMT_YUY2:
        case FMT_YVYU:
        case FMT_Y422:
        case FMT_I420:
        case FMT_YV12:
        case FMT_NV12:
        case FMT_Y400:
            return true;
        default:
            return false;
    }
}

ResizeRoute RouteOf(const ImageDescriptor& dst, const ImageDescriptor& src) {
    if (dst.height == src.height) return ResizeRoute::Horizontal;
    if (dst.width == src.width) return ResizeRoute::Vertical;
    if (HasFixedRatios(src.format)) {
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

ImageDescriptor HeadAt(const ImageDescriptor& picture, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor head = picture;
    head.width = width;
    head.height = height;
    for (int plane = 0; plane < 4; ++plane) {
        head.planes[plane] = nullptr;
        head.strides[plane] = 0;
    }
    return head;
}

Status PlanResize(ResizePlan& plan, const ImageDescriptor& dst, const ImageDescriptor& src) noexcept {
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
