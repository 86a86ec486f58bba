// Titles worked out slowly, pixel by pixel, in wide integers: what the engine is compared with. Written apart from the
// library's own arithmetic.
#pragma once

#include <cstdint>

#include "support/colour_reference.h"
#include "support/picture.h"

namespace pixmorph_test {

struct Colour {
    std::int64_t b, g, r;
};

struct PairSamples {
    std::int64_t u, y0, v, y1;
};

inline std::int64_t Wrapped(std::int64_t value) { return value & 0xFFFFFFFF; }
inline std::int64_t WrappedSigned(std::int64_t value) { return static_cast<std::int32_t>(Wrapped(value)); }
inline std::int64_t FloorDivide(std::int64_t value, std::int64_t by) {
    return value >= 0 ? value / by : -((-value + by - 1) / by);
}
inline std::int64_t Saturated(std::int64_t value) { return value < 0 ? 0 : value > 255 ? 255 : value; }
inline std::uint8_t Byte(std::int64_t value) { return static_cast<std::uint8_t>(value & 0xFF); }

inline std::int64_t Term(std::int64_t coefficient, std::int64_t sample) { return coefficient * sample / 65536; }

inline Colour ColourOf(int matrix, std::int64_t y, std::int64_t u256, std::int64_t v256) {
    const auto t = ToRgbReference(matrix);
    const std::int64_t yy = Term(t[0], y * 256);
    return {Saturated(FloorDivide(Term(t[1], u256) - t[5] + yy, 32)),
            Saturated(FloorDivide(yy - Term(t[3], v256) - Term(t[2], u256) + t[6], 32)),
            Saturated(FloorDivide(Term(t[4], v256) - t[7] + yy, 32))};
}

inline PairSamples SamplesOf(int matrix, const Colour& p, const Colour& q) {
    const auto t = ToYuvReference(matrix);
    const auto luma = [t](const Colour& c) {
        return Saturated((Term(t[0], c.b * 256) + Term(t[1], c.g * 256) + Term(t[2], c.r * 256) + t[9]) / 32);
    };
    const std::int64_t b = (p.b + q.b) * 128;
    const std::int64_t g = (p.g + q.g) * 128;
    const std::int64_t r = (p.r + q.r) * 128;
    return {Saturated(FloorDivide(Term(t[3], b) - Term(t[4], g) - Term(t[5], r) + t[10], 32)), luma(p),
            Saturated(FloorDivide(Term(t[8], r) - Term(t[7], g) - Term(t[6], b) + t[10], 32)), luma(q)};
}

/// Byte offsets of U, Y0, V, Y1 in a group of four.
struct PackedOrder {
    int u, y0, v, y1;
};
inline PackedOrder OrderOf(std::uint32_t format) {
    if (format == km::FMT_UYVY) return {0, 1, 2, 3};
    if (format == km::FMT_YUY2) return {1, 0, 3, 2};
    return {3, 0, 1, 2};
}

inline PairSamples ReadPair(const TestPicture& picture, std::size_t row, std::size_t pair) {
    const std::uint8_t* const p = picture.Planes()[0].Row(row) + 4 * pair;
    const PackedOrder order = OrderOf(picture.Desc().format);
    return {p[order.u], p[order.y0], p[order.v], p[order.y1]};
}

inline bool IsPacked(std::uint32_t format) {
    return format == km::FMT_UYVY || format == km::FMT_YUY2 || format == km::FMT_YVYU;
}

/// Pixel `x` of stored row `row` as colour; alpha 255 where the format has none.
struct ColourAlpha {
    Colour colour;
    std::int64_t alpha;
};
inline ColourAlpha ReadPixel(const TestPicture& picture, std::size_t row, std::size_t x) {
    const std::uint8_t* const bytes = picture.Planes()[0].Row(row);
    const std::uint32_t format = picture.Desc().format;
    if (format == km::FMT_BGR) return {{bytes[3 * x], bytes[3 * x + 1], bytes[3 * x + 2]}, 255};
    if (format == km::FMT_BGRA) return {{bytes[4 * x], bytes[4 * x + 1], bytes[4 * x + 2]}, bytes[4 * x + 3]};
    const std::size_t pairs = picture.Desc().width / 2;
    const PairSamples here = ReadPair(picture, row, x / 2);
    const PairSamples next = ReadPair(picture, row, x / 2 + 1 < pairs ? x / 2 + 1 : x / 2);
    const int matrix = picture.Desc().colorMatrix & 3;
    if (x % 2 == 0) return {ColourOf(matrix, here.y0, here.u * 256, here.v * 256), 255};
    return {ColourOf(matrix, here.y1, (here.u + next.u) * 128, (here.v + next.v) * 128), 255};
}

enum class TitleOperation { Move, NotPremultiplied, Add, ToImage };

/// The title that an operation leaves. `alpha` is the region alpha as a 32-bit number.
inline void ExpectTitle(TitleOperation operation, TestPicture& title, const TestPicture& image, std::int64_t alpha) {
    const std::int64_t a1 = Wrapped(alpha + 1);
    const std::uint32_t format = image.Desc().format;
    const std::size_t height = title.Desc().height;
    for (std::size_t row = 0; row < height; ++row) {
        for (std::size_t x = 0; x < title.Desc().width; ++x) {
            const ColourAlpha s = ReadPixel(image, IsPacked(format) ? height - 1 - row : row, x);
            const std::int64_t source[3] = {s.colour.b, s.colour.g, s.colour.r};
            std::uint8_t* const d = title.Plane(0).Row(row) + 4 * x;
            const std::int64_t m = Wrapped(s.alpha * a1);
            const std::int64_t k = Wrapped((255 - d[3]) * a1);
            const bool layered = format == km::FMT_BGRA;
            for (int c = 0; c < 3; ++c) {
                switch (operation) {
                    case TitleOperation::Move:
                        d[c] = layered ? Byte(Wrapped(source[c] * m) / 65536) : Byte(Wrapped(source[c] * a1) / 256);
                        break;
                    case TitleOperation::NotPremultiplied:
                        d[c] = Byte(source[c]);
                        break;
                    case TitleOperation::Add:
                        d[c] = Byte(Saturated(d[c] + (layered ? Wrapped((source[c] + 1) * s.alpha * k) / 16777216
                                                              : Wrapped(source[c] * k) / 65536)));
                        break;
                    case TitleOperation::ToImage:
                        if (s.alpha != 0)
                            d[c] = Byte(Saturated(source[c] * 255 / s.alpha));
                        else
                            d[c] = source[c] != 0 ? 255 : 0;
                        break;
                }
            }
            switch (operation) {
                case TitleOperation::Move:
                case TitleOperation::NotPremultiplied:
                    d[3] = layered ? Byte(m / 256) : Byte(alpha);
                    break;
                case TitleOperation::Add:
                    d[3] = Byte(Saturated(d[3] + (layered ? Wrapped(s.alpha * k) / 65536 : k / 256)));
                    break;
                case TitleOperation::ToImage:
                    d[3] = Byte(s.alpha);
                    break;
            }
        }
    }
}

inline std::int64_t Faded(std::int64_t difference, std::int64_t weight) {
    const std::int64_t magnitude = difference < 0 ? -difference : difference;
    const std::int64_t faded = Wrapped(magnitude * weight + 32768) / 65536;
    return difference < 0 ? -faded : faded;
}

/// The frame that MoveImageToUYVYBuffer (`add` false) or AddImageToUYVYBuffer leaves.
inline void ExpectFrame(bool add, TestPicture& frame, const TestPicture& image, std::int64_t alpha) {
    const std::int64_t a1 = Wrapped(alpha + 1);
    const std::uint32_t format = image.Desc().format;
    const std::size_t width = frame.Desc().width;
    const std::size_t height = frame.Desc().height;
    const int matrix = frame.Desc().colorMatrix & 3;
    const PackedOrder order = OrderOf(frame.Desc().format);
    const std::int64_t black = matrix == 3 && !IsPacked(format) ? 0 : 16;
    for (std::size_t row = 0; row < height; ++row) {
        for (std::size_t x = 2; x <= width; x += 2) {
            if (format == km::FMT_BGR && x == width) continue;
            const std::size_t pair = x / 2 - 1;
            PairSamples s{};
            std::int64_t weight[2] = {};
            if (IsPacked(format)) {
                s = ReadPair(image, row, pair);
            } else {
                const ColourAlpha p = ReadPixel(image, height - 1 - row, x - 2);
                const ColourAlpha q = ReadPixel(image, height - 1 - row, x - 1);
                s = SamplesOf(matrix, p.colour, q.colour);
                weight[0] = Wrapped((p.alpha + 1) * a1);
                weight[1] = Wrapped((q.alpha + 1) * a1);
            }
            const PairSamples d = ReadPair(frame, row, pair);
            const std::int64_t image4[4] = {s.u, s.y0, s.v, s.y1};
            const std::int64_t frame4[4] = {d.u, d.y0, d.v, d.y1};
            std::uint8_t result[4];
            for (int i = 0; i < 4; ++i) {
                const bool luma = i % 2 == 1;
                const std::int64_t base = add ? frame4[i] : (luma ? black : 128);
                if (format == km::FMT_BGRA) {
                    const std::int64_t value = base + Faded(image4[i] - base, weight[i / 2]);
                    result[i] = add || luma ? Byte(Saturated(value)) : Byte(value);
                } else {
                    result[i] = Byte(Saturated(FloorDivide(WrappedSigned((image4[i] - base) * a1 + 128), 256) + base));
                }
            }
            std::uint8_t* const to = frame.Plane(0).Row(row) + 4 * pair;
            to[order.u] = result[0];
            to[order.y0] = result[1];
            to[order.v] = result[2];
            to[order.y1] = result[3];
        }
    }
}

}  // namespace pixmorph_test
