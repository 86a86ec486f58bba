#include "h264/pipeline/pipeline_thread.h"

#include "h264/pipeline/fusion_core.h"

namespace KorvaneSoftware {

void CH264Thread::RequestStop() {
    stop_.store(true, std::memory_order_release);
    event_.Set();
}

void CH264Thread::Main(void* self) {
    auto& thread = *static_cast<CH264Thread*>(self);
    thread.core_.RunThread(thread.index_);
}

}  // namespace KorvaneSoftware
