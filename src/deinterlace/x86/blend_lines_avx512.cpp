#include "foundation/simd/vec_avx512.h"

#include "deinterlace/x86/blend_lines.inc.h"
