// What the paths of the conversion matrix run: kernels through their slots, with the planes in the order that the
// kernel takes, and plain copies. A size of zero is harmless. A plane that a kernel would miss fails before anything is
// written.
#pragma once

#include <utility>

#include "convert/copy_image.h"
#include "convert/kernel.h"

namespace KorvaneSoftware {

/// Whether the first `count` planes are there.
template <class Byte>
bool HasPlanes(const TImageDescriptor<Byte>& desc, std::uint32_t count);
/// Whether every plane of the format is there.
template <class Byte>
bool HasAllPlanes(const TImageDescriptor<Byte>& desc);

constexpr bool IsEmpty(const FormatHead& desc) { return desc.width == 0 || desc.height == 0; }

/// A picture as its kin with the other order of the two chroma planes.
template <class Byte>
void ExchangeChroma(TImageDescriptor<Byte>& desc) {
    std::swap(desc.planes[1], desc.planes[2]);
    std::swap(desc.strides[1], desc.strides[2]);
}

template <const ConvertSlot& Slot>
Status Run(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (IsEmpty(src)) return IMG_OK;
    if (!HasAllPlanes(dst) || !HasAllPlanes(src)) return IMG_E_NULL_ARG;
    Slot(dst, src);
    return IMG_OK;
}

/// A kernel whose destination has separate chroma planes, with these exchanged.
template <const ConvertSlot& Slot>
Status RunToExchangedChroma(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ImageDescriptor exchanged = dst;
    ExchangeChroma(exchanged);
    return Run<Slot>(exchanged, src);
}

/// A kernel whose source has separate chroma planes, with these exchanged.
template <const ConvertSlot& Slot>
Status RunFromExchangedChroma(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConstImageDescriptor exchanged = src;
    ExchangeChroma(exchanged);
    return Run<Slot>(dst, exchanged);
}

/// A kernel that writes three planes, whatever the destination's format has.
template <const ConvertSlot& Slot>
Status RunToThreePlanes(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (!IsEmpty(src) && !HasPlanes(dst, 3)) return IMG_E_NULL_ARG;
    return Run<Slot>(dst, src);
}

/// The luma plane alone.
Status CopyLuma(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// The rows of a block picture that starts at the second picture of its blocks. Every row is taken as long as if it
/// started at the first, so it runs on into what follows it; only the end of the picture's memory stops it.
Status CopySecondPicture(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// Bytes from the first to the second picture of a block that holds two.
inline constexpr std::int64_t kSecondPictureOffset = 16;

}  // namespace KorvaneSoftware
