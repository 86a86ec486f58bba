// I-frames exchanged with a general tool: ours are decoded there without a complaint and nearly alike, its own intra
// pictures of many kinds are decoded here nearly alike.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "media_tool.h"

namespace {

using interop::Clip;
using KorvaneSoftware::ComPtr;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t kRows[] = {7, 8};  // The elementary and the advanced flavour.
constexpr std::uint32_t kUyvy = 0;

// A coded stream in a file of its own, for the tool to read.
class StreamFile {
public:
    explicit StreamFile(const Bytes& bytes)
        : path_(std::filesystem::path(::testing::TempDir()) / ("stream" + std::to_string(::getpid()) + ".m2v")) {
        std::ofstream(path_, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;
    ~StreamFile() {
        std::error_code error;
        std::filesystem::remove(path_, error);
    }
    std::string Input() const { return "-f mpegvideo -i '" + path_.string() + "' -f rawvideo"; }

private:
    std::filesystem::path path_;
};

// Frames of a clip in another size, in the tool's words.
std::string InSize(std::uint32_t width, std::uint32_t height) {
    return " -an -vf scale=" + std::to_string(width) + ":" + std::to_string(height);
}

Bytes PictureOf(const Clip& clip, std::uint32_t width, std::uint32_t height) {
    std::string complaints;
    Bytes picture =
        interop::Output(clip.input + InSize(width, height) + " -frames:v 1 -pix_fmt uyvy422 -f rawvideo", complaints);
    EXPECT_EQ(picture.size(), std::size_t{2} * width * height) << clip.name << ": " << complaints;
    picture.resize(std::size_t{2} * width * height);
    return picture;
}

Bytes Encode(std::int32_t row, const Bytes& picture, std::uint32_t width, std::uint32_t height, std::int32_t quality) {
    ComPtr<IVideoEncoder> encoder;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder), S_OK);
    EXPECT_EQ(encoder->EncSetFormat(row, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)), S_OK);
    EXPECT_EQ(encoder->EncSetQuality(quality), S_OK);
    Bytes frame(picture.size() * 3 + 100000);
    std::uint32_t size = 0;
    const std::uint8_t* const planes[] = {picture.data()};
    const std::int32_t strides[] = {static_cast<std::int32_t>(2 * width)};
    EXPECT_EQ(encoder->Encode(frame.data(), static_cast<std::int32_t>(frame.size()), &size, planes, strides, kUyvy),
              S_OK);
    frame.resize(size);
    return frame;
}

Bytes Decode(const Bytes& frame, std::uint32_t width, std::uint32_t height) {
    ComPtr<IVideoDecoder> decoder;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder), S_OK);
    EXPECT_EQ(decoder->DecSetFormat(7, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)), S_OK);
    Bytes picture(std::size_t{2} * width * height);
    std::uint8_t* const planes[] = {picture.data()};
    const std::int32_t strides[] = {static_cast<std::int32_t>(2 * width)};
    EXPECT_EQ(decoder->Decode(planes, strides, kUyvy, frame.data(), static_cast<std::int32_t>(frame.size())), S_OK);
    return picture;
}

// The largest difference between a UYVY picture and the tool's planes, whose chrominance has every line or every
// second.
int LargestDifference(const Bytes& uyvy, const std::uint8_t* planes, std::uint32_t width, std::uint32_t height,
                      std::uint32_t chromaLines) {
    const std::uint8_t* const chroma[] = {planes + std::size_t{width} * height,
                                          planes + std::size_t{width} * height + std::size_t{width} / 2 * chromaLines};
    int largest = 0;
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint8_t* const sample = &uyvy[2 * (std::size_t{y} * width + x)];
            const std::size_t line = std::size_t{y} * chromaLines / height;
            largest = std::max(largest, std::abs(sample[1] - planes[std::size_t{y} * width + x]));
            largest = std::max(largest, std::abs(sample[0] - chroma[x % 2][line * (width / 2) + x / 2]));
        }
    }
    return largest;
}

class IFrames : public ::testing::TestWithParam<Clip> {};

