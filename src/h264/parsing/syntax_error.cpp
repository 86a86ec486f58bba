#include "h264/parsing/syntax_error.h"

#include <stdexcept>

namespace KorvaneSoftware {

void ThrowImpossibleSyntax(const char* element) { throw std::runtime_error(element); }

}  // namespace KorvaneSoftware
