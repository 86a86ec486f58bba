#include "dv/dv_placement.h"

namespace KorvaneSoftware {

namespace {

// Super block column of each place of a segment: the five macroblocks come from all over the picture.
constexpr unsigned kColumn[kSegmentMacroblocks] = {2, 1, 3, 0, 4};

MacroblockPlace At(unsigned x, unsigned y, MacroblockShape shape) {
    return {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y), shape};
}

// Walks `n` steps down and up columns of `height` macroblocks.
struct ColumnWalk {
    unsigned column;
    unsigned row;
};
constexpr ColumnWalk WalkColumns(unsigned n, unsigned height) {
    const unsigned column = n / height;
    const unsigned step = n % height;
    return {column, column % 2 == 0 ? step : height - 1 - step};
}

// 25 and 50 Mbit, IEC 61834-2 and SMPTE 314M: super blocks of 27 macroblocks and 48 lines (24 at 50 Mbit, where the two
// channels share a row of super blocks), one row of them for each sequence of a channel.
MacroblockPlace PlaceSd(const DvStream& stream, unsigned sequence, unsigned k, unsigned i) {
    constexpr unsigned kRowBase[kSegmentMacroblocks] = {2, 6, 8, 0, 4};
    const unsigned n = stream.sequencesPerChannel;
    const unsigned channel = sequence / n;
    const unsigned top = 48 * ((sequence % n + kRowBase[i]) % n) + 24 * channel;
    if (stream.sampling == DvSampling::k411) {
        // Columns of six macroblocks of 32x8 pixels; four and a half of them make a super block. Those of odd columns
        // begin with the half. The last column of the picture has the same area in 16x16.
        constexpr unsigned kLeft[5] = {0, 128, 288, 416, 576};
        const unsigned left = kLeft[kColumn[i]];
        if (i == 4 && k >= 24) return At(left + 128, top + 16 * (k - 24), MacroblockShape::k16x16);
        const ColumnWalk walk = WalkColumns(kColumn[i] % 2 == 0 ? k : k + 3, 6);
        return At(left + 32 * walk.column, top + 8 * walk.row, MacroblockShape::k32x8);
    }
    const ColumnWalk walk = WalkColumns(k, 3);
    const unsigned x = 144 * kColumn[i] + 16 * walk.column;
    if (stream.sampling == DvSampling::k420) return At(x, top + 16 * walk.row, MacroblockShape::k16x16);
    return At(x, top + 8 * walk.row, MacroblockShape::k16x8);
}

// SMPTE 370M, in units of 16 pixels. Segments are counted through a channel, and each next one takes the super block
// row below. Channels 0 and 2 have the left half of a super block, 1 and 3 the right one.

MacroblockPlace At16(unsigned column, unsigned row) { return At(16 * column, 16 * row, MacroblockShape::k16x16); }

constexpr unsigned kRowBase5[kSegmentMacroblocks] = {1, 3, 4, 0, 2};

// 1080 lines at 60 Hz: five rows of super blocks of 18 by 12, from row 4 down; channels 2 and 3 have the odd rows. The
// last super block column is 10 wider than the picture. Those stand for the four rows at the top and the three and a
// half at the bottom, ten at a time.
MacroblockPlace Place1080At60(unsigned channel, unsigned n, unsigned i) {
    const unsigned cell = n / 5;
    const unsigned column = 18 * kColumn[i] + 9 * (channel % 2) + cell % 9;
    const unsigned row = 12 * ((n + kRowBase5[i] + 2 * channel) % 5) + 2 * (cell / 9) + channel / 2;
    if (column < 80) return At16(column, row + 4);
    const unsigned spare = column - 80;
    if (row < 32) return At16(10 * (row / 4) + spare, row % 4);
    if (row < 56) return At16(10 * ((row - 32) / 3) + spare, 64 + (row - 32) % 3);
    return At(32 * (10 * (row - 56) + spare), 1072, MacroblockShape::k32x8);
}

// 1080 lines at 50 Hz: eleven rows of super blocks of 18 by 6, from row 1 down. The twelfth sequence of channel 0 holds
// the row above them and the half row below.
MacroblockPlace Place1080At50(unsigned channel, unsigned n, unsigned i) {
    constexpr unsigned kRowBase[kSegmentMacroblocks] = {2, 6, 8, 0, 4};
    constexpr unsigned kRegular = 11 * kSegmentsPerSequence;
    if (n < kRegular) {
        const unsigned cell = n / 11;
        const unsigned column = 18 * kColumn[i] + 9 * (channel % 2) + cell % 9;
        const unsigned row = 6 * ((n + kRowBase[i] + 4 * channel) % 11) + 2 * (cell / 9) + channel / 2;
        return At16(column, row + 1);
    }
    const unsigned rest = n - kRegular + kSegmentsPerSequence * i;
    if (rest < 90) return At16(rest, 0);
    return At(32 * (rest - 90), 1072, MacroblockShape::k32x8);
}

// 720 lines: five rows of super blocks of 12 by 9. The four channels belong to two frames.
MacroblockPlace Place720(unsigned channel, unsigned n, unsigned i) {
    const unsigned cell = n / 5;
    const unsigned column = 12 * kColumn[i] + 6 * (channel % 2) + cell % 6;
    return At16(column, 9 * ((n + kRowBase5[i] + 2 * channel) % 5) + cell / 6);
}

}  // namespace

bool HasMacroblocks(const DvStream& stream, unsigned sequence) {
    const unsigned inChannel = sequence % stream.sequencesPerChannel;
    if (stream.mode == DV_MODE_1080_50) return inChannel < 11 || sequence == 11;
    if (stream.mode == DV_MODE_720_50) return inChannel < 10;
    return true;
}

MacroblockPlace PlaceMacroblock(const DvStream& stream, unsigned sequence, unsigned segment, unsigned i,
                                unsigned phase) {
    if (!stream.IsHd()) return PlaceSd(stream, sequence, segment, i);
    const unsigned channel = sequence / stream.sequencesPerChannel + phase;
    const unsigned n = sequence % stream.sequencesPerChannel * kSegmentsPerSequence + segment;
    if (stream.mode == DV_MODE_1080_60) return Place1080At60(channel, n, i);
    if (stream.mode == DV_MODE_1080_50) return Place1080At50(channel, n, i);
    return Place720(channel, n, i);
}

}  // namespace KorvaneSoftware
