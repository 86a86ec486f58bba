#include "h264/layers.h"

#include "h264/deblocking/deblocking_processors.h"
#include "h264/macroblock/processors.h"
#include "h264/output/frame_output.h"

namespace KorvaneSoftware {
namespace {

class CH264Layers final : public IH264Layers {
public:
    std::unique_ptr<IH264Processor> CreateProcessor(std::uint32_t index) const override {
        return CreateH264Processor(index);
    }
    std::unique_ptr<IH264DeblockingProcessor> CreateDeblockingProcessor(std::uint32_t index) const override {
        return CreateH264DeblockingProcessor(index);
    }
    std::unique_ptr<IH264FrameOutput> CreateOutput() const override { return CreateH264Output(); }
};

}  // namespace

const IH264Layers& H264Layers() {
    static const CH264Layers layers;
    return layers;
}

}  // namespace KorvaneSoftware
