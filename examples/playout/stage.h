// The chain: stages that take a frame and hand on none, one or several. A new stage (a codec, a scaler of another kind)
// is a class derived from Stage and one more Add in main.cpp.
#pragma once

#include <cstdint>
#include <vector>

#include "picture.h"
#include "source.h"

namespace playout {

/// A frame on its way. Later stages find in it what earlier ones have made.
struct Frame {
    /// The picture. It belongs to the stage that made it and stays until that stage makes its next one; the stage that
    /// is handed it may change it in place.
    Picture* picture = nullptr;
    /// The stream that the frame is part of at this point.
    VideoFormat format;
    /// The source frame that it was made from, and whether it is the second one made from it.
    std::uint64_t number = 0;
    bool second = false;
    /// The title that lies over it: BGRA, premultiplied, faded. Null before the title stage.
    const Picture* title = nullptr;
    /// The title as a run-length stream. Null before the key stage.
    const std::vector<std::uint8_t>* keyStream = nullptr;
};

/// Where a stage hands its frames on.
class Sink {
public:
    virtual void Take(const Frame& frame) = 0;

protected:
    ~Sink() = default;
};

class Stage {
public:
    virtual ~Stage() = default;
    virtual const char* Name() const = 0;
    virtual void Process(const Frame& frame, Sink& next) = 0;
    /// The stream has ended: hands on what is still held back.
    virtual void Finish(Sink& next) { static_cast<void>(next); }
    /// Bytes that the stage has made of a frame that it hands on, for the summary.
    virtual std::uint64_t BytesOf(const Frame& frame) const { return frame.picture->PixelBytes(); }
};

}  // namespace playout
