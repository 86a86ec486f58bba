#include <algorithm>

#include "h264/parsing/parameter_sets.h"
#include "h264/parsing/scaling_lists.h"
#include "h264/parsing/vui_reader.h"

namespace KorvaneSoftware {
namespace {

enum : std::uint32_t {
    PROFILE_BASELINE = 66,
    PROFILE_MAIN = 77,
    PROFILE_EXTENDED = 88,
    PROFILE_HIGH = 100,
    PROFILE_HIGH_10 = 110,
    PROFILE_HIGH_422 = 122,
    PROFILE_CAVLC_444 = 44,
    PROFILE_HIGH_444 = 244,
};

Status CheckProfile(std::uint32_t profileIdc) {
    switch (profileIdc) {
        case PROFILE_BASELINE:
        case PROFILE_MAIN:
        case PROFILE_EXTENDED:
        case PROFILE_HIGH:
        case PROFILE_HIGH_10:
        case PROFILE_HIGH_422:
            return IMG_OK;
        case PROFILE_CAVLC_444:
        case PROFILE_HIGH_444:
            return IMG_E_UNSUPPORTED;
        default:
            return IMG_E_FAILED;
    }
}

/// chroma_format_idc to the scaling matrices, of the High family.
Status ReadHighPart(H264BitReader& reader, H264Sps& sps) {
    sps.chromaFormatIdc = reader.ReadUe();
    if (sps.chromaFormatIdc > 3) return IMG_E_FAILED;
    if (sps.chromaFormatIdc == 0 || sps.chromaFormatIdc == 3) return IMG_E_UNSUPPORTED;
    sps.bitDepthLumaMinus8 = reader.ReadUe();
    sps.bitDepthChromaMinus8 = reader.ReadUe();
    if (sps.bitDepthLumaMinus8 > 6 || sps.bitDepthChromaMinus8 > 6) return IMG_E_FAILED;
    sps.qpprimeYZeroTransformBypass = reader.ReadFlag();
    sps.scalingMatrixPresent = reader.ReadFlag();
    if (sps.scalingMatrixPresent) ReadScalingLists(reader, 2, DefaultScalingLists(), sps.scaling);
    return IMG_OK;
}

Status ReadOrderCount(H264BitReader& reader, H264Sps& sps) {
    sps.picOrderCntType = reader.ReadUe();
    if (sps.picOrderCntType > 2) return IMG_E_FAILED;
    if (sps.picOrderCntType == 0) {
        const std::uint32_t log2Minus4 = reader.ReadUe();
        if (log2Minus4 > 12) return IMG_E_FAILED;
        sps.log2MaxPicOrderCntLsb = log2Minus4 + 4;
    } else if (sps.picOrderCntType == 1) {
        sps.deltaPicOrderAlwaysZero = reader.ReadFlag();
        sps.offsetForNonRefPic = reader.ReadSe();
        sps.offsetForTopToBottomField = reader.ReadSe();
        sps.numRefFramesInPicOrderCntCycle = reader.ReadUe();
        if (sps.numRefFramesInPicOrderCntCycle > 255) return IMG_E_FAILED;
        for (std::uint32_t i = 0; i < sps.numRefFramesInPicOrderCntCycle; ++i) {
            sps.offsetForRefFrame[i] = reader.ReadSe();
        }
    }
    return IMG_OK;
}

Status ReadSize(H264BitReader& reader, H264Sps& sps) {
    const std::uint32_t widthMinus1 = reader.ReadUe();
    const std::uint32_t heightMinus1 = reader.ReadUe();
    sps.frameMbsOnly = reader.ReadFlag();
    if (widthMinus1 >= kH264MostMacroblocksAcross || heightMinus1 >= kH264MostMacroblocksAcross) return IMG_E_FAILED;
    sps.widthInMbs = widthMinus1 + 1;
    sps.heightInMapUnits = heightMinus1 + 1;
    const std::uint32_t height = sps.FrameHeightInMbs();
    if (height > kH264MostMacroblocksAcross || sps.widthInMbs * height > kH264MostMacroblocks) return IMG_E_FAILED;
    if (!sps.frameMbsOnly) sps.mbAdaptiveFrameField = reader.ReadFlag();
    return IMG_OK;
}

/// Cropping must leave a picture. The offsets count in crop units, so their sum may wrap in 32 bits.
Status CheckCropping(const H264Sps& sps) {
    if (!sps.frameCropping) return IMG_OK;
    const std::uint64_t unitX = 2;
    const std::uint64_t unitY = (sps.frameMbsOnly ? 1u : 2u) * (sps.chromaFormatIdc == 1 ? 2u : 1u);
    const std::uint64_t across = (std::uint64_t{sps.cropLeft} + sps.cropRight) * unitX;
    const std::uint64_t down = (std::uint64_t{sps.cropTop} + sps.cropBottom) * unitY;
    const bool leavesPicture = sps.widthInMbs * 16 > across && sps.FrameHeightInMbs() * 16 > down;
    return leavesPicture ? IMG_OK : IMG_E_FAILED;
}

Status ParseSps(H264BitReader& reader, H264Sps& sps) {
    sps.profileIdc = reader.ReadBits(8);
    if (const Status status = CheckProfile(sps.profileIdc)) return status;
    for (bool& flag : sps.constraintSet) flag = reader.ReadFlag();
    reader.ReadBits(4);  // constraint_set4_flag, constraint_set5_flag, reserved
    sps.levelIdc = reader.ReadBits(8);
    sps.id = reader.ReadUe();
    if (sps.id >= kH264SpsCount) return IMG_E_FAILED;
    sps.scaling.SetFlat();
    if (sps.IsHigh()) {
        if (const Status status = ReadHighPart(reader, sps)) return status;
    }
    const std::uint32_t log2MaxFrameNumMinus4 = reader.ReadUe();
    if (log2MaxFrameNumMinus4 > 12) return IMG_E_FAILED;
    sps.log2MaxFrameNum = log2MaxFrameNumMinus4 + 4;
    if (const Status status = ReadOrderCount(reader, sps)) return status;
    sps.numRefFrames = reader.ReadUe();
    sps.gapsInFrameNumAllowed = reader.ReadFlag();
    if (const Status status = ReadSize(reader, sps)) return status;
    sps.direct8x8Inference = reader.ReadFlag();
    sps.frameCropping = reader.ReadFlag();
    if (sps.frameCropping) {
        sps.cropLeft = reader.ReadUe();
        sps.cropRight = reader.ReadUe();
        sps.cropTop = reader.ReadUe();
        sps.cropBottom = reader.ReadUe();
    }
    sps.vuiPresent = reader.ReadFlag();
    if (reader.BitsLeft() < 0) return IMG_E_FAILED;
    // A damaged VUI costs no picture: it says nothing that decoding needs.
    if (sps.vuiPresent) ReadVui(reader, sps.vui);
    return CheckCropping(sps);
}

// MaxDpbMbs of ITU-T H.264 Table A-1.
std::uint32_t MaxDpbMbs(std::uint32_t level) {
    switch (level) {
        case 9:
        case 10:
            return 396;
        case 11:
            return 900;
        case 12:
        case 13:
        case 20:
            return 2376;
        case 21:
            return 4752;
        case 22:
        case 30:
            return 8100;
        case 31:
            return 18000;
        case 32:
            return 20480;
        case 40:
        case 41:
            return 32768;
        case 42:
            return 34816;
        case 50:
            return 110400;
        case 60:
        case 61:
        case 62:
            return 696320;
        default:
            return 184320;
    }
}

}  // namespace

Status ReadSps(const NalUnit& unit, H264ParameterSets& sets, const H264Sps** stored) {
    *stored = nullptr;
    UnescapedUnit payload;
    if (const Status status = payload.Load(unit)) return status;
    H264BitReader reader = payload.Reader();
    H264Sps sps;
    if (const Status status = ParseSps(reader, sps)) return status;
    std::unique_ptr<H264Sps>& place = sets.sps[sps.id];
    if (place == nullptr) place = std::make_unique<H264Sps>();
    *place = sps;
    *stored = place.get();
    return IMG_OK;
}

H264DpbSize SizeDecodedPictureBuffer(const H264SpsHead& sps, std::uint32_t threadCount) {
    constexpr std::uint32_t kMostFrames = 16;
    std::uint32_t level = sps.levelIdc;
    // Level 1b of the profiles that have no number of its own for it.
    if (!sps.IsHigh() && level == 11 && sps.constraintSet[3]) level = 9;
    H264DpbSize size;
    size.dpbSize = std::min(MaxDpbMbs(level) / (sps.FrameHeightInMbs() * sps.widthInMbs), kMostFrames);
    if (sps.vui.bitstreamRestriction) size.dpbSize = std::min(size.dpbSize, sps.vui.maxDecFrameBuffering);
    size.dpbSize = std::max(size.dpbSize, 1u);
    if (sps.numRefFrames <= kMostFrames) size.dpbSize = std::max(size.dpbSize, sps.numRefFrames);
    const std::int32_t extra = static_cast<std::int32_t>(threadCount) - static_cast<std::int32_t>(size.dpbSize) +
                               static_cast<std::int32_t>(std::min(sps.numRefFrames, kMostFrames));
    size.extraFrames = static_cast<std::uint32_t>(std::max(extra, 1));
    return size;
}

}  // namespace KorvaneSoftware
