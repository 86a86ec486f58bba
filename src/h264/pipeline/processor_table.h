// The processors of one unit, made when their index is first needed and kept: none is shared, so none needs a lock.
#pragma once

#include <memory>

#include "foundation/status.h"

namespace KorvaneSoftware {

template <class Processor, std::uint32_t Count>
class TH264ProcessorTable {
public:
    /// @param make  gives a new processor for an index, null where there is no class for it
    /// @return      IMG_E_NO_PATH for an index without a class, IMG_E_NO_MEMORY
    template <class Make>
    Status Select(std::uint32_t index, Make make, Processor*& selected) {
        if (index >= Count) return IMG_E_NO_PATH;
        if (processors_[index] == nullptr) {
            const Status status = Guarded<Status>(IMG_E_NO_MEMORY, [&] { return make(processors_[index]); });
            if (status != IMG_OK) return status;
        }
        selected = processors_[index].get();
        return IMG_OK;
    }

private:
    std::unique_ptr<Processor> processors_[Count];
};

}  // namespace KorvaneSoftware
