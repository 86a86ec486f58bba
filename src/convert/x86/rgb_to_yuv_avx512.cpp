#include "convert/simd/rgb_lanes_avx512.h"

#include "convert/x86/rgb_to_yuv.inc.h"
