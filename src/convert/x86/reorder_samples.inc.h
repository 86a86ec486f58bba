// Readers and writers of 4:2:2 samples in registers, one type per layout: the vector counterpart of convert/samples.h.
//
// Work goes in units of kLayoutUnit pixels: two registers of luma and two of chroma, which hold it either as pairs in
// the order U, V or with the components apart. Each layout reads and writes the arrangement that lies nearer to it;
// Arrange turns one into the other where the two sides differ. kUnitRegisters is what a unit fills in the narrowest
// plane.
#pragma once

#include "convert/simd/lines.inc.h"
#include "convert/simd/packed_shuffle.inc.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
// Members of types are external whatever they are declared: without a name around them, no other family's type of the
// same name can be taken for one of these.
namespace {

constexpr std::size_t kLayoutUnit = 2 * kVecBytes;

struct Luma {
    Vec a, b;
};
struct PairedChroma {
    Vec a, b;
};
struct SeparateChroma {
    Vec u, v;
};

inline Vec EvenBytes(Vec a, Vec b) {
    const Vec mask = Set16(0xFF);
    return FixPack(Pack16To8u(And(a, mask), And(b, mask)));
}
inline Vec OddBytes(Vec a, Vec b) { return FixPack(Pack16To8u(ShiftRight16u<8>(a), ShiftRight16u<8>(b))); }
inline void InterleaveBytes(Vec even, Vec odd, Vec& a, Vec& b) {
    a = UnpackLow8(even, odd);
    b = UnpackHigh8(even, odd);
    FixUnpack(a, b);
}

inline void Arrange(const PairedChroma& from, PairedChroma& to) { to = from; }
inline void Arrange(const SeparateChroma& from, SeparateChroma& to) { to = from; }
inline void Arrange(const PairedChroma& from, SeparateChroma& to) {
    to = {EvenBytes(from.a, from.b), OddBytes(from.a, from.b)};
}
inline void Arrange(const SeparateChroma& from, PairedChroma& to) { InterleaveBytes(from.u, from.v, to.a, to.b); }

inline PairedChroma Mean(PairedChroma c, PairedChroma d) { return {Avg8(c.a, d.a), Avg8(c.b, d.b)}; }
inline SeparateChroma Mean(SeparateChroma c, SeparateChroma d) { return {Avg8(c.u, d.u), Avg8(c.v, d.v)}; }

/// Packed 4:2:2.
template <PackedOrder kPackedOrder>
struct PackedLayout {
    using Chroma = PairedChroma;
    static constexpr PackedOrder kOrder = kPackedOrder;
    static constexpr std::size_t kUnitRegisters = 4;

    static constexpr std::size_t RowBytes(int plane, std::size_t width) { return plane == 0 ? 2 * width : 0; }

    static inline void Read(const ReadLine& line, std::size_t x, Luma& luma, Chroma& chroma) {
        const std::uint8_t* const p = line.plane[0] + 2 * x;
        const Vec a = Load(p);
        const Vec b = Load(p + kVecBytes);
        const Vec c = Load(p + 2 * kVecBytes);
        const Vec d = Load(p + 3 * kVecBytes);
        if constexpr (kOrder.IsLumaFirst()) {
            luma = {EvenBytes(a, b), EvenBytes(c, d)};
            chroma = {OrderPairs(OddBytes(a, b)), OrderPairs(OddBytes(c, d))};
        } else {
            luma = {OddBytes(a, b), OddBytes(c, d)};
            chroma = {OrderPairs(EvenBytes(a, b)), OrderPairs(EvenBytes(c, d))};
        }
    }

    template <class Out>
    static inline void Write(const WriteLine& line, std::size_t x, const Luma (&luma)[1], const Chroma (&chroma)[1]) {
        std::uint8_t* const p = line.plane[0] + 2 * x;
        WriteHalf<Out>(p, luma[0].a, OrderPairs(chroma[0].a));
        WriteHalf<Out>(p + 2 * kVecBytes, luma[0].b, OrderPairs(chroma[0].b));
    }

private:
    /// U, V from the order of this layout and back.
    static inline Vec OrderPairs(Vec pairs) {
        if constexpr (kOrder.IsVFirst()) return Or(ShiftLeft16<8>(pairs), ShiftRight16u<8>(pairs));
        return pairs;
    }

