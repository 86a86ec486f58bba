#include "foundation/simd/vec_sse41.h"

#include "foundation/x86/block_ops.inc.h"
