#include "foundation/worker_team.h"

#include <algorithm>

namespace KorvaneSoftware {

struct WorkerTeam::Worker {
    const WorkerTeam* team = nullptr;
    unsigned index = 0;
    CEvent start;
    CEvent done;
    CThread thread;
    Status status = IMG_OK;
    bool stop = false;  // Read after `start` was signalled, which orders it.
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
        worker->stop = true;
        worker->start.Set();
        worker->thread.Close();
    }
    workers_.clear();
}

void WorkerTeam::ThreadMain(void* argument) {
    Worker& worker = *static_cast<Worker*>(argument);
    while (worker.start.Wait() == IMG_OK && !worker.stop) {
        worker.status = Guarded([&] { return worker.team->share_(worker.team->context_, worker.index); });
        worker.done.Set();
    }
}

Status WorkerTeam::Run(unsigned workers, Share share, void* context) {
    const unsigned helpers = std::clamp(workers, 1u, Count()) - 1;
    share_ = share;
    context_ = context;
    std::int32_t priority = priority_;
    if (helpers > 0) GetThreadPriorityLevel(platform::CurrentThread(), &priority);
    unsigned started = 0;
    Status result = IMG_OK;
    for (; started < helpers; ++started) {
        Worker& worker = *workers_[started];
        if (priority != priority_) SetThreadPriorityLevel(worker.thread.Handle(), priority);
        if (const Status status = worker.start.Set(); status != IMG_OK) {
            result = status;
            break;
        }
    }
    // Each thread must take the new priority once; those that sleep through this unit take it with the next change.
    if (helpers == workers_.size()) priority_ = priority;
    if (result == IMG_OK) result = Guarded([&] { return share(context, 0); });
    for (unsigned i = 0; i < started; ++i) {
        const Status waited = workers_[i]->done.Wait();
        const Status status = waited != IMG_OK ? waited : workers_[i]->status;
        if (status != IMG_OK) result = status;
    }
    return result;
}

}  // namespace KorvaneSoftware
