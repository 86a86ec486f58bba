#include "foundation/simd/vec_avx2.h"

#include "convert/x86/sixteen_bit.inc.h"
