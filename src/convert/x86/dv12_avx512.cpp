#include "foundation/simd/vec_avx512.h"

#include "convert/x86/dv12_forms.h"

namespace KorvaneSoftware::simd_avx512 {
namespace narrower = simd_avx2;
}

#include "convert/x86/dv12.inc.h"
