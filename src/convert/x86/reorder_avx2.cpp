#include "foundation/simd/vec_avx2.h"

#define PIXMORPH_REORDER_NARROWER(name) name##_Sse41
#include "convert/x86/reorder.inc.h"
