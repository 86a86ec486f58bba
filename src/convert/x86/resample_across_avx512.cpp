#include "foundation/simd/vec_avx512.h"

#include "convert/x86/resample_across.inc.h"
