#include "foundation/simd/vec_sse41.h"

#include "deinterlace/x86/blend_lines.inc.h"
