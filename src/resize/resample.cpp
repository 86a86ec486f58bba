#include "resize/resample.h"

#include <cstring>
#include <memory>

#include "convert/copy_image.h"
#include "resize/resample_plan.h"
#include "resize/resample_rows.h"

namespace KorvaneSoftware {

namespace {

/// One plane of a picture; for packed formats all of it.
struct Plane {
    std::uint8_t* data;
    std::int64_t stride;
    std::uint32_t width;
    std::uint32_t height;
};

// Strides are 32-bit at the surface: no picture has longer lines.
constexpr std::uint64_t kLargestLine = 0x7FFFFFFF;

constexpr bool IsPacked(std::uint32_t format) { return format == FMT_UYVY || format == FMT_YUY2 || format == FMT_YVYU; }

LineKind KindOf(std::uint32_t format, std::uint32_t plane) {
    switch (format) {
        case FMT_BGR:
            return LineKind::Bgr;
        case FMT_BGRA:
            return LineKind::Bgra;
        case FMT_UYVY:
            return LineKind::Uyvy;
        case FMT_YUY2:
        case FMT_YVYU:
            return LineKind::Yuy2;
        case FMT_S400:
        case FMT_S420:
        case FMT_S422:
            return LineKind::Words;
        case FMT_NV12:
            return plane == 0 ? LineKind::Planar : LineKind::Pairs;
        default:
            return LineKind::Planar;
    }
}

Plane PlaneOf(const ImageDescriptor& desc, std::uint32_t plane) {
    const PlaneShiftRecord::Shift shift = PlaneShiftsOf(desc.format).planes[plane];
    return {desc.planes[plane], desc.strides[plane], desc.width >> shift.width, desc.height >> shift.height};
}

/// Whether the format can be resized at all. The planar formats outside PlaneShiftTable have passes by name only.
Status CheckFormat(const ImageDescriptor& desc) {
    const FormatInfo* const info = FormatInfoOf(desc);
    if (info != nullptr && PlaneShiftsOf(desc.format).planeCount != 0) return IMG_OK;
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
    const bool tooLarge = LineBytes(KindOf(desc.format, 0), desc.width) > kLargestLine || desc.height > kLargestLine;
    return tooLarge ? IMG_E_BAD_SIZE : IMG_OK;
}

/// Checks both sides and completes copies of them.
Status Prepare(ImageDescriptor& dst, const ImageDescriptor* dstGiven, ImageDescriptor& src,
               const ImageDescriptor* srcGiven) {
    if (dstGiven == nullptr || srcGiven == nullptr) return IMG_E_NULL_ARG;
    dst = *dstGiven;
    src = *srcGiven;
    if (const Status status = CheckFormat(src); status != IMG_OK) return status;
    if (dst.format != src.format) return IMG_E_BAD_FORMAT;
    if (const Status status = CheckSize(dst); status != IMG_OK) return status;
    if (const Status status = CheckSize(src); status != IMG_OK) return status;
    if (const Status status = ImageCompletePlanes(&dst); status != IMG_OK) return status;
    return ImageCompletePlanes(&src);
}

/// Makes lines of a column-wise resized plane, in any order.
class VerticalFilter {
public:
    VerticalFilter(LineKind kind, std::uint32_t width, std::uint32_t source, std::uint32_t dest)
        : filter_(ChooseFilter(source, dest)),
          words_(kind == LineKind::Words),
          samples_(LineSamples(kind, width)),
          bytes_(LineBytes(kind, width)),
          source_(source),
          dest_(dest) {
        if (filter_ == ResampleFilter::Area) area_ = MakeAreaScale(source, dest);
        if (filter_ == ResampleFilter::Linear) linear_ = LinearScale(dest);
    }

    /// Line `row` from a plane that begins at `src`.
    void Run(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::uint32_t row) const {
        switch (filter_) {
            case ResampleFilter::Copy:
                std::memcpy(dst, src + row * stride, bytes_);
                break;
            case ResampleFilter::Mean: {
                const std::uint8_t* const first = src + 2 * std::int64_t{row} * stride;
                (words_ ? MeanRows16 : MeanRows8)(dst, first, first + stride, samples_);
                break;
            }
            case ResampleFilter::Linear: {
                const LinearTap tap = TapOf(row);
                const std::uint8_t* const first = src + tap.index * stride;
                Mix(dst, first, first + stride, tap.weight);
                break;
            }
            case ResampleFilter::Area: {
                const AreaSpan span = AreaSpanOf(source_, dest_, row);
                (words_ ? AreaRows16 : AreaRows8)(dst, src + span.first * stride, stride, samples_, span, area_);
                break;
            }
        }
    }

