// Processors of MBAFF frames: the loop over the pairs of a row.
#pragma once

#include <cstdint>

#include "h264/macroblock/processor_base.h"

namespace KorvaneSoftware {

/// @tparam Sample  of the pictures
template <unsigned P, class Sample, class Parser>
class TH264ProcessorMBAFF final : public TH264ProcessorBase<P, Parser> {
private:
    using Base = TH264ProcessorBase<P, Parser>;
    using Base::cursor_;
    using Base::mb_;

    void DecodeRow() override {
        this->BeginRow();
        const bool intra = this->IsIntraSlice();
        while (cursor_.mbX < cursor_.widthInMbs && !cursor_.AtEnd()) {
            around_ = this->PairsAround(2);
            if (intra) {
                DecodeIntraPair();
            } else {
                DecodeInterPair();
            }
            this->Step(sizeof(Sample));
            this->TestForEnd(true);
        }
        this->EndRow();
    }

    void Select(bool bottom, bool field) {
        this->SelectMacroblock(bottom, field);
        this->BeginMacroblock(field);
    }

    /// What a pair is taken for that does not say, and until it does: as the one to the left, or the one above.
    bool InferField() const {
        const H264MacroblockRecord* const like = around_.left != nullptr ? around_.left : around_.top;
        return like != nullptr && like->fieldMb != 0;
    }

    void DecodeIntraPair() {
        const bool field = this->IsConcealed() ? InferField() : this->ReadFieldFlag(around_);
        for (const bool bottom : {false, true}) {
            Select(bottom, field);
            if (this->IsConcealed()) {
                this->RecordLost();
            } else {
                this->DecodeCoded();
            }
            if (!bottom) this->TestForEnd(false);
        }
    }

    /// The flag of the pair stands before its first macroblock that is not skipped, so that of a skipped top one with a
    /// bottom one that is not comes late: behind the skip flags of both.
    void DecodeInterPair() {
        bool field = InferField();
        Select(false, field);
        const bool topSkipped = this->ReadSkip();
        bool bottomSkipped = false;
        if (topSkipped) {
            mb_->skip = MB_SKIPPED;
            Select(true, field);
            bottomSkipped = this->ReadSkip();
            if (!bottomSkipped) field = this->ReadFieldFlag(around_);
            Select(false, field);
            this->DecodeSkipped();
        } else {
            field = this->ReadFieldFlag(around_);
            Select(false, field);
            this->DecodeCoded();
        }
        this->TestForEnd(false);

        Select(true, field);
        if (!topSkipped || this->IsConcealed()) bottomSkipped = this->ReadSkip();
        if (bottomSkipped) {
            this->DecodeSkipped();
        } else {
            this->DecodeCoded();
        }
    }

    H264NeighbourPairs around_ = {};
};

}  // namespace KorvaneSoftware
