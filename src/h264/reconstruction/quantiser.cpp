#include "h264/reconstruction/quantiser.h"

#include "h264/chroma_qp.h"

namespace KorvaneSoftware {

void CH264Quantiser::Set(std::int32_t qp, const H264SpsHead& sps, const std::int32_t (&offsets)[2],
                         const H264DequantTables* weights) {
    const int chromaBdOffset = 6 * static_cast<int>(sps.bitDepthChromaMinus8);
    qp_[0] = static_cast<std::uint32_t>(qp + 6 * static_cast<int>(sps.bitDepthLumaMinus8));
    for (unsigned i = 0; i < 2; ++i)
        qp_[1 + i] = static_cast<std::uint32_t>(H264ChromaQp(qp, offsets[i], chromaBdOffset) + chromaBdOffset);
    weights_ = weights;
}

}  // namespace KorvaneSoftware
