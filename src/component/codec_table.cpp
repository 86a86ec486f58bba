#include "component/codec_table.h"

#include "dv/dv_codecs.h"
#include "h264/h264_decoder.h"
#include "iframe/iframe_codecs.h"
#include "jpeg/kvmj_codecs.h"
#include "tarvex/tarvex_codecs.h"

namespace KorvaneSoftware {

namespace {

constexpr CodecTableEntry kCodecs[] = {
    {CODEC_DV, FourCC('K', 'V', 'D', 'V'), L"Korvane DV", 0, &CreateDVEncoder, &CreateDVDecoder},
    {CODEC_DVCPRO, FourCC('K', 'V', '2', '5'), L"Korvane DVCPRO", 0, &CreateDVCPROEncoder, &CreateDVCPRODecoder},
    {CODEC_DVCPRO50, FourCC('K', 'V', '5', '0'), L"Korvane DVCPRO50", 0, &CreateDVCPRO50Encoder,
     &CreateDVCPRO50Decoder},
    {CODEC_DVCPRO100, FourCC('K', 'V', 'H', '1'), L"Korvane DVCPRO100 (50Hz)", 0, &CreateDVCPRO100Encoder50Hz,
     &CreateDVCPRO100Decoder},
    {CODEC_DVCPRO100, FourCC('K', 'V', 'H', '1'), L"Korvane DVCPRO100 (60Hz)", 0, &CreateDVCPRO100Encoder60Hz,
     &CreateDVCPRO100Decoder},
    {CODEC_TARVEX, FourCC('T', 'R', 'V', 'D'), L"Korvane Tarvex JPEG", 0, &CreateTRVDEncoder, &CreateTRVDDecoder},
    {CODEC_TARVEX_ALPHA, FourCC('T', 'R', 'V', 'T'), L"Korvane Tarvex JPEG + Alpha", 0, &CreateTRVTEncoder,
     &CreateTRVTDecoder},
    {CODEC_I_FRAME, FourCC('K', 'V', 'I', 'F'), L"Korvane elementary I-frames", kElementaryIFrameFlag,
     &CreateMMESEncoder, &CreateMMESDecoder},
    {CODEC_I_FRAME, FourCC('K', 'V', 'E', 'S'), L"Korvane advanced I-frames", 0, &CreateMMESEncoder,
     &CreateMMESDecoder},
    {CODEC_MOTION_JPEG, FourCC('K', 'V', 'M', 'J'), L"Korvane Motion-JPEG", 0, &CreateMJPGEncoder, &CreateMJPGDecoder},
    {CODEC_AVC, FourCC('A', 'V', 'C', '1'), L"Korvane AVC", 0, nullptr, &CreateH264Decoder},
};

}  // namespace

std::span<const CodecTableEntry> CodecTable() { return kCodecs; }

}  // namespace KorvaneSoftware
