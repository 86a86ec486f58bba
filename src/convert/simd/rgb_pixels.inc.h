// BGR and BGRA pixels in memory, kPixels at a time, to and from one register of bytes per component. Component
// registers are dealt (see rgb_lanes_sse41.h): pixels in groups of four.
#pragma once

#include "convert/simd/rgb_lines.inc.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

struct PixelBytes {
    Vec b, g, r, a;
};

/// Four registers of pixels of four bytes in memory order.
struct PixelQuads {
    Vec part[4];
};

inline PixelQuads Interleave(const PixelBytes& c) {
    const Vec bgLow = UnpackLow8(c.b, c.g), bgHigh = UnpackHigh8(c.b, c.g);
    const Vec raLow = UnpackLow8(c.r, c.a), raHigh = UnpackHigh8(c.r, c.a);
    return {{UnpackLow16(bgLow, raLow), UnpackHigh16(bgLow, raLow), UnpackLow16(bgHigh, raHigh),
             UnpackHigh16(bgHigh, raHigh)}};
}

/// Lanes of four B, four G, four R, four A each, in memory order of the lanes, to components.
inline PixelBytes Deinterleave(Vec q0, Vec q1, Vec q2, Vec q3) {
    const Vec bg0 = UnpackLow32(q0, q1), bg1 = UnpackLow32(q2, q3);
    const Vec ra0 = UnpackHigh32(q0, q1), ra1 = UnpackHigh32(q2, q3);
    return {UnpackLow64(bg0, bg1), UnpackHigh64(bg0, bg1), UnpackLow64(ra0, ra1), UnpackHigh64(ra0, ra1)};
}

alignas(16) constexpr std::uint8_t kSplitBgra[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
alignas(16) constexpr std::uint8_t kSplitBgr[16] = {0, 3, 6, 9, 1, 4, 7, 10, 2, 5, 8, 11, 128, 128, 128, 128};
alignas(16) constexpr std::uint8_t kBgraToBgr[16] = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 128, 128, 128, 128};
alignas(16) constexpr std::uint8_t kBgrToBgra[16] = {0, 1, 2, 128, 3, 4, 5, 128, 6, 7, 8, 128, 9, 10, 11, 128};

struct BgraPixels {
    static constexpr std::size_t kBytes = 4;
    static constexpr bool kHasAlpha = true;

    template <class Sink>
    static inline void Write(const Sink& sink, std::uint8_t* out, const PixelQuads& quads) {
        sink.Write(out, quads.part);
    }
    static inline PixelBytes Read(const std::uint8_t* in) {
        const Vec split = Repeat128(kSplitBgra);
        return Deinterleave(Shuffle8(Load(in), split), Shuffle8(Load(in + kVecBytes), split),
                            Shuffle8(Load(in + 2 * kVecBytes), split), Shuffle8(Load(in + 3 * kVecBytes), split));
    }
    static inline PixelQuads ReadQuads(const std::uint8_t* in) {
        return {{Load(in), Load(in + kVecBytes), Load(in + 2 * kVecBytes), Load(in + 3 * kVecBytes)}};
    }
};

struct BgrPixels {
    static constexpr std::size_t kBytes = 3;
    static constexpr bool kHasAlpha = false;
    static constexpr std::size_t kQuarter = kVecBytes / 4 * 3;

    template <class Sink>
    static inline void Write(const Sink& sink, std::uint8_t* out, const PixelQuads& quads) {
        const Vec drop = Repeat128(kBgraToBgr);
        Vec joined[3];
        JoinGroups12(Shuffle8(quads.part[0], drop), Shuffle8(quads.part[1], drop), Shuffle8(quads.part[2], drop),
                     Shuffle8(quads.part[3], drop), joined);
        sink.Write(out, joined);
    }
    // The last quarter is loaded from further ahead, where the load ends with the pixels.
    static inline PixelQuads ReadGroups(const std::uint8_t* in, const std::uint8_t* shuffle) {
        const Vec order = Repeat128(shuffle);
        return {{Shuffle8(LoadGroups12<0>(in), order), Shuffle8(LoadGroups12<0>(in + kQuarter), order),
                 Shuffle8(LoadGroups12<0>(in + 2 * kQuarter), order),
                 Shuffle8(LoadGroups12<kVecBytes / 16>(in + 2 * kVecBytes), order)}};
    }
    static inline PixelBytes Read(const std::uint8_t* in) {
        const PixelQuads q = ReadGroups(in, kSplitBgr);
        PixelBytes bytes = Deinterleave(q.part[0], q.part[1], q.part[2], q.part[3]);
        bytes.a = Set8(255);
        return bytes;
    }
    static inline PixelQuads ReadQuads(const std::uint8_t* in) {
        PixelQuads quads = ReadGroups(in, kBgrToBgra);
        const Vec alpha = Set32(static_cast<int>(0xFF000000u));
        for (Vec& part : quads.part) part = Or(part, alpha);
        return quads;
    }
};

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
