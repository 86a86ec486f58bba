// MCUs to pixels and back over registers whose 128-bit lanes hold one line each: AVX2 works on two lines at once. The
// set's file defines LoadLines and StoreLines, which take a place for each of two lines; SSE4.1 looks at the first
// alone.
#include "jpeg/x86/mcu_pixel_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

inline Vec Ones() { return Set16(1); }
inline Vec Repeated(const std::int8_t (&pattern)[16]) { return Repeat128(pattern); }

// ---- Blocks to pixels ----

// Samples of kVecLanes lines: 16 of luminance in two registers, 8 of each chrominance.
struct Samples {
    Vec y0, y1, cb, cr;
};

struct Sampling422 {
    static constexpr std::size_t kBlocks = 4;

    static inline Samples Load(const std::int16_t* blocks, unsigned line) {
        const std::int16_t* const p = blocks + 8 * line;
        return {PIXMORPH_SIMD::Load(p), PIXMORPH_SIMD::Load(p + 64), PIXMORPH_SIMD::Load(p + 128),
                PIXMORPH_SIMD::Load(p + 192)};
    }
};
// `line` is even where two are taken at once, and both have the same chrominance.
struct Sampling420 {
    static constexpr std::size_t kBlocks = 6;

    static inline Samples Load(const std::int16_t* blocks, unsigned line) {
        const std::int16_t* const luma = blocks + (line < 8 ? 8 * line : 128 + 8 * (line - 8));
        const std::int16_t* const chroma = blocks + 256 + 8 * (line / 2);
        return {PIXMORPH_SIMD::Load(luma), PIXMORPH_SIMD::Load(luma + 64), Repeat128(chroma), Repeat128(chroma + 64)};
    }
};

// Bytes of two registers of samples, 128 added and clamped.
inline Vec Bytes(Vec a, Vec b) { return Xor(Pack16To8s(a, b), Set8(-128)); }
inline Vec UpperHalf(Vec a) { return AlignRight<8>(a, a); }

// Places of 16 bytes of up to two lines.
struct Lines {
    std::uint8_t* first;
    std::uint8_t* second;

    inline void Store(int at, Vec v) const { StoreLines(first + at, second + at, v); }
};

template <int LumaByte, bool CrFirst>
struct ToPacked {
    static constexpr bool kHasAlpha = false;
    static constexpr bool kMatrix = false;
    static inline void Store(const Lines& to, const Samples& s, Vec) {
        const Vec y = Bytes(s.y0, s.y1), chroma = CrFirst ? Bytes(s.cr, s.cb) : Bytes(s.cb, s.cr);
        const Vec pairs = UnpackLow8(chroma, UpperHalf(chroma));
        to.Store(0, LumaByte == 1 ? UnpackLow8(pairs, y) : UnpackLow8(y, pairs));
        to.Store(16, LumaByte == 1 ? UnpackHigh8(pairs, y) : UnpackHigh8(y, pairs));
    }
};

template <bool Alpha>
struct ToTile {
    static constexpr bool kHasAlpha = Alpha;
    static constexpr bool kMatrix = false;
    static inline void Store(const Lines& to, const Samples& s, Vec alpha) {
        to.Store(0, Bytes(s.y0, s.y1));
        if (Alpha) to.Store(16, alpha);
        to.Store(Alpha ? 32 : 16, Bytes(s.cb, s.cr));
    }
};

// Four bytes of each of 16 pixels, from two registers of two bytes each.
inline void StoreFours(const Lines& to, Vec lowPair, Vec highPair, Vec lowPair2, Vec highPair2) {
    to.Store(0, UnpackLow16(lowPair, lowPair2));
    to.Store(16, UnpackHigh16(lowPair, lowPair2));
    to.Store(32, UnpackLow16(highPair, highPair2));
    to.Store(48, UnpackHigh16(highPair, highPair2));
}

