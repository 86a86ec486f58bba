#include "foundation/simd/vec_avx512.h"

#include "convert/x86/sixteen_bit.inc.h"
