// Events, threads and the helpers on threads.
#include "foundation/sync.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <type_traits>

namespace {

using namespace KorvaneSoftware;
using Clock = std::chrono::steady_clock;

std::int64_t MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

TEST(CEvent, DoesNotExistBeforeCreation) {
    CEvent event;
    EXPECT_EQ(event.Handle(), nullptr);
    EXPECT_EQ(event.Set(), -9);
    EXPECT_EQ(event.Wait(0), -9);
    EXPECT_EQ(event.Wait(), -9);
    event.Close();
}

TEST(CEvent, StartsUnsignalledAndResetsItself) {
    CEvent event;
    ASSERT_EQ(event.Create(), 0);
    EXPECT_NE(event.Handle(), nullptr);
    EXPECT_EQ(event.Wait(0), 258);
    EXPECT_EQ(event.Set(), 0);
    EXPECT_EQ(event.Wait(0), 0);
    EXPECT_EQ(event.Wait(0), 258);
    // Two signals without a wait between them wake one.
    EXPECT_EQ(event.Set(), 0);
    EXPECT_EQ(event.Set(), 0);
    EXPECT_EQ(event.Wait(), 0);
    EXPECT_EQ(event.Wait(1), 258);
}

TEST(CEvent, WaitsForItsTime) {
    CEvent event;
    ASSERT_EQ(event.Create(), 0);
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(event.Wait(30), 258);
    EXPECT_GE(MillisecondsSince(start), 29);
}

TEST(CEvent, IsGoneAfterClosing) {
    CEvent event;
    ASSERT_EQ(event.Create(), 0);
    event.Close();
    EXPECT_EQ(event.Handle(), nullptr);
    EXPECT_EQ(event.Set(), -9);
    EXPECT_EQ(event.Wait(0), -9);
    event.Close();
}

TEST(CEvent, CreatingAgainForgetsTheSignal) {
    CEvent event;
    ASSERT_EQ(event.Create(), 0);
    ASSERT_EQ(event.Set(), 0);
    ASSERT_EQ(event.Create(), 0);
    EXPECT_EQ(event.Wait(0), 258);
}

TEST(CEvent, WakesAnotherThreadOncePerSignal) {
    CEvent ping, pong;
    ASSERT_EQ(ping.Create(), 0);
    ASSERT_EQ(pong.Create(), 0);
    int seen = 0;
    std::thread other([&] {
        for (int i = 0; i < 1000; ++i) {
            if (ping.Wait() != 0) return;
            ++seen;
            pong.Set();
        }
    });
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(ping.Set(), 0);
        ASSERT_EQ(pong.Wait(), 0);
        ASSERT_EQ(seen, i + 1);
    }
    other.join();
}

struct Waiters {
    CEvent event;
    std::atomic<int> about{0};
    std::atomic<int> woken{0};
    static std::uint32_t Run(void* argument) {
        auto& waiters = *static_cast<Waiters*>(argument);
        waiters.about.fetch_add(1);
        if (waiters.event.Wait(2000) == 0) waiters.woken.fetch_add(1);
        return 0;
    }
};

TEST(CEvent, TwoSignalsWakeTwoWaiters) {
    for (int round = 0; round < 50; ++round) {
        Waiters waiters;
        ASSERT_EQ(waiters.event.Create(), 0);
        {
            CThread first, second;
            ASSERT_EQ(first.Start(Waiters::Run, &waiters), 0);
            ASSERT_EQ(second.Start(Waiters::Run, &waiters), 0);
            while (waiters.about.load() < 2) std::this_thread::yield();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            ASSERT_EQ(waiters.event.Set(), 0);
            ASSERT_EQ(waiters.event.Set(), 0);
        }
        ASSERT_EQ(waiters.woken.load(), 2) << round;
        EXPECT_EQ(waiters.event.Wait(0), 258);
    }
}

TEST(CEvent, AWaiterWhoseTimeIsOverTakesNoSignal) {
    CEvent event;
    ASSERT_EQ(event.Create(), 0);
    Waiters waiters;
    ASSERT_EQ(waiters.event.Create(), 0);
    CThread other;
    ASSERT_EQ(other.Start(Waiters::Run, &waiters), 0);
    while (waiters.about.load() < 1) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    // The younger waiter leaves; the older is still woken.
    EXPECT_EQ(waiters.event.Wait(1), 258);
    ASSERT_EQ(waiters.event.Set(), 0);
    ASSERT_EQ(other.Wait(), 0);
    EXPECT_EQ(waiters.woken.load(), 1);
}

TEST(CEvent, WaitingUsesNoProcessor) {
    CEvent event;
    ASSERT_EQ(event.Create(), 0);
    const auto processorTime = [] {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
    };
    // A hundred waits of a millisecond: a waiter that watched for 60 microseconds first would spend six milliseconds.
    const long long before = processorTime();
    for (int i = 0; i < 100; ++i) ASSERT_EQ(event.Wait(1), 258);
    EXPECT_LT(processorTime() - before, 5'000'000);
}

