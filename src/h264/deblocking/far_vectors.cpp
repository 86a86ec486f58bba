#include "h264/deblocking/far_vectors.h"

#include "h264/deblocking/x86/far_vectors_forms.h"

namespace KorvaneSoftware {

std::uint32_t plain::H264FarVectors(const H264BlockVectors& p, const H264BlockVectors& q, int verticalLimit) {
    std::uint32_t edges = 0;
    for (unsigned i = 0; i < 16; ++i) {
        if (i % 4 != 0 && AreFarApart(p[i - 1], q[i], verticalLimit)) edges |= 1u << i;
        if (i / 4 != 0 && AreFarApart(p[i - 4], q[i], verticalLimit)) edges |= 0x10000u << i;
    }
    return edges;
}
PIXMORPH_SLOT(DispatchSlot<H264FarVectorsSignature>, H264FarVectors, plain::H264FarVectors, simd_sse41::H264FarVectors,
              nullptr, nullptr);

}  // namespace KorvaneSoftware
