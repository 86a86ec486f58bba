// Everything that differs between platforms, as plain functions. One folder per platform implements them all; nothing
// outside these folders includes a platform header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "foundation/features.h"

namespace KorvaneSoftware::platform {

/// Reads the processor's identification.
RawCpuId ReadCpuId();
/// Level-2 cache size in bytes as the processor tells it; 0 when it does not.
std::size_t QueryLevel2CacheSize();

/// Processors of the first 64 that this process may run on, by its affinity mask; nothing when the system does not
/// tell.
std::optional<unsigned> CountAffinityProcessors();
/// Processors of the system; 0 when it does not tell.
unsigned CountSystemProcessors();
/// Hardware threads that the language's runtime knows of.
unsigned CountRuntimeThreads();

/// Tells the processor that the calling thread watches a value in a loop.
void PauseProcessor();
/// Starts to fetch the cache lines at `first`, `first` + `stride` and so on for writing. An address without memory does
/// no harm.
void FetchForWriting(const std::uint8_t* first, std::ptrdiff_t stride, unsigned count);
/// Lets another thread run on this processor.
void YieldProcessor();

/// Auto-reset event. Handles are opaque; null means none.
using EventHandle = void*;
enum class WaitResult { Signalled, TimedOut, Failed };
constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;

EventHandle CreateAutoResetEvent();
void DestroyEvent(EventHandle event);
bool SetEvent(EventHandle event);
WaitResult WaitEvent(EventHandle event, std::uint32_t timeoutMs);

/// A joinable thread. A handle stays valid after the thread was joined, until it is destroyed.
using ThreadHandle = void*;
/// Returns the exit code of the thread.
using ThreadFunction = std::uint32_t (*)(void* argument);

ThreadHandle StartThread(ThreadFunction function, void* argument);
/// Waits for the end of the thread. Joining twice is fine.
bool JoinThread(ThreadHandle thread);
/// What the function of a joined thread returned; 0 before.
std::uint32_t ThreadExitCode(ThreadHandle thread);
/// Frees the handle of a joined thread.
void DestroyThread(ThreadHandle thread);
/// Handle of the calling thread for the priority functions; never destroyed.
ThreadHandle CurrentThread();

/// Priority on the scale -15, -2, -1, 0, 1, 2, 15. A platform without thread priorities reports 0 and accepts all.
bool GetThreadPriority(ThreadHandle thread, std::int32_t& level);
bool SetThreadPriority(ThreadHandle thread, std::int32_t level);
/// Bit i allows processor i.
void SetThreadAffinityMask(ThreadHandle thread, std::uint64_t mask);

/// Memory that a caller of the component surface will free.
void* TaskAlloc(std::size_t size);
/// Writes a line to the debug output.
void WriteDebugLine(const char* text);

}  // namespace KorvaneSoftware::platform
