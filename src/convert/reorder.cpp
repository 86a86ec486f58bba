#include "convert/reorder.h"

#include <cstddef>
#include <cstdint>

#include "convert/reorder_list.h"
#include "convert/samples.h"
#include "convert/x86/reorder_x86.h"
#include "foundation/sync.h"

namespace KorvaneSoftware {

namespace {

/// Chroma of one pixel pair.
struct ChromaPair {
    std::uint8_t u, v;
};

template <class Samples, class Line>
ChromaPair ReadChroma(const Line& line, std::size_t pair) {
    return {Samples::Cb(line, pair), Samples::Cr(line, pair)};
}

template <class Samples>
void WriteChroma(const WriteLine& line, std::size_t pair, ChromaPair chroma) {
    Samples::Cb(line, pair) = chroma.u;
    Samples::Cr(line, pair) = chroma.v;
}

constexpr std::uint8_t Mean(std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>((a + 1 + b) >> 1); }
constexpr ChromaPair Mean(ChromaPair a, ChromaPair b) { return {Mean(a.u, b.u), Mean(a.v, b.v)}; }

/// Luma of a pixel pair; opaque alpha where the destination has some.
template <class Dst>
void WriteLuma(const WriteLine& line, std::size_t pair, std::uint8_t first, std::uint8_t second) {
    Dst::Luma(line, 2 * pair) = first;
    Dst::Luma(line, 2 * pair + 1) = second;
    if constexpr (Dst::kHasAlpha) Dst::Alpha(line, 2 * pair) = Dst::Alpha(line, 2 * pair + 1) = 255;
}

template <class Dst, class Src>
void CopyLuma(const WriteLine& dst, const ReadLine& src, std::size_t pairs) {
    for (std::size_t pair = 0; pair < pairs; ++pair)
        WriteLuma<Dst>(dst, pair, Src::Luma(src, 2 * pair), Src::Luma(src, 2 * pair + 1));
}

template <class Dst, class Src>
void Reorder422To422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    for (std::int64_t row = 0; row < src.height; ++row) {
        const auto from = LineAt<ReadLine>(src, row, row);
        const auto to = LineAt<WriteLine>(dst, row, row);
        for (std::size_t pair = 0; pair < pairs; ++pair) {
            // All four samples are read before one is written: packed formats may be converted in place.
            const std::uint8_t first = Src::Luma(from, 2 * pair);
            const std::uint8_t second = Src::Luma(from, 2 * pair + 1);
            const ChromaPair chroma = ReadChroma<Src>(from, pair);
            WriteLuma<Dst>(to, pair, first, second);
            WriteChroma<Dst>(to, pair, chroma);
        }
    }
}

/// Each chroma line is the rounded mean of the two that it stands for.
template <class Dst, class Src>
void Reorder422To420(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    for (std::int64_t chromaRow = 0; chromaRow < src.height / 2; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const auto from0 = LineAt<ReadLine>(src, row, row);
        const auto from1 = LineAt<ReadLine>(src, row + 1, row + 1);
        const auto to0 = LineAt<WriteLine>(dst, row, chromaRow);
        const auto to1 = LineAt<WriteLine>(dst, row + 1, chromaRow);
        CopyLuma<Dst, Src>(to0, from0, pairs);
        CopyLuma<Dst, Src>(to1, from1, pairs);
        for (std::size_t pair = 0; pair < pairs; ++pair)
            WriteChroma<Dst>(to0, pair, Mean(ReadChroma<Src>(from0, pair), ReadChroma<Src>(from1, pair)));
    }
}

/// Even lines take the chroma line as it is, odd lines its rounded mean with the next one. The last two lines have no
/// next one and both take the last as it is.
template <class Dst, class Src>
void Reorder420To422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    const std::int64_t chromaRows = src.height / 2;
    for (std::int64_t chromaRow = 0; chromaRow < chromaRows; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const std::int64_t nextRow = chromaRow + 1 < chromaRows ? chromaRow + 1 : chromaRow;
        const auto from0 = LineAt<ReadLine>(src, row, chromaRow);
        const auto from1 = LineAt<ReadLine>(src, row + 1, nextRow);
        const auto to0 = LineAt<WriteLine>(dst, row, row);
        const auto to1 = LineAt<WriteLine>(dst, row + 1, row + 1);
        CopyLuma<Dst, Src>(to0, from0, pairs);
        CopyLuma<Dst, Src>(to1, from1, pairs);
        for (std::size_t pair = 0; pair < pairs; ++pair) {
            const ChromaPair chroma = ReadChroma<Src>(from0, pair);
            WriteChroma<Dst>(to0, pair, chroma);
            WriteChroma<Dst>(to1, pair, Mean(chroma, ReadChroma<Src>(from1, pair)));
        }
    }
}

template <class Dst, class Src>
void Reorder420To420(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    for (std::int64_t row = 0; row < src.height; ++row) {
        const auto from = LineAt<ReadLine>(src, row, row / 2);
        const auto to = LineAt<WriteLine>(dst, row, row / 2);
        CopyLuma<Dst, Src>(to, from, pairs);
        if (row % 2 != 0) continue;
        for (std::size_t pair = 0; pair < pairs; ++pair) WriteChroma<Dst>(to, pair, ReadChroma<Src>(from, pair));
    }
}

}  // namespace

std::size_t ReorderCachedLimit() { return GetCacheSize() / 2; }

#define PIXMORPH_REORDER_SLOT(name, kernel, from, to)                           \
    void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) { \
        kernel<to##Samples, from##Samples>(dst, src);                           \
    }                                                                           \
    static constexpr ConvertSlot::Entry k##name##Rows[] = {                     \
        {FEATURES_PLAIN, name##_Plain, #name "_Plain"},                         \
        {FEATURES_SSE41, name##_Sse41, #name "_Sse41"},                         \
        {FEATURES_AVX2, name##_Avx2, #name "_Avx2"},                            \
        {FEATURES_AVX512BW, name##_Avx512, #name "_Avx512"},                    \
    };                                                                          \
    constinit ConvertSlot name{#name, k##name##Rows, &ResolveOnFirstCall<name>::Call};

#define PIXMORPH_REORDER_SLOT_422_TO_422(name, from, to) PIXMORPH_REORDER_SLOT(name, Reorder422To422, from, to)
#define PIXMORPH_REORDER_SLOT_422_TO_420(name, from, to) PIXMORPH_REORDER_SLOT(name, Reorder422To420, from, to)
#define PIXMORPH_REORDER_SLOT_420_TO_422(name, from, to) PIXMORPH_REORDER_SLOT(name, Reorder420To422, from, to)
#define PIXMORPH_REORDER_SLOT_420_TO_420(name, from, to) PIXMORPH_REORDER_SLOT(name, Reorder420To420, from, to)

PIXMORPH_REORDER_422_TO_422(PIXMORPH_REORDER_SLOT_422_TO_422)
PIXMORPH_REORDER_422_TO_420(PIXMORPH_REORDER_SLOT_422_TO_420)
PIXMORPH_REORDER_420_TO_422(PIXMORPH_REORDER_SLOT_420_TO_422)
PIXMORPH_REORDER_420_TO_420(PIXMORPH_REORDER_SLOT_420_TO_420)

namespace {

#define PIXMORPH_REORDER_ADDRESS(name, from, to) &name,
const SlotRegistration kRegistration{PIXMORPH_REORDER_ALL(PIXMORPH_REORDER_ADDRESS)};

}  // namespace

}  // namespace KorvaneSoftware