TEST_P(IFrames, OursDecodeThere) {
    struct Case {
        std::uint32_t width, height;
        std::vector<std::int32_t> qualities;
    };
    const Case kCases[] = {
        {338, 242, {0, 4000, 8000, 10000}}, {50, 34, {8000}}, {1920, 1080, {8000}}, {16, 2784, {8000}}};
    for (const auto& [width, height, qualities] : kCases) {
        const Bytes picture = PictureOf(GetParam(), width, height);
        for (const std::int32_t row : kRows) {
            for (const std::int32_t quality : qualities) {
                const Bytes frame = Encode(row, picture, width, height, quality);
                std::string complaints;
                const Bytes planes = interop::Output(StreamFile(frame).Input(), complaints);
                ASSERT_EQ(complaints, "") << width << "x" << height << ", quality " << quality;
                ASSERT_EQ(planes.size(), picture.size()) << "not one picture of 4:2:2";
                const Bytes ours = Decode(frame, width, height);
                EXPECT_LE(LargestDifference(ours, planes.data(), width, height, height), 1)
                    << width << "x" << height << ", quality " << quality;
                // A frame that shows the picture, not merely the same on both sides.
                EXPECT_GT(interop::Psnr(ours.data(), picture.data(), ours.size()), quality > 4000 ? 40
                                                                                   : quality > 0  ? 30
                                                                                                  : 20)
                    << width << "x" << height << ", quality " << quality;
            }
        }
    }
}

TEST_P(IFrames, TheirsDecodeHere) {
    static const char* const kKinds[] = {
        "-pix_fmt yuv422p -q:v 3",
        "-pix_fmt yuv422p -q:v 2 -qmax 28 -non_linear_quant 1 -dc 11 -intra_vlc 1",
        "-pix_fmt yuv422p -q:v 9 -qmax 28 -non_linear_quant 1 -dc 10",
        "-pix_fmt yuv422p -q:v 4 -dc 9 -alternate_scan 1",
        "-pix_fmt yuv422p -q:v 4 -dc 8 -alternate_scan 1 -intra_vlc 1",
        "-pix_fmt yuv422p -q:v 5 -flags +ildct+ilme -alternate_scan 1",
        "-pix_fmt yuv422p -q:v 5 -flags +ildct+ilme -top 1 -intra_vlc 1 -qmax 28 -non_linear_quant 1",
        "-pix_fmt yuv422p -b:v 30M -maxrate 30M -bufsize 2M -mbd rd",  // Quantisers that change within slices.
        "-pix_fmt yuv422p -q:v 4 -intra_matrix "
        "8,9,12,22,26,27,29,34,9,10,14,26,27,29,34,37,12,14,18,27,34,36,38,40,22,26,"
        "27,40,40,40,48,58,26,27,34,40,48,56,69,83,27,29,36,40,56,69,83,99,29,34,38,48,69,83,99,120,34,37,40,58,83,99,"
        "120,200",
        "-pix_fmt yuv420p -q:v 3",
        "-pix_fmt yuv420p -q:v 3 -flags +ildct+ilme -alternate_scan 1",
    };
    constexpr std::uint32_t kWidth = 338, kHeight = 242;
    for (const char* const kind : kKinds) {
        std::string complaints;
        const std::string filter = std::string(kind).find("ildct") == std::string::npos ? "" : ",interlace=lowpass=off";
        const Bytes stream = interop::Output(GetParam().input + InSize(kWidth, kHeight) + filter +
                                                 " -frames:v 2 -c:v mpeg2video -g 1 " + kind + " -f mpeg2video",
                                             complaints);
        const std::uint32_t chromaLines =
            std::string(kind).find("yuv420p") == std::string::npos ? kHeight : kHeight / 2;
        const std::size_t planeBytes = std::size_t{kWidth} * (kHeight + chromaLines);
        const Bytes planes = interop::Output(StreamFile(stream).Input(), complaints);
        ASSERT_EQ(planes.size(), 2 * planeBytes) << kind << ": " << complaints;
        // Each picture has its sequence header.
        constexpr std::uint8_t kSequence[] = {0, 0, 1, 0xB3};
        const auto second = std::search(stream.begin() + 4, stream.end(), std::begin(kSequence), std::end(kSequence));
        ASSERT_NE(second, stream.end()) << kind;
        const Bytes frames[] = {Bytes(stream.begin(), second), Bytes(second, stream.end())};
        for (std::size_t i = 0; i < 2; ++i) {
            const Bytes ours = Decode(frames[i], kWidth, kHeight);
            EXPECT_LE(LargestDifference(ours, planes.data() + i * planeBytes, kWidth, kHeight, chromaLines), 2)
                << kWidth << "x" << kHeight << ", picture " << i << ": " << kind;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, IFrames, ::testing::ValuesIn(interop::Clips()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
