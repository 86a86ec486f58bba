// MD5 of pictures, and the lists of hashes that stand beside streams.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace h264 {

/// As 32 hexadecimal digits.
std::string Md5(const std::uint8_t* data, std::size_t size);

/// The last column of each line of `<stream>.framemd5`, one for each frame in output order.
std::vector<std::string> ReadFrameHashes(const std::filesystem::path& stream);

}  // namespace h264
