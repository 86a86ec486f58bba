#include "h264/deblocking/edge_filters.h"

namespace KorvaneSoftware {
namespace {

constexpr int kIndices = 52;

// ITU-T H.264 table 8-16, by indexA and indexB.
constexpr std::uint8_t kAlpha[kIndices] = {
    0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  4,   4,   5,   6,   7,   8,   9,   10,  12,  13,
    15, 17, 20, 22, 25, 28, 32, 36, 40, 45, 50, 56, 63, 71, 80, 90, 101, 113, 127, 144, 162, 182, 203, 226, 255, 255};
constexpr std::uint8_t kBeta[kIndices] = {0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0, 2,  2,
                                          2,  3,  3,  3,  3,  4,  4,  4,  6,  6,  7,  7,  8,  8,  9,  9, 10, 10,
                                          11, 11, 12, 12, 13, 13, 14, 14, 15, 15, 16, 16, 17, 17, 18, 18};
// ITU-T H.264 table 8-17, by indexA and bS - 1.
constexpr std::uint8_t kTc0[kIndices][3] = {
    {0, 0, 0},  {0, 0, 0},   {0, 0, 0},   {0, 0, 0},   {0, 0, 0},    {0, 0, 0},    {0, 0, 0},   {0, 0, 0},  {0, 0, 0},
    {0, 0, 0},  {0, 0, 0},   {0, 0, 0},   {0, 0, 0},   {0, 0, 0},    {0, 0, 0},    {0, 0, 0},   {0, 0, 0},  {0, 0, 1},
    {0, 0, 1},  {0, 0, 1},   {0, 0, 1},   {0, 1, 1},   {0, 1, 1},    {1, 1, 1},    {1, 1, 1},   {1, 1, 1},  {1, 1, 1},
    {1, 1, 2},  {1, 1, 2},   {1, 1, 2},   {1, 1, 2},   {1, 2, 3},    {1, 2, 3},    {2, 2, 3},   {2, 2, 4},  {2, 3, 4},
    {2, 3, 4},  {3, 3, 5},   {3, 4, 6},   {3, 4, 6},   {4, 5, 7},    {4, 5, 8},    {4, 6, 9},   {5, 7, 10}, {6, 8, 11},
    {6, 8, 13}, {7, 10, 14}, {8, 11, 16}, {9, 12, 18}, {10, 13, 20}, {11, 15, 23}, {13, 17, 25}};

int ClipIndex(int index) { return index < 0 ? 0 : index >= kIndices ? kIndices - 1 : index; }

template <class Tc0>
H264EdgeThresholds Thresholds(int qp, int offsetA, int offsetB, std::uint32_t bitDepth, Tc0 tc0) {
    const int scale = 1 << (bitDepth - 8), indexA = ClipIndex(qp + offsetA);
    H264EdgeThresholds thresholds = {kAlpha[indexA] * scale, kBeta[ClipIndex(qp + offsetB)] * scale, {}};
    for (int i = 0; i < 4; ++i) thresholds.tc0[i] = static_cast<std::int16_t>(tc0(indexA, i, scale));
    return thresholds;
}

}  // namespace

H264EdgeThresholds WeakH264Thresholds(int qp, int offsetA, int offsetB, const std::uint8_t (&strengths)[4],
                                      std::uint32_t bitDepth) {
    return Thresholds(qp, offsetA, offsetB, bitDepth, [&](int indexA, int i, int scale) {
        return strengths[i] == 0 || strengths[i] > 3 ? -1 : kTc0[indexA][strengths[i] - 1] * scale;
    });
}

H264EdgeThresholds StrongH264Thresholds(int qp, int offsetA, int offsetB, const std::uint8_t (&strengths)[4],
                                        std::uint32_t bitDepth) {
    return Thresholds(qp, offsetA, offsetB, bitDepth, [&](int, int i, int) { return strengths[i] > 3 ? 0 : -1; });
}

}  // namespace KorvaneSoftware
