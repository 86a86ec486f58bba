#include "convert/simd/rgb_lanes_avx512.h"

#include "titles/x86/image_title.inc.h"
