#include "component/pixmorph.h"

#include "convert/conversion_dispatch.h"
#include "convert/copy_image.h"
#include "convert/gamma.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

namespace {

constexpr std::uint32_t kPublicY16 = PIXMORPH_Y16;

// Descriptors hold one kind of pointer; the engine never writes to a source.
std::uint8_t* Bytes(const void* p) { return const_cast<std::uint8_t*>(static_cast<const std::uint8_t*>(p)); }

// Format, matrix and depth of a public number; format 0 when there is none.
ImageDescriptor Picture(std::uint32_t publicId, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor picture;
    SetPublicFormat(picture, publicId);
    picture.width = width;
    picture.height = height;
    return picture;
}

void SetPlane(ImageDescriptor& picture, int plane, const void* base, std::int32_t stride) {
    picture.planes[plane] = Bytes(base);
    picture.strides[plane] = stride;
}

// The sides of the planar methods carry a format and a matrix, but no depth.
ImageDescriptor PictureWithoutDepth(std::uint32_t publicId, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor picture = Picture(publicId, width, height);
    picture.lumaExtraBits = picture.chromaExtraBits = 0;
    return picture;
}

ImageDescriptor Planar(std::uint32_t format, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor picture;
    picture.format = format;
    picture.width = width;
    picture.height = height;
    return picture;
}

// A missing plane stays missing: moved to the last line it would look like one.
void FlipTopDown(ImageDescriptor& picture, std::uint32_t publicId) {
    if (IsTopDownPublicId(publicId) && picture.planes[0] != nullptr) FlipFirstPlane(picture);
}

}  // namespace

HRESULT CPixmorph::Pixmorph(void* lpvDst, const void* lpvSrc, std::uint32_t iWidth, std::uint32_t iHeight,
                            std::int32_t iStrideDst, std::int32_t iStrideSrc, std::uint32_t iTypeDst,
                            std::uint32_t iTypeSrc) {
    std::uint8_t* const dst[4] = {Bytes(lpvDst)};
    const std::uint8_t* const src[4] = {Bytes(lpvSrc)};
    const std::int32_t dstStride[4] = {iStrideDst};
    const std::int32_t srcStride[4] = {iStrideSrc};
    return static_cast<IColorConversion*>(this)->Pixmorph(dst, dstStride, src, srcStride, iWidth, iHeight, iTypeDst,
                                                          iTypeSrc);
}

HRESULT CPixmorph::Pixmorph(std::uint8_t* const* pDst, const std::int32_t* dstStride, const std::uint8_t* const* pSrc,
                            const std::int32_t* srcStride, std::uint32_t width, std::uint32_t height,
                            std::uint32_t dstFormat, std::uint32_t srcFormat) {
    return ComponentCall([&] {
        const std::uint32_t dstId = PublicIdFromFourCC(dstFormat);
        const std::uint32_t srcId = PublicIdFromFourCC(srcFormat);
        ImageDescriptor dst = Picture(dstId, width, height);
        ImageDescriptor src = Picture(srcId, width, height);
        if (pDst == nullptr || dstStride == nullptr || pSrc == nullptr || srcStride == nullptr) return E_FAIL;
        for (int plane = 0; plane < 4; ++plane) {
            SetPlane(dst, plane, pDst[plane], dstStride[plane]);
            SetPlane(src, plane, pSrc[plane], srcStride[plane]);
        }
        FlipTopDown(dst, dstId);
        FlipTopDown(src, srcId);
        if (dst.format == FMT_NONE || src.format == FMT_NONE) return E_INVALIDARG;
        return ResultOf(ImageConversionDispatch(&dst, &src));
    });
}

HRESULT CPixmorph::GetFormatId(std::uint32_t* pFormatId, std::uint32_t fourCC) {
    if (pFormatId == nullptr) return E_POINTER;
    const std::uint32_t publicId = PublicIdFromFourCC(fourCC);
    const PublicFormatRecord* const record = FindPublicFormat(publicId);
    if (record == nullptr || record->format == FMT_NONE) return E_INVALIDARG;
    *pFormatId = publicId;
    return S_OK;
}

HRESULT CPixmorph::CheckConversion(std::uint32_t dstFormat, std::uint32_t srcFormat) {
    const PublicFormatRecord* const dst = FindPublicFormat(PublicIdFromFourCC(dstFormat));
    const PublicFormatRecord* const src = FindPublicFormat(PublicIdFromFourCC(srcFormat));
    if (dst == nullptr || src == nullptr) return E_INVALIDARG;
    return HasConversion(dst->format, src->format) ? S_OK : E_FAIL;
}

HRESULT CPixmorph::PixmorphMethod0() { return E_NOTIMPL; }

HRESULT CPixmorph::PixmorphMethod1() { return E_NOTIMPL; }

HRESULT CPixmorph::PixmorphMethod2() { return E_NOTIMPL; }

HRESULT CPixmorph::ConvertYUVPlanarToImage(void* lpvDst, const void* lpvSrcY, const void* lpvSrcU, const void* lpvSrcV,
                                           std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                           std::int32_t iStrideSrcY, std::int32_t iStrideSrcU, std::int32_t iStrideSrcV,
                                           std::uint32_t nFormat) {
    return ComponentCall([&] {
        ImageDescriptor dst = PictureWithoutDepth(nFormat, nWidth, nHeight);
        if (dst.format == FMT_NONE) return E_FAIL;
        SetPlane(dst, 0, lpvDst, iStrideDst);
        ImageDescriptor src = Planar(FMT_Y422, nWidth, nHeight);
        SetPlane(src, 0, lpvSrcY, iStrideSrcY);
        SetPlane(src, 1, lpvSrcU, iStrideSrcU);
        SetPlane(src, 2, lpvSrcV, iStrideSrcV);
        return ResultOf(ImageConversionDispatch(&dst, &src));
    });
}

