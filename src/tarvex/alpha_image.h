// The alpha plane of a Tarvex frame: what the payload of an alpha chunk holds, all words little-endian.
//
//   1,024 bytes   line table: its first 512 entries, the rest 0
//   32 bits       bytes of coded lines
//   coded lines   one behind the other, as alpha_runs.h tells, in the order in which the field's lines are coded
//   32 bits       number of entries in the line table
//   16 bits each  the entries: entry k is the line in which byte 1,024 k of the coded lines lies, counted from the
//                 field's first, modulo 65,536
//
// Lines are as wide as the picture. The table lets a reader begin in the middle; this one reads from the start and does
// without. Pictures without alpha are opaque.
#pragma once

#include <cstdint>
#include <span>

#include "foundation/aligned_memory.h"
#include "jpeg/image_reader.h"
#include "jpeg/image_writer.h"

namespace KorvaneSoftware {

/// Reads a field, and codes its alpha on the way.
class CTRVTImageReader : public MJPEG::CImageReader {
public:
    Status Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) override;
    void Begin() override;
    void BeginRow(unsigned row) override;
    void EndRow() override;
    void End() override;

    /// The payload, complete after End.
    std::span<const std::uint8_t> Payload() const { return {store_.Data(), size_}; }

private:
    void EnterLine(std::size_t codedEnd);

    AlignedBuffer lines_;    // Alpha of an MCU row.
    AlignedBuffer store_;    // The payload.
    AlignedBuffer entries_;  // The line table.
    std::size_t lineStride_ = 0;
    std::size_t coded_ = 0;  // Bytes of coded lines.
    std::uint32_t line_ = 0;
    std::uint32_t entryCount_ = 0;
    std::size_t size_ = 0;
};

/// Writes a field with the alpha of a payload.
class CTRVTImageWriter : public TMJPEGImageWriter<0> {
public:
    /// The alpha of the field to come; a payload that is none leaves it opaque.
    void SetPayload(std::span<const std::uint8_t> payload);
    Status Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) override;
    void BeginRow(unsigned row) override;

private:
    AlignedBuffer lines_;
    std::size_t lineStride_ = 0;
    bool hasAlpha_ = false;
    std::span<const std::uint8_t> code_;
};

}  // namespace KorvaneSoftware
