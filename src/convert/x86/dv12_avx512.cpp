#include "foundation/simd/vec_avx512.h"

#define PIXMORPH_DV12_NARROWER(name) name##_Avx2
#include "convert/x86/dv12.inc.h"
