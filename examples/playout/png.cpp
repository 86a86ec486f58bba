#include "png.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include "deflate.h"
#include "error.h"
#include "y4m.h"

namespace playout {
namespace {

using Bytes = std::vector<std::uint8_t>;

// CRC-32 as PNG counts it (polynomial 0xEDB88320, bits from the lowest).
std::uint32_t Crc32(const std::uint8_t* data, std::size_t size) {
    static const auto table = [] {
        std::array<std::uint32_t, 256> entries{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t value = i;
            for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320u : value >> 1;
            entries[i] = value;
        }
        return entries;
    }();
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = 0; i < size; ++i) crc = table[(crc ^ data[i]) & 255] ^ crc >> 8;
    return ~crc;
}

void PutWord(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

void PutChunk(Bytes& file, const char* type, const Bytes& content) {
    PutWord(file, static_cast<std::uint32_t>(content.size()));
    const std::size_t start = file.size();
    file.insert(file.end(), type, type + 4);
    file.insert(file.end(), content.begin(), content.end());
    PutWord(file, Crc32(file.data() + start, file.size() - start));
}

}  // namespace

void WritePng(const std::string& path, const Picture& picture) {
    const std::uint32_t channels = picture.RowBytes(0) / picture.Width();
    // Lines go out as R, G, B (, A), each byte as the difference to the one above it ("Up", type 2), which suits
    // pictures and leaves long zero runs in flat places.
    Bytes lines;
    const std::size_t rowBytes = picture.RowBytes(0);
    lines.reserve((rowBytes + 1) * picture.Height());
    Bytes above(rowBytes, 0);
    Bytes current(rowBytes);
    for (std::uint32_t y = 0; y < picture.Height(); ++y) {
        const std::uint8_t* const row = picture.Row(0, y);
        for (std::size_t i = 0; i < rowBytes; i += channels) {
            current[i] = row[i + 2];
            current[i + 1] = row[i + 1];
            current[i + 2] = row[i];
            if (channels == 4) current[i + 3] = row[i + 3];
        }
        lines.push_back(2);
        for (std::size_t i = 0; i < rowBytes; ++i) lines.push_back(static_cast<std::uint8_t>(current[i] - above[i]));
        std::swap(above, current);
    }

    Bytes header;
    PutWord(header, picture.Width());
    PutWord(header, picture.Height());
    header.push_back(8);                                                 // bits per channel
    header.push_back(static_cast<std::uint8_t>(channels == 4 ? 6 : 2));  // with alpha, or without
    header.insert(header.end(), {0, 0, 0});                              // deflate, the five filters, not interlaced

    Bytes file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    PutChunk(file, "IHDR", header);
    PutChunk(file, "IDAT", Deflate(lines));
    PutChunk(file, "IEND", {});

    const File out = OpenForWriting(path);
    if (std::fwrite(file.data(), 1, file.size(), out.get()) != file.size() || std::fflush(out.get()) != 0)
        throw Error(EXIT_OUTPUT, path + ": cannot be written: " + std::strerror(errno));
}

}  // namespace playout
