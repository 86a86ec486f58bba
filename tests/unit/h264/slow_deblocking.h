// The loop filter of ITU-T H.264 clause 8.7 the slow way: sample by sample, each with the strength of its own place.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "h264/macroblock_record.h"

namespace h264 {

namespace km = KorvaneSoftware;

// Tables 8-16 and 8-17.
constexpr int kAlphas[52] = {0,  0,  0,  0,  0,  0,  0,   0,   0,   0,   0,   0,   0,   0,   0,   0,  4,  4,
                             5,  6,  7,  8,  9,  10, 12,  13,  15,  17,  20,  22,  25,  28,  32,  36, 40, 45,
                             50, 56, 63, 71, 80, 90, 101, 113, 127, 144, 162, 182, 203, 226, 255, 255};
constexpr int kBetas[52] = {0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0, 2,  2,
                            2,  3,  3,  3,  3,  4,  4,  4,  6,  6,  7,  7,  8,  8,  9,  9, 10, 10,
                            11, 11, 12, 12, 13, 13, 14, 14, 15, 15, 16, 16, 17, 17, 18, 18};
constexpr int kTc0OfStrength1[52] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,  1,  1,
                                     1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 6, 6, 7, 8, 9, 10, 11, 13};
constexpr int kTc0OfStrength2[52] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  0,  0,  0,  0,  0, 0, 0,
                                     0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1,  1,  1,  2,  2,  2, 2, 3,
                                     3, 3, 4, 4, 5, 5, 6, 7, 8, 8, 10, 11, 12, 13, 15, 17};
constexpr int kTc0OfStrength3[52] = {0, 0, 0, 0, 0, 0, 0, 0,  0,  0,  0,  0,  0,  0,  0,  0, 0, 1,
                                     1, 1, 1, 1, 1, 1, 1, 1,  1,  2,  2,  2,  2,  3,  3,  3, 4, 4,
                                     4, 5, 6, 6, 7, 8, 9, 10, 11, 13, 14, 16, 18, 20, 23, 25};
// Table 8-15 from qPI 30 on.
constexpr int kChromaQps[22] = {29, 30, 31, 32, 32, 33, 34, 34, 35, 35, 36, 36, 37, 37, 37, 38, 38, 38, 39, 39, 39, 39};

/// What the filter reads of a slice. Macroblocks are numbered by address; those of pairs follow each other.
struct SlowSlice {
    unsigned firstAddress = 0;
    unsigned idc = 0;
    int offsetA = 0;
    int offsetB = 0;
    int chromaOffset[2] = {};
};

enum class SlowStructure { kFrame, kField, kMbaff };

struct SlowPlane {
    std::vector<int> samples;
    int width = 0;
    int& At(int x, int y) { return samples[static_cast<std::size_t>(y * width + x)]; }
};

class SlowDeblocking {
public:
    SlowStructure structure = SlowStructure::kFrame;
    int widthInMbs = 0;
    int heightInMbs = 0;
    int chromaFormat = 1;
    int depth[2] = {8, 8};  ///< Luma, chroma.
    std::vector<SlowSlice> slices;
    std::vector<km::H264MacroblockRecord> records;  ///< Row by row; of pairs the upper macroblocks and then the lower.
    SlowPlane planes[3];

    void FilterPicture() {
        for (int address = 0; address < widthInMbs * heightInMbs; ++address) FilterMacroblock(address);
    }

    const km::H264MacroblockRecord& Record(int address) const {
        const std::pair<int, int> place = Place(address);
        return records[static_cast<std::size_t>(place.second * widthInMbs + place.first)];
    }

    const SlowSlice& SliceOf(int address) const {
        const SlowSlice* found = &slices[0];
        for (const SlowSlice& slice : slices)
            if (static_cast<int>(slice.firstAddress) <= address) found = &slice;
        return *found;
    }

