// Motion prediction once more, the slow and plain way: by macroblock addresses and luma locations, clause by clause of
// ITU-T H.264, one location at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "h264/macroblock_record.h"

namespace h264 {

using KorvaneSoftware::H264MacroblockRecord;

/// A vector that may be any integer.
struct SlowVector {
    int x = 0;
    int y = 0;
    bool operator==(const SlowVector&) const = default;
};

/// refIdx -2: not available; -1: the list is not used.
struct SlowNeighbour {
    int refIdx = -2;
    SlowVector vector;
};

/// A picture's records by macroblock address: raster order, in MBAFF two by two.
struct SlowPicture {
    unsigned width = 0;
    unsigned height = 0;
    bool mbaff = false;
    unsigned firstMb = 0;  ///< Address of the first macroblock of the current slice.
    std::vector<H264MacroblockRecord> records;

    SlowPicture(unsigned columns, unsigned rows, bool pairs)
        : width(columns), height(rows), mbaff(pairs), records(columns * rows) {}

    std::size_t IndexOf(unsigned address) const {
        if (!mbaff) return address;
        return (address / 2 / width * 2 + address % 2) * std::size_t{width} + address / 2 % width;
    }
    H264MacroblockRecord& Mb(unsigned address) { return records[IndexOf(address)]; }
    const H264MacroblockRecord& Mb(unsigned address) const { return records[IndexOf(address)]; }
};

/// A block of 4x4 samples, or none.
struct SlowBlock {
    int address = -1;
    unsigned block = 0;
};

/// Clause 6.4.12: the macroblock and block that cover a luma location relative to macroblock `current`. Locations inside
/// it, and those that are not available, are the caller's.
class SlowLocator {
public:
    SlowLocator(const SlowPicture& picture, unsigned current) : picture_(picture), current_(current) {}

    SlowBlock Find(int x, int y) const {
        if (x >= 0 && x < 16 && y >= 0 && y < 16) return Block(static_cast<int>(current_), x, y);
        return picture_.mbaff ? FindInPairs(x, y) : FindInRaster(x, y);
    }

private:
    static SlowBlock Block(int address, int x, int y) {
        const unsigned column = static_cast<unsigned>(x & 15) / 4;
        const unsigned row = static_cast<unsigned>(y & 15) / 4;
        return {address, row * 4 + column};
    }
    bool IsFrame(int address) const { return picture_.Mb(static_cast<unsigned>(address)).fieldMb == 0; }

    /// Address of the macroblock, or of the top one of the pair, at a distance; -1 where it is not available.
    int Around(int columns, int rows) const {
        const int unit = picture_.mbaff ? 2 : 1;
        const int width = static_cast<int>(picture_.width);
        const int place = static_cast<int>(current_) / unit;
        const int column = place % width + columns;
        if (column < 0 || column >= width) return -1;
        const int address = (place + rows * width + columns) * unit;
        return address < static_cast<int>(picture_.firstMb) || address > static_cast<int>(current_) ? -1 : address;
    }
    SlowBlock FindInRaster(int x, int y) const {
        if (y > 15 || (x > 15 && y >= 0)) return {};
        const int address = Around(x < 0 ? -1 : x > 15 ? 1 : 0, y < 0 ? -1 : 0);
        return address < 0 ? SlowBlock{} : Block(address, x, y);
    }
    /// Table 6-4.
    SlowBlock FindInPairs(int x, int y) const {
        if (y > 15 || (x > 15 && y >= 0)) return {};
        const bool frame = IsFrame(static_cast<int>(current_));
        const bool top = current_ % 2 == 0;
        if (y < 0 && frame && !top) {
            if (x > 15) return {};
            if (x >= 0) return Block(static_cast<int>(current_) - 1, x, y);
            const int left = Around(-1, 0);
            if (left < 0) return {};
            return IsFrame(left) ? Block(left, x, y) : Block(left + 1, x, 7);
        }
        if (y < 0) {
            const int above = Around(x < 0 ? -1 : x > 15 ? 1 : 0, -1);
            if (above < 0) return {};
            if (frame || !top) return Block(above + 1, x, y);
            return IsFrame(above) ? Block(above + 1, x, 2 * y) : Block(above, x, y);
        }
        const int left = Around(-1, 0);
        if (left < 0) return {};
        if (frame == IsFrame(left)) return Block(left + (top ? 0 : 1), x, y);
        if (frame) {
            const int inPair = top ? y : y + 16;
            return Block(left + inPair % 2, x, inPair / 2);
        }
        const int inPair = 2 * y + (top ? 0 : 1);
        return Block(left + inPair / 16, x, inPair % 16);
    }

