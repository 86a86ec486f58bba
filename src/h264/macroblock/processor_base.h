// The macroblock layer, ITU-T H.264 clause 7.3.5: the order of its elements, which both entropy codes share.
#pragma once

#include <bit>
#include <cstdint>

#include "h264/macroblock/intra_modes.h"
#include "h264/macroblock/macroblock_types.h"
#include "h264/macroblock/record_head.h"
#include "h264/motion/motion_vectors.h"
#include "h264/processor.h"
#include "h264/reconstruction/residual.h"

namespace KorvaneSoftware {

/// Reads and reconstructs single macroblocks, which the row loops above select, and offers the pipeline what all
/// processors have in common. The entropy code is the parser's, so that both forms of a row are one.
/// @tparam P       1 below High, 3 for the High family
/// @tparam Parser  TH264ParserCABAC or TH264ParserCAVLC
template <unsigned P, class Parser>
class TH264ProcessorBase : public Parser, public IH264Processor {
public:
    Status Initialize() override { return this->InitializeConstructor(); }
    void SetState(const H264SliceState& state) override {
        state_ = state;
        slice_ = state.slice;
    }
    const H264SliceState& GetState() const override { return state_; }
    void SetCursor(const SliceCursor& cursor) override { cursor_ = cursor; }
    const SliceCursor& GetCursor() const override { return cursor_; }
    void ConcealP() override { this->ConcealSkips(); }
    void ConcealB() override { this->ConcealSkips(); }
    void DecodeRowICavlc() override { DecodeRow(); }
    void DecodeRowPCavlc() override { DecodeRow(); }
    void DecodeRowBCavlc() override { DecodeRow(); }
    void DecodeRowICabac() override { DecodeRow(); }
    void DecodeRowPCabac() override { DecodeRow(); }
    void DecodeRowBCabac() override { DecodeRow(); }

protected:
    using Parser::cursor_;
    using Parser::mb_;
    using Parser::neighbours_;
    using Parser::picture_;
    using Parser::slice_;
    using Parser::state_;

    /// Takes the slice up where the cursor stands.
    void BeginRow() {
        Parser::BeginRow();
        const bool starts = cursor_.position == cursor_.firstMb && state_.concealState == CONCEAL_NONE;
        if (starts) this->StartSliceData();
        this->LoadParser();
        this->SetQp(state_.sliceQpY);
    }
    /// Takes the cursor one macroblock on, or one pair.
    void Step(std::size_t sampleSize) {
        ++cursor_.position;
        ++cursor_.mbX;
        ++cursor_.record;
        cursor_.planes[0] += 16 * sampleSize;
        cursor_.planes[1] += 8 * sampleSize;
        cursor_.planes[2] += 8 * sampleSize;
    }
    void EndRow() {
        this->StoreParser();
        if (cursor_.mbX == cursor_.widthInMbs) StartNextRow(cursor_);
    }

    bool IsIntraSlice() const { return slice_->header.sliceType == SLICE_I; }
    bool IsConcealed() const { return state_.concealState != CONCEAL_NONE; }

    /// Behind each macroblock. @param mayEnd  whether a slice may end there: not inside a pair
    void TestForEnd(bool mayEnd) {
        if (IsConcealed() || !this->DataEnded(mayEnd)) return;
        state_.concealState = CONCEAL_DATA_ENDED;
        if (!IsIntraSlice()) this->ConcealSkips();
    }

    void BeginMacroblock(bool field) { BeginRecord(*mb_, field, state_.sliceQpY, slice_->number); }

    void DecodeSkipped() {
        state_.lastQpDelta = 0;
        mb_->skip = MB_SKIPPED;
        if (slice_->header.sliceType == SLICE_B) {
            SetInterRecord(*mb_, MB_B_DIRECT, SHAPE_QUARTERS);
            this->PredictDirect(kAllQuarters);
        } else {
            SetInterRecord(*mb_, MB_P + kH264ShapeCodes[SHAPE_WHOLE], SHAPE_WHOLE);
            this->PredictSkipP();
        }
        this->Reconstruct();
    }

    /// Of an intra slice whose data have ended: the samples stay as they are.
    void RecordLost() { SetLostRecord(*mb_); }

