// Units, threads and the course of a call. access_unit.cpp has the reading of samples.
#include "h264/pipeline/fusion_core.h"

#include <algorithm>
#include <new>

#include "h264/pipeline/deblocking_unit.h"
#include "h264/pipeline/reconstruction_unit.h"

namespace KorvaneSoftware {
CH264FusionCore::CH264FusionCore(const IH264Layers& layers, unsigned processors)
    : layers_(layers), processors_(processors != 0 ? processors : GetProcessorCount()) {}

CH264FusionCore::~CH264FusionCore() { TearDown(); }

void CH264FusionCore::TearDown() {
    // Threads first: they read the frames.
    StopThreads();
    units_.clear();
    breakUnit_ = nullptr;
    conversionUnit_ = nullptr;
    store_.Clear();
    sets_ = {};
    numbering_ = {};
    openPicture_ = nullptr;
    lock_.reset();
}

template <class Unit, class... Arguments>
Unit& CH264FusionCore::AddUnit(unsigned thread, Arguments&&... arguments) {
    auto unit = std::make_unique<Unit>(lock_, thread, std::forward<Arguments>(arguments)...);
    Unit& added = *unit;
    if (added.Init() != IMG_OK) throw std::bad_alloc();
    units_[thread].push_back(std::move(unit));
    return added;
}

void CH264FusionCore::MakeUnits() {
    units_.resize(threadCount_);
    conversionUnit_ = &AddUnit<CH264ColorCnvProcessingUnit>(0, layers_);
    breakUnit_ = &AddUnit<CH264BreakProcessingUnit>(0);
    for (unsigned thread = 0; thread < threadCount_; ++thread) {
        if (threadCount_ > 1) {
            AddUnit<CH264DebProcessingUnitMT>(thread, layers_);
            AddUnit<CH264DecRecProcessingUnitMT>(thread, layers_);
        }
        AddUnit<CH264DebProcessingUnit>(thread, layers_);
        AddUnit<CH264DecRecProcessingUnit>(thread, layers_);
    }
}

Status CH264FusionCore::Initialize(const CodecOptions& options) {
    return Guarded<Status>(IMG_E_NO_MEMORY, [&] {
        TearDown();
        threadCount_ = std::min(processors_, kMostThreads);
        if (options.threads != 0) threadCount_ = std::min<unsigned>(threadCount_, options.threads);
        if (threadCount_ > 1) lock_ = std::make_unique<std::mutex>();
        MakeUnits();
        return StartThreads();
    });
}

Status CH264FusionCore::StartThreads() {
    Status status = IMG_OK;
    for (unsigned i = 0; i < threadCount_ && status == IMG_OK; ++i) {
        threads_.push_back(std::make_unique<CH264Thread>(*this, i));
        status = threads_.back()->CreateEvent();
    }
    // Threads wake each other, so all objects stand before the first one runs.
    for (unsigned i = 1; i < threadCount_ && status == IMG_OK; ++i) status = threads_[i]->Start();
    if (status != IMG_OK) StopThreads();
    return status;
}

void CH264FusionCore::StopThreads() {
    for (const auto& thread : threads_) thread->RequestStop();
    for (const auto& thread : threads_) thread->Join();
    threads_.clear();
}

void CH264FusionCore::WakeOthers(unsigned index) {
    for (unsigned i = 0; i < threadCount_; ++i) {
        if (i != index) threads_[i]->Wake();
    }
}

void CH264FusionCore::RunThread(unsigned index) {
    CH264Thread& thread = *threads_[index];
    const UnitList& units = units_[index];
    while (!thread.StopRequested()) {
        CH264ProcessingUnitBase* unit = nullptr;
        {
            H264Guard guard(lock_);
            const auto place = std::find_if(units.begin(), units.end(),
                                            [this](const auto& each) { return each->Acquire(store_.Frames()); });
            if (place != units.end()) unit = place->get();
        }
        if (unit == nullptr) {
            thread.WaitForWork();
            continue;
        }
        try {
            const std::uint32_t result = unit->Execute();
            if (result == WALK_ENDS) return;
            if (result == WALK_WAKES && threadCount_ > 1) WakeOthers(index);
        } catch (...) {
            // Damaged data. The unit sees to it that the work is done in another way.
            unit->Abort();
        }
    }
}

void CH264FusionCore::RunCaller(CH264BreakProcessingUnit::Mode mode) {
    breakUnit_->SetMode(mode);
    RunThread(0);
}

Status CH264FusionCore::Decode(IVideoSample* destination, IMediaSample* source) {
    if (threads_.empty()) return IMG_E_NOT_READY;
    try {
        return DecodeSample(destination, source);
    } catch (...) {
        // No memory. What was read of the picture is of no use.
        DropPicture();
        return IMG_E_NO_MEMORY;
    }
}

Status CH264FusionCore::DecodeSample(IVideoSample* destination, IMediaSample* source) {
    const bool flush = source == nullptr;
    while (store_.GetFreeFrame(!flush) == H264FrameStore::Found::StillRead) {
        RunCaller(CH264BreakProcessingUnit::UNTIL_RECYCLABLE);
    }
    Status read;
    do {
        read = ReadAccessUnit(source);
    } while (read == ACCESS_UNIT_EMPTY && source->GetDataSize() != 0);
    if (read != ACCESS_UNIT_READ && read != ACCESS_UNIT_EMPTY && read != ACCESS_UNIT_LEFT) return read;

    const Status selected = SelectOutput(destination, flush);
    // The walk ends with the delivery of the frame that is due.
    if (selected == IMG_OK) RunCaller(CH264BreakProcessingUnit::UNTIL_IDLE);
    // Other threads go on without the caller; one alone does all the work of a call inside it.
    if (threadCount_ == 1) RunCaller(CH264BreakProcessingUnit::UNTIL_IDLE);
    return selected;
}

Status CH264FusionCore::SelectOutput(IVideoSample* destination, bool flush) {
    if (destination == nullptr) return IMG_E_NULL_ARG;
    Status status = IMG_OK;
    CH264Frame* frame = store_.FindDueFrame(flush, status);
    if (frame == nullptr) return status;
    status = conversionUnit_->Output().Check(*frame, *destination);
    if (status != IMG_OK) return status;
    H264Guard guard(lock_);
    frame->outputRequest = {frame, destination};
    return IMG_OK;
}

Status CH264FusionCore::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (conversionUnit_ == nullptr) return IMG_E_NOT_READY;
    for (const auto& frame : store_.Frames()) {
        if (!frame->outputDone) return conversionUnit_->Output().Describe(*frame, *format);
    }
    return IMG_DATA_ENDED;
}

Status CH264FusionCore::Restart(bool releaseParameterSets) {
    return Guarded<Status>(IMG_E_NO_MEMORY, [&] {
        StopThreads();
        store_.TakeAllBack();
        openPicture_ = nullptr;
        if (releaseParameterSets) sets_ = {};
        numbering_ = {};
        return StartThreads();
    });
}

}  // namespace KorvaneSoftware
