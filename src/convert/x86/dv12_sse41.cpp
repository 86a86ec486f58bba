#include "foundation/simd/vec_sse41.h"

#define PIXMORPH_DV12_NARROWER(name) name##_Plain
#include "convert/x86/dv12.inc.h"
