// The worker pattern: who runs what, statuses, exceptions, reconfiguration and the end.
#include "foundation/worker_team.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace KorvaneSoftware;

struct Unit {
    std::vector<int> calls = std::vector<int>(16, 0);
    std::vector<std::thread::id> ids = std::vector<std::thread::id>(16);
    std::vector<Status> statuses = std::vector<Status>(16, 0);
    unsigned throwing = 99;

    static Status Share(void* context, unsigned worker) {
        auto& unit = *static_cast<Unit*>(context);
        ++unit.calls[worker];
        unit.ids[worker] = std::this_thread::get_id();
        if (worker == unit.throwing) throw std::runtime_error("worker");
        return unit.statuses[worker];
    }
};

TEST(WorkerTeam, DecidesItsSize) {
    const unsigned processors = GetProcessorCount();
    EXPECT_EQ(WorkerTeam::DecideCount(1, 0), 1u);
    EXPECT_EQ(WorkerTeam::DecideCount(1000, 0), processors);
    EXPECT_EQ(WorkerTeam::DecideCount(1000, 1), 1u);
    EXPECT_EQ(WorkerTeam::DecideCount(1000, 2), processors < 2 ? processors : 2);
    EXPECT_EQ(WorkerTeam::DecideCount(2, 1000), processors < 2 ? processors : 2);
    EXPECT_EQ(WorkerTeam::DecideCount(0, 0), 1u);
}

TEST(WorkerTeam, IsTheCallerAloneBeforeConfiguration) {
    WorkerTeam team;
    EXPECT_EQ(team.Count(), 1u);
    Unit unit;
    EXPECT_EQ(team.Run(4, Unit::Share, &unit), 0);
    EXPECT_EQ(unit.calls, (std::vector<int>{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(unit.ids[0], std::this_thread::get_id());
}

TEST(WorkerTeam, RunsEachShareOnceOnItsOwnThread) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(4), 0);
    ASSERT_EQ(team.Count(), 4u);
    std::vector<std::thread::id> first;
    for (int round = 1; round <= 200; ++round) {
        Unit unit;
        ASSERT_EQ(team.Run(4, Unit::Share, &unit), 0);
        for (unsigned i = 0; i < 16; ++i) ASSERT_EQ(unit.calls[i], i < 4 ? 1 : 0);
        EXPECT_EQ(unit.ids[0], std::this_thread::get_id());
        for (unsigned i = 0; i < 4; ++i)
            for (unsigned j = 0; j < i; ++j) EXPECT_NE(unit.ids[i], unit.ids[j]);
        // Workers are never made per unit: the same threads come back.
        if (first.empty()) first = unit.ids;
        EXPECT_EQ(unit.ids, first);
    }
}

TEST(WorkerTeam, RunsFewerThanItHas) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(4), 0);
    for (const unsigned workers : {0u, 1u, 2u, 3u, 4u, 9u}) {
        Unit unit;
        ASSERT_EQ(team.Run(workers, Unit::Share, &unit), 0);
        const unsigned expected = workers == 0 ? 1 : workers > 4 ? 4 : workers;
        for (unsigned i = 0; i < 16; ++i) EXPECT_EQ(unit.calls[i], i < expected ? 1 : 0) << workers << " " << i;
    }
}

TEST(WorkerTeam, TellsHowManySharesRan) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(4), 0);
    for (const unsigned workers : {0u, 1u, 2u, 3u, 4u, 9u}) {
        Unit unit;
        unit.throwing = 1;
        unsigned ran = 77;
        EXPECT_EQ(team.Run(workers, Unit::Share, &unit, &ran), workers < 2 ? 0 : -6);
        unsigned calls = 0;
        for (const int call : unit.calls) calls += static_cast<unsigned>(call);
        EXPECT_EQ(ran, calls) << workers;
    }
}

TEST(WorkerTeam, TakesAnythingCallable) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(3), 0);
    std::vector<unsigned> seen(3);
    unsigned ran = 0;
    EXPECT_EQ(team.Run(
                  3,
                  [&seen](unsigned worker) -> Status {
                      seen[worker] += worker + 10;
                      return worker == 1 ? -3 : 0;
                  },
                  &ran),
              -3);
    EXPECT_EQ(seen, (std::vector<unsigned>{10, 11, 12}));
    EXPECT_EQ(ran, 3u);
    const auto named = [&seen](unsigned worker) -> Status { return static_cast<Status>(seen[worker]); };
    EXPECT_EQ(team.Run(2, named), 11);
}

