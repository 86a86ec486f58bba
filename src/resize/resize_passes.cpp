#include "resize/resize_passes.h"

#include <cstring>
#include <type_traits>

#include "resize/resample_rows.h"

namespace KorvaneSoftware {

namespace {

/// One plane of a picture; for packed formats all of it.
template <class Byte>
struct PlaneView {
    Byte* data;
    std::int64_t stride;
    std::uint32_t width;
    std::uint32_t height;

    operator PlaneView<const Byte>() const requires(!std::is_const_v<Byte>) { return {data, stride, width, height}; }
};
using Plane = PlaneView<std::uint8_t>;
using ConstPlane = PlaneView<const std::uint8_t>;

template <class Byte>
PlaneView<Byte> PlaneOf(const TImageDescriptor<Byte>& desc, std::uint32_t plane) {
    const PlaneShiftRecord::Shift shift = PlaneShiftsOf(desc.format).planes[plane];
    return {desc.planes[plane], desc.strides[plane], desc.width >> shift.width, desc.height >> shift.height};
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

void HorizontalPass(LineKind kind, const Plane& dst, const ConstPlane& src, RowPlans& rowPlans) {
    const RowPlan plan = rowPlans.Find(kind, src.width, dst.width);
    for (std::int64_t row = 0; row < dst.height; ++row)
        ResampleRow(dst.data + row * dst.stride, src.data + row * src.stride, plan);
}

void VerticalPass(LineKind kind, const Plane& dst, const ConstPlane& src) {
    const VerticalFilter filter(kind, src.width, src.height, dst.height);
    for (std::uint32_t row = 0; row < dst.height; ++row)
        filter.Run(dst.data + row * dst.stride, src.data, src.stride, row);
}

/// Vertical, then horizontal; `line` holds a line of the source's width.
void VerticalThenHorizontal(LineKind kind, const Plane& dst, std::uint8_t* line, const ConstPlane& src,
                            RowPlans& rowPlans) {
    const RowPlan plan = rowPlans.Find(kind, src.width, dst.width);
    const VerticalFilter filter(kind, src.width, src.height, dst.height);
    for (std::uint32_t row = 0; row < dst.height; ++row) {
        filter.Run(line, src.data, src.stride, row);
        ResampleRow(dst.data + row * dst.stride, line, plan);
    }
}

/// Horizontal, then linear vertical: the two lines that a destination line lies between are kept in `lines`, the even
/// ones of the source in the first. Each source line is resized once.
void HorizontalThenLinear(LineKind kind, const Plane& dst, const Plane& lines, const ConstPlane& src,
                          const VerticalFilter& filter, RowPlans& rowPlans) {
    const RowPlan plan = rowPlans.Find(kind, src.width, dst.width);
    std::uint32_t made = 0;
    const auto line = [&](std::uint32_t index) { return lines.data + (index & 1) * lines.stride; };
    for (std::uint32_t row = 0; row < dst.height; ++row) {
        const LinearTap tap = filter.TapOf(row);
        const std::uint32_t last = tap.weight == kFullWeight ? tap.index : tap.index + 1;
        for (; made <= last; ++made) ResampleRow(line(made), src.data + made * src.stride, plan);
        filter.Mix(dst.data + row * dst.stride, line(tap.index), line(tap.index + 1), tap.weight);
    }
}

/// Both directions halved in one go.
void HalvePass(LineKind kind, const Plane& dst, const ConstPlane& src, RowPlans& rowPlans) {
    const RowPlan plan = rowPlans.Find(kind, src.width, dst.width);
    for (std::int64_t row = 0; row < dst.height; ++row) {
        const std::uint8_t* const first = src.data + 2 * row * src.stride;
        HalveRows8(dst.data + row * dst.stride, first, first + src.stride, plan);
    }
}

/// Both directions through the picture between, horizontal first.
void HorizontalThenVertical(LineKind kind, const Plane& dst, const Plane& between, const ConstPlane& src,
                            RowPlans& rowPlans) {
    const VerticalFilter filter(kind, dst.width, src.height, dst.height);
    if (filter.Filter() == ResampleFilter::Linear) {
        HorizontalThenLinear(kind, dst, between, src, filter, rowPlans);
        return;
    }
    HorizontalPass(kind, between, src, rowPlans);
    VerticalPass(kind, dst, between);
}

}  // namespace

void RunResize(const ResizePlan& plan, RowPlans& rowPlans) noexcept {
    alignas(64) std::uint8_t line[kResizeLineBytes];
    const std::uint32_t count = PlaneShiftsOf(plan.src.format).planeCount;
    for (std::uint32_t plane = 0; plane < count; ++plane) {
        const LineKind kind = LineKindOf(plan.src.format, plane);
        const Plane dst = PlaneOf(plan.dst, plane);
        const ConstPlane src = PlaneOf(plan.src, plane);
        switch (plan.route) {
            case ResizeRoute::Horizontal:
                HorizontalPass(kind, dst, src, rowPlans);
                break;
            case ResizeRoute::Vertical:
                VerticalPass(kind, dst, src);
                break;
            case ResizeRoute::Halve:
                HalvePass(kind, dst, src, rowPlans);
                break;
            case ResizeRoute::ThroughLine:
                VerticalThenHorizontal(kind, dst, line, src, rowPlans);
                break;
            case ResizeRoute::VerticalFirst:
                VerticalThenHorizontal(kind, dst, plan.between.planes[plane], src, rowPlans);
                break;
            case ResizeRoute::HorizontalFirst:
                HorizontalThenVertical(kind, dst, PlaneOf(plan.between, plane), src, rowPlans);
                break;
        }
    }
}

}  // namespace KorvaneSoftware