    LinearTap TapOf(std::uint32_t row) const { return LinearTapOf(source_, dest_, row, linear_); }

    /// A linear tap; `later` is not read at full weight.
    void Mix(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later, std::int32_t weight) const {
        if (weight == kFullWeight)
            std::memcpy(dst, earlier, bytes_);
        else
            (words_ ? LinearRows16 : LinearRows8)(dst, earlier, later, samples_, weight);
    }

    ResampleFilter Filter() const { return filter_; }

private:
    ResampleFilter filter_;
    bool words_;
    std::size_t samples_;
    std::size_t bytes_;
    std::uint32_t source_;
    std::uint32_t dest_;
    float linear_ = 0;
    AreaScale area_ = {};
};

void HorizontalPass(LineKind kind, const Plane& dst, const Plane& src) {
    const std::shared_ptr<const RowPlan> plan = FindRowPlan(kind, src.width, dst.width);
    for (std::int64_t row = 0; row < dst.height; ++row)
        ResampleRow(dst.data + row * dst.stride, src.data + row * src.stride, *plan);
}

void VerticalPass(LineKind kind, const Plane& dst, const Plane& src) {
    const VerticalFilter filter(kind, src.width, src.height, dst.height);
    for (std::uint32_t row = 0; row < dst.height; ++row)
        filter.Run(dst.data + row * dst.stride, src.data, src.stride, row);
}

/// Vertical, then horizontal; `line` holds a line of the source's width.
void VerticalThenHorizontal(LineKind kind, const Plane& dst, std::uint8_t* line, const Plane& src) {
    const std::shared_ptr<const RowPlan> plan = FindRowPlan(kind, src.width, dst.width);
    const VerticalFilter filter(kind, src.width, src.height, dst.height);
    for (std::uint32_t row = 0; row < dst.height; ++row) {
        filter.Run(line, src.data, src.stride, row);
        ResampleRow(dst.data + row * dst.stride, line, *plan);
    }
}

/// Horizontal, then linear vertical: the two lines that a destination line lies between are kept in `lines`, the even
/// ones of the source in the first. Each source line is resized once.
void HorizontalThenLinear(LineKind kind, const Plane& dst, const Plane& lines, const Plane& src,
                          const VerticalFilter& filter) {
    const std::shared_ptr<const RowPlan> plan = FindRowPlan(kind, src.width, dst.width);
    std::uint32_t made = 0;
    const auto line = [&](std::uint32_t index) { return lines.data + (index & 1) * lines.stride; };
    for (std::uint32_t row = 0; row < dst.height; ++row) {
        const LinearTap tap = filter.TapOf(row);
        const std::uint32_t last = tap.weight == kFullWeight ? tap.index : tap.index + 1;
        for (; made <= last; ++made) ResampleRow(line(made), src.data + made * src.stride, *plan);
        filter.Mix(dst.data + row * dst.stride, line(tap.index), line(tap.index + 1), tap.weight);
    }
}

/// Both directions halved in one go.
void HalvePass(LineKind kind, const Plane& dst, const Plane& src) {
    const std::shared_ptr<const RowPlan> plan = FindRowPlan(kind, src.width, dst.width);
    for (std::int64_t row = 0; row < dst.height; ++row) {
        const std::uint8_t* const first = src.data + 2 * row * src.stride;
        HalveRows8(dst.data + row * dst.stride, first, first + src.stride, *plan);
    }
}

/// Calls body(kind, plane) for each plane of the format.
template <class Body>
void ForEachPlane(const ImageDescriptor& desc, Body&& body) {
    const std::uint32_t count = PlaneShiftsOf(desc.format).planeCount;
    for (std::uint32_t plane = 0; plane < count; ++plane) body(KindOf(desc.format, plane), plane);
}

template <void (*Pass)(LineKind, const Plane&, const Plane&)>
Status RunPass(const ImageDescriptor& dst, const ImageDescriptor& src) {
    ForEachPlane(src,
                 [&](LineKind kind, std::uint32_t plane) { Pass(kind, PlaneOf(dst, plane), PlaneOf(src, plane)); });
    return IMG_OK;
}

bool HasDirectRoutine(std::uint32_t format) {
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

// A line of the vertical result between the two directions of a fixed ratio. Wider pictures take the two passes.
constexpr std::size_t kDirectLineBytes = 32768;

Status ResizeBothWays(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const auto isRatio = [&](std::uint64_t acrossSrc, std::uint64_t acrossDst, std::uint64_t down) {
        return src.width * acrossDst == dst.width * acrossSrc && src.height == dst.height * down;
    };
    if (isRatio(2, 1, 2)) return RunPass<HalvePass>(dst, src);
    if (!isRatio(8, 3, 2) && !isRatio(3, 1, 3)) return IMG_E_NO_PATH;
    if (LineBytes(KindOf(src.format, 0), src.width) > kDirectLineBytes) return IMG_E_NO_PATH;
    alignas(64) std::uint8_t line[kDirectLineBytes];
    ForEachPlane(src, [&](LineKind kind, std::uint32_t plane) {
        VerticalThenHorizontal(kind, PlaneOf(dst, plane), line, PlaneOf(src, plane));
    });
    return IMG_OK;
}

}  // namespace

Status ResizeHorizontal(const ImageDescriptor* dstGiven, const ImageDescriptor* srcGiven) {
    return Guarded([&]() -> Status {
        ImageDescriptor dst, src;
        if (const Status status = Prepare(dst, dstGiven, src, srcGiven); status != IMG_OK) return status;
        if (dst.height != src.height) return IMG_E_BAD_SIZE;
        if (dst.width == src.width) return CopyPlanes(dst, src);
        return RunPass<HorizontalPass>(dst, src);
    });
}

Status ResizeVertical(const ImageDescriptor* dstGiven, const ImageDescriptor* srcGiven) {
    return Guarded([&]() -> Status {
        ImageDescriptor dst, src;
        if (const Status status = Prepare(dst, dstGiven, src, srcGiven); status != IMG_OK) return status;
        if (dst.width != src.width) return IMG_E_BAD_SIZE;
        if (dst.height == src.height) return CopyPlanes(dst, src);
        return RunPass<VerticalPass>(dst, src);
    });
}

Status ResizeThrough(const ImageDescriptor* dstGiven, const ImageDescriptor* betweenGiven,
                     const ImageDescriptor* srcGiven) {
    return Guarded([&]() -> Status {
        ImageDescriptor dst, between, src;
        if (const Status status = Prepare(between, betweenGiven, src, srcGiven); status != IMG_OK) return status;
        if (const Status status = Prepare(dst, dstGiven, src, srcGiven); status != IMG_OK) return status;
        const bool verticalFirst = between.width == src.width && between.height == dst.height;
        const bool horizontalFirst = between.width == dst.width && between.height == src.height;
        if (!verticalFirst && !horizontalFirst) return IMG_E_BAD_SIZE;
        ForEachPlane(src, [&](LineKind kind, std::uint32_t plane) {
            const Plane from = PlaneOf(src, plane);
            const Plane to = PlaneOf(dst, plane);
            const Plane middle = PlaneOf(between, plane);
            if (verticalFirst) {
                VerticalThenHorizontal(kind, to, middle.data, from);
                return;
            }
            const VerticalFilter filter(kind, to.width, from.height, to.height);
            if (filter.Filter() == ResampleFilter::Linear) {
                HorizontalThenLinear(kind, to, middle, from, filter);
            } else {
                HorizontalPass(kind, middle, from);
                VerticalPass(kind, to, middle);
            }
        });
        return IMG_OK;
    });
}

Status ResizeImageDirect(const ImageDescriptor* dst, const ImageDescriptor* src) {
    if (dst == nullptr || src == nullptr) return IMG_E_NULL_ARG;
    if (dst->height == src->height) return ResizeHorizontal(dst, src);
    if (dst->width == src->width) return ResizeVertical(dst, src);
    if (!HasDirectRoutine(src->format)) return IMG_E_NO_PATH;
    return Guarded([&]() -> Status {
        ImageDescriptor whole, from;
        if (const Status status = Prepare(whole, dst, from, src); status != IMG_OK) return status;
        return ResizeBothWays(whole, from);
    });
}

}  // namespace KorvaneSoftware
