// Addresses of picture lines, and asking for them ahead.
#pragma once

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// First bytes of one picture line in each plane.
template <class Byte>
struct LineOf {
    Byte* plane[3];
};
using ReadLine = LineOf<const std::uint8_t>;
using WriteLine = LineOf<std::uint8_t>;

template <class Byte>
inline Byte* LineOfPlane(const TImageDescriptor<Byte>& desc, int plane, std::int64_t row) {
    return desc.planes[plane] + row * desc.strides[plane];
}

/// Line `row` with chroma line `chromaRow`. Planes that the format lacks are null or anything else, and are not used.
template <class Byte>
inline LineOf<Byte> LineOfPicture(const TImageDescriptor<Byte>& desc, std::int64_t row, std::int64_t chromaRow) {
    LineOf<Byte> line = {{LineOfPlane(desc, 0, row), nullptr, nullptr}};
    for (int plane = 1; plane < 3; ++plane)
        if (desc.planes[plane] != nullptr) line.plane[plane] = LineOfPlane(desc, plane, chromaRow);
    return line;
}

constexpr std::size_t kCacheLine = 64;

/// Asks for kBytes bytes that a later line will need. Frames come from far up the memory hierarchy, and the processor's
/// own prefetching starts anew at each page of a few lines: asking for the next line while this one is worked on halves
/// the time of frames that lie in the last-level cache.
template <std::size_t kBytes>
inline void Prefetch(const std::uint8_t* p) {
    for (std::size_t i = 0; i < kBytes; i += kCacheLine)
        _mm_prefetch(reinterpret_cast<const char*>(p + i), _MM_HINT_T0);
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
