#include "component/video_deinterlacer.h"

#include <new>

#include "component/pictures.h"
#include "deinterlace/deinterlace_filter_yadif.h"

namespace KorvaneSoftware {

namespace {

// RGB pictures are taken as they lie, for the top-down numbers as well.
FormatHead HeadOfFrame(std::uint32_t format, std::uint32_t width, std::uint32_t height) {
    return PublicHeadOf(PublicIdFromFourCC(format), width, height);
}

}  // namespace

CVideoDeinterlacer::~CVideoDeinterlacer() {
    if (filter_ != nullptr) filter_->Release();
}

// A refused mode still replaces the filter: the object then holds a new one without a history.
HRESULT CVideoDeinterlacer::Initialize(std::uint32_t mode) {
    return ComponentCall([&]() -> HRESULT {
        auto* const filter = new (std::nothrow) CDeinterlaceFilterYADIF;
        if (filter == nullptr) return E_OUTOFMEMORY;
        if (filter_ != nullptr) filter_->Release();
        filter_ = filter;
        return filter_->Initialize({0, 0, 0, mode}) == IMG_OK ? S_OK : E_INVALIDARG;
    });
}

HRESULT CVideoDeinterlacer::SetSourceFrame(const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                           std::uint32_t srcWidth, std::uint32_t srcHeight, std::uint32_t imageFormat,
                                           std::uint32_t imageStructure) {
    return ComponentCall([&]() -> HRESULT {
        if (filter_ == nullptr) return E_NOTIMPL;
        if (imageStructure != FIELDS_TOP_FIRST && imageStructure != FIELDS_BOTTOM_FIRST) return E_INVALIDARG;
        if (pSrc == nullptr || srcStride == nullptr) return E_FAIL;
        return ResultOf(filter_->SetSourceFrame(
            PictureAt(HeadOfFrame(imageFormat, srcWidth, srcHeight), pSrc, srcStride), imageStructure));
    });
}

HRESULT CVideoDeinterlacer::GetFrame(std::uint8_t* const* pDst, const std::int32_t* dstStride, std::uint32_t dstWidth,
                                     std::uint32_t dstHeight, std::uint32_t imageFormat, std::uint32_t fieldIntact) {
    return ComponentCall([&]() -> HRESULT {
        if (filter_ == nullptr) return E_NOTIMPL;
        ImageDescriptor image = {HeadOfFrame(imageFormat, dstWidth, dstHeight)};
        // Without the arrays every plane is null, which the filter refuses when there is a frame to give.
        if (pDst != nullptr && dstStride != nullptr) image = PictureAt(image, pDst, dstStride);
        const Status status = filter_->GetFrame(image, fieldIntact);
        return status == kFramePending ? E_PENDING : ResultOf(status);
    });
}

}  // namespace KorvaneSoftware
