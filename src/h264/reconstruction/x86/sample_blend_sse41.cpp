#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/sample_blend.inc.h"

namespace KorvaneSoftware {

PIXMORPH_H264_DEFINE_CHROMA(Bytes, ByteLanes, std::uint8_t, 4)
PIXMORPH_H264_DEFINE_CHROMA(Bytes, ByteLanes, std::uint8_t, 8)
PIXMORPH_H264_DEFINE_CHROMA(Words, WordLanes, std::uint16_t, 4)
PIXMORPH_H264_DEFINE_CHROMA(Words, WordLanes, std::uint16_t, 8)
PIXMORPH_H264_DEFINE_BLEND(Bytes, ByteLanes, std::uint8_t, 4)
PIXMORPH_H264_DEFINE_BLEND(Bytes, ByteLanes, std::uint8_t, 8)
PIXMORPH_H264_DEFINE_BLEND(Bytes, ByteLanes, std::uint8_t, 16)
PIXMORPH_H264_DEFINE_BLEND(Words, WordLanes, std::uint16_t, 4)
PIXMORPH_H264_DEFINE_BLEND(Words, WordLanes, std::uint16_t, 8)
PIXMORPH_H264_DEFINE_BLEND(Words, WordLanes, std::uint16_t, 16)

}  // namespace KorvaneSoftware
