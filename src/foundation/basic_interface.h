// Root of the library's inward objects, which never leave it: one object, one user, so the count is a plain integer.
#pragma once

#include <pixmorph/com.h>
#include <cstdint>

#include "foundation/status.h"

namespace KorvaneSoftware {

class IBasicInterface {
public:
    /// Writes the interface with a reference added, or null. @return 0, IMG_E_NULL_ARG, IMG_E_NO_PATH.
    virtual Status QueryInterface(const GUID& iid, void** object) = 0;
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

protected:
    virtual ~IBasicInterface() = default;
};

}  // namespace KorvaneSoftware
