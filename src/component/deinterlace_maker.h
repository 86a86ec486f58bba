// The class DeinterlaceMaker: restores the missing field of a frame.
#pragma once

#include "component/com_object.h"

namespace KorvaneSoftware {

class CDeinterlaceMaker : public CComponent, public IDeinterlaceMaker {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CDeinterlaceMaker, IDeinterlaceMaker>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL RestoreLowerField(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                            const void* lpbSrcUpper, std::uint32_t nFieldWidth,
                                            std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                            std::int32_t iStrideSrc, std::uint32_t Kmin, std::uint32_t Kmax) override;
    HRESULT PIXMORPH_CALL RestoreUpperField(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                            const void* lpbSrcLower, std::uint32_t nFieldWidth,
                                            std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                            std::int32_t iStrideSrc, std::uint32_t Kmin, std::uint32_t Kmax) override;
    HRESULT PIXMORPH_CALL RestoreLowerFieldAlpha(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                                 const void* lpbSrcUpper, std::uint32_t nFieldWidth,
                                                 std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                                 std::int32_t iStrideSrc, std::uint32_t Kmin,
                                                 std::uint32_t Kmax) override;
    HRESULT PIXMORPH_CALL RestoreUpperFieldAlpha(void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
                                                 const void* lpbSrcLower, std::uint32_t nFieldWidth,
                                                 std::uint32_t nFieldHeight, std::int32_t iStrideDest,
                                                 std::int32_t iStrideSrc, std::uint32_t Kmin,
                                                 std::uint32_t Kmax) override;
};

}  // namespace KorvaneSoftware
