#include "h264/macroblock/record_head.h"

#include <cstring>

#include "h264/macroblock/macroblock_types.h"

namespace KorvaneSoftware {
namespace {

constexpr int kIntraModeDc = 2;

}  // namespace

void BeginRecord(H264MacroblockRecord& record, bool field, std::int32_t qp, std::uint32_t sliceNumber) {
    record.fieldMb = field ? 1 : 0;
    record.qp = static_cast<std::int8_t>(qp);
    record.transform8x8 = 0;
    record.intraChromaMode = 0;
    record.codedLuma = 0;
    record.codedChroma[0] = record.codedChroma[1] = 0;
    record.codedDc = 0;
    record.codedBlockPattern = 0;
    record.skip = MB_NOT_SKIPPED;
    record.refGreater[0] = record.refGreater[1] = 0;
    record.sliceNumber = sliceNumber;
    std::memset(record.intraModes, kIntraModeDc, sizeof record.intraModes);
    std::memset(record.mvd, 0, sizeof record.mvd);
    std::memset(record.totalCoeff, 0, sizeof record.totalCoeff);
}

void SetIntraRecord(H264MacroblockRecord& record, std::uint32_t mbType, std::uint32_t shape) {
    record.mbType = mbType;
    record.shape = shape;
    std::memset(record.subShapes, 0, sizeof record.subShapes);
    std::memset(record.predictionKind, 0, sizeof record.predictionKind);
    std::memset(record.refIdx, -1, sizeof record.refIdx);
    std::memset(record.refPicId, -1, sizeof record.refPicId);
    std::memset(record.mv, 0, sizeof record.mv);
}

void SetPcmRecord(H264MacroblockRecord& record) {
    constexpr std::uint8_t kAllCoefficients = 16;
    SetIntraRecord(record, MB_I_PCM, SHAPE_WHOLE);
    record.qp = 0;
    record.codedLuma = 0xFFFF;
    record.codedChroma[0] = record.codedChroma[1] = 0xFF;
    record.codedDc = 7;
    record.codedBlockPattern = 0x2F;
    std::memset(record.totalCoeff, kAllCoefficients, sizeof record.totalCoeff);
}

void SetLostRecord(H264MacroblockRecord& record) { SetIntraRecord(record, MB_INTRA_16X16, SHAPE_WHOLE); }

void SetInterRecord(H264MacroblockRecord& record, std::uint32_t mbType, std::uint32_t shape) {
    record.mbType = mbType;
    record.shape = shape;
    std::memset(record.subShapes, 0, sizeof record.subShapes);
}

}  // namespace KorvaneSoftware