    /// Strength between two samples of luma of the picture.
    int Strength(int px, int py, int qx, int qy, bool vertical) const {
        const Sample p = Locate(px, py), q = Locate(qx, qy);
        const km::H264MacroblockRecord &pMb = Record(p.address), &qMb = Record(q.address);
        const bool pField = IsField(pMb), qField = IsField(qMb);
        const bool mixed = structure == SlowStructure::kMbaff && pField != qField;
        const bool mbEdge = p.address != q.address;
        const bool intra = IsIntra(pMb) || IsIntra(qMb);
        if (mbEdge && intra && !pField && !qField) return 4;
        if (mbEdge && intra && structure != SlowStructure::kFrame && vertical) return 4;
        if (intra) return 3;
        if (IsCoded(pMb, p) || IsCoded(qMb, q)) return 2;
        if (mixed) return 1;
        return MovesDifferently(pMb, p, qMb, q) ? 1 : 0;
    }

private:
    struct Sample {
        int address, x, y;
    };

    bool IsMbaff() const { return structure == SlowStructure::kMbaff; }
    bool IsField(const km::H264MacroblockRecord& mb) const {
        return structure == SlowStructure::kField || (IsMbaff() && mb.fieldMb != 0);
    }
    static bool IsIntra(const km::H264MacroblockRecord& mb) { return (mb.mbType & 0x300) == 0; }

    /// Column and row of a record.
    std::pair<int, int> Place(int address) const {
        if (!IsMbaff()) return {address % widthInMbs, address / widthInMbs};
        return {address / 2 % widthInMbs, address / 2 / widthInMbs * 2 + address % 2};
    }

    Sample Locate(int x, int y) const {
        if (!IsMbaff()) return {y / 16 * widthInMbs + x / 16, x % 16, y % 16};
        const int pair = y / 32 * widthInMbs + x / 16, inPair = y % 32;
        if (Record(2 * pair).fieldMb != 0) return {2 * pair + inPair % 2, x % 16, inPair / 2};
        return {2 * pair + inPair / 16, x % 16, inPair % 16};
    }

    static bool IsCoded(const km::H264MacroblockRecord& mb, const Sample& s) {
        if (mb.transform8x8 == 0) return (mb.codedLuma >> (s.y / 4 * 4 + s.x / 4) & 1) != 0;
        const int first = s.y / 8 * 8 + s.x / 8 * 2;
        return (mb.codedLuma >> first & 0x33) != 0;
    }

    struct Motion {
        int picture, x, y;
    };
    static std::vector<Motion> MotionAt(const km::H264MacroblockRecord& mb, const Sample& s) {
        std::vector<Motion> motion;
        const int block = s.y / 4 * 4 + s.x / 4, part = s.y / 8 * 2 + s.x / 8;
        const int lists = (mb.mbType & 0x300) == 0x300 ? 2 : 1;
        for (int list = 0; list < lists; ++list) {
            if (mb.refIdx[list][block] < 0) continue;
            motion.push_back({mb.refPicId[list][part], mb.mv[list][block][0], mb.mv[list][block][1]});
        }
        return motion;
    }

    bool MovesDifferently(const km::H264MacroblockRecord& pMb, const Sample& p, const km::H264MacroblockRecord& qMb,
                          const Sample& q) const {
        const std::vector<Motion> a = MotionAt(pMb, p), b = MotionAt(qMb, q);
        if (a.size() != b.size()) return true;
        // Quarter samples of a frame: those of a field are as high as two.
        const int heightOfStep = IsField(qMb) ? 2 : 1;
        const auto far = [&](const Motion& m, const Motion& n) {
            return std::abs(m.x - n.x) >= 4 || std::abs(m.y - n.y) * heightOfStep >= 4;
        };
        if (a.size() == 1) return a[0].picture != b[0].picture || far(a[0], b[0]);
        const bool straight = a[0].picture == b[0].picture && a[1].picture == b[1].picture;
        const bool crossed = a[0].picture == b[1].picture && a[1].picture == b[0].picture;
        if (!straight && !crossed) return true;
        const bool farStraight = far(a[0], b[0]) || far(a[1], b[1]);
        const bool farCrossed = far(a[0], b[1]) || far(a[1], b[0]);
        if (a[0].picture == a[1].picture) return farStraight && farCrossed;
        return straight ? farStraight : farCrossed;
    }

