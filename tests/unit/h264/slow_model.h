// The decoder's bookkeeping once more, the slow and plain way: which picture a call returns, and what the reference
// lists of its slices hold. It keeps frames in one vector, follows the standard's clauses line by line, and shares
// nothing with the decoder but the headers that were read.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "support/h264_streams.h"

namespace h264 {

struct ModelFrame {
    int time = -1;
    std::int64_t poc[2] = {INT64_MAX, INT64_MAX};
    int mark[2] = {0, 0};  ///< 0 unused, 1 short-term, 2 long-term.
    bool gap = false;
    int frameNum = 0;
    int frameNumWrap = 0;
    int longIdx = 0;
    bool fieldCoded = false;
    int firstParity = 0;
    int fields = 0;
    bool outputDone = false;
    bool resets = false;
    bool empty = true;

    std::int64_t Poc() const { return std::min(poc[0], poc[1]); }
    bool Marked() const { return mark[0] != 0 || mark[1] != 0; }
    bool AnyShort() const { return mark[0] == 1 || mark[1] == 1; }
    bool AnyLong() const { return mark[0] == 2 || mark[1] == 2; }
    bool BothShort() const { return mark[0] == 1 && mark[1] == 1; }
    bool BothLong() const { return mark[0] == 2 && mark[1] == 2; }
};
using ModelFramePtr = std::shared_ptr<ModelFrame>;

/// A frame (structure 0) or a field of it (1 top, 2 bottom); no frame for an entry that names nothing.
struct ModelEntry {
    ModelFramePtr frame;
    int structure = 0;
    bool operator==(const ModelEntry&) const = default;
};
using ModelList = std::vector<ModelEntry>;

/// A command of ref_pic_list_modification and its value.
using Modification = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

struct ModelResult {
    int status = 0;
    int time = -1;
    bool sampleLeft = false;
};

class SlowModel {
public:
    explicit SlowModel(unsigned threads) : threads_(static_cast<int>(threads)) {}

    ModelResult Decode(const Sample* sample, int time) {
        ModelResult result;
        GetFreeFrame(sample != nullptr);
        if (sample == nullptr) {
            if (current_ != nullptr && AwaitsSecond()) HandOver();
        } else {
            result.sampleLeft = !Read(*sample, time);
        }
        SelectOutput(sample == nullptr, result);
        return result;
    }

    ModelList InitialList(const Sample& sample, std::uint32_t sliceType, unsigned list, std::int64_t poc) {
        std::vector<ModelFramePtr> shortTerm, longTerm;
        const KorvaneSoftware::H264SliceHeader& head = sample.header;
        UpdateWrap(head.frameNum, sample.sps.MaxFrameNum());
        std::vector<ModelFramePtr> frames = store_;
        if (head.fieldPic && current_ != nullptr && AwaitsSecond()) frames.push_back(current_);
        for (const ModelFramePtr& f : frames) {
            const bool hidden = f->gap && sliceType == KorvaneSoftware::SLICE_B && sample.sps.picOrderCntType == 0;
            if (!hidden && (head.fieldPic ? f->AnyShort() : f->BothShort())) shortTerm.push_back(f);
            if (head.fieldPic ? f->AnyLong() : f->BothLong()) longTerm.push_back(f);
        }
        const auto key = [&](const ModelFramePtr& f) { return f == current_ ? f->poc[f->firstParity] : f->Poc(); };
        std::stable_sort(shortTerm.begin(), shortTerm.end(), [&](const ModelFramePtr& a, const ModelFramePtr& b) {
            if (sliceType == KorvaneSoftware::SLICE_P) return a->frameNumWrap > b->frameNumWrap;
            const bool aPast = key(a) <= poc, bPast = key(b) <= poc;
            if (aPast != bPast) return aPast == (list == 0);
            return aPast ? key(a) > key(b) : key(a) < key(b);
        });
        std::stable_sort(longTerm.begin(), longTerm.end(),
                         [](const ModelFramePtr& a, const ModelFramePtr& b) { return a->longIdx < b->longIdx; });
        ModelList result;
        if (!head.fieldPic) {
            for (const ModelFramePtr& f : shortTerm) result.push_back({f, 0});
            for (const ModelFramePtr& f : longTerm) result.push_back({f, 0});
        } else {
            Alternate(shortTerm, 1, head.bottomField, result);
            Alternate(longTerm, 2, head.bottomField, result);
        }
        return result;
    }

