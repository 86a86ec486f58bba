#include "h264/parsing/parameter_sets.h"
#include "h264/parsing/scaling_lists.h"

namespace KorvaneSoftware {
namespace {

/// transform_8x8_mode_flag and what follows it, where the set has it.
void ReadExtension(H264BitReader& reader, const H264Sps& sps, H264Pps& pps) {
    pps.transform8x8Mode = reader.ReadFlag();
    pps.scalingMatrixPresent = reader.ReadFlag();
    if (pps.scalingMatrixPresent) {
        // Fall-back rule A is the defaults, rule B the lists of the SPS.
        const H264ScalingLists fallBack = sps.scalingMatrixPresent ? sps.scaling : DefaultScalingLists();
        ReadScalingLists(reader, pps.transform8x8Mode ? 2 : 0, fallBack, pps.scaling);
    }
    pps.chromaQpIndexOffset[1] = reader.ReadSe();
}

bool IsChromaOffset(std::int32_t offset) { return offset >= -12 && offset <= 12; }

Status ParsePps(H264BitReader& reader, const H264ParameterSets& sets, H264Pps& pps) {
    pps.id = reader.ReadUe();
    pps.spsId = reader.ReadUe();
    const H264Sps* sps = sets.FindSps(pps.spsId);
    if (pps.id >= kH264PpsCount || sps == nullptr) return IMG_E_FAILED;
    pps.scaling = sps->scaling;
    pps.entropyCodingMode = reader.ReadFlag();
    pps.bottomFieldPicOrderInFramePresent = reader.ReadFlag();
    if (reader.ReadUe() != 0) return IMG_E_UNSUPPORTED;  // num_slice_groups_minus1
    for (std::uint32_t& count : pps.numRefIdxDefaultActive) {
        const std::uint32_t countMinus1 = reader.ReadUe();
        if (countMinus1 > 31) return IMG_E_FAILED;
        count = countMinus1 + 1;
    }
    pps.weightedPred = reader.ReadFlag();
    pps.weightedBipredIdc = reader.ReadBits(2);
    if (pps.weightedBipredIdc > 2) return IMG_E_FAILED;
    const std::int32_t qpMinus26 = reader.ReadSe();
    const std::int32_t qsMinus26 = reader.ReadSe();
    const std::int32_t lowestQp = -26 - 6 * static_cast<std::int32_t>(sps->bitDepthLumaMinus8);
    if (qpMinus26 < lowestQp || qpMinus26 > 25 || qsMinus26 < -26 || qsMinus26 > 25) return IMG_E_FAILED;
    pps.picInitQp = 26 + qpMinus26;
    pps.picInitQs = 26 + qsMinus26;
    pps.chromaQpIndexOffset[0] = reader.ReadSe();
    pps.chromaQpIndexOffset[1] = pps.chromaQpIndexOffset[0];
    pps.deblockingFilterControlPresent = reader.ReadFlag();
    pps.constrainedIntraPred = reader.ReadFlag();
    pps.redundantPicCntPresent = reader.ReadFlag();
    if (reader.MoreRbspData()) ReadExtension(reader, *sps, pps);
    if (!IsChromaOffset(pps.chromaQpIndexOffset[0]) || !IsChromaOffset(pps.chromaQpIndexOffset[1])) {
        return IMG_E_FAILED;
    }
    return reader.BitsLeft() < 0 ? IMG_E_FAILED : IMG_OK;
}

}  // namespace

Status ReadPps(const NalUnit& unit, H264ParameterSets& sets) {
    UnescapedUnit payload;
    if (const Status status = payload.Load(unit)) return status;
    H264BitReader reader = payload.Reader();
    H264Pps pps;
    if (const Status status = ParsePps(reader, sets, pps)) return status;
    std::unique_ptr<H264Pps>& place = sets.pps[pps.id];
    if (place == nullptr) place = std::make_unique<H264Pps>();
    *place = pps;
    return IMG_OK;
}

}  // namespace KorvaneSoftware
