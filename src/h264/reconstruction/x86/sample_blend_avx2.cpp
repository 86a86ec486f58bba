#include "foundation/simd/vec_avx2.h"
#include "h264/reconstruction/x86/sample_blend.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {

template H264WeightSignatureBytes H264WeightBytes<16>;
template H264WeightSignatureWords H264WeightWords<8>;
template H264WeightSignatureWords H264WeightWords<16>;
template H264WeightBothSignatureBytes H264WeightBothBytes<16>;
template H264WeightBothSignatureWords H264WeightBothWords<8>;
template H264WeightBothSignatureWords H264WeightBothWords<16>;

}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
