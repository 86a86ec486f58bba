// What the title kernels are told besides their pictures, and how they are called.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// How a kernel stores its result. Both give the same bytes; plain forms make no difference.
enum class Stores : std::uint32_t { Cached, Streaming };

struct TitleMix {
    std::uint32_t regionAlpha = 255;
    Stores stores = Stores::Cached;
};

using TitleSignature = void(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix);

}  // namespace KorvaneSoftware
