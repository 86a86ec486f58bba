// Pictures and frames: parameters, samples, records, and the numbers by which they are ordered and referenced.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>

#include "codec/samples.h"
#include "foundation/aligned_memory.h"
#include "h264/dequant_tables.h"
#include "h264/parsing/sei.h"
#include "h264/slice.h"

namespace KorvaneSoftware {

class CH264Frame;

/// CH264Picture::structure.
enum H264Structure : std::int32_t {
    STRUCTURE_EMPTY = -1,
    STRUCTURE_FRAME = 0,
    STRUCTURE_TOP = 1,
    STRUCTURE_BOTTOM = 2,
    STRUCTURE_HOLDS_FIELDS = 3,  ///< A frame that was coded as fields.
};

/// CH264Picture::coding.
enum H264Coding : std::uint32_t { CODING_PROGRESSIVE = 0, CODING_FIELD = 3, CODING_MBAFF = 8 };

/// CH264Picture::marking. Bit 0 means short-term.
enum H264Marking : std::uint32_t {
    MARK_UNUSED = 0,
    MARK_SHORT_TERM = 1,
    MARK_LONG_TERM = 2,
    MARK_GAP = 5,  ///< Short-term, made to fill a gap in frame_num.
};

constexpr std::int32_t kH264NoOrderCount = 0x7FFFFFFF;

/// Whether pictures of two parameter sets have the same size, chroma format and depths.
bool HaveSameLayout(const H264SpsHead& a, const H264SpsHead& b);

/// A frame, or one of the two fields in it.
class CH264Picture {
public:
    virtual ~CH264Picture() = default;
    /// Takes the parameters over and builds the tables of dequantisation (profiles from 100 on).
    virtual void Initialize(const H264Sps& sps, const H264Pps& pps, const H264SliceHead& header);
    /// Takes over what only the whole header of the first slice tells.
    virtual void Update(const H264SliceHeader& header);
    virtual void SetRecords(H264MacroblockRecord* firstRecord, std::size_t stride);
    /// Luma rows that are final: where the first pending slice stands; all of them when none is pending.
    virtual std::uint32_t FinishedRows() const;

    std::int32_t structure = STRUCTURE_EMPTY;
    std::uint32_t coding = CODING_PROGRESSIVE;
    std::uint32_t marking = MARK_UNUSED;

    H264SliceList pending;
    H264SliceList finished;
    std::uint32_t inFlight = 0;  ///< Entries of reference lists of unfinished slices that point here.

    H264MacroblockRecord* records = nullptr;
    std::size_t recordStride = 0;  ///< Records from one row of macroblocks to the next; twice the frame's in a field.

    H264PicTiming timing;

    std::int32_t frameNumWrap = 0;
    std::int32_t picNum = 0;
    std::int32_t longTermPicNum = 0;
    std::uint32_t longTermFrameIdx = 0;
    std::int32_t picOrderCnt = kH264NoOrderCount;  ///< Of a frame: the smaller of its fields'.
    std::int32_t pictureId = 0;                    ///< 0 to 127; of a field twice the frame's, plus 1 for the bottom.

    H264SpsHead sps;
    H264PpsHead pps;
    std::uint32_t nalRefIdc = 0;
    bool idr = false;
    std::uint32_t frameNum = 0;
    bool fieldPic = false;
    bool bottomField = false;
    bool mbaff = false;
    bool adaptiveRefPicMarking = false;
    bool longTermReference = false;
    H264DequantTables dequant;

    CH264Frame* frame = nullptr;
    std::uint8_t* planes[3] = {};  ///< Null while there is no buffer.
    std::ptrdiff_t stride = 0;     ///< Bytes, one for all three planes; twice the frame's in a field.

    std::uint32_t WidthInMbs() const { return sps.widthInMbs; }
    std::uint32_t HeightInMbs() const { return sps.FrameHeightInMbs() / (fieldPic ? 2 : 1); }
    std::uint32_t SizeInMbs() const { return WidthInMbs() * HeightInMbs(); }
    std::uint32_t BytesPerSample() const { return sps.IsHighBitDepth() ? 2 : 1; }
    /// Rows of chroma samples of a macroblock; there are 8 columns.
    std::uint32_t ChromaMbHeight() const { return sps.chromaFormatIdc == 2 ? 16 : 8; }
    bool IsReference() const { return marking != MARK_UNUSED; }
    bool IsShortTerm() const { return (marking & 1) != 0; }
    bool IsLongTerm() const { return marking == MARK_LONG_TERM; }
    /// Whether samples of the other picture have the same places and depths.
    bool HasLayoutOf(const CH264Picture& other) const;
};

/// Puts record and planes of a cursor to its mbX and mbRow in the picture.
void PlaceCursor(SliceCursor& cursor, const CH264Picture& picture);

/// One buffer for the unescaped data of a slice.
class CH264Memory {
public:
    /// Bytes of 0xFF that stand behind the data: no reader of one macroblock gets past them.
    static constexpr std::size_t kPadding = 1024;

