#include "h264/output/frame_description.h"

#include <numeric>

namespace KorvaneSoftware {
namespace {

constexpr std::uint32_t kMacroblock = 16;

/// By chroma_format_idc. 0 and 3 do not occur: their parameter sets are refused.
constexpr std::uint32_t kFormats[4] = {FMT_Y400, FMT_IMC4, FMT_Y422, FMT_Y444};
constexpr std::uint32_t kDeepFormats[4] = {FMT_S400, FMT_S420, FMT_S422, FMT_NONE};

FormatHead HeadOf(const H264SpsHead& sps) {
    FormatHead head;
    head.format = (sps.IsHighBitDepth() ? kDeepFormats : kFormats)[sps.chromaFormatIdc];
    head.width = sps.widthInMbs * kMacroblock;
    head.height = sps.FrameHeightInMbs() * kMacroblock;
    head.lumaExtraBits = static_cast<std::uint8_t>(sps.bitDepthLumaMinus8);
    head.chromaExtraBits = static_cast<std::uint8_t>(sps.bitDepthChromaMinus8);
    return head;
}

/// pic_struct of the pic_timing SEI (Table D-1).
enum : std::uint32_t { PIC_STRUCT_TOP_BOTTOM = 3, PIC_STRUCT_BOTTOM_TOP = 4 };

}  // namespace

const CH264Picture& ParametersOf(const CH264Frame& frame) {
    return frame.IsFieldCoded() ? frame.FirstField() : static_cast<const CH264Picture&>(frame);
}

ImageDescriptor DescribeSamples(const CH264Frame& frame) {
    ImageDescriptor image;
    static_cast<FormatHead&>(image) = HeadOf(ParametersOf(frame).sps);
    for (unsigned i = 0; i < 3; ++i) {
        image.planes[i] = frame.planes[i];
        image.strides[i] = frame.stride;
    }
    return image;
}

ImageRect CroppedRectangle(const H264SpsHead& sps) {
    ImageRect rect = {0, 0, static_cast<std::int32_t>(sps.widthInMbs * kMacroblock),
                      static_cast<std::int32_t>(sps.FrameHeightInMbs() * kMacroblock)};
    if (!sps.frameCropping) return rect;
    const std::uint32_t unitX = 2;
    const std::uint32_t unitY = (sps.frameMbsOnly ? 1u : 2u) * (sps.chromaFormatIdc == 1 ? 2u : 1u);
    rect.x = static_cast<std::int32_t>(sps.cropLeft * unitX);
    rect.y = static_cast<std::int32_t>(sps.cropTop * unitY);
    rect.width -= static_cast<std::int32_t>((sps.cropLeft + sps.cropRight) * unitX);
    rect.height -= static_cast<std::int32_t>((sps.cropTop + sps.cropBottom) * unitY);
    return rect;
}

H264AspectRatio DisplayAspectRatio(const H264SpsHead& sps) {
    const ImageRect rect = CroppedRectangle(sps);
    const std::uint32_t x = static_cast<std::uint32_t>(rect.width) * sps.vui.sarWidth;
    const std::uint32_t y = static_cast<std::uint32_t>(rect.height) * sps.vui.sarHeight;
    const std::uint32_t divisor = std::gcd(x, y);
    return {static_cast<std::uint16_t>(x / divisor), static_cast<std::uint16_t>(y / divisor)};
}

FieldStructure FieldStructureOf(const CH264Frame& frame) {
    if (!frame.IsFieldCoded() && !frame.mbaff) return FIELDS_PROGRESSIVE;
    const std::int32_t top = frame.fields[0].picOrderCnt;
    const std::int32_t bottom = frame.fields[1].picOrderCnt;
    if (top != bottom) return top < bottom ? FIELDS_TOP_FIRST : FIELDS_BOTTOM_FIRST;
    switch (ParametersOf(frame).timing.picStruct) {
        case PIC_STRUCT_TOP_BOTTOM:
            return FIELDS_TOP_FIRST;
        case PIC_STRUCT_BOTTOM_TOP:
            return FIELDS_BOTTOM_FIRST;
        default:
            return FIELDS_PROGRESSIVE;
    }
}

CodedFormat DescribeStream(const H264SpsHead& sps) {
    // Field layouts as this codec numbers them.
    enum : std::uint32_t { LAYOUT_INTERLACED = 3, LAYOUT_FRAMES_ONLY = 4 };
    CodedFormat format;
    static_cast<FormatHead&>(format) = HeadOf(sps);
    const ImageRect rect = CroppedRectangle(sps);
    format.width = static_cast<std::uint32_t>(rect.width);
    format.height = static_cast<std::uint32_t>(rect.height);
    format.frameRateNumerator = 2500;
    format.frameRateDenominator = 100;
    if (sps.vui.timingInfoPresent) {
        format.frameRateNumerator = sps.vui.timeScale;
        format.frameRateDenominator = 2 * sps.vui.numUnitsInTick;
    }
    format.fieldLayout = sps.frameMbsOnly ? LAYOUT_FRAMES_ONLY : LAYOUT_INTERLACED;
    format.chromaLayout = sps.chromaFormatIdc + 1;
    format.kind = CODEC_AVC;
    if (sps.vuiPresent) {
        const H264AspectRatio ratio = DisplayAspectRatio(sps);
        format.aspectX = ratio.x;
        format.aspectY = ratio.y;
    }
    return format;
}

}  // namespace KorvaneSoftware
