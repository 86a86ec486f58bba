#include "jpeg/inverse_dct_table.h"
#include "jpeg/x86/block_transform_forms.h"

namespace KorvaneSoftware {
namespace {

constexpr const auto& T = kInverseDctTable;

std::int16_t Cut(int x) { return static_cast<std::int16_t>(x); }

// The high half of the product of a 16-bit value. Where an argument overflows it wraps; the sums that are multiplied
// without it keep their 17th bit. Only damaged data shows the difference.
int MulHigh(int x, int k) { return Cut(x) * k >> 16; }

std::int16_t Scaled(int x, int shift) { return shift < 0 || shift > 15 ? std::int16_t{0} : Cut(x << shift); }

void TransformColumn(std::int16_t* v, int j) {
    const int r0 = v[0], r1 = v[8], r2 = v[16], r3 = v[24], r4 = v[32], r5 = v[40], r6 = v[48], r7 = v[56];
    const int s = T[0][j] * (r1 + r7) >> 16;
    const int a = s - MulHigh(r7, T[4][j]), b = MulHigh(r1, T[5][j]) - s;
    const int t = T[1][j] * (r3 + r5) >> 16;
    const int c = t - MulHigh(r5, T[6][j]), d = t - MulHigh(r3, T[7][j]);
    const int e = a + c, f = d + b;
    const int g = MulHigh(2 * ((b - d) - c + a), 23170), h = MulHigh(2 * ((d - c) - b + a), 23170);
    const int m = MulHigh(r0 + r4, T[8][j]), n = MulHigh(r0 - r4, T[8][j]);
    const int w = T[9][j] * (r2 + r6) >> 16;
    const int x = w - MulHigh(r6, T[11][j]), y = MulHigh(r2, T[12][j]) - w;
    const int P = m + x, Q = n + y, R = n - y, S = m - x;
    v[0] = Cut(e + P);
    v[8] = Cut(g + Q);
    v[16] = Cut(h + R);
    v[24] = Cut(S + f);
    v[32] = Cut(S - f);
    v[40] = Cut(R - h);
    v[48] = Cut(Q - g);
    v[56] = Cut(P - e);
}

void TransformRow(std::int16_t* v) {
    const int x0 = v[0], x1 = v[1], x2 = v[2], x3 = v[3], x4 = v[4], x5 = v[5], x6 = v[6], x7 = v[7];
    const int a = x3 + MulHigh(2 * x5, 21895), b = x5 - MulHigh(2 * x3, 21895);
    const int c = x1 + MulHigh(x7, 13036), d = MulHigh(x1, 13036) - x7;
    const int e = c + a, f = b + d;
    const int g = MulHigh(2 * ((d - b) - a + c), 23170), h = MulHigh(2 * ((b - a) - d + c), 23170);
    const int m = x0 + x4, n = x0 - x4;
    const int p = x2 + MulHigh(x6, 27146), q = MulHigh(x2, 27146) - x6;
    const int P = n + q, Q = n - q;
    v[0] = Cut(m + p + e);
    v[7] = Cut(m + p - e);
    v[1] = Cut(g + P);
    v[6] = Cut(P - g);
    v[2] = Cut(Q + h);
    v[5] = Cut(Q - h);
    v[3] = Cut(m - p + f);
    v[4] = Cut(m - p - f);
}

void FullPath(std::int16_t* block, int shift) {
    for (std::size_t i = 0; i < kBlockValues; ++i) block[i] = Scaled(block[i], shift);
    for (int column = 0; column < 8; ++column) TransformColumn(block + column, column);
    for (std::size_t i = 0; i < kBlockValues; ++i) block[i] = Cut(block[i] * 2);
    for (int row = 0; row < 8; ++row) TransformRow(block + 8 * row);
    for (std::size_t i = 0; i < kBlockValues; ++i) block[i] = Cut((block[i] + 16) >> 5);
}

// Row `i` of which only the first four values are read.
void TransformShortRow(std::int16_t* v, int i) {
    const int x0 = v[0], x1 = v[1], x2 = v[2], x3 = v[3];
    const int a = MulHigh(x1, T[0][i]), b = MulHigh(x3, T[1][i]);
    const int c = MulHigh(x3, T[2][i]), d = MulHigh(x1, T[3][i]);
    const int g = MulHigh(2 * (d + c - b + a), 23170), h = MulHigh(2 * (a - c - b - d), 23170);
    const int m = MulHigh(x0, T[8][i]), p = MulHigh(x2, T[9][i]), q = MulHigh(x2, T[10][i]);
    v[0] = Cut(m + p + a + b);
    v[7] = Cut(m + p - a - b);
    v[1] = Cut(g + m + q);
    v[6] = Cut(m + q - g);
    v[2] = Cut(h + m - q);
    v[5] = Cut(m - q - h);
    v[3] = Cut(m - p + d - c);
    v[4] = Cut(m - p + c - d);
}

// A column of which only the first four values are read.
void TransformShortColumn(std::int16_t* v) {
    const int y0 = v[0], y1 = v[8], y2 = v[16], y3 = v[24];
    const int a = MulHigh(2 * y3, 21895), b = MulHigh(y1, 13036), c = MulHigh(y2, 27146);
    const int g = MulHigh(2 * (a + b - y3 + y1), 23170), h = MulHigh(2 * (y1 - a - y3 - b), 23170);
    v[0] = Cut(y0 + y2 + y1 + y3);
    v[56] = Cut(y0 + y2 - y1 - y3);
    v[8] = Cut(g + y0 + c);
    v[48] = Cut(y0 + c - g);
    v[16] = Cut(h + y0 - c);
    v[40] = Cut(y0 - c - h);
    v[24] = Cut(y0 - y2 + b - a);
    v[32] = Cut(y0 - y2 + a - b);
}

// In scan order the first ten positions lie in the top left triangle. Rows go first here, so the roundings differ from
// those of the full path; that is accepted.
void ShortPath(std::int16_t* block, int shift) {
    if (shift != 0)
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4 - row; ++column)
                block[8 * row + column] = Scaled(block[8 * row + column], shift);
    for (int row = 0; row < 4; ++row) TransformShortRow(block + 8 * row, row);
    for (std::size_t i = 0; i < kBlockValues / 2; ++i) block[i] = Cut(block[i] * 2);
    for (int column = 0; column < 8; ++column) TransformShortColumn(block + column);
    for (std::size_t i = 0; i < kBlockValues; ++i) block[i] = Cut((block[i] + 16) >> 5);
}

}  // namespace

void plain::InverseDCT(std::int16_t* block, unsigned count, unsigned bits) {
    if (count < 2) {
        const unsigned shift = bits + 3 < 31 ? bits + 3 : 31;
        const std::int16_t value = Cut((block[0] + 4) >> shift);
        for (std::size_t i = 0; i < kBlockValues; ++i) block[i] = value;
        return;
    }
    const int shift = bits > 4 ? -1 : 4 - static_cast<int>(bits);
    if (count > 10)
        FullPath(block, shift);
    else
        ShortPath(block, shift);
}

void plain::InverseDCTBlocks(std::int16_t* blocks, const std::uint8_t* counts, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) plain::InverseDCT(blocks + kBlockValues * i, counts[i], 0);
}

}  // namespace KorvaneSoftware