    virtual ~CH264Memory() = default;
    /// Makes the block hold at least `size` bytes: 512 or the next power of two.
    Status Reserve(std::size_t size);

    std::uint8_t* Data() const { return buffer_.Data(); }
    std::size_t Capacity() const { return static_cast<std::size_t>(buffer_.Capacity()); }
    std::size_t used = 0;

private:
    AlignedBuffer buffer_;
};

using H264MemoryList = std::list<std::unique_ptr<CH264Memory>>;

/// A frame due for output, and where to.
struct H264OutputRequest {
    CH264Frame* frame = nullptr;
    IVideoSample* destination = nullptr;
};

/// A frame with its two fields, its samples and records. The picture part stands for the frame as a whole.
class CH264Frame : public CH264Picture {
public:
    CH264Frame();

    void Initialize(const H264Sps& parameters, const H264Pps& pictureParameters, const H264SliceHead& header) override;
    /// Of a field-coded frame: twice the smaller of its fields' values.
    std::uint32_t FinishedRows() const override;

    /// Gives the frame, its fields and the cursors of its slices samples and records; blocks that are large enough are
    /// kept, new ones are filled.
    /// @return IMG_E_NO_MEMORY
    Status AllocateBuffers();
    /// The serial number and the picture ids that follow from it.
    void SetSerial(std::uint32_t number);
    /// The state of a frame that nothing has been decoded into. Slices and memories must be gone.
    void ResetState();

    bool IsFieldCoded() const { return structure == STRUCTURE_HOLDS_FIELDS; }
    CH264Picture& FirstField() { return fields[firstParity]; }
    CH264Picture& SecondField() { return fields[1 - firstParity]; }
    const CH264Picture& FirstField() const { return fields[firstParity]; }
    const CH264Picture& SecondField() const { return fields[1 - firstParity]; }
    /// A first field waits for its second.
    bool AwaitsSecondField() const { return IsFieldCoded() && fieldCount == 1; }
    bool HasPending() const { return !pending.empty() || !fields[0].pending.empty() || !fields[1].pending.empty(); }
    bool IsInFlight() const { return inFlight != 0 || fields[0].inFlight != 0 || fields[1].inFlight != 0; }
    bool IsMarked() const { return IsReference() || fields[0].IsReference() || fields[1].IsReference(); }
    bool HasShortTermMark() const { return IsShortTerm() || fields[0].IsShortTerm() || fields[1].IsShortTerm(); }
    bool HasLongTermMark() const { return IsLongTerm() || fields[0].IsLongTerm() || fields[1].IsLongTerm(); }
    void ClearMarks();

    H264MemoryList memories;
    CH264Picture fields[2];         ///< Top, bottom.
    std::uint32_t firstParity = 0;  ///< Of the field that was decoded first: 0 top, 1 bottom.
    std::uint32_t fieldCount = 0;   ///< Fields decoded, of a field-coded frame.
    bool outputDone = false;
    bool resetsNumbering = false;  ///< An IDR picture or one with command 5: nothing behind it refers past it.
    bool marked = false;           ///< Reference marking has been done for the last picture put in.
    SampleTimes times;
    H264OutputRequest outputRequest;
    std::uint32_t serial = 0;

private:
    struct SampleLayout {
        std::size_t rowBytes = 0;
        std::size_t rows = 0;
        std::size_t records = 0;
        std::uint32_t lumaExtraBits = 0;
        std::uint32_t chromaExtraBits = 0;
        bool operator==(const SampleLayout&) const = default;
    };
    void FillBuffers(std::size_t lumaRows, std::size_t rows, std::size_t rowBytes, std::size_t recordCount);

    AlignedBuffer samples_;
    AlignedBuffer recordBlock_;
    SampleLayout layout_;
};

using H264FrameList = std::list<std::unique_ptr<CH264Frame>>;

/// Calls `action` with the frame itself and its fields in decoding order.
template <class Action>
void ForEachPicture(CH264Frame& frame, Action action) {
    action(static_cast<CH264Picture&>(frame));
    action(frame.FirstField());
    action(frame.SecondField());
}

/// Samples from one row of a frame to the next: the smallest odd multiple of 64 that is not below `width`.
constexpr std::size_t H264StrideInSamples(std::size_t width) { return ((width + 63) & ~std::size_t{127}) + 64; }
/// Records from one row of macroblocks to the next: the width, made odd.
constexpr std::size_t H264RecordStride(std::size_t widthInMbs) { return widthInMbs | 1; }

}  // namespace KorvaneSoftware