TEST(CSyncObject, HasAVirtualDestructorAndWait) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CSyncObject>);
    EXPECT_TRUE(std::is_abstract_v<CSyncObject>);
    CEvent event;
    ASSERT_EQ(event.Create(), 0);
    CSyncObject& object = event;
    EXPECT_EQ(object.Wait(0), 258);
}

struct SlowWork {
    std::atomic<int> finished{0};
    static std::uint32_t Run(void* argument) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        return 0xC0FFEE00 + static_cast<std::uint32_t>(static_cast<SlowWork*>(argument)->finished.fetch_add(1));
    }
};

TEST(CThread, DoesNotExistBeforeStart) {
    CThread thread;
    EXPECT_EQ(thread.Handle(), nullptr);
    EXPECT_EQ(thread.Wait(), -9);
    thread.Close();
}

TEST(CThread, NeedsAFunction) {
    CThread thread;
    EXPECT_EQ(thread.Start(nullptr, nullptr), -2);
    EXPECT_EQ(thread.Wait(), -9);
}

TEST(CThread, WaitJoinsAndKeepsTheHandle) {
    SlowWork work;
    CThread thread;
    ASSERT_EQ(thread.Start(SlowWork::Run, &work), 0);
    EXPECT_EQ(thread.Wait(), 0);
    EXPECT_EQ(work.finished.load(), 1);
    EXPECT_NE(thread.Handle(), nullptr);
    EXPECT_EQ(thread.Wait(), 0);
    thread.Close();
    EXPECT_EQ(thread.Handle(), nullptr);
    EXPECT_EQ(thread.Wait(), -9);
}

TEST(CThread, TellsWhatItsFunctionReturned) {
    SlowWork work;
    CThread thread;
    EXPECT_EQ(thread.ExitCode(), 0u);
    ASSERT_EQ(thread.Start(SlowWork::Run, &work), 0);
    EXPECT_EQ(thread.ExitCode(), 0u);  // Not joined yet.
    EXPECT_EQ(thread.Wait(), 0);
    EXPECT_EQ(thread.ExitCode(), 0xC0FFEE00u);
    ASSERT_EQ(thread.Start(SlowWork::Run, &work), 0);
    EXPECT_EQ(thread.Wait(), 0);
    EXPECT_EQ(thread.ExitCode(), 0xC0FFEE01u);
}

TEST(CThread, StartWaitsForTheThreadBefore) {
    SlowWork first, second;
    CThread thread;
    ASSERT_EQ(thread.Start(SlowWork::Run, &first), 0);
    ASSERT_EQ(thread.Start(SlowWork::Run, &second), 0);
    EXPECT_EQ(first.finished.load(), 1);
    EXPECT_EQ(thread.Wait(), 0);
    EXPECT_EQ(second.finished.load(), 1);
}

TEST(CThread, NullFunctionStillWaitsForTheThreadBefore) {
    SlowWork work;
    CThread thread;
    ASSERT_EQ(thread.Start(SlowWork::Run, &work), 0);
    EXPECT_EQ(thread.Start(nullptr, nullptr), -2);
    EXPECT_EQ(work.finished.load(), 1);
}

TEST(CThread, CloseAndDestructorJoin) {
    SlowWork work;
    {
        CThread thread;
        ASSERT_EQ(thread.Start(SlowWork::Run, &work), 0);
        thread.Close();
        EXPECT_EQ(work.finished.load(), 1);
        ASSERT_EQ(thread.Start(SlowWork::Run, &work), 0);
    }
    EXPECT_EQ(work.finished.load(), 2);
}

TEST(ThreadPriority, ChecksItsArguments) {
    std::int32_t level = 77;
    EXPECT_EQ(GetThreadPriorityLevel(nullptr, &level), -9);
    EXPECT_EQ(GetThreadPriorityLevel(nullptr, nullptr), -9);
    EXPECT_EQ(GetThreadPriorityLevel(platform::CurrentThread(), nullptr), -2);
    EXPECT_EQ(level, 77);
    EXPECT_EQ(SetThreadPriorityLevel(nullptr, 0), -9);
    EXPECT_EQ(SetThreadPriorityLevel(nullptr, 3), -9);
}

TEST(ThreadPriority, TakesSevenLevels) {
    const platform::ThreadHandle self = platform::CurrentThread();
    for (std::int32_t level = -20; level <= 20; ++level) {
        const bool legal = level == -15 || (level >= -2 && level <= 2) || level == 15;
        EXPECT_EQ(SetThreadPriorityLevel(self, level), legal ? 0 : -1) << level;
    }
    EXPECT_EQ(SetThreadPriorityLevel(self, INT32_MIN), -1);
    EXPECT_EQ(SetThreadPriorityLevel(self, 0), 0);
    std::int32_t level = 77;
    EXPECT_EQ(GetThreadPriorityLevel(self, &level), 0);
    EXPECT_EQ(level, 0);
}

