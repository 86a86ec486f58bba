// Where luma, chroma and alpha of a step of kPixels pixels come from in each format, as 8.8 words at every pixel:
// chroma is interpolated along the line here, and between lines where two lines share it.
#pragma once

#include "convert/simd/rgb_lines.inc.h"
#include "foundation/sample_order.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// 8.8 words of luma: what lane-wise unpacks, low and high, make of a register of bytes.
struct LumaWords {
    Vec low, high;
};

/// 8.8 words of chroma at the pixels of those registers.
struct ChromaWords {
    Vec lowU, highU, lowV, highV;
};

// Means of 8.8 words that come from bytes are exact, and so are means of two such means: the rounding of the average
// instruction never shows.
inline ChromaWords Mean(const ChromaWords& a, const ChromaWords& b) {
    return {Avg16(a.lowU, b.lowU), Avg16(a.highU, b.highU), Avg16(a.lowV, b.lowV), Avg16(a.highV, b.highV)};
}

/// Chroma at all pixels from a word for each pixel pair, and the word of the pair that follows.
inline ChromaWords Interpolate(Vec u, Vec v, Vec nextU, Vec nextV) {
    const Vec secondU = Avg16(u, nextU), secondV = Avg16(v, nextV);
    return {UnpackLow16(u, secondU), UnpackHigh16(u, secondU), UnpackLow16(v, secondV), UnpackHigh16(v, secondV)};
}

inline LumaWords WidenLuma(Vec bytes) { return {UnpackLow8(Zero(), bytes), UnpackHigh8(Zero(), bytes)}; }

/// The register `Bytes` on in memory, where the last `Bytes` bytes of a line are repeated behind it.
template <int Bytes>
inline Vec NextAtEnd(const std::uint8_t* last) {
    alignas(64) std::uint8_t window[kVecBytes + 16];
    Store(window, Load(last));
    for (std::size_t i = 0; i < Bytes; ++i) window[kVecBytes + i] = last[kVecBytes - Bytes + i];
    return Load(window + Bytes);
}

// Sources: samples of the step at pixel x, a multiple of kGranule. kPacked says in which order the words lie: as a
// lane-wise unpack or pack of two registers leaves them (see rgb_lanes_sse41.h).

template <PackedOrder kOrder>
struct PackedSource {
    static constexpr bool kPacked = true;
    static constexpr std::size_t kGranule = 2;
    static constexpr bool kHasAlpha = false;

    static inline void PrefetchLuma(const ReadLine& line, std::size_t x) {
        Prefetch<2 * kPixels>(line.plane[0] + 2 * x);
    }
    static inline void PrefetchChroma(const ReadLine&, std::size_t) {}
    static inline LumaWords Luma(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[0] + 2 * x;
        return {LumaOf(Load(p)), LumaOf(Load(p + kVecBytes))};
    }
    template <bool kLast>
    static inline ChromaWords Chroma(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[0] + 2 * x;
        const std::uint8_t* const second = p + kVecBytes;
        Vec behind;
        if constexpr (kLast)
            behind = NextAtEnd<4>(second);
        else
            behind = Load(second + 4);
        ChromaWords words;
        SitesOf(Load(p), Load(p + 4), words.lowU, words.lowV);
        SitesOf(Load(second), behind, words.highU, words.highV);
        return words;
    }

private:
    static inline Vec LumaOf(Vec a) {
        if constexpr (kOrder.IsLumaFirst())
            return ShiftLeft16<8>(a);
        else
            return And(a, Set16(0xFF00));
    }
    static inline Vec ChromaOf(Vec a) {
        if constexpr (kOrder.IsLumaFirst())
            return And(a, Set16(0xFF00));
        else
            return ShiftLeft16<8>(a);
    }
    static inline void SitesOf(Vec pairs, Vec next, Vec& u, Vec& v) {
        const Vec first = ChromaOf(pairs);
        const Vec second = Avg16(first, ChromaOf(next));
        if constexpr (kOrder.IsVFirst())
            OrderSites(first, second, v, u);
        else
            OrderSites(first, second, u, v);
    }
};
using UyvySource = PackedSource<kUyvyOrder>;
using Yuy2Source = PackedSource<kYuy2Order>;
using YvyuSource = PackedSource<kYvyuOrder>;

struct PlanarSource {
    static constexpr bool kPacked = false;
    static constexpr std::size_t kGranule = 2;
    static constexpr bool kHasAlpha = false;

