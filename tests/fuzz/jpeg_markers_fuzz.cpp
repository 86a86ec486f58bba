// The walk over the markers of anything, and what is made of them.
#include "fuzz_input.h"
#include "jpeg/stream_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace km = KorvaneSoftware;
    pixmorph_fuzz::ExactBuffer frame(size, 0);
    if (size != 0) std::memcpy(frame.Data(), data, size);
    const std::span<const std::uint8_t> bytes(frame.Data(), size);
    static km::CStreamReaderMJPG reader;
    std::int16_t luma[64], chroma[64];
    km::FieldImageState state;
    state.lumaQuantisers = luma;
    state.chromaQuantisers = chroma;
    reader.ScanMarkers(bytes);
    // Each marker lies further on than the one before.
    for (std::size_t i = 1; i < reader.Markers().size(); ++i)
        if (reader.Markers()[i].offset <= reader.Markers()[i - 1].offset) __builtin_trap();
    for (std::int32_t field = 0; field < 3; ++field) {
        const km::Status status = reader.ParseFieldImage(state, field, bytes);
        if (status == km::IMG_OK && (state.scan < bytes.data() || state.scan > bytes.data() + size)) __builtin_trap();
        if (state.parts > km::kMostParts) __builtin_trap();
    }
    return 0;
}
