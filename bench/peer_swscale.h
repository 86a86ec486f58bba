// swscale as a peer of the conversion kernels.
#pragma once

#ifdef PIXMORPH_HAVE_SWSCALE

extern "C" {
#include <libswscale/swscale.h>
}

#include "bench.h"

namespace pixmorph_bench {

/// A conversion at equal size, with accurate rounding and the default bicubic chroma filter.
inline PictureFunction Swscale(AVPixelFormat to, AVPixelFormat from) {
    return [to, from, context = static_cast<SwsContext*>(nullptr)](const km::ImageDescriptor& dst,
                                                                   const km::ImageDescriptor& src) mutable {
        const int width = static_cast<int>(src.width), height = static_cast<int>(src.height);
        context = sws_getCachedContext(context, width, height, from, width, height, to, SWS_BICUBIC | SWS_ACCURATE_RND,
                                       nullptr, nullptr, nullptr);
        int srcStrides[4], dstStrides[4];
        for (int i = 0; i < 4; ++i) {
            srcStrides[i] = static_cast<int>(src.strides[i]);
            dstStrides[i] = static_cast<int>(dst.strides[i]);
        }
        sws_scale(context, src.planes, srcStrides, 0, height, dst.planes, dstStrides);
    };
}

}  // namespace pixmorph_bench

#endif
