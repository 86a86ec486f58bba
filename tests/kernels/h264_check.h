// What the tests of the H.264 kernels share: every form of a slot beside a slow recomputation, pictures between guards.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "h264/sample_types.h"
#include "kernels/kernel_check.h"
#include "support/random.h"

namespace pixmorph_test {

template <class Sample>
using H264Coefficient = typename km::TH264SampleType<Sample>::Coefficient;

/// Calls `check(form)` for the plain form and every other one that this processor can run.
template <class Slot, class Check>
void ForEachH264Form(const Slot& slot, Check check) {
    for (std::size_t row = 0; row < slot.RowCount(); ++row) {
        if ((slot.RowFeatures(row) & km::EnabledFeatures()) != slot.RowFeatures(row)) {
            ReportMissing(slot, row);
            continue;
        }
        SCOPED_TRACE(SlotLabel(slot) + ": form " + slot.RowSet(row));
        check(slot.Row(row).function);
        if (::testing::Test::HasFatalFailure()) return;
    }
}

/// The bit depths that a sample type is checked with.
template <class Sample>
std::vector<std::uint32_t> H264Depths() {
    if constexpr (sizeof(Sample) == 1) return {8};
    return {8, 9, 10, 14};
}

/// Samples in rows of their own, more than a kernel may touch on each side, read from bottom to top if so wished.
template <class Sample>
class H264Picture {
public:
    static constexpr int kWidth = 48;
    static constexpr int kHeight = 48;
    static constexpr int kOrigin = 12;  ///< Column and row that kernels are called for.

    explicit H264Picture(bool flipped = false) : flipped_(flipped), samples_(kWidth * kHeight) {}

    /// Random samples; few values that differ by up to `spread` about a random level, or all of the range for 0.
    void Fill(ByteGenerator& generator, std::uint32_t bitDepth, std::uint32_t spread = 0) {
        const std::uint32_t top = (1u << bitDepth) - 1;
        const std::uint32_t level = generator.Below(top + 1);
        for (Sample& sample : samples_) {
            std::uint32_t value = generator.Below(top + 1);
            if (spread != 0) value = level + generator.Below(spread + 1);
            sample = static_cast<Sample>(value < top ? value : top);
        }
    }
    /// Only black and white.
    void FillExtreme(ByteGenerator& generator, std::uint32_t bitDepth) {
        for (Sample& sample : samples_) sample = static_cast<Sample>(generator.Below(2) * ((1u << bitDepth) - 1));
    }
    Sample* At(int x, int y) {
        const int row = flipped_ ? kHeight - 1 - (y + kOrigin) : y + kOrigin;
        return samples_.data() + row * kWidth + x + kOrigin;
    }
    const Sample* At(int x, int y) const { return const_cast<H264Picture*>(this)->At(x, y); }
    int operator()(int x, int y) const { return *At(x, y); }
    std::ptrdiff_t Stride() const { return flipped_ ? -kWidth : kWidth; }
    bool operator==(const H264Picture& other) const { return samples_ == other.samples_; }

private:
    bool flipped_;
    std::vector<Sample> samples_;
};

template <class Sample>
int ClipToDepth(long long value, std::uint32_t bitDepth) {
    const int top = (1 << bitDepth) - 1;
    return value < 0 ? 0 : value > top ? top : static_cast<int>(value);
}

}  // namespace pixmorph_test
