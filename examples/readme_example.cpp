#include <pixmorph/pixmorph.h>

#include <cstdio>
#include <vector>

int main() {
    constexpr std::uint32_t width = 1920, height = 1080;
    std::vector<std::uint8_t> uyvy(width * height * 2, 128), bgra(width * height * 4);

    KorvaneSoftware::ComPtr<IPixmorph> pixmorph;
    if (FAILED(KorvaneSoftware::CreateInstance(CLSID_Pixmorph, pixmorph))) return 1;

    // 4:2:2 video with the colours of BT.709 becomes a picture for the screen, top line first.
    const HRESULT result = pixmorph->Pixmorph(bgra.data(), uyvy.data(), width, height, width * 4, width * 2,
                                              PIXMORPH_BGRA_TOP_DOWN, PIXMORPH_UYVY_BT709);
    std::printf("result %d, first pixel: blue %d, green %d, red %d, alpha %d\n", result, bgra[0], bgra[1], bgra[2],
                bgra[3]);
    return FAILED(result);
}
