#include "foundation/simd/vec_avx512.h"

#include "deinterlace/x86/line_filter.inc.h"
