// Reading of H.264 elementary streams, decoded by the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "source.h"

namespace playout {

/// Whether a file begins as an Annex B byte stream does, with a start code.
bool IsAnnexB(const std::string& path);

/// Decodes a stream in which all pictures have one size. The decoder gives a frame back when those that may be needed
/// for its order are behind it; it wants one picture (a frame or a field) a call, from a three-byte start code on.
class H264Reader : public Source {
public:
    /// @throws Error(EXIT_INPUT) for what holds no pictures that the library decodes
    explicit H264Reader(const std::string& path);

    const VideoFormat& Format() const override { return format_; }
    bool Read(Picture& picture) override;

private:
    struct Range {
        std::size_t begin;
        std::size_t end;
    };
    void FindPictures();
    void TakeFormat(const std::vector<std::uint8_t>& payload);
    bool Decode(const Range& sample, Picture& picture);

    std::string name_;
    std::vector<std::uint8_t> bytes_;
    std::vector<Range> samples_;
    VideoFormat format_;
    unsigned frameNumBits_ = 0;
    bool framesOnly_ = true;
    bool separatePlanes_ = false;
    std::size_t firstIdr_ = SIZE_MAX;  ///< Its sample.
    std::size_t next_ = 0;
    std::uint64_t delivered_ = 0;
    std::vector<std::uint8_t> frame_;
    KorvaneSoftware::ComPtr<IVideoDecoder> decoder_;
};

}  // namespace playout
