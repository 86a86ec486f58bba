#include "foundation/simd/vec_avx2.h"

#include "convert/x86/resample_across.inc.h"
