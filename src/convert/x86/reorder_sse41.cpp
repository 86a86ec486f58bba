#include "foundation/simd/vec_sse41.h"

#include "convert/x86/reorder_forms.h"

namespace KorvaneSoftware::simd_sse41 {
namespace narrower = plain;
}

#include "convert/x86/reorder.inc.h"
