#include "jpeg/mcu.h"

#include <cstddef>
#include <stdexcept>

#include "foundation/aligned_memory.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

CMCU::CMCU(int all, int transformed)
    : iAll(all),
      iDCT(transformed),
      blocks(AlignedAlloc16(static_cast<std::size_t>(all) * kBlockValues)),
      allocation_(blocks) {
    if (blocks == nullptr) throw std::runtime_error("out of memory in CMCU::CMCU(int iAll,int iDCT)");
    ClearBlocks(blocks, static_cast<std::size_t>(all));
    InitBlockTransforms();
}

CMCU::~CMCU() { AlignedFree(allocation_); }

}  // namespace KorvaneSoftware
