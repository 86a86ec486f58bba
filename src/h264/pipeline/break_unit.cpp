#include "h264/pipeline/break_unit.h"

#include <algorithm>

namespace KorvaneSoftware {

bool CH264BreakProcessingUnit::Acquire(const H264FrameList& store) {
    result_ = WALK_ENDS;
    if (mode_ == UNTIL_RECYCLABLE) {
        for (const auto& frame : store) {
            if (frame->outputDone && !frame->IsMarked()) return !frame->IsInFlight();
        }
    }
    return std::none_of(store.begin(), store.end(), [](const auto& frame) { return frame->HasPending(); });
}

}  // namespace KorvaneSoftware
