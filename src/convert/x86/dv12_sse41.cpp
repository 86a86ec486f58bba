#include "foundation/simd/vec_sse41.h"

#include "convert/x86/dv12_forms.h"

namespace KorvaneSoftware::simd_sse41 {
namespace narrower = plain;
}

#include "convert/x86/dv12.inc.h"
