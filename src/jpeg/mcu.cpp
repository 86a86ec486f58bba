#include "jpeg/mcu.h"

#include <cstddef>
#include <stdexcept>

#include "foundation/aligned_memory.h"
#include "foundation/thread_state.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

CMCU::CMCU(int all, int transformed)
    : iAll(all),
      iDCT(transformed),
      // Each thread has a store of its own, and the next one's may lie behind it.
      blocks(AlignedAlloc16(static_cast<std::size_t>(all) * kBlockValues + kThreadGapBytes / sizeof(std::int16_t))),
      allocation_(blocks) {
    if (blocks == nullptr) throw std::runtime_error("out of memory in CMCU::CMCU(int iAll,int iDCT)");
    ClearBlocks(blocks, static_cast<std::size_t>(all));
    InitBlockTransforms();
}

CMCU::~CMCU() { AlignedFree(allocation_); }

}  // namespace KorvaneSoftware
