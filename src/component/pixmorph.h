// The class Pixmorph: conversion between pixel formats.
#pragma once

#include "component/com_object.h"

namespace KorvaneSoftware {

class CPixmorph : public CComponent,
                  public IPixmorph,
                  public IColorConversion,
                  public IPixmorphYUVPlanar,
                  public IPixmorphGamma,
                  public IPixmorphToYUV420Planar {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {
            Entry<CPixmorph, IPixmorph>(), Entry<CPixmorph, IColorConversion>(), Entry<CPixmorph, IPixmorphYUVPlanar>(),
            Entry<CPixmorph, IPixmorphGamma>(), Entry<CPixmorph, IPixmorphToYUV420Planar>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL Pixmorph(void* lpvDst, const void* lpvSrc, std::uint32_t iWidth, std::uint32_t iHeight,
                                   std::int32_t iStrideDst, std::int32_t iStrideSrc, std::uint32_t iTypeDst,
                                   std::uint32_t iTypeSrc) override;

    HRESULT PIXMORPH_CALL Pixmorph(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                   const std::uint8_t* const* pSrc, const std::int32_t* srcStride, std::uint32_t width,
                                   std::uint32_t height, std::uint32_t dstFormat, std::uint32_t srcFormat) override;
    HRESULT PIXMORPH_CALL GetFormatId(std::uint32_t* pFormatId, std::uint32_t fourCC) override;
    HRESULT PIXMORPH_CALL CheckConversion(std::uint32_t dstFormat, std::uint32_t srcFormat) override;
    HRESULT PIXMORPH_CALL PixmorphMethod0() override;
    HRESULT PIXMORPH_CALL PixmorphMethod1() override;
    HRESULT PIXMORPH_CALL PixmorphMethod2() override;

    HRESULT PIXMORPH_CALL ConvertYUVPlanarToImage(void* lpvDst, const void* lpvSrcY, const void* lpvSrcU,
                                                  const void* lpvSrcV, std::uint32_t nWidth, std::uint32_t nHeight,
                                                  std::int32_t iStrideDst, std::int32_t iStrideSrcY,
                                                  std::int32_t iStrideSrcU, std::int32_t iStrideSrcV,
                                                  std::uint32_t nFormat) override;
    HRESULT PIXMORPH_CALL PixmorphToYUVPlanar(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc,
                                              std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDstY,
                                              std::int32_t iStrideDstU, std::int32_t iStrideDstV,
                                              std::int32_t iStrideSrc, std::uint32_t nFormat) override;

    HRESULT PIXMORPH_CALL PixmorphGamma(void* lpvDst, const void* lpvSrc, std::uint32_t nWidth, std::uint32_t nHeight,
                                        std::int32_t iStrideDst, std::int32_t iStrideSrc, std::uint32_t nFormatDst,
                                        std::uint32_t nFormatSrc) override;
    HRESULT PIXMORPH_CALL SetGammaPal() override;
    HRESULT PIXMORPH_CALL SetGammaNtsc() override;
    HRESULT PIXMORPH_CALL SetGamma(double dGamma) override;

    HRESULT PIXMORPH_CALL PixmorphToYUV420Planar(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc,
                                                 std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDstY,
                                                 std::int32_t iStrideDstU, std::int32_t iStrideDstV,
                                                 std::int32_t iStrideSrc, std::uint32_t nSrcFormat) override;
    HRESULT PIXMORPH_CALL PixmorphToYUV420Planar2(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc1,
                                                  const void* lpvSrc2, std::uint32_t nWidth, std::uint32_t nHeight,
                                                  std::int32_t iStrideDstY, std::int32_t iStrideDstU,
                                                  std::int32_t iStrideDstV, std::int32_t iStrideSrc,
                                                  std::uint32_t nSrcFormat) override;
};

}  // namespace KorvaneSoftware
