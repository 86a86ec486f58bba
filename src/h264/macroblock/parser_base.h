// What the parsers of both entropy codes share.
#pragma once

#include <cstdint>

#include "h264/parsing/coefficients.h"
#include "h264/sample_types.h"

namespace KorvaneSoftware {

/// @tparam C  chroma_format_idc, 1 or 2
template <unsigned C, class Sample, class Constructor>
class TH264ParserBase : public Constructor {
protected:
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;

    static constexpr unsigned kChromaRows = C == 2 ? 4 : 2;  ///< Of chroma blocks, two to a row.

    /// Where the levels of a block of Y (0), Cb or Cr go; those of lossless macroblocks as they are.
    template <bool kLossless>
    auto Target4x4(unsigned component, Coefficient* block, const std::uint8_t* scan) const {
        if constexpr (kLossless) {
            return TRawCoefficients<Coefficient>{block, scan};
        } else {
            return this->Scaled4x4(component, block, scan);
        }
    }
    template <bool kLossless>
    auto Target8x8(Coefficient* block, const std::uint8_t* scan) const {
        if constexpr (kLossless) {
            return TRawCoefficients<Coefficient>{block, scan};
        } else {
            return this->Scaled8x8(block, scan);
        }
    }
};

}  // namespace KorvaneSoftware
