#include "h264/picture.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace KorvaneSoftware {
namespace {

/// What a record holds before anything was decoded: an intra macroblock without references.
H264MacroblockRecord BlankRecord() {
    H264MacroblockRecord record{};
    record.mbType = MB_INTRA_16X16;
    std::memset(record.refIdx, -1, sizeof record.refIdx);
    std::memset(record.refPicId, -1, sizeof record.refPicId);
    return record;
}

}  // namespace

void CH264Picture::Initialize(const H264Sps& parameters, const H264Pps& pictureParameters,
                              const H264SliceHead& header) {
    sps = parameters;
    pps = pictureParameters;
    nalRefIdc = header.nalRefIdc;
    idr = header.idr;
    frameNum = header.frameNum;
    fieldPic = header.fieldPic;
    bottomField = header.bottomField;
    mbaff = header.mbaff;
    adaptiveRefPicMarking = false;
    longTermReference = false;
    timing = {};
    coding = fieldPic ? CODING_FIELD : mbaff ? CODING_MBAFF : CODING_PROGRESSIVE;
    if (sps.IsHigh()) dequant.Build(pictureParameters.scaling, pps.transform8x8Mode);
}

void CH264Picture::Update(const H264SliceHeader& header) {
    nalRefIdc = header.nalRefIdc;
    adaptiveRefPicMarking = header.adaptiveRefPicMarking;
    longTermReference = header.longTermReference;
}

void CH264Picture::SetRecords(H264MacroblockRecord* firstRecord, std::size_t rowStride) {
    records = firstRecord;
    recordStride = rowStride;
}

std::uint32_t CH264Picture::FinishedRows() const {
    if (pending.empty()) return structure == STRUCTURE_FRAME ? 0xFFFFFFFF : 0x7FFFFFFF;
    const CH264Slice& slice = *pending.front();
    const bool filtered = slice.header.disableDeblockingFilterIdc != 1;
    return (filtered ? slice.deblockCursor : slice.reconCursor).mbRow * 16;
}

bool HaveSameLayout(const H264SpsHead& a, const H264SpsHead& b) {
    return a.widthInMbs == b.widthInMbs && a.FrameHeightInMbs() == b.FrameHeightInMbs() &&
           a.chromaFormatIdc == b.chromaFormatIdc && a.bitDepthLumaMinus8 == b.bitDepthLumaMinus8 &&
           a.bitDepthChromaMinus8 == b.bitDepthChromaMinus8;
}

bool CH264Picture::HasLayoutOf(const CH264Picture& other) const { return HaveSameLayout(frame->sps, other.frame->sps); }

void PlaceCursor(SliceCursor& cursor, const CH264Picture& picture) {
    const std::ptrdiff_t sample = picture.BytesPerSample();
    const std::ptrdiff_t x = cursor.mbX;
    const std::ptrdiff_t row = cursor.mbRow;
    cursor.record = picture.records + row * static_cast<std::ptrdiff_t>(picture.recordStride) + x;
    cursor.recordStride = picture.recordStride;
    cursor.stride = picture.stride;
    cursor.planes[0] = picture.planes[0] + row * 16 * picture.stride + x * 16 * sample;
    for (int i = 1; i < 3; ++i) {
        cursor.planes[i] =
            picture.planes[i] + row * std::ptrdiff_t{picture.ChromaMbHeight()} * picture.stride + x * 8 * sample;
    }
}

void StartNextRow(SliceCursor& cursor) {
    cursor.mbX = 0;
    cursor.mbRow += cursor.rowHeight;
    cursor.position = cursor.mbRow * cursor.widthInMbs;
    // Behind the last row there is nothing to point at.
    if (!cursor.AtEnd()) PlaceCursor(cursor, *cursor.slice->picture);
}

Status CH264Memory::Reserve(std::size_t size) {
    if (Data() == nullptr || Capacity() < size) buffer_.Reserve(std::max<std::size_t>(512, std::bit_ceil(size)));
    used = 0;
    return Data() == nullptr ? IMG_E_NO_MEMORY : IMG_OK;
}

CH264Frame::CH264Frame() {
    frame = this;
    for (unsigned i = 0; i < 2; ++i) {
        fields[i].frame = this;
        fields[i].structure = i == 0 ? STRUCTURE_TOP : STRUCTURE_BOTTOM;
        fields[i].fieldPic = true;
        fields[i].bottomField = i == 1;
    }
}

void CH264Frame::Initialize(const H264Sps& parameters, const H264Pps& pictureParameters, const H264SliceHead& header) {
    if (!header.fieldPic) {
        CH264Picture::Initialize(parameters, pictureParameters, header);
        structure = STRUCTURE_FRAME;
        for (CH264Picture& field : fields) {
            // Field pictures may refer to the fields of this frame.
            field.sps = sps;
            field.coding = coding;
            field.frameNum = frameNum;
        }
        return;
    }
    fields[header.bottomField].Initialize(parameters, pictureParameters, header);
    if (AwaitsSecondField()) return;
    structure = STRUCTURE_HOLDS_FIELDS;
    coding = CODING_FIELD;
    firstParity = header.bottomField;
    sps = parameters;
    pps = pictureParameters;
    fieldPic = false;
    bottomField = false;
    mbaff = false;
    idr = header.idr;
    frameNum = header.frameNum;
    CH264Picture& other = fields[!header.bottomField];
    other.sps = sps;
    other.coding = CODING_FIELD;
    other.frameNum = frameNum;
}

