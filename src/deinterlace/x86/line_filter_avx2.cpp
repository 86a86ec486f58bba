#include "foundation/simd/vec_avx2.h"

#include "deinterlace/x86/line_filter.inc.h"
