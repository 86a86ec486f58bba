// What the contexts of CABAC take from the macroblocks around, ITU-T H.264 clause 9.3.3.1.1.
#pragma once

#include <cstdint>

#include "h264/macroblock/neighbours.h"
#include "h264/macroblock_record.h"

namespace KorvaneSoftware {

/// 1 for the left neighbour, and 1 or `upper` for the one above, where it is there and the test holds.
template <class Test>
unsigned CountNeighbours(const H264Neighbours& around, Test test, unsigned upper = 1) {
    const H264MacroblockRecord* const left = around.left[0];
    const H264MacroblockRecord* const top = around.top;
    return (left != nullptr && test(*left) ? 1u : 0u) + (top != nullptr && test(*top) ? upper : 0u);
}

inline unsigned SkipIncrement(const H264Neighbours& around) {
    return CountNeighbours(around, [](const H264MacroblockRecord& mb) { return mb.skip != MB_SKIPPED; });
}

inline unsigned IntraTypeIncrement(const H264Neighbours& around) {
    return CountNeighbours(
        around, [](const H264MacroblockRecord& mb) { return mb.mbType != MB_INTRA_4X4 && mb.mbType != MB_INTRA_8X8; });
}

inline unsigned BTypeIncrement(const H264Neighbours& around) {
    return CountNeighbours(around, [](const H264MacroblockRecord& mb) { return mb.mbType != MB_B_DIRECT; });
}

inline unsigned Transform8x8Increment(const H264Neighbours& around) {
    return CountNeighbours(around, [](const H264MacroblockRecord& mb) { return mb.transform8x8 != 0; });
}

/// Records of inter macroblocks and I_PCM have mode 0.
inline unsigned ChromaModeIncrement(const H264Neighbours& around) {
    return CountNeighbours(around, [](const H264MacroblockRecord& mb) { return mb.intraChromaMode != 0; });
}

/// The luma bits of the coded_block_pattern to the left: 1 and 3, beside blocks 0 and 2.
inline unsigned LeftCodedLuma(const H264Neighbours& around) {
    unsigned pattern = 0;
    for (unsigned half = 0; half < 2; ++half) {
        const H264MacroblockRecord* const left = around.left[half];
        const unsigned quarter = (around.leftRows[2 * half] & 2) + 1;
        const unsigned bit = left == nullptr ? 1 : left->codedBlockPattern >> quarter & 1;
        pattern |= bit << (2 * half + 1);
    }
    return pattern;
}

/// Of ref_idx of the 8x8 part. In a frame macroblock beside one of a field in an MBAFF picture, indices count twice
/// there: only those above 1 count here.
inline unsigned RefIdxIncrement(const H264MacroblockRecord& mb, const H264Neighbours& around, unsigned list,
                                unsigned quarter) {
    const auto outside = [&](const H264MacroblockRecord* other, unsigned place) -> unsigned {
        if (other == nullptr) return 0;
        return other->refGreater[list] >> (other->fieldMb > mb.fieldMb ? 4 + place : place) & 1;
    };
    const unsigned own = mb.refGreater[list];
    const unsigned half = quarter >> 1;
    const unsigned left =
        (quarter & 1) != 0 ? own >> (quarter - 1) & 1 : outside(around.left[half], (around.leftRows[2 * half] & 2) + 1);
    const unsigned top = quarter >= 2 ? own >> (quarter - 2) & 1 : outside(around.top, 2 + (quarter & 1));
    return left + 2 * top;
}

/// Sums of the absolute differences of the vectors to the left and above a block, x and y.
struct H264MvdSums {
    unsigned x;
    unsigned y;
};

inline H264MvdSums SumMvd(const H264MacroblockRecord& mb, const H264Neighbours& around, unsigned list, unsigned block) {
    H264MvdSums sums = {};
    const auto add = [&](const H264MacroblockRecord& other, unsigned place) {
        const std::uint8_t* const mvd = other.mvd[list][place];
        sums.x += mvd[0];
        // Rows of a field are twice as far apart.
        sums.y += other.fieldMb == mb.fieldMb ? mvd[1] : mb.fieldMb != 0 ? mvd[1] / 2u : mvd[1] * 2u;
    };
    const unsigned row = block / 4;
    const unsigned column = block % 4;
    const H264BlockPlace left = column > 0 ? H264BlockPlace{&mb, block - 1} : around.Left(row);
    const H264BlockPlace top = row > 0 ? H264BlockPlace{&mb, block - 4} : around.Top(column);
    if (left.mb != nullptr) add(*left.mb, left.block);
    if (top.mb != nullptr) add(*top.mb, top.block);
    return sums;
}

/// Bits of the blocks of a plane, and of those that touch it at the left and above: row by row, eight to a row, the first
/// row and the first bit of each row for the neighbours.
class H264CodedMap {
public:
    void SetTop(std::uint32_t bits) { bits_ |= std::uint64_t{bits} << 1; }
    void SetLeft(unsigned row, unsigned bit) { bits_ |= std::uint64_t{bit} << (8 + 8 * row); }
    void Set(unsigned row, unsigned column) { bits_ |= std::uint64_t{1} << Position(row, column); }
    /// 1 for the block to the left and 2 for that above.
    unsigned Increment(unsigned row, unsigned column) const {
        const unsigned at = Position(row, column);
        return static_cast<unsigned>((bits_ >> (at - 1) & 1) | (bits_ >> (at - 8) & 1) << 1);
    }

private:
    static constexpr unsigned Position(unsigned row, unsigned column) { return 9 + 8 * row + column; }

    std::uint64_t bits_ = 0;
};

}  // namespace KorvaneSoftware
