#include "h264/macroblock/processor_kinds.h"

namespace KorvaneSoftware {

std::unique_ptr<IH264Processor> MakeMainProcessor(std::uint32_t form) {
    return MakeH264Processor<1, 1, 0, std::uint8_t>(form);
}

}  // namespace KorvaneSoftware
