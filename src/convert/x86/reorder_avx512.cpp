#include "foundation/simd/vec_avx512.h"

#define PIXMORPH_REORDER_NARROWER(name) name##_Avx2
#include "convert/x86/reorder.inc.h"
