#include "tarvex/tarvex_format.h"

#include <algorithm>

namespace KorvaneSoftware {

Status CheckTarvexFormat(const TarvexCodec& codec, const CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (format->kind != codec.kind) return IMG_E_BAD_FORMAT;
    if (format->chromaLayout != CHROMA_UNSPECIFIED && format->chromaLayout != CHROMA_422) return IMG_E_BAD_FORMAT;
    if (format->width == 0 || format->height == 0) return IMG_E_BAD_SIZE;
    return IMG_OK;
}

Status CheckTarvexPicture(const ImageDescriptor* image, const CodedFormat* format) {
    if (image == nullptr) return IMG_E_NULL_ARG;
    if (image->width == 0 || image->height == 0) return IMG_E_BAD_SIZE;
    if (format == nullptr) return IMG_OK;
    return image->width == format->width && image->height == format->height ? IMG_OK : IMG_E_BAD_SIZE;
}

CodedFormat TarvexFormatOf(const TarvexCodec& codec, const ImageDescriptor& image) {
    CodedFormat format;
    format.format = FMT_UYVY;
    format.width = image.width;
    format.height = image.height;
    format.colorMatrix = image.colorMatrix;
    format.aspectX = format.aspectY = 1;
    format.chromaLayout = CHROMA_422;
    format.kind = codec.kind;
    format.fourCC = codec.fourCC;
    const std::uint64_t most = std::uint64_t{image.width} * image.height * 4 + 4096;
    format.maxFrameSize = static_cast<std::uint32_t>(std::min<std::uint64_t>(most, UINT32_MAX));
    return format;
}

}  // namespace KorvaneSoftware
