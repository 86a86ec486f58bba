#include "convert/sixteen_bit.h"

#include <algorithm>
#include <cstring>

#include "convert/colour.h"
#include "convert/samples.h"
#include "convert/x86/sixteen_bit_forms.h"

namespace KorvaneSoftware {

namespace {

std::uint32_t WordAt(const std::uint8_t* line, std::size_t index) {
    std::uint16_t word;
    std::memcpy(&word, line + 2 * index, sizeof word);
    return word;
}

// Where the words of a line lie.
struct PlanarWords {
    static std::uint32_t Luma(const ReadLine& line, std::size_t x) { return WordAt(line.plane[0], x); }
    static std::uint32_t Cb(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[1], pair); }
    static std::uint32_t Cr(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[2], pair); }
};
struct SemiPlanarWords {
    static std::uint32_t Luma(const ReadLine& line, std::size_t x) { return WordAt(line.plane[0], x); }
    static std::uint32_t Cb(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[1], 2 * pair); }
    static std::uint32_t Cr(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[1], 2 * pair + 1); }
};

// Right-justified words to bytes, alone and as the mean of two lines.
class RoundedShift {
public:
    // A word has 16 bits: more extra bits leave nothing of it, whatever their number.
    explicit RoundedShift(std::uint8_t extraBits) : shift_(std::min<std::uint32_t>(extraBits, 20)) {}
    std::uint8_t One(std::uint32_t word) const {
        const std::uint32_t rounding = shift_ == 0 ? 0 : 1u << (shift_ - 1);
        return ClampToByte(static_cast<std::int32_t>((word + rounding) >> shift_));
    }
    std::uint8_t Mean(std::uint32_t a, std::uint32_t b) const {
        return ClampToByte(static_cast<std::int32_t>((a + b + (1u << shift_)) >> (shift_ + 1)));
    }

private:
    std::uint32_t shift_;
};

// Left-justified words to bytes.
struct HighByte {
    explicit HighByte(std::uint8_t) {}
    static std::uint8_t One(std::uint32_t word) { return static_cast<std::uint8_t>(word >> 8); }
    static std::uint8_t Mean(std::uint32_t a, std::uint32_t b) { return static_cast<std::uint8_t>((a + b) >> 9); }
};

template <class Dst, class Src, class Narrow>
void NarrowLuma(const WriteLine& to, const ReadLine& from, std::size_t width, const Narrow& narrow) {
    for (std::size_t x = 0; x < width; ++x) Dst::Luma(to, x) = narrow.One(Src::Luma(from, x));
}

template <class Dst, class Src, class Narrow>
void NarrowChroma(const WriteLine& to, const ReadLine& from, std::size_t pairs, const Narrow& narrow) {
    for (std::size_t k = 0; k < pairs; ++k) {
        Dst::Cb(to, k) = narrow.One(Src::Cb(from, k));
        Dst::Cr(to, k) = narrow.One(Src::Cr(from, k));
    }
}

// As many chroma lines on both sides; `LinesPerChroma` picture lines share one.
template <class Dst, class Src, class Narrow, int LinesPerChroma>
void SameChroma_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const Narrow luma(src.lumaExtraBits);
    const Narrow chroma(src.chromaExtraBits);
    for (std::int64_t y = 0; y < src.height; ++y)
        NarrowLuma<Dst, Src>(LineAt<WriteLine>(dst, y, 0), LineAt<ReadLine>(src, y, 0), src.width, luma);
    for (std::int64_t r = 0; r < src.height / LinesPerChroma; ++r)
        NarrowChroma<Dst, Src>(LineAt<WriteLine>(dst, r, r), LineAt<ReadLine>(src, r, r), src.width / 2, chroma);
}

// 4:2:0 to 4:2:2: even lines take their chroma line, odd lines the mean with the next; the last pair has no next.
template <class Dst, class Src, class Narrow>
void ChromaToEveryLine_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const Narrow luma(src.lumaExtraBits);
    const Narrow chroma(src.chromaExtraBits);
    const std::size_t pairs = src.width / 2;
    const std::int64_t chromaLines = src.height / 2;
    for (std::int64_t y = 0; y < src.height; ++y) {
        const std::int64_t r = y / 2;
        const auto to = LineAt<WriteLine>(dst, y, y);
        const auto from = LineAt<ReadLine>(src, y, r);
        NarrowLuma<Dst, Src>(to, from, src.width, luma);
        if (y % 2 == 0 || r + 1 == chromaLines) {
            NarrowChroma<Dst, Src>(to, from, pairs, chroma);
            continue;
        }
        const auto next = LineAt<ReadLine>(src, y, r + 1);
        for (std::size_t k = 0; k < pairs; ++k) {
            Dst::Cb(to, k) = chroma.Mean(Src::Cb(from, k), Src::Cb(next, k));
            Dst::Cr(to, k) = chroma.Mean(Src::Cr(from, k), Src::Cr(next, k));
        }
    }
}

// Bytes to right-justified words.
void Widen(std::uint8_t* to, const std::uint8_t* from, std::size_t count, std::uint32_t shift) {
    for (std::size_t x = 0; x < count; ++x) {
        const auto word = static_cast<std::uint16_t>(std::uint32_t{from[x]} << shift);
        std::memcpy(to + 2 * x, &word, sizeof word);
    }
}

// One depth serves all planes: the luma's.
std::uint32_t WideningShift(const ImageDescriptor& dst) { return std::min<std::uint32_t>(dst.lumaExtraBits, 16); }

