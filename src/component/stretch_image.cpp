#include "component/stretch_image.h"

#include <algorithm>
#include <iterator>

#include "component/pictures.h"
#include "convert/conversion_dispatch.h"

namespace KorvaneSoftware {

HRESULT CStretchImage::FinalConstruct() {
    converter_.reset(CreateImageConverter());
    if (converter_ == nullptr) return E_OUTOFMEMORY;
    return ResultOf(converter_->SetConverter(&ImageConversionDispatch));
}

HRESULT CStretchImage::StretchImage(void* lpvDst, const void* lpvSrc, std::uint32_t nWidthDst, std::uint32_t nHeightDst,
                                    std::uint32_t nWidthSrc, std::uint32_t nHeightSrc, std::int32_t iStrideDst,
                                    std::int32_t iStrideSrc, std::uint32_t nFormat) {
    return ComponentCall([&] {
        const std::uint32_t format = PublicIdFromFourCC(nFormat);
        ConstImageDescriptor src = {PublicHeadOf(format, nWidthSrc, nHeightSrc)};
        ImageDescriptor dst = {PublicHeadOf(format, nWidthDst, nHeightDst)};
        if (ImageSetPlanes(&src, Bytes(lpvSrc), iStrideSrc) != IMG_OK) return E_FAIL;
        if (ImageSetPlanes(&dst, Bytes(lpvDst), iStrideDst) != IMG_OK) return E_FAIL;
        return ResultOf(converter_->ConvertPicture(dst, src));
    });
}

HRESULT CStretchImage::ResizeImage(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                   const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                   std::uint32_t dstWidth, std::uint32_t dstHeight, std::uint32_t srcWidth,
                                   std::uint32_t srcHeight, std::uint32_t format) {
    return ResizePixmorph(pDst, dstStride, pSrc, srcStride, dstWidth, dstHeight, srcWidth, srcHeight, format, format);
}

HRESULT CStretchImage::ResizePixmorph(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                      const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                      std::uint32_t dstWidth, std::uint32_t dstHeight, std::uint32_t srcWidth,
                                      std::uint32_t srcHeight, std::uint32_t dstFormat, std::uint32_t srcFormat) {
    return ComponentCall([&] {
        if (pDst == nullptr || dstStride == nullptr || pSrc == nullptr || srcStride == nullptr) return E_FAIL;
        const std::uint32_t dstId = PublicIdFromFourCC(dstFormat);
        const std::uint32_t srcId = PublicIdFromFourCC(srcFormat);
        ConstImageDescriptor src = PictureAt(PublicHeadOf(srcId, srcWidth, srcHeight), pSrc, srcStride);
        ImageDescriptor dst = PictureAt(PublicHeadOf(dstId, dstWidth, dstHeight), pDst, dstStride);
        // The first source stride serves all planes; callers rely on the other three being ignored.
        std::fill(std::begin(src.strides), std::end(src.strides), srcStride[0]);
        FlipTopDown(src, srcId);
        FlipTopDown(dst, dstId);
        // An unknown destination format asks for nothing, and succeeds.
        return dst.format == FMT_NONE ? S_OK : ResultOf(converter_->ConvertPicture(dst, src));
    });
}

HRESULT CStretchImage::ResizeImageMethod1() { return E_NOTIMPL; }
HRESULT CStretchImage::ResizeImageMethod2() { return E_NOTIMPL; }

}  // namespace KorvaneSoftware
