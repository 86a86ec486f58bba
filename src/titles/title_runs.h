// The run-length form of titles that keying hardware takes: groups of 16 pixels in planar 4:2:2 with an inverted key,
// runs of groups in which nothing is visible taking no room.
//
// A stream is a sequence of counter cells (signed 32-bit, little-endian), each followed by what it counts: n > 0 by n
// group records, n < 0 by nothing (-n clear groups). 0 is a cell that was not used yet. Runs go on across row ends, and
// several calls extend one stream through the cursor. Cells and records may lie at any address.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/sample_order.h"
#include "foundation/status.h"

namespace KorvaneSoftware {

/// A group record: luma of 16 pixels, 255 minus their alpha, Cb and Cr of the 8 pairs.
constexpr std::size_t kRecordBytes = 48;

/// Where a stream ends. Both move as it grows; the caller owns the first cell and has set it, normally to 0.
struct RunCursor {
    std::uint8_t* position = nullptr;  ///< Where the next byte goes.
    void* cell = nullptr;              ///< The counter of the last run.
};

/// The groups to compress: `rows` rows of `groups` groups each.
struct GroupRows {
    const std::uint8_t* first = nullptr;
    std::int64_t step = 0;  ///< Bytes from the first group of a row to that of the next.
    std::uint64_t groups = 0;
    std::uint64_t rows = 0;
};

// Compression of a premultiplied BGRA title, of a BGRA picture whose colour is not premultiplied, and of such a picture
// in Y16A. Groups whose largest alpha is below 2 count as clear, whatever colour they hold.
// @return 0; IMG_E_NULL_ARG where something would be written or read through a null pointer: then nothing is written.
Status CompressTitleRuns(RunCursor& cursor, const GroupRows& source) noexcept;
Status CompressBgraRuns(RunCursor& cursor, const GroupRows& source) noexcept;
Status CompressY16ARuns(RunCursor& cursor, const GroupRows& source) noexcept;

/// Every group of a premultiplied title as a record, without counters, `dstStep` bytes from row to row. Chroma is
/// clamped.
Status WriteTitleGroups(std::uint8_t* dst, std::int64_t dstStep, const GroupRows& source) noexcept;

}  // namespace KorvaneSoftware
