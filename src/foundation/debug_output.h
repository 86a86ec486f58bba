// The debug output: the one place where the library says anything. Two messages use it.
#pragma once

namespace KorvaneSoftware {

using DebugSink = void (*)(const char* text);

/// Writes a line to the debug output (standard error where the platform has no other).
void DebugOutput(const char* text);
/// Replaces where the lines go; null restores the platform's output. @return the sink in force before, or null.
DebugSink SetDebugSink(DebugSink sink);

}  // namespace KorvaneSoftware
