// Pictures for tests: every plane in memory of its own, with guard bytes before, after and between the rows, padded or
// negative strides and odd offsets, so that a byte touched outside the picture shows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "foundation/image_descriptor.h"
#include "support/byte_difference.h"
#include "support/random.h"

namespace pixmorph_test {

namespace km = KorvaneSoftware;

/// How the planes of a test picture lie in memory.
struct PictureLayout {
    int padding = 0;        ///< Bytes between rows.
    bool negative = false;  ///< Rows go upward in memory: negative strides.
    int offset = 0;         ///< Bytes by which the first row misses 64-byte alignment.
};

enum class Fill { Random, Zero, Max, Ramp, Extremes };

inline void FillBytes(std::vector<std::uint8_t>& bytes, Fill fill, std::uint32_t seed) {
    ByteGenerator generator(seed);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        switch (fill) {
            case Fill::Random:
                bytes[i] = generator.Next();
                break;
            case Fill::Zero:
                bytes[i] = 0;
                break;
            case Fill::Max:
                bytes[i] = 255;
                break;
            case Fill::Ramp:
                bytes[i] = static_cast<std::uint8_t>(i);
                break;
            case Fill::Extremes:
                bytes[i] = (generator.Next() & 1) != 0 ? 255 : 0;
                break;
        }
    }
}

/// Memory of one plane: `rows` rows of `rowBytes` bytes with guards all around.
class TestPlane {
public:
    static constexpr std::size_t kMargin = 256;
    static constexpr std::uint8_t kGuard = 0xFE;

    TestPlane(std::size_t rowBytes, std::size_t rows, const PictureLayout& layout)
        : rowBytes_(rowBytes), rows_(rows), negative_(layout.negative), pitch_(rowBytes + layout.padding) {
        memory_.assign(2 * kMargin + 64 + layout.offset + pitch_ * rows, kGuard);
        const auto address = reinterpret_cast<std::uintptr_t>(memory_.data()) + kMargin;
        first_ = kMargin + (64 - address % 64) % 64 + layout.offset;
    }

    std::uint8_t* Row(std::size_t row) {
        return memory_.data() + first_ + pitch_ * (negative_ ? rows_ - 1 - row : row);
    }
    const std::uint8_t* Row(std::size_t row) const { return const_cast<TestPlane*>(this)->Row(row); }
    /// What a caller would pass: the address of row 0, and the signed stride.
    std::uint8_t* Base() { return rows_ == 0 ? memory_.data() + first_ : Row(0); }
    std::int64_t Stride() const {
        return negative_ ? -static_cast<std::int64_t>(pitch_) : static_cast<std::int64_t>(pitch_);
    }
    std::size_t RowBytes() const { return rowBytes_; }
    std::size_t Rows() const { return rows_; }

    void Fill(pixmorph_test::Fill fill, std::uint32_t seed) {
        std::vector<std::uint8_t> bytes(rowBytes_);
        for (std::size_t row = 0; row < rows_; ++row) {
            FillBytes(bytes, fill, seed + static_cast<std::uint32_t>(row) * 7919u);
            if (rowBytes_ > 0) std::memcpy(Row(row), bytes.data(), rowBytes_);
        }
    }

    /// Whether every byte outside the rows still is a guard.
    bool GuardsIntact() const {
        const auto intact = [this](std::size_t first, std::size_t last) {
            return std::all_of(memory_.begin() + static_cast<std::ptrdiff_t>(first),
                               memory_.begin() + static_cast<std::ptrdiff_t>(last),
                               [](std::uint8_t byte) { return byte == kGuard; });
        };
        std::size_t behind = 0;
        for (std::size_t row = 0; row < rows_; ++row) {
            const std::size_t start = first_ + row * pitch_;
            if (!intact(behind, start)) return false;
            behind = start + rowBytes_;
        }
        return intact(behind, memory_.size());
    }

