#include "h264/reconstruction/lossless.h"

#include <algorithm>

#include "h264/reconstruction/block_loops.inc.h"

namespace KorvaneSoftware {
namespace {

/// Along what differences sum up.
enum class Direction { NONE, DOWN, ACROSS };

constexpr Direction DirectionOf(std::uint32_t mode, std::uint32_t vertical, std::uint32_t horizontal) {
    return mode == vertical ? Direction::DOWN : mode == horizontal ? Direction::ACROSS : Direction::NONE;
}

/// The differences of a block, or of a component of a macroblock.
class Differences {
public:
    Differences(unsigned width, unsigned height) : width_(width), height_(height) {
        std::fill_n(values_, width * height, 0);
    }

    template <class Coefficient>
    void SetBlock(unsigned left, unsigned top, unsigned size, const Coefficient* block) {
        for (unsigned y = 0; y < size; ++y)
            for (unsigned x = 0; x < size; ++x) At(left + x, top + y) = block[y * size + x];
    }
    void Set(unsigned x, unsigned y, std::int32_t value) { At(x, y) = value; }

    /// Sums wrap: those of a stream that follows the standard are differences of two samples.
    void SumUp(Direction direction) {
        if (direction == Direction::NONE) return;
        const unsigned across = direction == Direction::ACROSS ? 1 : 0, down = 1 - across;
        for (unsigned y = down; y < height_; ++y) {
            for (unsigned x = across; x < width_; ++x) {
                const std::uint32_t before = static_cast<std::uint32_t>(At(x - across, y - down));
                At(x, y) = static_cast<std::int32_t>(static_cast<std::uint32_t>(At(x, y)) + before);
            }
        }
    }

    template <class Sample>
    void AddTo(Sample* samples, const TH264Component<Sample>& component) {
        const std::int32_t maxSample = TH264SampleType<Sample>::MaxSample(component.bitDepth);
        for (unsigned y = 0; y < height_; ++y, samples += component.stride) {
            for (unsigned x = 0; x < width_; ++x) {
                // More than the range of samples clips as the range does, and cannot overflow.
                const std::int32_t difference = std::clamp(At(x, y), -maxSample, maxSample);
                samples[x] = ClipH264Sample<Sample>(samples[x] + difference, maxSample);
            }
        }
    }

private:
    std::int32_t& At(unsigned x, unsigned y) { return values_[y * width_ + x]; }

    unsigned width_;
    unsigned height_;
    std::int32_t values_[16 * 16];
};

}  // namespace

template <class Sample>
struct TH264DifferenceAdder {
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Component = TH264Component<Sample>;

    template <unsigned kSize>
    static Coefficient* Add(Sample* samples, const Component& component, std::uint8_t mode, Coefficient* block) {
        Differences differences(kSize, kSize);
        differences.SetBlock(0, 0, kSize, block);
        differences.SumUp(DirectionOf(mode, INTRA_BLOCK_VERTICAL, INTRA_BLOCK_HORIZONTAL));
        differences.AddTo(samples, component);
        return block + kSize * kSize;
    }
    static Coefficient* Add4x4(Sample* samples, const Component& component, std::uint8_t mode, Coefficient* block) {
        return Add<4>(samples, component, mode, block);
    }
    static Coefficient* Add8x8(Sample* samples, const Component& component, std::uint8_t mode, Coefficient* block) {
        return Add<8>(samples, component, mode, block);
    }
};

template <class Sample>
auto TH264LosslessResidual<Sample>::AddLuma16x16(const Component& luma, std::uint32_t mode, std::uint32_t coded,
                                                 const Coefficient* dc, Coefficient* blocks) -> Coefficient* {
    Differences differences(16, 16);
    for (const unsigned place : kH264BlockPlaces) {
        const unsigned x = place % 4 * 4, y = place / 4 * 4;
        if (IsH264BlockCoded(coded, place)) {
            differences.SetBlock(x, y, 4, blocks);
            blocks += 16;
        }
        differences.Set(x, y, dc[place]);
    }
    differences.SumUp(DirectionOf(mode, INTRA_16X16_VERTICAL, INTRA_16X16_HORIZONTAL));
    differences.AddTo(luma.samples, luma);
    return blocks;
}

template <class Sample>
auto TH264LosslessResidual<Sample>::AddChroma(const Component& chroma, std::uint32_t mode, unsigned rows,
                                              std::uint32_t coded, const Coefficient* dc, Coefficient* blocks)
    -> Coefficient* {
    Differences differences(8, 4 * rows);
    for (unsigned place = 0; place < 2 * rows; ++place) {
        const unsigned x = place % 2 * 4, y = place / 2 * 4;
        if (IsH264BlockCoded(coded, place)) {
            differences.SetBlock(x, y, 4, blocks);
            blocks += 16;
        }
        differences.Set(x, y, dc[place]);
    }
    differences.SumUp(DirectionOf(mode, INTRA_CHROMA_VERTICAL, INTRA_CHROMA_HORIZONTAL));
    differences.AddTo(chroma.samples, chroma);
    return blocks;
}

template struct TH264LumaBlocks<std::uint8_t, TH264DifferenceAdder<std::uint8_t>>;
template struct TH264LumaBlocks<std::uint16_t, TH264DifferenceAdder<std::uint16_t>>;
template struct TH264LosslessResidual<std::uint8_t>;
template struct TH264LosslessResidual<std::uint16_t>;

}  // namespace KorvaneSoftware
