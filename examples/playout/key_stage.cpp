#include "key_stage.h"

#include <cstring>

#include "error.h"

namespace playout {
namespace {

constexpr std::uint32_t kGroupPixels = 16;
constexpr std::size_t kRecordBytes = 48;
constexpr std::size_t kCellBytes = 4;

}  // namespace

KeyStage::KeyStage() { Check(KorvaneSoftware::CreateInstance(CLSID_TitleMixer3, mixer_), "creation of TitleMixer3"); }

void KeyStage::Process(const Frame& frame, Sink& next) {
    const Picture& title = *frame.title;
    // At worst every group is visible, or every other one, each in a run of its own.
    const std::size_t groups = std::size_t{title.Width() / kGroupPixels} * title.Height();
    stream_.resize(groups * (kRecordBytes + kCellBytes) + kCellBytes);
    // The first counter cell is the caller's. Lines go into the stream in memory order: the title's top line first.
    std::memset(stream_.data(), 0, kCellBytes);
    auto* counter = reinterpret_cast<std::int32_t*>(stream_.data());
    std::uint8_t* write = stream_.data() + kCellBytes;
    Check(mixer_->CompressToRLE(&write, title.Row(0, 0), title.Width(), title.Height(), title.Stride(), &counter),
          "CompressToRLE");
    stream_.resize(static_cast<std::size_t>(write - stream_.data()));
    Frame out = frame;
    out.keyStream = &stream_;
    next.Take(out);
}

Picture KeyOfStream(const std::vector<std::uint8_t>& stream, std::uint32_t format, std::uint32_t width,
                    std::uint32_t height) {
    const auto fail = [] { throw Error(EXIT_LIBRARY, "the run-length stream does not fit the title's size"); };
    Picture key(format, width, height);
    const std::size_t groupsPerRow = width / kGroupPixels;
    const std::size_t groups = groupsPerRow * height;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x) {
            key.Row(0, y)[2 * x] = 128;
            key.Row(0, y)[2 * x + 1] = 16;
        }
    std::size_t group = 0;
    std::size_t at = 0;
    while (at < stream.size()) {
        std::int32_t count = 0;
        if (stream.size() - at < kCellBytes) fail();
        std::memcpy(&count, stream.data() + at, kCellBytes);
        at += kCellBytes;
        if (count < 0) {
            group += static_cast<std::size_t>(-static_cast<std::int64_t>(count));
            continue;
        }
        for (; count > 0; --count, ++group, at += kRecordBytes) {
            if (stream.size() - at < kRecordBytes || group >= groups) fail();
            std::uint8_t* const row = key.Row(0, static_cast<std::uint32_t>(group / groupsPerRow));
            for (std::uint32_t i = 0; i < kGroupPixels; ++i) {
                const std::uint32_t opacity = 255u - stream[at + kGroupPixels + i];
                row[2 * (group % groupsPerRow * kGroupPixels + i) + 1] =
                    static_cast<std::uint8_t>(16 + (opacity * 219 + 127) / 255);
            }
        }
    }
    if (group != groups) fail();
    return key;
}

}  // namespace playout
