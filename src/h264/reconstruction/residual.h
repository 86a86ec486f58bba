// The residual of a macroblock: blocks of coefficients that the parser left in coding order, added to the prediction
// where they belong. Blocks of Intra_4x4 and Intra_8x8 macroblocks are predicted one by one on the way.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/reconstruction/intra_availability.h"
#include "h264/sample_types.h"

namespace KorvaneSoftware {

/// Places of luma blocks in the order in which they are coded, ITU-T H.264 clause 6.4.3.
inline constexpr std::uint8_t kH264BlockPlaces[16] = {0, 1, 4, 5, 2, 3, 6, 7, 8, 9, 12, 13, 10, 11, 14, 15};
/// Places of the first blocks of the four 8x8 ones.
inline constexpr std::uint8_t kH264Places8x8[4] = {0, 2, 8, 10};

/// A component of a macroblock in the picture.
template <class Sample>
struct TH264Component {
    Sample* samples;
    std::ptrdiff_t stride;  ///< Samples.
    std::uint32_t bitDepth;

    /// The block of 4x4 samples at column x and row y of blocks.
    Sample* Block(unsigned x, unsigned y) const { return samples + 4 * (y * stride + static_cast<std::ptrdiff_t>(x)); }
};

/// Luma blocks of a macroblock in coding order; `Adder` adds one to its prediction. `coded` has a bit for each place of a
/// block that is coded; of an 8x8 block its first one counts. The functions take the blocks that they need from `blocks`
/// on and return what follows them.
template <class Sample, class Adder>
struct TH264LumaBlocks {
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    /// Of inter macroblocks.
    static Coefficient* AddLuma4x4(const Component& luma, std::uint32_t coded, Coefficient* blocks);
    static Coefficient* AddLuma8x8(const Component& luma, std::uint32_t coded, Coefficient* blocks);
    /// Of Intra_4x4 and Intra_8x8, with the prediction. @param modes by place
    static Coefficient* Intra4x4(const Component& luma, const std::int8_t* modes,
                                 const H264IntraAvailability& availability, std::uint32_t coded, Coefficient* blocks);
    static Coefficient* Intra8x8(const Component& luma, const std::int8_t* modes,
                                 const H264IntraAvailability& availability, std::uint32_t coded, Coefficient* blocks);
};

template <class Sample>
struct TH264TransformAdder;

/// Blocks of dequantised coefficients.
template <class Sample>
struct TH264Residual : TH264LumaBlocks<Sample, TH264TransformAdder<Sample>> {
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    /// Luma of Intra_16x16, and chroma of `rows` rows of two blocks: each has its first coefficient from `dc`, by place
    /// and transformed; without its bit in `coded` a block has no other.
    static Coefficient* AddLuma16x16(const Component& luma, std::uint32_t coded, const Coefficient* dc,
                                     Coefficient* blocks);
    static Coefficient* AddChroma(const Component& chroma, unsigned rows, std::uint32_t coded, const Coefficient* dc,
                                  Coefficient* blocks);
};

}  // namespace KorvaneSoftware
