#include "summary.h"

#include <unistd.h>

#include <cstdio>

namespace playout {

ProgressLine::ProgressLine(std::uint64_t total) : total_(total), terminal_(::isatty(STDERR_FILENO) != 0) {}

ProgressLine::~ProgressLine() {
    if (terminal_) std::fputs("\r\033[K", stderr);
}

void ProgressLine::Show(std::uint64_t frames) {
    if (!terminal_) return;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    const double rate = seconds > 0 ? static_cast<double>(frames) / seconds : 0;
    const auto count = static_cast<unsigned long long>(frames);
    if (total_ != 0)
        std::fprintf(stderr, "\rframe %llu of %llu, %.1f frames/s ", count, static_cast<unsigned long long>(total_),
                     rate);
    else
        std::fprintf(stderr, "\rframe %llu, %.1f frames/s ", count, rate);
    std::fflush(stderr);
}

void PrintSummary(const std::vector<StageReport>& reports) {
    std::fprintf(stderr, "%-18s %8s %12s %12s %14s\n", "stage", "frames", "ms/frame", "frames/s", "bytes");
    double total = 0;
    for (const StageReport& report : reports) {
        total += report.seconds;
        const double frames = static_cast<double>(report.frames);
        std::fprintf(stderr, "%-18s %8llu %12.3f %12.1f %14llu\n", report.name.c_str(),
                     static_cast<unsigned long long>(report.frames),
                     report.frames != 0 ? report.seconds * 1000 / frames : 0.0,
                     report.seconds > 0 ? frames / report.seconds : 0.0, static_cast<unsigned long long>(report.bytes));
    }
    const double frames = static_cast<double>(reports.back().frames);
    std::fprintf(stderr, "%-18s %8llu %12.3f %12.1f\n", "together",
                 static_cast<unsigned long long>(reports.back().frames), frames != 0 ? total * 1000 / frames : 0.0,
                 total > 0 ? frames / total : 0.0);
}

}  // namespace playout
