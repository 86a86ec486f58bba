// Directional prediction of 4x4 blocks of bytes. The neighbours form one line, from the column to the left, its last
// sample first, over the corner to the end of the row above; every predicted sample is one of the line, a mean of two of
// it, or a smoothed one.
#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "h264/reconstruction/x86/intra_blocks.inc.h"

// (before + 2 * v + after + 2) >> 2: the mean of the outer two is to be rounded down.
Vec SmoothOf(Vec before, Vec v, Vec after) {
    const Vec up = {_mm_avg_epu8(before.v, after.v)};
    const Vec odd = And(Xor(before, after), Set8(1));
    return {_mm_avg_epu8(_mm_sub_epi8(up.v, odd.v), v.v)};
}

// Byte i + 5 of a register is place i of the line, the corner being 0. The samples at both ends stand twice.

constexpr int kBase = 5;

struct Places {
    std::uint8_t mean[16];
    std::uint8_t smooth[16];
};

// Where each sample of a mode comes from; 0x80 makes a zero.
template <H264IntraBlockMode kMode>
constexpr Places MakePlaces() {
    Places made = {};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            int mean = 0x80 - kBase, smooth = 0x80 - kBase;
            if (kMode == INTRA_BLOCK_DIAGONAL_DOWN_LEFT) smooth = x + y + 2;
            if (kMode == INTRA_BLOCK_DIAGONAL_DOWN_RIGHT) smooth = x - y;
            if (kMode == INTRA_BLOCK_VERTICAL_RIGHT) {
                if (2 * x - y < 0)
                    smooth = 2 * x - y + 1;
                else
                    (y % 2 == 0 ? mean : smooth) = x - y / 2;
            }
            if (kMode == INTRA_BLOCK_HORIZONTAL_DOWN) {
                if (2 * y - x < 0)
                    smooth = x - 2 * y - 1;
                else if (x % 2 == 0)
                    mean = x / 2 - y - 1;
                else
                    smooth = x / 2 - y;
            }
            if (kMode == INTRA_BLOCK_VERTICAL_LEFT) {
                if (y % 2 == 0)
                    mean = x + y / 2 + 1;
                else
                    smooth = x + y / 2 + 2;
            }
            if (kMode == INTRA_BLOCK_HORIZONTAL_UP) {
                // The mean of the last sample and its copy is the sample.
                if (x + 2 * y > 5)
                    mean = -5;
                else if (x % 2 == 0)
                    mean = -y - x / 2 - 2;
                else
                    smooth = -y - x / 2 - 2;
            }
            made.mean[4 * y + x] = static_cast<std::uint8_t>(mean + kBase);
            made.smooth[4 * y + x] = static_cast<std::uint8_t>(smooth + kBase);
        }
    }
    return made;
}

template <H264IntraBlockMode kMode>
void Predict4x4(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours) {
    alignas(16) static constexpr Places kPlaces = MakePlaces<kMode>();
    std::uint64_t low = 0, high = 0;
    if constexpr (NeedsLeft(kMode)) {
        const std::uint64_t left = LeftUpwards<4>(samples, stride);
        low = left << 8 | (left & 0xFF);
    }
    if constexpr (NeedsLeft(kMode) && NeedsTop(kMode)) low |= std::uint64_t{samples[-stride - 1]} << 40;
    if constexpr (NeedsTop(kMode)) {
        std::uint64_t top = LoadBytes(samples - stride, 4);
        if constexpr (!NeedsLeft(kMode)) {
            const bool right = (neighbours & NEIGHBOUR_TOP_RIGHT) != 0;
            top |= (right ? LoadBytes(samples - stride + 4, 4) : (top >> 24) * 0x01010101u) << 32;
        }
        low |= top << 48;
        high = top >> 16 | (top >> 56) << 48;
    }
    const Vec line = {_mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low))};
    const Vec after = {_mm_srli_si128(line.v, 1)};
    const Vec before = {_mm_slli_si128(line.v, 1)};
    Vec block = Shuffle(SmoothOf(before, line, after), Load(kPlaces.smooth));
    if constexpr (kMode != INTRA_BLOCK_DIAGONAL_DOWN_LEFT && kMode != INTRA_BLOCK_DIAGONAL_DOWN_RIGHT)
        block = Or(block, Shuffle({_mm_avg_epu8(line.v, after.v)}, Load(kPlaces.mean)));
    const int rows[4] = {_mm_cvtsi128_si32(block.v), _mm_extract_epi32(block.v, 1), _mm_extract_epi32(block.v, 2),
                         _mm_extract_epi32(block.v, 3)};
    for (int y = 0; y < 4; ++y) __builtin_memcpy(samples + y * stride, &rows[y], 4);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

// Without the neighbours that a mode needs, a mean of what there is: the work of the plain form of DC.
template <H264IntraBlockMode kMode>
void PIXMORPH_SIMD::H264Intra4x4Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                      std::uint32_t bitDepth) {
    if ((neighbours & NeededBy(kMode)) != NeededBy(kMode))
        return plain::H264Intra4x4Bytes<INTRA_BLOCK_DC>(samples, stride, neighbours, bitDepth);
    Predict4x4<kMode>(samples, stride, neighbours);
}

namespace PIXMORPH_SIMD {
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_RIGHT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_LEFT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_UP>;
}  // namespace PIXMORPH_SIMD

}  // namespace KorvaneSoftware
