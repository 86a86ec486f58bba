// The quantiser of the current macroblock: QP' of its components and the scales that belong to it.
#pragma once

#include <cstdint>

#include "h264/dequant_tables.h"
#include "h264/parsing/coefficients.h"
#include "h264/parsing/parameter_sets.h"

namespace KorvaneSoftware {

class CH264Quantiser {
public:
    /// @param qp      QPY, -6 x bit_depth_luma_minus8 to 51
    /// @param offsets those of the slice's PPS
    /// @param weights tables of scaling matrices, or null where there are none
    void Set(std::int32_t qp, const H264SpsHead& sps, const std::int32_t (&offsets)[2],
             const H264DequantTables* weights);

    /// QP' of Y, Cb or Cr.
    std::uint32_t Qp(unsigned component) const { return qp_[component]; }

    template <class Coefficient>
    TScaledCoefficients<Coefficient> Scaled4x4(unsigned component, bool inter, Coefficient* block,
                                               const std::uint8_t* scan) const {
        const std::uint32_t qp = qp_[component];
        return {block, scan, Scales4x4(component, inter)[qp % 6], qp, weights_ != nullptr ? 4u : 0u};
    }
    /// Luma.
    template <class Coefficient>
    TScaledCoefficients<Coefficient> Scaled8x8(bool inter, Coefficient* block, const std::uint8_t* scan) const {
        const H264Scales8x8& scales =
            weights_ != nullptr ? weights_->table8x8[inter ? 1 : 0] : kH264NormAdjust.scales8x8;
        return {block, scan, scales[qp_[0] % 6], qp_[0], weights_ != nullptr ? 6u : 2u};
    }
    /// LevelScale4x4(qp % 6, 0, 0), for the DC coefficients of a component.
    std::int32_t DcScale(unsigned component, bool inter, std::uint32_t qp) const {
        return Scales4x4(component, inter)[qp % 6][0] * (weights_ != nullptr ? 1 : 16);
    }

private:
    const H264Scales4x4& Scales4x4(unsigned component, bool inter) const {
        return weights_ != nullptr ? weights_->table4x4[(inter ? 3 : 0) + component] : kH264NormAdjust.scales4x4;
    }

    std::uint32_t qp_[3] = {};
    const H264DequantTables* weights_ = nullptr;
};

}  // namespace KorvaneSoftware
