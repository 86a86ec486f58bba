#include "foundation/simd/vec_sse41.h"

#include "convert/x86/resample_down.inc.h"
