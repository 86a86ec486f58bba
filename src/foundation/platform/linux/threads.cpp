// Events and threads over POSIX. Thread priorities are not offered by ordinary Linux scheduling: every thread is at
// level 0, and setting a level succeeds without effect.
#include <pthread.h>
#include <sched.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware::platform {

namespace {

// One waiting thread, on its own stack.
struct Waiter {
    Waiter* next = nullptr;
    bool released = false;
};

// A signal goes to the oldest waiter or, with none, is kept for the next. All fields are guarded by the mutex.
struct Event {
    std::mutex mutex;
    std::condition_variable condition;
    bool signalled = false;
    Waiter* oldest = nullptr;

    void Append(Waiter& waiter) {
        Waiter** place = &oldest;
        while (*place != nullptr) place = &(*place)->next;
        *place = &waiter;
    }
    void Remove(const Waiter& waiter) {
        Waiter** place = &oldest;
        while (*place != &waiter) place = &(*place)->next;
        *place = waiter.next;
    }
};

struct Thread {
    pthread_t id{};
    ThreadFunction function = nullptr;
    void* argument = nullptr;
    std::uint32_t exitCode = 0;
    bool joined = false;
};

void* RunThread(void* raw) {
    const Thread* const thread = static_cast<Thread*>(raw);
    return reinterpret_cast<void*>(std::uintptr_t{thread->function(thread->argument)});
}

}  // namespace

EventHandle CreateAutoResetEvent() { return new (std::nothrow) Event; }

void DestroyEvent(EventHandle event) { delete static_cast<Event*>(event); }

bool SetEvent(EventHandle handle) {
    Event* const event = static_cast<Event*>(handle);
    try {
        // Notified under the lock: the waiter may destroy the event as soon as it has been released.
        const std::lock_guard lock(event->mutex);
        if (Waiter* const waiter = event->oldest) {
            event->oldest = waiter->next;
            waiter->released = true;
            event->condition.notify_all();
        } else {
            event->signalled = true;
        }
    } catch (...) {
        return false;
    }
    return true;
}

WaitResult WaitEvent(EventHandle handle, std::uint32_t timeoutMs) {
    Event* const event = static_cast<Event*>(handle);
    try {
        std::unique_lock lock(event->mutex);
        if (event->signalled) {
            event->signalled = false;
            return WaitResult::Signalled;
        }
        if (timeoutMs == 0) return WaitResult::TimedOut;
        Waiter self;
        event->Append(self);
        const auto released = [&self] { return self.released; };
        if (timeoutMs == kWaitForever) {
            event->condition.wait(lock, released);
        } else if (!event->condition.wait_for(lock, std::chrono::milliseconds(timeoutMs), released)) {
            event->Remove(self);
            return WaitResult::TimedOut;
        }
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
    void* result = nullptr;
    thread->joined = pthread_join(thread->id, &result) == 0;
    if (thread->joined) thread->exitCode = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(result));
    return thread->joined;
}

std::uint32_t ThreadExitCode(ThreadHandle handle) { return static_cast<Thread*>(handle)->exitCode; }

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