    void FilterMacroblock(int address) {
        const SlowSlice& slice = SliceOf(address);
        if (slice.idc == 1) return;
        const km::H264MacroblockRecord& mb = Record(address);
        const auto [column, row] = Place(address);
        const bool fieldInFrame = IsMbaff() && mb.fieldMb != 0;
        const int x = 16 * column;
        const int y = fieldInFrame ? row / 2 * 32 + row % 2 : 16 * row;
        const int step = fieldInFrame ? 2 : 1;
        const auto inSlice = [&](int other) { return slice.idc != 2 || other >= static_cast<int>(slice.firstAddress); };
        const int unit = IsMbaff() ? 2 : 1;
        const bool left = column > 0 && inSlice(address - unit);
        bool top = row > 0 && inSlice(address - unit * widthInMbs);
        if (IsMbaff() && row % 2 == 1 && !fieldInFrame) {
            top = true;
        } else if (IsMbaff()) {
            top = row >= 2 && inSlice(address / 2 * 2 - 2 * widthInMbs);
        }
        // A frame macroblock below a field pair has a top edge to each field.
        const bool fieldsAbove =
            IsMbaff() && top && !fieldInFrame && row % 2 == 0 && Record(address - 2 * widthInMbs).fieldMb != 0;

        for (int plane = 0; plane < 3; ++plane) {
            const int across = plane == 0 ? 1 : 2, down = plane != 0 && chromaFormat == 1 ? 2 : 1;
            const int width = 16 / across, height = 16 / down;
            const int left0 = x / across, top0 = fieldInFrame ? y / 32 * 32 / down + y % 32 : y / down;
            const int edgeStep = plane == 0 && mb.transform8x8 != 0 ? 8 : 4;
            for (int e = left ? 0 : edgeStep; e < width; e += edgeStep)
                for (int k = 0; k < height; ++k) FilterLine(slice, plane, left0 + e, top0 + step * k, true, 1);
            for (int e = top ? 0 : edgeStep; e < height; e += edgeStep) {
                for (int k = 0; k < width; ++k) {
                    if (e == 0 && fieldsAbove) {
                        FilterLine(slice, plane, left0 + k, top0, false, 2);
                        FilterLine(slice, plane, left0 + k, top0 + 1, false, 2);
                    } else {
                        FilterLine(slice, plane, left0 + k, top0 + step * e, false, step);
                    }
                }
            }
        }
    }

    int Qp(const SlowSlice& slice, int plane, int qpY) const {
        if (plane == 0) return qpY;
        const int index = std::clamp(qpY + slice.chromaOffset[plane - 1], -6 * (depth[1] - 8), 51);
        return index < 30 ? index : kChromaQps[index - 30];
    }