    /// The list that prediction uses: clause 8.2.4.3 with its shifting, then holes filled.
    ModelList FinalList(const Sample& sample, ModelList initial, const Modification& commands, std::uint32_t active) {
        const ModelEntry substitute = initial.empty() ? ModelEntry{} : initial[0];
        ModelList list = initial;
        list.resize(active);
        const int maxFrameNum = static_cast<int>(sample.sps.MaxFrameNum());
        const bool field = sample.header.fieldPic;
        const int frameNum = static_cast<int>(sample.header.frameNum);
        const std::int64_t maxPicNum = field ? 2 * maxFrameNum : maxFrameNum;
        const std::int64_t currPicNum = field ? 2 * frameNum + 1 : frameNum;
        std::int64_t pred = currPicNum;
        std::size_t index = 0;
        for (const auto& [command, value] : commands) {
            ModelEntry found;
            if (command == 2) {
                found = FindNumber(sample, value, true);
            } else {
                const std::int64_t difference = std::int64_t{value} + 1;
                if (command == 0) {
                    pred = pred - difference < 0 ? pred - difference + maxPicNum : pred - difference;
                } else {
                    pred = pred + difference >= maxPicNum ? pred + difference - maxPicNum : pred + difference;
                }
                found = FindNumber(sample, pred > currPicNum ? pred - maxPicNum : pred, false);
            }
            if (found.frame == nullptr || index >= active) continue;
            list.insert(list.begin() + static_cast<std::ptrdiff_t>(index), found);
            ++index;
            std::size_t to = index;
            for (std::size_t from = index; from < list.size(); ++from) {
                if (!(list[from] == found)) list[to++] = list[from];
            }
            list.resize(to);
            list.resize(active);
        }
        for (ModelEntry& entry : list) {
            if (entry.frame == nullptr) entry = substitute;
        }
        return list;
    }

    /// The slice whose lists are wanted of the next picture that is read, and the lists.
    struct ListRequest {
        std::uint32_t sliceType = KorvaneSoftware::SLICE_I;
        std::uint32_t active[2] = {};
        Modification modification[2];
    };
    struct Lists {
        ModelEntry own;
        ModelList lists[2];
    };
    void RequestLists(const ListRequest& request) { request_ = request; }
    const std::vector<Lists>& MadeLists() const { return made_; }

private:
    bool AwaitsSecond() const { return current_->fieldCoded && current_->fields == 1; }

    void SizeBuffer(const KorvaneSoftware::H264Sps& sps) {
        const KorvaneSoftware::H264DpbSize size =
            KorvaneSoftware::SizeDecodedPictureBuffer(sps, static_cast<std::uint32_t>(threads_));
        dpbSize_ = static_cast<int>(size.dpbSize);
        limit_ = dpbSize_ + static_cast<int>(size.extraFrames);
    }

    void GetFreeFrame(bool mayGrow) {
        while (current_ == nullptr) {
            if (frameCount_ < limit_) {
                ++frameCount_;
                current_ = std::make_shared<ModelFrame>();
                return;
            }
            std::size_t place = 0;
            while (place < store_.size() && place < static_cast<std::size_t>(dpbSize_) + 1 &&
                   !(store_[place]->outputDone && !store_[place]->Marked())) {
                ++place;
            }
            if (place == store_.size() || place == static_cast<std::size_t>(dpbSize_) + 1) {
                if (!mayGrow) return;
                if (frameCount_ >= 40) {
                    // All references are given up; what was output may go then.
                    const auto marked =
                        std::any_of(store_.begin(), store_.end(), [](const auto& f) { return f->Marked(); });
                    if (!marked) return;
                    for (const ModelFramePtr& f : store_) f->mark[0] = f->mark[1] = 0;
                    continue;
                }
                ++frameCount_;
                current_ = std::make_shared<ModelFrame>();
                return;
            }
            store_.erase(store_.begin() + static_cast<std::ptrdiff_t>(place));
            // A pool that has shrunk gives the frame up and looks on.
            if (frameCount_ > limit_) {
                --frameCount_;
            } else {
                current_ = std::make_shared<ModelFrame>();
            }
        }
    }

