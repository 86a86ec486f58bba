#include "h264/parsing/vui_reader.h"

namespace KorvaneSoftware {
namespace {

constexpr std::uint32_t kExtendedSar = 255;

// ITU-T H.264 Table E-1, aspect_ratio_idc 1 to 16.
constexpr std::uint8_t kSampleAspectRatios[16][2] = {{1, 1},    {12, 11}, {10, 11}, {16, 11}, {40, 33}, {24, 11},
                                                     {20, 11},  {32, 11}, {80, 33}, {18, 11}, {15, 11}, {64, 33},
                                                     {160, 99}, {4, 3},   {3, 2},   {2, 1}};

void ReadAspectRatio(H264BitReader& reader, H264Vui& vui) {
    const std::uint32_t idc = reader.ReadBits(8);
    if (idc >= 1 && idc <= 16) {
        vui.sarWidth = kSampleAspectRatios[idc - 1][0];
        vui.sarHeight = kSampleAspectRatios[idc - 1][1];
    } else if (idc == kExtendedSar) {
        vui.sarWidth = reader.ReadBits(16);
        vui.sarHeight = reader.ReadBits(16);
        if (vui.sarWidth == 0 || vui.sarHeight == 0) vui.sarWidth = vui.sarHeight = 1;
    }
}

Status ReadHrd(H264BitReader& reader, H264Hrd& hrd) {
    const std::uint32_t cpbCountMinus1 = reader.ReadUe();
    if (cpbCountMinus1 > 31) return IMG_E_FAILED;
    hrd.cpbCount = cpbCountMinus1 + 1;
    reader.ReadBits(4);  // bit_rate_scale
    reader.ReadBits(4);  // cpb_size_scale
    for (std::uint32_t i = 0; i < hrd.cpbCount; ++i) {
        reader.ReadUe();    // bit_rate_value_minus1
        reader.ReadUe();    // cpb_size_value_minus1
        reader.ReadFlag();  // cbr_flag
    }
    hrd.initialCpbRemovalDelayLength = reader.ReadBits(5) + 1;
    hrd.cpbRemovalDelayLength = reader.ReadBits(5) + 1;
    hrd.dpbOutputDelayLength = reader.ReadBits(5) + 1;
    hrd.timeOffsetLength = reader.ReadBits(5);
    return IMG_OK;
}

}  // namespace

Status ReadVui(H264BitReader& reader, H264Vui& vui) {
    if (reader.ReadFlag()) ReadAspectRatio(reader, vui);
    vui.overscanInfoPresent = reader.ReadFlag();
    if (vui.overscanInfoPresent) vui.overscanAppropriate = reader.ReadFlag();
    vui.videoSignalTypePresent = reader.ReadFlag();
    if (vui.videoSignalTypePresent) {
        vui.videoFormat = reader.ReadBits(3);
        vui.videoFullRange = reader.ReadFlag();
        vui.colourDescriptionPresent = reader.ReadFlag();
        if (vui.colourDescriptionPresent) {
            vui.colourPrimaries = reader.ReadBits(8);
            vui.transferCharacteristics = reader.ReadBits(8);
            vui.matrixCoefficients = reader.ReadBits(8);
        }
    }
    vui.chromaLocPresent = reader.ReadFlag();
    if (vui.chromaLocPresent) {
        vui.chromaLocTop = reader.ReadUe();
        vui.chromaLocBottom = reader.ReadUe();
    }
    vui.timingInfoPresent = reader.ReadFlag();
    if (vui.timingInfoPresent) {
        vui.numUnitsInTick = reader.ReadBits(32);
        vui.timeScale = reader.ReadBits(32);
        vui.fixedFrameRate = reader.ReadFlag();
    }
    vui.nalHrdPresent = reader.ReadFlag();
    if (vui.nalHrdPresent && ReadHrd(reader, vui.nalHrd) != IMG_OK) return IMG_E_FAILED;
    vui.vclHrdPresent = reader.ReadFlag();
    if (vui.vclHrdPresent && ReadHrd(reader, vui.vclHrd) != IMG_OK) return IMG_E_FAILED;
    if (vui.nalHrdPresent || vui.vclHrdPresent) vui.lowDelayHrd = reader.ReadFlag();
    vui.picStructPresent = reader.ReadFlag();
    const bool restriction = reader.ReadFlag();
    if (restriction) {
        vui.motionVectorsOverBoundaries = reader.ReadFlag();
        vui.maxBytesPerPicDenom = reader.ReadUe();
        vui.maxBitsPerMbDenom = reader.ReadUe();
        vui.log2MaxMvLengthHorizontal = reader.ReadUe();
        vui.log2MaxMvLengthVertical = reader.ReadUe();
        vui.numReorderFrames = reader.ReadUe();
        vui.maxDecFrameBuffering = reader.ReadUe();
    }
    // Behind the end of a cut VUI every flag would read as set.
    if (reader.BitsLeft() < 0) return IMG_E_FAILED;
    vui.bitstreamRestriction = restriction;
    return IMG_OK;
}

}  // namespace KorvaneSoftware
