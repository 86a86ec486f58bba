// The DV family beside the tool's codec: each reads the other's frames, in all streams, and ours lose no more than the
// tool's own.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>

#include "media_tool.h"

namespace {

using interop::Frames;

enum class Sampling { k411, k420, k422 };

struct Stream {
    const char* name;
    std::int32_t row;
    std::uint32_t width, height;
    Sampling sampling;
    std::size_t frameBytes;
    const char* rate;  // Frames per second, by which the tool tells streams apart.
};

void PrintTo(const Stream& stream, std::ostream* out) { *out << stream.name; }

constexpr Stream kStreams[] = {
    {"Kvdv480", 0, 720, 480, Sampling::k411, 120000, "30000/1001"},
    {"Kvdv576", 0, 720, 576, Sampling::k420, 144000, "25"},
    {"Kv25_576", 1, 720, 576, Sampling::k411, 144000, "25"},
    {"Kv50_480", 2, 720, 480, Sampling::k422, 240000, "30000/1001"},
    {"Kv50_576", 2, 720, 576, Sampling::k422, 288000, "25"},
    {"Kvh1_1080_60", 4, 1280, 1080, Sampling::k422, 480000, "30000/1001"},
    {"Kvh1_1080_50", 3, 1440, 1080, Sampling::k422, 576000, "25"},
    {"Kvh1_720_60", 4, 960, 720, Sampling::k422, 240000, "60000/1001"},
    {"Kvh1_720_50", 3, 960, 720, Sampling::k422, 288000, "50"},
};
// Two, so that the second one of a pair of 720 lines is among them.
constexpr std::size_t kFrames = 2;

// Decoding to planes of the stream's own sampling, to compare sample by sample.
struct Planes {
    explicit Planes(const Stream& stream)
        : luma(std::size_t{stream.width} * stream.height),
          chromaWidth(stream.width / (stream.sampling == Sampling::k411 ? 4 : 2)),
          chromaHeight(stream.height / (stream.sampling == Sampling::k420 ? 2 : 1)),
          chroma(std::size_t{chromaWidth} * chromaHeight) {}
    std::size_t Bytes() const { return luma + 2 * chroma; }
    std::size_t Start(int plane) const { return plane == 0 ? 0 : luma + (plane == 1 ? 0 : chroma); }
    std::size_t Size(int plane) const { return plane == 0 ? luma : chroma; }

