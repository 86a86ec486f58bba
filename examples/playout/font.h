// A small font of 5 by 7 dots, drawn at any size with soft edges.
#pragma once

#include <cstdint>
#include <string_view>

#include "picture.h"

namespace playout {

/// A colour as the title methods take it: not premultiplied.
struct Colour {
    std::uint8_t blue;
    std::uint8_t green;
    std::uint8_t red;
    std::uint8_t alpha = 255;
};

/// Width in pixels of a text whose letters are `height` pixels high.
std::uint32_t TextWidth(std::string_view text, std::uint32_t height);

/// Draws a text into a BGRA picture: colour everywhere under the letters, coverage in alpha. Small letters are drawn as
/// capitals, characters without a glyph as blanks. What falls outside the picture is cut.
void DrawText(Picture& picture, std::string_view text, std::int32_t left, std::int32_t top, std::uint32_t height,
              Colour colour);

}  // namespace playout
