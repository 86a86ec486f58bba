#include "iframe/coded_part.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "iframe/frame_headers.h"

namespace KorvaneSoftware::iframe {

void CodedPart::BeginInFrame(std::uint8_t* frame, std::uint64_t size) {
    writer_ = BitWriter();
    writer_.next = begin_ = frame;
    end_ = frameEnd_ = frame + size;
    inFrame_ = true;
    isInTail_ = false;
    byteCount_ = 0;
}

Status CodedPart::BeginApart(std::uint64_t size) {
    if (buffer_.Data() == nullptr || buffer_.Capacity() < size) buffer_.Reserve(std::max<std::uint64_t>(size, 1));
    if (buffer_.Data() == nullptr) return IMG_E_NO_MEMORY;
    writer_ = BitWriter();
    writer_.next = begin_ = buffer_.Data();
    end_ = begin_ + buffer_.Capacity();
    inFrame_ = false;
    byteCount_ = 0;
    return IMG_OK;
}

Status CodedPart::MoveToTail() {
    if (!isInTail_) {
        isInTail_ = true;
        frameNext_ = writer_.next;
        writer_.next = tail_;
        end_ = tail_ + sizeof tail_;
        return IMG_OK;
    }
    // The tail takes twice the most room that is ever asked for, the frame had less than that once: it has outgrown it.
    return IMG_BUFFER_TOO_SMALL;
}

Status CodedPart::Grow(std::size_t bytes) {
    const auto used = static_cast<std::size_t>(writer_.next - begin_);
    std::uint64_t capacity = buffer_.Capacity();
    do capacity *= 2;
    while (capacity - used < bytes);
    AlignedBuffer larger;
    larger.Reserve(capacity);
    if (larger.Data() == nullptr) return IMG_E_NO_MEMORY;
    std::memcpy(larger.Data(), begin_, used);
    buffer_ = std::move(larger);
    begin_ = buffer_.Data();
    writer_.next = begin_ + used;
    end_ = begin_ + buffer_.Capacity();
    return IMG_OK;
}

Status CodedPart::Finish() {
    writer_.Flush();
    if (inFrame_ && isInTail_) {
        const auto size = static_cast<std::size_t>(writer_.next - tail_);
        if (size > static_cast<std::size_t>(frameEnd_ - frameNext_)) return IMG_BUFFER_TOO_SMALL;
        std::memcpy(frameNext_, tail_, size);
        byteCount_ = static_cast<std::uint64_t>(frameNext_ - begin_) + size;
    } else {
        byteCount_ = static_cast<std::uint64_t>(writer_.next - begin_);
    }
    return IMG_OK;
}

Status JoinParts(const CodedPart* const* parts, const Status* statuses, unsigned count, std::uint8_t* frame,
                 std::uint64_t size, std::uint64_t& written) {
    Status status = statuses[0];
    bool fits = status != IMG_BUFFER_TOO_SMALL;
    written = parts[0]->ByteCount();
    const auto append = [&](const std::uint8_t* bytes, std::uint64_t byteCount) {
        if (!fits || byteCount > size - written) {
            fits = false;
            return;
        }
        std::memcpy(frame + written, bytes, byteCount);
        written += byteCount;
    };
    for (unsigned i = 1; i < count; ++i) {
        if (status == IMG_OK)
            append(parts[i]->Data(), parts[i]->ByteCount());
        else
            status = statuses[i];
    }
    static constexpr std::uint8_t kEnd[kStartCodeBytes] = {0, 0, 1, START_SEQUENCE_END};
    append(kEnd, sizeof kEnd);
    return fits ? status : IMG_BUFFER_TOO_SMALL;
}

}  // namespace KorvaneSoftware::iframe
