// Resizes a picture, and resizes and converts in one call.
#include <pixmorph/pixmorph.h>

#include <cstdio>
#include <vector>

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;

int main() {
    constexpr std::uint32_t fromWidth = 1920, fromHeight = 1080, toWidth = 720, toHeight = 576;

    // A ramp from black on the left to white on the right: U, Y, V, Y for each pair of pixels.
    std::vector<std::uint8_t> uyvy(2 * fromWidth * fromHeight, 128);
    for (std::uint32_t i = 0; i < fromWidth * fromHeight; ++i)
        uyvy[2 * i + 1] = static_cast<std::uint8_t>(16 + 219 * (i % fromWidth) / (fromWidth - 1));

    ComPtr<IStretchImage> stretch;
    if (FAILED(CreateInstance(CLSID_StretchImage, stretch))) return 1;
    std::vector<std::uint8_t> small(2 * toWidth * toHeight);
    if (FAILED(stretch->StretchImage(small.data(), uyvy.data(), toWidth, toHeight, fromWidth, fromHeight, 2 * toWidth,
                                     2 * fromWidth, PIXMORPH_UYVY)))
        return 1;

    // The same object has an interface that changes the format on the way.
    ComPtr<IResizeImage> resize;
    if (FAILED(stretch.As(resize))) return 1;
    std::vector<std::uint8_t> bgr(3 * toWidth * toHeight);
    std::uint8_t* const to[4] = {bgr.data()};
    const std::int32_t toStrides[4] = {3 * toWidth};
    const std::uint8_t* const from[4] = {uyvy.data()};
    const std::int32_t fromStrides[4] = {2 * fromWidth};
    if (FAILED(resize->ResizePixmorph(to, toStrides, from, fromStrides, toWidth, toHeight, fromWidth, fromHeight,
                                      PIXMORPH_BGR_TOP_DOWN, PIXMORPH_UYVY)))
        return 1;

    const std::uint32_t row = toHeight / 2 * toWidth;
    const int left = small[2 * row + 1], middle = small[2 * (row + toWidth / 2) + 1],
              right = small[2 * (row + toWidth) - 1];
    std::printf("luma on the left %d, in the middle %d, on the right %d; there the BGR picture has blue %d\n", left,
                middle, right, bgr[3 * (row + toWidth - 1)]);
    const bool isRamp =
        left <= 17 && middle >= 124 && middle <= 127 && right >= 234 && bgr[3 * (row + toWidth - 1)] >= 253;
    return isRamp ? 0 : 1;
}
