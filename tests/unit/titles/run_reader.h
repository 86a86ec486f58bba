// Reads a run-length stream back into groups, and works records out slowly: what compressed titles are compared with.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

namespace pixmorph_test {

/// A group record, or nothing for a clear group.
using Group = std::optional<std::vector<std::uint8_t>>;

/// The groups of a stream of `size` bytes that starts with a counter cell. Empty when the stream is malformed: a
/// counter of 0, a record cut off, or two cells of one kind in a row.
inline std::vector<Group> ReadRuns(const std::uint8_t* stream, std::size_t size) {
    std::vector<Group> groups;
    std::size_t at = 0;
    std::int32_t previous = 0;
    while (at < size) {
        std::int32_t count;
        if (size - at < sizeof(count)) return {};
        std::memcpy(&count, stream + at, sizeof(count));
        at += sizeof(count);
        if (count == 0 || (previous > 0 && count > 0) || (previous < 0 && count < 0)) return {};
        previous = count;
        for (std::int32_t i = count; i < 0; ++i) groups.emplace_back();
        for (std::int32_t i = 0; i < count; ++i, at += 48) {
            if (size - at < 48) return {};
            groups.emplace_back(std::vector<std::uint8_t>(stream + at, stream + at + 48));
        }
    }
    return groups;
}

enum class GroupKind { Title, CableTitle, StraightBgra, Y16A };

inline std::int64_t LowByteOrClamp(std::int64_t value, bool clamp) {
    if (clamp) return value < 0 ? 0 : value > 255 ? 255 : value;
    return value & 255;
}

/// The record of one group of 16 pixels, by the definition.
inline std::vector<std::uint8_t> ExpectRecord(GroupKind kind, const std::uint8_t* group) {
    std::vector<std::uint8_t> record(48);
    if (kind == GroupKind::Y16A) {
        for (int i = 0; i < 16; ++i) {
            record[i] = static_cast<std::uint8_t>(group[i] * group[16 + i] / 256);
            record[16 + i] = static_cast<std::uint8_t>(255 - group[16 + i]);
        }
        for (int k = 0; k < 8; ++k) {
            record[32 + k] = static_cast<std::uint8_t>(group[32 + k] * group[16 + 2 * k] / 256);
            record[40 + k] = static_cast<std::uint8_t>(group[40 + k] * group[17 + 2 * k] / 256);
        }
        return record;
    }
    const bool straight = kind == GroupKind::StraightBgra;
    const bool clamp = kind == GroupKind::CableTitle;
    for (int i = 0; i < 16; ++i) {
        const std::uint8_t* const p = group + 4 * i;
        const std::int64_t a = p[3];
        const std::int64_t y = (16843LL * p[2] + 33030LL * p[1] + 6423LL * p[0] + 32768) / 65536;
        record[i] = static_cast<std::uint8_t>(straight ? ((y + 16) * a + 128) / 255 : (y + (a + 8) * 16 / 255) & 255);
        record[16 + i] = static_cast<std::uint8_t>(255 - a);
    }
    const auto half = [](std::int64_t sum) {
        const std::int64_t whole = sum >= 0 ? sum / 65536 : -((-sum + 65535) / 65536);  // Down.
        return whole / 2;                                                               // Towards zero.
    };
    for (int k = 0; k < 8; ++k) {
        const std::uint8_t* const p = group + 8 * k;
        const std::int64_t b = p[0] + p[4];
        const std::int64_t g = p[1] + p[5];
        const std::int64_t r = p[2] + p[6];
        const std::int64_t cb = half(28770 * b - 19071 * g - 9699 * r + 32768);
        const std::int64_t cr = half(28770 * r - 24117 * g - 4653 * b + 32768);
        if (straight) {
            record[32 + k] = static_cast<std::uint8_t>(((cb + 128) * p[3] + 128) / 255);
            record[40 + k] = static_cast<std::uint8_t>(((cr + 128) * p[7] + 128) / 255);
        } else {
            record[32 + k] = static_cast<std::uint8_t>(LowByteOrClamp(cb + (p[3] + 1) * 128 / 255, clamp));
            record[40 + k] = static_cast<std::uint8_t>(LowByteOrClamp(cr + (p[7] + 1) * 128 / 255, clamp));
        }
    }
    return record;
}

inline bool GroupVisible(GroupKind kind, const std::uint8_t* group) {
    for (int i = 0; i < 16; ++i)
        if ((kind == GroupKind::Y16A ? group[16 + i] : group[4 * i + 3]) >= 2) return true;
    return false;
}

}  // namespace pixmorph_test
