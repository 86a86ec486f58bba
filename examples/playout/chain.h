// Runs frames through a row of stages and keeps the time of each.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "stage.h"

namespace playout {

/// What a stage has done so far.
struct StageReport {
    std::string name;
    std::uint64_t frames = 0;  ///< Frames handed on.
    std::uint64_t bytes = 0;
    double seconds = 0;  ///< Time spent in the stage itself, without the stages after it.
};

class Chain {
public:
    /// Sees every frame that a stage hands on; its time is nobody's.
    using Observer = std::function<void(const Stage& stage, const Frame& frame)>;
    /// Told after each source frame how many have been read.
    using Progress = std::function<void(std::uint64_t frames)>;

    explicit Chain(Observer observer) : observer_(std::move(observer)) {}

    void Add(std::unique_ptr<Stage> stage);
    /// Reads up to `limit` frames (0: all) and sends them through. @return the number read. @throws Error
    std::uint64_t Run(Source& source, std::uint64_t limit, const Progress& progress);
    /// The source first, then the stages in order.
    std::vector<StageReport> Reports() const;

private:
    using Clock = std::chrono::steady_clock;

    // A stage in its place: takes frames for the stage, and takes the stage's frames on to the next link.
    class Link final : public Sink {
    public:
        Link(Chain& chain, std::unique_ptr<Stage> stage) : chain_(chain), stage_(std::move(stage)) {
            report_.name = stage_->Name();
        }
        void Send(const Frame& frame);
        void Finish();
        void Take(const Frame& frame) override;

        Link* next = nullptr;
        const StageReport& Report() const { return report_; }

    private:
        Chain& chain_;
        std::unique_ptr<Stage> stage_;
        StageReport report_;
        Clock::duration elsewhere_{};  // time of the current call that was spent inside Take
    };

    Observer observer_;
    std::vector<std::unique_ptr<Link>> links_;
    StageReport source_;
};

}  // namespace playout
