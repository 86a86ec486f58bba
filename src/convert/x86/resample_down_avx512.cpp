#include "foundation/simd/vec_avx512.h"

#include "convert/x86/resample_down.inc.h"
