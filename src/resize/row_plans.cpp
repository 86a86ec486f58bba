#include "resize/row_plans.h"

#include <algorithm>
#include <cstring>

#include "foundation/aligned_memory.h"
#include "foundation/status.h"
#include "resize/resample_rows.h"

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kWindowBytes = 16;
constexpr std::size_t kBlocksPerGroup = 4;
constexpr std::uint8_t kNoByte = 0x80;  // A shuffle writes 0 for it.

// Beyond these a line goes through the plain form: the tables would push the picture out of the cache.
constexpr std::size_t kLargestTabledLine = 1 << 16;
constexpr std::size_t kLargestStepCount = 12;

// Weights of 16 bits, and sums below 2^31.
constexpr std::uint32_t kLargestWeight = 32767;
constexpr std::uint32_t kLargestWideSource8 = 0x7FFFFFFF / 255;
constexpr std::uint32_t kLargestWideSource16 = 0x7FFFFFFF / 65535;

// More sizes than any user rotates through; beyond them the plan used longest ago gives its memory to the new one.
constexpr std::size_t kMostPlans = 128;

/// The tables of a plan, one after the other in one block.
struct Tables {
    std::uint8_t* shuffles;
    std::uint8_t* weights;
    std::uint32_t* windows;

    static constexpr std::size_t kBytesPerWindow = 2 * kWindowBytes + sizeof(std::uint32_t);

    Tables(std::uint8_t* block, std::size_t windowCount)
        : shuffles(block),
          weights(block + windowCount * kWindowBytes),
          windows(reinterpret_cast<std::uint32_t*>(block + 2 * windowCount * kWindowBytes)) {}
};

/// What one output sample is made of: consecutive samples of its channel.
struct Taps {
    std::size_t firstByte;
    std::size_t stepBytes;
    AreaSpan span;        // Of a linear tap only `first` and `count` are used.
    std::int32_t weight;  // Linear only.
};

class PlanBuilder {
public:
    /// `room` grows to the largest tables made so far.
    PlanBuilder(RowPlan& plan, AlignedBuffer& memory, std::uint64_t& room)
        : plan_(plan),
          memory_(memory),
          room_(room),
          layout_(LayoutOf(plan.kind)),
          sampleBytes_(layout_.sampleBytes),
          srcBytes_(LineBytes(plan.kind, plan.srcWidth)),
          dstBytes_(LineBytes(plan.kind, plan.dstWidth)),
          linear_(plan.filter == ResampleFilter::Linear) {}

    /// @return false where memory is short; the plan then has no tables, as one that wants none.
    bool Build() {
        plan_.wide = sampleBytes_ == 2 || (plan_.filter == ResampleFilter::Area && !plan_.area.narrow);
        blockSamples_ = plan_.wide ? 4 : 8;
        groupBytes_ = kBlocksPerGroup * blockSamples_ * sampleBytes_;
        if (srcBytes_ < kWindowBytes || dstBytes_ < groupBytes_) return true;
        if (srcBytes_ > kLargestTabledLine || dstBytes_ > kLargestTabledLine) return true;
        if (plan_.wide && !linear_) {
            const std::uint32_t largest = sampleBytes_ == 2 ? kLargestWideSource16 : kLargestWideSource8;
            if (plan_.dstWidth > kLargestWeight || plan_.srcWidth > largest) return true;
        }
        const std::size_t groups = (dstBytes_ + groupBytes_ - 1) / groupBytes_;
        std::size_t steps = 1;
        for (std::size_t group = 0; group < groups; ++group) {
            const std::size_t output = OutputOf(group);
            for (std::size_t block = 0; block < kBlocksPerGroup; ++block)
                steps = std::max(steps, WalkBlock(output + block * blockSamples_ * sampleBytes_, nullptr));
            if (steps > kLargestStepCount) return true;
        }
        const std::size_t windows = groups * steps * kBlocksPerGroup;
        const std::uint64_t size = windows * Tables::kBytesPerWindow;
        // Memory that passes from plan to plan is made as large as any wanted it, so that it soon grows no more.
        const std::uint64_t wanted = memory_.Data() == nullptr ? size : std::max(size, room_);
        if (wanted > memory_.Capacity()) memory_.Reserve(wanted);
        room_ = std::max(room_, size);
        if (memory_.Data() == nullptr) return false;
        tables_ = Tables(memory_.Data(), windows);
        plan_.stepCount = static_cast<std::uint32_t>(steps);
        std::memset(tables_.shuffles, kNoByte, windows * kWindowBytes);
        std::memset(tables_.weights, 0, windows * kWindowBytes);
        std::memset(tables_.windows, 0, windows * sizeof(*tables_.windows));
        for (std::size_t group = 0; group < groups; ++group) {
            for (std::size_t block = 0; block < kBlocksPerGroup; ++block) {
                const std::size_t output = OutputOf(group) + block * blockSamples_ * sampleBytes_;
                const Cursor cursor{(group * steps) * kBlocksPerGroup + block};
                WalkBlock(output, &cursor);
            }
        }
        plan_.groupCount = static_cast<std::uint32_t>(groups);
        ShareEqualTables();
        plan_.windows = tables_.windows;
        plan_.shuffles = tables_.shuffles;
        plan_.weights = tables_.weights;
        return true;
    }

private:
    /// Where a block's entries go: the window of its first step. Those of further steps follow at a distance of a
    /// group.
    struct Cursor {
        std::size_t firstWindow;
    };

