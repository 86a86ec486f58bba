// What the foundation does when the system refuses: threads that cannot be made, events that cannot be set or waited
// for, processors that are not told, memory that cannot be had. The program is linked so that the library's calls pass
// through here.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <thread>
#include <vector>

#include "foundation/part_results.h"
#include "foundation/platform/platform.h"
#include "foundation/worker_team.h"
#include "support/refusing_memory.h"

namespace {

using namespace KorvaneSoftware;
using namespace pixmorph_test;

Refusal g_threads;
// Locks that the calling thread may still take: an event whose lock fails can neither be set nor waited for.
thread_local int t_locks = kNever;
bool g_maskIsSecret = false;
bool g_maskIsEmpty = false;
long g_systemProcessors = kNever;

}  // namespace

extern "C" {
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*), void* context);
int __real_sched_getaffinity(pid_t process, std::size_t size, cpu_set_t* set);
long __real_sysconf(int name);
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                          void* context) {
    return g_threads.Now() ? EAGAIN : __real_pthread_create(thread, attributes, function, context);
}
int __wrap_sched_getaffinity(pid_t process, std::size_t size, cpu_set_t* set) {
    if (g_maskIsSecret) return -1;
    if (!g_maskIsEmpty) return __real_sched_getaffinity(process, size, set);
    CPU_ZERO(set);
    CPU_SET(70, set);  // Beyond the 64 that are counted.
    return 0;
}
long __wrap_sysconf(int name) {
    return name == _SC_NPROCESSORS_ONLN && g_systemProcessors != kNever ? g_systemProcessors : __real_sysconf(name);
}
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    if (t_locks == 0) return EINVAL;
    if (t_locks > 0) --t_locks;
    return __real_pthread_mutex_lock(mutex);
}
}

namespace {

class RefusingPlatform : public testing::Test {
protected:
    void TearDown() override {
        g_threads.left = Memory().left = t_locks = kNever;
        g_maskIsSecret = g_maskIsEmpty = false;
        g_systemProcessors = kNever;
    }
};

std::uint32_t Nothing(void*) { return 0; }

TEST_F(RefusingPlatform, AThreadThatCannotBeStartedDoesNotExist) {
    CThread thread;
    g_threads.left = 0;
    EXPECT_EQ(thread.Start(Nothing, nullptr), -1);
    EXPECT_EQ(thread.Handle(), nullptr);
    EXPECT_EQ(thread.Wait(), -9);
    g_threads.left = kNever;
    EXPECT_EQ(WithoutMemory([&] { return thread.Start(Nothing, nullptr); }), -1);
    EXPECT_EQ(thread.Wait(), -9);
    EXPECT_EQ(thread.Start(Nothing, nullptr), 0);
    EXPECT_EQ(thread.Wait(), 0);
}

TEST_F(RefusingPlatform, EventsReportTheSystem) {
    CEvent event;
    EXPECT_EQ(WithoutMemory([&] { return event.Create(); }), -1);
    EXPECT_EQ(event.Set(), -9);
    ASSERT_EQ(event.Create(), 0);
    t_locks = 0;
    const Status set = event.Set();
    const Status waited = event.Wait(0);
    t_locks = kNever;
    EXPECT_EQ(set, -1);
    EXPECT_EQ(waited, -1);
}

// A team that could not be made whole is what there was until then.
TEST_F(RefusingPlatform, ConfiguringStopsAtTheFirstFailure) {
    for (int threads = 0; threads < 3; ++threads) {
        WorkerTeam team;
        g_threads.left = threads;
        EXPECT_EQ(team.Configure(4), -1);
        EXPECT_EQ(team.Count(), static_cast<unsigned>(threads) + 1);
        unsigned ran = 0;
        std::vector<int> calls(4);
        EXPECT_EQ(team.Run(
                      4, [&](unsigned worker) -> Status { return ++calls[worker], 0; }, &ran),
                  0);
        EXPECT_EQ(ran, static_cast<unsigned>(threads) + 1);
        for (unsigned i = 0; i < 4; ++i) EXPECT_EQ(calls[i], i < ran ? 1 : 0);
        g_threads.left = kNever;
        EXPECT_EQ(team.Configure(4), 0);
        EXPECT_EQ(team.Count(), 4u);
    }
    // Every allocation of a configuration, one after the other.
    for (int news = 0;; ++news) {
        WorkerTeam team;
        const Status status = WithoutMemory([&] { return team.Configure(3); }, news);
        EXPECT_EQ(team.Run(3, [](unsigned) -> Status { return 0; }), 0);
        if (status == 0) {
            EXPECT_GE(news, 9);  // The list, and for each worker its record, two events and a thread.
            break;
        }
        EXPECT_TRUE(status == -1 || status == -6) << news << " " << status;
    }
}

TEST_F(RefusingPlatform, TheCallerRunsTheSharesOfWorkersItCannotWake) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(4), 0);
    for (int sets = 0; sets < 3; ++sets) {
        std::vector<int> calls(4);
        std::vector<std::thread::id> ids(4);
        std::vector<unsigned> callersOrder;
        unsigned ran = 0;
        const std::thread::id caller = std::this_thread::get_id();
        // The first signals go through and wake as many workers.
        t_locks = sets;
        const auto share = [&](unsigned worker) -> Status {
            ++calls[worker];
            ids[worker] = std::this_thread::get_id();
            if (ids[worker] == caller) {
                t_locks = kNever;
                callersOrder.push_back(worker);
            }
            return worker == 3 ? -4 : 0;
        };
        EXPECT_EQ(team.Run(4, share, &ran), -4);
        EXPECT_EQ(ran, 4u);
        EXPECT_EQ(calls, (std::vector<int>{1, 1, 1, 1}));
        for (unsigned i = 1; i < 4; ++i) EXPECT_EQ(ids[i] == caller, static_cast<int>(i) > sets);
        EXPECT_EQ(callersOrder.back(), 0u);
    }
}

