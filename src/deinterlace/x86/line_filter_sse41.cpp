#include "foundation/simd/vec_sse41.h"

#include "deinterlace/x86/line_filter.inc.h"
