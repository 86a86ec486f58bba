#include "foundation/simd/vec_avx512.h"

#include "resize/x86/resample_across.inc.h"
