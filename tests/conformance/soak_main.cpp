// Starts streams, switches between them in mid-flow, damages them, and replaces decoders that are at work, through the
// component surface: none of it may crash, hang, or leave memory behind.
//   soak_h264 [steps [seed]]   60 steps; a thousand take some minutes
#include <malloc.h>
#include <pixmorph/pixmorph.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "conformance/decode_stream.h"
#include "conformance/generated_stream.h"

namespace h264 {
namespace {

constexpr std::uintmax_t kLargestStream = 300000;
constexpr std::int32_t kRow = 10;

std::vector<Stream> LoadStreams() {
    std::vector<Stream> streams;
    streams.push_back(MakeStream(GeneratedStream().bytes));
    for (const auto& file : StreamFiles()) {
        if (std::filesystem::file_size(file) > kLargestStream) continue;
        Stream stream = MakeStream(ReadFile(file));
        if (stream.decodable) streams.push_back(std::move(stream));
    }
    return streams;
}

/// Bytes in use, those mapped apart with them.
std::size_t MemoryInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

class Soak {
public:
    Soak(std::vector<Stream> streams, unsigned seed) : streams_(std::move(streams)), random_(seed) {
        ComPtr<IClassFactory> factory;
        if (LinkedClassEntry()(CLSID_VideoCodec, IID_IClassFactory, factory.Put()) != S_OK ||
            factory->CreateInstance(nullptr, IID_IVideoDecoder, decoder_.Put()) != S_OK) {
            throw std::runtime_error("no decoder");
        }
        std::size_t largest = 0;
        for (const Stream& stream : streams_) largest = std::max(largest, stream.shape.Bytes());
        buffer_.resize(largest);
        damaged_.reserve(1 << 20);
    }

    /// A new decoder, which takes the place of one that may be at work, and a part of a stream; then perhaps a part of
    /// another one, whose pictures are brought to the size of the first.
    /// @return memory in use while the new decoder has seen nothing
    std::size_t Step() {
        const Stream& first = streams_[Below(streams_.size())];
        const PictureShape& shape = first.shape;
        PretendProcessors(1 + static_cast<unsigned>(Below(4)));
        if (decoder_->DecSetFormat(kRow, static_cast<std::int32_t>(shape.width),
                                   static_cast<std::int32_t>(shape.height)) != S_OK) {
            throw std::runtime_error("DecSetFormat fails");
        }
        const std::size_t memory = MemoryInUse();
        Feed(first, shape);
        for (std::size_t left = Below(3); left > 0; --left) Feed(streams_[Below(streams_.size())], shape);
        return memory;
    }
    std::uint64_t Frames() const { return frames_; }

private:
    std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }

    void Feed(const Stream& stream, const PictureShape& shape) {
        const std::size_t count = std::min<std::size_t>(1 + Below(stream.samples.size()), 60);
        const bool damages = Below(4) == 0;
        std::uint8_t* const planes[] = {buffer_.data()};
        const std::int32_t strides[] = {shape.Stride()};
        for (std::size_t i = 0; i < count; ++i) {
            damaged_ = stream.samples[i].bytes;
            if (damages && damaged_.size() > 8) {
                for (std::size_t hits = Below(4); hits > 0; --hits) {
                    damaged_[4 + Below(damaged_.size() - 4)] = static_cast<std::uint8_t>(random_());
                }
            }
            frames_ += decoder_->Decode(planes, strides, shape.publicFormat, damaged_.data(),
                                        static_cast<std::int32_t>(damaged_.size())) == S_OK;
        }
    }

    template <class Interface>
    using ComPtr = KorvaneSoftware::ComPtr<Interface>;

    std::vector<Stream> streams_;
    std::mt19937 random_;
    ComPtr<::IVideoDecoder> decoder_;
    Bytes buffer_;
    Bytes damaged_;
    std::uint64_t frames_ = 0;
};

int Main(unsigned steps, unsigned seed) {
    // What a decoder has in use before its first picture, by its number of threads at most: more of it later is a leak.
    constexpr std::size_t kSlack = 256 * 1024;
    Soak soak(LoadStreams(), seed);
    std::size_t early = 0;
    std::size_t late = 0;
    for (unsigned step = 0; step < steps; ++step) {
        const std::size_t memory = soak.Step();
        (step < steps / 3 ? early : late) = std::max(step < steps / 3 ? early : late, memory);
    }
    std::printf("%u starts, %llu frames; in use at a start: %zu KiB in the first third, %zu KiB after it\n", steps,
                static_cast<unsigned long long>(soak.Frames()), early / 1024, late / 1024);
    if (soak.Frames() == 0) return 1;
    return late <= early + kSlack ? 0 : 1;
}

}  // namespace
}  // namespace h264

int main(int count, char** words) {
    try {
        const auto number = [&](int place, unsigned otherwise) {
            return count > place ? static_cast<unsigned>(std::strtoul(words[place], nullptr, 10)) : otherwise;
        };
        return h264::Main(std::max(number(1, 60), 3u), number(2, 1));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "soak_h264: %s\n", error.what());
        return 2;
    }
}