    Taps TapsOf(std::size_t outputByte) const {
        const std::size_t sample = outputByte / sampleBytes_;
        const LineChannel* channel = layout_.channels;
        while (sample < channel->offset || (sample - channel->offset) % channel->step != 0) ++channel;
        const auto index = static_cast<std::uint32_t>((sample - channel->offset) / channel->step);
        const std::uint32_t source = plan_.srcWidth >> channel->widthShift;
        const std::uint32_t dest = plan_.dstWidth >> channel->widthShift;
        Taps taps{channel->offset * sampleBytes_, channel->step * sampleBytes_, {}, 0};
        if (linear_) {
            const LinearTap tap = LinearTapOf(source, dest, index, LinearScale(dest));
            taps.span.first = tap.index;
            taps.span.count = tap.weight == kFullWeight && tap.index + 1 == source ? 1 : 2;
            taps.weight = tap.weight;
        } else {
            taps.span = AreaSpanOf(source, dest, index);
            // Subsampled chroma gets the weights of luma, so that one reciprocal serves the line: twice the sum times
            // half the reciprocal is the same number at every step.
            const std::uint32_t scale = 1u << channel->widthShift;
            const std::uint32_t divisor = plan_.wide ? 1 : plan_.area.divisor;
            taps.span.firstWeight = taps.span.firstWeight * scale / divisor;
            taps.span.innerWeight = taps.span.innerWeight * scale / divisor;
            taps.span.lastWeight = taps.span.lastWeight * scale / divisor;
        }
        taps.firstByte += taps.span.first * taps.stepBytes;
        return taps;
    }

    /// Covers all taps of a block with windows, two taps of an output sample at most in each, from left to right.
    /// @return the number of windows.
    std::size_t WalkBlock(std::size_t firstOutputByte, const Cursor* cursor) {
        Taps taps[8];
        std::uint32_t taken[8] = {};
        for (std::size_t i = 0; i < blockSamples_; ++i) taps[i] = TapsOf(firstOutputByte + i * sampleBytes_);
        std::size_t steps = 0;
        for (;;) {
            std::size_t window = srcBytes_;
            for (std::size_t i = 0; i < blockSamples_; ++i)
                if (taken[i] < taps[i].span.count) window = std::min(window, NextByte(taps[i], taken[i]));
            if (window == srcBytes_) return steps;
            window = std::min(window, srcBytes_ - kWindowBytes);
            const std::size_t entry = cursor != nullptr ? cursor->firstWindow + steps * kBlocksPerGroup : 0;
            if (cursor != nullptr) tables_.windows[entry] = static_cast<std::uint32_t>(window);
            for (std::size_t i = 0; i < blockSamples_; ++i) {
                for (int slot = 0; slot < 2 && taken[i] < taps[i].span.count; ++slot) {
                    const std::size_t byte = NextByte(taps[i], taken[i]);
                    if (byte + sampleBytes_ > window + kWindowBytes) break;
                    if (cursor != nullptr) Enter(entry, i, slot, byte - window, taps[i], taken[i]);
                    ++taken[i];
                }
            }
            ++steps;
        }
    }

