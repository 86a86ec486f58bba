#include "font.h"

#include <algorithm>
#include <cmath>

namespace playout {
namespace {

constexpr int kColumns = 5;
constexpr int kRows = 7;
constexpr int kAdvance = 6;  // dots from one letter to the next

struct Glyph {
    char letter;
    const char* dots[kRows];
};

constexpr Glyph kGlyphs[] = {
    {'A', {".###.", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"}},
    {'B', {"####.", "#...#", "#...#", "####.", "#...#", "#...#", "####."}},
    {'C', {".###.", "#...#", "#....", "#....", "#....", "#...#", ".###."}},
    {'D', {"####.", "#...#", "#...#", "#...#", "#...#", "#...#", "####."}},
    {'E', {"#####", "#....", "#....", "####.", "#....", "#....", "#####"}},
    {'F', {"#####", "#....", "#....", "####.", "#....", "#....", "#...."}},
    {'G', {".###.", "#...#", "#....", "#.###", "#...#", "#...#", ".###."}},
    {'H', {"#...#", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"}},
    {'I', {".###.", "..#..", "..#..", "..#..", "..#..", "..#..", ".###."}},
    {'J', {"..###", "...#.", "...#.", "...#.", "...#.", "#..#.", ".##.."}},
    {'K', {"#...#", "#..#.", "#.#..", "##...", "#.#..", "#..#.", "#...#"}},
    {'L', {"#....", "#....", "#....", "#....", "#....", "#....", "#####"}},
    {'M', {"#...#", "##.##", "#.#.#", "#.#.#", "#...#", "#...#", "#...#"}},
    {'N', {"#...#", "##..#", "##..#", "#.#.#", "#..##", "#..##", "#...#"}},
    {'O', {".###.", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."}},
    {'P', {"####.", "#...#", "#...#", "####.", "#....", "#....", "#...."}},
    {'Q', {".###.", "#...#", "#...#", "#...#", "#.#.#", "#..#.", ".##.#"}},
    {'R', {"####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"}},
    {'S', {".####", "#....", "#....", ".###.", "....#", "....#", "####."}},
    {'T', {"#####", "..#..", "..#..", "..#..", "..#..", "..#..", "..#.."}},
    {'U', {"#...#", "#...#", "#...#", "#...#", "#...#", "#...#", ".###."}},
    {'V', {"#...#", "#...#", "#...#", "#...#", ".#.#.", ".#.#.", "..#.."}},
    {'W', {"#...#", "#...#", "#...#", "#.#.#", "#.#.#", "##.##", "#...#"}},
    {'X', {"#...#", "#...#", ".#.#.", "..#..", ".#.#.", "#...#", "#...#"}},
    {'Y', {"#...#", "#...#", ".#.#.", "..#..", "..#..", "..#..", "..#.."}},
    {'Z', {"#####", "....#", "...#.", "..#..", ".#...", "#....", "#####"}},
    {'0', {".###.", "#...#", "#..##", "#.#.#", "##..#", "#...#", ".###."}},
    {'1', {"..#..", ".##..", "..#..", "..#..", "..#..", "..#..", ".###."}},
    {'2', {".###.", "#...#", "....#", "..##.", ".#...", "#....", "#####"}},
    {'3', {"####.", "....#", "....#", ".###.", "....#", "....#", "####."}},
    {'4', {"...#.", "..##.", ".#.#.", "#..#.", "#####", "...#.", "...#."}},
    {'5', {"#####", "#....", "####.", "....#", "....#", "#...#", ".###."}},
    {'6', {".###.", "#....", "#....", "####.", "#...#", "#...#", ".###."}},
    {'7', {"#####", "....#", "...#.", "..#..", "..#..", "..#..", "..#.."}},
    {'8', {".###.", "#...#", "#...#", ".###.", "#...#", "#...#", ".###."}},
    {'9', {".###.", "#...#", "#...#", ".####", "....#", "....#", ".###."}},
    {'.', {".....", ".....", ".....", ".....", ".....", ".##..", ".##.."}},
    {',', {".....", ".....", ".....", ".....", ".##..", ".##..", ".#..."}},
    {':', {".....", ".##..", ".##..", ".....", ".##..", ".##..", "....."}},
    {'!', {"..#..", "..#..", "..#..", "..#..", "..#..", ".....", "..#.."}},
    {'?', {".###.", "#...#", "....#", "..##.", "..#..", ".....", "..#.."}},
    {'-', {".....", ".....", ".....", "#####", ".....", ".....", "....."}},
    {'+', {".....", "..#..", "..#..", "#####", "..#..", "..#..", "....."}},
    {'/', {"....#", "....#", "...#.", "..#..", ".#...", "#....", "#...."}},
    {'\'', {"..#..", "..#..", ".#...", ".....", ".....", ".....", "....."}},
    {'(', {"...#.", "..#..", ".#...", ".#...", ".#...", "..#..", "...#."}},
    {')', {".#...", "..#..", "...#.", "...#.", "...#.", "..#..", ".#..."}},
    {'*', {".....", "#.#.#", ".###.", "#####", ".###.", "#.#.#", "....."}},
    {'&', {".##..", "#..#.", "#.#..", ".#...", "#.#.#", "#..#.", ".##.#"}},
};

const Glyph* FindGlyph(char letter) {
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    const auto* const found = std::find_if(std::begin(kGlyphs), std::end(kGlyphs),
                                           [=](const Glyph& glyph) { return glyph.letter == letter; });
    return found == std::end(kGlyphs) ? nullptr : found;
}

float Dot(const Glyph& glyph, int column, int row) {
    if (column < 0 || column >= kColumns || row < 0 || row >= kRows) return 0;
    return glyph.dots[row][column] == '#' ? 1.0f : 0.0f;
}

// The dots, interpolated between their centres, form hills; a letter is where the hills are higher than a level a
// little under one half, which keeps dots that touch at a corner together.
float Coverage(const Glyph& glyph, float column, float row, float pixelsPerDot) {
    constexpr float kLevel = 0.45f;
    const float x = std::floor(column - 0.5f);
    const float y = std::floor(row - 0.5f);
    const float fx = column - 0.5f - x;
    const float fy = row - 0.5f - y;
    const int c = static_cast<int>(x);
    const int r = static_cast<int>(y);
    const float top = Dot(glyph, c, r) * (1 - fx) + Dot(glyph, c + 1, r) * fx;
    const float bottom = Dot(glyph, c, r + 1) * (1 - fx) + Dot(glyph, c + 1, r + 1) * fx;
    const float height = top * (1 - fy) + bottom * fy;
    return std::clamp((height - kLevel) * std::max(pixelsPerDot, 1.0f) + 0.5f, 0.0f, 1.0f);
}

}  // namespace

std::uint32_t TextWidth(std::string_view text, std::uint32_t height) {
    return static_cast<std::uint32_t>((text.size() * kAdvance * height + kRows - 1) / kRows);
}

void DrawText(Picture& picture, std::string_view text, std::int32_t left, std::int32_t top, std::uint32_t height,
              Colour colour) {
    if (height == 0) return;
    const float dots = static_cast<float>(kRows) / static_cast<float>(height);
    const auto width = static_cast<std::int32_t>(TextWidth(text, height));
    // One dot more on each side: the hills of the outermost dots reach half a dot beyond them.
    const auto margin = static_cast<std::int32_t>(height / kRows + 1);
    for (std::int32_t y = std::max(0, top - margin);
         y < std::min<std::int32_t>(picture.Height(), top + static_cast<std::int32_t>(height) + margin); ++y) {
        for (std::int32_t x = std::max(0, left - margin); x < std::min<std::int32_t>(picture.Width(), left + width);
             ++x) {
            const float column = (static_cast<float>(x - left) + 0.5f) * dots;
            const float row = (static_cast<float>(y - top) + 0.5f) * dots;
            const auto letter = static_cast<std::int32_t>(std::floor((column + 0.5f) / kAdvance));
            if (letter < 0 || letter >= static_cast<std::int32_t>(text.size())) continue;
            const Glyph* const glyph = FindGlyph(text[static_cast<std::size_t>(letter)]);
            if (glyph == nullptr) continue;
            const float coverage = Coverage(*glyph, column - static_cast<float>(letter * kAdvance), row, 1 / dots);
            const auto alpha = static_cast<std::uint8_t>(coverage * colour.alpha + 0.5f);
            std::uint8_t* const pixel = picture.Row(0, static_cast<std::uint32_t>(y)) + 4 * x;
            if (alpha == 0 || alpha < pixel[3]) continue;
            pixel[0] = colour.blue;
            pixel[1] = colour.green;
            pixel[2] = colour.red;
            pixel[3] = alpha;
        }
    }
}

}  // namespace playout
