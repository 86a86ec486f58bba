#include "component/deinterlace_maker.h"

#include "deinterlace/field_restoration.h"
#include "foundation/debug_output.h"

namespace KorvaneSoftware {

namespace {

FieldRestorationJob JobOf(void* destination, const void* previous, const void* next, const void* present,
                          std::uint32_t width, std::uint32_t height, std::int32_t destinationStride,
                          std::int32_t sourceStride, std::uint32_t motionMinimum, std::uint32_t motionMaximum) {
    return {static_cast<std::uint8_t*>(destination),
            static_cast<const std::uint8_t*>(previous),
            static_cast<const std::uint8_t*>(next),
            static_cast<const std::uint8_t*>(present),
            width,
            height,
            destinationStride,
            sourceStride,
            motionMinimum,
            motionMaximum};
}

// The methods with alpha report a failure as S_FALSE, which callers that test with SUCCEEDED take for success, and say
// so on the debug output.
HRESULT AlphaResultOf(Status status, const char* complaint) {
    if (status == IMG_OK) return S_OK;
    DebugOutput(complaint);
    return S_FALSE;
}

}  // namespace

HRESULT CDeinterlaceMaker::RestoreLowerField(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                             const void* lpbSrcUpper, std::uint32_t nFieldWidth,
                                             std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                             std::int32_t iStrideSrc, std::uint32_t Kmin, std::uint32_t Kmax) {
    return ResultOf(
        CDeinterlacer::RestoreLowerField(JobOf(lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcUpper, nFieldWidth,
                                               nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)));
}

HRESULT CDeinterlaceMaker::RestoreUpperField(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                             const void* lpbSrcLower, std::uint32_t nFieldWidth,
                                             std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                             std::int32_t iStrideSrc, std::uint32_t Kmin, std::uint32_t Kmax) {
    return ResultOf(
        CDeinterlacer::RestoreUpperField(JobOf(lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcLower, nFieldWidth,
                                               nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)));
}

HRESULT CDeinterlaceMaker::RestoreLowerFieldAlpha(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                                  const void* lpbSrcUpper, std::uint32_t nFieldWidth,
                                                  std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                                  std::int32_t iStrideSrc, std::uint32_t Kmin, std::uint32_t Kmax) {
    return AlphaResultOf(
        CDeinterlacer::RestoreLowerFieldAlpha(JobOf(lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcUpper, nFieldWidth,
                                                    nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)),
        "RestoreLowerFieldAlpha - exeption happend");
}

HRESULT CDeinterlaceMaker::RestoreUpperFieldAlpha(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                                  const void* lpbSrcLower, std::uint32_t nFieldWidth,
                                                  std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                                  std::int32_t iStrideSrc, std::uint32_t Kmin, std::uint32_t Kmax) {
    return AlphaResultOf(
        CDeinterlacer::RestoreUpperFieldAlpha(JobOf(lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcLower, nFieldWidth,
                                                    nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)),
        "RestoreUpperFieldAlpha - exeption happend");
}

}  // namespace KorvaneSoftware