struct ToAyuv {
    static constexpr bool kHasAlpha = true;
    static constexpr bool kMatrix = false;
    static inline void Store(const Lines& to, const Samples& s, Vec alpha) {
        const Vec y = Bytes(s.y0, s.y1), chroma = Bytes(s.cr, s.cb);
        const Vec pairs = UnpackLow8(chroma, UpperHalf(chroma));
        StoreFours(to, UnpackLow16(pairs, pairs), UnpackHigh16(pairs, pairs), UnpackLow8(y, alpha),
                   UnpackHigh8(y, alpha));
    }
};

// (x * (65536 * whole + part)) >> 16.
inline Vec Scaled(Vec x, int whole, int part) { return Add16(MulLow16(x, Set16(whole)), MulHigh16s(x, Set16(part))); }

struct Channels {
    Vec b, g, r;
};

// Samples of at most kMatrixRange to bytes of 16 pixels: sums stay within 16 bits.
constexpr int kMatrixRange = 511;

inline Vec ChannelBytes(Vec luma0, Vec luma1, Vec even, Vec odd) {
    return Pack16To8u(ShiftRight16s<4>(Add16(luma0, UnpackLow16(even, odd))),
                      ShiftRight16s<4>(Add16(luma1, UnpackHigh16(even, odd))));
}

inline Channels ToChannels(const Samples& s) {
    alignas(16) static const std::int8_t kNext[16] = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 14, 15};
    const Vec next = Repeated(kNext);
    const Vec u = s.cb, v = s.cr;
    const Vec us = Add16(u, Shuffle8(u, next)), vs = Add16(v, Shuffle8(v, next));
    // Z(y, 1220992) + 2096.
    const Vec luma0 = Add16(Scaled(s.y0, 19, -24192), Set16(2096)),
              luma1 = Add16(Scaled(s.y1, 19, -24192), Set16(2096));
    const Vec evenG = Sub16(Zero(), Add16(Scaled(v, 13, 512), Scaled(u, 6, 17536)));    // 852480 and 410752
    const Vec oddG = Sub16(Zero(), Add16(Scaled(us, 3, 8768), Scaled(vs, 7, -32512)));  // 205376 and 426240
    return {ChannelBytes(luma0, luma1, Scaled(u, 32, 18048), Scaled(us, 16, 9024)),     // 2115200 and 1057600
            ChannelBytes(luma0, luma1, evenG, oddG),
            ChannelBytes(luma0, luma1, Scaled(v, 26, -30336), Scaled(vs, 13, -15168))};  // 1673600 and 836800
}

struct ToBgra {
    static constexpr bool kHasAlpha = true;
    static constexpr bool kMatrix = true;
    static inline void Store(const Lines& to, const Samples& s, Vec alpha) {
        const Channels c = ToChannels(s);
        StoreFours(to, UnpackLow8(c.b, c.g), UnpackHigh8(c.b, c.g), UnpackLow8(c.r, alpha), UnpackHigh8(c.r, alpha));
    }
};

struct ToBgr {
    static constexpr bool kHasAlpha = false;
    static constexpr bool kMatrix = true;
    static inline void Store(const Lines& to, const Samples& s, Vec) {
        alignas(16) static const std::int8_t kThrees[16] = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1};
        const Vec threes = Repeated(kThrees), zero = Zero();
        const Channels c = ToChannels(s);
        const Vec bgLow = UnpackLow8(c.b, c.g), bgHigh = UnpackHigh8(c.b, c.g);
        const Vec rLow = UnpackLow8(c.r, zero), rHigh = UnpackHigh8(c.r, zero);
        // Four pixels in the low 12 bytes each.
        const Vec p0 = Shuffle8(UnpackLow16(bgLow, rLow), threes), p1 = Shuffle8(UnpackHigh16(bgLow, rLow), threes);
        const Vec p2 = Shuffle8(UnpackLow16(bgHigh, rHigh), threes), p3 = Shuffle8(UnpackHigh16(bgHigh, rHigh), threes);
        to.Store(0, Or(p0, AlignRight<4>(p1, zero)));
        to.Store(16, Or(AlignRight<4>(zero, p1), AlignRight<8>(p2, zero)));
        to.Store(32, Or(AlignRight<8>(zero, p2), AlignRight<12>(p3, zero)));
    }
};

