// Reconstruction of macroblocks, ITU-T H.264 clauses 8.3 and 8.5: prediction, residual, and their sum in the picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/aligned_memory.h"
#include "foundation/status.h"
#include "h264/macroblock_record.h"
#include "h264/parsing/bit_reader.h"
#include "h264/parsing/coefficients.h"
#include "h264/reconstruction/intra_availability.h"
#include "h264/reconstruction/quantiser.h"
#include "h264/reconstruction/residual.h"
#include "h264/reconstruction/transforms.h"

namespace KorvaneSoftware {

/// Macroblocks of the profiles below High; P is 1 for these and 3 where CH264ConstructorHigh follows.
///
/// For each macroblock the parser fills its record, takes a block for each coded one in the order of the syntax and puts
/// the levels there through Scaled4x4, leaves the DC levels as they are, and calls Reconstruct.
template <unsigned P, unsigned S, class Sample, class MotionCompensation>
class CH264Constructor : public MotionCompensation {
protected:
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    /// To be called once. @return IMG_E_NO_MEMORY
    Status InitializeConstructor();

    /// Takes QPY, the picture and the slice's chroma offsets over: at the start of a row and wherever QPY changes.
    void SetQp(std::int32_t qpY) { quantiser_.Set(qpY, picture_->sps, slice_->pps.chromaQpIndexOffset, nullptr); }
    /// Whether the current macroblock's transform is bypassed.
    static constexpr bool IsLossless() { return false; }

    /// Before the residual of a macroblock: no block is coded yet, and the DC levels are zero.
    void BeginResidual();
    /// The place of the next block, zeroed; Take makes it part of the residual.
    Coefficient* FreeBlock4x4() { return FreeBlock<16>(); }
    void TakeBlock4x4() { next_ += 16; }
    /// Both at once.
    Coefficient* NextBlock4x4() {
        Coefficient* const block = FreeBlock4x4();
        TakeBlock4x4();
        return block;
    }
    /// DC levels row by row: 4x4 of Intra_16x16; of Cb (0) or Cr (1) two to a row.
    Coefficient* LumaDc() { return lumaDc_; }
    Coefficient* ChromaDc(unsigned component) { return chromaDc_[component]; }
    /// Where the levels of a block of Y (0), Cb or Cr go.
    TScaledCoefficients<Coefficient> Scaled4x4(unsigned component, Coefficient* block, const std::uint8_t* scan) const {
        return quantiser_.Scaled4x4(component, IsInter(), block, scan);
    }

    /// Predicts the current macroblock (but not I_PCM) and adds its residual.
    void Reconstruct();
    /// Takes the samples of an I_PCM macroblock from the stream: Y, Cb, Cr, each row by row.
    void ReconstructPcm(H264BitReader& samples);

    using MotionCompensation::mb_;
    using MotionCompensation::picture_;
    using MotionCompensation::planes_;
    using MotionCompensation::slice_;
    using MotionCompensation::stride_;

    bool IsInter() const { return (mb_->mbType & kH264InterBits) != 0; }
    Component Luma() const { return ComponentOf(0, picture_->sps.bitDepthLumaMinus8); }
    /// Of Cb (0) or Cr (1).
    Component Chroma(unsigned component) const {
        return ComponentOf(1 + component, picture_->sps.bitDepthChromaMinus8);
    }
    H264IntraAvailability Availability() const;
    void PredictIntra16x16(const H264IntraAvailability& availability);
    void PredictChroma(const H264IntraAvailability& availability);
    /// The DC coefficients of Intra_16x16, by place.
    const Coefficient* TransformedLumaDc();
    /// The residual of both chroma components. @param blocks the first that is not luma
    void AddChroma(Coefficient* blocks);
    bool HasChromaResidual() const {
        return mb_->codedChroma[0] != 0 || mb_->codedChroma[1] != 0 || (mb_->codedDc & 6);
    }

    template <std::size_t kCount>
    Coefficient* FreeBlock() {
        std::memset(next_, 0, kCount * sizeof(Coefficient));
        return next_;
    }

    static constexpr unsigned kChromaBlockRows = MotionCompensation::kChromaFormat == 2 ? 4 : 2;

    CH264Quantiser quantiser_;
    Coefficient* blocks_ = nullptr;  ///< The coded blocks of the macroblock.
    Coefficient* next_ = nullptr;    ///< Behind those that were taken.

private:
    /// 16 blocks of each component, and one for the DC coefficients of each.
    static constexpr std::size_t kResidualSize = 816;

    Component ComponentOf(unsigned plane, std::uint32_t extraBits) const {
        return {reinterpret_cast<Sample*>(planes_[plane]), stride_ / static_cast<std::ptrdiff_t>(sizeof(Sample)),
                sizeof(Sample) == 1 ? 8 : 8 + extraBits};
    }

    static const auto& ChromaModes() {
        if constexpr (kChromaBlockRows == 4)
            return TH264IntraKernels<Sample>::kChroma8x16;
        else
            return TH264IntraKernels<Sample>::kChroma8x8;
    }

