#include "convert/y41p.h"

#include "convert/samples.h"
#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kGroupBytes = 12;
constexpr std::size_t kGroupPixels = 8;

// Offsets within a group: U0 Y0 V0 Y1 U4 Y2 V4 Y3 Y4 Y5 Y6 Y7.
constexpr std::size_t kLumaOffset[kGroupPixels] = {1, 3, 5, 7, 8, 9, 10, 11};
constexpr std::size_t kCb = 0;
constexpr std::size_t kCr = 2;
constexpr std::size_t kHalfGroup = 4;  // From the first chroma pair of a group to its second.

// One chroma component of a group: four samples out of two, with a look at the next group. The last group of a line has
// none and repeats its own second sample.
template <class Store>
void SpreadChroma(const std::uint8_t* group, std::size_t offset, bool isLast, Store store) {
    const std::uint8_t first = group[offset];
    const std::uint8_t second = group[kHalfGroup + offset];
    store(0, first);
    store(1, Mean(first, second));
    store(2, second);
    store(3, isLast ? second : Mean(second, group[kGroupBytes + offset]));
}

template <class Dst>
void Y41PTo422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::size_t groups = src.width / kGroupPixels;
    for (std::int64_t y = 0; y < src.height; ++y) {
        const std::uint8_t* const from = PlaneLine(src, 0, y);
        const auto to = LineAt<WriteLine>(dst, y, y);
        for (std::size_t g = 0; g < groups; ++g) {
            const std::uint8_t* const group = from + g * kGroupBytes;
            for (std::size_t i = 0; i < kGroupPixels; ++i) Dst::Luma(to, g * kGroupPixels + i) = group[kLumaOffset[i]];
            const bool isLast = g + 1 == groups;
            const std::size_t pair = g * kGroupPixels / 2;
            SpreadChroma(group, kCb, isLast, [&](std::size_t i, std::uint8_t c) { Dst::Cb(to, pair + i) = c; });
            SpreadChroma(group, kCr, isLast, [&](std::size_t i, std::uint8_t c) { Dst::Cr(to, pair + i) = c; });
        }
    }
}

}  // namespace

PIXMORPH_FORMS(ConvertSignature, Y41PToUyvy, Y41PToYuy2, Y41PToYvyu, Y41PToY16)

void plain::Y41PToUyvy(const ImageDescriptor& dst, const ImageDescriptor& src) { Y41PTo422<UyvySamples>(dst, src); }
void plain::Y41PToYuy2(const ImageDescriptor& dst, const ImageDescriptor& src) { Y41PTo422<Yuy2Samples>(dst, src); }
void plain::Y41PToYvyu(const ImageDescriptor& dst, const ImageDescriptor& src) { Y41PTo422<YvyuSamples>(dst, src); }
void plain::Y41PToY16(const ImageDescriptor& dst, const ImageDescriptor& src) { Y41PTo422<Y16Samples>(dst, src); }

PIXMORPH_SLOT(ConvertSlot, Y41PToUyvy, plain::Y41PToUyvy, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y41PToYuy2, plain::Y41PToYuy2, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y41PToYvyu, plain::Y41PToYvyu, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y41PToY16, plain::Y41PToY16, nullptr, nullptr, nullptr);

}  // namespace KorvaneSoftware
