#include "foundation/simd/vec_sse41.h"

#include "convert/x86/sixteen_bit.inc.h"
