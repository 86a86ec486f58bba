#include "foundation/simd/vec_avx512.h"

#include "deinterlace/x86/field_restoration.inc.h"
