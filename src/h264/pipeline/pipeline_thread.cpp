#include "h264/pipeline/pipeline_thread.h"

#include "h264/pipeline/fusion_core.h"

namespace KorvaneSoftware {

void CH264Thread::RequestStop() {
    stop_.store(true, std::memory_order_release);
    event_.Set();
}

std::uint32_t CH264Thread::Main(void* self) {
    if (self == nullptr) return kExitCodeWithoutThread;
    auto& thread = *static_cast<CH264Thread*>(self);
    thread.core_.RunThread(thread.index_);
    return kExitCode + thread.index_;
}

}  // namespace KorvaneSoftware
