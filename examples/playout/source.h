// Where video comes from: a file, or the scene that the program draws itself.
#pragma once

#include <cstdint>

#include "picture.h"

namespace playout {

enum class FieldOrder { Progressive, TopFirst, BottomFirst };

/// Properties of a stream of frames.
struct VideoFormat {
    std::uint32_t pixels = PIXMORPH_Y422;  ///< PIXMORPH_IYUV or PIXMORPH_Y422, without a matrix.
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t rateNumerator = 25;  ///< Frames per second, as a fraction.
    std::uint32_t rateDenominator = 1;
    std::uint32_t aspectNumerator = 1;  ///< Shape of a pixel; 0:0 where the stream does not tell.
    std::uint32_t aspectDenominator = 1;
    FieldOrder fieldOrder = FieldOrder::Progressive;
    std::uint64_t frames = 0;  ///< How many will come; 0 where that is not known.
};

class Source {
public:
    virtual ~Source() = default;
    virtual const VideoFormat& Format() const = 0;
    /// Fills `picture` with the next frame. @return false at the end of the stream. @throws Error
    virtual bool Read(Picture& picture) = 0;
};

}  // namespace playout
