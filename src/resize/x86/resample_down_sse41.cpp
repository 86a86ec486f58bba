#include "foundation/simd/vec_sse41.h"

#include "resize/x86/resample_down.inc.h"
