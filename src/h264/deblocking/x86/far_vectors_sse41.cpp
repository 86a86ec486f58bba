// A row of four blocks in each register. Wider ones would hold two, but each must meet the one before it.
#include "foundation/simd/vec_sse41.h"
#include "h264/deblocking/x86/far_vectors_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// All ones in 32 bits where the vectors differ by no more than `most` in both directions.
Vec AreNear(Vec p, Vec q, Vec most) {
    const Vec difference = SubSat16s(q, p);
    const Vec distance = Max16s(difference, SubSat16s(Zero(), difference));
    return {_mm_cmpeq_epi32(_mm_cmpgt_epi16(distance.v, most.v), _mm_setzero_si128())};
}

// One bit for each block of four rows.
std::uint32_t Bits(const Vec (&rows)[4]) {
    const Vec bytes = Pack16To8s(Pack32To16s(rows[0], rows[1]), Pack32To16s(rows[2], rows[3]));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes.v));
}

}  // namespace
}  // namespace PIXMORPH_SIMD

std::uint32_t PIXMORPH_SIMD::H264FarVectors(const H264BlockVectors& p, const H264BlockVectors& q, int verticalLimit) {
    const Vec most = Set32((verticalLimit - 1) * 0x10000 + 3);
    Vec before, beside[4], below[4];
    for (int row = 0; row < 4; ++row) {
        const Vec ofP = Load(p[4 * row]), ofQ = Load(q[4 * row]);
        beside[row] = AreNear(AlignRight<12>(ofP, Zero()), ofQ, most);
        below[row] = row == 0 ? Zero() : AreNear(before, ofQ, most);
        before = ofP;
    }
    return (~Bits(beside) & 0xEEEE) | (~Bits(below) & 0xFFF0) << 16;
}

}  // namespace KorvaneSoftware