    std::size_t luma;
    std::uint32_t chromaWidth, chromaHeight;
    std::size_t chroma;
};

std::string PixelFormat(const Stream& stream) {
    return stream.sampling == Sampling::k411 ? "yuv411p" : stream.sampling == Sampling::k420 ? "yuv420p" : "yuv422p";
}

// Line of chrominance under a line of the picture: of 4:2:0, each field's own.
std::uint32_t ChromaLine(const Stream& stream, std::uint32_t y) {
    return stream.sampling == Sampling::k420 ? y / 4 * 2 + y % 2 : y;
}

// Calls `move(packed byte, planar byte)` for all samples of a UYVY picture; chrominance as often as it is shared.
template <class Move>
void ForSamples(const Stream& stream, Move move) {
    const Planes planes(stream);
    const std::size_t chromaStep = planes.chromaWidth * 4 == stream.width ? 4 : 2;
    for (std::uint32_t y = 0; y < stream.height; ++y)
        for (std::uint32_t x = 0; x < stream.width; ++x) {
            const std::size_t packed = 2 * (std::size_t{y} * stream.width + x);
            move(packed + 1, std::size_t{y} * stream.width + x);
            const std::size_t chroma = std::size_t{ChromaLine(stream, y)} * planes.chromaWidth + x / chromaStep;
            move(packed, planes.Start(x % 2 == 0 ? 1 : 2) + chroma);
        }
}

std::vector<std::uint8_t> ToPacked(const Stream& stream, const std::vector<std::uint8_t>& planar) {
    std::vector<std::uint8_t> packed(std::size_t{2} * stream.width * stream.height);
    ForSamples(stream, [&](std::size_t to, std::size_t from) { packed[to] = planar[from]; });
    return packed;
}

std::vector<std::uint8_t> Join(const Frames& frames) {
    std::vector<std::uint8_t> bytes;
    for (const auto& frame : frames) bytes.insert(bytes.end(), frame.begin(), frame.end());
    return bytes;
}

Frames Split(const std::vector<std::uint8_t>& bytes, std::size_t size) {
    Frames frames;
    for (std::size_t at = 0; at + size <= bytes.size(); at += size)
        frames.emplace_back(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                            bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
    return frames;
}

// What the tool makes of bytes that it reads from a file; %s in its options stands for that.
std::vector<std::uint8_t> RunOn(std::string options, const std::vector<std::uint8_t>& input) {
    const std::string path = ::testing::TempDir() + "dv" + std::to_string(::getpid());
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(input.data()), static_cast<std::streamsize>(input.size()));
    options.replace(options.find("%s"), 2, "'" + path + "'");
    std::string complaints;
    const std::vector<std::uint8_t> output = interop::Output(options, complaints);
    std::filesystem::remove(path);
    EXPECT_FALSE(output.empty()) << options << ": " << complaints;
    return output;
}

Frames ToolDecodes(const Stream& stream, const Frames& coded) {
    const std::string words = "-f dv -i %s -frames:v " + std::to_string(coded.size()) +
                              " -vsync passthrough -f rawvideo -pix_fmt " + PixelFormat(stream);
    return Split(RunOn(words, Join(coded)), Planes(stream).Bytes());
}

Frames ToolEncodes(const Stream& stream, const Frames& planar) {
    const std::string words = "-f rawvideo -pix_fmt " + PixelFormat(stream) + " -s " + std::to_string(stream.width) +
                              "x" + std::to_string(stream.height) + " -r " + stream.rate +
                              " -i %s -c:v dvvideo -threads 1 -f rawvideo";
    return Split(RunOn(words, Join(planar)), stream.frameBytes);
}

Frames WeEncode(const Stream& stream, const Frames& planar) {
    KorvaneSoftware::ComPtr<IVideoEncoder> encoder;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder), S_OK);
    const auto width = static_cast<std::int32_t>(stream.width), height = static_cast<std::int32_t>(stream.height);
    EXPECT_EQ(encoder->EncSetFormat(stream.row, width, height), S_OK);
    Frames coded;
    for (const auto& frame : planar) {
        const std::vector<std::uint8_t> picture = ToPacked(stream, frame);
        std::vector<std::uint8_t> bytes(stream.frameBytes);
        const std::uint8_t* const planes[] = {picture.data()};
        const std::int32_t strides[] = {2 * width};
        std::uint32_t size = 0;
        EXPECT_EQ(encoder->Encode(bytes.data(), static_cast<std::int32_t>(bytes.size()), &size, planes, strides, 0),
                  S_OK);
        EXPECT_EQ(size, stream.frameBytes);
        coded.push_back(bytes);
    }
    return coded;
}

// Our UYVY pictures.
Frames WeDecode(const Stream& stream, const Frames& coded) {
    KorvaneSoftware::ComPtr<IVideoDecoder> decoder;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder), S_OK);
    const auto width = static_cast<std::int32_t>(stream.width), height = static_cast<std::int32_t>(stream.height);
    EXPECT_EQ(decoder->DecSetFormat(stream.row, width, height), S_OK);
    Frames pictures;
    for (const auto& frame : coded) {
        std::vector<std::uint8_t> picture(std::size_t{2} * stream.width * stream.height);
        std::uint8_t* const planes[] = {picture.data()};
        const std::int32_t strides[] = {2 * width};
        EXPECT_EQ(decoder->Decode(planes, strides, 0, frame.data(), static_cast<std::int32_t>(frame.size())), S_OK);
        pictures.push_back(picture);
    }
    return pictures;
}

