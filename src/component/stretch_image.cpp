#include "component/stretch_image.h"

#include "convert/conversion_dispatch.h"

namespace KorvaneSoftware {

namespace {

ImageDescriptor HeadOf(std::uint32_t publicId, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor picture;
    SetPublicFormat(picture, publicId);
    picture.width = width;
    picture.height = height;
    return picture;
}

// Engines take one descriptor type for both sides and never write through the source.
std::uint8_t* Writable(const void* pixels) {
    return const_cast<std::uint8_t*>(static_cast<const std::uint8_t*>(pixels));
}

}  // namespace

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
        ImageDescriptor src = HeadOf(format, nWidthSrc, nHeightSrc);
        ImageDescriptor dst = HeadOf(format, nWidthDst, nHeightDst);
        if (ImageSetPlanes(&src, Writable(lpvSrc), iStrideSrc) != IMG_OK) return E_FAIL;
        if (ImageSetPlanes(&dst, Writable(lpvDst), iStrideDst) != IMG_OK) return E_FAIL;
        return ResultOf(converter_->Convert(&dst, &src));
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
        ImageDescriptor src = HeadOf(srcId, srcWidth, srcHeight);
        ImageDescriptor dst = HeadOf(dstId, dstWidth, dstHeight);
        for (int plane = 0; plane < 4; ++plane) {
            src.planes[plane] = Writable(pSrc[plane]);
            // The first source stride serves all planes; callers rely on the other three being ignored.
            src.strides[plane] = srcStride[0];
            dst.planes[plane] = pDst[plane];
            dst.strides[plane] = dstStride[plane];
        }
        // A missing plane stays null: the converter refuses it.
        if (IsTopDownPublicId(srcId) && src.planes[0] != nullptr) FlipFirstPlane(src);
        if (IsTopDownPublicId(dstId) && dst.planes[0] != nullptr) FlipFirstPlane(dst);
        return ResultOf(converter_->Convert(&dst, &src));
    });
}

HRESULT CStretchImage::ResizeImageMethod1() { return E_NOTIMPL; }
HRESULT CStretchImage::ResizeImageMethod2() { return E_NOTIMPL; }

}  // namespace KorvaneSoftware
