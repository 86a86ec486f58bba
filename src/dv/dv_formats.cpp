#include "dv/dv_formats.h"

namespace KorvaneSoftware {

namespace {

struct Size {
    std::uint32_t width;
    std::uint32_t height;
};

bool IsSize(const FormatHead& head, Size size) { return head.width == size.width && head.height == size.height; }

bool Is720Lines(const FormatHead& head) { return IsSize(head, {1280, 720}) || IsSize(head, {960, 720}); }

// The coded width of 1080 lines, which sources may have as well.
Size CodedSize1080(bool is50Hz) { return {is50Hz ? 1440u : 1280u, 1080}; }

std::uint32_t ChromaLayoutOf(const DvStream& stream) {
    switch (stream.sampling) {
        case DvSampling::k411:
            return CHROMA_411;
        case DvSampling::k420:
            return CHROMA_420;
        default:
            return CHROMA_422;
    }
}

bool IsPackedOrRgb(std::uint32_t format) {
    return format == FMT_BGR || format == FMT_BGRA || format == FMT_UYVY || format == FMT_YUY2 || format == FMT_YVYU;
}

// Formats of pictures at 25 and 50 Mbit.
bool IsSdFormat(std::uint32_t format) {
    return IsPackedOrRgb(format) || format == FMT_Y16 || format == FMT_Y41P || format == FMT_DV12;
}

bool IsSdSize(const FormatHead& head) { return IsSize(head, {720, 480}) || IsSize(head, {720, 576}); }

// Of the coded format for 100 Mbit the encoder fixes only what a picture is compared with: any other size is taken as
// 1080 lines.
Status CheckHdCodedFormat(const CodedFormat& format) {
    if (format.chromaLayout != CHROMA_UNSPECIFIED && format.chromaLayout != CHROMA_422) return IMG_E_BAD_FORMAT;
    if (format.kind != CODEC_DVCPRO100) return IMG_E_BAD_FORMAT;
    const std::uint32_t layout = format.height == 720 ? DV_PROGRESSIVE : DV_FIELDS_UPPER_FIRST;
    if (format.fieldLayout != DV_FIELDS_UNSPECIFIED && format.fieldLayout != layout) return IMG_E_BAD_FORMAT;
    return IMG_OK;
}

Status CheckHdSource(const ImageDescriptor& image, const CodedFormat* format, bool is50Hz) {
    const bool isCoded1080 = IsSize(image, CodedSize1080(is50Hz));
    if (!IsSize(image, {1920, 1080}) && !Is720Lines(image) && !isCoded1080) return IMG_E_BAD_SIZE;
    if (!IsPackedOrRgb(image.format)) return IMG_E_BAD_FORMAT;
    if (format == nullptr) return IMG_OK;
    if (format->kind != CODEC_DVCPRO100) return IMG_E_BAD_FORMAT;
    if (image.width == format->width && image.height == format->height) return IMG_OK;
    if (Is720Lines(image)) return Is720Lines(*format) ? IMG_OK : IMG_E_BAD_SIZE;
    return IsSize(*format, {1920, 1080}) || isCoded1080 ? IMG_OK : IMG_E_BAD_SIZE;
}

Status CheckSdSource(const ImageDescriptor& image, const CodedFormat* format) {
    if (!IsSdSize(image)) return IMG_E_BAD_SIZE;
    if (!IsSdFormat(image.format)) return IMG_E_BAD_FORMAT;
    if (format != nullptr && (image.width != format->width || image.height != format->height)) return IMG_E_BAD_SIZE;
    return IMG_OK;
}

}  // namespace

Status CheckDvCodedFormat(const CodedFormat* format, const DvKind& kind) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (kind.kind == CODEC_DVCPRO100) return CheckHdCodedFormat(*format);
    if (format->kind != kind.kind) return IMG_E_BAD_FORMAT;
    if (!IsSdSize(*format)) return IMG_E_BAD_SIZE;
    const std::uint32_t chroma = ChromaLayoutOf(*FindDvStream(kind.kind, format->height, kind.is50Hz));
    if (format->chromaLayout != CHROMA_UNSPECIFIED && format->chromaLayout != chroma) return IMG_E_BAD_FORMAT;
    return IMG_OK;
}

