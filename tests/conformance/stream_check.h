// Holds the frames of a stream against the hashes beside it.
#pragma once

#include "conformance/decode_stream.h"

namespace h264 {

/// One way to decode a stream.
struct Way {
    std::string name;
    ClassEntry entry = nullptr;  ///< Null for the inward decoder.
    unsigned threads = 1;
    std::uint32_t features = 0xFFFFFFFF;  ///< What the processor may show; for code that is linked in only.
};

struct Outcome {
    std::size_t frames = 0;      ///< That came.
    std::size_t wrong = 0;       ///< Of them with another hash.
    std::size_t firstWrong = 0;  ///< Counted from 0.
    std::string error;

    bool Matches(std::size_t expected) const { return error.empty() && frames == expected && wrong == 0; }
    std::string Text(std::size_t expected) const;
};

class StreamCheck {
public:
    explicit StreamCheck(const std::filesystem::path& file);

    std::size_t ExpectedFrames() const { return hashes_.size(); }
    const PictureShape& Shape() const { return stream_.shape; }
    /// No parameter sets of it are taken; no frame may come.
    bool IsRefused() const { return !stream_.decodable; }
    Outcome Decode(const Way& way);
    const Stream& GetStream() const { return stream_; }

private:
    Stream stream_;
    std::vector<std::string> hashes_;
    std::vector<unsigned> presented_;
};

}  // namespace h264