    static inline void PrefetchLuma(const ReadLine& line, std::size_t x) { Prefetch<kPixels>(line.plane[0] + x); }
    static inline void PrefetchChroma(const ReadLine& line, std::size_t x) {
        Prefetch<kPixels / 2>(line.plane[1] + x / 2);
        Prefetch<kPixels / 2>(line.plane[2] + x / 2);
    }
    static inline LumaWords Luma(const ReadLine& line, std::size_t x) { return WidenLuma(Load(line.plane[0] + x)); }
    template <bool kLast>
    static inline ChromaWords Chroma(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const u = line.plane[1] + x / 2;
        const std::uint8_t* const v = line.plane[2] + x / 2;
        return Interpolate(Widen(LoadWiden8(u)), Widen(LoadWiden8(v)), Next<kLast>(u), Next<kLast>(v));
    }
    template <bool kLast>
    static inline ChromaWords Between(const ChromaWords& chroma, const ReadLine (&lines)[2], std::size_t x) {
        return Mean(chroma, Chroma<kLast>(lines[1], x));
    }

private:
    static inline Vec Widen(Vec words) { return ShiftLeft16<8>(words); }
    template <bool kLast>
    static inline Vec Next(const std::uint8_t* p) {
        if constexpr (kLast) {
            alignas(64) std::uint8_t window[kVecBytes / 2 + 16];
            StoreHalf(window, LoadHalf(p));
            window[kVecBytes / 2] = p[kVecBytes / 2 - 1];
            return Widen(LoadWiden8(window + 1));
        } else {
            return Widen(LoadWiden8(p + 1));
        }
    }
};

struct SemiPlanarSource {
    static constexpr bool kPacked = false;
    static constexpr std::size_t kGranule = 2;
    static constexpr bool kHasAlpha = false;

    static inline void PrefetchLuma(const ReadLine& line, std::size_t x) { Prefetch<kPixels>(line.plane[0] + x); }
    static inline void PrefetchChroma(const ReadLine& line, std::size_t x) { Prefetch<kPixels>(line.plane[1] + x); }
    static inline LumaWords Luma(const ReadLine& line, std::size_t x) { return WidenLuma(Load(line.plane[0] + x)); }
    template <bool kLast>
    static inline ChromaWords Chroma(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[1] + x;
        const Vec pairs = Load(p);
        Vec next;
        if constexpr (kLast)
            next = NextAtEnd<2>(p);
        else
            next = Load(p + 2);
        const Vec high = Set16(0xFF00);
        return Interpolate(ShiftLeft16<8>(pairs), And(pairs, high), ShiftLeft16<8>(next), And(next, high));
    }
    template <bool kLast>
    static inline ChromaWords Between(const ChromaWords& chroma, const ReadLine (&lines)[2], std::size_t x) {
        return Mean(chroma, Chroma<kLast>(lines[1], x));
    }
};

/// Blocks of 16 pixels. A lane holds a block.
template <BlockOrder kOrder>
struct BlockSource {
    static constexpr bool kPacked = false;
    static constexpr std::size_t kGranule = 16;
    static constexpr bool kHasAlpha = kOrder.HasAlpha();
    static constexpr std::size_t kBlockBytes = kOrder.bytes;

    static inline const std::uint8_t* BlockAt(const ReadLine& line, std::size_t x) {
        return line.plane[0] + x / 16 * kBlockBytes;
    }
    static inline void PrefetchLuma(const ReadLine& line, std::size_t x) {
        Prefetch<kPixels / 16 * kBlockBytes>(BlockAt(line, x));
    }
    static inline void PrefetchChroma(const ReadLine&, std::size_t) {}
    static inline LumaWords Luma(const ReadLine& line, std::size_t x) {
        return WidenLuma(LoadLanes(BlockAt(line, x) + kOrder.y, kBlockBytes));
    }
    static inline Vec Alpha(const ReadLine& line, std::size_t x) {
        return LoadLanes(BlockAt(line, x) + kOrder.alpha, kBlockBytes);
    }
    template <bool kLast>
    static inline ChromaWords Chroma(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const p = BlockAt(line, x) + kOrder.u;
        const Vec chroma = LoadLanes(p, kBlockBytes);
        Vec behind;
        if constexpr (kLast) {
            // The runs of the blocks that follow; behind the last one, a run that starts with its last samples.
            constexpr std::size_t kEnd = 16 * (kVecLanes - 1);
            alignas(64) std::uint8_t window[kVecBytes + 16];
            Store(window, chroma);
            window[kVecBytes] = window[kEnd + 7];
            window[kVecBytes + 8] = window[kEnd + 15];
            behind = Load(window + 16);
        } else {
            behind = LoadLanes(p + kBlockBytes, kBlockBytes);
        }
        const LumaWords words = WidenLuma(chroma);
        const LumaWords wordsBehind = WidenLuma(behind);
        return Interpolate(words.low, words.high, AlignRight<2>(wordsBehind.low, words.low),
                           AlignRight<2>(wordsBehind.high, words.high));
    }
};
using Y16Source = BlockSource<kY16Order>;
using Y16ASource = BlockSource<kY16AOrder>;
using Y32Source = BlockSource<kY32Order>;
using Y32ASource = BlockSource<kY32AOrder>;
using Y32ABSource = BlockSource<kY32ABOrder>;

