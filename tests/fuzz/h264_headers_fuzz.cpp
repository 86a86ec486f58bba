// Parameter sets, slice headers and SEI from any bytes: each unit of the input is read as what it says it is.
#include <cstdlib>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "h264/parsing/sei.h"
#include "h264/parsing/slice_header.h"

using namespace KorvaneSoftware;

namespace {

/// What the macroblock layer relies on in a header that was accepted.
void Check(bool holds) {
    if (!holds) std::abort();
}

void ReadSlice(const NalUnit& unit, const H264ParameterSets& sets) {
    UnescapedUnit payload;
    if (payload.Load(unit) != IMG_OK) return;
    H264BitReader reader = payload.Reader();
    H264SliceHeader header;
    const H264Pps* pps = nullptr;
    const H264Sps* sps = nullptr;
    if (ReadSliceHeader(reader, unit, sets, header, &pps, &sps) != IMG_OK) return;
    Check(header.firstMbInSlice < PictureSizeInMbs(*sps, header.fieldPic));
    Check(header.sliceType <= SLICE_I);
    Check(header.numRefIdxActive[0] <= kH264MostReferences && header.numRefIdxActive[1] <= kH264MostReferences);
    Check(header.cabacInitIdc <= 2 && header.disableDeblockingFilterIdc <= 2);
    Check(header.sliceQpY <= 51 && header.sliceQpY >= -36);
    Check(reader.BitsLeft() >= 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // An exact copy shows a read behind the input.
    const std::vector<std::uint8_t> input(data, data + size);
    H264ParameterSets sets;
    for (std::size_t at = FindStartCode(input.data(), size, 0); at < size;) {
        const NalUnit unit = UnitAt(input.data(), size, at);
        at += unit.size;
        if (!unit.HasHeader()) continue;
        if (unit.Type() == NAL_SPS) {
            const H264Sps* stored = nullptr;
            if (ReadSps(unit, sets, &stored) == IMG_OK) {
                Check(stored->widthInMbs * stored->FrameHeightInMbs() <= kH264MostMacroblocks);
                const H264DpbSize dpb = SizeDecodedPictureBuffer(*stored, 4);
                Check(dpb.dpbSize >= 1 && dpb.dpbSize <= 16 && dpb.extraFrames >= 1 && dpb.extraFrames <= 20);
            }
        } else if (unit.Type() == NAL_PPS) {
            ReadPps(unit, sets);
        } else if (unit.Type() == NAL_SEI) {
            H264PicTiming timing;
            ReadSei(unit, sets.sps[0] != nullptr ? *sets.sps[0] : H264Sps(), timing);
        } else if (unit.Type() <= NAL_SLICE_IDR) {
            ReadSlice(unit, sets);
        }
    }
    return 0;
}
