// The outward face of the KVMJ codec towards its adapters: what an encoder and a decoder of frames do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "foundation/image_descriptor.h"
#include "foundation/status.h"

namespace KorvaneSoftware {

// Results of these interfaces other than 0.
constexpr Status kCodecFailed = static_cast<Status>(0x80004005);
constexpr Status kCodecNoTables = static_cast<Status>(0x80004003);
constexpr Status kCodecNoMemory = static_cast<Status>(0x8007000E);

/// Flags of Decode and Encode.
enum KvmjFlags : std::uint32_t {
    KVMJ_SHIFT_LINES = 1,   ///< Decode moves the lines down by one, Encode up by one, around the picture's ends.
    KVMJ_SWAP_FIELDS = 16,  ///< The first image is the second field.
};

/// Bit of EncodeParams::flags that is set for a frame that needs no other.
constexpr std::uint32_t kKeyFrame = 16;

struct DecodeParams {
    BitmapInfoHeader source = {};  ///< Size of the frame; biSizeImage is the number of bytes at `data`.
    const std::uint8_t* data = nullptr;
    BitmapInfoHeader destination = {};   ///< Format and size of the picture.
    std::uint8_t* pixels = nullptr;      ///< First byte of the picture's plane.
    std::optional<std::int64_t> stride;  ///< From a line to the next; without one, the smallest that the format has.
};

class IDecoder {
public:
    virtual ~IDecoder() = default;
    /// Makes writers and stores. Both arguments are ignored. @return 0 or kCodecNoMemory
    virtual Status Init(int, int) = 0;
    /// Decodes a frame. Damaged scans are shown as they read; nothing is read past the frame's end.
    /// @param flags  `KvmjFlags`  @return 0 or kCodecFailed
    virtual Status Decode(const DecodeParams& params, std::uint32_t flags) = 0;
    /// Decodes the images that Decode has prepared.
    virtual Status DecodeFields() = 0;
};

struct EncodeParams {
    /// In: biSizeImage is the room at `output`, of which nothing is written past the end. Out: the bytes of the frame,
    /// also where they are more than there is room for.
    BitmapInfoHeader coded = {};
    std::uint8_t* output = nullptr;
    BitmapInfoHeader source = {};    ///< Format and size of the frame.
    std::int32_t quality = 0;        ///< 0 to 10000.
    std::uint32_t* flags = nullptr;  ///< If not null, kKeyFrame is set in it.
};

class IEncoder {
public:
    virtual ~IEncoder() = default;
    /// Makes readers, tables and stores, and sets quality 8000. Both arguments are ignored.
    virtual Status Init(int, int) = 0;
    /// @return 0, or kCodecNoTables before Init
    virtual Status SetQuality(std::int32_t quality) = 0;
    virtual Status GetQuality(std::int32_t* quality) const = 0;
    /// Encodes a frame.
    /// @param pointers, strides  one for each field; of a picture that holds both, the same twice
    /// @param flags        `KvmjFlags`
    /// @param fieldImages  the fields are pictures of their own, each of half the source's height
    /// @return 0 or kCodecFailed
    virtual Status Encode(EncodeParams& params, std::uint8_t* const pointers[2], const std::int64_t strides[2],
                          std::uint32_t flags, bool fieldImages) = 0;
    /// Codes the images that Encode has prepared.
    virtual Status EncodeFields() = 0;
};

}  // namespace KorvaneSoftware
