// Decodes the next row of a slice: entropy code, prediction and residual in one go.
#pragma once

#include "h264/pipeline/processing_unit.h"
#include "h264/pipeline/processor_table.h"
#include "h264/processor.h"

namespace KorvaneSoftware {

class CH264DecRecProcessingUnit : public CH264ProcessingUnit {
public:
    CH264DecRecProcessingUnit(const H264LockField& lock, unsigned thread, const IH264Layers& layers)
        : CH264DecRecProcessingUnit(lock, thread, layers, 65536) {}

    bool Acquire(const H264FrameList& store) override;
    std::uint32_t Execute() override;
    void Abort() override;
    void Finish() override;

protected:
    /// @param windowRows  rows that a slice may be ahead of its own deblocking
    CH264DecRecProcessingUnit(const H264LockField& lock, unsigned thread, const IH264Layers& layers,
                              std::uint32_t windowRows)
        : CH264ProcessingUnit(lock, thread), layers_(layers), windowRows_(windowRows) {}

private:
    CH264Slice* FindSlice(const CH264Picture& picture, std::uint32_t rowLimit) const;
    bool Claim(CH264Slice& slice);

    const IH264Layers& layers_;
    std::uint32_t windowRows_;
    IH264Processor* processor_ = nullptr;
    TH264ProcessorTable<IH264Processor, kH264ProcessorIndices> processors_;
};

/// Keeps a slice close to its deblocking, so that rows are still in the cache when they are filtered.
class CH264DecRecProcessingUnitMT : public CH264DecRecProcessingUnit {
public:
    CH264DecRecProcessingUnitMT(const H264LockField& lock, unsigned thread, const IH264Layers& layers)
        : CH264DecRecProcessingUnit(lock, thread, layers, 8) {}
};

}  // namespace KorvaneSoftware
