#include "h264/references/reference_lists.h"

#include <algorithm>

#include "h264/references/marking.h"

namespace KorvaneSoftware {
namespace {

/// Room for every entry that an initial list can have: two fields of each of the frames that exist.
constexpr unsigned kMostEntries = 96;

/// A list that grows up to its room; entries past it are dropped.
template <class Picture>
struct TPictureList {
    Picture* entries[kMostEntries];
    unsigned count = 0;

    void Add(Picture* picture) {
        if (count < kMostEntries) entries[count++] = picture;
    }
    Picture** begin() { return entries; }
    Picture** end() { return entries + count; }
    bool operator==(const TPictureList& other) const {
        return count == other.count && std::equal(entries, entries + count, other.entries);
    }
};
using PictureList = TPictureList<CH264Picture>;
using FrameRow = TPictureList<CH264Frame>;

/// Orders few frames without taking memory, as the library's stable sort would; equal ones stay as they stood.
template <class Before>
void Sort(CH264Frame** begin, CH264Frame** end, Before before) {
    for (CH264Frame** at = begin; at < end; ++at) {
        CH264Frame* const frame = *at;
        CH264Frame** place = at;
        for (; place > begin && before(frame, place[-1]); --place) *place = place[-1];
        *place = frame;
    }
}

/// Orders the candidates of one slice.
class ListBuilder {
public:
    ListBuilder(const CH264Slice& slice, CH264Frame& current, const H264FrameList& store)
        : header_(slice.header), picture_(*slice.picture), current_(current), store_(store) {}

    PictureList Initial(unsigned list);
    void Modify(H264BitReader& reader, std::uint32_t active, const PictureList& initial, CH264Picture** entries);

private:
    bool IsField() const { return picture_.fieldPic; }
    /// Frames, first field of the current one included, that `isCandidate` accepts, in the order of the store.
    template <class Condition>
    FrameRow Candidates(Condition isCandidate) const;
    FrameRow ShortTermFrames() const;
    FrameRow LongTermFrames() const;
    std::int32_t OrderCount(const CH264Frame& frame) const;
    void AppendAlternating(FrameRow& frames, bool longTerm, PictureList& list) const;
    void Append(FrameRow& frames, bool longTerm, PictureList& list) const;
    PictureList InitialP();
    PictureList InitialB(unsigned list);
    CH264Picture* Find(std::int64_t number, bool longTerm) const;