    template <class Out>
    static inline void WriteHalf(std::uint8_t* p, Vec luma, Vec pairs) {
        Vec a;
        Vec b;
        if constexpr (kOrder.IsLumaFirst())
            InterleaveBytes(luma, pairs, a, b);
        else
            InterleaveBytes(pairs, luma, a, b);
        Out::Put(p, a);
        Out::Put(p + kVecBytes, b);
    }
};
using UyvyLayout = PackedLayout<kUyvyOrder>;
using Yuy2Layout = PackedLayout<kYuy2Order>;
using YvyuLayout = PackedLayout<kYvyuOrder>;

/// Byte shuffles between 8 packed pixels and Y[8], U[4], V[4].
template <PackedOrder kOrder>
struct HalfBlockShuffle {
    std::uint8_t fromPacked[16] = {};
    std::uint8_t toPacked[16] = {};

    constexpr HalfBlockShuffle() {
        for (int pair = 0; pair < 4; ++pair) {
            Connect(2 * pair, 4 * pair + kOrder.y0);
            Connect(2 * pair + 1, 4 * pair + kOrder.y1);
            Connect(8 + pair, 4 * pair + kOrder.u);
            Connect(12 + pair, 4 * pair + kOrder.v);
        }
    }

private:
    constexpr void Connect(int inBlock, int inPacked) {
        fromPacked[inBlock] = static_cast<std::uint8_t>(inPacked);
        toPacked[inPacked] = static_cast<std::uint8_t>(inBlock);
    }
};

/// Chroma of blocks: each lane holds U[8], V[8] of one block.
inline SeparateChroma FromBlockChroma(Vec a, Vec b) {
    return {FixPack(UnpackLow64(a, b)), FixPack(UnpackHigh64(a, b))};
}
inline void ToBlockChroma(const SeparateChroma& chroma, Vec& a, Vec& b) {
    a = UnpackLow64(chroma.u, chroma.v);
    b = UnpackHigh64(chroma.u, chroma.v);
    FixUnpack(a, b);
}

/// Blocks of 16 pixels in 32 bytes: a lane of luma, a lane of chroma.
struct Y16Layout {
    static_assert(kY16Order.bytes == 32 && kY16Order.y == 0 && kY16Order.u == 16 && kY16Order.v == 24);
    using Chroma = SeparateChroma;
    static constexpr std::size_t kUnitRegisters = 4;

    static constexpr std::size_t RowBytes(int plane, std::size_t width) { return plane == 0 ? 2 * width : 0; }

    static inline void Read(const ReadLine& line, std::size_t x, Luma& luma, Chroma& chroma) {
        const std::uint8_t* const p = line.plane[0] + 2 * x;
        luma.a = Load(p);
        Vec chromaA = Load(p + kVecBytes);
        luma.b = Load(p + 2 * kVecBytes);
        Vec chromaB = Load(p + 3 * kVecBytes);
        Deinterleave128(luma.a, chromaA);
        Deinterleave128(luma.b, chromaB);
        chroma = FromBlockChroma(chromaA, chromaB);
    }

    template <class Out>
    static inline void Write(const WriteLine& line, std::size_t x, const Luma (&luma)[1], const Chroma (&chroma)[1]) {
        std::uint8_t* const p = line.plane[0] + 2 * x;
        Vec a = luma[0].a;
        Vec b;
        Vec c = luma[0].b;
        Vec d;
        ToBlockChroma(chroma[0], b, d);
        FixUnpack(a, b);
        FixUnpack(c, d);
        Out::Put(p, a);
        Out::Put(p + kVecBytes, b);
        Out::Put(p + 2 * kVecBytes, c);
        Out::Put(p + 3 * kVecBytes, d);
    }
};

/// Blocks of 16 pixels in 48 bytes: a lane of luma, a lane of alpha, a lane of chroma.
struct Y16ALayout {
    static_assert(kY16AOrder.bytes == 48 && kY16AOrder.y == 0 && kY16AOrder.alpha == 16 && kY16AOrder.u == 32 &&
                  kY16AOrder.v == 40);
    using Chroma = SeparateChroma;
    static constexpr std::size_t kUnitRegisters = 6;

    static constexpr std::size_t RowBytes(int plane, std::size_t width) { return plane == 0 ? 3 * width : 0; }

    static inline void Read(const ReadLine& line, std::size_t x, Luma& luma, Chroma& chroma) {
        const std::uint8_t* const p = line.plane[0] + 3 * x;
        Vec chromaA;
        Vec chromaB;
        ReadHalf(p, luma.a, chromaA);
        ReadHalf(p + 3 * kVecBytes, luma.b, chromaB);
        chroma = FromBlockChroma(chromaA, chromaB);
    }

