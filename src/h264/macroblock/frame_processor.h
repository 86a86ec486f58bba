// Processors of frames without MBAFF and of fields: the loop over the macroblocks of a row.
#pragma once

#include <cstdint>

#include "h264/macroblock/processor_base.h"

namespace KorvaneSoftware {

/// @tparam Sample  of the pictures
template <unsigned P, class Sample, class Parser>
class TH264Processor final : public TH264ProcessorBase<P, Parser> {
private:
    using Base = TH264ProcessorBase<P, Parser>;
    using Base::cursor_;

    void DecodeRow() override {
        this->BeginRow();
        const bool field = this->picture_->fieldPic;
        const bool intra = this->IsIntraSlice();
        while (cursor_.mbX < cursor_.widthInMbs && !cursor_.AtEnd()) {
            this->SelectMacroblock();
            this->BeginMacroblock(field);
            if (intra && this->IsConcealed()) {
                this->RecordLost();
            } else if (!intra && this->ReadSkip()) {
                this->DecodeSkipped();
            } else {
                this->DecodeCoded();
            }
            this->Step(sizeof(Sample));
            this->TestForEnd(true);
        }
        this->EndRow();
    }
};

}  // namespace KorvaneSoftware
