#include "convert/simd/rgb_lanes_avx2.h"

#include "titles/x86/image_frame.inc.h"
