// The classes TitleMixer, TitleMixer2 and TitleMixer3: mixing of titles. The methods that the three have in common are
// written once; the classes differ in the interfaces that carry them.
#pragma once

#include "component/com_object.h"

namespace KorvaneSoftware {

/// The methods of every title mixer, for the interface `Interface`.
template <class Interface>
class TTitleMixer : public CComponent, public Interface {
public:
    HRESULT PIXMORPH_CALL MovTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource, std::uint32_t nWidth,
                                   std::uint32_t nHeight, std::int32_t iStrideDst, std::int32_t iStrideSrc,
                                   std::uint32_t nRegionAlpha) override;
    HRESULT PIXMORPH_CALL AddTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource, std::uint32_t nWidth,
                                   std::uint32_t nHeight, std::int32_t iStrideDst, std::int32_t iStrideSrc,
                                   std::uint32_t nRegionAlpha) override;
    HRESULT PIXMORPH_CALL CompressToRLE(std::uint8_t** lpbDestination, const std::uint8_t* lpbSource,
                                        std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideSource,
                                        std::int32_t** lpiCounter) override;
};

class CTitleMixer : public TTitleMixer<ITitleMixer> {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CTitleMixer, ITitleMixer>()};
        return kEntries;
    }
};

class CTitleMixer2 : public TTitleMixer<ITitleMixer2> {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CTitleMixer2, ITitleMixer2>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL Convert4CableTV(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                          std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDest,
                                          std::int32_t iStrideSource) override;
};

class CTitleMixer3 : public TTitleMixer<ITitleMixer4> {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CTitleMixer3, ITitleMixer3>(),
                                                      Entry<CTitleMixer3, ITitleMixer4>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL PixmorphToTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                          std::uint32_t imageWidth, std::uint32_t imageHeight,
                                          std::int32_t dstTitleStride, std::int32_t srcImageStride,
                                          std::uint32_t regionAlpha, std::uint32_t imageFormat) override;
    HRESULT PIXMORPH_CALL PixmorphToNPTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                            std::uint32_t imageWidth, std::uint32_t imageHeight,
                                            std::int32_t dstTitleStride, std::int32_t srcImageStride,
                                            std::uint32_t regionAlpha, std::uint32_t imageFormat) override;
    HRESULT PIXMORPH_CALL AddImageToTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                          std::uint32_t imageWidth, std::uint32_t imageHeight,
                                          std::int32_t dstTitleStride, std::int32_t srcImageStride,
                                          std::uint32_t regionAlpha, std::uint32_t imageFormat) override;
    HRESULT PIXMORPH_CALL AddTitleToImage(std::uint8_t* pbDstImage, const std::uint8_t* pbSrcTitle,
                                          std::uint32_t imageWidth, std::uint32_t imageHeight,
                                          std::int32_t dstImageStride, std::int32_t srcTitleStride,
                                          std::uint32_t regionAlpha, std::uint32_t imageFormat) override;
    HRESULT PIXMORPH_CALL ConvertTitleToImage(std::uint8_t* pbDstImage, const std::uint8_t* pbSrcTitle,
                                              std::uint32_t imageWidth, std::uint32_t imageHeight,
                                              std::int32_t dstImageStride, std::int32_t srcTitleStride,
                                              std::uint32_t imageFormat) override;
    HRESULT PIXMORPH_CALL MoveImageToUYVYBuffer(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                                std::uint32_t width, std::uint32_t height, std::int32_t strideDst,
                                                std::int32_t strideSrc, std::uint32_t regionAlpha,
                                                std::uint32_t dstFormat, std::uint32_t srcFormat) override;
    HRESULT PIXMORPH_CALL AddImageToUYVYBuffer(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                               std::uint32_t width, std::uint32_t height, std::int32_t strideDst,
                                               std::int32_t strideSrc, std::uint32_t regionAlpha,
                                               std::uint32_t dstFormat, std::uint32_t srcFormat) override;
    HRESULT PIXMORPH_CALL SetImageByte(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                       std::uint32_t height, std::uint8_t value) override;
    HRESULT PIXMORPH_CALL SetImageWord(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                       std::uint32_t height, std::uint16_t value) override;
    HRESULT PIXMORPH_CALL SetImageDword(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                        std::uint32_t height, std::uint32_t value) override;
};

}  // namespace KorvaneSoftware
