// What the parsers of slice data throw on syntax that cannot be.
#pragma once

namespace KorvaneSoftware {

/// Throws std::runtime_error; called before the impossible value has been used. Kept out of line, so that the readers
/// that call it stay small.
[[noreturn]] void ThrowImpossibleSyntax(const char* element);

}  // namespace KorvaneSoftware
