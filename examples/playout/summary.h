// What the program tells while it runs and at its end, on standard error.
#pragma once

#include <cstdint>
#include <vector>

#include "chain.h"

namespace playout {

/// Shows on a terminal how far the work is; says nothing elsewhere.
class ProgressLine {
public:
    explicit ProgressLine(std::uint64_t total);
    ~ProgressLine();
    void Show(std::uint64_t frames);

private:
    std::uint64_t total_;
    bool terminal_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// Prints for each stage its frames, milliseconds per frame, frames per second and bytes.
void PrintSummary(const std::vector<StageReport>& reports);

}  // namespace playout
