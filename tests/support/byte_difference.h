// Where two runs of bytes differ, in words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace pixmorph_test {

/// First difference between two lines of one length, as text; empty when there is none.
inline std::string LineDifference(std::span<const std::uint8_t> actual, std::span<const std::uint8_t> expected,
                                  std::size_t plane = 0, std::size_t line = 0) {
    for (std::size_t i = 0; i < actual.size(); ++i)
        if (actual[i] != expected[i])
            return "plane " + std::to_string(plane) + " line " + std::to_string(line) + " byte " + std::to_string(i) +
                   ": actual " + std::to_string(actual[i]) + ", expected " + std::to_string(expected[i]);
    return {};
}

/// The same for the memory of one line that has `margin` guard bytes on either side: says also which guard was hit.
inline std::string GuardedLineDifference(std::span<const std::uint8_t> actual, std::span<const std::uint8_t> expected,
                                         std::size_t margin) {
    const std::size_t length = actual.size() - 2 * margin;
    if (std::string text = LineDifference(actual.subspan(margin, length), expected.subspan(margin, length));
        !text.empty())
        return text;
    for (std::size_t i = margin; i-- > 0;)
        if (actual[i] != expected[i]) return "guard " + std::to_string(margin - i) + " bytes before the line";
    for (std::size_t i = margin + length; i < actual.size(); ++i)
        if (actual[i] != expected[i])
            return "guard " + std::to_string(i - margin - length + 1) + " bytes after the line";
    return {};
}

}  // namespace pixmorph_test
