// A picture of any format in memory of exactly its own size, with planes apart or derived from the first.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "foundation/image_descriptor.h"
#include "fuzz/fuzz_input.h"

namespace pixmorph_fuzz {

/// Bytes of a row and rows of a plane. P016, which has no table row, has the rows of P216 and half its chroma lines.
struct PlaneSize {
    std::uint64_t rowBytes;
    std::uint32_t rows;
};

inline std::vector<PlaneSize> PlaneSizes(const KorvaneSoftware::ImageDescriptor& picture) {
    KorvaneSoftware::ImageDescriptor shape = picture;
    const bool p016 = picture.format == KorvaneSoftware::FMT_P016;
    if (p016) shape.format = KorvaneSoftware::FMT_P216;
    std::vector<PlaneSize> sizes;
    for (std::uint32_t plane = 0; plane < KorvaneSoftware::ImagePlaneCount(&shape); ++plane)
        sizes.push_back(
            {KorvaneSoftware::ImagePlaneRowBytes(&shape, plane), KorvaneSoftware::ImagePlaneHeight(&shape, plane)});
    if (p016) sizes[1].rows /= 2;
    return sizes;
}

class FuzzPicture {
public:
    /// `seed` gives the content. A format without planes gets one row of a few bytes. With `oneStride` all planes have
    /// the stride of the first.
    FuzzPicture(FuzzInput& input, std::uint32_t format, std::uint32_t width, std::uint32_t height, std::uint32_t seed,
                bool oneStride = false) {
        desc_.format = format;
        desc_.width = width;
        desc_.height = height;
        const std::vector<PlaneSize> sizes = PlaneSizes(desc_);
        // The planes of IMC3, IMC4 and P016 must be given: what the conversions derive has another geometry, or none.
        const bool derivable = sizes.size() > 1 && format != KorvaneSoftware::FMT_IMC3 &&
                               format != KorvaneSoftware::FMT_IMC4 && format != KorvaneSoftware::FMT_P016;
        if (sizes.empty()) {
            AddPlane(0, {64, 1}, 64, seed);
        } else if (derivable && input.Flag()) {
            Derive(input, sizes, seed, oneStride);
        } else {
            const std::int64_t common = TakeStride(input, WidestRow(sizes));
            for (std::uint32_t plane = 0; plane < sizes.size(); ++plane)
                AddPlane(plane, sizes[plane], oneStride ? common : TakeStride(input, sizes[plane].rowBytes),
                         seed + plane);
        }
    }

    KorvaneSoftware::ImageDescriptor& Desc() { return desc_; }
    const KorvaneSoftware::ImageDescriptor& Desc() const { return desc_; }
    bool operator==(const FuzzPicture& other) const {
        return std::equal(buffers_.begin(), buffers_.end(), other.buffers_.begin(), other.buffers_.end());
    }

private:
    static std::int64_t TakeStride(FuzzInput& input, std::uint64_t rowBytes) {
        const auto stride = static_cast<std::int64_t>(rowBytes + (input.Flag() ? input.Below(70) : 0));
        return input.Flag() ? -stride : stride;
    }

    static std::uint64_t WidestRow(const std::vector<PlaneSize>& sizes) {
        std::uint64_t widest = 2;
        for (const PlaneSize& size : sizes) widest = std::max(widest, size.rowBytes);
        return widest;
    }

    void AddPlane(std::uint32_t plane, PlaneSize size, std::int64_t stride, std::uint32_t seed) {
        const std::uint64_t pitch = static_cast<std::uint64_t>(stride < 0 ? -stride : stride);
        // A copy of the second of two pictures starts 16 bytes into the row and ends in the gap behind it.
        const bool second = desc_.format == KorvaneSoftware::FMT_Y32B || desc_.format == KorvaneSoftware::FMT_Y32AB;
        const std::uint64_t lastRow = second ? pitch : size.rowBytes;
        const std::uint64_t bytes = size.rows == 0 ? 0 : pitch * (size.rows - 1) + lastRow;
        buffers_.emplace_back(bytes, seed);
        desc_.planes[plane] = buffers_.back().Data();
        if (stride < 0 && size.rows > 0) desc_.planes[plane] += pitch * (size.rows - 1);
        desc_.strides[plane] = stride;
    }

    // Only the first plane is given; the buffer spans what the others come to.
    void Derive(FuzzInput& input, const std::vector<PlaneSize>& sizes, std::uint32_t seed, bool oneStride) {
        // Side by side, both chroma rows must fit the luma stride; elsewhere chroma rows are no longer than that.
        const std::int64_t stride = TakeStride(input, (WidestRow(sizes) + 7) / 8 * 8);
        constexpr std::int64_t kBase = std::int64_t{1} << 40;
        KorvaneSoftware::ImageDescriptor layout = desc_;
        layout.planes[0] = reinterpret_cast<std::uint8_t*>(kBase);
        for (int plane = 0; plane < 4; ++plane) layout.strides[plane] = plane == 0 || oneStride ? stride : 0;
        KorvaneSoftware::ImageCompletePlanes(&layout);
        std::int64_t lowest = kBase, highest = kBase;
        for (std::size_t plane = 0; plane < sizes.size(); ++plane) {
            if (sizes[plane].rows == 0) continue;
            const auto first = reinterpret_cast<std::int64_t>(layout.planes[plane]);
            const std::int64_t last = first + layout.strides[plane] * (sizes[plane].rows - 1);
            lowest = std::min({lowest, first, last});
            highest = std::max(highest, std::max(first, last) + static_cast<std::int64_t>(sizes[plane].rowBytes));
        }
        buffers_.emplace_back(static_cast<std::size_t>(highest - lowest), seed);
        desc_.planes[0] = buffers_.back().Data() + (kBase - lowest);
        for (int plane = 0; plane < 4; ++plane) desc_.strides[plane] = plane == 0 || oneStride ? stride : 0;
    }

    KorvaneSoftware::ImageDescriptor desc_;
    std::vector<ExactBuffer> buffers_;
};

}  // namespace pixmorph_fuzz
