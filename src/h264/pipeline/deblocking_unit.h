// Filters the next row of a slice, behind its reconstruction.
#pragma once

#include "h264/pipeline/processing_unit.h"
#include "h264/pipeline/processor_table.h"
#include "h264/processor.h"

namespace KorvaneSoftware {

class CH264DebProcessingUnit : public CH264ProcessingUnit {
public:
    /// One row apart: a row is filtered when the one below it is reconstructed, so that intra prediction reads
    /// unfiltered samples from the frame itself.
    CH264DebProcessingUnit(const H264LockField& lock, unsigned thread, const IH264Layers& layers)
        : CH264DebProcessingUnit(lock, thread, layers, 1) {}

    bool Acquire(const H264FrameList& store) override;
    std::uint32_t Execute() override;
    void Abort() override;
    void Finish() override;

protected:
    /// @param windowRows  rows that reconstruction must be ahead by more than
    CH264DebProcessingUnit(const H264LockField& lock, unsigned thread, const IH264Layers& layers,
                           std::uint32_t windowRows)
        : CH264ProcessingUnit(lock, thread), layers_(layers), windowRows_(windowRows) {}

private:
    CH264Slice* FindSlice(const CH264Picture& picture) const;
    bool Claim(CH264Slice& slice);
    /// Puts the cursor back into the slice, which is done when it has reached the end.
    void GiveBack(const SliceCursor& cursor);

    const IH264Layers& layers_;
    std::uint32_t windowRows_;
    IH264DeblockingProcessor* processor_ = nullptr;
    TH264ProcessorTable<IH264DeblockingProcessor, kH264DeblockingIndices> processors_;
};

/// Takes rows that have fallen far behind, before more is reconstructed.
class CH264DebProcessingUnitMT : public CH264DebProcessingUnit {
public:
    CH264DebProcessingUnitMT(const H264LockField& lock, unsigned thread, const IH264Layers& layers)
        : CH264DebProcessingUnit(lock, thread, layers, 4) {}
};

}  // namespace KorvaneSoftware
