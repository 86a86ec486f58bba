// Slices as the pipeline moves them: the state that a processor takes over for the time of a row, the two cursors, and
// the tables that prediction reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>

#include "h264/macroblock_record.h"
#include "h264/parsing/slice_header.h"

namespace KorvaneSoftware {

class CH264Picture;
class CH264Slice;

/// Contexts of CABAC for 4:2:0 and 4:2:2.
constexpr unsigned kH264CabacContexts = 460;

/// The arithmetic decoder between two rows.
struct H264CabacState {
    const std::uint8_t* next = nullptr;  ///< The next byte to fetch.
    const std::uint8_t* end = nullptr;   ///< Of the data; ones stand in for what would be fetched behind it.
    std::int32_t bitsLeft = 0;           ///< Before the next fetch.
    std::uint64_t range = 0;             ///< 256 to 510
    std::uint64_t offset = 0;            ///< The standard's nine bits in bits 32 and up, further bits below.
    std::uint8_t contexts[kH264CabacContexts] = {};  ///< pStateIdx x 2 + valMPS
};

enum H264Conceal : std::uint32_t {
    CONCEAL_NONE = 0,
    CONCEAL_DATA_ENDED = 1,
    CONCEAL_EXCEPTION = 2,
};

/// What a processor copies when it takes a slice for a row, and gives back behind it.
struct H264SliceState {
    CH264Slice* slice = nullptr;
    H264BitReader reader;
    H264CabacState cabac;
    std::int32_t sliceQpY = 0;     ///< QPY of the last macroblock.
    std::int32_t lastQpDelta = 0;  ///< mb_qp_delta of the last macroblock, the context of the next one.
    std::uint32_t skipRun = 0;     ///< CAVLC: macroblocks still to be skipped.
    bool previousSkipped = false;  ///< CAVLC: the last macroblock was one of a run.
    std::uint32_t concealState = CONCEAL_NONE;
};

/// A place in a slice. Positions are raster numbers of macroblocks in the picture; in MBAFF of the top macroblock of
/// the pair, so that a row of pairs ends `widthInMbs` before the next one begins.
struct SliceCursor {
    CH264Slice* slice = nullptr;
    H264MacroblockRecord* record = nullptr;  ///< Of the macroblock at the place, in MBAFF the top one.
    std::size_t recordStride = 0;            ///< Records from one row of macroblocks to the next.
    std::uint32_t position = 0;
    std::uint32_t firstMb = 0;
    std::uint32_t widthInMbs = 0;
    std::uint32_t rowHeight = 1;  ///< In macroblocks: 2 in MBAFF.
    std::uint32_t end = 0;        ///< Where the next slice begins, or the picture ends.
    std::uint32_t mbX = 0;
    std::uint32_t mbRow = 0;  ///< Row of macroblocks, in MBAFF that of the top one.
    bool bottomField = false;
    std::uint8_t* planes[3] = {};  ///< Samples of the macroblock at the place.
    std::ptrdiff_t stride = 0;     ///< Bytes; one for all three planes.

    bool AtEnd() const { return position >= end; }
};

/// Takes the cursor to the first macroblock of the next row, records and planes with it.
void StartNextRow(SliceCursor& cursor);

/// Which entries of the lists a macroblock sees.
enum H264ListView : unsigned {
    VIEW_PICTURE = 0,       ///< The entries of the header: frames, or fields in a field picture.
    VIEW_TOP_FIELD_MB = 1,  ///< MBAFF field macroblocks: entry i as fields 2i and 2i + 1, the same parity first.
    VIEW_BOTTOM_FIELD_MB = 2,
};
constexpr unsigned kH264ListViews = 3;
constexpr unsigned kH264PictureIds = 256;  ///< Of fields; those of frames are below 128.

/// The reference lists of a slice and what prediction derives from them, filled once when the slice is added.
struct H264ReferenceTables {
    struct Entry {
        CH264Picture* picture;    ///< May be null: nothing is predicted from it.
        std::uint8_t marking;     ///< `H264Marking` when the slice was added.
        std::int16_t pictureId;   ///< -1 where the picture is null.
        std::int16_t distScale;   ///< Temporal direct, list 0 only: DistScaleFactor; 256 for a long-term picture.
        std::int32_t orderCount;  ///< PicOrderCnt of the frame or field.
    };
    Entry entries[kH264ListViews][2][kH264MostReferences];
    /// Weight of list 1 by refIdxL0 and refIdxL1 where weighted_bipred_idc is 2; list 0 has 64 less it.
    std::int16_t implicitWeights[kH264ListViews][kH264MostReferences][kH264MostReferences];
    /// B slices: the picture whose records direct prediction reads (a frame, or a field of a field-coded frame); null
    /// where list 1 is empty.
    CH264Picture* colocated[kH264ListViews];
    /// Which field's macroblock stands for a frame macroblock at a pair of field macroblocks in colocated[VIEW_PICTURE].
    std::uint8_t nearerField;
    /// B slices with temporal direct prediction: the first entry of list 0 for each picture id; 0 for those not there.
    std::uint8_t indexOfPicture[kH264ListViews][kH264PictureIds];
};

class CH264Slice {
public:
    virtual ~CH264Slice() = default;

    CH264Picture* picture = nullptr;
    std::uint32_t number = 0;  ///< In its picture, from 0.
    H264SliceHeader header;
    H264PpsHead pps;

    H264SliceState state;
    SliceCursor reconCursor;
    bool reconReady = true;  ///< No thread works on this side.
    SliceCursor deblockCursor;
    bool deblockReady = true;

    H264ReferenceTables references = {};

    bool IsIntra() const { return header.sliceType == SLICE_I; }
    std::uint32_t ReferenceCount(unsigned list) const { return header.numRefIdxActive[list]; }
};

/// Slices move between lists without being copied or allocated.
using H264SliceList = std::list<std::unique_ptr<CH264Slice>>;

}  // namespace KorvaneSoftware
