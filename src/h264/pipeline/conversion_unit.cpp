#include "h264/pipeline/conversion_unit.h"

#include <algorithm>
#include <thread>

namespace KorvaneSoftware {

Status CH264ColorCnvProcessingUnit::Init() {
    output_ = layers_.CreateOutput();
    return output_ == nullptr ? IMG_E_NO_MEMORY : output_->Initialize();
}

bool CH264ColorCnvProcessingUnit::Acquire(const H264FrameList& store) {
    const auto place = std::find_if(store.begin(), store.end(),
                                    [](const auto& frame) { return frame->outputRequest.destination != nullptr; });
    if (place == store.end() || (*place)->HasPending()) return false;
    request_ = (*place)->outputRequest;
    return true;
}

std::uint32_t CH264ColorCnvProcessingUnit::Execute() {
    if (output_->Deliver(*request_.frame, *request_.destination) != IMG_OK) {
        // The request stays and is tried again; the others get the processor in between.
        std::this_thread::yield();
        return WALK_CONTINUES;
    }
    Finish();
    return WALK_ENDS;
}

void CH264ColorCnvProcessingUnit::Finish() {
    H264Guard guard(lock_);
    request_.frame->outputDone = true;
    request_.frame->outputRequest = {};
    request_ = {};
}

}  // namespace KorvaneSoftware
