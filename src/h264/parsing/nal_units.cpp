#include "h264/parsing/nal_units.h"

#include <cstring>

namespace KorvaneSoftware {

std::size_t FindStartCode(const std::uint8_t* data, std::size_t size, std::size_t from) {
    // The third byte decides how far to go: above 1 it is no part of a start code, so three bytes are passed at once.
    std::size_t i = from + 2;
    while (i < size) {
        if (data[i] > 1) {
            i += 3;
        } else if (data[i] == 0) {
            ++i;
        } else if (data[i - 1] == 0 && data[i - 2] == 0) {
            return i - 2;
        } else {
            i += 3;
        }
    }
    return size;
}

NalUnit UnitAt(const std::uint8_t* data, std::size_t size, std::size_t offset) {
    return {data + offset, FindStartCode(data, size, offset + 3) - offset};
}

std::size_t Unescape(std::uint8_t* destination, const std::uint8_t* source, std::size_t size) {
    std::uint8_t* out = destination;
    std::size_t copied = 0;
    // Runs between the bytes to drop are copied whole. `i` stands on the third byte of a possible 00 00 03.
    for (std::size_t i = 2; i < size;) {
        if (source[i] > 3) {
            i += 3;
        } else if (source[i - 1] != 0) {
            i += 2;
        } else if (source[i] != 3 || source[i - 2] != 0) {
            ++i;
        } else {
            std::memcpy(out, source + copied, i - copied);
            out += i - copied;
            copied = i + 1;
            // The two zeros belong to the sequence that has ended.
            i += 3;
        }
    }
    if (size > copied) {
        std::memcpy(out, source + copied, size - copied);
        out += size - copied;
    }
    return static_cast<std::size_t>(out - destination);
}

Status UnescapedUnit::Load(const NalUnit& unit) {
    std::uint8_t* room = short_;
    if (unit.size > kShort) {
        long_.Reserve((unit.size + 63) & ~std::size_t{63});
        room = long_.Data();
        if (room == nullptr) return IMG_E_NO_MEMORY;
    }
    data_ = room;
    size_ = Unescape(room, unit.data, unit.size);
    return IMG_OK;
}

}  // namespace KorvaneSoftware
