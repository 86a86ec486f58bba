// Dequantisation and inverse transforms by the equations of ITU-T H.264 clauses 8.5.8 to 8.5.13, on plain matrices.
#pragma once

#include <cstdint>
#include <vector>

namespace h264 {

/// A square matrix, or one of `width` columns, row by row.
struct Matrix {
    int width;
    std::vector<long long> values;

    explicit Matrix(int columns, int rows) : width(columns), values(static_cast<std::size_t>(columns * rows)) {}
    long long& At(int x, int y) { return values[static_cast<std::size_t>(y * width + x)]; }
    long long At(int x, int y) const { return values[static_cast<std::size_t>(y * width + x)]; }
    int Height() const { return static_cast<int>(values.size()) / width; }
};

inline Matrix Times(const Matrix& a, const Matrix& b) {
    Matrix product(b.width, a.Height());
    for (int y = 0; y < product.Height(); ++y)
        for (int x = 0; x < product.width; ++x)
            for (int i = 0; i < a.width; ++i) product.At(x, y) += a.At(i, y) * b.At(x, i);
    return product;
}

inline int NormAdjust4x4(int m, int x, int y) {
    constexpr int kV[6][3] = {{10, 16, 13}, {11, 18, 14}, {13, 20, 16}, {14, 23, 18}, {16, 25, 20}, {18, 29, 23}};
    return kV[m][x % 2 == 0 && y % 2 == 0 ? 0 : x % 2 == 1 && y % 2 == 1 ? 1 : 2];
}

inline int NormAdjust8x8(int m, int x, int y) {
    constexpr int kV[6][6] = {{20, 18, 32, 19, 25, 24}, {22, 19, 35, 21, 28, 26}, {26, 23, 42, 24, 33, 31},
                              {28, 25, 45, 26, 35, 33}, {32, 28, 51, 30, 40, 38}, {36, 32, 58, 34, 46, 43}};
    int kind = 5;
    if (x % 4 == 0 && y % 4 == 0) kind = 0;
    if (x % 2 == 1 && y % 2 == 1) kind = 1;
    if (x % 4 == 2 && y % 4 == 2) kind = 2;
    if ((x % 4 == 0 && y % 2 == 1) || (x % 2 == 1 && y % 4 == 0)) kind = 3;
    if ((x % 4 == 0 && y % 4 == 2) || (x % 4 == 2 && y % 4 == 0)) kind = 4;
    return kV[m][kind];
}

/// One of the passes of clause 8.5.12.2 or 8.5.13.2, over a row or column.
inline void InversePass(long long* v, int size) {
    if (size == 4) {
        const long long e0 = v[0] + v[2], e1 = v[0] - v[2], e2 = (v[1] >> 1) - v[3], e3 = v[1] + (v[3] >> 1);
        v[0] = e0 + e3, v[1] = e1 + e2, v[2] = e1 - e2, v[3] = e0 - e3;
        return;
    }
    const long long a0 = v[0] + v[4], a2 = v[0] - v[4], a4 = (v[2] >> 1) - v[6], a6 = v[2] + (v[6] >> 1);
    const long long a1 = -v[3] + v[5] - v[7] - (v[7] >> 1), a3 = v[1] + v[7] - v[3] - (v[3] >> 1);
    const long long a5 = -v[1] + v[7] + v[5] + (v[5] >> 1), a7 = v[3] + v[5] + v[1] + (v[1] >> 1);
    const long long b0 = a0 + a6, b2 = a2 + a4, b4 = a2 - a4, b6 = a0 - a6;
    const long long b1 = a1 + (a7 >> 2), b3 = a3 + (a5 >> 2), b5 = (a3 >> 2) - a5, b7 = a7 - (a1 >> 2);
    v[0] = b0 + b7, v[1] = b2 + b5, v[2] = b4 + b3, v[3] = b6 + b1;
    v[4] = b6 - b1, v[5] = b4 - b3, v[6] = b2 - b5, v[7] = b0 - b7;
}

/// Scaled coefficients to the residual, with the last rounding.
inline Matrix InverseTransform(Matrix d) {
    const int size = d.width;
    for (int y = 0; y < size; ++y) InversePass(&d.At(0, y), size);
    for (int x = 0; x < size; ++x) {
        long long column[8];
        for (int y = 0; y < size; ++y) column[y] = d.At(x, y);
        InversePass(column, size);
        for (int y = 0; y < size; ++y) d.At(x, y) = (column[y] + 32) >> 6;
    }
    return d;
}

/// Clauses 8.5.12.1 and 8.5.13.1: a level, LevelScale with its weight, and at which quotient of qP the scale is whole.
inline long long Scale(long long level, long long levelScale, int qp, int whole) {
    if (qp / 6 >= whole) return (level * levelScale) << (qp / 6 - whole);
    return (level * levelScale + (1LL << (whole - 1 - qp / 6))) >> (whole - qp / 6);
}

/// Clauses 8.5.10 and 8.5.11: levels of DC blocks of 4x4, 2x2 or 2 columns and 4 rows. `levelScale` is
/// LevelScale4x4(qp % 6, 0, 0).
inline Matrix TransformDc(const Matrix& levels, long long levelScale, int qp) {
    Matrix four(4, 4), two(2, 2);
    four.values = {1, 1, 1, 1, 1, 1, -1, -1, 1, -1, -1, 1, 1, -1, 1, -1};
    two.values = {1, 1, 1, -1};
    Matrix sums = Times(levels.Height() == 4 ? four : two, Times(levels, levels.width == 4 ? four : two));
    for (long long& sum : sums.values) {
        if (levels.Height() == 2)
            sum = ((sum * levelScale) << (qp / 6)) >> 5;
        else
            sum = Scale(sum, levelScale, qp, 6);
    }
    return sums;
}

}  // namespace h264
