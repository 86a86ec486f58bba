#include "y4m.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <string_view>

#include "error.h"

namespace playout {
namespace {

// Longer header lines and larger pictures than these are taken for damage.
constexpr std::size_t kLongestLine = 1024;
constexpr std::uint32_t kLargestSide = 16384;

bool ParseNumber(std::string_view text, std::uint32_t& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

bool ParseRatio(std::string_view text, std::uint32_t& numerator, std::uint32_t& denominator) {
    const std::size_t colon = text.find(':');
    return colon != std::string_view::npos && ParseNumber(text.substr(0, colon), numerator) &&
           ParseNumber(text.substr(colon + 1), denominator);
}

// The 4:2:0 tags differ in where the chroma samples lie, which matters less than what a house format loses anyway.
bool ParseColour(std::string_view text, std::uint32_t& pixels) {
    if (text == "420" || text == "420jpeg" || text == "420mpeg2" || text == "420paldv")
        pixels = PIXMORPH_IYUV;
    else if (text == "422")
        pixels = PIXMORPH_Y422;
    else
        return false;
    return true;
}

}  // namespace

File OpenForReading(const std::string& path) {
    if (path == "-") return File(::fdopen(::dup(0), "rb"));
    File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) throw Error(EXIT_INPUT, path + ": cannot be opened: " + std::strerror(errno));
    return file;
}

File OpenForWriting(const std::string& path) {
    if (path == "-") return File(::fdopen(::dup(1), "wb"));
    File file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr) throw Error(EXIT_OUTPUT, path + ": cannot be written: " + std::strerror(errno));
    return file;
}

Y4mReader::Y4mReader(File file, std::string name) : file_(std::move(file)), name_(std::move(name)) {
    const std::string header = ReadLine();
    std::string_view rest = header;
    if (rest.substr(0, 9) != "YUV4MPEG2") Fail("is no Y4M video (a media tool can make one of any other)");
    rest.remove_prefix(9);
    format_.pixels = PIXMORPH_IYUV;  // what a stream without a colour tag holds
    format_.aspectNumerator = format_.aspectDenominator = 0;
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string_view field = rest.substr(0, rest.find(' '));
        rest.remove_prefix(field.size());
        if (field.empty()) continue;
        const std::string_view value = field.substr(1);
        bool good = true;
        switch (field[0]) {
            case 'W':
                good = ParseNumber(value, format_.width);
                break;
            case 'H':
                good = ParseNumber(value, format_.height);
                break;
            case 'F':
                good = ParseRatio(value, format_.rateNumerator, format_.rateDenominator) &&
                       format_.rateNumerator != 0 && format_.rateDenominator != 0;
                break;
            case 'A':
                good = ParseRatio(value, format_.aspectNumerator, format_.aspectDenominator);
                break;
            case 'I':
                if (value == "t")
                    format_.fieldOrder = FieldOrder::TopFirst;
                else if (value == "b")
                    format_.fieldOrder = FieldOrder::BottomFirst;
                else if (value == "m")
                    Fail("mixes interlaced and progressive frames, which this program does not take");
                break;
            case 'C':
                if (!ParseColour(value, format_.pixels))
                    Fail("holds " + std::string(value) + "; this program takes 4:2:0 and 4:2:2 with 8 bits");
                break;
            default:
                break;  // X: comments and extensions
        }
        if (!good) Fail("has a damaged header field '" + std::string(field) + "'");
    }
    const std::uint32_t lines =
        format_.pixels == PIXMORPH_IYUV && format_.fieldOrder != FieldOrder::Progressive ? 4 : 2;
    if (format_.width < 32 || format_.height < 16 || format_.width > kLargestSide || format_.height > kLargestSide)
        Fail("has a size out of range: " + std::to_string(format_.width) + "x" + std::to_string(format_.height));
    if (format_.width % 2 != 0 || format_.height % lines != 0)
        Fail("has a size that its chroma does not divide: " + std::to_string(format_.width) + "x" +
             std::to_string(format_.height));
}

void Y4mReader::Fail(const std::string& message) const { throw Error(EXIT_INPUT, name_ + " " + message); }

std::string Y4mReader::ReadLine() {
    std::string line;
    for (int c = std::getc(file_.get()); c != EOF; c = std::getc(file_.get())) {
        if (c == '\n') return line;
        line.push_back(static_cast<char>(c));
        if (line.size() > kLongestLine) break;
    }
    return line;
}

bool Y4mReader::Read(Picture& picture) {
    const std::string line = ReadLine();
    if (line.empty() && std::feof(file_.get()) != 0) return false;
    if (line.substr(0, 5) != "FRAME") Fail("has no frame where number " + std::to_string(frames_) + " should start");
    for (std::uint32_t plane = 0; plane < picture.PlaneCount(); ++plane)
        for (std::uint32_t row = 0; row < picture.Rows(plane); ++row)
            if (std::fread(picture.Row(plane, row), 1, picture.RowBytes(plane), file_.get()) != picture.RowBytes(plane))
                Fail("ends in the middle of frame " + std::to_string(frames_));
    ++frames_;
    return true;
}

void Y4mWriter::Put(const void* data, std::size_t size) {
    if (std::fwrite(data, 1, size, file_.get()) != size)
        throw Error(EXIT_OUTPUT, name_ + ": cannot be written: " + std::strerror(errno));
    bytes_ += size;
}

void Y4mWriter::Write(const Picture& picture, const VideoFormat& format) {
    if (!started_) {
        const char order = format.fieldOrder == FieldOrder::Progressive ? 'p'
                           : format.fieldOrder == FieldOrder::TopFirst  ? 't'
                                                                        : 'b';
        char header[160];
        const int length =
            std::snprintf(header, sizeof header, "YUV4MPEG2 W%u H%u F%u:%u I%c A%u:%u C%s\n", picture.Width(),
                          picture.Height(), format.rateNumerator, format.rateDenominator, order, format.aspectNumerator,
                          format.aspectDenominator, picture.Rows(1) == picture.Rows(0) ? "422" : "420mpeg2");
        Put(header, static_cast<std::size_t>(length));
        started_ = true;
    }
    Put("FRAME\n", 6);
    for (std::uint32_t plane = 0; plane < picture.PlaneCount(); ++plane)
        for (std::uint32_t row = 0; row < picture.Rows(plane); ++row)
            Put(picture.Row(plane, row), picture.RowBytes(plane));
}

void Y4mWriter::Close() {
    if (std::fflush(file_.get()) != 0) throw Error(EXIT_OUTPUT, name_ + ": cannot be written: " + std::strerror(errno));
}

}  // namespace playout
