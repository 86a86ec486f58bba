#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/sample_blend.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {

template H264AverageSignatureBytes H264AverageBytes<4>;
template H264AverageSignatureWords H264AverageWords<16>;
template H264WeightSignatureBytes H264WeightBytes<4>;
template H264WeightSignatureBytes H264WeightBytes<8>;
template H264WeightSignatureBytes H264WeightBytes<16>;
template H264WeightSignatureWords H264WeightWords<4>;
template H264WeightSignatureWords H264WeightWords<8>;
template H264WeightSignatureWords H264WeightWords<16>;
template H264WeightBothSignatureBytes H264WeightBothBytes<4>;
template H264WeightBothSignatureBytes H264WeightBothBytes<8>;
template H264WeightBothSignatureBytes H264WeightBothBytes<16>;
template H264WeightBothSignatureWords H264WeightBothWords<4>;
template H264WeightBothSignatureWords H264WeightBothWords<8>;
template H264WeightBothSignatureWords H264WeightBothWords<16>;

}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