// Each chroma line of the source becomes `Repeats` lines.
template <int Repeats>
void WidenPlanes_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::uint32_t shift = WideningShift(dst);
    for (std::int64_t y = 0; y < src.height; ++y) Widen(PlaneLine(dst, 0, y), PlaneLine(src, 0, y), src.width, shift);
    for (int plane = 1; plane < 3; ++plane)
        for (std::int64_t row = 0; row < src.height / 2 * Repeats; ++row)
            Widen(PlaneLine(dst, plane, row), PlaneLine(src, plane, row / Repeats), src.width / 2, shift);
}

void Y400ToS400_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::uint32_t shift = WideningShift(dst);
    for (std::int64_t y = 0; y < src.height; ++y) Widen(PlaneLine(dst, 0, y), PlaneLine(src, 0, y), src.width, shift);
}

}  // namespace

// 4:2:2 to 4:2:0. Unlike the mean that HighByte makes of two lines on the way to 4:2:2, this one is rounded.
void P216ToNv12_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const HighByte narrow(0);
    for (std::int64_t y = 0; y < src.height; ++y)
        NarrowLuma<SemiPlanarSamples, SemiPlanarWords>(LineAt<WriteLine>(dst, y, 0), LineAt<ReadLine>(src, y, 0),
                                                       src.width, narrow);
    for (std::int64_t r = 0; r < src.height / 2; ++r) {
        std::uint8_t* const to = PlaneLine(dst, 1, r);
        const std::uint8_t* const upper = PlaneLine(src, 1, 2 * r);
        const std::uint8_t* const lower = PlaneLine(src, 1, 2 * r + 1);
        for (std::size_t x = 0; x < src.width; ++x)
            to[x] = static_cast<std::uint8_t>((WordAt(upper, x) + 1 + WordAt(lower, x)) >> 9);
    }
}

#define PIXMORPH_PLAIN(name, ...) \
    void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) { __VA_ARGS__(dst, src); }
PIXMORPH_PLAIN(P216ToUyvy, SameChroma_Plain<UyvySamples, SemiPlanarWords, HighByte, 1>)
PIXMORPH_PLAIN(P216ToYuy2, SameChroma_Plain<Yuy2Samples, SemiPlanarWords, HighByte, 1>)
PIXMORPH_PLAIN(P016ToUyvy, ChromaToEveryLine_Plain<UyvySamples, SemiPlanarWords, HighByte>)
PIXMORPH_PLAIN(P016ToYuy2, ChromaToEveryLine_Plain<Yuy2Samples, SemiPlanarWords, HighByte>)
PIXMORPH_PLAIN(P016ToNv12, SameChroma_Plain<SemiPlanarSamples, SemiPlanarWords, HighByte, 2>)
PIXMORPH_PLAIN(S420ToUyvy, ChromaToEveryLine_Plain<UyvySamples, PlanarWords, RoundedShift>)
PIXMORPH_PLAIN(S420ToYuy2, ChromaToEveryLine_Plain<Yuy2Samples, PlanarWords, RoundedShift>)
PIXMORPH_PLAIN(S420ToI420, SameChroma_Plain<PlanarSamples, PlanarWords, RoundedShift, 2>)
PIXMORPH_PLAIN(S422ToUyvy, SameChroma_Plain<UyvySamples, PlanarWords, RoundedShift, 1>)
PIXMORPH_PLAIN(S422ToYuy2, SameChroma_Plain<Yuy2Samples, PlanarWords, RoundedShift, 1>)
PIXMORPH_PLAIN(S422ToY422, SameChroma_Plain<PlanarSamples, PlanarWords, RoundedShift, 1>)
#undef PIXMORPH_PLAIN

namespace {

constexpr ConvertSlot::Entry kI420ToS420Rows[] = {{FEATURES_PLAIN, WidenPlanes_Plain<1>, "I420ToS420_Plain"}};
constexpr ConvertSlot::Entry kI420ToS422Rows[] = {{FEATURES_PLAIN, WidenPlanes_Plain<2>, "I420ToS422_Plain"}};
constexpr ConvertSlot::Entry kY400ToS400Rows[] = {{FEATURES_PLAIN, Y400ToS400_Plain, "Y400ToS400_Plain"}};
#define PIXMORPH_ROWS(name)                                                                         \
    constexpr ConvertSlot::Entry k##name##Rows[] = {{FEATURES_PLAIN, name##_Plain, #name "_Plain"}, \
                                                    {FEATURES_SSE41, name##_Sse41, #name "_Sse41"}, \
                                                    {FEATURES_AVX2, name##_Avx2, #name "_Avx2"},    \
                                                    {FEATURES_AVX512BW, name##_Avx512, #name "_Avx512"}};
PIXMORPH_HIGH_BYTES(PIXMORPH_ROWS)
PIXMORPH_ROUNDED_WORDS(PIXMORPH_ROWS)
#undef PIXMORPH_ROWS

}  // namespace

#define PIXMORPH_WORDS_SLOT(name) constinit ConvertSlot name{#name, k##name##Rows, &ResolveOnFirstCall<name>::Call};
PIXMORPH_HIGH_BYTES(PIXMORPH_WORDS_SLOT)
PIXMORPH_ROUNDED_WORDS(PIXMORPH_WORDS_SLOT)
PIXMORPH_WORDS_SLOT(I420ToS420)
PIXMORPH_WORDS_SLOT(I420ToS422)
PIXMORPH_WORDS_SLOT(Y400ToS400)
#undef PIXMORPH_WORDS_SLOT

namespace {

#define PIXMORPH_ADDRESS(name) &name,
const SlotRegistration kRegistration{&I420ToS420, &I420ToS422, &Y400ToS400,
                                     PIXMORPH_HIGH_BYTES(PIXMORPH_ADDRESS) PIXMORPH_ROUNDED_WORDS(PIXMORPH_ADDRESS)};
#undef PIXMORPH_ADDRESS

}  // namespace

}  // namespace KorvaneSoftware