    /// First difference between this plane's rows and those of one of the same size that has what is expected, as text;
    /// empty when there is none.
    std::string FirstDifference(const TestPlane& expected, std::size_t plane = 0) const {
        for (std::size_t row = 0; row < rows_; ++row)
            if (std::string text = LineDifference({Row(row), rowBytes_}, {expected.Row(row), rowBytes_}, plane, row);
                !text.empty())
                return text;
        return {};
    }

private:
    std::vector<std::uint8_t> memory_;
    std::size_t rowBytes_;
    std::size_t rows_;
    bool negative_;
    std::size_t pitch_;
    std::size_t first_ = 0;
};

/// A picture of any format of the table (and P016) with a plane of its own for each plane of the format. Side-by-side
/// chroma shares its rows as the format says.
class TestPicture {
public:
    TestPicture(std::uint32_t format, std::uint32_t width, std::uint32_t height, const PictureLayout& layout = {},
                std::uint16_t colorMatrix = 0, std::uint8_t extraBits = 0) {
        desc_.format = format;
        desc_.width = width;
        desc_.height = height;
        desc_.colorMatrix = colorMatrix;
        desc_.lumaExtraBits = desc_.chromaExtraBits = extraBits;
        km::ImageDescriptor shape = desc_;
        if (format == km::FMT_P016) shape.format = km::FMT_P216;  // The same row lengths; half the chroma lines.
        const km::FormatInfo* const info = km::FormatInfoOf(shape);
        const std::size_t planes = info->chromaSideBySide != 0 ? 2 : info->planeCount;
        for (std::uint32_t plane = 0; plane < planes; ++plane) {
            std::size_t bytes = km::ImagePlaneRowBytes(&shape, plane);
            std::size_t rows = km::ImagePlaneHeight(&shape, plane);
            PictureLayout planeLayout = layout;
            if (plane == 1 && info->chromaSideBySide != 0) {
                // Plane 2 lies half a stride to the right, so rows are twice as long and the stride is even in samples.
                bytes *= 2;
                planeLayout.padding = layout.padding / 4 * 4;
            }
            if (plane == 1 && format == km::FMT_P016) rows /= 2;
            planes_.emplace_back(bytes, rows, planeLayout);
        }
        Point();
    }
    TestPicture(const TestPicture& other) : desc_(other.desc_), planes_(other.planes_) { Point(); }
    TestPicture& operator=(const TestPicture&) = delete;

    km::ImageDescriptor& Desc() { return desc_; }
    const km::ImageDescriptor& Desc() const { return desc_; }
    std::vector<TestPlane>& Planes() { return planes_; }
    const std::vector<TestPlane>& Planes() const { return planes_; }
    TestPlane& Plane(std::size_t plane) { return planes_[plane]; }

    void Fill(pixmorph_test::Fill fill, std::uint32_t seed) {
        for (TestPlane& plane : planes_) plane.Fill(fill, seed++);
    }
    bool GuardsIntact() const {
        for (const TestPlane& plane : planes_)
            if (!plane.GuardsIntact()) return false;
        return true;
    }
    std::string FirstDifference(const TestPicture& expected) const {
        for (std::size_t i = 0; i < planes_.size(); ++i)
            if (std::string text = planes_[i].FirstDifference(expected.planes_[i], i); !text.empty()) return text;
        return {};
    }

private:
    void Point() {
        for (std::size_t i = 0; i < planes_.size(); ++i) {
            desc_.planes[i] = planes_[i].Base();
            desc_.strides[i] = planes_[i].Stride();
        }
        const km::FormatInfo* const info = km::FormatInfoOf(desc_);
        if (info != nullptr && info->chromaSideBySide != 0) {
            // With a negative stride half of it points left of the row: then the planes are given one by one.
            desc_.planes[2] = desc_.planes[1] + planes_[1].RowBytes() / 2;
            desc_.strides[2] = desc_.strides[1];
        }
    }

    km::ImageDescriptor desc_;
    std::vector<TestPlane> planes_;
};

}  // namespace pixmorph_test
