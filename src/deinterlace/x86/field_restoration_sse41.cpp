#include "foundation/simd/vec_sse41.h"

#include "deinterlace/x86/field_restoration.inc.h"
