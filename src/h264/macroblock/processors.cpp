#include "h264/macroblock/processors.h"

#include "h264/macroblock/processor_kinds.h"

namespace KorvaneSoftware {

std::unique_ptr<IH264Processor> CreateH264Processor(std::uint32_t index) {
    const std::uint32_t form = index & 7;
    switch (index & ~std::uint32_t{7}) {
        case 16:
            return MakeMainProcessor(form);
        case 24:
            return MakeHigh420Processor(form, false);
        case 40:
            return MakeHigh422Processor(form, false);
        case 88:
            return MakeHigh420Processor(form, true);
        case 104:
            return MakeHigh422Processor(form, true);
        case 152:
            return MakeDeep420Processor(form, false);
        case 168:
            return MakeDeep422Processor(form, false);
        case 216:
            return MakeDeep420Processor(form, true);
        case 232:
            return MakeDeep422Processor(form, true);
        default:
            return nullptr;
    }
}

}  // namespace KorvaneSoftware
