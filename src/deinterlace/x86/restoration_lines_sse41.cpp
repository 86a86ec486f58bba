#include "foundation/simd/vec_sse41.h"

#include "deinterlace/x86/restoration_lines.inc.h"
