// Kernels from BGR and packed 4:2:2 pictures into titles. Such a source is opaque: the layer's alpha is the region's.
#include <cstddef>

#include "convert/colour.h"
#include "convert/samples.h"
#include "titles/add_saturated.h"
#include "titles/x86/title_forms.h"

namespace KorvaneSoftware {

namespace {

// Readers of a row: `put(x, colour)` for each pixel, left to right.
struct BgrRow {
    static constexpr bool kTopDown = false;
    template <class Put>
    static void Read(const std::uint8_t* src, std::size_t width, const YuvToRgbRow&, Put put) {
        for (std::size_t x = 0; x < width; ++x) put(x, Bgr{src[3 * x], src[3 * x + 1], src[3 * x + 2]});
    }
};

template <class Samples>
struct PackedRow {
    static constexpr bool kTopDown = true;
    template <class Put>
    static void Read(const std::uint8_t* src, std::size_t width, const YuvToRgbRow& matrix, Put put) {
        const ReadLine line{{src, nullptr, nullptr}};
        const std::size_t pairs = width / 2;
        for (std::size_t pair = 0; pair < pairs; ++pair) {
            const std::size_t next = pair + 1 < pairs ? pair + 1 : pair;
            const std::uint32_t u = Samples::Cb(line, pair);
            const std::uint32_t v = Samples::Cr(line, pair);
            put(2 * pair, YuvToBgr(matrix, std::uint32_t{Samples::Luma(line, 2 * pair)} << 8, u << 8, v << 8));
            put(2 * pair + 1, YuvToBgr(matrix, std::uint32_t{Samples::Luma(line, 2 * pair + 1)} << 8,
                                       (u + Samples::Cb(line, next)) << 7, (v + Samples::Cr(line, next)) << 7));
        }
    }
};

// Calls `mix(dst, colour)` for every pixel. Titles are bottom-up, so a top-down source meets them with its rows turned.
template <class Row, class MixPixel>
void ForEachPixel(const ImageDescriptor& dst, const ConstImageDescriptor& src, MixPixel mix) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        std::uint8_t* const to = Row::kTopDown ? BottomUpLine(dst, row) : PlaneLine(dst, 0, row);
        Row::Read(PlaneLine(src, 0, row), src.width, matrix,
                  [to, &mix](std::size_t x, const Bgr& colour) { mix(to + 4 * x, colour); });
    }
}

template <class Row>
void MovTitle(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    const std::uint32_t factor = mix.regionAlpha + 1;
    ForEachPixel<Row>(dst, src, [&](std::uint8_t* d, const Bgr& colour) {
        d[0] = static_cast<std::uint8_t>((colour.b * factor) >> 8);
        d[1] = static_cast<std::uint8_t>((colour.g * factor) >> 8);
        d[2] = static_cast<std::uint8_t>((colour.r * factor) >> 8);
        d[3] = static_cast<std::uint8_t>(mix.regionAlpha);
    });
}

template <class Row>
void NPTitle(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    ForEachPixel<Row>(dst, src, [&](std::uint8_t* d, const Bgr& colour) {
        d[0] = colour.b;
        d[1] = colour.g;
        d[2] = colour.r;
        d[3] = static_cast<std::uint8_t>(mix.regionAlpha);
    });
}

template <class Row>
void AddTitle(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    const std::uint32_t factor = mix.regionAlpha + 1;
    ForEachPixel<Row>(dst, src, [factor](std::uint8_t* d, const Bgr& colour) {
        const std::uint32_t k = (255u - d[3]) * factor;
        d[0] = AddSaturated(d[0], (colour.b * k) >> 16);
        d[1] = AddSaturated(d[1], (colour.g * k) >> 16);
        d[2] = AddSaturated(d[2], (colour.r * k) >> 16);
        d[3] = AddSaturated(d[3], k >> 8);
    });
}