    template <class Out>
    static inline void Write(const WriteLine& line, std::size_t x, const Luma (&luma)[1], const Chroma (&chroma)[1]) {
        std::uint8_t* const p = line.plane[0] + 3 * x;
        Vec chromaA;
        Vec chromaB;
        ToBlockChroma(chroma[0], chromaA, chromaB);
        WriteHalf<Out>(p, luma[0].a, chromaA);
        WriteHalf<Out>(p + 3 * kVecBytes, luma[0].b, chromaB);
    }

private:
    static inline void ReadHalf(const std::uint8_t* p, Vec& luma, Vec& chroma) {
        luma = Load(p);
        Vec alpha = Load(p + kVecBytes);
        chroma = Load(p + 2 * kVecBytes);
        Deinterleave128(luma, alpha, chroma);
    }

    template <class Out>
    static inline void WriteHalf(std::uint8_t* p, Vec luma, Vec chroma) {
        Vec alpha = Set8(255);
        Interleave128(luma, alpha, chroma);
        Out::Put(p, luma);
        Out::Put(p + kVecBytes, alpha);
        Out::Put(p + 2 * kVecBytes, chroma);
    }
};

inline Luma ReadLumaPlane(const ReadLine& line, std::size_t x) {
    return {Load(line.plane[0] + x), Load(line.plane[0] + x + kVecBytes)};
}
/// Several units are written plane by plane, so that whole cache lines are filled at a time.
template <class Out, std::size_t kUnits>
inline void WriteLumaPlane(const WriteLine& line, std::size_t x, const Luma (&luma)[kUnits]) {
    for (std::size_t i = 0; i < kUnits; ++i) {
        Out::Put(line.plane[0] + x + i * kLayoutUnit, luma[i].a);
        Out::Put(line.plane[0] + x + i * kLayoutUnit + kVecBytes, luma[i].b);
    }
}

/// Three planes.
struct PlanarLayout {
    using Chroma = SeparateChroma;
    static constexpr std::size_t kUnitRegisters = 1;
    static constexpr std::size_t RowBytes(int plane, std::size_t width) { return plane == 0 ? width : width / 2; }

    static inline Chroma ReadChroma(const ReadLine& line, std::size_t x) {
        return {Load(line.plane[1] + x / 2), Load(line.plane[2] + x / 2)};
    }
    template <class Out, std::size_t kUnits>
    static inline void WriteChroma(const WriteLine& line, std::size_t x, const Chroma (&chroma)[kUnits]) {
        for (std::size_t i = 0; i < kUnits; ++i) Out::Put(line.plane[1] + x / 2 + i * kVecBytes, chroma[i].u);
        for (std::size_t i = 0; i < kUnits; ++i) Out::Put(line.plane[2] + x / 2 + i * kVecBytes, chroma[i].v);
    }

    static inline void Read(const ReadLine& line, std::size_t x, Luma& luma, Chroma& chroma) {
        luma = ReadLumaPlane(line, x);
        chroma = ReadChroma(line, x);
    }
    template <class Out, std::size_t kUnits>
    static inline void Write(const WriteLine& line, std::size_t x, const Luma (&luma)[kUnits],
                             const Chroma (&chroma)[kUnits]) {
        WriteLumaPlane<Out>(line, x, luma);
        WriteChroma<Out>(line, x, chroma);
    }
};

/// A luma plane and a plane of chroma pairs.
struct SemiPlanarLayout {
    using Chroma = PairedChroma;
    static constexpr std::size_t kUnitRegisters = 2;
    static constexpr std::size_t RowBytes(int plane, std::size_t width) { return plane < 2 ? width : 0; }

    static inline Chroma ReadChroma(const ReadLine& line, std::size_t x) {
        return {Load(line.plane[1] + x), Load(line.plane[1] + x + kVecBytes)};
    }
    template <class Out, std::size_t kUnits>
    static inline void WriteChroma(const WriteLine& line, std::size_t x, const Chroma (&chroma)[kUnits]) {
        for (std::size_t i = 0; i < kUnits; ++i) {
            Out::Put(line.plane[1] + x + i * kLayoutUnit, chroma[i].a);
            Out::Put(line.plane[1] + x + i * kLayoutUnit + kVecBytes, chroma[i].b);
        }
    }
};

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
