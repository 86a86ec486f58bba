#include "foundation/simd/vec_avx2.h"

#include "deinterlace/x86/restoration_lines.inc.h"
