// The task allocator and the debug output.
#include <cstdio>
#include <cstdlib>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware::platform {

void* TaskAlloc(std::size_t size) { return std::malloc(size); }

void WriteDebugLine(const char* text) { std::fprintf(stderr, "%s\n", text); }

}  // namespace KorvaneSoftware::platform