using UyvyRow = PackedRow<UyvySamples>;
using Yuy2Row = PackedRow<Yuy2Samples>;
using YvyuRow = PackedRow<YvyuSamples>;

}  // namespace

void plain::MovTitleBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MovTitle<BgrRow>(dst, src, mix);
}
void plain::MovTitleUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MovTitle<UyvyRow>(dst, src, mix);
}
void plain::MovTitleYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MovTitle<Yuy2Row>(dst, src, mix);
}
void plain::MovTitleYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MovTitle<YvyuRow>(dst, src, mix);
}
void plain::NPTitleUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    NPTitle<UyvyRow>(dst, src, mix);
}
void plain::NPTitleYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    NPTitle<Yuy2Row>(dst, src, mix);
}
void plain::NPTitleYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    NPTitle<YvyuRow>(dst, src, mix);
}
void plain::AddTitleBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    AddTitle<BgrRow>(dst, src, mix);
}
void plain::AddTitleUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    AddTitle<UyvyRow>(dst, src, mix);
}
void plain::AddTitleYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    AddTitle<Yuy2Row>(dst, src, mix);
}
void plain::AddTitleYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    AddTitle<YvyuRow>(dst, src, mix);
}

PIXMORPH_SLOT(TitleSlot, MovTitleBgr, plain::MovTitleBgr, simd_sse41::MovTitleBgr, simd_avx2::MovTitleBgr,
              simd_avx512::MovTitleBgr);
PIXMORPH_SLOT(TitleSlot, MovTitleUyvy, plain::MovTitleUyvy, simd_sse41::MovTitleUyvy, simd_avx2::MovTitleUyvy,
              simd_avx512::MovTitleUyvy);
PIXMORPH_SLOT(TitleSlot, MovTitleYuy2, plain::MovTitleYuy2, simd_sse41::MovTitleYuy2, simd_avx2::MovTitleYuy2,
              simd_avx512::MovTitleYuy2);
PIXMORPH_SLOT(TitleSlot, MovTitleYvyu, plain::MovTitleYvyu, simd_sse41::MovTitleYvyu, simd_avx2::MovTitleYvyu,
              simd_avx512::MovTitleYvyu);
PIXMORPH_SLOT(TitleSlot, NPTitleUyvy, plain::NPTitleUyvy, simd_sse41::NPTitleUyvy, simd_avx2::NPTitleUyvy,
              simd_avx512::NPTitleUyvy);
PIXMORPH_SLOT(TitleSlot, NPTitleYuy2, plain::NPTitleYuy2, simd_sse41::NPTitleYuy2, simd_avx2::NPTitleYuy2,
              simd_avx512::NPTitleYuy2);
PIXMORPH_SLOT(TitleSlot, NPTitleYvyu, plain::NPTitleYvyu, simd_sse41::NPTitleYvyu, simd_avx2::NPTitleYvyu,
              simd_avx512::NPTitleYvyu);
PIXMORPH_SLOT(TitleSlot, AddTitleBgr, plain::AddTitleBgr, simd_sse41::AddTitleBgr, simd_avx2::AddTitleBgr,
              simd_avx512::AddTitleBgr);
PIXMORPH_SLOT(TitleSlot, AddTitleUyvy, plain::AddTitleUyvy, simd_sse41::AddTitleUyvy, simd_avx2::AddTitleUyvy,
              simd_avx512::AddTitleUyvy);
PIXMORPH_SLOT(TitleSlot, AddTitleYuy2, plain::AddTitleYuy2, simd_sse41::AddTitleYuy2, simd_avx2::AddTitleYuy2,
              simd_avx512::AddTitleYuy2);
PIXMORPH_SLOT(TitleSlot, AddTitleYvyu, plain::AddTitleYvyu, simd_sse41::AddTitleYvyu, simd_avx2::AddTitleYvyu,
              simd_avx512::AddTitleYvyu);

}  // namespace KorvaneSoftware
