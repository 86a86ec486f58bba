#include "convert/simd/rgb_lanes_sse41.h"

#include "convert/x86/yuv_to_rgb.inc.h"
