#include "foundation/simd/vec_avx2.h"
#include "h264/reconstruction/x86/luma_interpolation.inc.h"

namespace KorvaneSoftware {

PIXMORPH_H264_PARTS(PIXMORPH_H264_DEFINE_BYTES, 16)
PIXMORPH_H264_PARTS(PIXMORPH_H264_DEFINE_WORDS, 8)
PIXMORPH_H264_PARTS(PIXMORPH_H264_DEFINE_WORDS, 16)

}  // namespace KorvaneSoftware
