// What the component surface asks of a deinterlacer. Not the outward interface of the same name: that one lies outside
// this namespace.
#pragma once

#include <pixmorph/com.h>
#include <cstdint>

#include "foundation/basic_interface.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

struct DeinterlacerSettings {
    std::uint32_t threads;       ///< Highest number of threads, 0 for the system's limit.
    std::uint32_t affinityMask;  ///< Processors for the workers, 0 for all.
    std::uint32_t reserved;
    std::uint32_t mode;  ///< 0 and 1 with the spatial check, 2 and 3 without.
};

constexpr GUID IID_InwardVideoDeinterlacer = {
    0xDF532D40, 0x83BE, 0x4F19, {0x91, 0x11, 0x17, 0x52, 0x63, 0x6E, 0x8A, 0xEB}};

class IVideoDeinterlacer : public IBasicInterface {
public:
    virtual Status Initialize(const DeinterlacerSettings& settings) = 0;
    /// @param structure  FIELDS_TOP_FIRST or FIELDS_BOTTOM_FIRST.
    virtual Status SetSourceFrame(const ConstImageDescriptor& source, std::uint32_t structure) = 0;
    /// Makes the lines of one band of the output. @param parity  0 keeps the top field, anything else the bottom one.
    virtual Status FilterBand(const ImageDescriptor& image, std::uint32_t parity, const ImageRect& band) = 0;
    virtual Status GetFrame(const ImageDescriptor& image, std::uint32_t fieldIntact) = 0;
};

}  // namespace KorvaneSoftware
