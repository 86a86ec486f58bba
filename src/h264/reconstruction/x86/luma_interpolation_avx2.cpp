#include "foundation/simd/vec_avx2.h"
#include "h264/reconstruction/x86/luma_interpolation.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {

template H264InterpolateLumaBytes H264LumaBytes<16, 1, 0>;
template H264InterpolateLumaBytes H264LumaBytes<16, 2, 0>;
template H264InterpolateLumaBytes H264LumaBytes<16, 3, 0>;
template H264InterpolateLumaBytes H264LumaBytes<16, 0, 1>;
template H264InterpolateLumaBytes H264LumaBytes<16, 1, 1>;
template H264InterpolateLumaBytes H264LumaBytes<16, 2, 1>;
template H264InterpolateLumaBytes H264LumaBytes<16, 3, 1>;
template H264InterpolateLumaBytes H264LumaBytes<16, 0, 2>;
template H264InterpolateLumaBytes H264LumaBytes<16, 1, 2>;
template H264InterpolateLumaBytes H264LumaBytes<16, 2, 2>;
template H264InterpolateLumaBytes H264LumaBytes<16, 3, 2>;
template H264InterpolateLumaBytes H264LumaBytes<16, 0, 3>;
template H264InterpolateLumaBytes H264LumaBytes<16, 1, 3>;
template H264InterpolateLumaBytes H264LumaBytes<16, 2, 3>;
template H264InterpolateLumaBytes H264LumaBytes<16, 3, 3>;
template H264InterpolateLumaWords H264LumaWords<8, 1, 0>;
template H264InterpolateLumaWords H264LumaWords<8, 2, 0>;
template H264InterpolateLumaWords H264LumaWords<8, 3, 0>;
template H264InterpolateLumaWords H264LumaWords<8, 0, 1>;
template H264InterpolateLumaWords H264LumaWords<8, 1, 1>;
template H264InterpolateLumaWords H264LumaWords<8, 2, 1>;
template H264InterpolateLumaWords H264LumaWords<8, 3, 1>;
template H264InterpolateLumaWords H264LumaWords<8, 0, 2>;
template H264InterpolateLumaWords H264LumaWords<8, 1, 2>;
template H264InterpolateLumaWords H264LumaWords<8, 2, 2>;
template H264InterpolateLumaWords H264LumaWords<8, 3, 2>;
template H264InterpolateLumaWords H264LumaWords<8, 0, 3>;
template H264InterpolateLumaWords H264LumaWords<8, 1, 3>;
template H264InterpolateLumaWords H264LumaWords<8, 2, 3>;
template H264InterpolateLumaWords H264LumaWords<8, 3, 3>;
template H264InterpolateLumaWords H264LumaWords<16, 1, 0>;
template H264InterpolateLumaWords H264LumaWords<16, 2, 0>;
template H264InterpolateLumaWords H264LumaWords<16, 3, 0>;
template H264InterpolateLumaWords H264LumaWords<16, 0, 1>;
template H264InterpolateLumaWords H264LumaWords<16, 1, 1>;
template H264InterpolateLumaWords H264LumaWords<16, 2, 1>;
template H264InterpolateLumaWords H264LumaWords<16, 3, 1>;
template H264InterpolateLumaWords H264LumaWords<16, 0, 2>;
template H264InterpolateLumaWords H264LumaWords<16, 1, 2>;
template H264InterpolateLumaWords H264LumaWords<16, 2, 2>;
template H264InterpolateLumaWords H264LumaWords<16, 3, 2>;
template H264InterpolateLumaWords H264LumaWords<16, 0, 3>;
template H264InterpolateLumaWords H264LumaWords<16, 1, 3>;
template H264InterpolateLumaWords H264LumaWords<16, 2, 3>;
template H264InterpolateLumaWords H264LumaWords<16, 3, 3>;

}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
