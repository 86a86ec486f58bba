#include "component/pixmorph.h"

#include "component/pictures.h"
#include "convert/conversion_dispatch.h"
#include "convert/copy_image.h"
#include "convert/gamma.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

namespace {

constexpr std::uint32_t kPublicY16 = PIXMORPH_Y16;

// The sides of the planar methods carry a format and a matrix, but no depth.
FormatHead HeadWithoutDepth(std::uint32_t publicId, std::uint32_t width, std::uint32_t height) {
    FormatHead head = PublicHeadOf(publicId, width, height);
    head.lumaExtraBits = head.chromaExtraBits = 0;
    return head;
}

// Three planes of their own.
template <class Byte>
TImageDescriptor<Byte> Planar(const FormatHead& head, Byte* y, Byte* u, Byte* v, std::int32_t strideY,
                              std::int32_t strideU, std::int32_t strideV) {
    return {head, {y, u, v}, {strideY, strideU, strideV}};
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
        if (pDst == nullptr || dstStride == nullptr || pSrc == nullptr || srcStride == nullptr) return E_FAIL;
        ImageDescriptor dst = PictureAt(PublicHeadOf(dstId, width, height), pDst, dstStride);
        ConstImageDescriptor src = PictureAt(PublicHeadOf(srcId, width, height), pSrc, srcStride);
        FlipTopDown(dst, dstId);
        FlipTopDown(src, srcId);
        if (dst.format == FMT_NONE || src.format == FMT_NONE) return E_INVALIDARG;
        return ResultOf(ImageConversionDispatch(dst, src));
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
        const FormatHead head = HeadWithoutDepth(nFormat, nWidth, nHeight);
        if (head.format == FMT_NONE) return E_FAIL;
        const ConstImageDescriptor src = Planar(HeadOf(FMT_Y422, nWidth, nHeight), Bytes(lpvSrcY), Bytes(lpvSrcU),
                                                Bytes(lpvSrcV), iStrideSrcY, iStrideSrcU, iStrideSrcV);
        return ResultOf(ImageConversionDispatch(PictureAt(head, Bytes(lpvDst), iStrideDst), src));
    });
}

HRESULT CPixmorph::PixmorphToYUVPlanar(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc,
                                       std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDstY,
                                       std::int32_t iStrideDstU, std::int32_t iStrideDstV, std::int32_t iStrideSrc,
                                       std::uint32_t nFormat) {
    return ComponentCall([&] {
        const FormatHead head = HeadWithoutDepth(nFormat, nWidth, nHeight);
        if (head.format == FMT_NONE) return E_FAIL;
        const ImageDescriptor dst = Planar(HeadOf(FMT_Y422, nWidth, nHeight), Bytes(lpvDstY), Bytes(lpvDstU),
                                           Bytes(lpvDstV), iStrideDstY, iStrideDstU, iStrideDstV);
        return ResultOf(ImageConversionDispatch(dst, PictureAt(head, Bytes(lpvSrc), iStrideSrc)));
    });
}

HRESULT CPixmorph::PixmorphGamma(void* lpvDst, const void* lpvSrc, std::uint32_t nWidth, std::uint32_t nHeight,
                                 std::int32_t iStrideDst, std::int32_t iStrideSrc, std::uint32_t nFormatDst,
                                 std::uint32_t nFormatSrc) {
    return ComponentCall([&] {
        const std::uint32_t width = nWidth & ~15u;
        const std::uint32_t dstId = PublicIdFromFourCC(nFormatDst);
        const std::uint32_t srcId = PublicIdFromFourCC(nFormatSrc);
        const ImageDescriptor dst = PictureAt(PublicHeadOf(dstId, width, nHeight), Bytes(lpvDst), iStrideDst);
        const ConstImageDescriptor src = PictureAt(PublicHeadOf(srcId, width, nHeight), Bytes(lpvSrc), iStrideSrc);
        if (dstId == srcId) {
            // The outcome of the copy is not reported, not even that of an unknown format.
            (void)CopyImage(dst, src);
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
        const ImageDescriptor dst = Planar(HeadOf(FMT_I420, nWidth, nHeight), Bytes(lpvDstY), Bytes(lpvDstU),
                                           Bytes(lpvDstV), iStrideDstY, iStrideDstU, iStrideDstV);
        const FormatHead head = PublicHeadOf(srcId, nWidth, nHeight);
        return ResultOf(ImageConversionDispatch(dst, PictureAt(head, Bytes(lpvSrc), iStrideSrc)));
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
        ConstImageDescriptor src = PictureAt(PublicHeadOf(srcId, nWidth, fieldHeight), Bytes(lpvSrc1), iStrideSrc);
        ImageDescriptor dst = Planar(HeadOf(FMT_I420, nWidth, fieldHeight), Bytes(lpvDstY), Bytes(lpvDstU),
                                     Bytes(lpvDstV), iStrideDstY, iStrideDstU, iStrideDstV);
        const bool isEmpty = nWidth == 0 || fieldHeight == 0;
        // A plane that is missing cannot be moved to the second field, so none may be left to be derived.
        if (!isEmpty && (lpvSrc2 == nullptr || lpvDstY == nullptr || lpvDstU == nullptr || lpvDstV == nullptr))
            return E_FAIL;
        for (int plane = 0; plane < 3; ++plane) dst.strides[plane] *= 2;
        if (const Status status = ImageConversionDispatch(dst, src); status != IMG_OK) return E_FAIL;
        // Every plane moves by the luma stride, the chroma planes too: their callers keep them at that stride.
        for (int plane = 0; plane < 3; ++plane)
            if (dst.planes[plane] != nullptr) dst.planes[plane] += iStrideDstY;
        src.planes[0] = Bytes(lpvSrc2);
        return ResultOf(ImageConversionDispatch(dst, src));
    });
}

}  // namespace KorvaneSoftware
