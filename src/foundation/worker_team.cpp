#include "foundation/worker_team.h"

#include <algorithm>
#include <atomic>

namespace KorvaneSoftware {

namespace {

// To wake a sleeping thread costs some fifty microseconds, a tenth of the time in which a worker does its share of an
// HD frame, and shares of equal size end within less of each other. So a join watches for the end before it sleeps, but
// only as long as the last join gave reason to: twice the time that one took, and not at all where that was longer than
// sleeping costs. A machine that is short of processors soon makes joins long, and then nobody watches.
constexpr std::chrono::microseconds kLongestWatchedJoin{100};
constexpr int kPausesBetweenLooksAtTheClock = 16;

}  // namespace

struct WorkerTeam::Worker {
    const WorkerTeam* team = nullptr;
    unsigned index = 0;
    CEvent start;
    CEvent done;
    CThread thread;
    std::atomic<bool> stop{false};
    std::atomic<bool> pending{false};  // A share waits to be run; whoever clears this runs it.
    // Written by the worker before `finished`, which orders them.
    Status status = IMG_OK;
    Clock::time_point finishedAt;
    std::atomic<bool> finished{false};
    bool woken = false;  // The caller's own note of the current unit.
};

WorkerTeam::WorkerTeam() = default;

WorkerTeam::~WorkerTeam() { Stop(); }

unsigned WorkerTeam::DecideCount(unsigned engineLimit, unsigned setting) {
    unsigned count = std::min(GetProcessorCount(), engineLimit);
    if (setting != 0) count = std::min(count, setting);
    return std::max(count, 1u);
}

Status WorkerTeam::Configure(unsigned count, std::uint64_t affinityMask) {
    Stop();
    return Guarded([&]() -> Status {
        if (const Status status = GetThreadPriorityLevel(platform::CurrentThread(), &priority_); status != IMG_OK)
            return status;
        watches_ = GetProcessorCount() > 1;
        lastJoin_ = {};
        workers_.reserve(count > 0 ? count - 1 : 0);
        for (unsigned index = 1; index < count; ++index) {
            auto worker = std::make_unique<Worker>();
            worker->team = this;
            worker->index = index;
            Status status = worker->start.Create();
            if (status == IMG_OK) status = worker->done.Create();
            if (status == IMG_OK) status = worker->thread.Start(ThreadMain, worker.get());
            if (status != IMG_OK) return status;
            const platform::ThreadHandle handle = worker->thread.Handle();
            workers_.push_back(std::move(worker));
            if (affinityMask != 0) SetThreadAffinity(handle, affinityMask);
            if (status = SetThreadPriorityLevel(handle, priority_); status != IMG_OK) return status;
        }
        return IMG_OK;
    });
}

void WorkerTeam::Stop() {
    for (const auto& worker : workers_) {
        worker->stop.store(true, std::memory_order_release);
        worker->start.Set();
        worker->thread.Close();
    }
    workers_.clear();
}

std::uint32_t WorkerTeam::ThreadMain(void* argument) {
    Worker& worker = *static_cast<Worker*>(argument);
    for (;;) {
        // A thread that cannot sleep polls.
        if (worker.start.Wait() != IMG_OK) platform::YieldProcessor();
        if (worker.stop.load(std::memory_order_acquire)) return 0;
        if (!worker.pending.exchange(false, std::memory_order_acq_rel)) continue;
        worker.status = Guarded([&] { return worker.team->share_(worker.team->context_, worker.index); });
        worker.finishedAt = Clock::now();
        worker.finished.store(true, std::memory_order_release);
        worker.done.Set();
    }
}

bool WorkerTeam::Wake(Worker& worker, std::int32_t priority) const {
    if (priority != priority_) SetThreadPriorityLevel(worker.thread.Handle(), priority);
    worker.finished.store(false, std::memory_order_relaxed);
    worker.pending.store(true, std::memory_order_release);
    return worker.start.Set() == IMG_OK || !worker.pending.exchange(false, std::memory_order_acq_rel);
}

Status WorkerTeam::Join(Worker& worker, Clock::time_point deadline) const {
    while (!worker.finished.load(std::memory_order_acquire) && Clock::now() < deadline)
        for (int i = 0; i < kPausesBetweenLooksAtTheClock && !worker.finished.load(std::memory_order_relaxed); ++i)
            platform::PauseProcessor();
    // A watched end leaves its signal to the next join, which therefore trusts `finished` alone. The caller's data must
    // not go while the share is at work on it, so that a wait that fails becomes a watch.
    Status waited = IMG_OK;
    while (!worker.finished.load(std::memory_order_acquire)) {
        if (waited == IMG_OK) waited = worker.done.Wait();
        if (waited != IMG_OK) platform::YieldProcessor();
    }
    return waited != IMG_OK ? waited : worker.status;
}

Status WorkerTeam::Run(unsigned workers, Share share, void* context, unsigned* ran) {
    const unsigned shares = std::clamp(workers, 1u, Count());
    const auto runHere = [&](unsigned worker) { return Guarded([&] { return share(context, worker); }); };
    if (ran != nullptr) *ran = shares;
    if (shares == 1) return runHere(0);

    share_ = share;
    context_ = context;
    std::int32_t priority = priority_;
    GetThreadPriorityLevel(platform::CurrentThread(), &priority);
    for (unsigned i = 1; i < shares; ++i) {
        Worker& worker = *workers_[i - 1];
        worker.woken = Wake(worker, priority);
    }
    // Each thread must take the new priority once; those that sleep through this unit take it with the next change.
    if (shares == Count()) priority_ = priority;
    for (unsigned i = 1; i < shares; ++i)
        if (!workers_[i - 1]->woken) workers_[i - 1]->status = runHere(i);
    Status result = runHere(0);

    const Clock::time_point began = Clock::now();
    const Clock::duration watched = watches_ && lastJoin_ <= kLongestWatchedJoin ? 2 * lastJoin_ : Clock::duration{};
    lastJoin_ = {};
    for (unsigned i = 1; i < shares; ++i) {
        Worker& worker = *workers_[i - 1];
        const Status status = worker.woken ? Join(worker, began + watched) : worker.status;
        if (worker.woken) lastJoin_ = std::max(lastJoin_, worker.finishedAt - began);
        if (status != IMG_OK) result = status;
    }
    return result;
}

}  // namespace KorvaneSoftware
