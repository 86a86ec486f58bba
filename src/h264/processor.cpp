#include "h264/processor.h"

namespace KorvaneSoftware {
namespace {

std::uint32_t StructureBits(const CH264Picture& picture) { return picture.fieldPic ? 1 : picture.mbaff ? 2 : 0; }

}  // namespace

std::uint32_t ProcessorIndex(const CH264Slice& slice) {
    const H264SpsHead& sps = slice.picture->sps;
    std::uint32_t index = StructureBits(*slice.picture);
    if (slice.pps.entropyCodingMode) index |= 4;
    if (!sps.IsHigh()) return index | 16;
    index |= 8 | sps.chromaFormatIdc << 4;
    if (sps.scalingMatrixPresent || slice.pps.scalingMatrixPresent) index |= 64;
    if (sps.IsHighBitDepth()) index |= 128;
    return index;
}

std::uint32_t DeblockingIndex(const CH264Slice& slice) {
    const H264SpsHead& sps = slice.picture->sps;
    const std::uint32_t index = StructureBits(*slice.picture);
    if (!sps.IsHigh()) return index | 8;
    return index | 4 | sps.chromaFormatIdc << 3 | (sps.IsHighBitDepth() ? 32 : 0);
}

}  // namespace KorvaneSoftware
