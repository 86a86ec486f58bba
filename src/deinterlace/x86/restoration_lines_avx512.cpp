#include "foundation/simd/vec_avx512.h"

#include "deinterlace/x86/restoration_lines.inc.h"
