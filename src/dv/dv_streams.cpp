#include "dv/dv_streams.h"

namespace KorvaneSoftware {

namespace {

constexpr DvStream kStreams[] = {
    {CODEC_DV, DV_MODE_NONE, DvSampling::k411, 480, 720, 10, 10},
    {CODEC_DV, DV_MODE_NONE, DvSampling::k420, 576, 720, 12, 12},
    {CODEC_DVCPRO, DV_MODE_NONE, DvSampling::k411, 480, 720, 10, 10},
    {CODEC_DVCPRO, DV_MODE_NONE, DvSampling::k411, 576, 720, 12, 12},
    {CODEC_DVCPRO50, DV_MODE_NONE, DvSampling::k422, 480, 720, 20, 10},
    {CODEC_DVCPRO50, DV_MODE_NONE, DvSampling::k422, 576, 720, 24, 12},
    {CODEC_DVCPRO100, DV_MODE_1080_60, DvSampling::k422Hd, 1080, 1280, 40, 10},
    {CODEC_DVCPRO100, DV_MODE_1080_50, DvSampling::k422Hd, 1080, 1440, 48, 12},
    {CODEC_DVCPRO100, DV_MODE_720_60, DvSampling::k422Hd, 720, 960, 20, 10},
    {CODEC_DVCPRO100, DV_MODE_720_50, DvSampling::k422Hd, 720, 960, 24, 12},
};

}  // namespace

std::span<const DvStream> DvStreams() { return kStreams; }

const DvStream* FindDvStream(std::uint32_t kind, std::uint32_t lines, bool is50Hz) {
    for (const DvStream& stream : kStreams)
        if (stream.kind == kind && stream.lines == lines && (!stream.IsHd() || stream.Is50Hz() == is50Hz))
            return &stream;
    return nullptr;
}

}  // namespace KorvaneSoftware
