#include "foundation/debug_output.h"

#include <atomic>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware {

namespace {

std::atomic<DebugSink> g_sink{nullptr};

}  // namespace

void DebugOutput(const char* text) {
    if (const DebugSink sink = g_sink.load())
        sink(text);
    else
        platform::WriteDebugLine(text);
}

DebugSink SetDebugSink(DebugSink sink) { return g_sink.exchange(sink); }

}  // namespace KorvaneSoftware
