#include "h264/output/macroblock_statistics.h"

#include <algorithm>
#include <cstring>

#include "h264/output/frame_description.h"

namespace KorvaneSoftware {
namespace {

constexpr std::size_t kHeadBytes = 12;

/// Writes one record; its length is put in when it is complete. The caller has seen to the room.
class RecordWriter {
public:
    RecordWriter(std::uint8_t* at, MacroblockKind kind) : start_(at), at_(at + 2) {
        start_[1] = static_cast<std::uint8_t>(kind);
    }
    void Put(std::uint32_t value) { PutBytes(&value, sizeof value); }
    void PutBytes(const void* bytes, std::size_t size) {
        std::memcpy(at_, bytes, size);
        at_ += size;
    }
    /// @return bytes of the record
    std::size_t Finish() {
        const auto size = static_cast<std::size_t>(at_ - start_);
        start_[0] = static_cast<std::uint8_t>(size);
        return size;
    }

private:
    std::uint8_t* start_;
    std::uint8_t* at_;
};

std::uint32_t Extended(std::int8_t value) { return static_cast<std::uint32_t>(std::int32_t{value}); }

std::size_t WriteIntra(std::uint8_t* at, MacroblockKind kind, const H264MacroblockRecord& mb) {
    // Modes are kept by place: an 8x8 block has its mode in all four.
    static constexpr std::uint8_t kPlaces16x16[] = {0};
    static constexpr std::uint8_t kPlaces8x8[] = {0, 2, 8, 10};
    static constexpr std::uint8_t kPlaces4x4[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    RecordWriter writer(at, kind);
    const auto putModes = [&](const auto& places) {
        for (std::uint8_t place : places) writer.Put(Extended(mb.intraModes[place]));
    };
    if (kind == MacroblockKind::Intra16x16) putModes(kPlaces16x16);
    if (kind == MacroblockKind::Intra8x8) putModes(kPlaces8x8);
    if (kind == MacroblockKind::Intra4x4) putModes(kPlaces4x4);
    writer.Put(Extended(mb.qp));
    return writer.Finish();
}

std::size_t WriteInter(std::uint8_t* at, const H264MacroblockRecord& mb) {
    const auto kind = static_cast<MacroblockKind>(static_cast<std::uint32_t>(MacroblockKind::Inter16x16) + mb.shape);
    RecordWriter writer(at, kind);
    writer.Put(mb.shape);
    for (std::uint8_t shape : mb.subShapes) writer.Put(shape);
    writer.PutBytes(mb.mv, sizeof mb.mv);
    writer.PutBytes(mb.refIdx, sizeof mb.refIdx);
    return writer.Finish();
}

/// @return bytes of the record, 0 for a type that is none
std::size_t WriteRecord(std::uint8_t* at, const H264MacroblockRecord& mb) {
    constexpr std::uint32_t kMostShapes = 4;
    switch (mb.mbType) {
        case MB_I_PCM:
            return RecordWriter(at, MacroblockKind::IPcm).Finish();
        case MB_INTRA_16X16:
            return WriteIntra(at, MacroblockKind::Intra16x16, mb);
        case MB_INTRA_8X8:
            return WriteIntra(at, MacroblockKind::Intra8x8, mb);
        case MB_INTRA_4X4:
            return WriteIntra(at, MacroblockKind::Intra4x4, mb);
        case MB_B_DIRECT:
            return RecordWriter(at, mb.skip == MB_SKIPPED ? MacroblockKind::SkippedB : MacroblockKind::DirectB)
                .Finish();
        default:
            break;
    }
    if ((mb.mbType & kH264InterBits) == 0 || mb.shape >= kMostShapes) return 0;
    if (mb.skip == MB_SKIPPED) return RecordWriter(at, MacroblockKind::SkippedP).Finish();
    return WriteInter(at, mb);
}

void WriteHead(std::uint8_t* buffer, std::size_t total) {
    const std::uint32_t head[3] = {static_cast<std::uint32_t>(total), 100, kHeadBytes};
    static_assert(sizeof head == kHeadBytes);
    std::memcpy(buffer, head, sizeof head);
}

}  // namespace

Status WriteMacroblockStatistics(const CH264Frame& frame, std::uint8_t* buffer, std::size_t size,
                                 std::size_t& written) {
    written = 0;
    if (buffer == nullptr) return IMG_E_NULL_ARG;
    if (size < kHeadBytes) return IMG_E_BAD_SIZE;
    written = kHeadBytes;
    const ImageRect rect = CroppedRectangle(ParametersOf(frame).sps);
    Status status = IMG_OK;
    for (std::int32_t y = rect.y / 16; y * 16 < rect.y + rect.height && status == IMG_OK; ++y) {
        // The fields of a field-coded frame have every other row of records.
        const H264MacroblockRecord* row = frame.records + y * static_cast<std::ptrdiff_t>(frame.recordStride);
        for (std::int32_t x = rect.x / 16; x * 16 < rect.x + rect.width; ++x) {
            if (size - written < kLongestStatisticsRecord) {
                status = IMG_E_BAD_SIZE;
                break;
            }
            const std::size_t bytes = WriteRecord(buffer + written, row[x]);
            if (bytes == 0) {
                status = IMG_E_NO_PATH;
                break;
            }
            written += bytes;
        }
    }
    WriteHead(buffer, written);
    return status;
}

}  // namespace KorvaneSoftware
