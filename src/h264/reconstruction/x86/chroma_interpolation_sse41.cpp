// A row holds no more than eight samples, so wider registers would gain nothing. Each sample and its right neighbour are
// a pair whose weighted sum is one operation; it is taken twice, as the upper and as the lower row of two.
#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/inter_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

template <int kBytes>
Vec LoadBytes(const void* p) {
    if constexpr (kBytes == 16) {
        return Load(p);
    } else if constexpr (kBytes == 8) {
        return LoadHalf(p);
    } else {
        int bytes = 0;
        __builtin_memcpy(&bytes, p, kBytes);
        return {_mm_cvtsi32_si128(bytes)};
    }
}

template <int kBytes>
void StoreBytes(void* p, Vec v) {
    if constexpr (kBytes == 16) {
        Store(p, v);
    } else if constexpr (kBytes == 8) {
        StoreHalf(p, v);
    } else {
        const int bytes = _mm_cvtsi128_si32(v.v);
        __builtin_memcpy(p, &bytes, kBytes);
    }
}

// A row of bytes. Weights are 64ths, so that the sum of two pairs stays within 16 bits.
template <int kWidth>
struct ByteRow {
    using Sample = std::uint8_t;
    static constexpr int kBytes = kWidth;
    Vec pairs;

    static Vec Weights(int left, int right) { return Set16(left | right << 8); }

    ByteRow(const Sample* p, int right)
        : pairs{_mm_unpacklo_epi8(LoadBytes<kBytes>(p).v, LoadBytes<kBytes>(p + right).v)} {}
    static void StoreMean(Sample* p, ByteRow upper, Vec upperWeights, ByteRow lower, Vec lowerWeights) {
        const Vec sum = Add16(upper.Sum(upperWeights), lower.Sum(lowerWeights));
        const Vec mean = ShiftRight16s<6>(Add16(sum, Set16(32)));
        StoreBytes<kBytes>(p, Pack16To8u(mean, mean));
    }
    Vec Sum(Vec weights) const { return {_mm_maddubs_epi16(pairs.v, weights.v)}; }
};

// A row of words of up to 14 bits.
template <int kWidth>
struct WordRow {
    using Sample = std::uint16_t;
    static constexpr int kBytes = 2 * kWidth;
    Vec low, high;

    static Vec Weights(int left, int right) { return Set32(left | right << 16); }

    WordRow(const Sample* p, int right) {
        const Vec first = LoadBytes<kBytes>(p), second = LoadBytes<kBytes>(p + right);
        low = UnpackLow16(first, second);
        high = kWidth == 8 ? UnpackHigh16(first, second) : Zero();
    }
    static void StoreMean(Sample* p, WordRow upper, Vec upperWeights, WordRow lower, Vec lowerWeights) {
        const auto mean = [&](Vec above, Vec below) {
            const Vec sum = Add32(MulAddPairs16(above, upperWeights), MulAddPairs16(below, lowerWeights));
            return ShiftRight32s<6>(Add32(sum, Set32(32)));
        };
        const Vec first = mean(upper.low, lower.low);
        StoreBytes<kBytes>(p, Pack32To16s(first, kWidth == 8 ? mean(upper.high, lower.high) : first));
    }
};

template <class Row>
void InterpolateChroma(typename Row::Sample* dst, std::ptrdiff_t dstStride, const typename Row::Sample* src,
                       std::ptrdiff_t srcStride, int height, int xFraction, int yFraction) {
    if (xFraction == 0 && yFraction == 0) {
        for (int y = 0; y < height; ++y, dst += dstStride, src += srcStride)
            StoreBytes<Row::kBytes>(dst, LoadBytes<Row::kBytes>(src));
        return;
    }
    // What has weight 0 is not looked for outside the block.
    const int right = xFraction != 0 ? 1 : 0;
    const Vec upperWeights = Row::Weights((8 - xFraction) * (8 - yFraction), xFraction * (8 - yFraction));
    if (yFraction == 0) {
        for (int y = 0; y < height; ++y, dst += dstStride, src += srcStride) {
            const Row row(src, right);
            Row::StoreMean(dst, row, upperWeights, row, Zero());
        }
        return;
    }
    const Vec lowerWeights = Row::Weights((8 - xFraction) * yFraction, xFraction * yFraction);
    Row upper(src, right);
    for (int y = 0; y < height; ++y, dst += dstStride) {
        src += srcStride;
        const Row lower(src, right);
        Row::StoreMean(dst, upper, upperWeights, lower, lowerWeights);
        upper = lower;
    }
}

}  // namespace

template <int kWidth>
void H264ChromaBytes(std::uint8_t* dst, std::ptrdiff_t dstStride, const std::uint8_t* src, std::ptrdiff_t srcStride,
                     int height, int xFraction, int yFraction) {
    InterpolateChroma<ByteRow<kWidth>>(dst, dstStride, src, srcStride, height, xFraction, yFraction);
}

template <int kWidth>
void H264ChromaWords(std::uint16_t* dst, std::ptrdiff_t dstStride, const std::uint16_t* src, std::ptrdiff_t srcStride,
                     int height, int xFraction, int yFraction) {
    InterpolateChroma<WordRow<kWidth>>(dst, dstStride, src, srcStride, height, xFraction, yFraction);
}

template H264InterpolateChromaBytes H264ChromaBytes<2>;
template H264InterpolateChromaBytes H264ChromaBytes<4>;
template H264InterpolateChromaBytes H264ChromaBytes<8>;
template H264InterpolateChromaWords H264ChromaWords<2>;
template H264InterpolateChromaWords H264ChromaWords<4>;
template H264InterpolateChromaWords H264ChromaWords<8>;

}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