TEST_F(RefusingPlatform, NobodyWaitsForAPartOfAWorkerThatDidNotWake) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(3), 0);
    PartResults<unsigned> results;
    ASSERT_EQ(results.Create(6), 0);
    for (const bool refuses : {true, false, true}) {
        std::vector<unsigned> joined;
        const auto make = [&](unsigned, unsigned part, unsigned& value) -> Status {
            t_locks = kNever;
            value = part * part;
            return 0;
        };
        const auto join = [&](unsigned part, unsigned value) -> Status {
            EXPECT_EQ(value, part * part);
            joined.push_back(part);
            return 0;
        };
        if (refuses) t_locks = 1;
        EXPECT_EQ(results.Run(team, 3, 6, make, join), 0);
        EXPECT_EQ(joined, (std::vector<unsigned>{0, 1, 2, 3, 4, 5}));
    }
}

TEST_F(RefusingPlatform, AWaitThatFailsIsReportedOnceTheSharesAreDone) {
    WorkerTeam team;
    ASSERT_EQ(team.Configure(3), 0);
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> finished{0};
        const auto share = [&](unsigned worker) -> Status {
            if (worker == 0)
                t_locks = 0;
            else
                std::this_thread::sleep_for(std::chrono::milliseconds(3));
            ++finished;
            return 0;
        };
        const Status status = team.Run(3, share);
        t_locks = kNever;
        EXPECT_EQ(status, -1);
        EXPECT_EQ(finished.load(), 3);
        // The team recovers, whatever signals were left over.
        EXPECT_EQ(team.Run(3, [&](unsigned) -> Status { return ++finished, 0; }), 0);
        EXPECT_EQ(finished.load(), 6);
    }
}

TEST_F(RefusingPlatform, ResultsNeedTheirMemoryAndEvents) {
    PartResults<unsigned> results;
    EXPECT_EQ(WithoutMemory([&] { return results.Create(4); }), -7);
    EXPECT_EQ(results.Count(), 0u);
    EXPECT_EQ(WithoutMemory([&] { return results.Create(4); }, 2), -1);
    EXPECT_EQ(results.Count(), 0u);
}

TEST_F(RefusingPlatform, ProcessorsAreCountedByTheMaskThenTheSystemThenTheRuntime) {
    g_maskIsSecret = true;
    g_systemProcessors = 37;
    EXPECT_EQ(GetProcessorCount(), 37u);
    g_systemProcessors = 0;
    g_maskIsSecret = false;
    const unsigned runtime = std::thread::hardware_concurrency();
    g_maskIsSecret = true;
    EXPECT_EQ(GetProcessorCount(), runtime > 0 ? runtime : 1u);
    // A mask without any of the first 64 is an answer, if an empty one: the system is not asked.
    g_maskIsSecret = false;
    g_maskIsEmpty = true;
    g_systemProcessors = 37;
    EXPECT_NE(GetProcessorCount(), 37u);
    EXPECT_GE(GetProcessorCount(), 1u);
}

}  // namespace
