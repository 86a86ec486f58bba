#include "h264/deblocking/edge_thresholds.h"

namespace KorvaneSoftware {
namespace {

constexpr std::uint8_t kOff = kH264NotFiltered;

}  // namespace

// ITU-T H.264 table 8-16, by indexA and indexB.
constexpr std::uint8_t H264EdgeTables::kAlpha[kIndices] = {
    0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  4,   4,   5,   6,   7,   8,   9,   10,  12,  13,
    15, 17, 20, 22, 25, 28, 32, 36, 40, 45, 50, 56, 63, 71, 80, 90, 101, 113, 127, 144, 162, 182, 203, 226, 255, 255};
constexpr std::uint8_t H264EdgeTables::kBeta[kIndices] = {
    0, 0, 0, 0, 0, 0, 0, 0, 0,  0,  0,  0,  0,  0,  0,  0,  2,  2,  2,  3,  3,  3,  3,  4,  4,  4,
    6, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 15, 16, 16, 17, 17, 18, 18};

// ITU-T H.264 table 8-17, by indexA and bS.
constexpr std::uint8_t H264EdgeTables::kTc0[kIndices][5] = {
    {kOff, 0, 0, 0, kOff},   {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},
    {kOff, 0, 0, 0, kOff},   {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},
    {kOff, 0, 0, 0, kOff},   {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},
    {kOff, 0, 0, 0, kOff},   {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},    {kOff, 0, 0, 0, kOff},
    {kOff, 0, 0, 0, kOff},   {kOff, 0, 0, 1, kOff},    {kOff, 0, 0, 1, kOff},    {kOff, 0, 0, 1, kOff},
    {kOff, 0, 0, 1, kOff},   {kOff, 0, 1, 1, kOff},    {kOff, 0, 1, 1, kOff},    {kOff, 1, 1, 1, kOff},
    {kOff, 1, 1, 1, kOff},   {kOff, 1, 1, 1, kOff},    {kOff, 1, 1, 1, kOff},    {kOff, 1, 1, 2, kOff},
    {kOff, 1, 1, 2, kOff},   {kOff, 1, 1, 2, kOff},    {kOff, 1, 1, 2, kOff},    {kOff, 1, 2, 3, kOff},
    {kOff, 1, 2, 3, kOff},   {kOff, 2, 2, 3, kOff},    {kOff, 2, 2, 4, kOff},    {kOff, 2, 3, 4, kOff},
    {kOff, 2, 3, 4, kOff},   {kOff, 3, 3, 5, kOff},    {kOff, 3, 4, 6, kOff},    {kOff, 3, 4, 6, kOff},
    {kOff, 4, 5, 7, kOff},   {kOff, 4, 5, 8, kOff},    {kOff, 4, 6, 9, kOff},    {kOff, 5, 7, 10, kOff},
    {kOff, 6, 8, 11, kOff},  {kOff, 6, 8, 13, kOff},   {kOff, 7, 10, 14, kOff},  {kOff, 8, 11, 16, kOff},
    {kOff, 9, 12, 18, kOff}, {kOff, 10, 13, 20, kOff}, {kOff, 11, 15, 23, kOff}, {kOff, 13, 17, 25, kOff}};

}  // namespace KorvaneSoftware