    const H264SliceHeader& header_;
    CH264Picture& picture_;
    CH264Frame& current_;
    const H264FrameList& store_;
};

template <class Condition>
FrameRow ListBuilder::Candidates(Condition isCandidate) const {
    FrameRow frames;
    for (const auto& frame : store_) {
        if (isCandidate(*frame) && frame->HasLayoutOf(picture_)) frames.Add(frame.get());
    }
    if (IsField() && isCandidate(current_)) frames.Add(&current_);
    return frames;
}

FrameRow ListBuilder::ShortTermFrames() const {
    // A B slice does not see the frames that fill gaps where order counts are sent: they have none of their own.
    const bool withGaps = header_.sliceType == SLICE_P || picture_.sps.picOrderCntType != 0;
    return Candidates([&](const CH264Frame& frame) {
        const bool isGap = frame.fields[0].marking == MARK_GAP || frame.fields[1].marking == MARK_GAP;
        if (isGap && !withGaps) return false;
        return IsField() ? frame.HasShortTermMark() : frame.IsShortTerm();
    });
}

FrameRow ListBuilder::LongTermFrames() const {
    FrameRow frames = Candidates([&](const CH264Frame& frame) {
        return IsField() ? frame.fields[0].IsLongTerm() || frame.fields[1].IsLongTerm() : frame.IsLongTerm();
    });
    Sort(frames.begin(), frames.end(),
         [](const CH264Frame* a, const CH264Frame* b) { return a->longTermFrameIdx < b->longTermFrameIdx; });
    return frames;
}

/// A frame's count is the smaller of its fields'; of the frame in decoding the first field alone has one that counts.
std::int32_t ListBuilder::OrderCount(const CH264Frame& frame) const {
    return &frame == &current_ ? frame.FirstField().picOrderCnt : frame.picOrderCnt;
}

/// Clause 8.2.4.2.5: fields of the current parity and of the other in turn, and what is left of one of them behind.
void ListBuilder::AppendAlternating(FrameRow& frames, bool longTerm, PictureList& list) const {
    const auto next = [&](unsigned& place, unsigned parity) -> CH264Picture* {
        while (place < frames.count) {
            CH264Picture& field = frames.entries[place++]->fields[parity];
            if (longTerm ? field.IsLongTerm() : field.IsShortTerm()) return &field;
        }
        return nullptr;
    };
    const unsigned parities[2] = {picture_.bottomField ? 1u : 0u, picture_.bottomField ? 0u : 1u};
    unsigned places[2] = {};
    for (unsigned turn = 0;; turn ^= 1) {
        CH264Picture* field = next(places[turn], parities[turn]);
        if (field == nullptr) {
            while ((field = next(places[turn ^ 1], parities[turn ^ 1])) != nullptr) list.Add(field);
            return;
        }
        list.Add(field);
    }
}

void ListBuilder::Append(FrameRow& frames, bool longTerm, PictureList& list) const {
    if (IsField()) {
        AppendAlternating(frames, longTerm, list);
    } else {
        for (CH264Frame* frame : frames) list.Add(frame);
    }
}

PictureList ListBuilder::InitialP() {
    FrameRow shortTerm = ShortTermFrames();
    Sort(shortTerm.begin(), shortTerm.end(),
         [](const CH264Frame* a, const CH264Frame* b) { return a->frameNumWrap > b->frameNumWrap; });
    FrameRow longTerm = LongTermFrames();
    PictureList list;
    Append(shortTerm, false, list);
    Append(longTerm, true, list);
    return list;
}

PictureList ListBuilder::InitialB(unsigned list) {
    FrameRow frames = ShortTermFrames();
    const std::int32_t count = picture_.picOrderCnt;
    // List 0 has the past first, list 1 the future; each side goes from the current picture outwards.
    Sort(frames.begin(), frames.end(), [&](const CH264Frame* a, const CH264Frame* b) {
        const std::int32_t countA = OrderCount(*a);
        const std::int32_t countB = OrderCount(*b);
        const bool pastA = countA <= count;
        if (pastA != (countB <= count)) return pastA == (list == 0);
        return pastA ? countA > countB : countA < countB;
    });
    FrameRow longTerm = LongTermFrames();
    PictureList result;
    Append(frames, false, result);
    Append(longTerm, true, result);
    return result;
}

PictureList ListBuilder::Initial(unsigned list) {
    if (header_.sliceType == SLICE_P) return InitialP();
    PictureList result = InitialB(list);
    if (list == 1 && result.count > 1 && result == InitialB(0)) std::swap(result.entries[0], result.entries[1]);
    return result;
}

CH264Picture* ListBuilder::Find(std::int64_t number, bool longTerm) const {
    for (const auto& frame : store_) {
        CH264Picture* found = FindByNumber(*frame, picture_, number, longTerm);
        if (found != nullptr && found->HasLayoutOf(picture_)) return found;
    }
    return IsField() ? FindByNumber(current_, picture_, number, longTerm) : nullptr;
}

void ListBuilder::Modify(H264BitReader& reader, std::uint32_t active, const PictureList& initial,
                         CH264Picture** entries) {
    CH264Picture* chosen[kH264MostReferences] = {};
    std::uint32_t count = 0;
    const std::uint32_t maxFrameNum = picture_.sps.MaxFrameNum();
    const std::uint32_t maxPicNum = IsField() ? 2 * maxFrameNum : maxFrameNum;
    const std::uint32_t currPicNum = IsField() ? 2 * picture_.frameNum + 1 : picture_.frameNum;
    std::uint32_t predicted = currPicNum;
    const bool modified = reader.ReadFlag();
    while (modified && reader.BitsLeft() >= 0) {
        const std::uint32_t command = reader.ReadUe();
        if (command == 3 || command > 5) break;
        const std::uint32_t value = reader.ReadUe();
        CH264Picture* found = nullptr;
        if (command < 2) {
            // MaxPicNum is a power of two, so the wrap of the standard is a mask.
            predicted = (command == 0 ? predicted - (value + 1) : predicted + (value + 1)) & (maxPicNum - 1);
            const std::int64_t number = std::int64_t{predicted} - (predicted > currPicNum ? maxPicNum : 0);
            found = Find(number, false);
        } else if (command == 2) {
            found = Find(value, true);
        }
        if (found != nullptr && count < active) chosen[count++] = found;
    }
    const CH264Picture* const* chosenEnd = chosen + count;
    for (unsigned i = 0; i < initial.count && count < active; ++i) {
        // Only the commands' own entries take a picture out of what is left.
        if (std::find(static_cast<const CH264Picture* const*>(chosen), chosenEnd, initial.entries[i]) == chosenEnd) {
            chosen[count++] = initial.entries[i];
        }
    }
    CH264Picture* const substitute = initial.count > 0 ? initial.entries[0] : nullptr;
    for (unsigned i = 0; i < kH264MostReferences; ++i) entries[i] = i < count ? chosen[i] : substitute;
}

H264ReferenceTables::Entry EntryFor(CH264Picture* picture) {
    if (picture == nullptr) return {nullptr, MARK_UNUSED, -1, 0, 0};
    return {picture, static_cast<std::uint8_t>(picture->marking), static_cast<std::int16_t>(picture->pictureId), 0,
            picture->picOrderCnt};
}

/// Entry i of a list of frames makes the fields 2i and 2i + 1 of field macroblocks.
void SplitIntoFields(H264ReferenceTables& tables, unsigned list) {
    for (unsigned parity = 0; parity < 2; ++parity) {
        for (unsigned i = 0; i < kH264MostReferences / 2; ++i) {
            CH264Picture* frame = tables.entries[VIEW_PICTURE][list][i].picture;
            for (unsigned other = 0; other < 2; ++other) {
                CH264Picture* field = frame == nullptr ? nullptr : &frame->frame->fields[parity ^ other];
                tables.entries[VIEW_TOP_FIELD_MB + parity][list][2 * i + other] = EntryFor(field);
            }
        }
    }
}

}  // namespace

void BuildReferenceLists(CH264Slice& slice, CH264Frame& current, const H264FrameList& store) {
    for (auto& view : slice.references.entries) {
        for (auto& list : view) std::fill_n(list, kH264MostReferences, EntryFor(nullptr));
    }
    std::fill_n(slice.references.colocated, kH264ListViews, nullptr);
    if (slice.IsIntra()) return;
    const CH264Picture& picture = *slice.picture;
    UpdateFrameNumWrap(store, picture.frameNum, picture.sps.MaxFrameNum());
    current.frameNumWrap = static_cast<std::int32_t>(current.frameNum);
    ListBuilder builder(slice, current, store);
    H264BitReader reader = slice.header.listModification;
    for (unsigned list = 0; list < (slice.header.sliceType == SLICE_B ? 2u : 1u); ++list) {
        CH264Picture* entries[kH264MostReferences];
        builder.Modify(reader, slice.header.numRefIdxActive[list], builder.Initial(list), entries);
        for (unsigned i = 0; i < kH264MostReferences; ++i) {
            slice.references.entries[VIEW_PICTURE][list][i] = EntryFor(entries[i]);
        }
        if (picture.mbaff) SplitIntoFields(slice.references, list);
    }
}

}  // namespace KorvaneSoftware
