// One thread of the pipeline. Number 0 has no thread of the system: the caller of Decode runs its share.
#pragma once

#include <atomic>

#include "foundation/sync.h"

namespace KorvaneSoftware {

class CH264FusionCore;

class CH264Thread {
public:
    /// Exit codes of the threads of the system, by which a debugger's list shows them: the base plus the index.
    static constexpr std::uint32_t kExitCode = 0x5DEC000;
    static constexpr std::uint32_t kExitCodeWithoutThread = 0x5DECBAD;

    CH264Thread(CH264FusionCore& core, unsigned index) : core_(core), index_(index) {}

    Status CreateEvent() { return event_.Create(); }
    /// Starts the thread of the system.
    Status Start() { return thread_.Start(Main, this); }
    /// Asks the thread to end; Join waits for it.
    void RequestStop();
    void Join() { thread_.Close(); }

    bool StopRequested() const { return stop_.load(std::memory_order_acquire); }
    /// A hint that there may be work: each thread looks by itself every few milliseconds.
    void Wake() { event_.Set(); }
    void WaitForWork() { event_.Wait(kPollMilliseconds); }

    /// What the thread of the system runs. @param self  a CH264Thread
    static std::uint32_t Main(void* self);

private:
    static constexpr std::uint32_t kPollMilliseconds = 5;

    CH264FusionCore& core_;
    std::atomic<bool> stop_ = false;
    unsigned index_;
    CEvent event_;
    CThread thread_;
};

}  // namespace KorvaneSoftware
