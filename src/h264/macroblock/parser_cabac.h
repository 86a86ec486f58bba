// The layer of a processor that reads the elements of macroblocks from CABAC slices, ITU-T H.264 clause 9.3.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "h264/macroblock/cabac_increments.h"
#include "h264/macroblock/parser_base.h"
#include "h264/macroblock/residual_readers.h"
#include "h264/motion/motion_vectors.h"
#include "h264/parsing/cabac_elements.h"
#include "h264/parsing/scan_tables.h"
#include "h264/reconstruction/residual.h"

namespace KorvaneSoftware {

/// Elements are read for the current macroblock, whose neighbours are known; they go into the record where its later
/// contexts need them there.
/// @tparam P, S, C  as of TH264DecompressorTemplate
template <unsigned P, unsigned S, unsigned C, class Sample, class Constructor>
class TH264ParserCABAC : public TH264ParserBase<C, Sample, Constructor> {
    using Base = TH264ParserBase<C, Sample, Constructor>;

protected:
    using Base::mb_;
    using Base::neighbours_;
    using Base::slice_;
    using Base::state_;
    using typename Base::Coefficient;

    void StartSliceData() {
        const unsigned set = slice_->IsIntra() ? 0 : slice_->header.cabacInitIdc + 1;
        StartCabac(state_.cabac, state_.reader, set, state_.sliceQpY);
    }
    void LoadParser() { bins_ = H264CabacReader(state_.cabac); }
    void StoreParser() { bins_.Store(state_.cabac); }

    /// What conceal P and conceal B do: mb_skip_flag is 1 from here on.
    void ConcealSkips() { ConcealCabac(state_.cabac, SliceIsB() ? kSkipContextB : kSkipContextP); }

    bool ReadSkip() {
        if (state_.concealState != CONCEAL_NONE) {
            // Terminating bins wear the state down, so that it would not last for a slice.
            ConcealSkips();
            LoadParser();
        }
        const unsigned increment = SkipIncrement(neighbours_);
        return SliceIsB() ? CabacSkipFlagB(bins_, increment) : CabacSkipFlagP(bins_, increment);
    }
    bool ReadFieldFlag(const H264NeighbourPairs& around) {
        const auto isField = [](const H264MacroblockRecord* pair) { return pair != nullptr && pair->fieldMb != 0; };
        return CabacFieldFlag(bins_, (isField(around.left) ? 1u : 0u) + (isField(around.top) ? 1u : 0u));
    }
    /// mb_type of the slice's own table.
    unsigned ReadMbType() {
        switch (slice_->header.sliceType) {
            case SLICE_P:
                return CabacMbTypeP(bins_);
            case SLICE_B:
                return CabacMbTypeB(bins_, BTypeIncrement(neighbours_));
            default:
                return CabacMbTypeI(bins_, IntraTypeIncrement(neighbours_));
        }
    }
    unsigned ReadSubType() { return SliceIsB() ? CabacSubMbTypeB(bins_) : CabacSubMbTypeP(bins_); }
    bool ReadTransform8x8() { return CabacTransform8x8Flag(bins_, Transform8x8Increment(neighbours_)); }
    unsigned ReadIntraMode(unsigned predicted) { return CabacIntraMode(bins_, predicted); }
    unsigned ReadIntraChromaMode() { return CabacIntraChromaMode(bins_, ChromaModeIncrement(neighbours_)); }

    unsigned ReadCodedBlockPattern() {
        const H264MacroblockRecord* const left = neighbours_.left[0];
        const H264MacroblockRecord* const top = neighbours_.top;
        const unsigned luma =
            CabacCodedLuma(bins_, LeftCodedLuma(neighbours_), top != nullptr ? top->codedBlockPattern : 15);
        const unsigned chroma = CabacCodedChroma(bins_, left != nullptr ? left->codedBlockPattern >> 4 : 0,
                                                 top != nullptr ? top->codedBlockPattern >> 4 : 0);
        return luma | chroma << 4;
    }
    std::int32_t ReadQpDelta(unsigned bdOffset) { return CabacQpDelta(bins_, state_.lastQpDelta != 0, bdOffset); }

