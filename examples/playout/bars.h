// Measures the scene's colour bars in a picture of the chain.
#pragma once

#include "scene.h"

namespace playout {

/// The largest difference, over all bars and samples, between what stands in the middle half of each bar and what the
/// scene drew there. Takes UYVY, IYUV and Y422 of any size.
int BarDeviation(const Picture& picture, const Scene& scene);

}  // namespace playout
