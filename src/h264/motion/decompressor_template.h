// The layer of a processor that finds the motion of inter macroblocks: references, predicted vectors, P_Skip, direct.
#pragma once

#include <cstdint>

#include "h264/macroblock/decompressor.h"
#include "h264/motion/direct_prediction.h"
#include "h264/motion/vector_prediction.h"

namespace KorvaneSoftware {

/// All operations work on the current macroblock, whose head (its type, field flag, slice number) stands.
/// @tparam P       1 below High, 3 for the High family
/// @tparam S       0 frame, 1 field, 2 MBAFF
/// @tparam C       chroma_format_idc, 1 or 2
/// @tparam Sample  of the pictures
/// @tparam Base    CH264Decompressor, CH264DecompressorField or CH264DecompressorMBAFF, as S asks
template <unsigned P, unsigned S, unsigned C, class Sample, class Base>
class TH264DecompressorTemplate : public Base {
protected:
    /// All of P_Skip: the first entry of list 0, one vector, prediction kind, shape 16x16; list 1 is not used.
    void PredictSkipP() {
        H264MacroblockRecord& mb = *this->mb_;
        FillWhole(mb, {{0, PictureId(0, 0), PredictSkipVector<kMbaff>(mb, this->neighbours_)}, {}});
    }

    /// Motion, prediction kinds and shapes of the 8x8 parts whose bits are set; all of them for B_Skip and
    /// B_Direct_16x16. The shape of these is 16x16 (with sub-shapes 8x8) where the macroblock moves as a whole.
    void PredictDirect(unsigned parts) {
        const H264DirectPlace place = {*this->slice_, this->view_, this->mbX_, this->mbY_};
        if (this->slice_->header.directSpatialMvPred) {
            PredictDirectSpatial(place, this->neighbours_, parts, *this->mb_);
        } else {
            PredictDirectTemporal(place, parts, *this->mb_);
        }
    }

    /// The reference of an 8x8 part. All references of a macroblock are set before its first vector is predicted.
    /// @param refIdx  within the active entries, those of the fields in a field macroblock; -1 where the list is not
    ///                used: the part's vectors are zero then
    void SetReference(unsigned list, unsigned part, int refIdx) {
        H264MacroblockRecord& mb = *this->mb_;
        FillPart(mb.refIdx[list], part, refIdx);
        mb.refPicId[list][part] = refIdx < 0 ? std::int16_t{-1} : PictureId(list, refIdx);
        if (refIdx < 0) FillVectors(mb, list, FirstBlockOfPart(part), 2, 2, {});
    }

    /// @param block          the partition's upper left block, by place
    /// @param width, height  of the partition, in blocks
    H264Vector PredictVector(unsigned list, unsigned block, unsigned width, unsigned height) const {
        return KorvaneSoftware::PredictVector<kMbaff>(*this->mb_, this->neighbours_, list, block, width, height);
    }

    void SetVector(unsigned list, unsigned block, unsigned width, unsigned height, H264Vector vector) {
        FillVectors(*this->mb_, list, block, width, height, vector);
    }

    /// From the references, once they stand: of both lists in a B slice; in a P slice list 1 is made unused here.
    void SetPredictionKinds() {
        H264MacroblockRecord& mb = *this->mb_;
        if (this->slice_->header.sliceType != SLICE_B) FillMotion(mb, 1, {});
        for (unsigned part = 0; part < 4; ++part) {
            const unsigned block = FirstBlockOfPart(part);
            FillPart(mb.predictionKind, part,
                     static_cast<int>(PredictionKindOf(mb.refIdx[0][block], mb.refIdx[1][block])));
        }
    }

private:
    static constexpr bool kMbaff = S == 2;

    std::int16_t PictureId(unsigned list, int refIdx) const {
        return this->slice_->references.entries[this->view_][list][refIdx].pictureId;
    }
};

}  // namespace KorvaneSoftware