    AlignedBuffer residual_;
    Coefficient* lumaDc_ = nullptr;
    Coefficient* chromaDc_[2] = {};
};

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
Status CH264Constructor<P, S, Sample, MotionCompensation>::InitializeConstructor() {
    residual_.Reserve(kResidualSize * sizeof(Coefficient));
    if (residual_.Data() == nullptr) return IMG_E_NO_MEMORY;
    lumaDc_ = reinterpret_cast<Coefficient*>(residual_.Data());
    chromaDc_[0] = lumaDc_ + 16;
    chromaDc_[1] = lumaDc_ + 32;
    blocks_ = lumaDc_ + 48;
    BeginResidual();
    return IMG_OK;
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
void CH264Constructor<P, S, Sample, MotionCompensation>::BeginResidual() {
    next_ = blocks_;
    std::memset(lumaDc_, 0, 48 * sizeof(Coefficient));
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
H264IntraAvailability CH264Constructor<P, S, Sample, MotionCompensation>::Availability() const {
    const H264MacroblockRecord* beside = nullptr;
    if constexpr (S == 2) {
        const H264MacroblockRecord* const left = this->neighbours_.left[0];
        if (left != nullptr && left->fieldMb != 0 && mb_->fieldMb == 0) beside = left + this->cursor_.recordStride;
    }
    return FindIntraAvailability(this->neighbours_, beside, slice_->pps.constrainedIntraPred);
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
void CH264Constructor<P, S, Sample, MotionCompensation>::PredictIntra16x16(const H264IntraAvailability& availability) {
    const Component luma = Luma();
    const auto mode = static_cast<std::uint8_t>(mb_->intraModes[0]);
    TH264IntraKernels<Sample>::k16x16[mode](luma.samples, luma.stride, availability.macroblock, luma.bitDepth);
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
void CH264Constructor<P, S, Sample, MotionCompensation>::PredictChroma(const H264IntraAvailability& availability) {
    for (unsigned i = 0; i < 2; ++i) {
        const Component chroma = Chroma(i);
        ChromaModes()[mb_->intraChromaMode](chroma.samples, chroma.stride, availability.macroblock, chroma.bitDepth);
    }
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
auto CH264Constructor<P, S, Sample, MotionCompensation>::TransformedLumaDc() -> const Coefficient* {
    const std::uint32_t qp = quantiser_.Qp(0);
    if ((mb_->codedDc & 1) != 0)
        TH264Transforms<Sample>::kLumaDc(lumaDc_, quantiser_.DcScale(0, false, qp), static_cast<int>(qp));
    return lumaDc_;
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
void CH264Constructor<P, S, Sample, MotionCompensation>::AddChroma(Coefficient* blocks) {
    using Transforms = TH264Transforms<Sample>;
    for (unsigned i = 0; i < 2; ++i) {
        // The DC coefficients of 4:2:2 have a quantiser of their own.
        const std::uint32_t qp = quantiser_.Qp(1 + i) + (kChromaBlockRows == 4 ? 3 : 0);
        const auto& transform = kChromaBlockRows == 4 ? Transforms::kChromaDc2x4 : Transforms::kChromaDc2x2;
        if ((mb_->codedDc >> (1 + i) & 1) != 0)
            transform(chromaDc_[i], quantiser_.DcScale(1 + i, IsInter(), qp), static_cast<int>(qp));
        blocks =
            TH264Residual<Sample>::AddChroma(Chroma(i), kChromaBlockRows, mb_->codedChroma[i], chromaDc_[i], blocks);
    }
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
void CH264Constructor<P, S, Sample, MotionCompensation>::Reconstruct() {
    using Residual = TH264Residual<Sample>;
    Coefficient* blocks = blocks_;
    if (IsInter()) {
        this->PredictInter();
        if (mb_->codedLuma != 0) blocks = Residual::AddLuma4x4(Luma(), mb_->codedLuma, blocks);
    } else {
        const H264IntraAvailability availability = Availability();
        if (mb_->mbType == MB_INTRA_4X4) {
            blocks = Residual::Intra4x4(Luma(), mb_->intraModes, availability, mb_->codedLuma, blocks);
        } else {
            PredictIntra16x16(availability);
            if ((mb_->codedDc & 1) != 0 || mb_->codedLuma != 0)
                blocks = Residual::AddLuma16x16(Luma(), mb_->codedLuma, TransformedLumaDc(), blocks);
        }
        PredictChroma(availability);
    }
    if (HasChromaResidual()) AddChroma(blocks);
}

template <unsigned P, unsigned S, class Sample, class MotionCompensation>
void CH264Constructor<P, S, Sample, MotionCompensation>::ReconstructPcm(H264BitReader& samples) {
    const auto read = [&samples](const Component& component, unsigned width, unsigned height) {
        Sample* row = component.samples;
        for (unsigned y = 0; y < height; ++y, row += component.stride)
            for (unsigned x = 0; x < width; ++x) row[x] = static_cast<Sample>(samples.ReadBits(component.bitDepth));
    };
    read(Luma(), 16, 16);
    for (unsigned i = 0; i < 2; ++i) read(Chroma(i), 8, 4 * kChromaBlockRows);
}

}  // namespace KorvaneSoftware
