// The one door through which a single frame is compressed or decompressed: a table of codecs, and an object that owns
// at most one encoder and one decoder made from it.
#pragma once

#include <cstdint>
#include <span>

#include "codec/inward_codec.h"

namespace KorvaneSoftware {

/// A row of the table of codecs.
struct CodecTableEntry {
    /// Makes a new codec with one reference. @return null where it cannot be made; nothing is thrown
    using Factory = IBasicInterface* (*)();

    std::uint32_t kind;     ///< `CodecKind`
    std::uint32_t fourCC;   ///< Stream tag.
    const wchar_t* name;    ///< For display.
    std::uint32_t option;   ///< Becomes CodecOptions::flags of an encoder. A decoder gets no options.
    Factory createEncoder;  ///< Null where there is none.
    Factory createDecoder;
};

/// Owns a codec: the factory's reference on the object, and the query's on the view through which it is called.
template <class View>
class TCodecHolder {
public:
    TCodecHolder() = default;
    TCodecHolder(const TCodecHolder&) = delete;
    TCodecHolder& operator=(const TCodecHolder&) = delete;
    ~TCodecHolder() { Reset(); }

    /// Gives up what it held and takes over the reference on `object`. It stays empty for null or an object without the
    /// view, which then loses the reference.
    void Take(IBasicInterface* object, const GUID& viewId);
    void Reset();
    View* Get() const { return view_; }

private:
    IBasicInterface* object_ = nullptr;
    View* view_ = nullptr;
};

/// Lists the codecs of a table and drives one encoder and one decoder. Each method is that of the same name in
/// include/pixmorph, with the same arguments and results; nothing is thrown. Takes no lock: one call at a time.
class CVideoCodec {
public:
    /// @param table  outlives the object.
    explicit CVideoCodec(std::span<const CodecTableEntry> table) : table_(table) {}

    HRESULT Count(std::uint32_t* count) const;
    HRESULT Info(std::uint32_t* fourCC, wchar_t** name, std::int32_t index) const;
    static HRESULT IsEqual(std::uint32_t fourCC, std::uint32_t another);

    HRESULT EncSetFormat(std::int32_t index, std::int32_t width, std::int32_t height);
    HRESULT EncSetQuality(std::int32_t quality);
    HRESULT Encode(std::uint8_t* dst, std::int32_t dstBufferSize, std::uint32_t* dstSize,
                   const std::uint8_t* const* src, const std::int32_t* srcStride, std::uint32_t srcFormat);

    HRESULT DecSetFormat(std::int32_t index, std::int32_t width, std::int32_t height);
    HRESULT Decode(std::uint8_t* const* dst, const std::int32_t* dstStride, std::uint32_t dstFormat,
                   const std::uint8_t* src, std::int32_t srcSize);

private:
    /// One of the two sides: a codec and the stream that it was set up for.
    template <class View>
    struct Side {
        TCodecHolder<View> codec;
        CodedFormat format;
    };

    const CodecTableEntry* FindRow(std::int32_t index) const;
    template <class View>
    static HRESULT SetFormat(Side<View>& side, const CodecTableEntry& row, CodecTableEntry::Factory factory,
                             const GUID& viewId, const CodecOptions* options, std::int32_t width, std::int32_t height);

    std::span<const CodecTableEntry> table_;
    Side<IVideoEncoder> encoder_;
    Side<IVideoDecoder> decoder_;  // Given up before the encoder.
};

}  // namespace KorvaneSoftware
