// Tables of horizontal resampling, made once for each pair of sizes and kept by the object that resizes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace KorvaneSoftware {

struct RowPlan;
enum class LineKind : std::uint8_t;

/// The plans of one user; not locked.
class RowPlans {
public:
    RowPlans() noexcept;
    ~RowPlans();
    RowPlans(const RowPlans&) = delete;
    RowPlans& operator=(const RowPlans&) = delete;

    /// The plan for lines of a kind between two widths above 0. Its tables stay where they are until the next call.
    /// Where memory is short the plan has no tables: the plain forms need none, and their bytes are the same.
    RowPlan Find(LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth) noexcept;

    std::size_t Count() const noexcept;

private:
    struct Entry;

    Entry* EntryToFill() noexcept;

    std::vector<Entry> entries_;
    std::uint64_t clock_ = 0;
    std::uint64_t largestTables_ = 0;
};

}  // namespace KorvaneSoftware
