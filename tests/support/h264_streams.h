// Files of H.264 streams beside the source tree, where there are any.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/h264_access_units.h"

namespace h264 {

inline Bytes ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// The streams that have hashes beside them, sorted by name; none where the folder is not there.
inline std::vector<std::filesystem::path> StreamFiles() {
    const char* named = std::getenv("PIXMORPH_STREAMS");
    const std::filesystem::path folder = named != nullptr ? named : PIXMORPH_DEFAULT_STREAMS;
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator at(folder, error), end; at != end; ++at) {
        if (std::filesystem::exists(at->path().string() + ".framemd5")) files.push_back(at->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Frames that the stream has, by the list of their hashes.
inline std::size_t ListedFrames(const std::filesystem::path& stream) {
    std::ifstream list(stream.string() + ".framemd5");
    std::size_t count = 0;
    for (std::string line; std::getline(list, line);) count += !line.empty() && line[0] != '#';
    return count;
}

}  // namespace h264
