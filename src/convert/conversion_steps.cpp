#include "convert/conversion_steps.h"

#include <algorithm>

#include "convert/samples.h"
#include "foundation/block_ops.h"

namespace KorvaneSoftware {

template <class Byte>
bool HasPlanes(const TImageDescriptor<Byte>& desc, std::uint32_t count) {
    return std::all_of(desc.planes, desc.planes + count, [](const std::uint8_t* plane) { return plane != nullptr; });
}

template <class Byte>
bool HasAllPlanes(const TImageDescriptor<Byte>& desc) {
    // P016 has no row in the table of formats.
    return HasPlanes(desc, desc.format == FMT_P016 ? 2 : ImagePlaneCount(&desc));
}

template bool HasPlanes(const ImageDescriptor&, std::uint32_t);
template bool HasPlanes(const ConstImageDescriptor&, std::uint32_t);
template bool HasAllPlanes(const ImageDescriptor&);
template bool HasAllPlanes(const ConstImageDescriptor&);

Status CopyLuma(const ImageDescriptor& dst, const ConstImageDescriptor& src) { return CopyPlane(dst, src, 0); }

Status CopySecondPicture(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (IsEmpty(src)) return IMG_OK;
    if (!HasPlanes(dst, 1) || !HasPlanes(src, 1)) return IMG_E_NULL_ARG;
    const auto rowBytes = static_cast<std::int64_t>(ImagePlaneRowBytes(&src, 0));
    const std::int64_t stride = src.strides[0];
    const std::int64_t pitch = stride < 0 ? -stride : stride;
    const std::int64_t last = static_cast<std::int64_t>(src.height) - 1;
    for (std::int64_t row = 0; row <= last; ++row) {
        const std::int64_t rowsBehind = stride < 0 ? row : last - row;
        const std::int64_t left = rowsBehind * pitch + std::max(pitch, rowBytes) - kSecondPictureOffset;
        const std::int64_t count = std::clamp<std::int64_t>(left, 0, rowBytes);
        CopyStreaming(PlaneLine(dst, 0, row), PlaneLine(src, 0, row), static_cast<std::size_t>(count));
    }
    return IMG_OK;
}

}  // namespace KorvaneSoftware
