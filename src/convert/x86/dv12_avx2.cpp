#include "foundation/simd/vec_avx2.h"

#define PIXMORPH_DV12_NARROWER(name) name##_Sse41
#include "convert/x86/dv12.inc.h"
