#include "component/title_mixer.h"

#include "component/pictures.h"
#include "foundation/block_ops.h"
#include "foundation/image_descriptor.h"
#include "titles/title_mixer.h"
#include "titles/title_runs.h"

namespace KorvaneSoftware {

namespace {

template <class Byte>
TImageDescriptor<Byte> Title(Byte* base, std::uint32_t width, std::uint32_t height, std::int32_t stride) {
    return PictureAt(HeadOf(FMT_BGRA, width, height), base, stride);
}

// The top-down numbers of the RGB formats give the plain ones here: rows are not turned.
template <class Byte>
TImageDescriptor<Byte> Image(Byte* base, std::uint32_t width, std::uint32_t height, std::int32_t stride,
                             std::uint32_t publicFormat) {
    return PictureAt(PublicHeadOf(publicFormat, width, height), base, stride);
}

// Groups of a title of any width: a last, incomplete group is read whole. The step between rows then takes off only the
// row's own pixels, so that the source drifts by the rest; with multiples of 16 it is the stride.
GroupRows TitleGroupRows(const std::uint8_t* source, std::uint32_t width, std::uint32_t height, std::int32_t stride) {
    GroupRows rows;
    rows.first = source;
    rows.groups = (std::uint64_t{width} + kGroupPixels - 1) / kGroupPixels;
    rows.rows = height;
    rows.step = static_cast<std::int64_t>(rows.groups * 64) + stride - static_cast<std::int64_t>(width) * 4;
    return rows;
}

// Rows without gaps are one block. `fill` is one of the sized fills.
template <class Value, class Fill>
HRESULT FillImage(std::uint8_t* image, std::int32_t stride, std::uint32_t width, std::uint32_t height, Value value,
                  Fill fill) {
    if (image == nullptr) return S_OK;
    if (stride == static_cast<std::int64_t>(width) * static_cast<std::int64_t>(sizeof(Value))) {
        fill(image, static_cast<std::size_t>(width) * height, value);
        return S_OK;
    }
    for (std::int64_t row = 0; row < height; ++row) fill(image + row * stride, width, value);
    return S_OK;
}

}  // namespace

template <class Interface>
HRESULT TTitleMixer<Interface>::MovTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                         std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                         std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) {
    const ImageDescriptor dst = Title(lpbDestination, nWidth, nHeight, iStrideDst);
    const ConstImageDescriptor src = Title(lpbSource, nWidth, nHeight, iStrideSrc);
    return ResultOf(PutImageIntoTitle(dst, src, nRegionAlpha));
}

template <class Interface>
HRESULT TTitleMixer<Interface>::AddTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                         std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                         std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) {
    const ImageDescriptor dst = Title(lpbDestination, nWidth, nHeight, iStrideDst);
    const ConstImageDescriptor src = Title(lpbSource, nWidth, nHeight, iStrideSrc);
    return ResultOf(AddImageBeneathTitle(dst, src, nRegionAlpha));
}

template <class Interface>
HRESULT TTitleMixer<Interface>::CompressToRLE(std::uint8_t** lpbDestination, const std::uint8_t* lpbSource,
                                              std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideSource,
                                              std::int32_t** lpiCounter) {
    if (lpbDestination == nullptr || lpiCounter == nullptr) return S_OK;
    RunCursor cursor{*lpbDestination, *lpiCounter};
    // Callers get success whatever happens; a failure has moved nothing.
    if (CompressTitleRuns(cursor, TitleGroupRows(lpbSource, nWidth, nHeight, iStrideSource)) == IMG_OK) {
        *lpbDestination = cursor.position;
        *lpiCounter = static_cast<std::int32_t*>(cursor.cell);
    }
    return S_OK;
}

template class TTitleMixer<ITitleMixer>;
template class TTitleMixer<ITitleMixer2>;
template class TTitleMixer<ITitleMixer4>;

HRESULT CTitleMixer2::Convert4CableTV(std::uint8_t* pbDestination, const std::uint8_t* pbSource, std::uint32_t nWidth,
                                      std::uint32_t nHeight, std::int32_t iStrideDest, std::int32_t iStrideSource) {
    const GroupRows source = TitleGroupRows(pbSource, nWidth, nHeight, iStrideSource);
    const std::int64_t step =
        static_cast<std::int64_t>(source.groups * kRecordBytes) + iStrideDest - static_cast<std::int64_t>(nWidth) * 3;
    WriteTitleGroups(pbDestination, step, source);
    return S_OK;
}