std::uint32_t CH264Frame::FinishedRows() const {
    if (!IsFieldCoded()) return CH264Picture::FinishedRows();
    return 2 * std::min(fields[0].FinishedRows(), fields[1].FinishedRows());
}

Status CH264Frame::AllocateBuffers() {
    const std::size_t height = std::size_t{sps.FrameHeightInMbs()} * 16;
    const std::size_t samplesAcross = H264StrideInSamples(std::size_t{sps.widthInMbs} * 16);
    const std::size_t sampleBytes = BytesPerSample();
    const std::size_t rowBytes = samplesAcross * sampleBytes;
    const std::size_t rows = sps.chromaFormatIdc == 2 ? 2 * height : height + height / 2;
    const std::size_t acrossRecords = H264RecordStride(sps.widthInMbs);
    const std::size_t recordCount = acrossRecords * sps.FrameHeightInMbs();

    // A block that held another layout may show, where nothing is decoded, samples above the depth of this one.
    const SampleLayout layout = {rowBytes, rows, recordCount, sps.bitDepthLumaMinus8, sps.bitDepthChromaMinus8};
    if (samples_.Data() == nullptr || recordBlock_.Data() == nullptr || layout != layout_) {
        layout_ = {};
        samples_.Reserve(rowBytes * rows);
        recordBlock_.Reserve(recordCount * sizeof(H264MacroblockRecord));
        if (samples_.Data() == nullptr || recordBlock_.Data() == nullptr) return IMG_E_NO_MEMORY;
        FillBuffers(height, rows, rowBytes, recordCount);
        layout_ = layout;
    }

    stride = static_cast<std::ptrdiff_t>(rowBytes);
    planes[0] = samples_.Data();
    planes[1] = planes[0] + height * rowBytes;
    planes[2] = planes[1] + rowBytes / 2;
    auto* firstRecord = reinterpret_cast<H264MacroblockRecord*>(recordBlock_.Data());
    SetRecords(firstRecord, acrossRecords);
    for (unsigned i = 0; i < 2; ++i) {
        fields[i].stride = 2 * stride;
        for (unsigned plane = 0; plane < 3; ++plane) fields[i].planes[plane] = planes[plane] + i * rowBytes;
        fields[i].SetRecords(firstRecord + i * acrossRecords, 2 * acrossRecords);
    }
    ForEachPicture(*this, [](CH264Picture& picture) {
        for (const auto& slice : picture.pending) {
            PlaceCursor(slice->reconCursor, picture);
            PlaceCursor(slice->deblockCursor, picture);
        }
    });
    return IMG_OK;
}

void CH264Frame::FillBuffers(std::size_t lumaRows, std::size_t rows, std::size_t rowBytes, std::size_t recordCount) {
    const std::size_t lumaBytes = lumaRows * rowBytes;
    const std::size_t chromaBytes = (rows - lumaRows) * rowBytes;
    if (sps.IsHighBitDepth()) {
        auto* words = reinterpret_cast<std::uint16_t*>(samples_.Data());
        std::fill_n(words, lumaBytes / 2, static_cast<std::uint16_t>(128 << sps.bitDepthLumaMinus8));
        std::fill_n(words + lumaBytes / 2, chromaBytes / 2,
                    static_cast<std::uint16_t>(128 << sps.bitDepthChromaMinus8));
    } else {
        std::memset(samples_.Data(), 128, lumaBytes + chromaBytes);
    }
    std::fill_n(reinterpret_cast<H264MacroblockRecord*>(recordBlock_.Data()), recordCount, BlankRecord());
}

void CH264Frame::SetSerial(std::uint32_t number) {
    serial = number;
    pictureId = static_cast<std::int32_t>(number % 128);
    for (int i = 0; i < 2; ++i) fields[i].pictureId = 2 * pictureId + i;
}

void CH264Frame::ClearMarks() {
    marking = MARK_UNUSED;
    for (CH264Picture& field : fields) field.marking = MARK_UNUSED;
}

void CH264Frame::ResetState() {
    times = {};
    structure = STRUCTURE_EMPTY;
    ClearMarks();
    picOrderCnt = kH264NoOrderCount;
    for (CH264Picture& field : fields) field.picOrderCnt = kH264NoOrderCount;
    fieldCount = 0;
    firstParity = 0;
    outputDone = false;
    resetsNumbering = false;
    marked = false;
    outputRequest = {};
}

}  // namespace KorvaneSoftware
