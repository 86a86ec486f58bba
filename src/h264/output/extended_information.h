// What a destination may ask to be told beside the picture. A sample that wants it answers the query for one of these.
#pragma once

#include "foundation/basic_interface.h"

namespace KorvaneSoftware {

inline constexpr GUID IID_IH264PictureInformation = {
    0xBB543CCE, 0xD1E7, 0x4857, {0x99, 0xF0, 0x2D, 0x8C, 0xD6, 0x38, 0xDE, 0xC3}};
inline constexpr GUID IID_IH264MacroblockStatistics = {
    0xC6497CD4, 0xDF73, 0x446C, {0xA7, 0x98, 0x37, 0xA2, 0x48, 0x27, 0x10, 0xAF}};

/// The order of the operations is part of the interface.
class IH264PictureInformation : public IBasicInterface {
public:
    /// Of the first slice: 0 I, 1 P, 2 B.
    virtual void SetPictureType(std::uint32_t type) = 0;
    virtual void SetProfile(std::uint32_t profileIdc) = 0;
    virtual void SetLevel(std::uint32_t levelIdc) = 0;
};

/// The order of the operations is part of the interface.
class IH264MacroblockStatistics : public IBasicInterface {
public:
    /// Where the statistics go, see macroblock_statistics.h. @param size  receives the bytes there are
    virtual std::uint8_t* GetStatisticsBuffer(std::uint64_t* size) = 0;
    /// How many bytes of it were written.
    virtual void SetStatisticsSize(std::uint64_t size) = 0;
};

}  // namespace KorvaneSoftware
