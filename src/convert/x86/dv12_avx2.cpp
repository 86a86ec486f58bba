#include "foundation/simd/vec_avx2.h"

#include "convert/x86/dv12_forms.h"

namespace KorvaneSoftware::simd_avx2 {
namespace narrower = simd_sse41;
}

#include "convert/x86/dv12.inc.h"
