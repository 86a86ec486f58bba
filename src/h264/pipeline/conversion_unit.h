// Delivers the frame that is due. Thread 0 alone has this unit, so the destination, which lives in the caller's stack
// frame, is touched by the caller only.
#pragma once

#include "h264/pipeline/processing_unit.h"
#include "h264/processor.h"

namespace KorvaneSoftware {

class CH264ColorCnvProcessingUnit : public CH264ProcessingUnit {
public:
    CH264ColorCnvProcessingUnit(const H264LockField& lock, unsigned thread, const IH264Layers& layers)
        : CH264ProcessingUnit(lock, thread), layers_(layers) {}

    Status Init() override;
    bool Acquire(const H264FrameList& store) override;
    std::uint32_t Execute() override;
    /// A conversion that has thrown releases the frame, which counts as output.
    void Abort() override { Finish(); }
    void Finish() override;

    IH264FrameOutput& Output() { return *output_; }

private:
    const IH264Layers& layers_;
    std::unique_ptr<IH264FrameOutput> output_;
    H264OutputRequest request_;
};

}  // namespace KorvaneSoftware
