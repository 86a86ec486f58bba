// Sequence and picture parameter sets of ITU-T H.264 (clauses 7.3.2.1, 7.3.2.2 and E.1) as this decoder keeps them.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/status.h"
#include "h264/parsing/nal_units.h"

namespace KorvaneSoftware {

constexpr std::uint32_t kH264SpsCount = 32;
constexpr std::uint32_t kH264PpsCount = 256;
/// Largest picture that is taken: MaxFS of level 6.2 (Table A-1) and, in one direction, sqrt(8 x MaxFS).
constexpr std::uint32_t kH264MostMacroblocks = 139264;
constexpr std::uint32_t kH264MostMacroblocksAcross = 1056;

/// Scaling matrices with all defaults and fall-backs resolved. Weights stand by position, row by row.
struct H264ScalingLists {
    /// Intra Y, Cb, Cr, then inter Y, Cb, Cr.
    std::uint16_t lists4x4[6][16];
    /// Intra Y, inter Y.
    std::uint16_t lists8x8[2][64];

    void SetFlat();
};

struct H264Hrd {
    std::uint32_t cpbCount = 1;
    std::uint32_t initialCpbRemovalDelayLength = 24;
    std::uint32_t cpbRemovalDelayLength = 24;
    std::uint32_t dpbOutputDelayLength = 24;
    std::uint32_t timeOffsetLength = 24;
};

struct H264Vui {
    std::uint32_t sarWidth = 1;
    std::uint32_t sarHeight = 1;
    bool overscanInfoPresent = false;
    bool overscanAppropriate = false;
    bool videoSignalTypePresent = false;
    std::uint32_t videoFormat = 5;
    bool videoFullRange = false;
    bool colourDescriptionPresent = false;
    std::uint32_t colourPrimaries = 2;
    std::uint32_t transferCharacteristics = 2;
    std::uint32_t matrixCoefficients = 2;
    bool chromaLocPresent = false;
    std::uint32_t chromaLocTop = 0;
    std::uint32_t chromaLocBottom = 0;
    bool timingInfoPresent = false;
    std::uint32_t numUnitsInTick = 0;
    std::uint32_t timeScale = 0;
    bool fixedFrameRate = false;
    bool nalHrdPresent = false;
    bool vclHrdPresent = false;
    H264Hrd nalHrd;
    H264Hrd vclHrd;
    bool lowDelayHrd = false;
    bool picStructPresent = false;
    bool bitstreamRestriction = false;
    bool motionVectorsOverBoundaries = true;
    std::uint32_t maxBytesPerPicDenom = 2;
    std::uint32_t maxBitsPerMbDenom = 1;
    std::uint32_t log2MaxMvLengthHorizontal = 16;
    std::uint32_t log2MaxMvLengthVertical = 16;
    std::uint32_t numReorderFrames = 0;
    std::uint32_t maxDecFrameBuffering = 0;
};

/// The part of an SPS that a picture copies: a new SPS of the same id may come while the picture is in work.
struct H264SpsHead {
    std::uint32_t profileIdc = 0;
    bool constraintSet[4] = {};
    std::uint32_t levelIdc = 0;
    std::uint32_t id = 0;
    std::uint32_t chromaFormatIdc = 1;  ///< 1 (4:2:0) or 2 (4:2:2).
    std::uint32_t bitDepthLumaMinus8 = 0;
    std::uint32_t bitDepthChromaMinus8 = 0;
    bool qpprimeYZeroTransformBypass = false;
    bool scalingMatrixPresent = false;
    std::uint32_t log2MaxFrameNum = 4;
    std::uint32_t picOrderCntType = 0;
    std::uint32_t log2MaxPicOrderCntLsb = 4;
    bool deltaPicOrderAlwaysZero = false;
    std::int32_t offsetForNonRefPic = 0;
    std::int32_t offsetForTopToBottomField = 0;
    std::uint32_t numRefFramesInPicOrderCntCycle = 0;
    std::uint32_t numRefFrames = 0;
    bool gapsInFrameNumAllowed = false;
    std::uint32_t widthInMbs = 0;
    std::uint32_t heightInMapUnits = 0;
    bool frameMbsOnly = true;
    bool mbAdaptiveFrameField = false;
    bool direct8x8Inference = false;
    bool frameCropping = false;
    std::uint32_t cropLeft = 0;  ///< In crop units, as the four offsets of the syntax.
    std::uint32_t cropRight = 0;
    std::uint32_t cropTop = 0;
    std::uint32_t cropBottom = 0;
    bool vuiPresent = false;
    H264Vui vui;

    /// Rows of macroblocks of a frame.
    std::uint32_t FrameHeightInMbs() const { return heightInMapUnits * (frameMbsOnly ? 1 : 2); }
    std::uint32_t MaxFrameNum() const { return 1u << log2MaxFrameNum; }
    bool IsHigh() const { return profileIdc >= 100; }
    bool IsHighBitDepth() const { return bitDepthLumaMinus8 != 0 || bitDepthChromaMinus8 != 0; }
};

struct H264Sps : H264SpsHead {
    std::int32_t offsetForRefFrame[255] = {};
    H264ScalingLists scaling;
};

/// The part of a PPS that a picture and its slices copy.
struct H264PpsHead {
    std::uint32_t id = 0;
    std::uint32_t spsId = 0;
    bool entropyCodingMode = false;
    bool bottomFieldPicOrderInFramePresent = false;
    std::uint32_t numRefIdxDefaultActive[2] = {1, 1};
    bool weightedPred = false;
    std::uint32_t weightedBipredIdc = 0;
    std::int32_t picInitQp = 26;
    std::int32_t picInitQs = 26;
    std::int32_t chromaQpIndexOffset[2] = {};  ///< Cb, Cr.
    bool deblockingFilterControlPresent = false;
    bool constrainedIntraPred = false;
    bool redundantPicCntPresent = false;
    bool transform8x8Mode = false;
    bool scalingMatrixPresent = false;
};

/// A PPS is complete: its lists were resolved against the SPS that was there when it came.
struct H264Pps : H264PpsHead {
    H264ScalingLists scaling;
};

/// The sets that a stream has sent so far.
struct H264ParameterSets {
    std::unique_ptr<H264Sps> sps[kH264SpsCount];
    std::unique_ptr<H264Pps> pps[kH264PpsCount];

    /// Null where there is none.
    const H264Sps* FindSps(std::uint32_t id) const { return id < kH264SpsCount ? sps[id].get() : nullptr; }
    const H264Pps* FindPps(std::uint32_t id) const { return id < kH264PpsCount ? pps[id].get() : nullptr; }
};

/// Reads an SPS and, where it is accepted, puts it in its place.
/// @return IMG_E_FAILED for values out of range, IMG_E_UNSUPPORTED for profiles and formats that are not decoded (the
///         place stays as it was), IMG_E_NO_MEMORY.
Status ReadSps(const NalUnit& unit, H264ParameterSets& sets, const H264Sps** stored);
/// The same for a PPS. IMG_E_UNSUPPORTED for slice groups.
Status ReadPps(const NalUnit& unit, H264ParameterSets& sets);

/// Frames of delay and reference capacity that an SPS asks for, and how many frames may exist beyond them.
struct H264DpbSize {
    std::uint32_t dpbSize = 1;
    std::uint32_t extraFrames = 1;
};
H264DpbSize SizeDecodedPictureBuffer(const H264SpsHead& sps, std::uint32_t threadCount);

}  // namespace KorvaneSoftware
