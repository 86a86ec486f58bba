// The layer of a processor that predicts samples from other pictures.
#pragma once

#include "h264/picture.h"
#include "h264/reconstruction/inter_blocks.h"

namespace KorvaneSoftware {

/// S is 0 for frames, 1 for fields and 2 for MBAFF; C is the chroma format, 1 or 2. Decompressor has found references and
/// vectors.
template <unsigned S, unsigned C, class Sample, class Decompressor>
class TH264MotionCompensation : public Decompressor {
protected:
    static constexpr unsigned kChromaFormat = C;

    /// Predicts all parts of the current macroblock, straight into the picture.
    void PredictInter() {
        const CH264Picture& picture = *this->picture_;
        H264InterMacroblock macroblock = {};
        macroblock.slice = this->slice_;
        macroblock.mb = this->mb_;
        macroblock.view = S == 2 ? this->view_ : VIEW_PICTURE;
        macroblock.isField = S == 1 || (S == 2 && this->view_ != VIEW_PICTURE);
        macroblock.isBottom = S == 1 ? picture.bottomField : S == 2 && this->view_ == VIEW_BOTTOM_FIELD_MB;
        macroblock.x = static_cast<int>(this->mbX_ * 16);
        macroblock.y = static_cast<int>(this->mbY_ * 16);
        for (unsigned i = 0; i < 3; ++i) macroblock.planes[i] = this->planes_[i];
        macroblock.stride = this->stride_;
        macroblock.lumaBitDepth = 8 + (sizeof(Sample) == 1 ? 0 : picture.sps.bitDepthLumaMinus8);
        macroblock.chromaBitDepth = 8 + (sizeof(Sample) == 1 ? 0 : picture.sps.bitDepthChromaMinus8);
        TH264InterBlocks<Sample, C>::Predict(macroblock);
    }
};

}  // namespace KorvaneSoftware
