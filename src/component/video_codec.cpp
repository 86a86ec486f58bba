#include "component/video_codec.h"

namespace KorvaneSoftware {

HRESULT CVideoCodecComponent::Count(std::uint32_t* pNumCodecs) {
    return ComponentCall([&] { return codec_.Count(pNumCodecs); });
}

HRESULT CVideoCodecComponent::Info(std::uint32_t* pFourcc, wchar_t** pName, std::int32_t idx) {
    return ComponentCall([&] { return codec_.Info(pFourcc, pName, idx); });
}

HRESULT CVideoCodecComponent::IsEqual(std::uint32_t fourCC, std::uint32_t anotherFourcc) {
    return ComponentCall([&] { return CVideoCodec::IsEqual(fourCC, anotherFourcc); });
}

HRESULT CVideoCodecComponent::EncSetFormat(std::int32_t idx, std::int32_t width, std::int32_t height) {
    return ComponentCall([&] { return codec_.EncSetFormat(idx, width, height); });
}

HRESULT CVideoCodecComponent::EncSetQuality(std::int32_t quality) {
    return ComponentCall([&] { return codec_.EncSetQuality(quality); });
}

HRESULT CVideoCodecComponent::Encode(std::uint8_t* pDst, std::int32_t dstBufferSize, std::uint32_t* pDstSize,
                                     const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                     std::uint32_t srcFormat) {
    return ComponentCall([&] { return codec_.Encode(pDst, dstBufferSize, pDstSize, pSrc, srcStride, srcFormat); });
}

HRESULT CVideoCodecComponent::DecSetFormat(std::int32_t idx, std::int32_t width, std::int32_t height) {
    return ComponentCall([&] { return codec_.DecSetFormat(idx, width, height); });
}

HRESULT CVideoCodecComponent::Decode(std::uint8_t* const* pDst, const std::int32_t* dstStride, std::uint32_t dstFormat,
                                     const std::uint8_t* pSrc, std::int32_t srcSize) {
    return ComponentCall([&] { return codec_.Decode(pDst, dstStride, dstFormat, pSrc, srcSize); });
}

}  // namespace KorvaneSoftware
