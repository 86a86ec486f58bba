#include "foundation/simd/vec_avx2.h"

#include "deinterlace/x86/blend_lines.inc.h"