struct AffinityProbe {
    CEvent go;
    int processors = -1;
    bool onFirst = false;
    int first = 0;
    static std::uint32_t Run(void* argument) {
        auto& probe = *static_cast<AffinityProbe*>(argument);
        probe.go.Wait();
        cpu_set_t set;
        CPU_ZERO(&set);
        if (sched_getaffinity(0, sizeof(set), &set) != 0) return 1;
        probe.processors = CPU_COUNT(&set);
        probe.onFirst = CPU_ISSET(probe.first, &set);
        return 0;
    }
};

int FirstAllowedProcessor() {
    cpu_set_t set;
    CPU_ZERO(&set);
    sched_getaffinity(0, sizeof(set), &set);
    int first = 0;
    while (first < 63 && !CPU_ISSET(first, &set)) ++first;
    return first;
}

TEST(ThreadAffinity, BindsAThread) {
    AffinityProbe probe;
    ASSERT_EQ(probe.go.Create(), 0);
    probe.first = FirstAllowedProcessor();
    CThread thread;
    ASSERT_EQ(thread.Start(AffinityProbe::Run, &probe), 0);
    EXPECT_EQ(SetThreadAffinity(thread.Handle(), std::uint64_t{1} << probe.first), 0);
    ASSERT_EQ(probe.go.Set(), 0);
    ASSERT_EQ(thread.Wait(), 0);
    EXPECT_EQ(probe.processors, 1);
    EXPECT_TRUE(probe.onFirst);
    // The thread is over; the helper still answers 0.
    EXPECT_EQ(SetThreadAffinity(thread.Handle(), 1), 0);
}

TEST(ThreadAffinity, AnswersNothingElse) {
    EXPECT_EQ(SetThreadAffinity(nullptr, 1), -9);
    AffinityProbe probe;
    ASSERT_EQ(probe.go.Create(), 0);
    CThread thread;
    ASSERT_EQ(thread.Start(AffinityProbe::Run, &probe), 0);
    EXPECT_EQ(SetThreadAffinity(thread.Handle(), 0), 0);
    ASSERT_EQ(probe.go.Set(), 0);
    ASSERT_EQ(thread.Wait(), 0);
    EXPECT_GE(probe.processors, 1);
}

struct CountProbe {
    bool bindsItself = false;
    unsigned count = 0;
    static std::uint32_t Run(void* argument) {
        auto& probe = *static_cast<CountProbe*>(argument);
        if (probe.bindsItself) {
            cpu_set_t set;
            CPU_ZERO(&set);
            CPU_SET(FirstAllowedProcessor(), &set);
            sched_setaffinity(0, sizeof(set), &set);
        }
        probe.count = GetProcessorCount();
        return 0;
    }
};

unsigned CountFromThread(bool bindsItself) {
    CountProbe probe;
    probe.bindsItself = bindsItself;
    CThread thread;
    EXPECT_EQ(thread.Start(CountProbe::Run, &probe), 0);
    EXPECT_EQ(thread.Wait(), 0);
    return probe.count;
}

// The tests run on the process's first thread, whose mask is the process's.
TEST(GetProcessorCount, CountsTheMaskOfTheProcess) {
    cpu_set_t whole;
    CPU_ZERO(&whole);
    ASSERT_EQ(sched_getaffinity(0, sizeof(whole), &whole), 0);
    unsigned expected = 0;
    for (int i = 0; i < 64; ++i) expected += CPU_ISSET(i, &whole) ? 1 : 0;
    EXPECT_EQ(GetProcessorCount(), expected);
    // A thread that is bound to one processor still counts the process's.
    EXPECT_EQ(CountFromThread(true), expected);

    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(FirstAllowedProcessor(), &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof(one), &one), 0);
    EXPECT_EQ(GetProcessorCount(), 1u);
    EXPECT_EQ(CountFromThread(false), 1u);
    ASSERT_EQ(sched_setaffinity(0, sizeof(whole), &whole), 0);
}

// The system's own description of the cache, where it has one, is the other source.
TEST(GetCacheSize, AgreesWithTheSystem) {
    std::size_t described = 0;
    for (int index = 0; index < 8; ++index) {
        const std::string path = "/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(index);
        int level = 0;
        std::ifstream(path + "/level") >> level;
        std::string size;
        std::ifstream(path + "/size") >> size;
        if (level == 2 && !size.empty() && size.back() == 'K') described = std::stoul(size) * 1024;
    }
    const std::size_t expected = described != 0 ? described : GetCacheSize();
    EXPECT_EQ(GetCacheSize(), expected);
    EXPECT_GE(GetCacheSize(), 0x8000u);
    EXPECT_EQ(GetCacheSize(), GetCacheSize());
}

}  // namespace
