#include "foundation/simd/vec_avx2.h"

#include "deinterlace/x86/field_restoration.inc.h"
