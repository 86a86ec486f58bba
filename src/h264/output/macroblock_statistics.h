// The statistics of a decoded picture as a stream of records: modes, quantisers, partitions and vectors of each
// macroblock, for analysis.
//
// A head of three u32: bytes of the whole, 100, 12. Then a record for each macroblock that shows in the cropped picture,
// in raster order; in a pair of MBAFF the upper one stands in the upper row. Values are little-endian:
//
//   byte 0        bytes of the record
//   byte 1        kind, `MacroblockKind`
//   Intra_16x16   u32 prediction mode, u32 QP
//   Intra_8x8     four u32 prediction modes, u32 QP
//   Intra_4x4     sixteen u32 prediction modes in raster order, u32 QP
//   other inter   u32 shape (0 16x16, 1 16x8, 2 8x16, 3 8x8), four u32 shapes of the 8x8 parts, numbered likewise; of
//                 list 0 and then of list 1 sixteen vectors, i16 x and y in quarter samples, in raster order of the 4x4
//                 blocks; of list 0 and then of list 1 sixteen i8 reference indices
#pragma once

#include <cstddef>

#include "h264/picture.h"

namespace KorvaneSoftware {

enum class MacroblockKind : std::uint8_t {
    Intra4x4 = 0,
    Intra8x8 = 1,
    Intra16x16 = 2,
    IPcm = 3,
    SkippedP = 6,
    DirectB = 7,
    Inter16x16 = 8,
    Inter16x8 = 9,
    Inter8x16 = 10,
    Inter8x8 = 11,
    SkippedB = 18,
};

/// Room that is asked for before each record: the longest.
constexpr std::size_t kLongestStatisticsRecord = 182;

/// @param written  receives the bytes of complete records, the head with them
/// @return IMG_E_BAD_SIZE where the buffer is too small for the rest, IMG_E_NO_PATH at a type that is none
Status WriteMacroblockStatistics(const CH264Frame& frame, std::uint8_t* buffer, std::size_t size, std::size_t& written);

}  // namespace KorvaneSoftware