    const SlowPicture& picture_;
    unsigned current_;
};

/// Clause 8.4.1.3.2 for one location.
/// @param decoded  bits of the current macroblock's blocks that have their vectors
inline SlowNeighbour SlowMotionAt(const SlowPicture& picture, unsigned current, unsigned list, unsigned decoded, int x,
                                  int y) {
    const SlowBlock place = SlowLocator(picture, current).Find(x, y);
    if (place.address < 0) return {};
    if (place.address == static_cast<int>(current) && (decoded >> place.block & 1) == 0) return {};
    const H264MacroblockRecord& mb = picture.Mb(static_cast<unsigned>(place.address));
    const bool isIntra = (mb.mbType & KorvaneSoftware::kH264InterBits) == 0;
    if (isIntra || mb.refIdx[list][place.block] < 0) return {-1, {}};
    SlowNeighbour found = {mb.refIdx[list][place.block], {mb.mv[list][place.block][0], mb.mv[list][place.block][1]}};
    const bool fieldHere = picture.Mb(current).fieldMb != 0;
    if (fieldHere && mb.fieldMb == 0) {
        found.refIdx = found.refIdx * 2;
        found.vector.y = found.vector.y / 2;
    } else if (!fieldHere && mb.fieldMb != 0) {
        found.refIdx = found.refIdx / 2;
        found.vector.y = found.vector.y * 2;
    }
    return found;
}

struct SlowNeighbours {
    SlowNeighbour a, b, c;
};

inline SlowNeighbours SlowNeighboursOf(const SlowPicture& picture, unsigned current, unsigned list, unsigned decoded,
                                       int x, int y, int width) {
    const auto at = [&](int atX, int atY) { return SlowMotionAt(picture, current, list, decoded, atX, atY); };
    SlowNeighbours found = {at(x - 1, y), at(x, y - 1), at(x + width, y - 1)};
    if (found.c.refIdx == -2) found.c = at(x - 1, y - 1);
    return found;
}

inline int SlowMedian(int a, int b, int c) {
    std::array<int, 3> values = {a, b, c};
    std::sort(values.begin(), values.end());
    return values[1];
}

/// Clause 8.4.1.3.1.
inline SlowVector SlowMedianPrediction(SlowNeighbours n, int refIdx) {
    if (n.b.refIdx == -2 && n.c.refIdx == -2 && n.a.refIdx != -2) n.b = n.c = n.a;
    const SlowNeighbour* only = nullptr;
    int same = 0;
    for (const SlowNeighbour* one : {&n.a, &n.b, &n.c}) {
        if (one->refIdx != refIdx) continue;
        ++same;
        only = one;
    }
    if (same == 1) return only->vector;
    return {SlowMedian(n.a.vector.x, n.b.vector.x, n.c.vector.x), SlowMedian(n.a.vector.y, n.b.vector.y, n.c.vector.y)};
}

/// Clause 8.4.1.3, sizes and place in luma samples.
inline SlowVector SlowPredictVector(const SlowPicture& picture, unsigned current, unsigned list, unsigned decoded,
                                    int refIdx, int x, int y, int width, int height) {
    const SlowNeighbours n = SlowNeighboursOf(picture, current, list, decoded, x, y, width);
    if (width == 16 && height == 8) {
        const SlowNeighbour& one = y == 0 ? n.b : n.a;
        if (one.refIdx == refIdx) return one.vector;
    }
    if (width == 8 && height == 16) {
        const SlowNeighbour& one = x == 0 ? n.a : n.c;
        if (one.refIdx == refIdx) return one.vector;
    }
    return SlowMedianPrediction(n, refIdx);
}

/// Clause 8.4.1.1.
inline SlowVector SlowPredictSkip(const SlowPicture& picture, unsigned current) {
    const SlowNeighbours n = SlowNeighboursOf(picture, current, 0, 0, 0, 0, 16);
    if (n.a.refIdx == -2 || n.b.refIdx == -2) return {};
    if (n.a.refIdx == 0 && n.a.vector == SlowVector{}) return {};
    if (n.b.refIdx == 0 && n.b.vector == SlowVector{}) return {};
    return SlowMedianPrediction(n, 0);
}

}  // namespace h264
