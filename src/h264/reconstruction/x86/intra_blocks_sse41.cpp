// Directional prediction of 4x4 and 8x8 blocks of bytes. The neighbours form one line, from the column to the left, its
// last sample first, over the corner to the end of the row above; every predicted sample is one of the line, a mean of
// two of it, or a smoothed one.
#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

Vec Shuffle(Vec a, Vec places) { return {_mm_shuffle_epi8(a.v, places.v)}; }
// (before + 2 * v + after + 2) >> 2: the mean of the outer two is to be rounded down.
Vec SmoothOf(Vec before, Vec v, Vec after) {
    const Vec up = {_mm_avg_epu8(before.v, after.v)};
    const Vec odd = And(Xor(before, after), Set8(1));
    return {_mm_avg_epu8(_mm_sub_epi8(up.v, odd.v), v.v)};
}

// What a mode needs; DC takes less too, but not here.
constexpr bool NeedsTop(H264IntraBlockMode mode) {
    return mode != INTRA_BLOCK_HORIZONTAL && mode != INTRA_BLOCK_HORIZONTAL_UP;
}
constexpr bool NeedsLeft(H264IntraBlockMode mode) {
    return mode != INTRA_BLOCK_VERTICAL && mode != INTRA_BLOCK_DIAGONAL_DOWN_LEFT && mode != INTRA_BLOCK_VERTICAL_LEFT;
}
constexpr std::uint32_t NeededBy(H264IntraBlockMode mode) {
    return (NeedsTop(mode) ? std::uint32_t{NEIGHBOUR_TOP} : 0u) |
           (NeedsLeft(mode) ? std::uint32_t{NEIGHBOUR_LEFT} : 0u) |
           (NeedsTop(mode) && NeedsLeft(mode) ? std::uint32_t{NEIGHBOUR_TOP_LEFT} : 0u);
}

std::uint64_t LoadBytes(const std::uint8_t* p, int count) {
    std::uint64_t bytes = 0;
    __builtin_memcpy(&bytes, p, static_cast<std::size_t>(count));
    return bytes;
}

// The left column, its last sample lowest.
template <int kSize>
std::uint64_t LeftUpwards(const std::uint8_t* samples, std::ptrdiff_t stride) {
    std::uint64_t bytes = 0;
    for (int y = 0; y < kSize; ++y) bytes = bytes << 8 | samples[y * stride - 1];
    return bytes;
}

// 4x4: byte i + 5 of a register is place i of the line, the corner being 0. The samples at both ends stand twice.

constexpr int kBase4 = 5;

struct Places4x4 {
    std::uint8_t mean[16];
    std::uint8_t smooth[16];
};

// Where each sample of a mode comes from; 0x80 makes a zero.
template <H264IntraBlockMode kMode>
constexpr Places4x4 MakePlaces() {
    Places4x4 made = {};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            int mean = 0x80 - kBase4, smooth = 0x80 - kBase4;
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
            made.mean[4 * y + x] = static_cast<std::uint8_t>(mean + kBase4);
            made.smooth[4 * y + x] = static_cast<std::uint8_t>(smooth + kBase4);
        }
    }
    return made;
}

