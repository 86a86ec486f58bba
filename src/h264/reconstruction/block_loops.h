// The order of luma blocks in a macroblock, for every way in which a block is added to its prediction.
#pragma once

#include <cstdint>

#include "h264/reconstruction/residual.h"

namespace KorvaneSoftware {

/// `Adder` has Add4x4 and Add8x8(samples, component, mode, block), which return what follows the block. Its mode is the
/// prediction's, or kNoBlockMode.
template <class Sample, class Adder>
struct TH264BlockLoops {
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    static constexpr std::uint8_t kNoBlockMode = INTRA_BLOCK_DC;

    static bool IsCoded(std::uint32_t coded, unsigned place) { return (coded >> place & 1) != 0; }

    static Coefficient* Add4x4(const Component& luma, std::uint32_t coded, Coefficient* blocks) {
        for (const unsigned place : kH264BlockPlaces)
            if (IsCoded(coded, place))
                blocks = Adder::Add4x4(luma.Block(place % 4, place / 4), luma, kNoBlockMode, blocks);
        return blocks;
    }

    static Coefficient* Add8x8(const Component& luma, std::uint32_t coded, Coefficient* blocks) {
        for (const unsigned place : kH264Places8x8)
            if (IsCoded(coded, place))
                blocks = Adder::Add8x8(luma.Block(place % 4, place / 4), luma, kNoBlockMode, blocks);
        return blocks;
    }

    static Coefficient* Intra4x4(const Component& luma, const std::int8_t* modes,
                                 const H264IntraAvailability& availability, std::uint32_t coded, Coefficient* blocks) {
        for (const unsigned place : kH264BlockPlaces) {
            Sample* const samples = luma.Block(place % 4, place / 4);
            const auto mode = static_cast<std::uint8_t>(modes[place]);
            TH264IntraKernels<Sample>::k4x4[mode](samples, luma.stride, availability.Of4x4(place), luma.bitDepth);
            if (IsCoded(coded, place)) blocks = Adder::Add4x4(samples, luma, mode, blocks);
        }
        return blocks;
    }

    static Coefficient* Intra8x8(const Component& luma, const std::int8_t* modes,
                                 const H264IntraAvailability& availability, std::uint32_t coded, Coefficient* blocks) {
        for (unsigned block = 0; block < 4; ++block) {
            const unsigned place = kH264Places8x8[block];
            Sample* const samples = luma.Block(place % 4, place / 4);
            const auto mode = static_cast<std::uint8_t>(modes[place]);
            TH264IntraKernels<Sample>::k8x8[mode](samples, luma.stride, availability.Of8x8(block), luma.bitDepth);
            if (IsCoded(coded, place)) blocks = Adder::Add8x8(samples, luma, mode, blocks);
        }
        return blocks;
    }
};

}  // namespace KorvaneSoftware
