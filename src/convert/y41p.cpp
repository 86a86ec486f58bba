#include "convert/y41p.h"

#include "convert/samples.h"
#include "foundation/arithmetic.h"
#include "foundation/sample_order.h"

namespace KorvaneSoftware {

namespace {

using Order = Y41POrder;

// One chroma component of a group: four samples out of two, with a look at the next group. The last group of a line has
// none and repeats its own second sample.
template <class Store>
void SpreadChroma(const std::uint8_t* group, std::size_t offset, bool isLast, Store store) {
    const std::uint8_t first = group[offset];
    const std::uint8_t second = group[Order::kPairStep + offset];
    store(0, first);
    store(1, Mean(first, second));
    store(2, second);
    store(3, isLast ? second : Mean(second, group[Order::kBytes + offset]));
}

template <class Dst>
void Y41PTo422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::size_t groups = src.width / Order::kPixels;
    for (std::int64_t y = 0; y < src.height; ++y) {
        const std::uint8_t* const from = PlaneLine(src, 0, y);
        const auto to = LineAt(dst, y, y);
        for (std::size_t g = 0; g < groups; ++g) {
            const std::uint8_t* const group = from + g * Order::kBytes;
            for (std::size_t i = 0; i < Order::kPixels; ++i)
                Dst::Luma(to, g * Order::kPixels + i) = group[Order::kLuma[i]];
            const bool isLast = g + 1 == groups;
            const std::size_t pair = g * Order::kPixels / 2;
            SpreadChroma(group, Order::kU, isLast, [&](std::size_t i, std::uint8_t c) { Dst::Cb(to, pair + i) = c; });
            SpreadChroma(group, Order::kV, isLast, [&](std::size_t i, std::uint8_t c) { Dst::Cr(to, pair + i) = c; });
        }
    }
}

}  // namespace

PIXMORPH_FORMS(ConvertSignature, Y41PToUyvy, Y41PToYuy2, Y41PToYvyu, Y41PToY16)

void plain::Y41PToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Y41PTo422<UyvySamples>(dst, src);
}
void plain::Y41PToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Y41PTo422<Yuy2Samples>(dst, src);
}
void plain::Y41PToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Y41PTo422<YvyuSamples>(dst, src);
}
void plain::Y41PToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) { Y41PTo422<Y16Samples>(dst, src); }

PIXMORPH_SLOT(ConvertSlot, Y41PToUyvy, plain::Y41PToUyvy, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y41PToYuy2, plain::Y41PToYuy2, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y41PToYvyu, plain::Y41PToYvyu, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y41PToY16, plain::Y41PToY16, nullptr, nullptr, nullptr);

}  // namespace KorvaneSoftware
