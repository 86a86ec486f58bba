// The pictures that callers describe by pointers, strides and public numbers, as the engines' descriptors.
#pragma once

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

inline FormatHead HeadOf(std::uint32_t format, std::uint32_t width, std::uint32_t height) {
    return {format, width, height};
}

/// Format, matrix and depth of a public number; format 0 when there is none.
inline FormatHead PublicHeadOf(std::uint32_t publicId, std::uint32_t width, std::uint32_t height) {
    FormatHead head = HeadOf(FMT_NONE, width, height);
    SetPublicFormat(head, publicId);
    return head;
}

inline std::uint8_t* Bytes(void* pixels) { return static_cast<std::uint8_t*>(pixels); }
inline const std::uint8_t* Bytes(const void* pixels) { return static_cast<const std::uint8_t*>(pixels); }

/// A picture of which the caller gives the first plane.
template <class Byte>
TImageDescriptor<Byte> PictureAt(const FormatHead& head, Byte* plane, std::int64_t stride) {
    return {head, {plane}, {stride}};
}

/// A picture of which the caller gives arrays of four planes and strides.
template <class Byte>
TImageDescriptor<Byte> PictureAt(const FormatHead& head, Byte* const* planes, const std::int32_t* strides) {
    return {head, {planes[0], planes[1], planes[2], planes[3]}, {strides[0], strides[1], strides[2], strides[3]}};
}

/// A top-down RGB buffer as the bottom-up formats see it. A missing plane stays missing: moved to the last line it would
/// look like one.
template <class Byte>
void FlipTopDown(TImageDescriptor<Byte>& picture, std::uint32_t publicId) {
    if (IsTopDownPublicId(publicId) && picture.planes[0] != nullptr) FlipFirstPlane(picture);
}

}  // namespace KorvaneSoftware
