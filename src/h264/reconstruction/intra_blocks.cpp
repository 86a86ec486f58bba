// Prediction of 4x4 and 8x8 blocks: the same directions, over the neighbours as they are or filtered.
#include "h264/reconstruction/intra_prediction.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace {

// The neighbours of a block as one line: the corner at 0, the row above from 1 on, the column to the left from -1 down.
template <int kSize>
class NeighbourLine {
public:
    template <class Sample>
    NeighbourLine(const Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours) : neighbours_(neighbours) {
        if (HasTop()) {
            const bool right = (neighbours & NEIGHBOUR_TOP_RIGHT) != 0;
            for (int x = 0; x < 2 * kSize; ++x) At(x + 1) = samples[(x < kSize || right ? x : kSize - 1) - stride];
        }
        if (HasLeft())
            for (int y = 0; y < kSize; ++y) At(-y - 1) = samples[y * stride - 1];
        if (HasCorner()) At(0) = samples[-stride - 1];
        if constexpr (kSize == 8) Filter();
    }
    bool HasTop() const { return (neighbours_ & NEIGHBOUR_TOP) != 0; }
    bool HasLeft() const { return (neighbours_ & NEIGHBOUR_LEFT) == NEIGHBOUR_LEFT; }
    bool HasCorner() const { return (neighbours_ & NEIGHBOUR_TOP_LEFT) != 0; }
    bool HasAll() const { return HasTop() && HasLeft() && HasCorner(); }

    int operator()(int i) const { return line_[i + kSize]; }
    int Top(int x) const { return (*this)(x + 1); }
    int Left(int y) const { return (*this)(-y - 1); }
    /// The mean of two neighbours, and of three about one.
    int Mean(int i, int j) const { return ((*this)(i) + (*this)(j) + 1) >> 1; }
    int Smooth(int before, int i, int after) const {
        return ((*this)(before) + 2 * (*this)(i) + (*this)(after) + 2) >> 2;
    }
    int Smooth(int i) const { return Smooth(i - 1, i, i + 1); }

private:
    int& At(int i) { return line_[i + kSize]; }

    // Where a neighbour of a neighbour is absent, the sample itself stands for it.
    void Filter() {
        const NeighbourLine before = *this;
        const int nearTop = HasTop() ? 1 : 0, nearLeft = HasLeft() ? -1 : 0;
        if (HasCorner()) At(0) = before.Smooth(nearLeft, 0, nearTop);
        if (HasTop()) {
            At(1) = before.Smooth(HasCorner() ? 0 : 1, 1, 2);
            for (int i = 2; i < 2 * kSize; ++i) At(i) = before.Smooth(i);
            At(2 * kSize) = before.Smooth(2 * kSize - 1, 2 * kSize, 2 * kSize);
        }
        if (HasLeft()) {
            At(-1) = before.Smooth(HasCorner() ? 0 : -1, -1, -2);
            for (int i = -2; i > -kSize; --i) At(i) = before.Smooth(i);
            At(-kSize) = before.Smooth(1 - kSize, -kSize, -kSize);
        }
    }

    std::uint32_t neighbours_;
    int line_[3 * kSize + 1] = {};
};

template <int kSize, class Sample, class Value>
void SetBlock(Sample* samples, std::ptrdiff_t stride, Value value) {
    for (int y = 0; y < kSize; ++y, samples += stride)
        for (int x = 0; x < kSize; ++x) samples[x] = static_cast<Sample>(value(x, y));
}

template <int kSize>
int DcOf(const NeighbourLine<kSize>& line, std::uint32_t bitDepth) {
    int top = 0, left = 0;
    for (int i = 0; i < kSize; ++i) {
        top += line.Top(i);
        left += line.Left(i);
    }
    if (line.HasTop() && line.HasLeft()) return (top + left + kSize) / (2 * kSize);
    if (line.HasTop()) return (top + kSize / 2) / kSize;
    if (line.HasLeft()) return (left + kSize / 2) / kSize;
    return 1 << (bitDepth - 1);
}

/// What a mode makes of each sample, where its neighbours are there.
template <int kSize, H264IntraBlockMode kMode>
struct Mode;

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_DC> {
    static bool Has(const NeighbourLine<kSize>&) { return false; }
    static int At(const NeighbourLine<kSize>&, int, int) { return 0; }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_VERTICAL> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasTop(); }
    static int At(const NeighbourLine<kSize>& line, int x, int) { return line.Top(x); }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_HORIZONTAL> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasLeft(); }
    static int At(const NeighbourLine<kSize>& line, int, int y) { return line.Left(y); }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_DIAGONAL_DOWN_LEFT> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasTop(); }
    static int At(const NeighbourLine<kSize>& line, int x, int y) {
        const int i = x + y + 2;
        return line.Smooth(i - 1, i, i < 2 * kSize ? i + 1 : i);
    }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_DIAGONAL_DOWN_RIGHT> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasAll(); }
    static int At(const NeighbourLine<kSize>& line, int x, int y) { return line.Smooth(x - y); }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_VERTICAL_RIGHT> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasAll(); }
    static int At(const NeighbourLine<kSize>& line, int x, int y) {
        const int place = 2 * x - y, i = x - (y >> 1);
        if (place < 0) return line.Smooth(place + 1);
        return place % 2 == 0 ? line.Mean(i, i + 1) : line.Smooth(i);
    }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_HORIZONTAL_DOWN> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasAll(); }
    static int At(const NeighbourLine<kSize>& line, int x, int y) {
        const int place = 2 * y - x, i = y - (x >> 1);
        if (place < 0) return line.Smooth(-place - 1);
        return place % 2 == 0 ? line.Mean(-i, -i - 1) : line.Smooth(-i);
    }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_VERTICAL_LEFT> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasTop(); }
    static int At(const NeighbourLine<kSize>& line, int x, int y) {
        const int i = x + (y >> 1) + 1;
        return y % 2 == 0 ? line.Mean(i, i + 1) : line.Smooth(i + 1);
    }
};