// Sources of 16-bit words, which are 8.8 as they are. Their means round: between two lines first, then along the line.

struct WordSource {
    static constexpr bool kPacked = true;
    static constexpr std::size_t kGranule = 2;
    static constexpr bool kHasAlpha = false;

    static inline void PrefetchLuma(const ReadLine& line, std::size_t x) {
        Prefetch<2 * kPixels>(line.plane[0] + 2 * x);
    }
    static inline LumaWords Luma(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[0] + 2 * x;
        return {Load(p), Load(p + kVecBytes)};
    }
};

struct SemiPlanarWordSource : WordSource {
    static inline void PrefetchChroma(const ReadLine& line, std::size_t x) {
        Prefetch<2 * kPixels>(line.plane[1] + 2 * x);
    }
    template <bool kLast>
    static inline ChromaWords Chroma(const ReadLine& line, std::size_t x) {
        return Order(Read<kLast>(line, x));
    }
    template <bool kLast>
    static inline ChromaWords Between(const ChromaWords&, const ReadLine (&lines)[2], std::size_t x) {
        const Pairs a = Read<kLast>(lines[0], x), b = Read<kLast>(lines[1], x);
        return Order(
            {Avg16(a.low, b.low), Avg16(a.nextLow, b.nextLow), Avg16(a.high, b.high), Avg16(a.nextHigh, b.nextHigh)});
    }

private:
    struct Pairs {
        Vec low, nextLow, high, nextHigh;
    };
    template <bool kLast>
    static inline Pairs Read(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[1] + 2 * x;
        const std::uint8_t* const second = p + kVecBytes;
        Vec behind;
        if constexpr (kLast)
            behind = NextAtEnd<4>(second);
        else
            behind = Load(second + 4);
        return {Load(p), Load(p + 4), Load(second), behind};
    }
    static inline ChromaWords Order(const Pairs& p) {
        ChromaWords words;
        OrderSites(p.low, Avg16(p.low, p.nextLow), words.lowU, words.lowV);
        OrderSites(p.high, Avg16(p.high, p.nextHigh), words.highU, words.highV);
        return words;
    }
};

struct PlanarWordSource : WordSource {
    static inline void PrefetchChroma(const ReadLine& line, std::size_t x) {
        Prefetch<kPixels>(line.plane[1] + x);
        Prefetch<kPixels>(line.plane[2] + x);
    }
    template <bool kLast>
    static inline ChromaWords Chroma(const ReadLine& line, std::size_t x) {
        return Order(Read<kLast>(line, x));
    }
    template <bool kLast>
    static inline ChromaWords Between(const ChromaWords&, const ReadLine (&lines)[2], std::size_t x) {
        const Samples a = Read<kLast>(lines[0], x), b = Read<kLast>(lines[1], x);
        return Order({Avg16(a.u, b.u), Avg16(a.v, b.v), Avg16(a.nextU, b.nextU), Avg16(a.nextV, b.nextV)});
    }

private:
    struct Samples {
        Vec u, v, nextU, nextV;
    };
    template <bool kLast>
    static inline Samples Read(const ReadLine& line, std::size_t x) {
        const std::uint8_t* const u = line.plane[1] + x;
        const std::uint8_t* const v = line.plane[2] + x;
        if constexpr (kLast)
            return {Load(u), Load(v), NextAtEnd<2>(u), NextAtEnd<2>(v)};
        else
            return {Load(u), Load(v), Load(u + 2), Load(v + 2)};
    }
    // Luma lies in memory order, and so must what the unpacks leave.
    static inline ChromaWords Order(const Samples& s) {
        const Vec u = PreUnpack(s.u), secondU = PreUnpack(Avg16(s.u, s.nextU));
        const Vec v = PreUnpack(s.v), secondV = PreUnpack(Avg16(s.v, s.nextV));
        return {UnpackLow16(u, secondU), UnpackHigh16(u, secondU), UnpackLow16(v, secondV), UnpackHigh16(v, secondV)};
    }
};

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
