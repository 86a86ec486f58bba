// Intra prediction, ITU-T H.264 clause 8.3. Neighbours are read from the picture itself, around the block.
//
// Strides count samples. The bit depth is 8 for bytes and 8 to 14 for words.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"
#include "h264/sample_types.h"

namespace KorvaneSoftware {

/// Neighbours that may be used for prediction. The left column counts by halves of the macroblock: in MBAFF pictures
/// with constrained_intra_pred_flag one may be there without the other.
enum H264IntraNeighbours : std::uint32_t {
    NEIGHBOUR_LEFT_UPPER = 1,
    NEIGHBOUR_LEFT_LOWER = 2,
    NEIGHBOUR_LEFT = 3,
    NEIGHBOUR_TOP = 4,
    NEIGHBOUR_TOP_RIGHT = 8,
    NEIGHBOUR_TOP_LEFT = 16,
};

/// Intra4x4PredMode and Intra8x8PredMode.
enum H264IntraBlockMode : std::uint32_t {
    INTRA_BLOCK_VERTICAL,
    INTRA_BLOCK_HORIZONTAL,
    INTRA_BLOCK_DC,
    INTRA_BLOCK_DIAGONAL_DOWN_LEFT,
    INTRA_BLOCK_DIAGONAL_DOWN_RIGHT,
    INTRA_BLOCK_VERTICAL_RIGHT,
    INTRA_BLOCK_HORIZONTAL_DOWN,
    INTRA_BLOCK_VERTICAL_LEFT,
    INTRA_BLOCK_HORIZONTAL_UP,
    INTRA_BLOCK_MODES
};

/// Intra16x16PredMode.
enum H264Intra16x16Mode : std::uint32_t {
    INTRA_16X16_VERTICAL,
    INTRA_16X16_HORIZONTAL,
    INTRA_16X16_DC,
    INTRA_16X16_PLANE,
    INTRA_16X16_MODES
};

/// intra_chroma_pred_mode.
enum H264IntraChromaMode : std::uint32_t {
    INTRA_CHROMA_DC,
    INTRA_CHROMA_HORIZONTAL,
    INTRA_CHROMA_VERTICAL,
    INTRA_CHROMA_PLANE,
    INTRA_CHROMA_MODES
};

/// Predicts a block in place. A mode that needs a neighbour that is not there predicts as the DC mode does. Absent
/// samples are not read; where only the upper right ones are absent the last upper one stands for them. The halves of
/// the left column are told apart by chroma DC alone; elsewhere the left column is there when both halves are.
template <class Sample>
using TH264PredictIntra = void(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                               std::uint32_t bitDepth);
using H264PredictIntraBytes = TH264PredictIntra<std::uint8_t>;
using H264PredictIntraWords = TH264PredictIntra<std::uint16_t>;

extern SlotTable<H264PredictIntraBytes, INTRA_BLOCK_MODES> H264Intra4x4Bytes;
extern SlotTable<H264PredictIntraWords, INTRA_BLOCK_MODES> H264Intra4x4Words;
/// With the filter of the neighbours, clause 8.3.2.2.1.
extern SlotTable<H264PredictIntraBytes, INTRA_BLOCK_MODES> H264Intra8x8Bytes;
extern SlotTable<H264PredictIntraWords, INTRA_BLOCK_MODES> H264Intra8x8Words;
extern SlotTable<H264PredictIntraBytes, INTRA_16X16_MODES> H264Intra16x16Bytes;
extern SlotTable<H264PredictIntraWords, INTRA_16X16_MODES> H264Intra16x16Words;
/// 4:2:0.
extern SlotTable<H264PredictIntraBytes, INTRA_CHROMA_MODES> H264IntraChroma8x8Bytes;
extern SlotTable<H264PredictIntraWords, INTRA_CHROMA_MODES> H264IntraChroma8x8Words;
/// 4:2:2.
extern SlotTable<H264PredictIntraBytes, INTRA_CHROMA_MODES> H264IntraChroma8x16Bytes;
extern SlotTable<H264PredictIntraWords, INTRA_CHROMA_MODES> H264IntraChroma8x16Words;

/// The slots of a sample type.
template <class Sample>
struct TH264IntraKernels;

template <>
struct TH264IntraKernels<std::uint8_t> {
    static constexpr auto& k4x4 = H264Intra4x4Bytes;
    static constexpr auto& k8x8 = H264Intra8x8Bytes;
    static constexpr auto& k16x16 = H264Intra16x16Bytes;
    static constexpr auto& kChroma8x8 = H264IntraChroma8x8Bytes;
    static constexpr auto& kChroma8x16 = H264IntraChroma8x16Bytes;
};

template <>
struct TH264IntraKernels<std::uint16_t> {
    static constexpr auto& k4x4 = H264Intra4x4Words;
    static constexpr auto& k8x8 = H264Intra8x8Words;
    static constexpr auto& k16x16 = H264Intra16x16Words;
    static constexpr auto& kChroma8x8 = H264IntraChroma8x8Words;
    static constexpr auto& kChroma8x16 = H264IntraChroma8x16Words;
};

}  // namespace KorvaneSoftware