HRESULT CPixmorph::PixmorphToYUVPlanar(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc,
                                       std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDstY,
                                       std::int32_t iStrideDstU, std::int32_t iStrideDstV, std::int32_t iStrideSrc,
                                       std::uint32_t nFormat) {
    return ComponentCall([&] {
        ImageDescriptor src = PictureWithoutDepth(nFormat, nWidth, nHeight);
        if (src.format == FMT_NONE) return E_FAIL;
        SetPlane(src, 0, lpvSrc, iStrideSrc);
        ImageDescriptor dst = Planar(FMT_Y422, nWidth, nHeight);
        SetPlane(dst, 0, lpvDstY, iStrideDstY);
        SetPlane(dst, 1, lpvDstU, iStrideDstU);
        SetPlane(dst, 2, lpvDstV, iStrideDstV);
        return ResultOf(ImageConversionDispatch(&dst, &src));
    });
}

HRESULT CPixmorph::PixmorphGamma(void* lpvDst, const void* lpvSrc, std::uint32_t nWidth, std::uint32_t nHeight,
                                 std::int32_t iStrideDst, std::int32_t iStrideSrc, std::uint32_t nFormatDst,
                                 std::uint32_t nFormatSrc) {
    return ComponentCall([&] {
        const std::uint32_t width = nWidth & ~15u;
        const std::uint32_t dstId = PublicIdFromFourCC(nFormatDst);
        const std::uint32_t srcId = PublicIdFromFourCC(nFormatSrc);
        ImageDescriptor dst = Picture(dstId, width, nHeight);
        ImageDescriptor src = Picture(srcId, width, nHeight);
        SetPlane(dst, 0, lpvDst, iStrideDst);
        SetPlane(src, 0, lpvSrc, iStrideSrc);
        if (dstId == srcId) {
            // The outcome of the copy is not reported, not even that of an unknown format.
            (void)CopyImage(&dst, &src);
            return S_OK;
        }
        if (srcId != PIXMORPH_Y16A || dstId != PIXMORPH_BGRA) return E_INVALIDARG;
        return ResultOf(ConvertWithGamma(dst, src));
    });
}

HRESULT CPixmorph::SetGammaPal() { return SetGamma(kGammaPal); }

HRESULT CPixmorph::SetGammaNtsc() { return SetGamma(kGammaNtsc); }

HRESULT CPixmorph::SetGamma(double dGamma) {
    return ComponentCall([&] {
        SetGammaExponent(dGamma);
        return S_OK;
    });
}

HRESULT CPixmorph::PixmorphToYUV420Planar(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc,
                                          std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDstY,
                                          std::int32_t iStrideDstU, std::int32_t iStrideDstV, std::int32_t iStrideSrc,
                                          std::uint32_t nSrcFormat) {
    return ComponentCall([&] {
        const std::uint32_t srcId = PublicIdFromFourCC(nSrcFormat);
        if (srcId != kPublicY16) return E_INVALIDARG;
        ImageDescriptor src = Picture(srcId, nWidth, nHeight);
        SetPlane(src, 0, lpvSrc, iStrideSrc);
        ImageDescriptor dst = Planar(FMT_I420, nWidth, nHeight);
        SetPlane(dst, 0, lpvDstY, iStrideDstY);
        SetPlane(dst, 1, lpvDstU, iStrideDstU);
        SetPlane(dst, 2, lpvDstV, iStrideDstV);
        return ResultOf(ImageConversionDispatch(&dst, &src));
    });
}

HRESULT CPixmorph::PixmorphToYUV420Planar2(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc1,
                                           const void* lpvSrc2, std::uint32_t nWidth, std::uint32_t nHeight,
                                           std::int32_t iStrideDstY, std::int32_t iStrideDstU, std::int32_t iStrideDstV,
                                           std::int32_t iStrideSrc, std::uint32_t nSrcFormat) {
    return ComponentCall([&] {
        const std::uint32_t srcId = PublicIdFromFourCC(nSrcFormat);
        if (srcId != kPublicY16) return E_INVALIDARG;
        const std::uint32_t fieldHeight = nHeight / 2;
        ImageDescriptor src = Picture(srcId, nWidth, fieldHeight);
        SetPlane(src, 0, lpvSrc1, iStrideSrc);
        ImageDescriptor dst = Planar(FMT_I420, nWidth, fieldHeight);
        SetPlane(dst, 0, lpvDstY, iStrideDstY);
        SetPlane(dst, 1, lpvDstU, iStrideDstU);
        SetPlane(dst, 2, lpvDstV, iStrideDstV);
        const bool isEmpty = nWidth == 0 || fieldHeight == 0;
        // A plane that is missing cannot be moved to the second field, so none may be left to be derived.
        if (!isEmpty && (lpvSrc2 == nullptr || lpvDstY == nullptr || lpvDstU == nullptr || lpvDstV == nullptr))
            return E_FAIL;
        for (int plane = 0; plane < 3; ++plane) dst.strides[plane] *= 2;
        if (const Status status = ImageConversionDispatch(&dst, &src); status != IMG_OK) return E_FAIL;
        // Every plane moves by the luma stride, the chroma planes too: their callers keep them at that stride.
        for (int plane = 0; plane < 3; ++plane)
            if (dst.planes[plane] != nullptr) dst.planes[plane] += iStrideDstY;
        SetPlane(src, 0, lpvSrc2, iStrideSrc);
        return ResultOf(ImageConversionDispatch(&dst, &src));
    });
}

}  // namespace KorvaneSoftware
