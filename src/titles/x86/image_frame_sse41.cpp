#include "convert/simd/rgb_lanes_sse41.h"

#include "titles/x86/image_frame.inc.h"
