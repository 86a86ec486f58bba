#include "h264/deblocking/edge_thresholds.h"

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
// ITU-T H.264 table 8-17, by indexA and bS; bS 0 and 4 have none.
struct Tc0ByStrength {
    std::uint8_t tc0[5];
    constexpr Tc0ByStrength(std::uint8_t of1, std::uint8_t of2, std::uint8_t of3)
        : tc0{kH264NotFiltered, of1, of2, of3, kH264NotFiltered} {}
};
constexpr Tc0ByStrength kTc0[kIndices] = {
    {0, 0, 0},  {0, 0, 0},   {0, 0, 0},   {0, 0, 0},   {0, 0, 0},    {0, 0, 0},    {0, 0, 0},   {0, 0, 0},  {0, 0, 0},
    {0, 0, 0},  {0, 0, 0},   {0, 0, 0},   {0, 0, 0},   {0, 0, 0},    {0, 0, 0},    {0, 0, 0},   {0, 0, 0},  {0, 0, 1},
    {0, 0, 1},  {0, 0, 1},   {0, 0, 1},   {0, 1, 1},   {0, 1, 1},    {1, 1, 1},    {1, 1, 1},   {1, 1, 1},  {1, 1, 1},
    {1, 1, 2},  {1, 1, 2},   {1, 1, 2},   {1, 1, 2},   {1, 2, 3},    {1, 2, 3},    {2, 2, 3},   {2, 2, 4},  {2, 3, 4},
    {2, 3, 4},  {3, 3, 5},   {3, 4, 6},   {3, 4, 6},   {4, 5, 7},    {4, 5, 8},    {4, 6, 9},   {5, 7, 10}, {6, 8, 11},
    {6, 8, 13}, {7, 10, 14}, {8, 11, 16}, {9, 12, 18}, {10, 13, 20}, {11, 15, 23}, {13, 17, 25}};

int ClipIndex(int index) { return index < 0 ? 0 : index >= kIndices ? kIndices - 1 : index; }

}  // namespace

H264EdgeLimits FindH264EdgeLimits(int qp, int offsetA, int offsetB) {
    const int indexA = ClipIndex(qp + offsetA);
    return {kAlpha[indexA], kBeta[ClipIndex(qp + offsetB)], kTc0[indexA].tc0};
}

}  // namespace KorvaneSoftware
