#include "jpeg/field_image.h"

#include <algorithm>

namespace KorvaneSoftware {

void DivideIntoParts(FieldImageState& image, std::uint32_t width, std::uint32_t height) {
    const std::uint64_t columns = (std::uint64_t{width} + 15) / 16;
    const auto rows = static_cast<std::uint32_t>((std::uint64_t{height} + 15) / 16);
    auto parts = static_cast<std::uint32_t>(std::clamp<std::uint64_t>(columns * rows / 675, 1, kMostParts));
    // An even number of them, where there are two rows to divide.
    if (rows >= 2) parts = (parts + 1) & ~1u;
    image.parts = parts;
    std::uint32_t start = 0;
    for (std::uint32_t i = 0; i < parts; ++i) {
        const auto next = static_cast<std::uint32_t>(std::uint64_t{rows} * (i + 1) / parts);
        image.entries[i].firstRow = static_cast<std::uint16_t>(start);
        image.entries[i].rows = static_cast<std::uint16_t>(next - start);
        start = next;
    }
}

}  // namespace KorvaneSoftware
