// Moves of whole lanes and of 12-byte pixel groups, at 16 bytes. What they mean at every width:
//
// - dealt: groups of 4 bytes are dealt out to the lanes like cards, group i to lane i mod kVecLanes. After a 4x4
//   transpose of groups within lanes, register j of four then holds the j-th quarter of the pixels in memory order.
// - packed: what a lane-wise pack of two registers leaves: half of each lane from either.
#pragma once

#include "foundation/simd/vec_sse41.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// Memory order to dealt.
inline Vec DealLanes(Vec a) { return a; }
/// Packed to dealt.
inline Vec DealPacked(Vec a) { return a; }
/// Dealt to memory order.
inline Vec CollectLanes(Vec a) { return a; }
/// Dealt to what a lane-wise unpack, low then high, turns into memory order.
inline Vec CollectForUnpack(Vec a) { return a; }

/// The upper half of a register.
inline void StoreUpperHalf(std::uint8_t* p, Vec a) { StoreHalf(p, UnpackHigh64(a, a)); }

/// Each lane starts with the next 12 bytes of the run that begins `Skip` groups of 4 bytes behind `p`. kVecBytes bytes
/// from `p` are read.
template <int Skip>
inline Vec LoadGroups12(const std::uint8_t* p) {
    return {_mm_srli_si128(Load(p).v, 4 * Skip)};
}
/// The first 12 bytes of each lane of four registers, without gaps. The other 4 bytes of each lane are zero.
inline void JoinGroups12(Vec a, Vec b, Vec c, Vec d, Vec (&out)[3]) {
    out[0].v = _mm_or_si128(a.v, _mm_slli_si128(b.v, 12));
    out[1].v = _mm_or_si128(_mm_srli_si128(b.v, 4), _mm_slli_si128(c.v, 8));
    out[2].v = _mm_or_si128(_mm_srli_si128(c.v, 8), _mm_slli_si128(d.v, 4));
}

/// From words first = U, V, U, V... at the first pixels of pairs and second = U, V... at the second ones: the U and the
/// V of all pixels in order.
inline void OrderSites(Vec first, Vec second, Vec& u, Vec& v) {
    u.v = _mm_blend_epi16(first.v, _mm_slli_epi32(second.v, 16), 0xAA);
    v.v = _mm_blend_epi16(_mm_srli_epi32(first.v, 16), second.v, 0xAA);
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
