// The worker pattern: an engine owns a fixed set of threads, made when it is configured, asleep between units of work,
// joined when it is reconfigured or destroyed. The calling thread is worker 0.
#pragma once

#include <chrono>
#include <memory>
#include <type_traits>
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

    /// Replaces the team by one of `count` workers, the caller among them, at the caller's priority. After a failure
    /// the team is smaller than asked for and works all the same: see Count().
    /// @param affinityMask  processors for the workers; 0 for no restriction.
    [[nodiscard]] Status Configure(unsigned count, std::uint64_t affinityMask = 0);
    /// Stops and joins all workers.
    void Stop();
    /// Workers in the team, the caller included.
    unsigned Count() const { return static_cast<unsigned>(workers_.size()) + 1; }

    /// One unit of work: runs `share(context, i)` for each i below `workers`, 0 on the calling thread, and returns when
    /// all are done, whatever fails. Workers first take on the caller's priority if it has changed. A worker that
    /// cannot be woken has its share run by the caller, before the caller's own: a share 0 that waits for what the
    /// others make is never left waiting. Allocates nothing.
    /// @param workers  clamped to 1 to Count()
    /// @param ran      if not null, receives the number of shares that were run: 0 to *ran - 1
    /// @return the non-zero status of the highest worker that has one, else 0
    [[nodiscard]] Status Run(unsigned workers, Share share, void* context, unsigned* ran = nullptr);

    /// The same with anything callable as `Status share(unsigned worker)`.
    template <class Body>
    [[nodiscard]] Status Run(unsigned workers, Body&& share, unsigned* ran = nullptr) {
        using Callable = std::remove_reference_t<Body>;
        const auto call = [](void* body, unsigned worker) -> Status { return (*static_cast<Callable*>(body))(worker); };
        return Run(workers, call, const_cast<std::remove_const_t<Callable>*>(std::addressof(share)), ran);
    }

private:
    using Clock = std::chrono::steady_clock;
    struct Worker;
    static std::uint32_t ThreadMain(void* worker);
    bool Wake(Worker& worker, std::int32_t priority) const;
    Status Join(Worker& worker, Clock::time_point deadline) const;

    std::vector<std::unique_ptr<Worker>> workers_;
    Share share_ = nullptr;
    void* context_ = nullptr;
    std::int32_t priority_ = 0;
    bool watches_ = false;        // Whether watching can pay: not on a single processor.
    Clock::duration lastJoin_{};  // How long the last join had to wait for its workers.
};

}  // namespace KorvaneSoftware
