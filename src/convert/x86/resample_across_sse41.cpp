#include "foundation/simd/vec_sse41.h"

#include "convert/x86/resample_across.inc.h"
