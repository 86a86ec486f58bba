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

    /// Limits of an edge of Y, Cb and Cr.
    struct Limits {
        H264EdgeLimits luma;
        H264EdgeLimits chroma[2];
    };
    Limits LimitsBetween(const H264MacroblockRecord& p, const H264MacroblockRecord& q) const {
        const H264EdgeQp qp = qp_.Of(p, q);
        const H264SliceHeader& header = this->slice_->header;
        const auto find = [&](int of) { return FindH264EdgeLimits(of, header.filterOffsetA, header.filterOffsetB); };
        return {find(qp.luma), {find(qp.chroma[0]), find(qp.chroma[1])}};
    }

    void FilterAtCursor() {
        this->SelectMacroblock();
        this->FindStrengths();
        FilterVerticalEdges();
        FilterHorizontalEdges();
    }

    void FilterVerticalEdges() {
        const auto filter = [&](unsigned i, const Limits& limits) {
            const H264Strengths strengths = this->verticalStrengths_[i];
            if (HasLumaEdge(i)) FilterLuma<true>(Plane(0) + 4 * i, Stride(), strengths, limits, 4);
            if (i % 2 == 0) FilterChroma<true>(2 * i, Stride(), strengths, limits, kChromaDown);
        };
        FilterEdges(this->edges_ & 0xF, this->left_, filter);
    }

    void FilterHorizontalEdges() {
        const std::ptrdiff_t stride = Stride();
        const auto filter = [&](unsigned i, const Limits& limits) {
            const H264Strengths strengths = this->horizontalStrengths_[i];
            if (HasLumaEdge(i)) FilterLuma<false>(Plane(0) + 4 * i * stride, stride, strengths, limits, 4);
            // The transform of chroma is 4x4 always: with 16 rows it has all four edges, with 8 rows two.
            if (C == 2 || i % 2 == 0) FilterChroma<false>(kChromaDown * i * stride, stride, strengths, limits, 2);
        };
        FilterEdges(this->edges_ >> 4, this->top_, filter);
    }

    template <bool kVertical>
    void FilterLuma(Sample* samples, std::ptrdiff_t stride, H264Strengths strengths, const Limits& limits,
                    int segment) const {
        const auto& weak = kVertical ? Filters::kLumaVerticalWeak : Filters::kLumaHorizontalWeak;
        const auto& strong = kVertical ? Filters::kLumaVerticalStrong : Filters::kLumaHorizontalStrong;
        if (limits.luma.FilterNothing()) return;
        if (HasStrong(strengths)) strong(samples, stride, limits.luma.Strong(strengths), segment, lumaDepth_);
        if (HasWeak(strengths)) weak(samples, stride, limits.luma.Weak(strengths), segment, lumaDepth_);
    }

    /// Filters Cb and Cr at a place in the macroblock.
    template <bool kVertical>
    void FilterChroma(std::ptrdiff_t at, std::ptrdiff_t stride, H264Strengths strengths, const Limits& limits,
                      int segment) const {
        const auto& weak = kVertical ? Filters::kChromaVerticalWeak : Filters::kChromaHorizontalWeak;
        const auto& strong = kVertical ? Filters::kChromaVerticalStrong : Filters::kChromaHorizontalStrong;
        Sample* const cb = Plane(1) + at;
        Sample* const cr = Plane(2) + at;
        const auto& [ofCb, ofCr] = limits.chroma;
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

private:
    /// Under the 8x8 transform the edges between 4x4 blocks of luma are none.
    bool HasLumaEdge(unsigned i) const { return P == 1 || i % 2 == 0 || this->mb_->transform8x8 == 0; }

    static bool HasStrong(H264Strengths strengths) { return (strengths & kH264StrengthsOf4) != 0; }
    static bool HasWeak(H264Strengths strengths) { return (strengths & kH264StrengthsOf3) != 0; }
    /// Calls `filter(edge, limits)` for the edges of a mask, of which the first is that to a neighbour.
    template <class Filter>
    void FilterEdges(std::uint32_t edges, const H264MacroblockRecord* neighbour, Filter filter) const {
        if ((edges & 1) != 0) filter(0, LimitsBetween(*neighbour, *this->mb_));
        if (edges <= 1) return;
        const Limits inner = LimitsBetween(*this->mb_, *this->mb_);
        for (unsigned i = 1; i < 4; ++i)
            if ((edges >> i & 1) != 0) filter(i, inner);
    }

    H264QpOfEdges qp_;
    std::uint32_t lumaDepth_ = 8;
    std::uint32_t chromaDepth_ = 8;
};

}  // namespace KorvaneSoftware