    void DecodeCoded() {
        const unsigned type = this->ReadMbType();
        switch (slice_->header.sliceType) {
            case SLICE_P:
                return type < kH264PTypeCount ? DecodeInter(kH264PTypes[type], MB_P, type == kH264P8x8Ref0)
                                              : DecodeIntra(type - kH264PTypeCount);
            case SLICE_B:
                if (type == kH264BDirect) return DecodeDirect();
                return type < kH264BTypeCount ? DecodeInter(kH264BTypes[type], MB_B, false)
                                              : DecodeIntra(type - kH264BTypeCount);
            default:
                return DecodeIntra(type);
        }
    }

private:
    /// From the cursor's place to the end of the row or of the slice.
    virtual void DecodeRow() = 0;

    static constexpr unsigned kAllQuarters = 15;

    bool HasTransform8x8() const { return P == 3 && slice_->pps.transform8x8Mode; }

    void DecodeIntra(unsigned type) {
        if (type == kH264IntraPcm) return DecodePcm();
        if (type == kH264IntraNxN) {
            mb_->transform8x8 = HasTransform8x8() && this->ReadTransform8x8() ? 1 : 0;
            if (mb_->transform8x8 != 0) {
                SetIntraRecord(*mb_, MB_INTRA_8X8, SHAPE_QUARTERS);
            } else {
                SetIntraRecord(*mb_, MB_INTRA_4X4, SHAPE_INTRA_4X4);
            }
            ReadIntraModes();
        } else {
            SetIntraRecord(*mb_, MB_INTRA_16X16, SHAPE_WHOLE);
            mb_->intraModes[0] = static_cast<std::int8_t>(Intra16x16Mode(type));
        }
        mb_->intraChromaMode = static_cast<std::uint8_t>(this->ReadIntraChromaMode());
        if (type == kH264IntraNxN) {
            mb_->codedBlockPattern = this->ReadCodedBlockPattern();
            DecodeResidual(mb_->codedBlockPattern != 0);
        } else {
            mb_->codedBlockPattern = Intra16x16Pattern(type);
            DecodeResidual(true);
        }
        this->Reconstruct();
    }

    void ReadIntraModes() {
        const bool constrained = slice_->pps.constrainedIntraPred;
        const auto read = [&](unsigned block) {
            return static_cast<std::int8_t>(
                this->ReadIntraMode(PredictIntraMode(*mb_, neighbours_, block, constrained)));
        };
        if (mb_->transform8x8 != 0) {
            for (unsigned part = 0; part < 4; ++part) FillPart(mb_->intraModes, part, read(FirstBlockOfPart(part)));
        } else {
            for (const std::uint8_t block : kH264BlockPlaces) mb_->intraModes[block] = read(block);
        }
    }

    void DecodePcm() {
        SetPcmRecord(*mb_);
        state_.lastQpDelta = 0;
        this->ReadPcm();
    }

    /// mb_qp_delta and residual of a macroblock that has them.
    void DecodeResidual(bool present) {
        if (!present) {
            state_.lastQpDelta = 0;
            return;
        }
        const std::int32_t bdOffset = static_cast<std::int32_t>(6 * picture_->sps.bitDepthLumaMinus8);
        const std::int32_t delta = this->ReadQpDelta(static_cast<unsigned>(bdOffset));
        state_.lastQpDelta = delta;
        if (delta != 0) {
            const std::int32_t range = 52 + bdOffset;
            state_.sliceQpY = (state_.sliceQpY + delta + range + bdOffset) % range - bdOffset;
            mb_->qp = static_cast<std::int8_t>(state_.sliceQpY);
            this->SetQp(state_.sliceQpY);
        }
        this->ReadResidual();
    }

    /// What follows the motion of a macroblock. @param mayBe8x8  whether no part is smaller than 8x8
    void FinishInter(bool mayBe8x8) {
        mb_->codedBlockPattern = this->ReadCodedBlockPattern();
        if (mayBe8x8 && HasTransform8x8() && (mb_->codedBlockPattern & 15) != 0) {
            mb_->transform8x8 = this->ReadTransform8x8() ? 1 : 0;
        }
        DecodeResidual(mb_->codedBlockPattern != 0);
        this->Reconstruct();
    }

    void DecodeDirect() {
        SetInterRecord(*mb_, MB_B_DIRECT, SHAPE_QUARTERS);
        mb_->skip = MB_B_DIRECT_INFERRED;
        this->PredictDirect(kAllQuarters);
        FinishInter(picture_->sps.direct8x8Inference);
    }

    void DecodeInter(const H264InterType& type, std::uint32_t base, bool firstReferenceOnly) {
        SetInterRecord(*mb_, base + kH264ShapeCodes[type.shape], type.shape);
        if (type.shape == SHAPE_QUARTERS) {
            FinishInter(DecodeQuarters(firstReferenceOnly));
        } else {
            DecodeParts(type);
            FinishInter(true);
        }
    }

