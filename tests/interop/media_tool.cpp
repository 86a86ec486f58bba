#include "media_tool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>

namespace interop {
namespace {

struct ClosePipe {
    void operator()(std::FILE* pipe) const { ::pclose(pipe); }
};
using Pipe = std::unique_ptr<std::FILE, ClosePipe>;

std::string Quote(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::filesystem::path FootageDirectory() {
    if (const char* const given = std::getenv("PIXMORPH_FOOTAGE")) return given;
    return PIXMORPH_DEFAULT_FOOTAGE;
}

struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

// The tool that comes with ffmpeg for questions about files answers. It is slow to start and every program lists the
// clips of all suites, so that each file is asked once, and only when it is used.
Size SizeOf(const Clip& clip) {
    if (clip.path.empty()) return {clip.width, clip.height};
    static std::map<std::string, Size> known;
    const auto [place, isNew] = known.try_emplace(clip.path);
    Size& size = place->second;
    if (!isNew) return size;
    const std::string command = std::string(PIXMORPH_FFPROBE) +
                                " -v error -select_streams v:0 -show_entries stream=width,height -of csv=p=0 " +
                                Quote(clip.path) + " 2>/dev/null";
    const Pipe pipe(::popen(command.c_str(), "r"));
    EXPECT_TRUE(pipe != nullptr && std::fscanf(pipe.get(), "%u,%u", &size.width, &size.height) == 2) << command;
    return size;
}

// Runs a command and reads what it writes to its standard output.
std::vector<std::uint8_t> Run(const std::string& command, int& exitStatus) {
    std::vector<std::uint8_t> bytes;
    exitStatus = -1;
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return bytes;
    }
    std::uint8_t part[65536];
    while (const std::size_t size = std::fread(part, 1, sizeof part, pipe))
        bytes.insert(bytes.end(), part, part + size);
    exitStatus = ::pclose(pipe);
    return bytes;
}

}  // namespace

std::vector<Clip> DrawnClips() {
    return {
        {"geometry", "-f lavfi -i testsrc2=size=960x544:rate=50", 960, 544},
        {"detail", "-f lavfi -i mandelbrot=size=640x480:rate=50:start_scale=0.5:end_scale=0.05:end_pts=80", 640, 480}};
}

std::vector<Clip> Clips() {
    std::vector<Clip> clips;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(FootageDirectory(), error)) {
        const std::string extension = entry.path().extension();
        constexpr const char* kVideo[] = {".mp4", ".webm", ".mov", ".mkv", ".y4m", ".mxf", ".ts"};
        if (std::find(std::begin(kVideo), std::end(kVideo), extension) == std::end(kVideo)) continue;
        const std::string path = entry.path().string();
        clips.push_back({entry.path().stem().string(), "-ss 1 -i " + Quote(path), 0, 0, path});
    }
    std::sort(clips.begin(), clips.end(), [](const Clip& a, const Clip& b) { return a.name < b.name; });
    if (clips.empty()) clips = DrawnClips();
    return clips;
}

std::uint32_t CutWidth(const Clip& clip) { return SizeOf(clip).width & ~31u; }
std::uint32_t CutHeight(const Clip& clip) { return SizeOf(clip).height & ~7u; }

Frames Decode(const Clip& clip, const std::string& filters, const std::string& pixelFormat, std::size_t frameBytes,
              std::size_t frames) {
    // Every chain starts from the same 4:2:0 samples, whatever the clip holds, so that only the step under test
    // differs.
    std::string chain = "crop=" + std::to_string(CutWidth(clip)) + ":" + std::to_string(CutHeight(clip)) +
                        ":0:0,format=yuv420p,setparams=range=limited:color_primaries=bt709:color_trc=bt709";
    if (!filters.empty()) chain += "," + filters;
    const std::string command = std::string(PIXMORPH_FFMPEG) + " -v error -nostdin " + clip.input + " -an -vf " +
                                Quote(chain) + " -frames:v " + std::to_string(frames) + " -pix_fmt " + pixelFormat +
                                " -sws_flags accurate_rnd+full_chroma_int+bitexact -f rawvideo -";
    Frames result;
    const Pipe pipe(::popen(command.c_str(), "r"));
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return result;
    }
    std::vector<std::uint8_t> frame(frameBytes);
    while (result.size() < frames && std::fread(frame.data(), 1, frameBytes, pipe.get()) == frameBytes)
        result.push_back(frame);
    EXPECT_FALSE(result.empty()) << "no picture from " << command;
    return result;
}

std::vector<std::uint8_t> Output(const std::string& options, std::string& complaints) {
    const std::filesystem::path log =
        std::filesystem::path(::testing::TempDir()) / ("tool" + std::to_string(::getpid()));
    const std::string command =
        std::string(PIXMORPH_FFMPEG) + " -v error -nostdin " + options + " - 2>" + Quote(log.string());
    int exitStatus;  // The complaints say more.
    const std::vector<std::uint8_t> bytes = Run(command, exitStatus);
    std::ifstream file(log);
    complaints.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    std::error_code error;
    std::filesystem::remove(log, error);
    return bytes;
}

std::vector<std::uint8_t> OutputOf(const std::string& command) {
    int exitStatus;
    std::vector<std::uint8_t> bytes = Run(command, exitStatus);
    EXPECT_EQ(exitStatus, 0) << command;
    return bytes;
}

double Psnr(const std::uint8_t* a, const std::uint8_t* b, std::size_t size) {
    double sum = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const double difference = static_cast<double>(a[i]) - b[i];
        sum += difference * difference;
    }
    return sum == 0 ? 100 : 10 * std::log10(255.0 * 255.0 * static_cast<double>(size) / sum);
}

}  // namespace interop
