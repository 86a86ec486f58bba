#include "h264/deblocking/deblocking_processors.h"

#include "h264/deblocking/deblocking_processor.h"

namespace KorvaneSoftware {
namespace {

using Processor = std::unique_ptr<IH264DeblockingProcessor>;

template <unsigned P, unsigned C, class Sample>
Processor CreateForStructure(std::uint32_t structure) {
    switch (structure) {
        case 0:
            return std::make_unique<TH264DeblockingProcessor<P, 0, C, Sample>>();
        case 1:
            return std::make_unique<TH264DeblockingProcessor<P, 1, C, Sample>>();
        case 2:
            return std::make_unique<TH264DeblockingProcessorMBAFF<P, C, Sample>>();
        default:
            return nullptr;
    }
}

}  // namespace

Processor CreateH264DeblockingProcessor(std::uint32_t index) {
    const std::uint32_t structure = index & 3;
    switch (index & ~3u) {
        case 8:
            return CreateForStructure<1, 1, std::uint8_t>(structure);
        case 12:
            return CreateForStructure<3, 1, std::uint8_t>(structure);
        case 20:
            return CreateForStructure<3, 2, std::uint8_t>(structure);
        case 44:
            return CreateForStructure<3, 1, std::uint16_t>(structure);
        case 52:
            return CreateForStructure<3, 2, std::uint16_t>(structure);
        default:
            return nullptr;
    }
}

}  // namespace KorvaneSoftware
