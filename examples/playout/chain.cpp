#include "chain.h"

namespace playout {
namespace {

double Seconds(std::chrono::steady_clock::duration time) { return std::chrono::duration<double>(time).count(); }

}  // namespace

void Chain::Link::Send(const Frame& frame) {
    const Clock::time_point start = Clock::now();
    elsewhere_ = {};
    stage_->Process(frame, *this);
    report_.seconds += Seconds(Clock::now() - start - elsewhere_);
}

void Chain::Link::Finish() {
    const Clock::time_point start = Clock::now();
    elsewhere_ = {};
    stage_->Finish(*this);
    report_.seconds += Seconds(Clock::now() - start - elsewhere_);
    if (next != nullptr) next->Finish();
}

void Chain::Link::Take(const Frame& frame) {
    const Clock::time_point start = Clock::now();
    ++report_.frames;
    report_.bytes += stage_->BytesOf(frame);
    chain_.observer_(*stage_, frame);
    if (next != nullptr) next->Send(frame);
    elsewhere_ += Clock::now() - start;
}

void Chain::Add(std::unique_ptr<Stage> stage) {
    links_.push_back(std::make_unique<Link>(*this, std::move(stage)));
    if (links_.size() > 1) links_[links_.size() - 2]->next = links_.back().get();
}

std::uint64_t Chain::Run(Source& source, std::uint64_t limit, const Progress& progress) {
    source_.name = "read or draw";
    const VideoFormat& format = source.Format();
    Picture picture(format.pixels, format.width, format.height);
    while (limit == 0 || source_.frames < limit) {
        const Clock::time_point start = Clock::now();
        if (!source.Read(picture)) break;
        source_.seconds += Seconds(Clock::now() - start);
        source_.bytes += picture.PixelBytes();
        Frame frame;
        frame.picture = &picture;
        frame.format = format;
        frame.number = source_.frames++;
        links_.front()->Send(frame);
        progress(source_.frames);
    }
    links_.front()->Finish();
    return source_.frames;
}

std::vector<StageReport> Chain::Reports() const {
    std::vector<StageReport> reports = {source_};
    for (const auto& link : links_) reports.push_back(link->Report());
    return reports;
}

}  // namespace playout
