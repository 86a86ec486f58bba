// The layer of a processor that reads the elements of macroblocks from CAVLC slices, ITU-T H.264 clauses 9.1 and 9.2.
#pragma once

#include <cstdint>
#include <cstring>

#include "h264/macroblock/macroblock_types.h"
#include "h264/macroblock/neighbours.h"
#include "h264/macroblock/parser_base.h"
#include "h264/macroblock/residual_readers.h"
#include "h264/motion/motion_vectors.h"
#include "h264/parsing/cavlc_reader.h"
#include "h264/parsing/scan_tables.h"
#include "h264/reconstruction/residual.h"

namespace KorvaneSoftware {

/// Numbers of levels of the blocks of a plane, and of those that touch it at the left and above, laid out as the bits of
/// H264CodedMap.
class H264LevelCounts {
public:
    static constexpr std::uint8_t kAbsent = 0xFF;

    void SetTop(unsigned column, std::uint8_t count) { counts_[1 + column] = count; }
    void SetLeft(unsigned row, std::uint8_t count) { counts_[kRow * (1 + row)] = count; }
    void Set(unsigned row, unsigned column, unsigned count) {
        counts_[Position(row, column)] = static_cast<std::uint8_t>(count);
    }
    unsigned Predict(unsigned row, unsigned column) const {
        const std::uint8_t left = counts_[Position(row, column) - 1];
        const std::uint8_t top = counts_[Position(row, column) - kRow];
        return PredictCoefficientCount(left != kAbsent, left, top != kAbsent, top);
    }

private:
    static constexpr unsigned kRow = 8;
    static constexpr unsigned Position(unsigned row, unsigned column) { return kRow * (1 + row) + 1 + column; }

    std::uint8_t counts_[5 * kRow] = {};
};

/// The sister of TH264ParserCABAC: the same elements, by the same names.
template <unsigned P, unsigned S, unsigned C, class Sample, class Constructor>
class TH264ParserCAVLC : public TH264ParserBase<C, Sample, Constructor> {
    using Base = TH264ParserBase<C, Sample, Constructor>;

protected:
    using Base::mb_;
    using Base::neighbours_;
    using Base::slice_;
    using Base::state_;
    using typename Base::Coefficient;

    void StartSliceData() {}
    void LoadParser() {}
    void StoreParser() {}

    /// What conceal P and conceal B do: the rest of the slice is one run of skipped macroblocks.
    void ConcealSkips() {
        const SliceCursor& cursor = this->cursor_;
        state_.skipRun = cursor.AtEnd() ? 0 : (cursor.end - cursor.position) * cursor.rowHeight;
    }

    bool ReadSkip() {
        if (state_.skipRun == 0 && !state_.previousSkipped) state_.skipRun = state_.reader.ReadUe();
        state_.previousSkipped = state_.skipRun > 0;
        if (state_.previousSkipped) --state_.skipRun;
        return state_.previousSkipped;
    }
    bool ReadFieldFlag(const H264NeighbourPairs&) { return state_.reader.ReadFlag(); }
    unsigned ReadMbType() {
        const std::uint32_t sliceType = slice_->header.sliceType;
        const unsigned first = sliceType == SLICE_P ? kH264PTypeCount : sliceType == SLICE_B ? kH264BTypeCount : 0;
        return ReadBoundedUe(state_.reader, first + kH264IntraPcm, "mb_type");
    }
    unsigned ReadSubType() {
        return ReadBoundedUe(state_.reader, slice_->header.sliceType == SLICE_B ? 12 : 3, "sub_mb_type");
    }
    bool ReadTransform8x8() { return state_.reader.ReadFlag(); }
    unsigned ReadIntraMode(unsigned predicted) {
        if (state_.reader.ReadFlag()) return predicted;
        const unsigned mode = state_.reader.ReadBits(3);
        return mode + (mode >= predicted ? 1 : 0);
    }
    unsigned ReadIntraChromaMode() { return ReadBoundedUe(state_.reader, 3, "intra_chroma_pred_mode"); }
    unsigned ReadCodedBlockPattern() {
        return KorvaneSoftware::ReadCodedBlockPattern(state_.reader, (mb_->mbType & kH264InterBits) == 0);
    }
    std::int32_t ReadQpDelta(unsigned bdOffset) {
        const std::int32_t half = static_cast<std::int32_t>(bdOffset / 2);
        return ReadBoundedSe(state_.reader, -26 - half, 25 + half, "mb_qp_delta");
    }
    unsigned ReadRefIdx(unsigned, unsigned, unsigned, unsigned most) { return ReadTe(state_.reader, most, "ref_idx"); }
    H264Vector ReadMvd(unsigned, unsigned, unsigned, unsigned) {
        const auto component = [&] {
            return static_cast<std::int16_t>(ReadBoundedSe(state_.reader, INT16_MIN, INT16_MAX, "mvd"));
        };
        const std::int16_t x = component();
        return {x, component()};
    }

    void ReadPcm() {
        state_.reader.AlignToByte();
        this->ReconstructPcm(state_.reader);
    }

    void ReadResidual() {
        if (this->IsLossless()) {
            ReadBlocks<true>();
        } else {
            ReadBlocks<false>();
        }
    }

    bool DataEnded(bool) { return CavlcDataEnded(state_.reader); }

private:
    using Base::kChromaRows;