Frames Pictures(const interop::Clip& clip, const Stream& stream) {
    const std::string scale = "scale=" + std::to_string(stream.width) + ":" + std::to_string(stream.height);
    return interop::Decode(clip, scale, PixelFormat(stream), Planes(stream).Bytes(), kFrames);
}

class Dv : public ::testing::TestWithParam<Stream> {};

TEST_P(Dv, TheToolReadsOurFramesAsWellAsItsOwn) {
    const Stream& stream = GetParam();
    const Planes planes(stream);
    for (const interop::Clip& clip : interop::Clips()) {
        SCOPED_TRACE(clip.name);
        const Frames pictures = Pictures(clip, stream);
        const Frames ours = ToolDecodes(stream, WeEncode(stream, pictures));
        const Frames theirs = ToolDecodes(stream, ToolEncodes(stream, pictures));
        ASSERT_EQ(ours.size(), pictures.size());
        ASSERT_EQ(theirs.size(), pictures.size());
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            const auto psnr = [&](const Frames& decoded, std::size_t start, std::size_t size) {
                return interop::Psnr(decoded[i].data() + start, pictures[i].data() + start, size);
            };
            EXPECT_GT(psnr(ours, 0, planes.Bytes()), psnr(theirs, 0, planes.Bytes()) - 1) << "frame " << i;
            // The family's rule of classes puts nearly all chrominance into class 3, which doubles its steps: at 720
            // lines that alone costs it the 2.1 to 2.4 dB that class 2 would gain, and puts it up to 0.8 dB below the
            // bound. Past this level nobody sees what it pays for luminance.
            constexpr double kTransparent = 45;
            for (int plane = 0; plane < 3; ++plane) {
                const double other = psnr(theirs, planes.Start(plane), planes.Size(plane));
                EXPECT_GT(psnr(ours, planes.Start(plane), planes.Size(plane)), std::min(other - 1, kTransparent))
                    << "frame " << i << ", plane " << plane;
            }
        }
    }
}

// Each cell of 8 by 8 samples has a level of its own among its neighbours, so a block in a wrong place shows.
TEST_P(Dv, EveryBlockLiesInItsPlace) {
    const Stream& stream = GetParam();
    const Planes planes(stream);
    std::vector<std::uint8_t> picture(planes.Bytes());
    for (int plane = 0; plane < 3; ++plane) {
        const std::uint32_t width = plane == 0 ? stream.width : planes.chromaWidth;
        for (std::size_t i = 0; i < planes.Size(plane); ++i) {
            const std::size_t x = i % width / 8, y = i / width / 8;
            picture[planes.Start(plane) + i] = static_cast<std::uint8_t>(
                30 + 4 * ((7 * x + 11 * y + x * y + 13 * static_cast<std::size_t>(plane)) % 48));
        }
    }
    const Frames pictures(kFrames, picture);
    for (const auto& decoded : ToolDecodes(stream, WeEncode(stream, pictures)))
        for (std::size_t i = 0; i < picture.size(); ++i)
            ASSERT_LE(std::abs(int{decoded[i]} - picture[i]), 6) << "sample " << i;
}

TEST_P(Dv, WeReadTheToolsFrames) {
    const Stream& stream = GetParam();
    for (const interop::Clip& clip : interop::Clips()) {
        SCOPED_TRACE(clip.name);
        const Frames coded = ToolEncodes(stream, Pictures(clip, stream));
        const Frames theirs = ToolDecodes(stream, coded);
        const Frames ours = WeDecode(stream, coded);
        ASSERT_EQ(ours.size(), theirs.size());
        for (std::size_t i = 0; i < ours.size(); ++i) {
            int worst = 0;
            ForSamples(stream, [&](std::size_t packed, std::size_t planar) {
                worst = std::max(worst, std::abs(int{ours[i][packed]} - theirs[i][planar]));
            });
            EXPECT_LE(worst, 2) << "frame " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Streams, Dv, ::testing::ValuesIn(kStreams),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
