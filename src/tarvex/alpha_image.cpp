#include "tarvex/alpha_image.h"

#include <algorithm>
#include <cstring>

#include "tarvex/alpha_runs.h"
#include "tarvex/tarvex_frame.h"

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kLineTableSize = 1024;
constexpr std::size_t kBytesOfEntry = 1024;  // Of coded lines.
constexpr std::size_t kCodeOffset = kLineTableSize + 4;
constexpr std::size_t kLinesOfRow = 8;

constexpr std::size_t EntriesOf(std::size_t coded) { return (coded + kBytesOfEntry - 1) / kBytesOfEntry; }

}  // namespace

Status CTRVTImageReader::Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) {
    if (const Status status = MJPEG::CImageReader::Init(image, fieldIndex, lineShift); status != IMG_OK) return status;
    lineStride_ = std::size_t{16} * Columns();
    lines_.Reserve(lineStride_ * kLinesOfRow);
    const std::size_t most = image.height / 2 * MostBytesOfAlphaLine(image.width);
    entries_.Reserve(2 * EntriesOf(most) + 2);
    store_.Reserve(kCodeOffset + most + 4 + 2 * EntriesOf(most));
    if (lines_.Data() == nullptr || entries_.Data() == nullptr || store_.Data() == nullptr) return IMG_E_NO_MEMORY;
    // Kernels of formats without alpha leave it as it is.
    std::memset(lines_.Data(), 0xFF, lineStride_ * kLinesOfRow);
    return IMG_OK;
}

void CTRVTImageReader::Begin() {
    std::memset(store_.Data(), 0, kLineTableSize);
    coded_ = 0;
    line_ = 0;
    entryCount_ = 0;
    size_ = 0;
}

void CTRVTImageReader::BeginRow(unsigned row) {
    MJPEG::CImageReader::BeginRow(row);
    SetAlpha(lines_.Data(), static_cast<std::ptrdiff_t>(lineStride_));
}

void CTRVTImageReader::EndRow() {
    for (unsigned i = 0; i < context_.lines; ++i) {
        coded_ +=
            EncodeAlphaLine(store_.Data() + kCodeOffset + coded_, {lines_.Data() + i * lineStride_, image_.width});
        EnterLine(coded_);
    }
}

// Enters the line into all entries whose bytes it holds.
void CTRVTImageReader::EnterLine(std::size_t codedEnd) {
    for (; entryCount_ * kBytesOfEntry < codedEnd; ++entryCount_) PutWord16(entries_.Data() + 2 * entryCount_, line_);
    ++line_;
}

void CTRVTImageReader::End() {
    const std::size_t tableSize = std::size_t{2} * entryCount_;
    PutWord32(store_.Data() + kLineTableSize, static_cast<std::uint32_t>(coded_));
    std::uint8_t* const table = store_.Data() + kCodeOffset + coded_;
    PutWord32(table, entryCount_);
    std::memcpy(table + 4, entries_.Data(), tableSize);
    std::memcpy(store_.Data(), entries_.Data(), std::min(tableSize, kLineTableSize));
    size_ = kCodeOffset + coded_ + 4 + tableSize;
}

void CTRVTImageWriter::SetPayload(std::span<const std::uint8_t> payload) {
    code_ = {};
    hasAlpha_ = payload.size() >= kCodeOffset;
    if (!hasAlpha_) return;
    const std::size_t size = GetWord32(payload.data() + kLineTableSize);
    code_ = payload.subspan(kCodeOffset);
    code_ = code_.first(std::min(size, code_.size()));
}

Status CTRVTImageWriter::Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) {
    if (const Status status = TMJPEGImageWriter<0>::Init(image, fieldIndex, lineShift); status != IMG_OK) return status;
    lineStride_ = std::size_t{16} * Columns();
    lines_.Reserve(lineStride_ * kLinesOfRow);
    return lines_.Data() != nullptr ? IMG_OK : IMG_E_NO_MEMORY;
}

void CTRVTImageWriter::BeginRow(unsigned row) {
    TMJPEGImageWriter<0>::BeginRow(row);
    if (!hasAlpha_) return;
    for (unsigned i = 0; i < context_.lines; ++i)
        DecodeAlphaLine({lines_.Data() + i * lineStride_, image_.width}, code_);
    SetAlpha(lines_.Data(), static_cast<std::ptrdiff_t>(lineStride_));
}

}  // namespace KorvaneSoftware
