#include "foundation/sync.h"

#include <algorithm>
#include <atomic>
#include <iterator>

namespace KorvaneSoftware {

namespace {

constexpr std::int32_t kPriorityLevels[] = {-15, -2, -1, 0, 1, 2, 15};

bool IsPriorityLevel(std::int32_t level) {
    return std::find(std::begin(kPriorityLevels), std::end(kPriorityLevels), level) != std::end(kPriorityLevels);
}

}  // namespace

CEvent::~CEvent() { Close(); }

Status CEvent::Create() {
    Close();
    handle_ = platform::CreateAutoResetEvent();
    return handle_ != nullptr ? IMG_OK : IMG_E_FAILED;
}

Status CEvent::Set() {
    if (handle_ == nullptr) return IMG_E_NO_HANDLE;
    return platform::SetEvent(handle_) ? IMG_OK : IMG_E_FAILED;
}

Status CEvent::Wait(std::uint32_t timeoutMs) {
    if (handle_ == nullptr) return IMG_E_NO_HANDLE;
    switch (platform::WaitEvent(handle_, timeoutMs)) {
        case platform::WaitResult::Signalled:
            return IMG_OK;
        case platform::WaitResult::TimedOut:
            return kWaitTimedOut;
        default:
            return IMG_E_FAILED;
    }
}

void CEvent::Close() {
    if (handle_ != nullptr) platform::DestroyEvent(handle_);
    handle_ = nullptr;
}

CThread::~CThread() { Close(); }

Status CThread::Start(platform::ThreadFunction function, void* argument) {
    Close();
    if (function == nullptr) return IMG_E_NULL_ARG;
    handle_ = platform::StartThread(function, argument);
    return handle_ != nullptr ? IMG_OK : IMG_E_FAILED;
}

Status CThread::Wait(std::uint32_t) {
    if (handle_ == nullptr) return IMG_E_NO_HANDLE;
    return platform::JoinThread(handle_) ? IMG_OK : IMG_E_FAILED;
}

std::uint32_t CThread::ExitCode() const { return handle_ == nullptr ? 0 : platform::ThreadExitCode(handle_); }

void CThread::Close() {
    if (handle_ == nullptr) return;
    platform::JoinThread(handle_);
    platform::DestroyThread(handle_);
    handle_ = nullptr;
}

Status GetThreadPriorityLevel(platform::ThreadHandle thread, std::int32_t* level) {
    if (thread == nullptr) return IMG_E_NO_HANDLE;
    if (level == nullptr) return IMG_E_NULL_ARG;
    std::int32_t value = 0;
    if (!platform::GetThreadPriority(thread, value) || !IsPriorityLevel(value)) return IMG_E_FAILED;
    *level = value;
    return IMG_OK;
}

Status SetThreadPriorityLevel(platform::ThreadHandle thread, std::int32_t level) {
    if (thread == nullptr) return IMG_E_NO_HANDLE;
    if (!IsPriorityLevel(level)) return IMG_E_FAILED;
    return platform::SetThreadPriority(thread, level) ? IMG_OK : IMG_E_FAILED;
}

Status SetThreadAffinity(platform::ThreadHandle thread, std::uint64_t mask) {
    if (thread == nullptr) return IMG_E_NO_HANDLE;
    platform::SetThreadAffinityMask(thread, mask);
    return IMG_OK;
}

unsigned GetProcessorCount() {
    const std::optional<unsigned> allowed = platform::CountAffinityProcessors();
    unsigned count = allowed ? *allowed : platform::CountSystemProcessors();
    if (count < 1) count = platform::CountRuntimeThreads();
    return std::max(count, 1u);
}

std::size_t GetCacheSize() {
    constexpr std::size_t kUnknownCacheSize = 0x40000;
    static std::atomic<std::size_t> cached{0};
    std::size_t size = cached.load(std::memory_order_relaxed);
    if (size == 0) {
        size = platform::QueryLevel2CacheSize();
        if (size == 0) size = kUnknownCacheSize;
        cached.store(size, std::memory_order_relaxed);
    }
    return size;
}

}  // namespace KorvaneSoftware
