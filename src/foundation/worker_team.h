// The worker pattern: an engine owns a fixed set of threads, made when it is configured, asleep between units of work,
// joined when it is reconfigured or destroyed. The calling thread is worker 0.
#pragma once

#include <memory>
#include <vector>

#include "foundation/sync.h"

namespace KorvaneSoftware {

class WorkerTeam {
public:
    /// The share of one worker. Runs on several threads at once; anything thrown becomes IMG_E_EXCEPTION.
    using Share = Status (*)(void* context, unsigned worker);

    WorkerTeam();
    WorkerTeam(const WorkerTeam&) = delete;
    WorkerTeam& operator=(const WorkerTeam&) = delete;
    ~WorkerTeam();

    /// Number of workers an engine gets: the processors, limited by `engineLimit` and, if not 0, by `setting`.
    static unsigned DecideCount(unsigned engineLimit, unsigned setting);

    /// Replaces the team by one of `count` workers, the caller among them, at the caller's priority.
    /// @param affinityMask  processors for the workers; 0 for no restriction.
    Status Configure(unsigned count, std::uint64_t affinityMask = 0);
    /// Stops and joins all workers.
    void Stop();
    /// Workers in the team, the caller included.
    unsigned Count() const { return static_cast<unsigned>(workers_.size()) + 1; }

    /// One unit of work: runs `share(context, i)` for i below `workers` (at most Count()), 0 on the calling thread, and
    /// returns when all are done. Workers first take on the caller's priority if it has changed. Allocates nothing.
    /// @return the non-zero status of the highest worker that has one, else 0.
    Status Run(unsigned workers, Share share, void* context);

private:
    struct Worker;
    static void ThreadMain(void* worker);

    std::vector<std::unique_ptr<Worker>> workers_;
    Share share_ = nullptr;
    void* context_ = nullptr;
    std::int32_t priority_ = 0;
};

}  // namespace KorvaneSoftware
