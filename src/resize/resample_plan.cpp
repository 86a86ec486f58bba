#include "resize/resample_plan.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

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

/// A plan with the memory of its tables.
struct StoredPlan : RowPlan {
    std::vector<std::uint32_t> windowTable;
    std::vector<std::uint8_t> shuffleTable;
    std::vector<std::uint8_t> weightTable;
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
    explicit PlanBuilder(StoredPlan& plan)
        : plan_(plan),
          layout_(LayoutOf(plan.kind)),
          sampleBytes_(layout_.sampleBytes),
          srcBytes_(LineBytes(plan.kind, plan.srcWidth)),
          dstBytes_(LineBytes(plan.kind, plan.dstWidth)),
          linear_(plan.filter == ResampleFilter::Linear) {}

    void Build() {
        plan_.wide = sampleBytes_ == 2 || (plan_.filter == ResampleFilter::Area && !plan_.area.narrow);
        blockSamples_ = plan_.wide ? 4 : 8;
        groupBytes_ = kBlocksPerGroup * blockSamples_ * sampleBytes_;
        if (srcBytes_ < kWindowBytes || dstBytes_ < groupBytes_) return;
        if (srcBytes_ > kLargestTabledLine || dstBytes_ > kLargestTabledLine) return;
        if (plan_.wide && !linear_) {
            const std::uint32_t largest = sampleBytes_ == 2 ? kLargestWideSource16 : kLargestWideSource8;
            if (plan_.dstWidth > kLargestWeight || plan_.srcWidth > largest) return;
        }
        const std::size_t groups = (dstBytes_ + groupBytes_ - 1) / groupBytes_;
        std::size_t steps = 1;
        for (std::size_t group = 0; group < groups; ++group) {
            const std::size_t output = OutputOf(group);
            for (std::size_t block = 0; block < kBlocksPerGroup; ++block)
                steps = std::max(steps, WalkBlock(output + block * blockSamples_ * sampleBytes_, nullptr));
            if (steps > kLargestStepCount) return;
        }
        plan_.stepCount = static_cast<std::uint32_t>(steps);
        const std::size_t windows = groups * steps * kBlocksPerGroup;
        plan_.windowTable.assign(windows, 0);
        plan_.shuffleTable.assign(windows * kWindowBytes, kNoByte);
        plan_.weightTable.assign(windows * kWindowBytes, 0);
        for (std::size_t group = 0; group < groups; ++group) {
            for (std::size_t block = 0; block < kBlocksPerGroup; ++block) {
                const std::size_t output = OutputOf(group) + block * blockSamples_ * sampleBytes_;
                const Cursor cursor{(group * steps) * kBlocksPerGroup + block};
                WalkBlock(output, &cursor);
            }
        }
        plan_.groupCount = static_cast<std::uint32_t>(groups);
        ShareEqualTables();
        plan_.windows = plan_.windowTable.data();
        plan_.shuffles = plan_.shuffleTable.data();
        plan_.weights = plan_.weightTable.data();
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
            if (cursor != nullptr) plan_.windowTable[entry] = static_cast<std::uint32_t>(window);
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
        std::uint8_t* const shuffle = plan_.shuffleTable.data() + entry * kWindowBytes;
        std::uint8_t* const weights = plan_.weightTable.data() + entry * kWindowBytes;
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
        std::uint8_t* const weights = plan_.weightTable.data() + first * kWindowBytes;
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
        std::vector<std::uint32_t>& starts = plan_.windowTable;
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
        const auto drop = [&](auto& table, std::size_t size) {
            table.erase(table.begin() + static_cast<std::ptrdiff_t>(size),
                        table.begin() + static_cast<std::ptrdiff_t>(regular * size));
        };
        drop(starts, windows);
        drop(plan_.shuffleTable, bytes);
        drop(plan_.weightTable, bytes);
    }

    const std::uint8_t* Shuffles(std::size_t group) const {
        return plan_.shuffleTable.data() + group * plan_.stepCount * kBlocksPerGroup * kWindowBytes;
    }
    const std::uint8_t* Weights(std::size_t group) const {
        return plan_.weightTable.data() + group * plan_.stepCount * kBlocksPerGroup * kWindowBytes;
    }

    /// First output byte of a group.
    std::size_t OutputOf(std::size_t group) const { return std::min(group * groupBytes_, dstBytes_ - groupBytes_); }

    StoredPlan& plan_;
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

/// A bounded store of plans. Its lock is held for a search of a few entries, once for each plane of a pass.
class PlanCache {
public:
    std::shared_ptr<const RowPlan> Find(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth) {
        {
            const std::lock_guard lock(mutex_);
            for (Entry& entry : entries_) {
                if (entry.plan == nullptr || entry.plan->kind != kind || entry.plan->srcWidth != srcWidth ||
                    entry.plan->dstWidth != dstWidth)
                    continue;
                entry.lastUse = ++clock_;
                return entry.plan;
            }
        }
        // Two threads may make the same plan; one of the two is kept for longer.
        std::shared_ptr<const RowPlan> plan = MakeRowPlan(kind, srcWidth, dstWidth);
        std::shared_ptr<const RowPlan> replaced;
        const std::lock_guard lock(mutex_);
        Entry& oldest = *std::min_element(entries_.begin(), entries_.end(),
                                          [](const Entry& a, const Entry& b) { return a.lastUse < b.lastUse; });
        replaced = std::exchange(oldest.plan, plan);
        oldest.lastUse = ++clock_;
        return plan;
    }

private:
    struct Entry {
        std::shared_ptr<const RowPlan> plan;
        std::uint64_t lastUse = 0;
    };
    std::mutex mutex_;
    std::array<Entry, 32> entries_;
    std::uint64_t clock_ = 0;
};

PlanCache g_plans;

}  // namespace

std::shared_ptr<const RowPlan> MakeRowPlan(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth) {
    auto plan = std::make_shared<StoredPlan>();
    plan->kind = kind;
    plan->srcWidth = srcWidth;
    plan->dstWidth = dstWidth;
    plan->dstBytes = LineBytes(kind, dstWidth);
    plan->filter = ChooseFilter(srcWidth, dstWidth);
    if (plan->filter == ResampleFilter::Copy) return plan;
    if (plan->filter == ResampleFilter::Mean) {
        SetPairOrder(*plan);
        if (kind != LineKind::Bgr) return plan;
        // (a + b + 1) * 2^15 >> 16
        plan->area = {
            .reciprocal = 0, .narrow = true, .divisor = dstWidth, .bias = 1, .multiplier = 0x8000, .shift = 0};
    } else {
        plan->area = MakeAreaScale(srcWidth, dstWidth);
    }
    PlanBuilder(*plan).Build();
    return plan;
}

std::shared_ptr<const RowPlan> FindRowPlan(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth) {
    return g_plans.Find(kind, srcWidth, dstWidth);
}

}  // namespace KorvaneSoftware
