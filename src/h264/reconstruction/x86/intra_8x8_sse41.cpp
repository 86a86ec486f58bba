// Prediction of 8x8 blocks. The neighbours form one line in registers, from the column to the left, its last sample first,
// over the corner to the end of the row above. Each predicted row is a run of eight of the line, of means of two of it, of
// smoothed ones, or of a line made of these.
#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "h264/reconstruction/x86/intra_blocks.inc.h"

struct Bytes {
    using Sample = std::uint8_t;
    static Vec Set(int value) { return Set8(value); }
    static Vec Avg(Vec a, Vec b) { return Avg8(a, b); }
    static Vec Sub(Vec a, Vec b) { return Sub8(a, b); }
    static Vec Interleaved(Vec even, Vec odd) { return {_mm_unpacklo_epi8(even.v, odd.v)}; }
    static void StoreRow(Sample* p, Vec row) { StoreHalf(p, row); }
    static int Sum(Vec a, Vec b) {
        const Vec sums = {_mm_sad_epu8(_mm_unpacklo_epi64(a.v, b.v), Zero().v)};
        return _mm_cvtsi128_si32(sums.v) + _mm_extract_epi16(sums.v, 4);
    }
};

struct Words {
    using Sample = std::uint16_t;
    static Vec Set(int value) { return Set16(value); }
    static Vec Avg(Vec a, Vec b) { return Avg16(a, b); }
    static Vec Sub(Vec a, Vec b) { return Sub16(a, b); }
    static Vec Interleaved(Vec even, Vec odd) { return UnpackLow16(even, odd); }
    static void StoreRow(Sample* p, Vec row) { Store(p, row); }
    static int Sum(Vec a, Vec b) {
        // Words of 14 bits: two fit in 16.
        Vec sums = MulAddPairs16(Add16(a, b), Set16(1));
        sums = Add32(sums, {_mm_shuffle_epi32(sums.v, 0x4E)});
        return _mm_cvtsi128_si32(sums.v) + _mm_extract_epi32(sums.v, 1);
    }
};

// Up to 32 samples. Place i of the neighbours is sample i + 10, the corner being place 0.
constexpr int kBase = 10;

template <class Lanes>
struct Line {
    using Sample = typename Lanes::Sample;
    static constexpr int kBytes = static_cast<int>(sizeof(Sample));
    static constexpr int kPerPart = 16 / kBytes;
    static constexpr int kParts = 2 * kBytes;
    Vec part[kParts];

    // The samples of a register from kStart on; zeros behind the last.
    template <int kStart>
    Vec Window() const {
        constexpr int kPart = kStart / kPerPart, kSkipped = kStart % kPerPart * kBytes;
        if constexpr (kPart + 1 < kParts)
            return {_mm_alignr_epi8(part[kPart + 1].v, part[kPart].v, kSkipped)};
        else
            return {_mm_srli_si128(part[kPart].v, kSkipped)};
    }
    // From place kFirst on.
    template <int kFirst>
    Vec From() const {
        return Window<kFirst + kBase>();
    }
    // Each sample's mean with the next one.
    template <int kPart = 0>
    void MakeMeans(Line& means) const {
        means.part[kPart] = Lanes::Avg(part[kPart], Window<kPart * kPerPart + 1>());
        if constexpr (kPart + 1 < kParts) MakeMeans<kPart + 1>(means);
    }
    // (before + 2 * sample + after + 2) >> 2: the mean of the outer two is to be rounded down.
    template <int kPart = 0>
    void MakeSmooth(Line& smooth) const {
        const Vec after = Window<kPart * kPerPart + 1>();
        Vec before = {_mm_slli_si128(part[0].v, kBytes)};
        if constexpr (kPart > 0) before = Window<kPart * kPerPart - 1>();
        const Vec odd = And(Xor(before, after), Lanes::Set(1));
        smooth.part[kPart] = Lanes::Avg(Lanes::Sub(Lanes::Avg(before, after), odd), part[kPart]);
        if constexpr (kPart + 1 < kParts) MakeSmooth<kPart + 1>(smooth);
    }
};

// The neighbours in their places. The samples at both ends stand twice, the first three times. `middle` is the corner, or
// where there is none the sample beside it.
template <H264IntraBlockMode kMode>
Line<Bytes> LoadLine(const std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours) {
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
    if ((neighbours & NEIGHBOUR_TOP_LEFT) != 0) middle = samples[-stride - 1];
    const auto pair = [](std::uint64_t low, std::uint64_t high) {
        return Vec{_mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low))};
    };
    const std::uint64_t last = left & 0xFF;
    return {{pair(left << 16 | last << 8 | last, left >> 48 | middle << 16 | top << 24),
             pair(top >> 40 | right << 24, right >> 40 | (right >> 56) << 24)}};
}

