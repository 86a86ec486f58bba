#include "h264/parsing/slice_header.h"

namespace KorvaneSoftware {
namespace {

Status ReadOrderCount(H264BitReader& reader, const H264Sps& sps, const H264Pps& pps, H264SliceHead& head) {
    const bool framePairs = pps.bottomFieldPicOrderInFramePresent && !head.fieldPic;
    if (sps.picOrderCntType == 0) {
        head.picOrderCntLsb = reader.ReadBits(sps.log2MaxPicOrderCntLsb);
        if (framePairs) head.deltaPicOrderCntBottom = reader.ReadSe();
    } else if (sps.picOrderCntType == 1 && !sps.deltaPicOrderAlwaysZero) {
        head.deltaPicOrderCnt[0] = reader.ReadSe();
        if (framePairs) head.deltaPicOrderCnt[1] = reader.ReadSe();
    }
    return reader.BitsLeft() < 0 ? IMG_E_FAILED : IMG_OK;
}

Status ReadActiveCounts(H264BitReader& reader, const H264Pps& pps, H264SliceHeader& header) {
    const unsigned lists = header.sliceType == SLICE_I ? 0 : header.sliceType == SLICE_P ? 1 : 2;
    for (unsigned list = 0; list < 2; ++list) {
        header.numRefIdxActive[list] = list < lists ? pps.numRefIdxDefaultActive[list] : 0;
    }
    if (lists == 0) return IMG_OK;
    if (reader.ReadFlag()) {
        for (unsigned list = 0; list < lists; ++list) {
            const std::uint32_t countMinus1 = reader.ReadUe();
            if (countMinus1 > 31) return IMG_E_FAILED;
            header.numRefIdxActive[list] = countMinus1 + 1;
        }
    }
    const std::uint32_t most = header.fieldPic ? kH264MostReferences : kH264MostReferences / 2;
    return header.numRefIdxActive[0] > most || header.numRefIdxActive[1] > most ? IMG_E_FAILED : IMG_OK;
}

/// Steps over the commands of one list: 3 ends them.
Status SkipListModification(H264BitReader& reader) {
    if (!reader.ReadFlag()) return IMG_OK;
    while (reader.BitsLeft() >= 0) {
        const std::uint32_t command = reader.ReadUe();
        if (command == 3) return IMG_OK;
        if (command > 5) return IMG_E_FAILED;
        reader.ReadUe();
    }
    return IMG_E_FAILED;
}

Status ReadWeight(H264BitReader& reader, unsigned extraBits, std::int16_t& weight, std::int16_t& offset) {
    const std::int32_t w = reader.ReadSe();
    const std::int32_t o = reader.ReadSe();
    if (w < -128 || w > 127 || o < -128 || o > 127) return IMG_E_FAILED;
    weight = static_cast<std::int16_t>(w);
    offset = static_cast<std::int16_t>(o * (1 << extraBits));
    return IMG_OK;
}

Status ReadPredWeightTable(H264BitReader& reader, const H264Sps& sps, H264SliceHeader& header) {
    header.lumaLog2WeightDenom = reader.ReadUe();
    header.chromaLog2WeightDenom = reader.ReadUe();
    if (header.lumaLog2WeightDenom > 7 || header.chromaLog2WeightDenom > 7) return IMG_E_FAILED;
    for (unsigned list = 0; list < 2; ++list) {
        for (std::uint32_t i = 0; i < header.numRefIdxActive[list]; ++i) {
            H264PredictionWeight& entry = header.weights[list][i];
            entry = {};
            entry.weight[0] = static_cast<std::int16_t>(1 << header.lumaLog2WeightDenom);
            entry.weight[1] = entry.weight[2] = static_cast<std::int16_t>(1 << header.chromaLog2WeightDenom);
            entry.lumaFlag = reader.ReadFlag();
            if (entry.lumaFlag) {
                if (ReadWeight(reader, sps.bitDepthLumaMinus8, entry.weight[0], entry.offset[0])) return IMG_E_FAILED;
            }
            entry.chromaFlag = reader.ReadFlag();
            for (unsigned plane = 1; entry.chromaFlag && plane < 3; ++plane) {
                if (ReadWeight(reader, sps.bitDepthChromaMinus8, entry.weight[plane], entry.offset[plane])) {
                    return IMG_E_FAILED;
                }
            }
        }
    }
    return IMG_OK;
}

/// dec_ref_pic_marking: the flags are kept, the commands stepped over.
Status ReadMarking(H264BitReader& reader, H264SliceHeader& header) {
    header.refPicMarking = reader;
    if (header.idr) {
        header.noOutputOfPriorPics = reader.ReadFlag();
        header.longTermReference = reader.ReadFlag();
        return IMG_OK;
    }
    header.adaptiveRefPicMarking = reader.ReadFlag();
    if (!header.adaptiveRefPicMarking) return IMG_OK;
    // The commands are read again when the picture is marked.
    header.refPicMarking = reader;
    while (reader.BitsLeft() >= 0) {
        const std::uint32_t command = reader.ReadUe();
        if (command == 0) return IMG_OK;
        if (command > 6) return IMG_E_FAILED;
        if (command != 5) reader.ReadUe();
        if (command == 3) reader.ReadUe();
    }
    return IMG_E_FAILED;
}

Status ReadDeblocking(H264BitReader& reader, H264SliceHeader& header) {
    header.disableDeblockingFilterIdc = reader.ReadUe();
    if (header.disableDeblockingFilterIdc > 2) return IMG_E_FAILED;
    if (header.disableDeblockingFilterIdc == 1) return IMG_OK;
    const std::int32_t a = reader.ReadSe();
    const std::int32_t b = reader.ReadSe();
    if (a < -6 || a > 6 || b < -6 || b > 6) return IMG_E_FAILED;
    header.filterOffsetA = 2 * a;
    header.filterOffsetB = 2 * b;
    return IMG_OK;
}

Status ReadSecondPart(H264BitReader& reader, const H264Sps& sps, const H264Pps& pps, H264SliceHeader& header) {
    if (pps.redundantPicCntPresent) header.redundantPicCnt = reader.ReadUe();
    if (header.sliceType == SLICE_B) header.directSpatialMvPred = reader.ReadFlag();
    if (ReadActiveCounts(reader, pps, header)) return IMG_E_FAILED;
    header.listModification = reader;
    for (unsigned list = 0; list < 2; ++list) {
        if (header.numRefIdxActive[list] != 0 && SkipListModification(reader)) return IMG_E_FAILED;
    }
    const bool weighted = (header.sliceType == SLICE_P && pps.weightedPred) ||
                          (header.sliceType == SLICE_B && pps.weightedBipredIdc == 1);
    if (weighted && ReadPredWeightTable(reader, sps, header)) return IMG_E_FAILED;
    if (header.nalRefIdc != 0 && ReadMarking(reader, header)) return IMG_E_FAILED;
    if (pps.entropyCodingMode && header.sliceType != SLICE_I) {
        header.cabacInitIdc = reader.ReadUe();
        if (header.cabacInitIdc > 2) return IMG_E_FAILED;
    }
    const std::int64_t qp = std::int64_t{pps.picInitQp} + reader.ReadSe();
    if (qp < -6 * static_cast<std::int64_t>(sps.bitDepthLumaMinus8) || qp > 51) return IMG_E_FAILED;
    header.sliceQpY = static_cast<std::int32_t>(qp);
    if (pps.deblockingFilterControlPresent && ReadDeblocking(reader, header)) return IMG_E_FAILED;
    return reader.BitsLeft() < 0 ? IMG_E_FAILED : IMG_OK;
}

}  // namespace

std::uint32_t PictureSizeInMbs(const H264SpsHead& sps, bool fieldPic) {
    return sps.widthInMbs * sps.FrameHeightInMbs() / (fieldPic ? 2 : 1);
}

Status ReadSliceHead(H264BitReader& reader, const NalUnit& unit, const H264ParameterSets& sets, H264SliceHead& head,
                     const H264Pps** pps, const H264Sps** sps) {
    head.nalRefIdc = unit.RefIdc();
    head.idr = unit.Type() == NAL_SLICE_IDR;
    head.firstMbInSlice = reader.ReadUe();
    head.sliceType = reader.ReadUe();
    if (head.sliceType > 4) head.sliceType -= 5;
    head.ppsId = reader.ReadUe();
    // The switching slices of the Extended profile, SP and SI, are not decoded.
    if (head.sliceType > SLICE_I) return IMG_E_FAILED;
    *pps = sets.FindPps(head.ppsId);
    if (*pps == nullptr) return IMG_E_FAILED;
    *sps = sets.FindSps((*pps)->spsId);
    if (*sps == nullptr) return IMG_E_FAILED;

    head.frameNum = reader.ReadBits((*sps)->log2MaxFrameNum);
    if (!(*sps)->frameMbsOnly) {
        head.fieldPic = reader.ReadFlag();
        if (head.fieldPic) head.bottomField = reader.ReadFlag();
    }
    head.mbaff = !head.fieldPic && (*sps)->mbAdaptiveFrameField;
    const std::uint64_t firstMb = std::uint64_t{head.firstMbInSlice} * (head.mbaff ? 2 : 1);
    if (firstMb >= PictureSizeInMbs(**sps, head.fieldPic)) return IMG_E_FAILED;
    if (head.idr) head.idrPicId = reader.ReadUe();
    return ReadOrderCount(reader, **sps, **pps, head);
}

Status ReadSliceHeader(H264BitReader& reader, const NalUnit& unit, const H264ParameterSets& sets,
                       H264SliceHeader& header, const H264Pps** pps, const H264Sps** sps) {
    header = {};
    if (const Status status = ReadSliceHead(reader, unit, sets, header, pps, sps)) return status;
    return ReadSecondPart(reader, **sps, **pps, header);
}

}  // namespace KorvaneSoftware