    static std::size_t NextByte(const Taps& taps, std::uint32_t taken) {
        return taps.firstByte + taken * taps.stepBytes;
    }

    void Enter(std::size_t entry, std::size_t output, int slot, std::size_t byte, const Taps& taps, std::uint32_t tap) {
        std::uint8_t* const shuffle = tables_.shuffles + entry * kWindowBytes;
        std::uint8_t* const weights = tables_.weights + entry * kWindowBytes;
        const std::size_t place = 2 * output + static_cast<std::size_t>(linear_ ? static_cast<int>(tap) : slot);
        if (plan_.wide) {
            shuffle[2 * place] = static_cast<std::uint8_t>(byte);
            if (sampleBytes_ == 2) shuffle[2 * place + 1] = static_cast<std::uint8_t>(byte + 1);
        } else {
            shuffle[place] = static_cast<std::uint8_t>(byte);
        }
        if (linear_) {
            EnterLinearWeight(entry, output, taps);
            return;
        }
        const AreaSpan& span = taps.span;
        const std::uint32_t weight =
            tap == 0 ? span.firstWeight : (tap + 1 == span.count ? span.lastWeight : span.innerWeight);
        if (plan_.wide) {
            const auto word = static_cast<std::int16_t>(weight);
            std::memcpy(weights + 2 * place, &word, sizeof(word));
        } else {
            weights[place] = static_cast<std::uint8_t>(weight);
        }
    }

    /// Weights of a block stand at its first step. Bytes: the negated weight, so that kFullWeight fits 16 bits and the
    /// product is with the difference later - earlier. Words: the weight itself, in 32 bits.
    void EnterLinearWeight(std::size_t entry, std::size_t output, const Taps& taps) {
        const std::size_t group = entry / (plan_.stepCount * kBlocksPerGroup);
        const std::size_t first = group * plan_.stepCount * kBlocksPerGroup + entry % kBlocksPerGroup;
        std::uint8_t* const weights = tables_.weights + first * kWindowBytes;
        if (plan_.wide) {
            std::memcpy(weights + 4 * output, &taps.weight, sizeof(taps.weight));
        } else {
            const auto negated = static_cast<std::int16_t>(-taps.weight);
            std::memcpy(weights + 2 * output, &negated, sizeof(negated));
        }
    }

    /// Keeps one table for groups that repeat. The windows of the last group are moved back from the end of the line,
    /// so it seldom belongs to them.
    void ShareEqualTables() {
        const std::size_t windows = plan_.stepCount * kBlocksPerGroup;
        const std::size_t bytes = windows * kWindowBytes;
        std::uint32_t* const starts = tables_.windows;
        const auto repeats = [&](std::size_t group) {
            for (std::size_t i = 0; i < windows; ++i)
                if (starts[group * windows + i] - starts[i] != group * (starts[windows] - starts[0])) return false;
            return std::equal(Shuffles(0), Shuffles(0) + bytes, Shuffles(group)) &&
                   std::equal(Weights(0), Weights(0) + bytes, Weights(group));
        };
        std::size_t regular = 1;
        while (regular < plan_.groupCount && repeats(regular)) ++regular;
        if (regular < 2) return;
        plan_.regularCount = static_cast<std::uint32_t>(regular);
        plan_.regularAdvance = starts[windows] - starts[0];
        const auto drop = [&](auto* table, std::size_t size) {
            std::copy(table + regular * size, table + plan_.groupCount * size, table + size);
        };
        drop(starts, windows);
        drop(tables_.shuffles, bytes);
        drop(tables_.weights, bytes);
    }

    const std::uint8_t* Shuffles(std::size_t group) const {
        return tables_.shuffles + group * plan_.stepCount * kBlocksPerGroup * kWindowBytes;
    }
    const std::uint8_t* Weights(std::size_t group) const {
        return tables_.weights + group * plan_.stepCount * kBlocksPerGroup * kWindowBytes;
    }

