// Deinterlaces a sequence to one frame per field: a bar runs across an interlaced picture, and comes out whole.
#include <pixmorph/pixmorph.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;

namespace {

constexpr std::uint32_t kWidth = 720, kHeight = 576, kStride = 2 * kWidth;

// An interlaced UYVY frame: each field shows the bar where it is at the field's own moment, 12 pixels further.
void DrawFrame(std::vector<std::uint8_t>& uyvy, int frame) {
    for (std::uint32_t y = 0; y < kHeight; ++y) {
        const std::uint32_t left = 40 + 12 * (2 * static_cast<std::uint32_t>(frame) + y % 2);
        for (std::uint32_t x = 0; x < kWidth; ++x) {
            uyvy[y * kStride + 2 * x] = 128;
            uyvy[y * kStride + 2 * x + 1] = x >= left && x < left + 40 ? 200 : 50;
        }
    }
}

// Combing: how much lines differ from both their neighbours in the same direction.
long Combing(const std::vector<std::uint8_t>& uyvy) {
    long combing = 0;
    for (std::uint32_t y = 1; y + 1 < kHeight; ++y)
        for (std::uint32_t i = y * kStride + 1; i < (y + 1) * kStride; i += 2) {
            const int up = uyvy[i] - uyvy[i - kStride], down = uyvy[i] - uyvy[i + kStride];
            if (up * down > 0) combing += std::min(std::abs(up), std::abs(down));
        }
    return combing;
}

}  // namespace

int main() {
    ComPtr<IVideoDeinterlacer> deinterlacer;
    if (FAILED(CreateInstance(CLSID_VideoDeinterlacer, deinterlacer))) return 1;
    if (FAILED(deinterlacer->Initialize(1))) return 1;

    std::vector<std::uint8_t> interlaced(kStride * kHeight), progressive(kStride * kHeight);
    const std::uint8_t* const from[4] = {interlaced.data()};
    std::uint8_t* const to[4] = {progressive.data()};
    const std::int32_t strides[4] = {kStride};
    int made = 0;
    long before = 0, after = 0;
    for (int frame = 0; frame < 8; ++frame) {
        DrawFrame(interlaced, frame);
        before += Combing(interlaced);
        if (FAILED(
                deinterlacer->SetSourceFrame(from, strides, kWidth, kHeight, PIXMORPH_UYVY, PIXMORPH_TOP_FIELD_FIRST)))
            return 1;
        // The object holds three frames and shows the middle one, so the first two calls have nothing to show yet.
        for (const std::uint32_t field : {PIXMORPH_KEEP_FIRST, PIXMORPH_KEEP_SECOND}) {
            const HRESULT result = deinterlacer->GetFrame(to, strides, kWidth, kHeight, PIXMORPH_UYVY, field);
            if (result == E_PENDING) continue;
            if (FAILED(result)) return 1;
            ++made;
            after += Combing(progressive);
        }
    }
    std::printf("8 frames in, %d out; combing per frame: %ld before, %ld after\n", made, before / 8, after / made);
    return made == 12 && after / made < before / 8 / 20 ? 0 : 1;
}
