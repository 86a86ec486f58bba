#include "foundation/simd/vec_avx2.h"

#include "foundation/x86/block_ops.inc.h"