template <H264IntraBlockMode kMode>
void Predict4x4(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours) {
    alignas(16) static constexpr Places4x4 kPlaces = MakePlaces<kMode>();
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

// 8x8: two registers hold the line, place i in byte i + 10.

constexpr int kBase8 = 10;

struct Line {
    Vec low, high;

    // Sixteen bytes from byte kStart on; zeros behind the last.
    template <int kStart>
    Vec Window() const {
        if constexpr (kStart < 16)
            return {_mm_alignr_epi8(high.v, low.v, kStart)};
        else
            return {_mm_srli_si128(high.v, kStart - 16)};
    }
    // From place kFirst on.
    template <int kFirst>
    Vec From() const {
        return Window<kFirst + kBase8>();
    }
    Line Means() const {
        const Vec next = Window<1>(), last = {_mm_srli_si128(high.v, 1)};
        return {{_mm_avg_epu8(low.v, next.v)}, {_mm_avg_epu8(high.v, last.v)}};
    }
    Line Smoothed() const {
        const Vec next = Window<1>(), last = {_mm_srli_si128(high.v, 1)};
        const Vec first = {_mm_slli_si128(low.v, 1)}, middle = Window<15>();
        return {SmoothOf(first, low, next), SmoothOf(middle, high, last)};
    }
};

// The line as the filter of clause 8.3.2.2.1 leaves it. A sample beside an absent one is its own neighbour.
template <H264IntraBlockMode kMode>
Line FilteredLine(const std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours) {
    const bool corner = (neighbours & NEIGHBOUR_TOP_LEFT) != 0;
    std::uint64_t left = 0, top = 0, right = 0, middle = 0;
    if constexpr (NeedsLeft(kMode)) {
        left = LeftUpwards<8>(samples, stride);
        middle = left >> 56;
    }
    if constexpr (NeedsTop(kMode)) {
        top = LoadBytes(samples - stride, 8);
        middle = top & 0xFF;
        right = (neighbours & NEIGHBOUR_TOP_RIGHT) != 0 ? LoadBytes(samples - stride + 8, 8)
                                                        : (top >> 56) * 0x0101010101010101u;
    }
    if (corner) middle = samples[-stride - 1];
    const auto pair = [](std::uint64_t low, std::uint64_t high) {
        return Vec{_mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low))};
    };
    // Bytes 0 and 1 are copies of the last sample of the column, the 27th one of the last of the row.
    const std::uint64_t last = left & 0xFF;
    const Line line = {pair(left << 16 | last << 8 | last, left >> 48 | middle << 16 | top << 24),
                       pair(top >> 40 | right << 24, right >> 40 | (right >> 56) << 24)};
    Line filtered = line.Smoothed();
    // The ends again.
    if constexpr (NeedsLeft(kMode)) {
        alignas(16) static constexpr std::uint8_t kEnds[16] = {2, 2, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
        filtered.low = Shuffle(filtered.low, Load(kEnds));
    }
    if constexpr (NeedsTop(kMode)) {
        alignas(16) static constexpr std::uint8_t kEnds[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 10, 10, 10, 10, 10};
        filtered.high = Shuffle(filtered.high, Load(kEnds));
    }
    return filtered;
}

Vec Interleaved(Vec even, Vec odd) { return {_mm_unpacklo_epi8(even.v, odd.v)}; }

template <int kRow>
void StoreRow(std::uint8_t* samples, std::ptrdiff_t stride, Vec row) {
    StoreHalf(samples + kRow * stride, row);
}

// Rows 0 to 7 are eight bytes each from kStart + kStep * row of a line on.
template <int kStart, int kStep, int kRow = 0, int kRowStep = 1>
void StoreWindows(std::uint8_t* samples, std::ptrdiff_t stride, const Line& line) {
    if constexpr (kRow < 8) {
        StoreRow<kRow>(samples, stride, line.Window<kStart>());
        StoreWindows<kStart + kStep, kStep, kRow + kRowStep, kRowStep>(samples, stride, line);
    }
}

// The modes that take the line as it is.
template <H264IntraBlockMode kMode>
void PredictStraight8x8(std::uint8_t* samples, std::ptrdiff_t stride, const Line& line) {
    if constexpr (kMode == INTRA_BLOCK_HORIZONTAL) {
        alignas(16) std::uint8_t left[16];
        Store(left, line.From<-8>());
        for (int y = 0; y < 8; ++y) StoreHalf(samples + y * stride, Set8(left[7 - y]));
        return;
    }
    Vec row = line.From<1>();
    if constexpr (kMode == INTRA_BLOCK_DC) {
        const Vec all = {_mm_unpacklo_epi64(line.From<-8>().v, row.v)};
        const Vec sums = {_mm_sad_epu8(all.v, Zero().v)};
        row = Set8((_mm_cvtsi128_si32(sums.v) + _mm_extract_epi16(sums.v, 4) + 8) >> 4);
    }
    for (int y = 0; y < 8; ++y) StoreHalf(samples + y * stride, row);
}

