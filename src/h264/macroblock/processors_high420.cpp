#include "h264/macroblock/processor_kinds.h"

namespace KorvaneSoftware {

std::unique_ptr<IH264Processor> MakeHigh420Processor(std::uint32_t form, bool matrices) {
    return matrices ? MakeH264Processor<3, 1, 1, std::uint8_t>(form) : MakeH264Processor<3, 1, 0, std::uint8_t>(form);
}

}  // namespace KorvaneSoftware
