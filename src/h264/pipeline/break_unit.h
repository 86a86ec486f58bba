// Sends thread 0 home: the caller's thread, which works as one of the pipeline's only inside Decode.
#pragma once

#include "h264/pipeline/processing_unit.h"

namespace KorvaneSoftware {

class CH264BreakProcessingUnit : public CH264ProcessingUnit {
public:
    enum Mode : std::uint32_t {
        UNTIL_IDLE = 0,        ///< Until no frame has slices to do.
        UNTIL_RECYCLABLE = 1,  ///< Until the first frame that has been output and is no reference is free of readers.
    };

    using CH264ProcessingUnit::CH264ProcessingUnit;
    void SetMode(Mode mode) { mode_ = mode; }

    bool Acquire(const H264FrameList& store) override;
    std::uint32_t Execute() override { return result_; }
    void Finish() override {}

private:
    Mode mode_ = UNTIL_IDLE;
    std::uint32_t result_ = WALK_ENDS;
};

}  // namespace KorvaneSoftware
