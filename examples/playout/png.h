// Writing of PNG files.
#pragma once

#include <string>

#include "picture.h"

namespace playout {

/// Writes a BGR or BGRA picture that is stored top-down. @throws Error(EXIT_OUTPUT)
void WritePng(const std::string& path, const Picture& picture);

}  // namespace playout
