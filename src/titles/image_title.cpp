// Kernels from BGR and packed 4:2:2 pictures into titles. Such a source is opaque: the layer's alpha is the region's.
#include <cstddef>

#include "convert/colour.h"
#include "convert/samples.h"
#include "titles/title_slot.h"

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
void ForEachPixel(const ImageDescriptor& dst, const ImageDescriptor& src, MixPixel mix) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        std::uint8_t* const to = Row::kTopDown ? BottomUpLine(dst, row) : PlaneLine(dst, 0, row);
        Row::Read(PlaneLine(src, 0, row), src.width, matrix,
                  [to, &mix](std::size_t x, const Bgr& colour) { mix(to + 4 * x, colour); });
    }
}

template <class Row>
void MovTitle_Plain(const ImageDescriptor& dst, const ImageDescriptor& src, const TitleMix& mix) {
    const std::uint32_t factor = mix.regionAlpha + 1;
    ForEachPixel<Row>(dst, src, [&](std::uint8_t* d, const Bgr& colour) {
        d[0] = static_cast<std::uint8_t>((colour.b * factor) >> 8);
        d[1] = static_cast<std::uint8_t>((colour.g * factor) >> 8);
        d[2] = static_cast<std::uint8_t>((colour.r * factor) >> 8);
        d[3] = static_cast<std::uint8_t>(mix.regionAlpha);
    });
}

template <class Row>
void NPTitle_Plain(const ImageDescriptor& dst, const ImageDescriptor& src, const TitleMix& mix) {
    ForEachPixel<Row>(dst, src, [&](std::uint8_t* d, const Bgr& colour) {
        d[0] = colour.b;
        d[1] = colour.g;
        d[2] = colour.r;
        d[3] = static_cast<std::uint8_t>(mix.regionAlpha);
    });
}

template <class Row>
void AddTitle_Plain(const ImageDescriptor& dst, const ImageDescriptor& src, const TitleMix& mix) {
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

PIXMORPH_TITLE_SLOT(MovTitleBgr, MovTitle_Plain<BgrRow>)
PIXMORPH_TITLE_SLOT(MovTitleUyvy, MovTitle_Plain<UyvyRow>)
PIXMORPH_TITLE_SLOT(MovTitleYuy2, MovTitle_Plain<Yuy2Row>)
PIXMORPH_TITLE_SLOT(MovTitleYvyu, MovTitle_Plain<YvyuRow>)
PIXMORPH_TITLE_SLOT(NPTitleUyvy, NPTitle_Plain<UyvyRow>)
PIXMORPH_TITLE_SLOT(NPTitleYuy2, NPTitle_Plain<Yuy2Row>)
PIXMORPH_TITLE_SLOT(NPTitleYvyu, NPTitle_Plain<YvyuRow>)
PIXMORPH_TITLE_SLOT(AddTitleBgr, AddTitle_Plain<BgrRow>)
PIXMORPH_TITLE_SLOT(AddTitleUyvy, AddTitle_Plain<UyvyRow>)
PIXMORPH_TITLE_SLOT(AddTitleYuy2, AddTitle_Plain<Yuy2Row>)
PIXMORPH_TITLE_SLOT(AddTitleYvyu, AddTitle_Plain<YvyuRow>)

namespace {

const SlotRegistration kRegistration{&MovTitleBgr,  &MovTitleUyvy, &MovTitleYuy2, &MovTitleYvyu,
                                     &NPTitleUyvy,  &NPTitleYuy2,  &NPTitleYvyu,  &AddTitleBgr,
                                     &AddTitleUyvy, &AddTitleYuy2, &AddTitleYvyu};

}  // namespace

}  // namespace KorvaneSoftware
