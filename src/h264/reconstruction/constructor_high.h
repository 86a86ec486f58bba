// Reconstruction of macroblocks of the High profiles: 8x8 transforms and prediction, scaling matrices, lossless coding.
#pragma once

#include "h264/reconstruction/constructor.h"
#include "h264/reconstruction/lossless.h"

namespace KorvaneSoftware {

/// M is 1 for pictures with scaling matrices.
template <unsigned S, unsigned C, unsigned M, class Sample, class MotionCompensation>
class CH264ConstructorHigh : public CH264Constructor<3, S, Sample, MotionCompensation> {
    using Base = CH264Constructor<3, S, Sample, MotionCompensation>;
    static_assert(C == MotionCompensation::kChromaFormat);

protected:
    using typename Base::Coefficient;

    void SetQp(std::int32_t qpY) {
        quantiser_.Set(qpY, picture_->sps, slice_->pps.chromaQpIndexOffset, M != 0 ? &picture_->dequant : nullptr);
    }
    bool IsLossless() const { return quantiser_.Qp(0) == 0 && picture_->sps.qpprimeYZeroTransformBypass; }

    /// The same as for blocks of 4x4 coefficients.
    Coefficient* FreeBlock8x8() { return Base::template FreeBlock<64>(); }
    void TakeBlock8x8() { next_ += 64; }
    Coefficient* NextBlock8x8() {
        Coefficient* const block = FreeBlock8x8();
        TakeBlock8x8();
        return block;
    }
    /// Where the levels of a block go.
    TScaledCoefficients<Coefficient> Scaled8x8(Coefficient* block, const std::uint8_t* scan) const {
        return quantiser_.Scaled8x8(Base::IsInter(), block, scan);
    }

    void Reconstruct() {
        if (IsLossless())
            ReconstructLossless();
        else
            ReconstructTransformed();
    }

    using Base::blocks_;
    using Base::mb_;
    using Base::next_;
    using Base::picture_;
    using Base::quantiser_;
    using Base::slice_;

private:
    void ReconstructTransformed();
    void ReconstructLossless();
};

template <unsigned S, unsigned C, unsigned M, class Sample, class MotionCompensation>
void CH264ConstructorHigh<S, C, M, Sample, MotionCompensation>::ReconstructTransformed() {
    using Residual = TH264Residual<Sample>;
    if (Base::IsInter() ? mb_->transform8x8 == 0 : mb_->mbType != MB_INTRA_8X8) return Base::Reconstruct();
    Coefficient* blocks = blocks_;
    if (Base::IsInter()) {
        this->PredictInter();
        if (mb_->codedLuma != 0) blocks = Residual::AddLuma8x8(this->Luma(), mb_->codedLuma, blocks);
    } else {
        const H264IntraAvailability availability = this->Availability();
        blocks = Residual::Intra8x8(this->Luma(), mb_->intraModes, availability, mb_->codedLuma, blocks);
        this->PredictChroma(availability);
    }
    if (this->HasChromaResidual()) this->AddChroma(blocks);
}

template <unsigned S, unsigned C, unsigned M, class Sample, class MotionCompensation>
void CH264ConstructorHigh<S, C, M, Sample, MotionCompensation>::ReconstructLossless() {
    using Residual = TH264LosslessResidual<Sample>;
    const auto luma = this->Luma();
    Coefficient* blocks = blocks_;
    std::uint32_t chromaMode = INTRA_CHROMA_DC;
    if (Base::IsInter()) {
        this->PredictInter();
        if (mb_->codedLuma != 0)
            blocks = mb_->transform8x8 != 0 ? Residual::AddLuma8x8(luma, mb_->codedLuma, blocks)
                                            : Residual::AddLuma4x4(luma, mb_->codedLuma, blocks);
    } else {
        const H264IntraAvailability availability = this->Availability();
        if (mb_->mbType == MB_INTRA_4X4) {
            blocks = Residual::Intra4x4(luma, mb_->intraModes, availability, mb_->codedLuma, blocks);
        } else if (mb_->mbType == MB_INTRA_8X8) {
            blocks = Residual::Intra8x8(luma, mb_->intraModes, availability, mb_->codedLuma, blocks);
        } else {
            this->PredictIntra16x16(availability);
            blocks = Residual::AddLuma16x16(luma, static_cast<std::uint8_t>(mb_->intraModes[0]), mb_->codedLuma,
                                            this->LumaDc(), blocks);
        }
        this->PredictChroma(availability);
        chromaMode = mb_->intraChromaMode;
    }
    if (!this->HasChromaResidual()) return;
    for (unsigned i = 0; i < 2; ++i)
        blocks = Residual::AddChroma(this->Chroma(i), chromaMode, Base::kChromaBlockRows, mb_->codedChroma[i],
                                     this->ChromaDc(i), blocks);
}

}  // namespace KorvaneSoftware
