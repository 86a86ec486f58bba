// Pictures that integers alone reproduce, as sources and destinations of the frame codecs.
//
// A picture lies in a buffer of 8 * width * height + 4096 pseudo-random bytes, its first plane 1,024 bytes into it, so
// that a hash of the whole buffer also tells of bytes written between and around the rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/random.h"

namespace pixmorph_test {

/// What a picture shows, by name:
///   "flat"            one colour, by the seed
///   "cells-a-b-p-q"   cells of one colour: a by b pixels of luminance, p by q of chrominance
///   "steps"           cells of 16 by 16 in steps of 4
///   "gradient"        ramps in all directions, with a step every 24 pixels and 20 lines
///   "gradient-u"      its luminance over one chrominance
///   "fields"          "gradient" with the odd lines 14 pixels further, as in motion
///   "noise"           the bytes of the buffer as they are
///   "soft"            the bytes of the buffer, each b made 96 + b / 4
class CodedContent {
public:
    struct Sample {
        std::uint8_t y, u, v;
    };

    CodedContent(std::string_view name, std::uint32_t seed) : kind_(KindOf(name)), seed_(static_cast<int>(seed)) {
        if (kind_ == Kind::Cells &&
            std::sscanf(std::string(name).c_str(), "cells-%d-%d-%d-%d", &a_, &b_, &p_, &q_) != 4)
            throw std::invalid_argument(std::string(name));
    }

    bool KeepsBytes() const { return kind_ == Kind::Noise; }
    bool SoftensBytes() const { return kind_ == Kind::Soft; }

    Sample At(int x, int y) const {
        switch (kind_) {
            case Kind::Flat:
                return Make(60 + seed_, 90 + seed_, 170 - seed_);
            case Kind::Cells: {
                const int i = x / a_, j = y / b_, k = x / p_, l = y / q_;
                return Make(24 + (37 * i + 59 * j + i * j + seed_) % 205, 40 + (41 * k + 29 * l + seed_) % 170,
                            40 + (23 * k + 53 * l + 80 + seed_) % 170);
            }
            case Kind::Steps: {
                const int i = x / 16, j = y / 16;
                return Make(60 + 4 * ((7 * i + 11 * j + i * j + seed_) % 38),
                            60 + 4 * ((5 * i + 3 * j + 9 + seed_) % 38), 60 + 4 * ((3 * i + 13 * j + 20 + seed_) % 38));
            }
            case Kind::Fields:
                return Gradient(y % 2 != 0 ? x + 14 : x, y);
            case Kind::GradientU:
                return Make(Gradient(x, y).y, 110, 150);
            default:
                return Gradient(x, y);
        }
    }

private:
    enum class Kind { Flat, Cells, Steps, Gradient, GradientU, Fields, Noise, Soft };

    static Kind KindOf(std::string_view name) {
        if (name.starts_with("cells-")) return Kind::Cells;
        static constexpr struct {
            std::string_view name;
            Kind kind;
        } kNames[] = {{"flat", Kind::Flat},         {"steps", Kind::Steps},
                      {"gradient", Kind::Gradient}, {"gradient-u", Kind::GradientU},
                      {"fields", Kind::Fields},     {"noise", Kind::Noise},
                      {"soft", Kind::Soft}};
        for (const auto& entry : kNames)
            if (entry.name == name) return entry.kind;
        throw std::invalid_argument(std::string(name));
    }
    static Sample Make(int y, int u, int v) {
        return {static_cast<std::uint8_t>(y), static_cast<std::uint8_t>(u), static_cast<std::uint8_t>(v)};
    }
    static int Triangle(int n) { return std::abs(n % 256 - 128); }
    Sample Gradient(int x, int y) const {
        return Make(30 + Triangle(3 * x + 2 * y + seed_) + 40 * ((x / 24 + y / 20) % 2),
                    64 + Triangle(2 * x + y + 40 + seed_), 64 + Triangle(x + 3 * y + 90 + seed_));
    }

