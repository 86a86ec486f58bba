// Wait objects: an auto-reset event and a thread that is always joined, with the helpers that engines use on threads.
// Statuses: 0, IMG_E_FAILED when the system refuses, IMG_E_NULL_ARG, IMG_E_NO_HANDLE when the object does not exist.
#pragma once

#include <cstdint>

#include "foundation/platform/platform.h"
#include "foundation/status.h"

namespace KorvaneSoftware {

constexpr Status kWaitTimedOut = 258;
using platform::kWaitForever;

class CSyncObject {
public:
    CSyncObject() = default;
    CSyncObject(const CSyncObject&) = delete;
    CSyncObject& operator=(const CSyncObject&) = delete;
    virtual ~CSyncObject() = default;
    /// Waits for the object. @return 0, kWaitTimedOut, IMG_E_FAILED or IMG_E_NO_HANDLE.
    virtual Status Wait(std::uint32_t timeoutMs) = 0;

    void* Handle() const { return handle_; }

protected:
    void* handle_ = nullptr;
};

/// Auto-reset event: each Set wakes one Wait, the oldest that waits. With nobody waiting the first Set is kept for the
/// next Wait, and further ones are lost.
class CEvent final : public CSyncObject {
public:
    ~CEvent() override;
    /// Creates the event, unsignalled; a previous one is closed.
    [[nodiscard]] Status Create();
    Status Set();
    Status Wait(std::uint32_t timeoutMs = kWaitForever) override;
    void Close();
};

/// A thread that cannot outlive its owner.
class CThread final : public CSyncObject {
public:
    ~CThread() override;
    /// Starts `function(argument)`; a previous thread is joined first.
    [[nodiscard]] Status Start(platform::ThreadFunction function, void* argument);
    /// Joins, without a time limit. The handle stays.
    Status Wait(std::uint32_t timeoutMs = kWaitForever) override;
    /// What the function returned, once Wait has joined; 0 before.
    std::uint32_t ExitCode() const;
    /// Joins and closes.
    void Close();
};

/// Reads a thread's priority: -15, -2, -1, 0, 1, 2 or 15.
Status GetThreadPriorityLevel(platform::ThreadHandle thread, std::int32_t* level);
Status SetThreadPriorityLevel(platform::ThreadHandle thread, std::int32_t level);
Status SetThreadAffinity(platform::ThreadHandle thread, std::uint64_t mask);

/// Processors of the first 64 that this process may use, by the mask of the process and not of the calling thread;
/// where the system does not tell, all that it has. At least 1.
unsigned GetProcessorCount();
/// Size of the level-2 cache in bytes; 256 KiB when the processor does not tell. Read once.
std::size_t GetCacheSize();

}  // namespace KorvaneSoftware
