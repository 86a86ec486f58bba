#include "foundation/simd/vec_avx2.h"

#include "convert/x86/resample_down.inc.h"
