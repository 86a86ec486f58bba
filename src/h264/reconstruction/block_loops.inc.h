// The loops of TH264LumaBlocks, for the files that define an adder: Add4x4 and Add8x8(samples, component, mode, block)
// return what follows the block. Their mode is that of the prediction, or DC for inter macroblocks.
#include "h264/reconstruction/residual.h"

namespace KorvaneSoftware {

inline bool IsH264BlockCoded(std::uint32_t coded, unsigned place) { return (coded >> place & 1) != 0; }

template <class Sample, class Adder>
auto TH264LumaBlocks<Sample, Adder>::AddLuma4x4(const Component& luma, std::uint32_t coded, Coefficient* blocks)
    -> Coefficient* {
    for (const unsigned place : kH264BlockPlaces)
        if (IsH264BlockCoded(coded, place))
            blocks = Adder::Add4x4(luma.Block(place % 4, place / 4), luma, INTRA_BLOCK_DC, blocks);
    return blocks;
}

template <class Sample, class Adder>
auto TH264LumaBlocks<Sample, Adder>::AddLuma8x8(const Component& luma, std::uint32_t coded, Coefficient* blocks)
    -> Coefficient* {
    for (const unsigned place : kH264Places8x8)
        if (IsH264BlockCoded(coded, place))
            blocks = Adder::Add8x8(luma.Block(place % 4, place / 4), luma, INTRA_BLOCK_DC, blocks);
    return blocks;
}

template <class Sample, class Adder>
auto TH264LumaBlocks<Sample, Adder>::Intra4x4(const Component& luma, const std::int8_t* modes,
                                              const H264IntraAvailability& availability, std::uint32_t coded,
                                              Coefficient* blocks) -> Coefficient* {
    for (const unsigned place : kH264BlockPlaces) {
        Sample* const samples = luma.Block(place % 4, place / 4);
        const auto mode = static_cast<std::uint8_t>(modes[place]);
        TH264IntraKernels<Sample>::k4x4[mode](samples, luma.stride, availability.Of4x4(place), luma.bitDepth);
        if (IsH264BlockCoded(coded, place)) blocks = Adder::Add4x4(samples, luma, mode, blocks);
    }
    return blocks;
}

template <class Sample, class Adder>
auto TH264LumaBlocks<Sample, Adder>::Intra8x8(const Component& luma, const std::int8_t* modes,
                                              const H264IntraAvailability& availability, std::uint32_t coded,
                                              Coefficient* blocks) -> Coefficient* {
    for (unsigned block = 0; block < 4; ++block) {
        const unsigned place = kH264Places8x8[block];
        Sample* const samples = luma.Block(place % 4, place / 4);
        const auto mode = static_cast<std::uint8_t>(modes[place]);
        TH264IntraKernels<Sample>::k8x8[mode](samples, luma.stride, availability.Of8x8(block), luma.bitDepth);
        if (IsH264BlockCoded(coded, place)) blocks = Adder::Add8x8(samples, luma, mode, blocks);
    }
    return blocks;
}

}  // namespace KorvaneSoftware
