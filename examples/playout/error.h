// What can go wrong in the program, and the exit code that says so.
#pragma once

#include <pixmorph/com.h>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace playout {

enum ExitCode : int {
    EXIT_OK = 0,
    EXIT_USAGE = 2,    ///< The command line makes no sense.
    EXIT_INPUT = 3,    ///< The input cannot be read or is no video that the program takes.
    EXIT_OUTPUT = 4,   ///< A result cannot be written.
    EXIT_LIBRARY = 5,  ///< The library refused a call.
};

class Error : public std::runtime_error {
public:
    Error(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
    ExitCode Code() const { return code_; }

private:
    ExitCode code_;
};

/// Throws unless a call of the library succeeded.
inline void Check(HRESULT result, const char* call) {
    if (result == S_OK) return;
    char text[160];
    std::snprintf(text, sizeof text, "%s failed with 0x%08X", call, static_cast<unsigned>(result));
    throw Error(EXIT_LIBRARY, text);
}

}  // namespace playout