TEST(WorkerTeam, IsDoneWhenAllAre) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(3), 0);
    std::atomic<int> finished{0};
    const auto slow = [](void* context, unsigned worker) -> Status {
        std::this_thread::sleep_for(std::chrono::milliseconds(worker == 1 ? 40 : worker == 2 ? 20 : 0));
        static_cast<std::atomic<int>*>(context)->fetch_add(1);
        return 0;
    };
    ASSERT_EQ(team.Run(3, slow, &finished), 0);
    EXPECT_EQ(finished.load(), 3);
}

TEST(WorkerTeam, ReportsAFailure) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(4), 0);
    for (unsigned failing = 0; failing < 4; ++failing) {
        Unit unit;
        unit.statuses[failing] = -7;
        EXPECT_EQ(team.Run(4, Unit::Share, &unit), -7) << failing;
        for (unsigned i = 0; i < 4; ++i) EXPECT_EQ(unit.calls[i], 1);
    }
    Unit several;
    several.statuses = {-3, -4, -5, 0};
    several.statuses.resize(16);
    EXPECT_EQ(team.Run(4, Unit::Share, &several), -5);
    Unit fine;
    EXPECT_EQ(team.Run(4, Unit::Share, &fine), 0);
}

TEST(WorkerTeam, CatchesWhatAShareThrows) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(3), 0);
    for (unsigned throwing = 0; throwing < 3; ++throwing) {
        Unit unit;
        unit.throwing = throwing;
        EXPECT_EQ(team.Run(3, Unit::Share, &unit), IMG_E_EXCEPTION) << throwing;
        for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(unit.calls[i], 1);
    }
}

TEST(WorkerTeam, Reconfigures) {
    WorkerTeam team;
    for (const unsigned count : {2u, 5u, 1u, 0u, 3u}) {
        ASSERT_EQ(team.Configure(count), 0);
        EXPECT_EQ(team.Count(), count == 0 ? 1 : count);
        Unit unit;
        ASSERT_EQ(team.Run(8, Unit::Share, &unit), 0);
        int calls = 0;
        for (const int call : unit.calls) calls += call;
        EXPECT_EQ(calls, static_cast<int>(team.Count()));
    }
    team.Stop();
    EXPECT_EQ(team.Count(), 1u);
    team.Stop();
}

TEST(WorkerTeam, BindsWorkersToProcessors) {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    ASSERT_EQ(sched_getaffinity(0, sizeof(allowed), &allowed), 0);
    int first = 0;
    while (first < 63 && !CPU_ISSET(first, &allowed)) ++first;
    WorkerTeam team;
    ASSERT_EQ(team.Configure(3, std::uint64_t{1} << first), 0);
    std::vector<int> counts(3);
    const auto count = [](void* context, unsigned worker) -> Status {
        cpu_set_t set;
        CPU_ZERO(&set);
        sched_getaffinity(0, sizeof(set), &set);
        (*static_cast<std::vector<int>*>(context))[worker] = CPU_COUNT(&set);
        return 0;
    };
    ASSERT_EQ(team.Run(3, count, &counts), 0);
    EXPECT_EQ(counts[0], CPU_COUNT(&allowed));
    EXPECT_EQ(counts[1], 1);
    EXPECT_EQ(counts[2], 1);
}

TEST(WorkerTeam, TeamsRunSideBySide) {
    std::vector<std::thread> owners;
    std::atomic<int> wrong{0};
    for (int owner = 0; owner < 3; ++owner)
        owners.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                WorkerTeam team;
                if (team.Configure(3) != 0) wrong.fetch_add(1);
                Unit unit;
                for (int i = 0; i < 10; ++i)
                    if (team.Run(3, Unit::Share, &unit) != 0) wrong.fetch_add(1);
                for (unsigned i = 0; i < 3; ++i)
                    if (unit.calls[i] != 10) wrong.fetch_add(1);
            }
        });
    for (std::thread& owner : owners) owner.join();
    EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
