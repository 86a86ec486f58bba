// Builds a title of two layers and lays it over video with a fade.
#include <pixmorph/pixmorph.h>

#include <cstdio>
#include <vector>

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;

namespace {

constexpr std::uint32_t kWidth = 720, kHeight = 576, kTitleStride = 4 * kWidth, kVideoStride = 2 * kWidth;

// Fills columns and rows of a BGRA picture. Titles lie bottom-up in memory: row 0 is the bottom line.
void Rectangle(std::vector<std::uint8_t>& bgra, std::uint32_t left, std::uint32_t right, std::uint32_t bottom,
               std::uint32_t top, std::uint32_t colour) {
    for (std::uint32_t y = bottom; y < top; ++y)
        for (std::uint32_t x = left; x < right; ++x)
            for (int byte = 0; byte < 4; ++byte)
                bgra[y * kTitleStride + 4 * x + byte] = static_cast<std::uint8_t>(colour >> 8 * byte);
}

}  // namespace

int main() {
    ComPtr<ITitleMixer4> mixer;
    if (FAILED(CreateInstance(CLSID_TitleMixer3, mixer))) return 1;

    // Layers are ordinary images with alpha: here "text" of opaque white and a plate of half-transparent blue.
    std::vector<std::uint8_t> text(kTitleStride * kHeight), plate(kTitleStride * kHeight);
    Rectangle(text, 100, 300, 80, 120, 0xFFFFFFFF);
    Rectangle(plate, 60, 660, 60, 140, 0x800000FF);

    // A title is built front to back: the text first, the plate beneath it.
    std::vector<std::uint8_t> title(kTitleStride * kHeight), image(kTitleStride * kHeight);
    if (FAILED(mixer->MovTitle(title.data(), text.data(), kWidth, kHeight, kTitleStride, kTitleStride, 255))) return 1;
    if (FAILED(mixer->AddTitle(title.data(), plate.data(), kWidth, kHeight, kTitleStride, kTitleStride, 255))) return 1;

    // The title is premultiplied; to go over video it becomes an image with alpha again.
    if (FAILED(mixer->ConvertTitleToImage(image.data(), title.data(), kWidth, kHeight, kTitleStride, kTitleStride,
                                          PIXMORPH_BGRA)))
        return 1;

    int previous = 0;
    for (const std::uint32_t opacity : {0u, 64u, 128u, 192u, 255u}) {
        std::vector<std::uint8_t> video(kVideoStride * kHeight, 128);
        mixer->SetImageWord(video.data(), kVideoStride, kWidth, kHeight, 0x1080);  // black: Y 16, chroma 128
        if (FAILED(mixer->AddImageToUYVYBuffer(video.data(), image.data(), kWidth, kHeight, kVideoStride, kTitleStride,
                                               opacity, PIXMORPH_UYVY_BT709, PIXMORPH_BGRA)))
            return 1;
        // The video is stored top-down, so the title's row 100 is line 475 from the top.
        const std::uint8_t* const line = &video[(kHeight - 1 - 100) * kVideoStride];
        const int textLuma = line[2 * 200 + 1], plateLuma = line[2 * 400 + 1], outsideLuma = line[2 * 20 + 1];
        std::printf("opacity %3u: luma %3d in the text, %3d on the plate, %2d outside\n", opacity, textLuma, plateLuma,
                    outsideLuma);
        if (outsideLuma != 16 || textLuma < plateLuma || (opacity > 0 && textLuma <= previous)) return 1;
        previous = textLuma;
    }
    return previous >= 233 && previous <= 235 ? 0 : 1;
}
