// The units of an Annex B byte stream.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/aligned_memory.h"
#include "foundation/status.h"
#include "h264/parsing/bit_reader.h"

namespace KorvaneSoftware {

enum H264NalType : std::uint32_t {
    NAL_SLICE = 1,
    NAL_SLICE_IDR = 5,
    NAL_SEI = 6,
    NAL_SPS = 7,
    NAL_PPS = 8,
};

/// One unit as it stands in a sample: three bytes of start code, the header at byte 3, the payload from byte 4 on.
struct NalUnit {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;

    bool HasHeader() const { return size > 3; }
    bool ForbiddenBit() const { return (data[3] & 0x80) != 0; }
    std::uint32_t RefIdc() const { return data[3] >> 5 & 3; }
    std::uint32_t Type() const { return data[3] & 31; }
};

/// Offset of the first start code 00 00 01 at or behind `from`; `size` when there is none.
std::size_t FindStartCode(const std::uint8_t* data, std::size_t size, std::size_t from);

/// The unit whose start code stands at `offset`: it ends where the next start code begins or the sample ends.
NalUnit UnitAt(const std::uint8_t* data, std::size_t size, std::size_t offset);

/// Copies a unit without its emulation prevention bytes: each 03 behind two zeros is dropped, also as the last byte.
/// @param destination  room for `size` bytes
/// @return             bytes written
std::size_t Unescape(std::uint8_t* destination, const std::uint8_t* source, std::size_t size);

/// The payload of a unit without emulation prevention, on the stack where it is short.
class UnescapedUnit {
public:
    /// @return 0 or IMG_E_NO_MEMORY
    Status Load(const NalUnit& unit);
    /// At the first bit of the payload.
    H264BitReader Reader() const { return {data_ + 4, size_ - 4}; }

private:
    static constexpr std::size_t kShort = 256;
    std::uint8_t short_[kShort];
    AlignedBuffer long_;
    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace KorvaneSoftware
