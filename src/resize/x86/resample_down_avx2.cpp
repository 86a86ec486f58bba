#include "foundation/simd/vec_avx2.h"

#include "resize/x86/resample_down.inc.h"
