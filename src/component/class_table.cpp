#include "component/class_table.h"

#include "component/com_object.h"
#include "component/copy_memory.h"
#include "component/deinterlace_maker.h"
#include "component/pixmorph.h"
#include "component/stretch_image.h"
#include "component/title_mixer.h"
#include "component/video_codec.h"
#include "component/video_deinterlacer.h"
#include "component/video_interpolation.h"
#include "component/y16a_rle_compressor.h"

namespace KorvaneSoftware {

namespace {

constexpr ComponentClass kClasses[] = {
    {&CLSID_Pixmorph, "Pixmorph", &CreateComponent<CPixmorph>},
    {&CLSID_StretchImage, "StretchImage", &CreateComponent<CStretchImage>},
    {&CLSID_CopyMemory, "CopyMemory", &CreateComponent<CCopyMemory>},
    {&CLSID_TitleMixer, "TitleMixer", &CreateComponent<CTitleMixer>},
    {&CLSID_TitleMixer2, "TitleMixer2", &CreateComponent<CTitleMixer2>},
    {&CLSID_TitleMixer3, "TitleMixer3", &CreateComponent<CTitleMixer3>},
    {&CLSID_Y16ARLECompressor, "Y16ARLECompressor", &CreateComponent<CY16ARLECompressor>},
    {&CLSID_DeinterlaceMaker, "DeinterlaceMaker", &CreateComponent<CDeinterlaceMaker>},
    {&CLSID_VideoInterpolation, "VideoInterpolation", &CreateComponent<CVideoInterpolation>},
    {&CLSID_VideoDeinterlacer, "VideoDeinterlacer", &CreateComponent<CVideoDeinterlacer>},
    {&CLSID_VideoCodec, "VideoCodec", &CreateComponent<CVideoCodecComponent>},
};

}  // namespace

std::span<const ComponentClass> ComponentClasses() { return kClasses; }

}  // namespace KorvaneSoftware