    Kind kind_;
    int seed_;
    int a_ = 1, b_ = 1, p_ = 1, q_ = 1;
};

/// A picture in one of the packed, block or RGB formats, by public number: 0 UYVY, 5 YUY2, 6 YVYU, 1 Y16, 2 Y16A, 7
/// BGR, 8 BGRA, 17 and 18 the same top-down; those plus 32 or 96 for other colour matrices.
class CodedPicture {
public:
    /// A picture whose bytes are those of the filled buffer.
    CodedPicture(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::int32_t stride,
                 std::uint32_t seed)
        : layout_(format >= 32 ? format % 32 : format),
          width_(width),
          height_(height),
          stride_(stride),
          bytes_(std::size_t{8} * width * height + 4096) {
        ByteGenerator(seed).Fill(bytes_);
    }
    /// A picture that shows `content`.
    CodedPicture(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::int32_t stride,
                 std::uint32_t seed, std::string_view content)
        : CodedPicture(format, width, height, stride, seed) {
        const CodedContent samples(content, seed);
        if (samples.KeepsBytes()) return;
        for (std::uint32_t y = 0; y < height_; ++y) {
            if (samples.SoftensBytes())
                for (std::uint8_t& byte : Row(y)) byte = static_cast<std::uint8_t>(96 + byte / 4);
            else
                WriteRow(samples, static_cast<int>(y));
        }
    }

    /// The pointer and the stride to hand to the codec: with a negative stride the picture lies from the last line to
    /// the first.
    std::uint8_t* First() { return bytes_.data() + FirstOffset(); }
    std::int32_t Stride() const { return stride_; }
    std::span<std::uint8_t> Row(std::uint32_t y) { return {First() + Offset(y), RowBytes()}; }
    std::size_t RowBytes() const {
        switch (layout_) {
            case 7:
            case 17:
            case 2:
                return std::size_t{3} * width_;
            case 8:
            case 18:
                return std::size_t{4} * width_;
            case 1:
                return std::size_t{2} * width_;
            default:
                return std::size_t{2} * ((width_ + 1) / 2 * 2);
        }
    }
    std::span<const std::uint8_t> Buffer() const { return bytes_; }
    /// Hash of the whole buffer.
    std::uint64_t Hash() const { return HashBytes(bytes_); }
    /// Hash of the rows alone, line 0 first.
    std::uint64_t RowsHash() {
        std::vector<std::uint8_t> rows;
        for (std::uint32_t y = 0; y < height_; ++y) rows.insert(rows.end(), Row(y).begin(), Row(y).end());
        return HashBytes(rows);
    }

private:
    std::size_t FirstOffset() const {
        return 1024 + (stride_ < 0 && height_ > 0 ? (height_ - 1) * static_cast<std::size_t>(-stride_) : 0);
    }
    std::ptrdiff_t Offset(std::uint32_t y) const { return static_cast<std::ptrdiff_t>(y) * stride_; }

    // With an odd width the pixel behind the last one is a copy of it, so that every way to complete the last pair
    // reads the same.
    void WriteRow(const CodedContent& content, int y) {
        std::uint8_t* const row = First() + Offset(static_cast<std::uint32_t>(y));
        const int last = static_cast<int>(width_) - 1;
        for (int x = 0; x <= (last | 1); ++x) {
            const CodedContent::Sample own = content.At(x < last ? x : last, y);
            const CodedContent::Sample pair = content.At(x & ~1, y);
            const auto alpha = static_cast<std::uint8_t>(x + y);
            const int block = x / 16, inBlock = x % 16;
            switch (layout_) {
                case 7:
                case 17:
                    Put(row + 3 * x, {own.y, own.u, own.v});
                    break;
                case 8:
                case 18:
                    Put(row + 4 * x, {own.y, own.u, own.v, alpha});
                    break;
                case 1:
                    row[32 * block + inBlock] = own.y;
                    row[32 * block + 16 + inBlock / 2] = pair.u;
                    row[32 * block + 24 + inBlock / 2] = pair.v;
                    break;
                case 2:
                    row[48 * block + inBlock] = own.y;
                    row[48 * block + 16 + inBlock] = alpha;
                    row[48 * block + 32 + inBlock / 2] = pair.u;
                    row[48 * block + 40 + inBlock / 2] = pair.v;
                    break;
                case 0:
                    Put(row + 2 * x, {x % 2 == 0 ? pair.u : pair.v, own.y});
                    break;
                case 5:
                    Put(row + 2 * x, {own.y, x % 2 == 0 ? pair.u : pair.v});
                    break;
                case 6:
                    Put(row + 2 * x, {own.y, x % 2 == 0 ? pair.v : pair.u});
                    break;
                default:
                    throw std::invalid_argument("a picture format without a layout here");
            }
        }
    }
    static void Put(std::uint8_t* at, std::initializer_list<std::uint8_t> bytes) {
        for (const std::uint8_t byte : bytes) *at++ = byte;
    }

    std::uint32_t layout_;
    std::uint32_t width_;
    std::uint32_t height_;
    std::int32_t stride_;
    std::vector<std::uint8_t> bytes_;
};

}  // namespace pixmorph_test
