// Slice headers, ITU-T H.264 clause 7.3.3.
#pragma once

#include <cstdint>

#include "h264/parsing/nal_units.h"
#include "h264/parsing/parameter_sets.h"

namespace KorvaneSoftware {

enum H264SliceType : std::uint32_t { SLICE_P = 0, SLICE_B = 1, SLICE_I = 2 };

constexpr std::uint32_t kH264MostReferences = 32;  ///< Entries of a list of fields; frames have half.

/// Explicit weights of one entry of a list: Y, Cb, Cr. Without its flag an entry has weight 2^denominator, offset 0.
struct H264PredictionWeight {
    bool lumaFlag = false;
    bool chromaFlag = false;
    std::int16_t weight[3] = {};
    std::int16_t offset[3] = {};  ///< Scaled to the depth of the samples.
};

/// What the first look at a slice reads, up to the syntax of the picture order count.
struct H264SliceHead {
    std::uint32_t nalRefIdc = 0;
    bool idr = false;
    std::uint32_t firstMbInSlice = 0;
    std::uint32_t sliceType = SLICE_I;
    std::uint32_t ppsId = 0;
    std::uint32_t frameNum = 0;
    bool fieldPic = false;
    bool bottomField = false;
    bool mbaff = false;
    std::uint32_t idrPicId = 0;
    std::uint32_t picOrderCntLsb = 0;
    std::int32_t deltaPicOrderCntBottom = 0;
    std::int32_t deltaPicOrderCnt[2] = {};
};

struct H264SliceHeader : H264SliceHead {
    std::uint32_t redundantPicCnt = 0;
    bool directSpatialMvPred = false;
    std::uint32_t numRefIdxActive[2] = {};  ///< 0 for a list that the slice type does not have.
    /// Where ref_pic_list_modification and dec_ref_pic_marking begin.
    H264BitReader listModification;
    H264BitReader refPicMarking;
    bool adaptiveRefPicMarking = false;
    bool noOutputOfPriorPics = false;
    bool longTermReference = false;
    std::uint32_t lumaLog2WeightDenom = 0;
    std::uint32_t chromaLog2WeightDenom = 0;
    H264PredictionWeight weights[2][kH264MostReferences];
    std::uint32_t cabacInitIdc = 0;
    std::int32_t sliceQpY = 26;  ///< SliceQPY, down to -6 x bit_depth_luma_minus8.
    std::uint32_t disableDeblockingFilterIdc = 0;
    std::int32_t filterOffsetA = 0;
    std::int32_t filterOffsetB = 0;
};

/// Reads first_mb_in_slice to delta_pic_order_cnt. `sets` must hold both sets that the slice names.
/// @param pps, sps  receive the sets
/// @return          IMG_E_FAILED for a set that is not there and for values out of range
Status ReadSliceHead(H264BitReader& reader, const NalUnit& unit, const H264ParameterSets& sets, H264SliceHead& head,
                     const H264Pps** pps, const H264Sps** sps);

/// Reads a whole header, from first_mb_in_slice on, and leaves the reader behind it, at the slice data.
Status ReadSliceHeader(H264BitReader& reader, const NalUnit& unit, const H264ParameterSets& sets,
                       H264SliceHeader& header, const H264Pps** pps, const H264Sps** sps);

/// Macroblocks of the picture that a header begins: half the frame's for a field.
std::uint32_t PictureSizeInMbs(const H264SpsHead& sps, bool fieldPic);

}  // namespace KorvaneSoftware
