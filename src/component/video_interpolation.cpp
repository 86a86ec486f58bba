#include "component/video_interpolation.h"

#include "component/pictures.h"
#include "deinterlace/video_interpolator.h"

namespace KorvaneSoftware {

// The two interpolations succeed whatever happens inside: callers never learn of a failure.
HRESULT CVideoInterpolation::InterpolateTopField(std::uint8_t* pbDst, const std::uint8_t* pbSrc,
                                                 const std::uint8_t* pbSrcOther, std::uint32_t fieldWidth,
                                                 std::uint32_t fieldHeight, std::int32_t fieldStride,
                                                 std::uint32_t fieldAlpha) {
    CVideoInterpolator::InterpolateTopField(
        {pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride, fieldAlpha});
    return S_OK;
}

HRESULT CVideoInterpolation::InterpolateBottomField(std::uint8_t* pbDst, const std::uint8_t* pbSrc,
                                                    const std::uint8_t* pbSrcOther, std::uint32_t fieldWidth,
                                                    std::uint32_t fieldHeight, std::int32_t fieldStride,
                                                    std::uint32_t fieldAlpha) {
    CVideoInterpolator::InterpolateBottomField(
        {pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride, fieldAlpha});
    return S_OK;
}

// At weight 255 the destination is filled with the forward source before the mix, and at 0 with the backward one. The
// mix writes every byte anew, so the fill shows in one case only: mixed in place over the backward source at 255, the
// mix then reads the forward source on both sides. At 255 the result otherwise is a weighted mean like others.
HRESULT CVideoInterpolation::CombineBuffersAlpha(std::uint8_t* pDst, const std::uint8_t* pSrcFwd,
                                                 const std::uint8_t* pSrcBck, std::int32_t stride, std::uint32_t width,
                                                 std::uint32_t height, std::uint32_t alphaFwd) {
    const FormatHead head = HeadOf(FMT_Y400, width, height);
    const bool fillShows = alphaFwd == 255 && pDst == pSrcBck;
    return ResultOf(CVideoInterpolator::CombineImages(PictureAt(head, pDst, stride), PictureAt(head, pSrcFwd, stride),
                                                      PictureAt(head, fillShows ? pSrcFwd : pSrcBck, stride),
                                                      alphaFwd));
}

}  // namespace KorvaneSoftware