inline bool WithinMatrixRange(const std::int16_t* blocks, std::size_t count) {
    Vec largest = Zero();
    for (std::size_t i = 0; i < 64 * count; i += kVecBytes / sizeof *blocks)
        largest = Max16u(largest, Abs16(Load(blocks + i)));
    return AllZero(SubSat16u(largest, Set16(kMatrixRange)));
}

// False where the blocks are not for vectors: damaged data, of which the plain form knows what is to be shown.
template <class Sampling, class To>
inline bool WriteMcu(const McuTarget& target, const std::int16_t* blocks) {
    if (To::kMatrix && !WithinMatrixRange(blocks, Sampling::kBlocks)) return false;
    std::uint8_t spare[64];  // Takes the second line where there is none.
    Vec alpha = Set8(-1);
    for (unsigned line = 0; line < target.lines; line += kVecLanes) {
        const auto at = static_cast<std::ptrdiff_t>(line);
        const bool both = line + 1 < target.lines;
        if (To::kHasAlpha && target.alpha != nullptr) {
            const std::uint8_t* const from = target.alpha + at * target.alphaStride;
            alpha = LoadLines(from, both ? from + target.alphaStride : from);
        }
        std::uint8_t* const to = target.pixels + at * target.stride;
        To::Store(Lines{to, both ? to + target.stride : spare}, Sampling::Load(blocks, line), alpha);
    }
    return true;
}

// ---- Pixels to blocks ----

inline Vec LessMiddle(Vec words) { return Sub16(words, Set16(128)); }

// Places of the same line, or two, in the four blocks.
struct BlockLines {
    std::int16_t* first;

    inline void SetLuma(Vec low, Vec high) const {
        Store(first, low);
        Store(first + 64, high);
    }
    inline void SetChroma(Vec cb, Vec cr) const {
        Store(first + 128, cb);
        Store(first + 192, cr);
    }
};

// Bytes of up to two lines.
struct SourceLines {
    const std::uint8_t* first;
    const std::uint8_t* second;

    inline Vec At(int at) const { return LoadLines(first + at, second + at); }
};

template <int LumaByte, bool CrFirst>
struct FromPacked {
    static constexpr bool kHasAlpha = false;
    static inline Vec Load(const SourceLines& from, const BlockLines& to) {
        const Vec a = from.At(0), b = from.At(16), low = Set16(0x00FF);
        const Vec chromaA = LumaByte == 1 ? And(a, low) : ShiftRight16u<8>(a);
        const Vec chromaB = LumaByte == 1 ? And(b, low) : ShiftRight16u<8>(b);
        const Vec pairs = Pack16To8u(chromaA, chromaB);
        const Vec even = LessMiddle(And(pairs, low)), odd = LessMiddle(ShiftRight16u<8>(pairs));
        to.SetLuma(LessMiddle(LumaByte == 1 ? ShiftRight16u<8>(a) : And(a, low)),
                   LessMiddle(LumaByte == 1 ? ShiftRight16u<8>(b) : And(b, low)));
        to.SetChroma(CrFirst ? odd : even, CrFirst ? even : odd);
        return a;
    }
};

template <bool Alpha>
struct FromTile {
    static constexpr bool kHasAlpha = Alpha;
    static inline Vec Load(const SourceLines& from, const BlockLines& to) {
        const Vec y = from.At(0), chroma = from.At(Alpha ? 32 : 16), zero = Zero();
        to.SetLuma(LessMiddle(UnpackLow8(y, zero)), LessMiddle(UnpackHigh8(y, zero)));
        to.SetChroma(LessMiddle(UnpackLow8(chroma, zero)), LessMiddle(UnpackHigh8(chroma, zero)));
        return Alpha ? from.At(16) : y;
    }
};