    /// @param quarters  the 8x8 parts that the index is for, a bit for each, the lowest the first
    unsigned ReadRefIdx(unsigned list, unsigned firstQuarter, unsigned quarters, unsigned most) {
        const unsigned index = CabacRefIdx(bins_, RefIdxIncrement(*mb_, neighbours_, list, firstQuarter), most);
        const unsigned greater = (index > 0 ? quarters : 0) | (index > 1 ? quarters << 4 : 0);
        mb_->refGreater[list] = static_cast<std::uint8_t>(mb_->refGreater[list] | greater);
        return index;
    }
    /// @param block, width, height  the partition, by the place of its first block and in blocks
    H264Vector ReadMvd(unsigned list, unsigned block, unsigned width, unsigned height) {
        const H264MvdSums sums = SumMvd(*mb_, neighbours_, list, block);
        const std::int32_t x = CabacMvd(bins_, 40, sums.x);
        const std::int32_t y = CabacMvd(bins_, 47, sums.y);
        // Sums of more than 32 are all one, also where half of a value counts.
        const std::uint8_t magnitudes[2] = {static_cast<std::uint8_t>(std::min(std::abs(x), 127)),
                                            static_cast<std::uint8_t>(std::min(std::abs(y), 127))};
        for (unsigned row = 0; row < height; ++row) {
            for (unsigned column = 0; column < width; ++column) {
                std::copy_n(magnitudes, 2, mb_->mvd[list][block + 4 * row + column]);
            }
        }
        return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
    }

    void ReadPcm() {
        const std::uint8_t* const data = bins_.NextByte();
        const std::uint8_t* const end = bins_.End();
        H264BitReader samples(data, static_cast<std::size_t>(end - data));
        this->ReconstructPcm(samples);
        const std::int64_t left = samples.BitsLeft() / 8;
        bins_.Start(left > 0 ? end - left : end, end);
    }

    /// Of the kinds of blocks that coded_block_pattern and the macroblock's type name.
    void ReadResidual() {
        if (this->IsLossless()) {
            ReadBlocks<true>();
        } else {
            ReadBlocks<false>();
        }
    }

    /// Whether the data have ended behind a macroblock. @param mayEnd  whether a slice may end here
    bool DataEnded(bool mayEnd) { return bins_.BitsLeft() < 0 || (mayEnd && CabacEndOfSlice(bins_)); }

private:
    static constexpr unsigned kSkipContextP = 11;
    static constexpr unsigned kSkipContextB = 24;
    using Base::kChromaRows;

    bool SliceIsB() const { return slice_->header.sliceType == SLICE_B; }
    bool IsIntra() const { return (mb_->mbType & kH264InterBits) == 0; }

    /// A neighbour that is not there counts as coded for intra macroblocks.
    unsigned Absent() const { return IsIntra() ? 1 : 0; }
    unsigned DcIncrement(unsigned component) const {
        const auto flag = [&](const H264MacroblockRecord* mb) {
            return mb != nullptr ? mb->codedDc >> component & 1 : Absent();
        };
        return flag(neighbours_.left[0]) | flag(neighbours_.top) << 1;
    }
    H264CodedMap LumaMap() const {
        H264CodedMap map;
        const H264MacroblockRecord* const top = neighbours_.top;
        map.SetTop(top != nullptr ? top->codedLuma >> 12 & 15 : Absent() * 15);
        for (unsigned row = 0; row < 4; ++row) {
            const H264BlockPlace left = neighbours_.Left(row);
            map.SetLeft(row, left.mb != nullptr ? left.mb->codedLuma >> left.block & 1 : Absent());
        }
        return map;
    }
    H264CodedMap ChromaMap(unsigned component) const {
        H264CodedMap map;
        const H264MacroblockRecord* const top = neighbours_.top;
        map.SetTop(top != nullptr ? top->codedChroma[component] >> 2 * (kChromaRows - 1) & 3 : Absent() * 3);
        for (unsigned row = 0; row < kChromaRows; ++row) {
            const H264ChromaPlace left = neighbours_.template LeftChroma<C>(row);
            map.SetLeft(row, left.mb != nullptr ? left.mb->codedChroma[component] >> left.block & 1 : Absent());
        }
        return map;
    }

