#include "convert/simd/rgb_lanes_sse41.h"

#include "titles/x86/group_kernels.inc.h"
