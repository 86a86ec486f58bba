#include "component/video_interpolation.h"

#include "deinterlace/video_interpolator.h"

namespace KorvaneSoftware {

namespace {

ImageDescriptor BytePlane(const std::uint8_t* pixels, std::int32_t stride, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor plane;
    plane.format = FMT_Y400;
    plane.width = width;
    plane.height = height;
    plane.planes[0] = const_cast<std::uint8_t*>(pixels);  // Descriptors serve sources and destinations alike.
    plane.strides[0] = stride;
    return plane;
}

}  // namespace

// The two interpolations succeed whatever happens inside: callers have never been told of a failure.
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

// Weights 0 and 255 get no copy of one source: the formula gives the one for 0 and 256, and 255 is a weight like
// others.
HRESULT CVideoInterpolation::CombineBuffersAlpha(std::uint8_t* pDst, const std::uint8_t* pSrcFwd,
                                                 const std::uint8_t* pSrcBck, std::int32_t stride, std::uint32_t width,
                                                 std::uint32_t height, std::uint32_t alphaFwd) {
    return ResultOf(CVideoInterpolator::CombineImages(BytePlane(pDst, stride, width, height),
                                                      BytePlane(pSrcFwd, stride, width, height),
                                                      BytePlane(pSrcBck, stride, width, height), alphaFwd));
}

}  // namespace KorvaneSoftware
