#include "h264/macroblock/neighbours.h"

#include <cstddef>

namespace KorvaneSoftware {
namespace {

constexpr unsigned kLastBlock = 15;

/// The block at the right edge that holds a luma row.
unsigned RightBlock(unsigned row) { return row / 4 * 4 + 3; }

}  // namespace

void FindNeighbours(const H264NeighbourPairs& around, H264Neighbours& found) {
    found.left[0] = found.left[1] = around.left;
    found.top = around.top;
    found.topRight = around.topRight;
    found.corners[0] = {around.topLeft, kLastBlock};
    for (std::uint8_t row = 0; row < 4; ++row) {
        found.leftRows[row] = row;
        if (row > 0) found.corners[row] = {around.left, RightBlock(row * 4 - 1u)};
    }
}

void FindNeighboursMbaff(const H264NeighbourPairs& around, const H264MacroblockRecord* pair, std::size_t stride,
                         bool bottom, bool field, H264Neighbours& found) {
    // Above: the last row of the pair for frame macroblocks, the last of the same parity for those of fields. Of a frame
    // pair both parities take the bottom macroblock, whose last block row holds the last rows of both.
    const auto above = [&](const H264MacroblockRecord* other) -> const H264MacroblockRecord* {
        if (other == nullptr) return nullptr;
        return field && !bottom && other->fieldMb != 0 ? other : other + stride;
    };
    if (!field && bottom) {
        found.top = pair;
        found.topRight = nullptr;
    } else {
        found.top = above(around.top);
        found.topRight = above(around.topRight);
    }

    const H264MacroblockRecord* const left = around.left;
    if (left == nullptr) {
        found.left[0] = found.left[1] = nullptr;
        for (std::uint8_t row = 0; row < 4; ++row) {
            found.leftRows[row] = row;
            found.corners[row] = {};
        }
    } else if ((left->fieldMb != 0) == field) {
        const H264MacroblockRecord* const same = left + (bottom ? stride : 0);
        found.left[0] = found.left[1] = same;
        for (std::uint8_t row = 0; row < 4; ++row) {
            found.leftRows[row] = row;
            if (row > 0) found.corners[row] = {same, RightBlock(row * 4 - 1u)};
        }
        if (!field && bottom) found.corners[0] = {left, kLastBlock};
    } else if (field) {
        // Row r of a field is row 2r or 2r + 1 of the pair.
        for (unsigned half = 0; half < 2; ++half) found.left[half] = left + (half != 0 ? stride : 0);
        for (unsigned row = 0; row < 4; ++row) {
            found.leftRows[row] = static_cast<std::uint8_t>(row % 2 * 2);
            if (row == 0) continue;
            const unsigned inPair = 2 * (4 * row - 1) + (bottom ? 1 : 0);
            found.corners[row] = {left + (inPair >= 16 ? stride : 0), RightBlock(inPair % 16)};
        }
    } else {
        // Row r of the pair is in the top field where r is even: blocks begin there, and the corners above them do not.
        const unsigned first = bottom ? 16 : 0;
        found.left[0] = found.left[1] = left;
        for (unsigned row = 0; row < 4; ++row) {
            found.leftRows[row] = static_cast<std::uint8_t>((first + 4 * row) / 2 / 4);
            if (row > 0) found.corners[row] = {left + stride, RightBlock((first + 4 * row - 1) / 2)};
        }
        if (bottom) found.corners[0] = {left + stride, RightBlock(7)};
    }
    if (field || !bottom) found.corners[0] = {above(around.topLeft), kLastBlock};
}

}  // namespace KorvaneSoftware
