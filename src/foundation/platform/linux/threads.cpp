// Events and threads over POSIX. Thread priorities are not offered by ordinary Linux scheduling: every thread is at
// level 0, and setting a level succeeds without effect.
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware::platform {

namespace {

struct Event {
    std::mutex mutex;
    std::condition_variable condition;
    std::atomic<bool> signalled{false};  // Changed under the mutex; read without it while spinning.
};

// How long a waiter watches for the signal before it sleeps. To wake a sleeping thread costs tens of microseconds, a
// tenth of the time in which a worker does its share of an HD frame; a signal often comes sooner than that.
constexpr std::chrono::microseconds kSpinTime{60};

void SpinFor(const std::atomic<bool>& signalled) {
    static const bool hasOtherProcessors = CountAffinityProcessors() > 1;
    if (!hasOtherProcessors) return;
    constexpr int kPausesBetweenLooksAtTheClock = 16;
    const auto end = std::chrono::steady_clock::now() + kSpinTime;
    do {
        for (int i = 0; i < kPausesBetweenLooksAtTheClock; ++i) {
            if (signalled.load(std::memory_order_relaxed)) return;
            __builtin_ia32_pause();
        }
    } while (std::chrono::steady_clock::now() < end);
}

struct Thread {
    pthread_t id{};
    ThreadFunction function = nullptr;
    void* argument = nullptr;
    bool joined = false;
};

void* RunThread(void* raw) {
    const Thread* const thread = static_cast<Thread*>(raw);
    thread->function(thread->argument);
    return nullptr;
}

}  // namespace

EventHandle CreateAutoResetEvent() { return new (std::nothrow) Event; }

void DestroyEvent(EventHandle event) { delete static_cast<Event*>(event); }

bool SetEvent(EventHandle handle) {
    Event* const event = static_cast<Event*>(handle);
    try {
        // Notified under the lock: the waiter may destroy the event as soon as it has seen the signal.
        const std::lock_guard lock(event->mutex);
        event->signalled.store(true, std::memory_order_relaxed);
        event->condition.notify_one();
    } catch (...) {
        return false;
    }
    return true;
}

WaitResult WaitEvent(EventHandle handle, std::uint32_t timeoutMs) {
    Event* const event = static_cast<Event*>(handle);
    try {
        if (timeoutMs != 0) SpinFor(event->signalled);
        // The signal is taken under the lock, so that SetEvent is through with the event by then.
        std::unique_lock lock(event->mutex);
        const auto signalled = [event] { return event->signalled.load(std::memory_order_relaxed); };
        if (timeoutMs == kWaitForever)
            event->condition.wait(lock, signalled);
        else if (!event->condition.wait_for(lock, std::chrono::milliseconds(timeoutMs), signalled))
            return WaitResult::TimedOut;
        event->signalled.store(false, std::memory_order_relaxed);
    } catch (...) {
        return WaitResult::Failed;
    }
    return WaitResult::Signalled;
}

ThreadHandle StartThread(ThreadFunction function, void* argument) {
    Thread* const thread = new (std::nothrow) Thread;
    if (thread == nullptr) return nullptr;
    thread->function = function;
    thread->argument = argument;
    if (pthread_create(&thread->id, nullptr, RunThread, thread) != 0) {
        delete thread;
        return nullptr;
    }
    return thread;
}

bool JoinThread(ThreadHandle handle) {
    Thread* const thread = static_cast<Thread*>(handle);
    if (thread->joined) return true;
    thread->joined = pthread_join(thread->id, nullptr) == 0;
    return thread->joined;
}

void DestroyThread(ThreadHandle handle) { delete static_cast<Thread*>(handle); }

ThreadHandle CurrentThread() {
    thread_local Thread current;
    current.id = pthread_self();
    return &current;
}

bool GetThreadPriority(ThreadHandle, std::int32_t& level) {
    level = 0;
    return true;
}

bool SetThreadPriority(ThreadHandle, std::int32_t) { return true; }

void SetThreadAffinityMask(ThreadHandle handle, std::uint64_t mask) {
    const Thread* const thread = static_cast<Thread*>(handle);
    if (thread->joined) return;  // Its id means nothing to the system any more.
    cpu_set_t set;
    CPU_ZERO(&set);
    for (int i = 0; i < 64; ++i)
        if (((mask >> i) & 1) != 0) CPU_SET(i, &set);
    pthread_setaffinity_np(thread->id, sizeof(set), &set);
}

}  // namespace KorvaneSoftware::platform
