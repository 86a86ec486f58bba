// Quantisation where a block takes several registers: the map of levels other than 0 is shuffled as bytes.
#include "iframe/stream_tables.h"
#include "iframe/x86/block_kernel_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

using namespace iframe;

/// For 16 places of the scan and 16 positions of the block: which byte of the positions each place takes, none of them
/// where the top bit is set.
struct MapShuffles {
    alignas(16) std::uint8_t bytes[4][4][16];
};
constexpr MapShuffles MakeMapShuffles() {
    MapShuffles shuffles = {};
    for (int place = 0; place < 64; ++place)
        for (int part = 0; part < 4; ++part)
            shuffles.bytes[place / 16][part][place % 16] = kZigzagScan[place] / 16 == part
                                                               ? static_cast<std::uint8_t>(kZigzagScan[place] % 16)
                                                               : std::uint8_t{0x80};
    return shuffles;
}
constexpr MapShuffles kMapShuffles = MakeMapShuffles();

// Bytes are 0 where a level of 16 positions is; a level saturates to a byte without becoming 0.
std::uint64_t MapOfBlock(const std::int16_t* levels) {
    __m128i parts[4];
    for (int i = 0; i < 4; ++i)
        parts[i] = _mm_packs_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(levels + i * 16)),
                                   _mm_load_si128(reinterpret_cast<const __m128i*>(levels + i * 16 + 8)));
    std::uint64_t map = 0;
    for (int places = 0; places < 4; ++places) {
        __m128i scanned = _mm_setzero_si128();
        for (int i = 0; i < 4; ++i)
            scanned = _mm_or_si128(scanned, _mm_shuffle_epi8(parts[i], _mm_load_si128(reinterpret_cast<const __m128i*>(
                                                                           kMapShuffles.bytes[places][i]))));
        const int zero = _mm_movemask_epi8(_mm_cmpeq_epi8(scanned, _mm_setzero_si128()));
        map |= static_cast<std::uint64_t>(~zero & 0xFFFF) << (places * 16);
    }
    return map;
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::IFrameQuantise(std::int16_t* blocks, const std::uint16_t* reciprocals, std::uint64_t* nonZero,
                                   std::size_t count) {
    for (std::size_t block = 0; block < count; ++block, blocks += kBlockLength) {
        for (std::size_t i = 0; i < kBlockLength; i += kVecBytes / 2)
            StoreAligned(blocks + i, MulHighRound16(Load(blocks + i), Load(reciprocals + i)));
        nonZero[block] = MapOfBlock(blocks);
    }
}

}  // namespace KorvaneSoftware