    /// @return false where the sample is left
    bool Read(const Sample& sample, int time) {
        const KorvaneSoftware::H264SliceHeader& head = sample.header;
        const KorvaneSoftware::H264Sps& sps = sample.sps;
        if (current_ == nullptr) return false;
        if (sample.sent.has_value()) SizeBuffer(*sample.sent);
        if (!current_->empty && AwaitsSecond()) {
            const bool second = head.fieldPic && int{head.bottomField} != current_->firstParity && !head.idr &&
                                static_cast<int>(head.frameNum) == current_->frameNum;
            if (!second) {
                HandOver();
                return false;
            }
        } else if (FillGap(head, sps)) {
            return false;
        }
        const bool first = current_->empty;
        current_->empty = false;
        std::int64_t top = 0, bottom = 0;
        OrderCounts(sps, head, top, bottom);
        if (!head.fieldPic || !head.bottomField) current_->poc[0] = top;
        if (!head.fieldPic || head.bottomField) current_->poc[1] = bottom;
        lastPoc_[0] = current_->poc[0];
        lastPoc_[1] = current_->poc[1];
        current_->frameNum = static_cast<int>(head.frameNum);
        if (first) {
            current_->resets = head.idr;
            current_->fieldCoded = head.fieldPic;
            current_->firstParity = head.bottomField;
        }
        MakeLists(sample);
        if (head.fieldPic) ++current_->fields;
        current_->time = time;
        if (head.nalRefIdc != 0) Mark(sample);
        if (!AwaitsSecond()) HandOver();
        return true;
    }

    void MakeLists(const Sample& sample) {
        const KorvaneSoftware::H264SliceHeader& head = sample.header;
        Lists made;
        made.own = {current_, head.fieldPic ? 1 + int{head.bottomField} : 0};
        const std::int64_t poc = head.fieldPic ? current_->poc[head.bottomField] : current_->Poc();
        ModelList initial[2];
        for (unsigned list = 0; list < 2; ++list) {
            if (request_.active[list] == 0) continue;
            initial[list] = InitialList(sample, request_.sliceType, list, poc);
            if (list == 1 && initial[1].size() > 1 && initial[1] == initial[0]) std::swap(initial[1][0], initial[1][1]);
            made.lists[list] = FinalList(sample, initial[list], request_.modification[list], request_.active[list]);
        }
        made_.push_back(made);
    }

    bool FillGap(const KorvaneSoftware::H264SliceHeader& head, const KorvaneSoftware::H264Sps& sps) {
        const int max = static_cast<int>(sps.MaxFrameNum());
        const int frameNum = static_cast<int>(head.frameNum);
        if (head.idr || !sps.gapsInFrameNumAllowed || frameCount_ < 2) return false;
        if (frameNum == prevRefFrameNum_ || frameNum == (prevRefFrameNum_ + 1) % max) return false;
        const int gap = (frameNum - prevRefFrameNum_ + max) % max;
        KorvaneSoftware::H264SliceHeader missing;
        missing.nalRefIdc = 1;
        missing.frameNum = static_cast<std::uint32_t>((frameNum - std::min(gap, dpbSize_) + 1 + max) % max);
        if (sps.picOrderCntType == 0) {
            current_->poc[0] = lastPoc_[0];
            current_->poc[1] = lastPoc_[1];
            prevFrameNum_ = static_cast<int>(missing.frameNum);
        } else {
            OrderCounts(sps, missing, current_->poc[0], current_->poc[1]);
            lastPoc_[0] = current_->poc[0];
            lastPoc_[1] = current_->poc[1];
        }
        current_->gap = true;
        current_->empty = false;
        current_->outputDone = true;
        current_->frameNum = static_cast<int>(missing.frameNum);
        prevRefFrameNum_ = current_->frameNum;
        UpdateWrap(missing.frameNum, sps.MaxFrameNum());
        Slide(sps);
        current_->mark[0] = current_->mark[1] = 1;
        HandOver();
        return true;
    }

    void HandOver() {
        store_.push_back(current_);
        current_ = nullptr;
    }