    /// First output byte of a group.
    std::size_t OutputOf(std::size_t group) const { return std::min(group * groupBytes_, dstBytes_ - groupBytes_); }

    RowPlan& plan_;
    AlignedBuffer& memory_;
    std::uint64_t& room_;
    Tables tables_{nullptr, 0};
    const LineLayout& layout_;
    const std::size_t sampleBytes_;
    const std::size_t srcBytes_;
    const std::size_t dstBytes_;
    const bool linear_;
    std::size_t blockSamples_ = 0;
    std::size_t groupBytes_ = 0;
};

/// Order in which 16 source bytes stand as neighbours to be averaged; {255} where 16 bytes do not hold whole pixels.
void SetPairOrder(RowPlan& plan) {
    static constexpr std::uint8_t kOrders[][16] = {
        {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},  // Planar
        {0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15},  // Pairs
        {255},                                                   // Bgr
        {0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15},  // Bgra
        {0, 4, 1, 3, 2, 6, 5, 7, 8, 12, 9, 11, 10, 14, 13, 15},  // Uyvy
        {0, 2, 1, 5, 4, 6, 3, 7, 8, 10, 9, 13, 12, 14, 11, 15},  // Yuy2
        {255},                                                   // Words
    };
    std::memcpy(plan.pairOrder, kOrders[static_cast<int>(plan.kind)], sizeof(plan.pairOrder));
}

/// All of a plan but its tables.
RowPlan PlanWithoutTables(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth) {
    RowPlan plan;
    plan.kind = kind;
    plan.srcWidth = srcWidth;
    plan.dstWidth = dstWidth;
    plan.dstBytes = LineBytes(kind, dstWidth);
    plan.filter = ChooseFilter(srcWidth, dstWidth);
    if (plan.filter == ResampleFilter::Mean) {
        SetPairOrder(plan);
        // (a + b + 1) * 2^15 >> 16
        if (kind == LineKind::Bgr)
            plan.area = {
                .reciprocal = 0, .narrow = true, .divisor = dstWidth, .bias = 1, .multiplier = 0x8000, .shift = 0};
    } else if (plan.filter != ResampleFilter::Copy) {
        plan.area = MakeAreaScale(srcWidth, dstWidth);
    }
    return plan;
}

/// Halving goes by an order of bytes, but for pixels of three.
bool WantsTables(const RowPlan& plan) {
    if (plan.filter == ResampleFilter::Mean) return plan.kind == LineKind::Bgr;
    return plan.filter != ResampleFilter::Copy;
}

}  // namespace

struct RowPlans::Entry {
    RowPlan plan;
    AlignedBuffer tables;
    std::uint64_t lastUse = 0;
};

RowPlans::RowPlans() noexcept = default;
RowPlans::~RowPlans() = default;

std::size_t RowPlans::Count() const noexcept { return entries_.size(); }

RowPlan RowPlans::Find(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth) noexcept {
    for (Entry& entry : entries_) {
        if (entry.plan.kind != kind || entry.plan.srcWidth != srcWidth || entry.plan.dstWidth != dstWidth) continue;
        entry.lastUse = ++clock_;
        return entry.plan;
    }
    RowPlan plan = PlanWithoutTables(kind, srcWidth, dstWidth);
    if (!WantsTables(plan)) return plan;
    Entry* const entry = EntryToFill();
    if (entry == nullptr) return plan;
    entry->plan = {};
    entry->lastUse = 0;
    // Without memory the entry stays empty, so that the next picture tries again.
    if (!PlanBuilder(plan, entry->tables, largestTables_).Build()) return plan;
    entry->plan = plan;
    entry->lastUse = ++clock_;
    return plan;
}

RowPlans::Entry* RowPlans::EntryToFill() noexcept {
    const auto oldest = std::min_element(entries_.begin(), entries_.end(),
                                         [](const Entry& a, const Entry& b) { return a.lastUse < b.lastUse; });
    const bool isFree = oldest != entries_.end() && oldest->lastUse == 0;
    if (isFree || entries_.size() == kMostPlans) return &*oldest;
    return Guarded<Entry*>(nullptr, [&] { return &entries_.emplace_back(); });
}

}  // namespace KorvaneSoftware
