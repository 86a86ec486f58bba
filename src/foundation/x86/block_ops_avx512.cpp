#include "foundation/simd/vec_avx512.h"

#include "foundation/x86/block_ops.inc.h"
