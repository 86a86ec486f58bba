// Readers and writers of 4:2:2 samples: where luma, chroma and alpha of a line lie in each format. Kernels are
// templates over these, so that a family is written once and not once per pair of formats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/image_descriptor.h"
#include "foundation/sample_order.h"

namespace KorvaneSoftware {

/// First bytes of one picture line in up to three planes.
template <class Byte>
struct LineOf {
    Byte* plane[3];
};
using ReadLine = LineOf<const std::uint8_t>;
using WriteLine = LineOf<std::uint8_t>;

/// Packed 4:2:2, four bytes for a pair of pixels.
template <PackedOrder kOrder>
struct PackedSamples {
    static constexpr bool kHasAlpha = false;
    template <class Line>
    static auto& Luma(const Line& line, std::size_t x) {
        return line.plane[0][2 * x + kOrder.y0];
    }
    template <class Line>
    static auto& Cb(const Line& line, std::size_t pair) {
        return line.plane[0][4 * pair + kOrder.u];
    }
    template <class Line>
    static auto& Cr(const Line& line, std::size_t pair) {
        return line.plane[0][4 * pair + kOrder.v];
    }
};
using UyvySamples = PackedSamples<kUyvyOrder>;
using Yuy2Samples = PackedSamples<kYuy2Order>;
using YvyuSamples = PackedSamples<kYvyuOrder>;

/// Blocks of 16 pixels.
template <BlockOrder kOrder>
struct BlockSamples {
    static constexpr bool kHasAlpha = kOrder.HasAlpha();
    template <class Line>
    static auto& Luma(const Line& line, std::size_t x) {
        return line.plane[0][x / 16 * kOrder.bytes + kOrder.y + x % 16];
    }
    template <class Line>
    static auto& Alpha(const Line& line, std::size_t x) {
        return line.plane[0][x / 16 * kOrder.bytes + kOrder.alpha + x % 16];
    }
    template <class Line>
    static auto& Cb(const Line& line, std::size_t pair) {
        return line.plane[0][pair / 8 * kOrder.bytes + kOrder.u + pair % 8];
    }
    template <class Line>
    static auto& Cr(const Line& line, std::size_t pair) {
        return line.plane[0][pair / 8 * kOrder.bytes + kOrder.v + pair % 8];
    }
};
using Y16Samples = BlockSamples<kY16Order>;
using Y16ASamples = BlockSamples<kY16AOrder>;
using Y32Samples = BlockSamples<kY32Order>;
using Y32ASamples = BlockSamples<kY32AOrder>;
using Y32ABSamples = BlockSamples<kY32ABOrder>;

/// Three planes, chroma halved in width.
struct PlanarSamples {
    static constexpr bool kHasAlpha = false;
    template <class Line>
    static auto& Luma(const Line& line, std::size_t x) {
        return line.plane[0][x];
    }
    template <class Line>
    static auto& Cb(const Line& line, std::size_t pair) {
        return line.plane[1][pair];
    }
    template <class Line>
    static auto& Cr(const Line& line, std::size_t pair) {
        return line.plane[2][pair];
    }
};

/// A luma plane and a plane of interleaved chroma pairs.
struct SemiPlanarSamples {
    static constexpr bool kHasAlpha = false;
    template <class Line>
    static auto& Luma(const Line& line, std::size_t x) {
        return line.plane[0][x];
    }
    template <class Line>
    static auto& Cb(const Line& line, std::size_t pair) {
        return line.plane[1][2 * pair];
    }
    template <class Line>
    static auto& Cr(const Line& line, std::size_t pair) {
        return line.plane[1][2 * pair + 1];
    }
};

/// Word `index` of a run of 16-bit words, which may lie at an odd address.
inline std::uint32_t WordAt(const std::uint8_t* run, std::size_t index) {
    std::uint16_t word;
    std::memcpy(&word, run + 2 * index, sizeof(word));
    return word;
}

/// The two layouts of planes in 16-bit words; read only.
struct PlanarWordSamples {
    static std::uint32_t Luma(const ReadLine& line, std::size_t x) { return WordAt(line.plane[0], x); }
    static std::uint32_t Cb(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[1], pair); }
    static std::uint32_t Cr(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[2], pair); }
};
struct SemiPlanarWordSamples {
    static std::uint32_t Luma(const ReadLine& line, std::size_t x) { return WordAt(line.plane[0], x); }
    static std::uint32_t Cb(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[1], 2 * pair); }
    static std::uint32_t Cr(const ReadLine& line, std::size_t pair) { return WordAt(line.plane[1], 2 * pair + 1); }
};

/// First byte of line `row` of a plane.
template <class Byte>
Byte* PlaneLine(const TImageDescriptor<Byte>& desc, int plane, std::int64_t row) {
    return desc.planes[plane] + row * desc.strides[plane];
}

/// Line `row` of a picture of top-down order whose chroma line is `chromaRow`.
template <class Byte>
LineOf<Byte> LineAt(const TImageDescriptor<Byte>& desc, std::int64_t row, std::int64_t chromaRow) {
    LineOf<Byte> line{{PlaneLine(desc, 0, row), nullptr, nullptr}};
    for (int plane = 1; plane < 3; ++plane)
        if (desc.planes[plane] != nullptr) line.plane[plane] = PlaneLine(desc, plane, chromaRow);
    return line;
}

/// Line `row`, counted from the top, of a bottom-up picture (BGR, BGRA).
template <class Byte>
Byte* BottomUpLine(const TImageDescriptor<Byte>& desc, std::int64_t row) {
    return PlaneLine(desc, 0, static_cast<std::int64_t>(desc.height) - 1 - row);
}

}  // namespace KorvaneSoftware
