#include "tarvex/alpha_runs.h"

#include <algorithm>
#include <cstring>

#include "tarvex/tarvex_frame.h"

namespace KorvaneSoftware {

namespace {

constexpr std::uint32_t kRun = 0x8000;
constexpr std::uint32_t kMostCount = 0xFFF;
constexpr std::size_t kTokenSize = 4;
constexpr std::size_t kShortestRun = 8;  // Shorter ones would cost more than they save inside a literal.

std::size_t EqualPixels(std::span<const std::uint8_t> line, std::size_t x) {
    std::size_t end = x + 1;
    while (end < line.size() && line[end] == line[x]) ++end;
    return end - x;
}

std::uint8_t* PutLiteral(std::uint8_t* to, std::span<const std::uint8_t> pixels) {
    while (!pixels.empty()) {
        const std::size_t count = std::min<std::size_t>(pixels.size(), kMostCount);
        PutWord16(to, static_cast<std::uint32_t>(count));
        PutWord16(to + 2, 0);
        to += kTokenSize;
        std::memcpy(to, pixels.data(), count);
        to += count;
        if (count % 2 != 0) *to++ = 0;
        pixels = pixels.subspan(count);
    }
    return to;
}

std::uint8_t* PutRun(std::uint8_t* to, std::uint8_t value, std::size_t length) {
    while (length > 0) {
        const std::size_t count = std::min<std::size_t>(length, kMostCount);
        PutWord16(to, static_cast<std::uint32_t>(count) | kRun);
        to[2] = to[3] = value;
        to += kTokenSize;
        length -= count;
    }
    return to;
}

}  // namespace

std::size_t EncodeAlphaLine(std::uint8_t* to, std::span<const std::uint8_t> line) {
    std::uint8_t* const start = to;
    std::size_t literal = 0;  // Where the pixels begin that have no token yet.
    for (std::size_t x = 0; x < line.size();) {
        const std::size_t equal = EqualPixels(line, x);
        if (equal >= kShortestRun || equal == line.size()) {
            to = PutLiteral(to, line.subspan(literal, x - literal));
            to = PutRun(to, line[x], equal);
            literal = x + equal;
        }
        x += equal;
    }
    to = PutLiteral(to, line.subspan(literal));
    return static_cast<std::size_t>(to - start);
}

void DecodeAlphaLine(std::span<std::uint8_t> line, std::span<const std::uint8_t>& code) {
    std::size_t x = 0;
    while (x < line.size()) {
        if (code.size() < kTokenSize) {
            code = {};
            std::memset(line.data() + x, 0xFF, line.size() - x);
            return;
        }
        const std::uint32_t token = GetWord16(code.data());
        const std::uint8_t value = code[2];
        const std::size_t coded = token & kMostCount;
        const std::size_t count = std::min(coded, line.size() - x);
        code = code.subspan(kTokenSize);
        if ((token & kRun) != 0) {
            std::memset(line.data() + x, value, count);
            x += count;
        } else {
            const std::size_t there = std::min(count, code.size());
            std::memcpy(line.data() + x, code.data(), there);
            code = code.subspan(std::min((coded + 1) & ~std::size_t{1}, code.size()));
            x += there;
        }
    }
}

}  // namespace KorvaneSoftware
