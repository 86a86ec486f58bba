#include "foundation/simd/vec_sse41.h"

#include "resize/x86/resample_across.inc.h"