    /// Filters the line across an edge whose q0 is at (x, y); `step` rows apart if it stands upright.
    void FilterLine(const SlowSlice& slice, int plane, int x, int y, bool vertical, int step) {
        SlowPlane& samples = planes[plane];
        const bool chroma = plane != 0;
        int* line[8];  // p3 to q3
        for (int i = -4; i < 4; ++i) {
            const int sx = vertical ? x + i : x, sy = vertical ? y : y + i * step;
            // Chroma reads two samples on each side, and a top edge may have no more above it.
            line[4 + i] = sy < 0 || sy * samples.width + sx >= static_cast<int>(samples.samples.size())
                              ? nullptr
                              : &samples.At(sx, sy);
        }
        // Strengths are those of luma at the same place of the same macroblock.
        const int px = vertical ? x - 1 : x, py = vertical ? y : y - step;
        const auto [plx, ply] = LumaPlace(plane, px, py);
        const auto [qlx, qly] = LumaPlace(plane, x, y);
        const int strength = Strength(plx, ply, qlx, qly, vertical);
        if (strength == 0) return;
        const km::H264MacroblockRecord& pMb = Record(Locate(plx, ply).address);
        const km::H264MacroblockRecord& qMb = Record(Locate(qlx, qly).address);
        const int qp = (Qp(slice, plane, pMb.qp) + Qp(slice, plane, qMb.qp) + 1) >> 1;
        const int indexA = std::clamp(qp + slice.offsetA, 0, 51), indexB = std::clamp(qp + slice.offsetB, 0, 51);
        const int bits = depth[chroma ? 1 : 0], scale = 1 << (bits - 8), top = (1 << bits) - 1;
        const int alpha = kAlphas[indexA] * scale, beta = kBetas[indexB] * scale;
        const auto P = [&](int i) -> int& { return *line[3 - i]; };
        const auto Q = [&](int i) -> int& { return *line[4 + i]; };
        const int p0 = P(0), p1 = P(1), q0 = Q(0), q1 = Q(1);
        if (std::abs(p0 - q0) >= alpha || std::abs(p1 - p0) >= beta || std::abs(q1 - q0) >= beta) return;
        const int p2 = chroma ? 0 : P(2), q2 = chroma ? 0 : Q(2);
        const bool ap = !chroma && std::abs(p2 - p0) < beta, aq = !chroma && std::abs(q2 - q0) < beta;
        if (strength < 4) {
            const int* table = strength == 1 ? kTc0OfStrength1 : strength == 2 ? kTc0OfStrength2 : kTc0OfStrength3;
            const int tc0 = table[indexA] * scale;
            const int tc = chroma ? tc0 + 1 : tc0 + (ap ? 1 : 0) + (aq ? 1 : 0);
            const int delta = std::clamp(((q0 - p0) * 4 + (p1 - q1) + 4) >> 3, -tc, tc);
            P(0) = std::clamp(p0 + delta, 0, top);
            Q(0) = std::clamp(q0 - delta, 0, top);
            if (ap) P(1) = p1 + std::clamp((p2 + ((p0 + q0 + 1) >> 1) - 2 * p1) >> 1, -tc0, tc0);
            if (aq) Q(1) = q1 + std::clamp((q2 + ((p0 + q0 + 1) >> 1) - 2 * q1) >> 1, -tc0, tc0);
            return;
        }
        const bool close = std::abs(p0 - q0) < (alpha >> 2) + 2;
        if (ap && close) {
            const int p3 = P(3);
            P(0) = (p2 + 2 * p1 + 2 * p0 + 2 * q0 + q1 + 4) >> 3;
            P(1) = (p2 + p1 + p0 + q0 + 2) >> 2;
            P(2) = (2 * p3 + 3 * p2 + p1 + p0 + q0 + 4) >> 3;
        } else {
            P(0) = (2 * p1 + p0 + q1 + 2) >> 2;
        }
        if (aq && close) {
            const int q3 = Q(3);
            Q(0) = (p1 + 2 * p0 + 2 * q0 + 2 * q1 + q2 + 4) >> 3;
            Q(1) = (p0 + q0 + q1 + q2 + 2) >> 2;
            Q(2) = (2 * q3 + 3 * q2 + q1 + q0 + p0 + 4) >> 3;
        } else {
            Q(0) = (2 * q1 + q0 + p1 + 2) >> 2;
        }
    }

    std::pair<int, int> LumaPlace(int plane, int x, int y) const {
        if (plane == 0) return {x, y};
        if (chromaFormat == 2) return {2 * x, y};
        if (!IsMbaff() || Record(2 * (y / 16 * widthInMbs + x / 8)).fieldMb == 0) return {2 * x, 2 * y};
        // In a field pair rows of chroma alternate between the fields as those of luma do.
        return {2 * x, y / 16 * 32 + y % 16 / 2 * 4 + y % 2};
    }
};

}  // namespace h264
