// Compression of a byte stream into the zlib format, small and fast rather than thorough.
#pragma once

#include <cstdint>
#include <vector>

namespace playout {

/// @return a zlib stream (RFC 1950) of one deflate block with the fixed codes (RFC 1951, 3.2.6).
std::vector<std::uint8_t> Deflate(const std::vector<std::uint8_t>& data);

}  // namespace playout
