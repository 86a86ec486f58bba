// Forms of the reordering kernels. Each vector form hands pictures that are narrower than its unit of work to the form
// before it, so the plain ones are named here as well.
#pragma once

#include <cstddef>

#include "convert/reorder_list.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

#define PIXMORPH_REORDER_DECLARE(name, from, to)                               \
    void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src); \
    void name##_Sse41(const ImageDescriptor& dst, const ImageDescriptor& src); \
    void name##_Avx2(const ImageDescriptor& dst, const ImageDescriptor& src);  \
    void name##_Avx512(const ImageDescriptor& dst, const ImageDescriptor& src);
PIXMORPH_REORDER_ALL(PIXMORPH_REORDER_DECLARE)
#undef PIXMORPH_REORDER_DECLARE

/// Bytes of the largest destination that is written through the cache: half of the level-2 cache, so that the source
/// has room beside it. Measured at 352x288 to 1920x1080: from there on it pays to bypass the cache even when the same
/// frames come again and again.
std::size_t ReorderCachedLimit();

}  // namespace KorvaneSoftware