    /// Reads a reference, where there is a choice, and sets it for the 8x8 parts whose bits are set.
    void DecodeReference(unsigned list, unsigned quarters, bool isUsed, bool isRead) {
        int index = -1;
        if (isUsed) {
            const unsigned count = slice_->ReferenceCount(list) * (picture_->mbaff && mb_->fieldMb != 0 ? 2 : 1);
            const unsigned first = static_cast<unsigned>(std::countr_zero(quarters));
            index = isRead && count > 1 ? static_cast<int>(this->ReadRefIdx(list, first, quarters, count - 1)) : 0;
        }
        for (unsigned part = 0; part < 4; ++part) {
            if ((quarters >> part & 1) != 0) this->SetReference(list, part, index);
        }
    }
    void DecodeVector(unsigned list, unsigned block, unsigned width, unsigned height) {
        const H264Vector predicted = this->PredictVector(list, block, width, height);
        const H264Vector difference = this->ReadMvd(list, block, width, height);
        const H264Vector vector = {static_cast<std::int16_t>(predicted.x + difference.x),
                                   static_cast<std::int16_t>(predicted.y + difference.y)};
        this->SetVector(list, block, width, height, vector);
    }

    unsigned ListCount() const { return slice_->header.sliceType == SLICE_B ? 2 : 1; }

    /// One or two parts.
    void DecodeParts(const H264InterType& type) {
        const unsigned count = type.shape == SHAPE_WHOLE ? 1 : 2;
        const unsigned width = type.shape == SHAPE_COLUMNS ? 2 : 4;
        const unsigned height = type.shape == SHAPE_ROWS ? 2 : 4;
        const unsigned step = type.shape == SHAPE_ROWS ? 8 : 2;
        for (unsigned list = 0; list < ListCount(); ++list) {
            for (unsigned part = 0; part < count; ++part) {
                DecodeReference(list, kH264QuartersOfPart[type.shape][part], type.Uses(part, list), true);
            }
        }
        this->SetPredictionKinds();
        for (unsigned list = 0; list < ListCount(); ++list) {
            for (unsigned part = 0; part < count; ++part) {
                if (type.Uses(part, list)) DecodeVector(list, part * step, width, height);
            }
        }
    }

    /// Four parts with shapes of their own. @return whether none has parts smaller than 8x8
    bool DecodeQuarters(bool firstReferenceOnly) {
        const H264SubType* types[4];
        unsigned direct = 0;
        bool noneSmaller = true;
        const bool isB = slice_->header.sliceType == SLICE_B;
        for (unsigned part = 0; part < 4; ++part) {
            const unsigned type = this->ReadSubType();
            types[part] = isB ? &kH264BSubTypes[type] : &kH264PSubTypes[type];
            mb_->subShapes[part] = types[part]->shape;
            if (types[part]->IsDirect()) {
                direct |= 1u << part;
                noneSmaller = noneSmaller && picture_->sps.direct8x8Inference;
            } else {
                noneSmaller = noneSmaller && types[part]->shape == SHAPE_WHOLE;
            }
        }
        if (direct != 0) this->PredictDirect(direct);
        for (unsigned list = 0; list < ListCount(); ++list) {
            for (unsigned part = 0; part < 4; ++part) {
                if (!types[part]->IsDirect()) {
                    DecodeReference(list, 1u << part, types[part]->Uses(list), !firstReferenceOnly);
                }
            }
        }
        this->SetPredictionKinds();
        for (unsigned list = 0; list < ListCount(); ++list) {
            for (unsigned part = 0; part < 4; ++part) {
                if (types[part]->Uses(list)) DecodeSubVectors(list, FirstBlockOfPart(part), types[part]->shape);
            }
        }
        return noneSmaller;
    }
    void DecodeSubVectors(unsigned list, unsigned first, H264Shape shape) {
        const unsigned width = shape == SHAPE_COLUMNS || shape == SHAPE_QUARTERS ? 1 : 2;
        const unsigned height = shape == SHAPE_ROWS || shape == SHAPE_QUARTERS ? 1 : 2;
        for (unsigned y = 0; y < 2; y += height) {
            for (unsigned x = 0; x < 2; x += width) DecodeVector(list, first + 4 * y + x, width, height);
        }
    }
};

}  // namespace KorvaneSoftware