// (x * (65536 * whole + part)) >> 16 of values that are not negative.
inline Vec ScaledUp(Vec x, int whole, int part) { return Add16(MulLow16(x, Set16(whole)), MulHigh16u(x, Set16(part))); }

inline Vec LumaOf(const Channels& c) {
    const Vec r = ScaledUp(c.r, 8, 14336), g = ScaledUp(c.g, 16, 8704), b = ScaledUp(c.b, 3, 8704);
    return ShiftRight16s<5>(Add16(Add16(Sub16(r, Set16(3567)), g), b));
}

inline Vec PairSums(Vec a, Vec b) { return Pack32To16s(MulAddPairs16(a, Ones()), MulAddPairs16(b, Ones())); }

inline void SetMatrixed(const BlockLines& to, const Channels& low, const Channels& high) {
    to.SetLuma(LumaOf(low), LumaOf(high));
    const Vec b = PairSums(low.b, high.b), g = PairSums(low.g, high.g), r = PairSums(low.r, high.r), round = Set16(15);
    const Vec cb = Sub16(Sub16(ScaledUp(b, 7, 1792), ScaledUp(r, 2, 24320)), ScaledUp(g, 4, 43008));
    const Vec cr = Sub16(Sub16(ScaledUp(r, 7, 1792), ScaledUp(b, 1, 9344)), ScaledUp(g, 5, 57984));
    to.SetChroma(ShiftRight16s<5>(Add16(cb, round)), ShiftRight16s<5>(Add16(cr, round)));
}

// Words of eight pixels from two registers of four bytes each.
inline Channels SplitFours(Vec a, Vec b) {
    const Vec low = Set32(0xFF);
    return {Pack32To16u(And(a, low), And(b, low)),
            Pack32To16u(And(ShiftRight32u<8>(a), low), And(ShiftRight32u<8>(b), low)),
            Pack32To16u(And(ShiftRight32u<16>(a), low), And(ShiftRight32u<16>(b), low))};
}

struct FromBgra {
    static constexpr bool kHasAlpha = true;
    static inline Vec Load(const SourceLines& from, const BlockLines& to) {
        const Vec a = from.At(0), b = from.At(16), c = from.At(32), d = from.At(48);
        SetMatrixed(to, SplitFours(a, b), SplitFours(c, d));
        return Pack16To8u(Pack32To16u(ShiftRight32u<24>(a), ShiftRight32u<24>(b)),
                          Pack32To16u(ShiftRight32u<24>(c), ShiftRight32u<24>(d)));
    }
};

struct FromBgr {
    static constexpr bool kHasAlpha = false;
    static inline Vec Load(const SourceLines& from, const BlockLines& to) {
        alignas(16) static const std::int8_t kFours[16] = {0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1};
        alignas(16) static const std::int8_t kLastFours[16] = {4,  5,  6,  -1, 7,  8,  9,  -1,
                                                               10, 11, 12, -1, 13, 14, 15, -1};
        const Vec fours = Repeated(kFours);
        const Vec a = Shuffle8(from.At(0), fours), b = Shuffle8(from.At(12), fours);
        // The last four pixels are read with what stands before them: nothing behind the line is touched.
        const Vec c = Shuffle8(from.At(24), fours), d = Shuffle8(from.At(32), Repeated(kLastFours));
        SetMatrixed(to, SplitFours(a, b), SplitFours(c, d));
        return a;
    }
};

