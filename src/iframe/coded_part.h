// Where one thread's slices of a frame are written, and how they become one frame. The first part is written to the
// caller's buffer directly and never past it; the others keep theirs until all are done.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/aligned_memory.h"
#include "foundation/status.h"
#include "iframe/bit_writer.h"

namespace KorvaneSoftware::iframe {

class CodedPart {
public:
    /// The most room that MakeRoom is asked for.
    static constexpr std::size_t kMostRoom = 2048;

    /// Starts a part at the front of the caller's buffer. What would not fit is kept apart, so that a frame of exactly
    /// the buffer's size still fits.
    void BeginInFrame(std::uint8_t* frame, std::uint64_t size);
    /// Starts a part in a buffer of its own, of at least `size` bytes. @return IMG_E_NO_MEMORY
    Status BeginApart(std::uint64_t size);

    BitWriter& Writer() { return writer_; }
    /// Makes sure that `bytes` can be written without further checks.
    /// @return IMG_BUFFER_TOO_SMALL for a part in the frame that has outgrown it, IMG_E_NO_MEMORY for one apart.
    Status MakeRoom(std::size_t bytes) {
        if (static_cast<std::size_t>(end_ - writer_.next) >= bytes + kPendingBytes) return IMG_OK;
        return inFrame_ ? MoveToTail() : Grow(bytes + kPendingBytes);
    }
    /// Writes the last bits. @return IMG_BUFFER_TOO_SMALL for a part in the frame that has outgrown it
    Status Finish();

    const std::uint8_t* Data() const { return begin_; }
    /// Bytes in whole, after Finish.
    std::uint64_t ByteCount() const { return byteCount_; }

private:
    static constexpr std::size_t kPendingBytes = 8;  // What the writer still holds, and the whole words it stores.

    Status MoveToTail();
    Status Grow(std::size_t bytes);

    BitWriter writer_;
    std::uint8_t* begin_ = nullptr;
    std::uint8_t* end_ = nullptr;
    std::uint64_t byteCount_ = 0;
    AlignedBuffer buffer_;

    // For a part in the frame: the frame's end, and where its last bytes go once the frame has no room to spare.
    bool inFrame_ = false;
    bool isInTail_ = false;
    std::uint8_t* frameNext_ = nullptr;
    std::uint8_t* frameEnd_ = nullptr;
    std::uint8_t tail_[2 * (kMostRoom + kPendingBytes)];
};

/// Joins the parts of a frame behind the first one, which lies in the frame, and closes the frame with a sequence end
/// code. As long as the outcome is a success, a part is copied whatever its own status; while it is a failure, a part
/// is left out and its status becomes the outcome. So a failure of a later part alone goes unnoticed, and one of the
/// first is forgiven. Lack of room is never forgiven.
/// @param statuses  what the threads returned.
/// @param size      room in the frame.
/// @param written   receives the frame's bytes.
Status JoinParts(const CodedPart* const* parts, const Status* statuses, unsigned count, std::uint8_t* frame,
                 std::uint64_t size, std::uint64_t& written);

}  // namespace KorvaneSoftware::iframe
