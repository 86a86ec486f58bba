// The motion layer of a processor set to any macroblock of a picture made by a test.
#pragma once

#include <gtest/gtest.h>

#include "h264/motion/decompressor_template.h"
#include "unit/h264/dice.h"
#include "unit/h264/slow_motion.h"

namespace h264 {

using namespace KorvaneSoftware;

/// Index S stands for: 0 frame, 1 field, 2 MBAFF.
template <unsigned S>
struct TProbeBase;
template <>
struct TProbeBase<0> {
    using Type = CH264Decompressor;
};
template <>
struct TProbeBase<1> {
    using Type = CH264DecompressorField;
};
template <>
struct TProbeBase<2> {
    using Type = CH264DecompressorMBAFF;
};

template <unsigned S>
class TMotionProbe : public TH264DecompressorTemplate<3, S, 1, std::uint8_t, typename TProbeBase<S>::Type> {
    using Base = TH264DecompressorTemplate<3, S, 1, std::uint8_t, typename TProbeBase<S>::Type>;

public:
    /// @param address  of the macroblock, as the standard counts them
    TMotionProbe(CH264Slice& slice, SlowPicture& records, unsigned address) {
        const bool pairs = S == 2;
        const unsigned place = pairs ? address / 2 : address;
        SliceCursor& cursor = this->cursor_;
        cursor.slice = &slice;
        cursor.widthInMbs = records.width;
        cursor.rowHeight = pairs ? 2 : 1;
        cursor.mbX = place % records.width;
        cursor.mbRow = place / records.width * cursor.rowHeight;
        cursor.position = cursor.mbRow * records.width + cursor.mbX;
        const unsigned first = pairs ? records.firstMb / 2 : records.firstMb;
        cursor.firstMb = first / records.width * cursor.rowHeight * records.width + first % records.width;
        cursor.recordStride = records.width;
        cursor.record = &records.records[cursor.mbRow * std::size_t{records.width} + cursor.mbX];
        this->BeginRow();
        if constexpr (pairs) {
            this->SelectMacroblock(address % 2 != 0, records.Mb(address).fieldMb != 0);
        } else {
            this->SelectMacroblock();
        }
    }

    using Base::PredictDirect;
    using Base::PredictSkipP;
    using Base::PredictVector;
    using Base::SetPredictionKinds;
    using Base::SetReference;
    using Base::SetVector;
    H264MacroblockRecord& Mb() { return *this->mb_; }
};

inline SlowVector ToSlow(H264Vector vector) { return {vector.x, vector.y}; }
inline SlowVector VectorOf(const H264MacroblockRecord& mb, unsigned list, unsigned block) {
    return {mb.mv[list][block][0], mb.mv[list][block][1]};
}

/// Small numbers, so that equal references, zero vectors and negative halves are frequent.
inline H264Vector RandomVector(Dice& dice) {
    if (dice.Below(8) == 0) {
        return {static_cast<std::int16_t>(dice() & 0xFFF),
                static_cast<std::int16_t>(-static_cast<int>(dice() & 0x7FF))};
    }
    const auto component = [&] { return static_cast<std::int16_t>(static_cast<int>(dice.Below(7)) - 3); };
    return {component(), component()};
}

/// A macroblock with any motion: intra, or with references by 8x8 part that stay below `references`.
inline void FillRandomly(H264MacroblockRecord& mb, Dice& dice, unsigned references) {
    mb.mbType = dice.Below(6) == 0 ? MB_INTRA_4X4 : MB_B + 12u;
    const bool isIntra = mb.mbType == MB_INTRA_4X4;
    const bool isWhole = dice.Below(3) == 0;
    for (unsigned list = 0; list < 2; ++list) {
        for (unsigned part = 0; part < 4; ++part) {
            const bool isUsed = !isIntra && dice.Below(4) != 0;
            const int refIdx = isUsed ? static_cast<int>(dice.Below(references)) : -1;
            FillPart(mb.refIdx[list], part, isWhole && part > 0 ? mb.refIdx[list][0] : refIdx);
            mb.refPicId[list][part] = -1;
        }
        const H264Vector whole = RandomVector(dice);
        for (unsigned block = 0; block < 16; ++block) {
            H264Vector vector = isWhole ? whole : RandomVector(dice);
            if (mb.refIdx[list][block] < 0) vector = {};
            FillVectors(mb, list, block, 1, 1, vector);
        }
    }
}

}  // namespace h264
