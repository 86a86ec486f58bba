// What a macroblock record holds by its kind, whatever the entropy code.
#pragma once

#include <cstdint>

#include "h264/macroblock_record.h"

namespace KorvaneSoftware {

/// Starts the record of a macroblock: nothing coded, nothing skipped, no differences of vectors.
void BeginRecord(H264MacroblockRecord& record, bool field, std::int32_t qp, std::uint32_t sliceNumber);

/// Of an intra macroblock: no lists, no references. The modes are those of one that is not Intra_4x4 or Intra_8x8.
void SetIntraRecord(H264MacroblockRecord& record, std::uint32_t mbType, std::uint32_t shape);

/// I_PCM counts as coded in all its blocks.
void SetPcmRecord(H264MacroblockRecord& record);

/// An intra macroblock whose data were lost.
void SetLostRecord(H264MacroblockRecord& record);

/// Of an inter macroblock; motion is left to prediction.
void SetInterRecord(H264MacroblockRecord& record, std::uint32_t mbType, std::uint32_t shape);

}  // namespace KorvaneSoftware