HRESULT CTitleMixer3::PixmorphToTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                      std::uint32_t imageWidth, std::uint32_t imageHeight, std::int32_t dstTitleStride,
                                      std::int32_t srcImageStride, std::uint32_t regionAlpha,
                                      std::uint32_t imageFormat) {
    const ImageDescriptor dst = Title(pbDstTitle, imageWidth, imageHeight, dstTitleStride);
    const ConstImageDescriptor src = Image(pbSrcImage, imageWidth, imageHeight, srcImageStride, imageFormat);
    return ResultOf(PutImageIntoTitle(dst, src, regionAlpha));
}

HRESULT CTitleMixer3::PixmorphToNPTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                        std::uint32_t imageWidth, std::uint32_t imageHeight,
                                        std::int32_t dstTitleStride, std::int32_t srcImageStride,
                                        std::uint32_t regionAlpha, std::uint32_t imageFormat) {
    const ImageDescriptor dst = Title(pbDstTitle, imageWidth, imageHeight, dstTitleStride);
    const ConstImageDescriptor src = Image(pbSrcImage, imageWidth, imageHeight, srcImageStride, imageFormat);
    return ResultOf(PutImageIntoNPTitle(dst, src, regionAlpha));
}

HRESULT CTitleMixer3::AddImageToTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                      std::uint32_t imageWidth, std::uint32_t imageHeight, std::int32_t dstTitleStride,
                                      std::int32_t srcImageStride, std::uint32_t regionAlpha,
                                      std::uint32_t imageFormat) {
    const ImageDescriptor dst = Title(pbDstTitle, imageWidth, imageHeight, dstTitleStride);
    const ConstImageDescriptor src = Image(pbSrcImage, imageWidth, imageHeight, srcImageStride, imageFormat);
    return ResultOf(AddImageBeneathTitle(dst, src, regionAlpha));
}

// Never implemented, but part of the interface: callers rely on the method being there and on its answer.
HRESULT CTitleMixer3::AddTitleToImage(std::uint8_t*, const std::uint8_t*, std::uint32_t, std::uint32_t, std::int32_t,
                                      std::int32_t, std::uint32_t, std::uint32_t) {
    return E_FAIL;
}

HRESULT CTitleMixer3::ConvertTitleToImage(std::uint8_t* pbDstImage, const std::uint8_t* pbSrcTitle,
                                          std::uint32_t imageWidth, std::uint32_t imageHeight,
                                          std::int32_t dstImageStride, std::int32_t srcTitleStride,
                                          std::uint32_t imageFormat) {
    const ImageDescriptor dst = Image(pbDstImage, imageWidth, imageHeight, dstImageStride, imageFormat);
    const ConstImageDescriptor src = Title(pbSrcTitle, imageWidth, imageHeight, srcTitleStride);
    return ResultOf(TitleToStraightImage(dst, src));
}

HRESULT CTitleMixer3::MoveImageToUYVYBuffer(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                            std::uint32_t width, std::uint32_t height, std::int32_t strideDst,
                                            std::int32_t strideSrc, std::uint32_t regionAlpha, std::uint32_t dstFormat,
                                            std::uint32_t srcFormat) {
    const ImageDescriptor dst = Image(pbDestination, width, height, strideDst, dstFormat);
    const ConstImageDescriptor src = Image(pbSource, width, height, strideSrc, srcFormat);
    return ResultOf(MoveImageOntoFrame(dst, src, regionAlpha));
}

HRESULT CTitleMixer3::AddImageToUYVYBuffer(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                           std::uint32_t width, std::uint32_t height, std::int32_t strideDst,
                                           std::int32_t strideSrc, std::uint32_t regionAlpha, std::uint32_t dstFormat,
                                           std::uint32_t srcFormat) {
    const ImageDescriptor dst = Image(pbDestination, width, height, strideDst, dstFormat);
    const ConstImageDescriptor src = Image(pbSource, width, height, strideSrc, srcFormat);
    return ResultOf(AddImageOntoFrame(dst, src, regionAlpha));
}

HRESULT CTitleMixer3::SetImageByte(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                   std::uint32_t height, std::uint8_t value) {
    return FillImage(pbImage, stride, width, height, value, FillBytesSized);
}

HRESULT CTitleMixer3::SetImageWord(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                   std::uint32_t height, std::uint16_t value) {
    return FillImage(pbImage, stride, width, height, value, FillWordsSized);
}

HRESULT CTitleMixer3::SetImageDword(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                    std::uint32_t height, std::uint32_t value) {
    return FillImage(pbImage, stride, width, height, value, FillDwordsSized);
}

}  // namespace KorvaneSoftware