template <int kSize>
struct Mode<kSize, INTRA_BLOCK_HORIZONTAL_UP> {
    static bool Has(const NeighbourLine<kSize>& line) { return line.HasLeft(); }
    static int At(const NeighbourLine<kSize>& line, int x, int y) {
        const int place = x + 2 * y, i = -(y + (x >> 1)) - 1;
        if (place > 2 * kSize - 3) return line.Left(kSize - 1);
        if (place == 2 * kSize - 3) return line.Smooth(1 - kSize, -kSize, -kSize);
        return place % 2 == 0 ? line.Mean(i, i - 1) : line.Smooth(i - 1);
    }
};

template <int kSize, H264IntraBlockMode kMode, class Sample>
void Predict(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, std::uint32_t bitDepth) {
    const NeighbourLine<kSize> line(samples, stride, neighbours);
    if (Mode<kSize, kMode>::Has(line)) {
        SetBlock<kSize>(samples, stride, [&](int x, int y) { return Mode<kSize, kMode>::At(line, x, y); });
    } else {
        const int dc = DcOf(line, bitDepth);
        SetBlock<kSize>(samples, stride, [dc](int, int) { return dc; });
    }
}

}  // namespace

template <H264IntraBlockMode kMode>
void plain::H264Intra4x4Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                              std::uint32_t bitDepth) {
    Predict<4, kMode>(samples, stride, neighbours, bitDepth);
}

template <H264IntraBlockMode kMode>
void plain::H264Intra4x4Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                              std::uint32_t bitDepth) {
    Predict<4, kMode>(samples, stride, neighbours, bitDepth);
}

template <H264IntraBlockMode kMode>
void plain::H264Intra8x8Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                              std::uint32_t bitDepth) {
    Predict<8, kMode>(samples, stride, neighbours, bitDepth);
}

template <H264IntraBlockMode kMode>
void plain::H264Intra8x8Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                              std::uint32_t bitDepth) {
    Predict<8, kMode>(samples, stride, neighbours, bitDepth);
}

// What the vector forms fall back to.
template H264PredictIntraBytes plain::H264Intra4x4Bytes<INTRA_BLOCK_DC>;
template H264PredictIntraBytes plain::H264Intra8x8Bytes<INTRA_BLOCK_DC>;
template H264PredictIntraWords plain::H264Intra8x8Words<INTRA_BLOCK_DC>;

PIXMORPH_SLOT_TABLE(H264PredictIntraBytes, INTRA_BLOCK_MODES, H264Intra4x4Bytes,
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_DC>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>,
                     simd_sse41::H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>,
                     simd_sse41::H264Intra4x4Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_RIGHT>,
                     simd_sse41::H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_RIGHT>, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>,
                     simd_sse41::H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_LEFT>,
                     simd_sse41::H264Intra4x4Bytes<INTRA_BLOCK_VERTICAL_LEFT>, nullptr, nullptr},
                    {plain::H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_UP>,
                     simd_sse41::H264Intra4x4Bytes<INTRA_BLOCK_HORIZONTAL_UP>, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraWords, INTRA_BLOCK_MODES, H264Intra4x4Words,
                    {plain::H264Intra4x4Words<INTRA_BLOCK_VERTICAL>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_HORIZONTAL>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_DC>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_VERTICAL_RIGHT>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_HORIZONTAL_DOWN>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_VERTICAL_LEFT>, nullptr, nullptr, nullptr},
                    {plain::H264Intra4x4Words<INTRA_BLOCK_HORIZONTAL_UP>, nullptr, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraBytes, INTRA_BLOCK_MODES, H264Intra8x8Bytes,
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL>, nullptr, nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_DC>, simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_DC>, nullptr,
                     nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>, nullptr, nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>, nullptr, nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_RIGHT>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_RIGHT>, nullptr, nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_DOWN>, nullptr, nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_LEFT>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_VERTICAL_LEFT>, nullptr, nullptr},
                    {plain::H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_UP>,
                     simd_sse41::H264Intra8x8Bytes<INTRA_BLOCK_HORIZONTAL_UP>, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraWords, INTRA_BLOCK_MODES, H264Intra8x8Words,
                    {plain::H264Intra8x8Words<INTRA_BLOCK_VERTICAL>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_VERTICAL>, nullptr, nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_DC>, simd_sse41::H264Intra8x8Words<INTRA_BLOCK_DC>, nullptr,
                     nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_DIAGONAL_DOWN_LEFT>, nullptr, nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_DIAGONAL_DOWN_RIGHT>, nullptr, nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_VERTICAL_RIGHT>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_VERTICAL_RIGHT>, nullptr, nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL_DOWN>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL_DOWN>, nullptr, nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_VERTICAL_LEFT>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_VERTICAL_LEFT>, nullptr, nullptr},
                    {plain::H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL_UP>,
                     simd_sse41::H264Intra8x8Words<INTRA_BLOCK_HORIZONTAL_UP>, nullptr, nullptr});

}  // namespace KorvaneSoftware