    H264LevelCounts LumaCounts() const {
        H264LevelCounts counts;
        for (unsigned i = 0; i < 4; ++i) {
            const H264BlockPlace top = neighbours_.Top(i);
            const H264BlockPlace left = neighbours_.Left(i);
            counts.SetTop(i, top.mb != nullptr ? top.mb->totalCoeff[0][top.block] : counts.kAbsent);
            counts.SetLeft(i, left.mb != nullptr ? left.mb->totalCoeff[0][left.block] : counts.kAbsent);
        }
        return counts;
    }
    H264LevelCounts ChromaCounts(unsigned component) const {
        H264LevelCounts counts;
        const H264MacroblockRecord* const top = neighbours_.top;
        for (unsigned i = 0; i < 2; ++i) {
            counts.SetTop(i,
                          top != nullptr ? top->totalCoeff[1 + component][2 * (kChromaRows - 1) + i] : counts.kAbsent);
        }
        for (unsigned row = 0; row < kChromaRows; ++row) {
            const H264ChromaPlace left = neighbours_.template LeftChroma<C>(row);
            counts.SetLeft(row, left.mb != nullptr ? left.mb->totalCoeff[1 + component][left.block] : counts.kAbsent);
        }
        return counts;
    }

    template <H264CavlcBlock kKind>
    void ReadDc(unsigned component, unsigned nC, Coefficient* block, const std::uint8_t* scan) {
        const TRawCoefficients<Coefficient> target = {block, scan};
        if (ReadCavlcResidual<kKind>(state_.reader, nC, target) != 0) mb_->codedDc |= 1u << component;
    }
    template <bool kLossless, H264CavlcBlock kKind>
    void ReadLuma4x4(H264LevelCounts& counts, const std::uint8_t* scan) {
        for (unsigned i = 0; i < 16; ++i) {
            if ((mb_->codedBlockPattern >> i / 4 & 1) == 0) {
                i += 3;
                continue;
            }
            const unsigned place = kH264BlockPlaces[i];
            const unsigned count =
                ReadCavlcResidual<kKind>(state_.reader, counts.Predict(place / 4, place % 4),
                                         this->template Target4x4<kLossless>(0, this->FreeBlock4x4(), scan));
            if (count == 0) continue;
            this->TakeBlock4x4();
            counts.Set(place / 4, place % 4, count);
            mb_->codedLuma |= 1u << place;
            mb_->totalCoeff[0][place] = static_cast<std::uint8_t>(count);
        }
    }
    /// Four blocks make one of 8x8; each has its own count.
    template <bool kLossless>
    void ReadLuma8x8(H264LevelCounts& counts) {
        for (unsigned i = 0; i < 4; ++i) {
            if ((mb_->codedBlockPattern >> i & 1) == 0) continue;
            bool coded = false;
            Coefficient* const block = this->FreeBlock8x8();
            for (unsigned k = 0; k < 4; ++k) {
                const unsigned place = kH264BlockPlaces[4 * i + k];
                const std::uint8_t* const scan = kH264CavlcScans8x8.position[mb_->fieldMb][k];
                const unsigned nC = counts.Predict(place / 4, place % 4);
                const unsigned count = ReadCavlcResidual<H264CavlcBlock::FULL>(
                    state_.reader, nC, this->template Target8x8<kLossless>(block, scan));
                coded |= count != 0;
                counts.Set(place / 4, place % 4, count);
                mb_->totalCoeff[0][place] = static_cast<std::uint8_t>(count);
            }
            if (!coded) continue;
            this->TakeBlock8x8();
            mb_->codedLuma |= 0x33u << kH264Places8x8[i];
        }
    }
    template <bool kLossless>
    void ReadChromaAc(unsigned component, const std::uint8_t* scan) {
        H264LevelCounts counts = ChromaCounts(component);
        for (unsigned i = 0; i < 2 * kChromaRows; ++i) {
            const unsigned count = ReadCavlcResidual<H264CavlcBlock::AC>(
                state_.reader, counts.Predict(i / 2, i % 2),
                this->template Target4x4<kLossless>(1 + component, this->FreeBlock4x4(), scan));
            if (count == 0) continue;
            this->TakeBlock4x4();
            counts.Set(i / 2, i % 2, count);
            mb_->codedChroma[component] |= 1u << i;
            mb_->totalCoeff[1 + component][i] = static_cast<std::uint8_t>(count);
        }
    }
    template <bool kLossless>
    void ReadBlocks() {
        this->BeginResidual();
        const std::uint8_t* const scan = kH264Scan4x4[mb_->fieldMb];
        H264LevelCounts counts = LumaCounts();
        if (mb_->mbType == MB_INTRA_16X16) {
            ReadDc<H264CavlcBlock::FULL>(0, counts.Predict(0, 0), this->LumaDc(), scan);
            ReadLuma4x4<kLossless, H264CavlcBlock::AC>(counts, scan + 1);
        } else if (P == 3 && mb_->transform8x8 != 0) {
            if constexpr (P == 3) ReadLuma8x8<kLossless>(counts);
        } else {
            ReadLuma4x4<kLossless, H264CavlcBlock::FULL>(counts, scan);
        }
        const unsigned chroma = mb_->codedBlockPattern >> 4;
        if (chroma == 0) return;
        constexpr H264CavlcBlock kChromaDc = C == 2 ? H264CavlcBlock::DC422 : H264CavlcBlock::DC420;
        const std::uint8_t* const dcScan = C == 2 ? kH264ScanDc422 : kH264ScanDc420;
        for (unsigned i = 0; i < 2; ++i) ReadDc<kChromaDc>(1 + i, 0, this->ChromaDc(i), dcScan);
        if (chroma == 2) {
            for (unsigned i = 0; i < 2; ++i) ReadChromaAc<kLossless>(i, scan + 1);
        }
    }
};

}  // namespace KorvaneSoftware
