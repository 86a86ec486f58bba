// Decodes a stream as an application does, one picture a call, and hands out its frames: through the inward decoder,
// which can be flushed, and through the component surface, which cannot.
#pragma once

#include <functional>
#include <string>

#include "conformance/frame_hashes.h"
#include "h264/processor.h"
#include "support/h264_streams.h"

namespace h264 {

/// The pictures that a stream is decoded into: planar, its own chroma format and size, no gaps between lines or planes.
struct PictureShape {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t publicFormat = 0;  ///< 11, 30, 29 or 31.
    std::uint32_t bytesPerSample = 1;
    bool is422 = false;

    std::size_t Bytes() const { return std::size_t{width} * height * bytesPerSample * (is422 ? 4 : 3) / 2; }
    std::int32_t Stride() const { return static_cast<std::int32_t>(width * bytesPerSample); }
};

struct Stream {
    std::vector<Sample> samples;
    PictureShape shape;
    bool decodable = false;  ///< Some slice has parameter sets that the decoder takes.
};

Stream MakeStream(const Bytes& bytes);

using FrameSink = std::function<void(const Bytes& picture)>;

struct InwardOptions {
    unsigned threads = 1;
    bool skipFilter = false;  ///< Leaves the loop filter out, as some tools can.
};

/// @param presented  receives, where not null, how often each sample had to be given before it was taken
/// @return           an error, empty for none
std::string DecodeInward(const Stream& stream, const InwardOptions& options, const FrameSink& sink,
                         std::vector<unsigned>* presented = nullptr);

/// `DllGetClassObject` of a library, or the one linked in.
using ClassEntry = HRESULT (*)(const GUID&, const GUID&, void**);
ClassEntry LinkedClassEntry();
/// Loads a library. @return null where that fails
ClassEntry LoadClassEntry(const std::string& library);

/// @param presented  from DecodeInward: a caller of the surface is not told whether a sample was taken
/// @param frames     how many to wait for; the ones behind the last picture are brought out by pictures of another size
std::string DecodeThroughComponent(const Stream& stream, ClassEntry entry, const std::vector<unsigned>& presented,
                                   std::size_t frames, const FrameSink& sink);

/// How many processors the library sees from now on, 0 for those that there are: it makes as many threads.
void PretendProcessors(unsigned count);

}  // namespace h264
