// The reader of marker segments over arbitrary bytes of exactly their size.
#include "fuzz/fuzz_input.h"
#include "jpeg/stream_reader.h"

using namespace KorvaneSoftware;
using pixmorph_fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pixmorph_fuzz::ExactBuffer bytes({data, size});
    const std::span<const std::uint8_t> frame(bytes.Data(), size);
    CStreamReaderMJPG reader;
    reader.ScanMarkers(frame);
    std::uint32_t behind = 0;
    for (const MarkerRecord& record : reader.Markers()) {
        Require(record.offset >= behind && record.offset < size, "markers follow each other inside the frame");
        behind = record.offset + 1;
    }
    for (int image = 0; image < 3; ++image) {
        alignas(64) std::int16_t luma[64] = {}, chroma[64] = {};
        FieldImageState state;
        state.lumaQuantisers = luma;
        state.chromaQuantisers = chroma;
        state.parts = 1;
        const Status status = reader.ParseFieldImage(state, image, frame);
        Require(status == IMG_OK || status == IMG_E_FAILED || status == IMG_E_UNSUPPORTED || status == IMG_E_MALFORMED,
                "a status of this reader");
        if (status != IMG_OK) continue;
        Require(state.scan >= frame.data() && state.scan <= frame.data() + size, "the scan is in the frame");
        Require(state.parts >= 1 && state.parts <= kMostParts, "parts of a scan");
        Require(state.components[0].horizontal == 2 && state.components[0].vertical >= 1 &&
                    state.components[0].vertical <= 2,
                "4:2:2 or 4:2:0");
    }
    return 0;
}