template <class From>
inline void ReadMcu(std::int16_t* blocks, const McuSource& source) {
    std::uint8_t spare[16];
    for (unsigned line = 0; line < 8; line += kVecLanes) {
        const unsigned last = source.lines - 1, one = line < last ? line : last,
                       two = line + 1 < last ? line + 1 : last;
        const SourceLines from = {source.pixels + static_cast<std::ptrdiff_t>(one) * source.stride,
                                  source.pixels + static_cast<std::ptrdiff_t>(two) * source.stride};
        const Vec alpha = From::Load(from, {blocks + 8 * line});
        if (From::kHasAlpha && source.alpha != nullptr && line < source.lines) {
            std::uint8_t* const to = source.alpha + static_cast<std::ptrdiff_t>(line) * source.alphaStride;
            StoreLines(to, line + 1 < source.lines ? to + source.alphaStride : spare, alpha);
        }
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::Write422ToBgr(const McuTarget& target, const std::int16_t* blocks) {
    if (!WriteMcu<Sampling422, ToBgr>(target, blocks)) plain::Write422ToBgr(target, blocks);
}
void PIXMORPH_SIMD::Write422ToBgra(const McuTarget& target, const std::int16_t* blocks) {
    if (!WriteMcu<Sampling422, ToBgra>(target, blocks)) plain::Write422ToBgra(target, blocks);
}
void PIXMORPH_SIMD::Write420ToBgr(const McuTarget& target, const std::int16_t* blocks) {
    if (!WriteMcu<Sampling420, ToBgr>(target, blocks)) plain::Write420ToBgr(target, blocks);
}
void PIXMORPH_SIMD::Write420ToBgra(const McuTarget& target, const std::int16_t* blocks) {
    if (!WriteMcu<Sampling420, ToBgra>(target, blocks)) plain::Write420ToBgra(target, blocks);
}

#define PIXMORPH_VECTOR_WRITER(name, ...)                                           \
    void PIXMORPH_SIMD::name(const McuTarget& target, const std::int16_t* blocks) { \
        WriteMcu<__VA_ARGS__>(target, blocks);                                      \
    }
#define PIXMORPH_VECTOR_READER(name, ...) \
    void PIXMORPH_SIMD::name(std::int16_t* blocks, const McuSource& source) { ReadMcu<__VA_ARGS__>(blocks, source); }

PIXMORPH_VECTOR_WRITER(Write422ToAyuv, Sampling422, ToAyuv)
PIXMORPH_VECTOR_WRITER(Write422ToUyvy, Sampling422, ToPacked<1, false>)
PIXMORPH_VECTOR_WRITER(Write422ToYuy2, Sampling422, ToPacked<0, false>)
PIXMORPH_VECTOR_WRITER(Write422ToYvyu, Sampling422, ToPacked<0, true>)
PIXMORPH_VECTOR_WRITER(Write422ToY16, Sampling422, ToTile<false>)
PIXMORPH_VECTOR_WRITER(Write422ToY16A, Sampling422, ToTile<true>)
PIXMORPH_VECTOR_WRITER(Write420ToUyvy, Sampling420, ToPacked<1, false>)
PIXMORPH_VECTOR_WRITER(Write420ToYuy2, Sampling420, ToPacked<0, false>)
PIXMORPH_VECTOR_WRITER(Write420ToYvyu, Sampling420, ToPacked<0, true>)
PIXMORPH_VECTOR_READER(ReadBgrTo422, FromBgr)
PIXMORPH_VECTOR_READER(ReadBgraTo422, FromBgra)
PIXMORPH_VECTOR_READER(ReadUyvyTo422, FromPacked<1, false>)
PIXMORPH_VECTOR_READER(ReadYuy2To422, FromPacked<0, false>)
PIXMORPH_VECTOR_READER(ReadYvyuTo422, FromPacked<0, true>)
PIXMORPH_VECTOR_READER(ReadY16To422, FromTile<false>)
PIXMORPH_VECTOR_READER(ReadY16ATo422, FromTile<true>)

}  // namespace KorvaneSoftware
