#include "h264/macroblock/processor_kinds.h"

namespace KorvaneSoftware {

std::unique_ptr<IH264Processor> MakeDeep422Processor(std::uint32_t form, bool matrices) {
    return matrices ? MakeH264Processor<3, 2, 1, std::uint16_t>(form) : MakeH264Processor<3, 2, 0, std::uint16_t>(form);
}

}  // namespace KorvaneSoftware
