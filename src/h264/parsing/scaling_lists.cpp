#include "h264/parsing/scaling_lists.h"

#include <algorithm>
#include <cstring>

namespace KorvaneSoftware {
namespace {

// Zig-zag scans: position, row by row, of each index (ITU-T H.264 Tables 8-13 and 8-14, frame scan).
constexpr std::uint8_t kZigzag4x4[16] = {0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15};
constexpr std::uint8_t kZigzag8x8[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                         12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                         35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                         58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

// ITU-T H.264 Table 7-3, by index of the scan.
constexpr std::uint8_t kDefault4x4[2][16] = {{6, 13, 13, 20, 20, 20, 28, 28, 28, 28, 32, 32, 32, 37, 37, 42},
                                             {10, 14, 14, 20, 20, 20, 24, 24, 24, 24, 27, 27, 27, 30, 30, 34}};
// ITU-T H.264 Table 7-4, by index of the scan.
constexpr std::uint8_t kDefault8x8[2][64] = {
    {6,  10, 10, 13, 11, 13, 16, 16, 16, 16, 18, 18, 18, 18, 18, 23, 23, 23, 23, 23, 23, 25,
     25, 25, 25, 25, 25, 25, 27, 27, 27, 27, 27, 27, 27, 27, 29, 29, 29, 29, 29, 29, 29, 31,
     31, 31, 31, 31, 31, 33, 33, 33, 33, 33, 36, 36, 36, 36, 38, 38, 38, 40, 40, 42},
    {9,  13, 13, 15, 13, 15, 17, 17, 17, 17, 19, 19, 19, 19, 19, 21, 21, 21, 21, 21, 21, 22,
     22, 22, 22, 22, 22, 22, 24, 24, 24, 24, 24, 24, 24, 24, 25, 25, 25, 25, 25, 25, 25, 27,
     27, 27, 27, 27, 27, 28, 28, 28, 28, 28, 30, 30, 30, 30, 32, 32, 32, 33, 33, 35}};

/// @return false where the list says to use the default instead
bool ReadList(H264BitReader& reader, const std::uint8_t* scan, unsigned count, std::uint16_t* list) {
    std::uint32_t last = 8;
    std::uint32_t next = 8;
    for (unsigned i = 0; i < count; ++i) {
        if (next != 0) {
            next = (last + static_cast<std::uint32_t>(reader.ReadSe())) & 255;
            if (i == 0 && next == 0) return false;
        }
        if (next != 0) last = next;
        list[scan[i]] = static_cast<std::uint16_t>(last);
    }
    return true;
}

}  // namespace

void H264ScalingLists::SetFlat() {
    std::fill_n(lists4x4[0], 6 * 16, std::uint16_t{16});
    std::fill_n(lists8x8[0], 2 * 64, std::uint16_t{16});
}

H264ScalingLists DefaultScalingLists() {
    H264ScalingLists lists;
    for (unsigned list = 0; list < 6; ++list) {
        for (unsigned i = 0; i < 16; ++i) lists.lists4x4[list][kZigzag4x4[i]] = kDefault4x4[list / 3][i];
    }
    for (unsigned list = 0; list < 2; ++list) {
        for (unsigned i = 0; i < 64; ++i) lists.lists8x8[list][kZigzag8x8[i]] = kDefault8x8[list][i];
    }
    return lists;
}

void ReadScalingLists(H264BitReader& reader, unsigned count8x8, const H264ScalingLists& fallBack,
                      H264ScalingLists& lists) {
    const H264ScalingLists defaults = DefaultScalingLists();
    for (unsigned i = 0; i < 6; ++i) {
        std::uint16_t* list = lists.lists4x4[i];
        const std::uint16_t* source = nullptr;
        if (!reader.ReadFlag()) {
            source = i % 3 == 0 ? fallBack.lists4x4[i] : lists.lists4x4[i - 1];
        } else if (!ReadList(reader, kZigzag4x4, 16, list)) {
            source = defaults.lists4x4[i];
        }
        if (source != nullptr && source != list) std::memcpy(list, source, sizeof lists.lists4x4[i]);
    }
    for (unsigned i = 0; i < count8x8; ++i) {
        std::uint16_t* list = lists.lists8x8[i];
        const std::uint16_t* source = nullptr;
        if (!reader.ReadFlag()) {
            source = fallBack.lists8x8[i];
        } else if (!ReadList(reader, kZigzag8x8, 64, list)) {
            source = defaults.lists8x8[i];
        }
        if (source != nullptr && source != list) std::memcpy(list, source, sizeof lists.lists8x8[i]);
    }
}

}  // namespace KorvaneSoftware