    void OrderCounts(const KorvaneSoftware::H264Sps& sps, const KorvaneSoftware::H264SliceHeader& head,
                     std::int64_t& top, std::int64_t& bottom) {
        const std::int64_t max = sps.MaxFrameNum();
        std::int64_t offset = prevFrameNumOffset_;
        if (head.idr)
            offset = 0;
        else if (prevFrameNum_ > static_cast<int>(head.frameNum))
            offset += max;
        if (sps.picOrderCntType == 0) {
            if (head.idr) prevMsb_ = prevLsb_ = 0;
            const std::int64_t maxLsb = std::int64_t{1} << sps.log2MaxPicOrderCntLsb;
            const std::int64_t lsb = head.picOrderCntLsb;
            std::int64_t msb = prevMsb_;
            if (lsb < prevLsb_ && prevLsb_ - lsb >= maxLsb / 2) msb += maxLsb;
            if (lsb > prevLsb_ && lsb - prevLsb_ > maxLsb / 2) msb -= maxLsb;
            top = msb + lsb;
            bottom = top + head.deltaPicOrderCntBottom;
            if (head.nalRefIdc != 0) prevMsb_ = msb, prevLsb_ = lsb;
        } else if (sps.picOrderCntType == 1) {
            const int n = static_cast<int>(sps.numRefFramesInPicOrderCntCycle);
            std::int64_t absFrameNum = n != 0 ? offset + head.frameNum : 0;
            if (head.nalRefIdc == 0 && absFrameNum > 0) --absFrameNum;
            std::int64_t expected = 0;
            // Step through the frames one by one.
            for (std::int64_t i = 0; i < absFrameNum; ++i) expected += sps.offsetForRefFrame[i % n];
            if (head.nalRefIdc == 0) expected += sps.offsetForNonRefPic;
            top = expected + head.deltaPicOrderCnt[0];
            bottom = top + sps.offsetForTopToBottomField + (head.fieldPic ? 0 : head.deltaPicOrderCnt[1]);
        } else {
            top = bottom = head.idr ? 0 : 2 * (offset + head.frameNum) - (head.nalRefIdc == 0 ? 1 : 0);
        }
        prevFrameNumOffset_ = offset;
        prevFrameNum_ = static_cast<int>(head.frameNum);
    }

    void UpdateWrap(std::uint32_t frameNum, std::uint32_t max) {
        const auto update = [&](ModelFrame& f) {
            f.frameNumWrap = f.frameNum > static_cast<int>(frameNum) ? f.frameNum - static_cast<int>(max) : f.frameNum;
        };
        for (const ModelFramePtr& f : store_) update(*f);
        if (current_ != nullptr) update(*current_);
    }

    static void Alternate(const std::vector<ModelFramePtr>& frames, int mark, bool bottom, ModelList& result) {
        std::vector<ModelFramePtr> sides[2];
        for (int side = 0; side < 2; ++side) {
            for (const ModelFramePtr& f : frames) {
                if (f->mark[bottom ^ side] == mark) sides[side].push_back(f);
            }
        }
        std::size_t taken[2] = {0, 0};
        int side = 0;
        while (taken[side] < sides[side].size()) {
            result.push_back({sides[side][taken[side]++], 1 + (bottom ^ side)});
            side ^= 1;
        }
        side ^= 1;
        while (taken[side] < sides[side].size()) result.push_back({sides[side][taken[side]++], 1 + (bottom ^ side)});
    }

    ModelEntry FindNumber(const Sample& sample, std::int64_t number, bool longTerm) const {
        const bool field = sample.header.fieldPic;
        std::vector<ModelFramePtr> frames = store_;
        if (field && current_ != nullptr) frames.push_back(current_);
        for (const ModelFramePtr& f : frames) {
            const std::int64_t base = longTerm ? f->longIdx : f->frameNumWrap;
            if (!field) {
                if ((longTerm ? f->BothLong() : f->BothShort()) && base == number) return {f, 0};
                continue;
            }
            for (int parity = 0; parity < 2; ++parity) {
                const std::int64_t name = 2 * base + (parity == int{sample.header.bottomField} ? 1 : 0);
                if (f->mark[parity] == (longTerm ? 2 : 1) && name == number) return {f, 1 + parity};
            }
        }
        return {};
    }

    static void SetMark(const ModelEntry& entry, int mark) {
        if (entry.structure != 2) entry.frame->mark[0] = mark;
        if (entry.structure != 1) entry.frame->mark[1] = mark;
    }

    void FreeLongIdx(int index, const ModelFramePtr& keeper) {
        std::vector<ModelFramePtr> frames = store_;
        frames.push_back(current_);
        for (const ModelFramePtr& f : frames) {
            if (f == keeper || f->longIdx != index) continue;
            for (int& mark : f->mark) mark = mark == 2 ? 0 : mark;
        }
    }

    void Slide(const KorvaneSoftware::H264Sps& sps) {
        const auto marked = std::count_if(store_.begin(), store_.end(), [](const auto& f) { return f->Marked(); });
        if (marked < std::clamp(static_cast<int>(sps.numRefFrames), 1, 16)) return;
        ModelFramePtr oldest;
        for (const ModelFramePtr& f : store_) {
            if (f->AnyShort() && (oldest == nullptr || f->frameNumWrap < oldest->frameNumWrap)) oldest = f;
        }
        if (oldest != nullptr) oldest->mark[0] = oldest->mark[1] = 0;
    }

