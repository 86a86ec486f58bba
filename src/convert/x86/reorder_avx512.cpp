#include "foundation/simd/vec_avx512.h"

#include "convert/x86/reorder_forms.h"

namespace KorvaneSoftware::simd_avx512 {
namespace narrower = simd_avx2;
}

#include "convert/x86/reorder.inc.h"
