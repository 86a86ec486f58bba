// One unit of work cut into parts that several threads make at once and one thread joins in order, each as soon as it
// is there: where part k goes is known only when part k-1 has an end.
#pragma once

#include <algorithm>
#include <memory>
#include <new>

#include "foundation/worker_team.h"

namespace KorvaneSoftware {

/// Where the maker of one part leaves its outcome for the thread that joins the parts. `Value` is what joining needs of
/// a part besides its status: a length, the free bits at its end.
template <class Value>
struct PartResult {
    CEvent made;
    Status status = IMG_OK;
    Value value{};
};

/// The results of one engine's parts, made when it is configured and used for every unit of work.
template <class Value>
class PartResults {
public:
    /// Makes room for units of up to `parts` parts.
    /// @return 0, IMG_E_NO_MEMORY, or IMG_E_FAILED when the system refuses an event
    [[nodiscard]] Status Create(unsigned parts) {
        count_ = 0;
        results_.reset(new (std::nothrow) PartResult<Value>[parts]);
        if (results_ == nullptr) return IMG_E_NO_MEMORY;
        for (unsigned part = 0; part < parts; ++part)
            if (const Status status = results_[part].made.Create(); status != IMG_OK) return status;
        count_ = parts;
        return IMG_OK;
    }
    /// Most parts of a unit.
    unsigned Count() const { return count_; }

    /// Makes and joins all parts on up to `workers` of the team; worker t of the n that run makes parts t, t + n, t +
    /// 2n and so on. Every part gets a result, also where `make` fails or throws: nobody waits for one that does not
    /// come. Once all of its own parts are made the caller joins all of them in order, until one has failed. Allocates
    /// nothing.
    /// @param parts  at most Count()
    /// @param make   Status make(unsigned worker, unsigned part, Value& value), on the worker's thread; `value` starts
    ///               as Value{}
    /// @param join   Status join(unsigned part, const Value& value), on the calling thread
    /// @return the status of the first part that could not be made or joined, else 0; IMG_E_BAD_SIZE for too many parts
    template <class Make, class Join>
    [[nodiscard]] Status Run(WorkerTeam& team, unsigned workers, unsigned parts, Make&& make, Join&& join) {
        if (parts > count_) return IMG_E_BAD_SIZE;
        if (parts == 0) return IMG_OK;
        const unsigned active = std::clamp(workers, 1u, std::min(team.Count(), parts));
        const auto share = [&](unsigned worker) -> Status {
            for (unsigned part = worker; part < parts; part += active) {
                PartResult<Value>& result = results_[part];
                result.value = Value{};
                result.status = Guarded([&]() -> Status { return make(worker, part, result.value); });
                result.made.Set();
            }
            return worker == 0 ? JoinAll(parts, join) : IMG_OK;
        };
        return team.Run(active, share);
    }

private:
    // Waits for each part, those after a failure too: an event must not stay signalled for the next unit.
    template <class Join>
    Status JoinAll(unsigned parts, Join& join) {
        Status result = IMG_OK;
        for (unsigned part = 0; part < parts; ++part) {
            const Status waited = results_[part].made.Wait();
            if (result != IMG_OK) continue;
            result = waited != IMG_OK ? waited : results_[part].status;
            if (result == IMG_OK) result = Guarded([&]() -> Status { return join(part, results_[part].value); });
        }
        return result;
    }

    std::unique_ptr<PartResult<Value>[]> results_;
    unsigned count_ = 0;
};

}  // namespace KorvaneSoftware
