#include "convert/simd/rgb_lanes_avx2.h"

#include "titles/x86/group_kernels.inc.h"
