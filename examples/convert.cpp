// Converts a picture: I420 planes, as a decoder gives them, to BGRA for the screen.
#include <pixmorph/pixmorph.h>

#include <cstdio>
#include <vector>

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;

int main() {
    constexpr std::uint32_t width = 1920, height = 1080;

    // A flat picture in the red of 75% colour bars: Y, U and V by BT.709.
    std::vector<std::uint8_t> y(width * height, 51), u(width * height / 4, 109), v(width * height / 4, 212);
    std::vector<std::uint8_t> bgra(4 * width * height);

    ComPtr<IColorConversion> conversion;
    if (FAILED(CreateInstance(CLSID_Pixmorph, conversion))) return 1;

    // The number of a YUV format says which colour matrix its samples follow.
    constexpr std::uint32_t source = PIXMORPH_IYUV + PIXMORPH_BT709;
    if (conversion->CheckConversion(PIXMORPH_BGRA_TOP_DOWN, source) != S_OK) return 1;

    const std::uint8_t* const from[4] = {y.data(), u.data(), v.data(), nullptr};
    const std::int32_t fromStrides[4] = {width, width / 2, width / 2, 0};
    std::uint8_t* const to[4] = {bgra.data(), nullptr, nullptr, nullptr};
    const std::int32_t toStrides[4] = {4 * width, 0, 0, 0};
    const HRESULT result =
        conversion->Pixmorph(to, toStrides, from, fromStrides, width, height, PIXMORPH_BGRA_TOP_DOWN, source);
    if (FAILED(result)) return 1;

    const std::uint8_t* const middle = &bgra[4 * (height / 2 * width + width / 2)];
    std::printf("blue %d, green %d, red %d, alpha %d\n", middle[0], middle[1], middle[2], middle[3]);
    const bool isRed = middle[0] <= 1 && middle[1] <= 1 && middle[2] >= 190 && middle[2] <= 192 && middle[3] == 255;
    return isRed ? 0 : 1;
}