    void Mark(const Sample& sample) {
        const KorvaneSoftware::H264SliceHeader& head = sample.header;
        const ModelEntry own = {current_, head.fieldPic ? 1 + int{head.bottomField} : 0};
        prevRefFrameNum_ = static_cast<int>(head.frameNum);
        if (head.idr) {
            for (const ModelFramePtr& f : store_) f->mark[0] = f->mark[1] = 0;
            if (head.longTermReference) current_->longIdx = 0;
            SetMark(own, head.longTermReference ? 2 : 1);
            return;
        }
        UpdateWrap(head.frameNum, sample.sps.MaxFrameNum());
        bool longTerm = false;
        for (const auto& [command, a, b] : sample.commands) longTerm |= Run(sample, own, command, a, b);
        const auto marked = std::count_if(store_.begin(), store_.end(), [](const auto& f) { return f->Marked(); });
        const bool secondOfReference = head.fieldPic && current_->mark[!head.bottomField] != 0;
        if (!secondOfReference && (!head.adaptiveRefPicMarking || marked >= dpbSize_)) Slide(sample.sps);
        if (!longTerm) SetMark(own, 1);
    }

    /// @return whether the command made the picture itself long-term
    bool Run(const Sample& sample, const ModelEntry& own, std::uint32_t command, std::uint32_t a, std::uint32_t b) {
        const bool field = sample.header.fieldPic;
        const std::int64_t currPicNum = field ? 2 * std::int64_t{current_->frameNum} + 1 : current_->frameNum;
        ModelEntry named;
        if (command == 1 || command == 3) named = FindNumber(sample, currPicNum - (std::int64_t{a} + 1), false);
        if (command == 2) named = FindNumber(sample, a, true);
        if ((command == 1 || command == 2) && named.frame != nullptr) SetMark(named, 0);
        if (command == 3 && named.frame != nullptr && b < 16) {
            FreeLongIdx(static_cast<int>(b), named.frame);
            named.frame->longIdx = static_cast<int>(b);
            SetMark(named, 2);
        }
        if (command == 4) {
            std::vector<ModelFramePtr> frames = store_;
            frames.push_back(current_);
            for (const ModelFramePtr& f : frames) {
                for (int& mark : f->mark)
                    mark = mark == 2 && f->longIdx >= static_cast<int>(std::min(a, 1000u)) ? 0 : mark;
            }
        }
        if (command == 5) {
            for (const ModelFramePtr& f : store_) f->mark[0] = f->mark[1] = 0;
            current_->mark[0] = current_->mark[1] = 0;
            const std::int64_t least = current_->Poc();
            if (field)
                current_->poc[sample.header.bottomField] = 0;
            else
                current_->poc[0] -= least, current_->poc[1] -= least;
            lastPoc_[0] = current_->poc[0];
            lastPoc_[1] = current_->poc[1];
            prevMsb_ = 0;
            prevLsb_ = field && sample.header.bottomField ? 0 : current_->poc[0];
            prevFrameNum_ = 0;
            prevFrameNumOffset_ = 0;
            prevRefFrameNum_ = 0;
            current_->frameNum = 0;
            current_->resets = true;
        }
        if (command == 6 && a < 16) {
            FreeLongIdx(static_cast<int>(a), current_);
            current_->longIdx = static_cast<int>(a);
            SetMark(own, 2);
            return true;
        }
        return false;
    }

    void SelectOutput(bool flush, ModelResult& result) {
        const std::size_t span = static_cast<std::size_t>(flush ? frameCount_ : dpbSize_ + 1);
        ModelFramePtr best;
        bool stopped = false;
        std::size_t walked = 0;
        for (; walked < span && walked < store_.size(); ++walked) {
            const ModelFramePtr& f = store_[walked];
            if (f->resets && best != nullptr) {
                stopped = true;
                break;
            }
            if (!f->outputDone && (best == nullptr || f->Poc() < best->Poc())) best = f;
            if (f->outputDone && !f->Marked() && !flush && frameCount_ <= limit_) {
                result.status = 1;
                return;
            }
        }
        if (best == nullptr) {
            result.status = flush ? -11 : 1;
        } else if (!stopped && walked < span && !flush) {
            result.status = 1;
        } else {
            best->outputDone = true;
            result.time = best->time;
        }
    }

    int threads_;
    int dpbSize_ = 1;
    int limit_ = 2;
    int frameCount_ = 0;
    std::vector<ModelFramePtr> store_;
    ModelFramePtr current_;
    std::int64_t prevMsb_ = 0, prevLsb_ = 0, prevFrameNumOffset_ = 0;
    int prevFrameNum_ = 0, prevRefFrameNum_ = 0;
    std::int64_t lastPoc_[2] = {0, 0};
    ListRequest request_;
    std::vector<Lists> made_;
};

}  // namespace h264