    template <H264CabacBlock kKind>
    void ReadDc(unsigned component, Coefficient* block, const std::uint8_t* scan) {
        if (!CabacCodedBlockFlag<kKind>(bins_, DcIncrement(component))) return;
        mb_->codedDc |= 1u << component;
        ReadCabacResidual<kKind>(bins_, mb_->fieldMb != 0, TRawCoefficients<Coefficient>{block, scan});
    }
    template <bool kLossless, H264CabacBlock kKind>
    void ReadLuma4x4(const std::uint8_t* scan) {
        H264CodedMap map = LumaMap();
        for (unsigned i = 0; i < 16; ++i) {
            if ((mb_->codedBlockPattern >> i / 4 & 1) == 0) {
                i += 3;
                continue;
            }
            const unsigned place = kH264BlockPlaces[i];
            if (!CabacCodedBlockFlag<kKind>(bins_, map.Increment(place / 4, place % 4))) continue;
            map.Set(place / 4, place % 4);
            mb_->codedLuma |= 1u << place;
            ReadCabacResidual<kKind>(bins_, mb_->fieldMb != 0,
                                     this->template Target4x4<kLossless>(0, this->NextBlock4x4(), scan));
        }
    }
    template <bool kLossless>
    void ReadLuma8x8() {
        const std::uint8_t* const scan = kH264Scan8x8[mb_->fieldMb];
        for (unsigned i = 0; i < 4; ++i) {
            if ((mb_->codedBlockPattern >> i & 1) == 0) continue;
            mb_->codedLuma |= 0x33u << kH264Places8x8[i];
            ReadCabacResidual<H264CabacBlock::LUMA_8X8>(
                bins_, mb_->fieldMb != 0, this->template Target8x8<kLossless>(this->NextBlock8x8(), scan));
        }
    }
    template <bool kLossless>
    void ReadChromaAc(unsigned component, const std::uint8_t* scan) {
        H264CodedMap map = ChromaMap(component);
        for (unsigned i = 0; i < 2 * kChromaRows; ++i) {
            if (!CabacCodedBlockFlag<H264CabacBlock::CHROMA_AC>(bins_, map.Increment(i / 2, i % 2))) continue;
            map.Set(i / 2, i % 2);
            mb_->codedChroma[component] |= 1u << i;
            ReadCabacResidual<H264CabacBlock::CHROMA_AC>(
                bins_, mb_->fieldMb != 0,
                this->template Target4x4<kLossless>(1 + component, this->NextBlock4x4(), scan));
        }
    }
    template <bool kLossless>
    void ReadBlocks() {
        this->BeginResidual();
        const std::uint8_t* const scan = kH264Scan4x4[mb_->fieldMb];
        if (mb_->mbType == MB_INTRA_16X16) {
            ReadDc<H264CabacBlock::LUMA_DC>(0, this->LumaDc(), scan);
            ReadLuma4x4<kLossless, H264CabacBlock::LUMA_AC>(scan + 1);
        } else if (P == 3 && mb_->transform8x8 != 0) {
            if constexpr (P == 3) ReadLuma8x8<kLossless>();
        } else {
            ReadLuma4x4<kLossless, H264CabacBlock::LUMA_4X4>(scan);
        }
        const unsigned chroma = mb_->codedBlockPattern >> 4;
        if (chroma == 0) return;
        constexpr H264CabacBlock kChromaDc = C == 2 ? H264CabacBlock::CHROMA_DC422 : H264CabacBlock::CHROMA_DC420;
        const std::uint8_t* const dcScan = C == 2 ? kH264ScanDc422 : kH264ScanDc420;
        for (unsigned i = 0; i < 2; ++i) ReadDc<kChromaDc>(1 + i, this->ChromaDc(i), dcScan);
        if (chroma == 2) {
            for (unsigned i = 0; i < 2; ++i) ReadChromaAc<kLossless>(i, scan + 1);
        }
    }

    H264CabacReader bins_{state_.cabac};
};

}  // namespace KorvaneSoftware