Status CheckDvSource(const ImageDescriptor* image, const CodedFormat* format, const DvKind& kind) {
    if (image == nullptr) return IMG_E_NULL_ARG;
    if (format != nullptr)
        if (const Status status = CheckDvCodedFormat(format, kind); status != IMG_OK) return status;
    if (kind.kind == CODEC_DVCPRO100) return CheckHdSource(*image, format, kind.is50Hz);
    return CheckSdSource(*image, format);
}

void FillDvCodedFormat(CodedFormat& format, const ImageDescriptor& image, const DvKind& kind) {
    format = {};
    format.kind = kind.kind;
    format.colorMatrix = image.colorMatrix;
    format.height = image.height;
    if (kind.kind == CODEC_DVCPRO100) {
        const bool is720 = image.height == 720;
        format.format = FMT_UYVY;
        format.width = is720 ? 1280 : 1920;
        format.aspectX = 16;
        format.aspectY = 9;
        format.frameRateNumerator = kind.is50Hz ? 25025 : 30000;
        format.frameRateDenominator = 1001;
        format.fieldLayout = is720 ? DV_PROGRESSIVE : DV_FIELDS_UPPER_FIRST;
        format.chromaLayout = CHROMA_422;
        format.fourCC = FourCC('K', 'V', 'H', '1');
        format.maxFrameSize = (kind.is50Hz ? 144000 : 120000) * (is720 ? 2 : 4);
        return;
    }
    const DvStream& stream = *FindDvStream(kind.kind, image.height, kind.is50Hz);
    const bool is420 = stream.sampling == DvSampling::k420;
    format.format = is420 ? FMT_DV12 : stream.sampling == DvSampling::k411 ? FMT_Y41P : FMT_UYVY;
    format.width = stream.codedWidth;
    format.aspectX = 4;
    format.aspectY = 3;
    format.frameRateNumerator = stream.Is50Hz() ? 25025 : 30000;
    format.frameRateDenominator = 1001;
    format.fieldLayout = DV_FIELDS_LOWER_FIRST;
    format.chromaLayout = ChromaLayoutOf(stream);
    format.fourCC = kind.kind == CODEC_DV       ? FourCC('K', 'V', 'D', 'V')
                    : kind.kind == CODEC_DVCPRO ? FourCC('K', 'V', '2', '5')
                                                : FourCC('K', 'V', '5', '0');
    format.maxFrameSize = static_cast<std::uint32_t>(stream.FrameBytes());
}

const DvStream* DvStreamToEncode(const CodedFormat& format, const DvKind& kind) {
    if (kind.kind != CODEC_DVCPRO100) return FindDvStream(kind.kind, format.height, kind.is50Hz);
    return FindDvStream(kind.kind, Is720Lines(format) ? 720 : 1080, kind.is50Hz);
}

Status CheckDvDecoding(const CodedFormat* format, const ImageDescriptor* image, std::uint32_t kind) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    const DvKind dvKind{kind, false};
    if (const Status status = CheckDvCodedFormat(format, dvKind); status != IMG_OK) return status;
    if (kind == CODEC_DVCPRO100 && !Is720Lines(*format) && !IsSize(*format, {1920, 1080}) &&
        !IsSize(*format, CodedSize1080(false)) && !IsSize(*format, CodedSize1080(true)))
        return IMG_E_BAD_SIZE;
    if (image == nullptr) return IMG_OK;
    if (image->width != format->width || image->height != format->height) return IMG_E_BAD_SIZE;
    // A picture without a format is given the decoder's own.
    if (image->format == FMT_NONE) return IMG_OK;
    const bool isTaken = kind == CODEC_DVCPRO100 ? IsPackedOrRgb(image->format) : IsSdFormat(image->format);
    return isTaken ? IMG_OK : IMG_E_BAD_FORMAT;
}

}  // namespace KorvaneSoftware
