// Reads what stands around the scans of a frame.
#pragma once

#include <span>
#include <vector>

#include "foundation/status.h"
#include "jpeg/field_image.h"

namespace KorvaneSoftware {

/// A marker of a frame.
struct MarkerRecord {
    std::uint32_t marker;  ///< FFxx.
    std::uint32_t offset;  ///< From the frame's start.
};

class CStreamReaderMJPG {
public:
    CStreamReaderMJPG() { markers_.reserve(32); }

    /// Walks the whole frame and notes its markers. Never fails: a walk that leads out of the frame has ended.
    void ScanMarkers(std::span<const std::uint8_t> frame);

    /// Interprets the markers of the next image, up to and including its EOI. Fills in what the image says and leaves
    /// the rest of `state` as it was; its tables must be set.
    /// @return 0, IMG_E_FAILED (tables, frame header or scan are missing), IMG_E_UNSUPPORTED (no JPEG of the kind that
    ///         is read here) or IMG_E_MALFORMED
    Status ParseFieldImage(FieldImageState& state, std::int32_t fieldIndex, std::span<const std::uint8_t> frame);

    const std::vector<MarkerRecord>& Markers() const { return markers_; }

private:
    std::vector<MarkerRecord> markers_;
    std::size_t next_ = 0;
};

}  // namespace KorvaneSoftware
