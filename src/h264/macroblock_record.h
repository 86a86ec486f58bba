// What is kept of a decoded macroblock with its frame: for the neighbours, for deblocking, and for direct prediction of
// later pictures.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

/// Values of H264MacroblockRecord::mbType. Inter types are a base plus a shape: 2 16x16, 4 16x8, 8 8x16, 12 8x8.
enum H264MbType : std::uint32_t {
    MB_I_PCM = 1,
    MB_INTRA_16X16 = 3,
    MB_INTRA_8X8 = 5,
    MB_INTRA_4X4 = 9,
    MB_P = 256,
    MB_B = 768,
    MB_B_DIRECT = 782,  ///< B_Direct_16x16 and B_Skip.
};
constexpr std::uint32_t kH264InterBits = 0x300;

/// Values of H264MacroblockRecord::skip.
enum H264MbSkip : std::uint32_t { MB_NOT_SKIPPED = 0, MB_SKIPPED = 1, MB_B_DIRECT_INFERRED = 2 };

/// Blocks of 4x4 samples are numbered by place, row by row: block 5 is the second of the second row.
struct H264MacroblockRecord {
    std::uint32_t mbType;
    std::uint32_t shape;              ///< 0 16x16, 1 16x8, 2 8x16, 3 8x8; 3 for Intra_8x8, 6 for Intra_4x4.
    std::uint8_t subShapes[4];        ///< Of the four 8x8 parts, numbered as `shape` (3 is 4x4).
    std::uint8_t fieldMb;             ///< mb_field_decoding_flag or field_pic_flag.
    std::int8_t qp;                   ///< QPY, down to -36 at 14 bits; 0 for I_PCM.
    std::uint8_t transform8x8;        ///< transform_size_8x8_flag
    std::uint8_t intraChromaMode;     ///< intra_chroma_pred_mode
    std::uint8_t predictionKind[16];  ///< Inter: the lists that a block uses, 1, 2, or 3 for both.
    std::int8_t intraModes[16];       ///< Intra_4x4 and Intra_8x8 modes; Intra_16x16 has its mode in the first.
    std::uint32_t codedLuma;          ///< Bit i: block i has coefficients; all four bits of a coded 8x8 block.
    std::uint32_t codedChroma[2];     ///< The same for Cb and Cr, blocks numbered down the rows of two.
    std::uint32_t codedDc;            ///< Bits 0 to 2: coded_block_flag of the DC blocks of Y (Intra_16x16), Cb, Cr.
    std::uint32_t codedBlockPattern;  ///< As decoded: luma in bits 0 to 3, chroma in bits 4 and 5.
    std::uint32_t skip;               ///< `H264MbSkip`
    std::int8_t refIdx[2][16];        ///< By block; below 0 where the list is not used.
    std::int16_t refPicId[2][4];      ///< Picture id behind the index of each 8x8 part; -1 for none.
    std::int16_t mv[2][16][2];        ///< Quarter samples, x and y.
    std::uint8_t mvd[2][16][2];       ///< Absolute differences, clipped, for the contexts of CABAC.
    std::uint8_t totalCoeff[3][16];   ///< Levels of each block of Y, Cb, Cr: CAVLC only.
    std::uint32_t sliceNumber;        ///< Counts the slices of a picture from 0.
    /// Bits 0 to 3: parts whose coded index is above 0; bits 4 to 7: above 1. By list, for the contexts of CABAC.
    std::uint8_t refGreater[2];
    std::uint8_t reserved[82];
};
static_assert(sizeof(H264MacroblockRecord) == 448, "seven cache lines; the records' row stride counts on it");

}  // namespace KorvaneSoftware