template <H264IntraBlockMode kMode>
void Predict8x8(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours) {
    const Line line = FilteredLine<kMode>(samples, stride, neighbours);
    if constexpr (kMode <= INTRA_BLOCK_DC) return PredictStraight8x8<kMode>(samples, stride, line);
    const Line smooth = line.Smoothed();
    const Line mean = line.Means();
    if constexpr (kMode == INTRA_BLOCK_DIAGONAL_DOWN_LEFT) {
        StoreWindows<kBase8 + 2, 1>(samples, stride, smooth);
    } else if constexpr (kMode == INTRA_BLOCK_DIAGONAL_DOWN_RIGHT) {
        StoreWindows<kBase8, -1>(samples, stride, smooth);
    } else if constexpr (kMode == INTRA_BLOCK_VERTICAL_LEFT) {
        StoreWindows<kBase8 + 1, 1, 0, 2>(samples, stride, mean);
        StoreWindows<kBase8 + 2, 1, 1, 2>(samples, stride, smooth);
    } else if constexpr (kMode == INTRA_BLOCK_VERTICAL_RIGHT) {
        // Every second row moves one sample right, and every second smoothed one of the column comes in.
        alignas(16) static constexpr std::uint8_t kEven[16] = {5,    7,    9,    0x80, 0x80, 0x80, 0x80, 0x80,
                                                               0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
        alignas(16) static constexpr std::uint8_t kOdd[16] = {4,    6,    8,    0x80, 0x80, 0x80, 0x80, 0x80,
                                                              0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
        const Line even = {Or(Shuffle(smooth.low, Load(kEven)), {_mm_slli_si128(mean.From<0>().v, 3)}), Zero()};
        const Line odd = {Or(Shuffle(smooth.low, Load(kOdd)), {_mm_slli_si128(smooth.From<0>().v, 3)}), Zero()};
        StoreWindows<3, -1, 0, 2>(samples, stride, even);
        StoreWindows<3, -1, 1, 2>(samples, stride, odd);
    } else if constexpr (kMode == INTRA_BLOCK_HORIZONTAL_DOWN) {
        const Line zigzag = {Interleaved(mean.From<-8>(), smooth.From<-7>()), smooth.From<1>()};
        StoreWindows<14, -2>(samples, stride, zigzag);
    } else if constexpr (kMode == INTRA_BLOCK_HORIZONTAL_UP) {
        alignas(16) static constexpr std::uint8_t kUpwards[16] = {8, 7, 6, 5, 4, 3, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1};
        const Vec means = Shuffle(mean.low, Load(kUpwards)), smooths = Shuffle(smooth.low, Load(kUpwards));
        const Line zigzag = {Interleaved(means, smooths), {_mm_unpackhi_epi8(means.v, smooths.v)}};
        StoreWindows<0, 2>(samples, stride, zigzag);
    }
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

template <H264IntraBlockMode kMode>
void PIXMORPH_SIMD::H264Intra8x8Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                      std::uint32_t bitDepth) {
    if ((neighbours & NeededBy(kMode)) != NeededBy(kMode))
        return plain::H264Intra8x8Bytes<INTRA_BLOCK_DC>(samples, stride, neighbours, bitDepth);
    Predict8x8<kMode>(samples, stride, neighbours);
}

namespace PIXMORPH_SIMD {
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_RIGHT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_LEFT>;
template H264PredictIntraBytes H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_UP>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_DC>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_RIGHT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_LEFT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_UP>;
}  // namespace PIXMORPH_SIMD

}  // namespace KorvaneSoftware
