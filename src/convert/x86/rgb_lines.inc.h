// Addresses of lines, and the choice of stores, for the kernels between YUV and RGB.
#pragma once

#include "foundation/block_ops.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {

struct SampleLine {
    std::uint8_t* plane[3];
};

static inline std::uint8_t* LineOfPlane(const ImageDescriptor& desc, int plane, std::int64_t row) {
    return desc.planes[plane] + row * desc.strides[plane];
}

/// A line of samples. Planes that the format lacks are null or anything else, and are not used.
static inline SampleLine SamplesAt(const ImageDescriptor& desc, std::int64_t row, std::int64_t chromaRow) {
    SampleLine line{{LineOfPlane(desc, 0, row), nullptr, nullptr}};
    for (int plane = 1; plane < 3; ++plane)
        if (desc.planes[plane] != nullptr) line.plane[plane] = LineOfPlane(desc, plane, chromaRow);
    return line;
}

/// Line `row` of a bottom-up picture, counted from the top.
static inline std::uint8_t* PixelsAt(const ImageDescriptor& desc, std::int64_t row) {
    return LineOfPlane(desc, 0, static_cast<std::int64_t>(desc.height) - 1 - row);
}

/// Whether plane 0 of a destination is written past the cache: when it is too large to be found there afterwards, and
/// its lines are aligned as such stores demand.
static inline bool IsStreamed(const ImageDescriptor& dst, std::size_t rowBytes) {
    const bool aligned = reinterpret_cast<std::uintptr_t>(dst.planes[0]) % kVecBytes == 0 &&
                         dst.strides[0] % static_cast<std::int64_t>(kVecBytes) == 0;
    return aligned && rowBytes * dst.height > CachedCountLimit();
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
