// Resampling recomputed one channel at a time, sample by sample, apart from the library.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "support/picture.h"

namespace pixmorph_test {

using Samples = std::vector<std::uint32_t>;

inline Samples ReferenceArea(const Samples& source, std::size_t size, std::uint32_t limit) {
    const std::uint64_t w = source.size();
    const std::uint64_t d = size;
    const float reciprocal = 1.0f / static_cast<float>(w);
    Samples result;
    std::uint64_t pos = 0;
    std::uint64_t carry = 0;
    std::size_t next = 0;
    for (std::size_t i = 0; i < size; ++i) {
        std::uint64_t sum = carry;
        std::uint64_t s = 0;
        while (pos < w) {
            s = source[next++];
            pos += d;
            sum += s * d;
        }
        pos -= w;
        sum -= s * pos;
        carry = s * pos;
        const volatile float product = static_cast<float>(sum) * reciprocal;
        const volatile float rounded = product + 0.5f;
        const auto value = static_cast<std::uint32_t>(rounded);
        result.push_back(value > limit ? limit : value);
    }
    return result;
}

inline Samples ReferenceLinear(const Samples& source, std::size_t size) {
    const auto w = static_cast<std::int64_t>(source.size());
    const auto d = static_cast<std::int64_t>(size);
    const float scale = 32768.0f / static_cast<float>(d - 1);
    Samples result;
    std::int64_t distance = d - 1;
    std::size_t k = 0;
    for (std::size_t i = 0; i < size; ++i) {
        if (distance == d - 1) {
            result.push_back(source[k]);
        } else {
            const volatile float product = static_cast<float>(distance) * scale;
            const volatile float rounded = product + 0.5f;
            const auto a = static_cast<std::int64_t>(rounded);
            const std::int64_t s0 = source[k];
            const std::int64_t s1 = source[k + 1];
            result.push_back(static_cast<std::uint32_t>(((a * (s0 - s1) + 0x4000) >> 15) + s1));
        }
        if (distance > w - 1) {
            distance -= w - 1;
        } else {
            distance += d - w;
            ++k;
        }
    }
    return result;
}

inline Samples ReferenceFilter(const Samples& source, std::size_t size, std::uint32_t limit) {
    if (source.size() == size) return source;
    if (source.size() < size) return ReferenceLinear(source, size);
    if (source.size() != 2 * size) return ReferenceArea(source, size, limit);
    Samples result;
    for (std::size_t i = 0; i < size; ++i) result.push_back((source[2 * i] + 1 + source[2 * i + 1]) >> 1);
    return result;
}

/// One channel of a picture as a grid of samples, in stored order of lines.
struct ReferenceChannel {
    std::size_t plane;
    std::size_t offset;  ///< Bytes to the first sample of a line.
    std::size_t step;    ///< Bytes from sample to sample.
    std::size_t bytes;   ///< Bytes of a sample.
    std::uint32_t widthDiv;
    std::uint32_t heightDiv;
};

/// The channels of the formats that can be resized. `width` places side-by-side chroma.
inline std::vector<ReferenceChannel> ReferenceChannels(std::uint32_t format, std::uint32_t width) {
    switch (format) {
        case km::FMT_BGR:
            return {{0, 0, 3, 1, 1, 1}, {0, 1, 3, 1, 1, 1}, {0, 2, 3, 1, 1, 1}};
        case km::FMT_BGRA:
            return {{0, 0, 4, 1, 1, 1}, {0, 1, 4, 1, 1, 1}, {0, 2, 4, 1, 1, 1}, {0, 3, 4, 1, 1, 1}};
        case km::FMT_UYVY:
            return {{0, 1, 2, 1, 1, 1}, {0, 0, 4, 1, 2, 1}, {0, 2, 4, 1, 2, 1}};
        case km::FMT_YUY2:
        case km::FMT_YVYU:
            return {{0, 0, 2, 1, 1, 1}, {0, 1, 4, 1, 2, 1}, {0, 3, 4, 1, 2, 1}};
        case km::FMT_Y400:
            return {{0, 0, 1, 1, 1, 1}};
        case km::FMT_Y444:
            return {{0, 0, 1, 1, 1, 1}, {1, 0, 1, 1, 1, 1}, {2, 0, 1, 1, 1, 1}};
        case km::FMT_Y422:
            return {{0, 0, 1, 1, 1, 1}, {1, 0, 1, 1, 2, 1}, {2, 0, 1, 1, 2, 1}};
        case km::FMT_I420:
        case km::FMT_YV12:
            return {{0, 0, 1, 1, 1, 1}, {1, 0, 1, 1, 2, 2}, {2, 0, 1, 1, 2, 2}};
        case km::FMT_NV12:
            return {{0, 0, 1, 1, 1, 1}, {1, 0, 2, 1, 2, 2}, {1, 1, 2, 1, 2, 2}};
        case km::FMT_S400:
            return {{0, 0, 2, 2, 1, 1}};
        case km::FMT_S420:
            return {{0, 0, 2, 2, 1, 1}, {1, 0, 2, 2, 2, 2}, {1, width, 2, 2, 2, 2}};
        case km::FMT_S422:
            return {{0, 0, 2, 2, 1, 1}, {1, 0, 2, 2, 2, 1}, {1, width, 2, 2, 2, 1}};
        default:
            return {};
    }
}

/// Resizes `src` into `dst`, horizontally, vertically or both, in the given order.
inline void ReferenceResize(TestPicture& dst, const TestPicture& src, bool verticalFirst) {
    const km::ImageDescriptor& to = dst.Desc();
    const km::ImageDescriptor& from = src.Desc();
    const auto sourceChannels = ReferenceChannels(from.format, from.width);
    const auto targetChannels = ReferenceChannels(to.format, to.width);
    for (std::size_t i = 0; i < sourceChannels.size(); ++i) {
        const ReferenceChannel& in = sourceChannels[i];
        const ReferenceChannel& out = targetChannels[i];
        const std::size_t srcWidth = from.width / in.widthDiv;
        const std::size_t dstWidth = to.width / in.widthDiv;
        const std::size_t dstHeight = to.height / in.heightDiv;
        const std::uint32_t limit = in.bytes == 2 ? 65535 : 255;
        std::vector<Samples> grid(from.height / in.heightDiv, Samples(srcWidth));
        for (std::size_t y = 0; y < grid.size(); ++y)
            for (std::size_t x = 0; x < srcWidth; ++x)
                std::memcpy(&grid[y][x], src.Planes()[in.plane].Row(y) + in.offset + x * in.step, in.bytes);
        const auto across = [&] {
            for (Samples& line : grid) line = ReferenceFilter(line, dstWidth, limit);
        };
        const auto down = [&] {
            std::vector<Samples> result(dstHeight, Samples(grid[0].size()));
            for (std::size_t x = 0; x < grid[0].size(); ++x) {
                Samples column;
                for (const Samples& line : grid) column.push_back(line[x]);
                column = ReferenceFilter(column, dstHeight, limit);
                for (std::size_t y = 0; y < dstHeight; ++y) result[y][x] = column[y];
            }
            grid = result;
        };
        if (verticalFirst) {
            down();
            across();
        } else {
            across();
            down();
        }
        for (std::size_t y = 0; y < dstHeight; ++y)
            for (std::size_t x = 0; x < dstWidth; ++x)
                std::memcpy(dst.Plane(out.plane).Row(y) + out.offset + x * out.step, &grid[y][x], out.bytes);
    }
}

}  // namespace pixmorph_test
