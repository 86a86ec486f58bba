#include "h264/reconstruction/residual.h"

#include "h264/reconstruction/block_loops.inc.h"
#include "h264/reconstruction/transforms.h"

namespace KorvaneSoftware {
namespace {

template <std::size_t kCount, class Coefficient>
bool HasOnlyDc(const Coefficient* block) {
    Coefficient any = 0;
    for (std::size_t i = 1; i < kCount; ++i) any = static_cast<Coefficient>(any | block[i]);
    return any == 0;
}

}  // namespace

template <class Sample>
struct TH264TransformAdder {
    using Transforms = TH264Transforms<Sample>;
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    static Coefficient* Add4x4(Sample* samples, const Component& component, std::uint8_t, Coefficient* block) {
        const auto& add = HasOnlyDc<16>(block) ? Transforms::kAdd4x4Dc : Transforms::kAdd4x4;
        add(samples, component.stride, block, component.bitDepth);
        return block + 16;
    }
    static Coefficient* Add8x8(Sample* samples, const Component& component, std::uint8_t, Coefficient* block) {
        const auto& add = HasOnlyDc<64>(block) ? Transforms::kAdd8x8Dc : Transforms::kAdd8x8;
        add(samples, component.stride, block, component.bitDepth);
        return block + 64;
    }
    static Coefficient* AddWithDc(Sample* samples, const Component& component, bool coded, Coefficient dc,
                                  Coefficient* block) {
        if (!coded) {
            if (dc != 0) Transforms::kAdd4x4Dc(samples, component.stride, &dc, component.bitDepth);
            return block;
        }
        block[0] = dc;
        Transforms::kAdd4x4(samples, component.stride, block, component.bitDepth);
        return block + 16;
    }
};

template <class Sample>
auto TH264Residual<Sample>::AddLuma16x16(const Component& luma, std::uint32_t coded, const Coefficient* dc,
                                         Coefficient* blocks) -> Coefficient* {
    for (const unsigned place : kH264BlockPlaces)
        blocks = TH264TransformAdder<Sample>::AddWithDc(luma.Block(place % 4, place / 4), luma,
                                                        IsH264BlockCoded(coded, place), dc[place], blocks);
    return blocks;
}

template <class Sample>
auto TH264Residual<Sample>::AddChroma(const Component& chroma, unsigned rows, std::uint32_t coded,
                                      const Coefficient* dc, Coefficient* blocks) -> Coefficient* {
    for (unsigned place = 0; place < 2 * rows; ++place)
        blocks = TH264TransformAdder<Sample>::AddWithDc(chroma.Block(place % 2, place / 2), chroma,
                                                        IsH264BlockCoded(coded, place), dc[place], blocks);
    return blocks;
}

template struct TH264LumaBlocks<std::uint8_t, TH264TransformAdder<std::uint8_t>>;
template struct TH264LumaBlocks<std::uint16_t, TH264TransformAdder<std::uint16_t>>;
template struct TH264Residual<std::uint8_t>;
template struct TH264Residual<std::uint16_t>;

}  // namespace KorvaneSoftware
