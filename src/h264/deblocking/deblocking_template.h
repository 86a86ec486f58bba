// The samples' part of the loop filter: the edges of one macroblock, by their strengths.
//
// Template arguments of this folder: P, 1 for profiles below High and 3 for the High family; S, the structure, 0 frame,
// 1 field, 2 MBAFF; C, chroma_format_idc, 1 or 2; the sample type.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/deblocking/edge_filters.h"
#include "h264/deblocking/edge_qp.h"
#include "h264/picture.h"

namespace KorvaneSoftware {

template <unsigned P, unsigned S, unsigned C, class Sample, class Base>
class TH264DeblockingTemplate : public Base {
protected:
    using Filters = TH264EdgeFilters<Sample>;
    static constexpr std::ptrdiff_t kSampleBytes = sizeof(Sample);

    void BeginRow(unsigned lists) {
        Base::BeginRow(lists);
        const CH264Picture& picture = *this->slice_->picture;
        lumaDepth_ = sizeof(Sample) == 1 ? 8 : 8 + picture.sps.bitDepthLumaMinus8;
        chromaDepth_ = sizeof(Sample) == 1 ? 8 : 8 + picture.sps.bitDepthChromaMinus8;
        qp_.BeginSlice(*this->slice_, picture.sps.bitDepthChromaMinus8);
    }

    void FilterAtCursor() {
        this->SelectMacroblock();
        this->FindStrengths();
        FilterVerticalEdges();
        FilterHorizontalEdges();
    }

    void FilterVerticalEdges() {
        Sample* const luma = Plane(0);
        const std::ptrdiff_t stride = Stride();
        const H264EdgeQp inner = qp_.Of(*this->mb_, *this->mb_);
        const H264EdgeQp outer = this->left_ != nullptr ? qp_.Of(*this->left_, *this->mb_) : inner;
        for (unsigned i = 0; i < 4; ++i) {
            const H264Strengths strengths = this->verticalStrengths_[i];
            if (strengths == 0) continue;
            const H264EdgeQp& qp = i == 0 ? outer : inner;
            if (HasLumaEdge(i)) FilterLuma<true>(luma + 4 * i, stride, strengths, qp, 4);
            if (i % 2 == 0) FilterChroma<true>(2 * i, stride, strengths, qp, kChromaDown);
        }
    }

    void FilterHorizontalEdges() {
        Sample* const luma = Plane(0);
        const std::ptrdiff_t stride = Stride();
        const H264EdgeQp inner = qp_.Of(*this->mb_, *this->mb_);
        const H264EdgeQp outer = this->top_ != nullptr ? qp_.Of(*this->top_, *this->mb_) : inner;
        for (unsigned i = 0; i < 4; ++i) {
            const H264Strengths strengths = this->horizontalStrengths_[i];
            if (strengths == 0) continue;
            const H264EdgeQp& qp = i == 0 ? outer : inner;
            if (HasLumaEdge(i)) FilterLuma<false>(luma + 4 * i * stride, stride, strengths, qp, 4);
            // The transform of chroma is 4x4 always: with 16 rows it has all four edges, with 8 rows two.
            if (C == 2 || i % 2 == 0) FilterChroma<false>(kChromaDown * i * stride, stride, strengths, qp, 2);
        }
    }

    template <bool kVertical>
    void FilterLuma(Sample* samples, std::ptrdiff_t stride, H264Strengths strengths, const H264EdgeQp& qp,
                    int segment) const {
        const auto& weak = kVertical ? Filters::kLumaVerticalWeak : Filters::kLumaHorizontalWeak;
        const auto& strong = kVertical ? Filters::kLumaVerticalStrong : Filters::kLumaHorizontalStrong;
        const H264EdgeLimits limits = Limits(qp.luma);
        if (limits.FilterNothing()) return;
        if (HasStrong(strengths)) strong(samples, stride, limits.Strong(strengths), segment, lumaDepth_);
        if (HasWeak(strengths)) weak(samples, stride, limits.Weak(strengths), segment, lumaDepth_);
    }

    /// Filters Cb and Cr at a place in the macroblock.
    template <bool kVertical>
    void FilterChroma(std::ptrdiff_t at, std::ptrdiff_t stride, H264Strengths strengths, const H264EdgeQp& qp,
                      int segment) const {
        const auto& weak = kVertical ? Filters::kChromaVerticalWeak : Filters::kChromaHorizontalWeak;
        const auto& strong = kVertical ? Filters::kChromaVerticalStrong : Filters::kChromaHorizontalStrong;
        Sample* const cb = Plane(1) + at;
        Sample* const cr = Plane(2) + at;
        const H264EdgeLimits ofCb = Limits(qp.chroma[0]), ofCr = Limits(qp.chroma[1]);
        if (ofCb.FilterNothing() && ofCr.FilterNothing()) return;
        if (HasStrong(strengths)) {
            strong(cb, cr, stride, {ofCb.Strong(strengths), ofCr.Strong(strengths)}, segment, chromaDepth_);
        }
        if (HasWeak(strengths)) {
            weak(cb, cr, stride, {ofCb.Weak(strengths), ofCr.Weak(strengths)}, segment, chromaDepth_);
        }
    }

    Sample* Plane(unsigned i) const { return reinterpret_cast<Sample*>(this->planes_[i]); }
    std::ptrdiff_t Stride() const { return this->stride_ / kSampleBytes; }

    /// Samples of chroma that stand beside four rows of luma.
    static constexpr int kChromaDown = C == 2 ? 4 : 2;

    H264QpOfEdges qp_;

private:
    /// Under the 8x8 transform the edges between 4x4 blocks of luma are none.
    bool HasLumaEdge(unsigned i) const { return P == 1 || i % 2 == 0 || this->mb_->transform8x8 == 0; }

    static bool HasStrong(H264Strengths strengths) { return (strengths & kH264StrengthsOf4) != 0; }
    static bool HasWeak(H264Strengths strengths) { return (strengths & kH264StrengthsOf3) != 0; }
    H264EdgeLimits Limits(int qp) const {
        const H264SliceHeader& header = this->slice_->header;
        return FindH264EdgeLimits(qp, header.filterOffsetA, header.filterOffsetB);
    }

    std::uint32_t lumaDepth_ = 8;
    std::uint32_t chromaDepth_ = 8;
};

}  // namespace KorvaneSoftware
