#include "foundation/simd/vec_sse41.h"

#define PIXMORPH_REORDER_NARROWER(name) name##_Plain
#include "convert/x86/reorder.inc.h"
