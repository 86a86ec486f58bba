// The edges between macroblocks of frames and of fields, beside those of TH264DeblockingTemplate.
#pragma once

#include "h264/deblocking/deblocker_mbaff.h"
#include "h264/deblocking/deblocking_template.h"

namespace KorvaneSoftware {

template <unsigned P, unsigned C, class Sample>
class TH264DeblockingTemplateMBAFF : public TH264DeblockingTemplate<P, 2, C, Sample, CH264DeblockerMBAFF> {
protected:
    using Base = TH264DeblockingTemplate<P, 2, C, Sample, CH264DeblockerMBAFF>;

    void FilterAtCursor() {
        for (const bool bottom : {false, true}) {
            this->SelectMacroblock(bottom);
            this->FindStrengths();
            if (this->mixedLeft_[0] != nullptr) FilterMixedLeft();
            this->FilterVerticalEdges();
            if (this->fieldsAbove_[0] != nullptr) FilterUnderFields();
            this->FilterHorizontalEdges();
        }
    }

private:
    void FilterMixedLeft() {
        const bool isField = this->isField_;
        const std::ptrdiff_t stride = isField ? this->Stride() : 2 * this->Stride();
        for (unsigned i = 0; i < 2; ++i) {
            const auto limits = this->LimitsBetween(*this->mixedLeft_[i], *this->mb_);
            const H264Strengths strengths = this->mixedLeftStrengths_[i];
            // The lower half of a field macroblock, or the other lines of a frame macroblock.
            const std::ptrdiff_t lumaRow = isField ? 8 * i : i;
            const std::ptrdiff_t chromaRow = isField ? 2 * Base::kChromaDown * i : i;
            this->template FilterLuma<true>(this->Plane(0) + lumaRow * this->Stride(), stride, strengths, limits, 2);
            this->template FilterChroma<true>(chromaRow * this->Stride(), stride, strengths, limits,
                                              Base::kChromaDown / 2);
        }
    }

    void FilterUnderFields() {
        const std::ptrdiff_t stride = this->Stride();
        for (unsigned i = 0; i < 2; ++i) {
            const auto limits = this->LimitsBetween(*this->fieldsAbove_[i], *this->mb_);
            const H264Strengths strengths = this->fieldsAboveStrengths_[i];
            const std::ptrdiff_t line = i * stride;
            this->template FilterLuma<false>(this->Plane(0) + line, 2 * stride, strengths, limits, 4);
            this->template FilterChroma<false>(line, 2 * stride, strengths, limits, 2);
        }
    }
};

}  // namespace KorvaneSoftware