template <H264IntraBlockMode kMode>
Line<Words> LoadLine(const std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours) {
    alignas(16) std::uint16_t line[32] = {};
    if constexpr (NeedsLeft(kMode)) {
        for (int y = 0; y < 8; ++y) line[kBase - 1 - y] = samples[y * stride - 1];
        line[0] = line[1] = line[2];
        line[kBase] = line[kBase - 1];
    }
    if constexpr (NeedsTop(kMode)) {
        const std::uint16_t* const top = samples - stride;
        line[kBase] = top[0];
        Store(line + kBase + 1, Load(top));
        Store(line + kBase + 9, (neighbours & NEIGHBOUR_TOP_RIGHT) != 0 ? Load(top + 8) : Set16(top[7]));
        line[kBase + 17] = line[kBase + 16];
    }
    if ((neighbours & NEIGHBOUR_TOP_LEFT) != 0) line[kBase] = samples[-stride - 1];
    return {{Load(line), Load(line + 8), Load(line + 16), Load(line + 24)}};
}

// Puts the copies at the ends again, from samples 2 and 26.
void RepeatEnds(Line<Bytes>& line) {
    alignas(16) static constexpr std::uint8_t kFirst[16] = {2, 2, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    alignas(16) static constexpr std::uint8_t kLast[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 10, 10, 10, 10, 10};
    line.part[0] = Shuffle(line.part[0], Load(kFirst));
    line.part[1] = Shuffle(line.part[1], Load(kLast));
}
void RepeatEnds(Line<Words>& line) {
    alignas(16) static constexpr std::uint8_t kFirst[16] = {4, 5, 4, 5, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    alignas(16) static constexpr std::uint8_t kLast[16] = {0, 1, 2, 3, 4, 5, 4, 5, 4, 5, 4, 5, 4, 5, 4, 5};
    line.part[0] = Shuffle(line.part[0], Load(kFirst));
    line.part[3] = Shuffle(line.part[3], Load(kLast));
}

// Every second place of the column from kFirst on, three of them, and then the eight samples of `row`.
template <int kFirst>
Line<Bytes> ColumnAndRow(const Line<Bytes>& column, Vec row) {
    alignas(16) static constexpr std::uint8_t kPlaces[16] = {kFirst + kBase,
                                                             kFirst + kBase + 2,
                                                             kFirst + kBase + 4,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80,
                                                             0x80};
    return {{Or(Shuffle(column.part[0], Load(kPlaces)), {_mm_slli_si128(row.v, 3)}), Zero()}};
}
template <int kFirst>
Line<Words> ColumnAndRow(const Line<Words>& column, Vec row) {
    alignas(16) static constexpr std::uint8_t kPlaces[16] = {0,    1,    4,    5,    8,    9,    0x80, 0x80,
                                                             0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
    const Vec three = Shuffle(column.template From<kFirst>(), Load(kPlaces));
    return {{Or(three, {_mm_slli_si128(row.v, 6)}), {_mm_srli_si128(row.v, 10)}, Zero(), Zero()}};
}

// The places from -8 to -1 of one line and from -7 to 0 of the other in turn, then those from 1 on of the other.
Line<Bytes> Zigzag(const Line<Bytes>& even, const Line<Bytes>& odd) {
    return {{Bytes::Interleaved(even.From<-8>(), odd.From<-7>()), odd.From<1>()}};
}
Line<Words> Zigzag(const Line<Words>& even, const Line<Words>& odd) {
    const Vec first = even.From<-8>(), second = odd.From<-7>();
    return {{UnpackLow16(first, second), UnpackHigh16(first, second), odd.From<1>(), Zero()}};
}

// The places from -2 down to -9 of both lines in turn; the last one on and on.
Line<Bytes> ZigzagUpwards(const Line<Bytes>& even, const Line<Bytes>& odd) {
    alignas(16) static constexpr std::uint8_t kPlaces[16] = {8, 7, 6, 5, 4, 3, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    const Vec first = Shuffle(even.part[0], Load(kPlaces)), second = Shuffle(odd.part[0], Load(kPlaces));
    return {{Bytes::Interleaved(first, second), {_mm_unpackhi_epi8(first.v, second.v)}}};
}
Line<Words> ZigzagUpwards(const Line<Words>& even, const Line<Words>& odd) {
    alignas(16) static constexpr std::uint8_t kBackwards[16] = {14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1};
    const Vec first = Shuffle(even.From<-9>(), Load(kBackwards)), second = Shuffle(odd.From<-9>(), Load(kBackwards));
    const Vec last = {_mm_shuffle_epi32(_mm_shufflehi_epi16(second.v, 0xFF), 0xFF)};
    return {{UnpackLow16(first, second), UnpackHigh16(first, second), last, Zero()}};
}

// Rows from kRow on in steps of kRowStep are runs that begin at kStart and kStep further each time.
template <int kStart, int kStep, int kRow = 0, int kRowStep = 1, class Lanes>
void StoreRows(typename Lanes::Sample* samples, std::ptrdiff_t stride, const Line<Lanes>& line) {
    if constexpr (kRow < 8) {
        Lanes::StoreRow(samples + kRow * stride, line.template Window<kStart>());
        StoreRows<kStart + kStep, kStep, kRow + kRowStep, kRowStep>(samples, stride, line);
    }
}

// The modes that take the line as it is.
template <H264IntraBlockMode kMode, class Lanes>
void PredictStraight(typename Lanes::Sample* samples, std::ptrdiff_t stride, const Line<Lanes>& line) {
    if constexpr (kMode == INTRA_BLOCK_HORIZONTAL) {
        alignas(16) typename Lanes::Sample left[16 / sizeof(typename Lanes::Sample)];
        Store(left, line.template From<-8>());
        for (int y = 0; y < 8; ++y) Lanes::StoreRow(samples + y * stride, Lanes::Set(left[7 - y]));
        return;
    }
    Vec row = line.template From<1>();
    if constexpr (kMode == INTRA_BLOCK_DC) row = Lanes::Set((Lanes::Sum(line.template From<-8>(), row) + 8) >> 4);
    for (int y = 0; y < 8; ++y) Lanes::StoreRow(samples + y * stride, row);
}

template <H264IntraBlockMode kMode, class Lanes>
void Predict(typename Lanes::Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours) {
    // As the filter of clause 8.3.2.2.1 leaves it. A sample beside an absent one is its own neighbour.
    Line<Lanes> line;
    LoadLine<kMode>(samples, stride, neighbours).MakeSmooth(line);
    if constexpr (kMode <= INTRA_BLOCK_DC) return PredictStraight<kMode>(samples, stride, line);
    RepeatEnds(line);
    Line<Lanes> smooth, mean;
    line.MakeSmooth(smooth);
    line.MakeMeans(mean);
    if constexpr (kMode == INTRA_BLOCK_DIAGONAL_DOWN_LEFT) {
        StoreRows<kBase + 2, 1>(samples, stride, smooth);
    } else if constexpr (kMode == INTRA_BLOCK_DIAGONAL_DOWN_RIGHT) {
        StoreRows<kBase, -1>(samples, stride, smooth);
    } else if constexpr (kMode == INTRA_BLOCK_VERTICAL_LEFT) {
        StoreRows<kBase + 1, 1, 0, 2>(samples, stride, mean);
        StoreRows<kBase + 2, 1, 1, 2>(samples, stride, smooth);
    } else if constexpr (kMode == INTRA_BLOCK_VERTICAL_RIGHT) {
        // Every second row moves one sample right, and every second smoothed one of the column comes in.
        StoreRows<3, -1, 0, 2>(samples, stride, ColumnAndRow<-5>(smooth, mean.template From<0>()));
        StoreRows<3, -1, 1, 2>(samples, stride, ColumnAndRow<-6>(smooth, smooth.template From<0>()));
    } else if constexpr (kMode == INTRA_BLOCK_HORIZONTAL_DOWN) {
        StoreRows<14, -2>(samples, stride, Zigzag(mean, smooth));
    } else if constexpr (kMode == INTRA_BLOCK_HORIZONTAL_UP) {
        StoreRows<0, 2>(samples, stride, ZigzagUpwards(mean, smooth));
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

// Without the neighbours that a mode needs, a mean of what there is: the work of the plain form of DC.
template <H264IntraBlockMode kMode>
void PIXMORPH_SIMD::H264Intra8x8Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                      std::uint32_t bitDepth) {
    if ((neighbours & NeededBy(kMode)) != NeededBy(kMode))
        return plain::H264Intra8x8Bytes<INTRA_BLOCK_DC>(samples, stride, neighbours, bitDepth);
    Predict<kMode, Bytes>(samples, stride, neighbours);
}

template <H264IntraBlockMode kMode>
void PIXMORPH_SIMD::H264Intra8x8Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                      std::uint32_t bitDepth) {
    if ((neighbours & NeededBy(kMode)) != NeededBy(kMode))
        return plain::H264Intra8x8Words<INTRA_BLOCK_DC>(samples, stride, neighbours, bitDepth);
    Predict<kMode, Words>(samples, stride, neighbours);
}

namespace PIXMORPH_SIMD {
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_DC>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_RIGHT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_LEFT>;
template H264PredictIntraBytes H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_UP>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_VERTICAL>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_DC>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_VERTICAL_RIGHT>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL_DOWN>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_VERTICAL_LEFT>;
template H264PredictIntraWords H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL_UP>;
}  // namespace PIXMORPH_SIMD

}  // namespace KorvaneSoftware
