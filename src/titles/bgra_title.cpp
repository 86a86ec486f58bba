// Kernels between BGRA pictures.
#include <algorithm>
#include <cstddef>

#include "titles/add_saturated.h"
#include "titles/x86/title_forms.h"

namespace KorvaneSoftware {

namespace {

// Calls `mix(dst, src)` with the first byte of every pixel, rows in memory order. Source and destination may coincide.
template <class MixPixel>
void ForEachPixel(const ImageDescriptor& dst, const ConstImageDescriptor& src, MixPixel mix) {
    for (std::int64_t row = 0; row < dst.height; ++row) {
        std::uint8_t* to = dst.planes[0] + row * dst.strides[0];
        const std::uint8_t* from = src.planes[0] + row * src.strides[0];
        for (std::size_t x = 0; x < dst.width; ++x) mix(to + 4 * x, from + 4 * x);
    }
}

}  // namespace

void plain::MovTitleBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    const std::uint32_t factor = mix.regionAlpha + 1;
    ForEachPixel(dst, src, [factor](std::uint8_t* d, const std::uint8_t* s) {
        const std::uint32_t m = s[3] * factor;
        for (int c = 0; c < 3; ++c) d[c] = static_cast<std::uint8_t>((s[c] * m) >> 16);
        d[3] = static_cast<std::uint8_t>(m >> 8);
    });
}

void plain::NPTitleBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    const std::uint32_t factor = mix.regionAlpha + 1;
    ForEachPixel(dst, src, [factor](std::uint8_t* d, const std::uint8_t* s) {
        for (int c = 0; c < 3; ++c) d[c] = s[c];
        d[3] = static_cast<std::uint8_t>((s[3] * factor) >> 8);
    });
}

void plain::AddTitleBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    const std::uint32_t factor = mix.regionAlpha + 1;
    ForEachPixel(dst, src, [factor](std::uint8_t* d, const std::uint8_t* s) {
        const std::uint32_t alpha = s[3];
        const std::uint32_t k = (255u - d[3]) * factor;
        // The 1 is what makes an opaque 255 come out whole but for the last step.
        for (int c = 0; c < 3; ++c) d[c] = AddSaturated(d[c], ((s[c] + 1u) * alpha * k) >> 24);
        d[3] = AddSaturated(d[3], (alpha * k) >> 16);
    });
}

void plain::TitleToImage(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix&) {
    ForEachPixel(dst, src, [](std::uint8_t* d, const std::uint8_t* s) {
        const std::uint32_t alpha = s[3];
        for (int c = 0; c < 3; ++c) {
            // A transparent pixel that holds colour becomes full in that channel; callers expect it.
            const std::uint32_t straight = alpha != 0 ? s[c] * 255u / alpha : (s[c] != 0 ? 255u : 0u);
            d[c] = static_cast<std::uint8_t>(std::min(straight, 255u));
        }
        d[3] = static_cast<std::uint8_t>(alpha);
    });
}

PIXMORPH_SLOT(TitleSlot, MovTitleBgra, plain::MovTitleBgra, simd_sse41::MovTitleBgra, simd_avx2::MovTitleBgra,
              simd_avx512::MovTitleBgra);
PIXMORPH_SLOT(TitleSlot, NPTitleBgra, plain::NPTitleBgra, simd_sse41::NPTitleBgra, simd_avx2::NPTitleBgra,
              simd_avx512::NPTitleBgra);
PIXMORPH_SLOT(TitleSlot, AddTitleBgra, plain::AddTitleBgra, simd_sse41::AddTitleBgra, simd_avx2::AddTitleBgra,
              simd_avx512::AddTitleBgra);
PIXMORPH_SLOT(TitleSlot, TitleToImage, plain::TitleToImage, simd_sse41::TitleToImage, simd_avx2::TitleToImage,
              simd_avx512::TitleToImage);

}  // namespace KorvaneSoftware
