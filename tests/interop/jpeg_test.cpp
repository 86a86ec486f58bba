// KVMJ frames in other programs, and other programs' JPEG files here.
#include <unistd.h>

#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "avi_file.h"
#include "media_tool.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::int32_t kKvmj = 9;
constexpr int kLevels = 2;  // Two inverse transforms of the same coefficients, each rounded in its own way.

constexpr std::uint32_t kWidth = 720, kHeight = 576;

// A file that goes with the test. Tests run at the same time, as programs of their own.
class TempFile {
public:
    explicit TempFile(const std::string& name)
        : path_(testing::TempDir() + "pixmorph" + std::to_string(::getpid()) + "_" + name) {}
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile() { std::remove(path_.c_str()); }

    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

void WriteFile(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// Y, U and V of a UYVY picture as planes of their own.
struct Planes {
    Bytes y, u, v;
};
Planes Split(const Bytes& uyvy) {
    Planes planes;
    for (std::size_t i = 0; i < uyvy.size(); i += 4) {
        planes.u.push_back(uyvy[i]);
        planes.y.push_back(uyvy[i + 1]);
        planes.v.push_back(uyvy[i + 2]);
        planes.y.push_back(uyvy[i + 3]);
    }
    return planes;
}

int LargestDifference(const std::uint8_t* a, const std::uint8_t* b, std::size_t count) {
    int largest = 0;
    for (std::size_t i = 0; i < count; ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

// Every second line of a plane.
Bytes FieldOf(const Bytes& plane, std::size_t lineBytes, std::size_t field) {
    Bytes lines;
    for (std::size_t at = field * lineBytes; at < plane.size(); at += 2 * lineBytes)
        lines.insert(lines.end(), plane.begin() + static_cast<std::ptrdiff_t>(at),
                     plane.begin() + static_cast<std::ptrdiff_t>(at + lineBytes));
    return lines;
}

void ExpectNear(const Bytes& ours, const std::uint8_t* theirs, const std::string& what) {
    EXPECT_LE(LargestDifference(ours.data(), theirs, ours.size()), kLevels) << what;
}

class Jpeg : public testing::TestWithParam<interop::Clip> {
protected:
    void SetUp() override {
        ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder_), S_OK);
        ASSERT_EQ(encoder_.As(decoder_), S_OK);
        frames_ = interop::Decode(GetParam(), "scale=720:576", "uyvy422", std::size_t{2} * kWidth * kHeight, 3);
        ASSERT_FALSE(frames_.empty());
    }

    Bytes Encode(const Bytes& uyvy) {
        Bytes frame(uyvy.size() * 2);
        std::uint32_t size = 0;
        const std::uint8_t* const planes[] = {uyvy.data()};
        const std::int32_t strides[] = {2 * kWidth};
        EXPECT_EQ(encoder_->EncSetFormat(kKvmj, kWidth, kHeight), S_OK);
        EXPECT_EQ(encoder_->Encode(frame.data(), static_cast<std::int32_t>(frame.size()), &size, planes, strides,
                                   PIXMORPH_UYVY),
                  S_OK);
        frame.resize(size);
        return frame;
    }
    Bytes Decode(const Bytes& frame) {
        Bytes uyvy(std::size_t{2} * kWidth * kHeight);
        std::uint8_t* const planes[] = {uyvy.data()};
        const std::int32_t strides[] = {2 * kWidth};
        EXPECT_EQ(decoder_->DecSetFormat(kKvmj, kWidth, kHeight), S_OK);
        EXPECT_EQ(
            decoder_->Decode(planes, strides, PIXMORPH_UYVY, frame.data(), static_cast<std::int32_t>(frame.size())),
            S_OK);
        return uyvy;
    }

    interop::Frames frames_;
    KorvaneSoftware::ComPtr<IVideoEncoder> encoder_;
    KorvaneSoftware::ComPtr<IVideoDecoder> decoder_;
};

TEST_P(Jpeg, FirstImageOpensInJpegReaders) {
    const TempFile pathFile("first_image.jpg");
    const std::string& path = pathFile.Path();
    for (const Bytes& source : frames_) {
        const Bytes frame = Encode(source);
        const Planes ours = Split(Decode(frame));
        WriteFile(path, frame);

        // It warns of the zero bytes in front of the end marker, and says so with 2.
        const Bytes grey =
            interop::OutputOf(PIXMORPH_DJPEG " -grayscale -pnm '" + path + "' 2>/dev/null || [ $? -eq 2 ]");
        const std::string header = "P5\n720 288\n255\n";
        ASSERT_EQ(grey.size(), header.size() + kWidth * kHeight / 2);
        EXPECT_TRUE(std::equal(header.begin(), header.end(), grey.begin()));
        ExpectNear(FieldOf(ours.y, kWidth, 0), grey.data() + header.size(), "luminance, as djpeg reads it");

        const Bytes planes = interop::OutputOf(PIXMORPH_FFMPEG " -v error -nostdin -f mjpeg -i '" + path +
                                               "' -frames:v 1 -f rawvideo -pix_fmt yuvj422p -");
        ASSERT_EQ(planes.size(), kWidth * kHeight);
        ExpectNear(FieldOf(ours.y, kWidth, 0), planes.data(), "luminance");
        ExpectNear(FieldOf(ours.u, kWidth / 2, 0), planes.data() + kWidth * kHeight / 2, "Cb");
        ExpectNear(FieldOf(ours.v, kWidth / 2, 0), planes.data() + kWidth * kHeight * 3 / 4, "Cr");
    }
}

TEST_P(Jpeg, PlayersReadBothFieldsOfAFrame) {
    const TempFile pathFile("both_fields.avi");
    const std::string& path = pathFile.Path();
    interop::AviFile file(kWidth, kHeight);
    std::vector<Planes> ours;
    for (const Bytes& source : frames_) {
        const Bytes frame = Encode(source);
        ours.push_back(Split(Decode(frame)));
        file.Add(frame);
    }
    file.Write(path);
    const Bytes theirs = interop::OutputOf(PIXMORPH_FFMPEG " -v error -nostdin -i '" + path +
                                           "' -vsync passthrough -f rawvideo -pix_fmt yuvj422p -");
    constexpr std::size_t kLuma = std::size_t{kWidth} * kHeight;
    ASSERT_EQ(theirs.size(), frames_.size() * 2 * kLuma);
    for (std::size_t i = 0; i < ours.size(); ++i) {
        const std::uint8_t* const frame = theirs.data() + i * 2 * kLuma;
        const Bytes y(frame, frame + kLuma), u(frame + kLuma, frame + kLuma * 3 / 2),
            v(frame + kLuma * 3 / 2, frame + kLuma * 2);
        // Whether the image of polarity 1 has the even lines or the odd ones is the player's own reading.
        const Bytes first = FieldOf(ours[i].y, kWidth, 0);
        const std::size_t odd =
            LargestDifference(first.data(), FieldOf(y, kWidth, 0).data(), first.size()) <= kLevels ? 0 : 1;
        for (const std::size_t field : {0, 1}) {
            const std::size_t lines = field ^ odd;
            ExpectNear(FieldOf(ours[i].y, kWidth, field), FieldOf(y, kWidth, lines).data(), "luminance");
            ExpectNear(FieldOf(ours[i].u, kWidth / 2, field), FieldOf(u, kWidth / 2, lines).data(), "Cb");
            ExpectNear(FieldOf(ours[i].v, kWidth / 2, field), FieldOf(v, kWidth / 2, lines).data(), "Cr");
        }
    }
}

// The pictures that a tool's own reader makes of a file, as planes of 4:2:2: chrominance lines of 4:2:0 serve two.
Planes ReadByTool(const std::string& path, bool is420) {
    const Bytes raw =
        interop::OutputOf(PIXMORPH_FFMPEG " -v error -nostdin -f mjpeg -i '" + path +
                          "' -frames:v 1 -f rawvideo -pix_fmt " + (is420 ? "yuvj420p" : "yuvj422p") + " -");
    constexpr std::size_t kLuma = std::size_t{kWidth} * kHeight;
    const std::size_t chroma = is420 ? kLuma / 4 : kLuma / 2;
    Planes planes;
    EXPECT_EQ(raw.size(), kLuma + 2 * chroma);
    if (raw.size() != kLuma + 2 * chroma) return planes;
    planes.y.assign(raw.begin(), raw.begin() + kLuma);
    for (std::size_t line = 0; line < kHeight; ++line) {
        const std::size_t at = kLuma + (is420 ? line / 2 : line) * (kWidth / 2);
        for (std::size_t x = 0; x < kWidth / 2; ++x) {
            planes.u.push_back(raw[at + x]);
            planes.v.push_back(raw[at + chroma + x]);
        }
    }
    return planes;
}

TEST_P(Jpeg, FilesOfOtherProgramsDecodeHere) {
    const TempFile sourceFile("source.ppm");
    const std::string& source = sourceFile.Path();
    const TempFile pathFile("other_program.jpg");
    const std::string& path = pathFile.Path();
    const std::string clip = GetParam().input;
    (void)interop::OutputOf(PIXMORPH_FFMPEG " -v error -nostdin -y " + clip +
                            " -an -vf scale=720:576 -frames:v 1 -update 1 -pix_fmt rgb24 '" + source + "'");
    struct Maker {
        std::string command;
        bool is420;
    };
    // Files with one quantiser table are read with another one for chrominance, so the last tool writes both.
    const Maker makers[] = {
        {PIXMORPH_CJPEG " -quality 90 -sample 2x1 -outfile '" + path + "' '" + source + "'", false},
        {PIXMORPH_CJPEG " -quality 60 -sample 2x1 -outfile '" + path + "' '" + source + "'", false},
        {PIXMORPH_CJPEG " -quality 75 -sample 2x2 -outfile '" + path + "' '" + source + "'", true},
        {PIXMORPH_FFMPEG " -v error -nostdin -y -i '" + source +
             "' -c:v mjpeg -q:v 4 -huffman default -force_duplicated_matrix 1 -pix_fmt yuvj420p '" + path + "'",
         true},
    };
    for (const Maker& maker : makers) {
        (void)interop::OutputOf(maker.command);
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        const Planes ours = Split(Decode(Bytes(bytes.begin(), bytes.end())));
        const Planes theirs = ReadByTool(path, maker.is420);
        ASSERT_EQ(theirs.y.size(), ours.y.size()) << maker.command;
        ExpectNear(ours.y, theirs.y.data(), "luminance: " + maker.command);
        ExpectNear(ours.u, theirs.u.data(), "Cb: " + maker.command);
        ExpectNear(ours.v, theirs.v.data(), "Cr: " + maker.command);
    }
}

// Tables made for the picture, and a sampling that the codec does not have.
TEST_P(Jpeg, FilesThatAreNotReadAreRefused) {
    const TempFile sourceFile("refused.ppm");
    const std::string& source = sourceFile.Path();
    const TempFile pathFile("refused.jpg");
    const std::string& path = pathFile.Path();
    (void)interop::OutputOf(PIXMORPH_FFMPEG " -v error -nostdin -y " + GetParam().input +
                            " -an -vf scale=720:576 -frames:v 1 -update 1 -pix_fmt rgb24 '" + source + "'");
    ASSERT_EQ(decoder_->DecSetFormat(kKvmj, kWidth, kHeight), S_OK);
    for (const std::string options : {"-sample 2x1 -optimize", "-sample 1x1", "-sample 2x1 -progressive",
                                      "-sample 2x1 -restart 4", "-sample 2x1 -arithmetic", "-grayscale"}) {
        (void)interop::OutputOf(PIXMORPH_CJPEG " " + options + " -outfile '" + path + "' '" + source + "'");
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        Bytes uyvy(std::size_t{2} * kWidth * kHeight);
        std::uint8_t* const planes[] = {uyvy.data()};
        const std::int32_t strides[] = {2 * kWidth};
        EXPECT_EQ(decoder_->Decode(planes, strides, PIXMORPH_UYVY, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   static_cast<std::int32_t>(bytes.size())),
                  E_FAIL)
            << options;
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, Jpeg, testing::ValuesIn(interop::Clips()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
