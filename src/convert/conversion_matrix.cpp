#include "convert/conversion_matrix.h"

#include <algorithm>

#include "convert/conversion_steps.h"
#include "convert/dv12.h"
#include "convert/luma_only.h"
#include "convert/reorder.h"
#include "convert/rgb.h"
#include "convert/sixteen_bit.h"
#include "convert/y41p.h"

namespace KorvaneSoftware {

namespace {

constexpr SizeRule kAny = {1, 1};
constexpr SizeRule kW2 = {2, 1};
constexpr SizeRule kW8 = {8, 1};
constexpr SizeRule kW16 = {16, 1};
constexpr SizeRule kW2H2 = {2, 2};
constexpr SizeRule kW16H2 = {16, 2};

constexpr ConversionPath kFromBgr[] = {
    {SetOf(FMT_BGR), kAny, CopyPlanes},      {SetOf(FMT_BGRA), kAny, Run<BgrToBgra>},
    {SetOf(FMT_UYVY), kW2, Run<BgrToUyvy>},  {SetOf(FMT_YUY2), kW2, Run<BgrToYuy2>},
    {SetOf(FMT_YVYU), kW2, Run<BgrToYvyu>},  {SetOf(FMT_Y422), kW2, Run<BgrToY422>},
    {SetOf(FMT_Y16), kW16, Run<BgrToY16>},   {SetOf(FMT_Y16A), kW16, Run<BgrToY16A>},
    {kPlanar420, kW2H2, Run<BgrToI420>},     {SetOf(FMT_NV12), kW2H2, Run<BgrToNv12>},
    {SetOf(FMT_Y400), kAny, Run<BgrToY400>},
};

constexpr ConversionPath kFromBgra[] = {
    {SetOf(FMT_BGRA), kAny, CopyPlanes},     {SetOf(FMT_BGR), kAny, Run<BgraToBgr>},
    {SetOf(FMT_UYVY), kW2, Run<BgraToUyvy>}, {SetOf(FMT_YUY2), kW2, Run<BgraToYuy2>},
    {SetOf(FMT_YVYU), kW2, Run<BgraToYvyu>}, {SetOf(FMT_Y422), kW2, Run<BgraToY422>},
    {SetOf(FMT_Y16), kW16, Run<BgraToY16>},  {SetOf(FMT_Y16A), kW16, Run<BgraToY16A>},
    {kPlanar420, kW2H2, Run<BgraToI420>},    {SetOf(FMT_NV12), kW2H2, Run<BgraToNv12>},
};

constexpr ConversionPath kFromY444[] = {
    {SetOf(FMT_Y444), kAny, CopyPlanes},
    {SetOf(FMT_BGR), kAny, Run<Y444ToBgr>},
    {SetOf(FMT_BGRA), kAny, Run<Y444ToBgra>},
    {SetOf(FMT_Y400), kAny, CopyLuma},
};

constexpr ConversionPath kFromUyvy[] = {
    {SetOf(FMT_UYVY), kAny, CopyPlanes},     {SetOf(FMT_YUY2), kW2, Run<UyvyToYuy2>},
    {SetOf(FMT_YVYU), kW2, Run<UyvyToYvyu>}, {SetOf(FMT_Y422), kW2, Run<UyvyToY422>},
    {SetOf(FMT_BGR), kW2, Run<UyvyToBgr>},   {SetOf(FMT_BGRA), kW2, Run<UyvyToBgra>},
    {SetOf(FMT_Y16), kW16, Run<UyvyToY16>},  {SetOf(FMT_Y16A), kW16, Run<UyvyToY16A>},
    {kPlanar420, kW2H2, Run<UyvyToI420>},    {SetOf(FMT_NV12), kW2H2, Run<UyvyToNv12>},
};

constexpr ConversionPath kFromYuy2[] = {
    {SetOf(FMT_YUY2), kAny, CopyPlanes},     {SetOf(FMT_UYVY), kW2, Run<Yuy2ToUyvy>},
    {SetOf(FMT_YVYU), kW2, Run<Yuy2ToYvyu>}, {SetOf(FMT_Y422), kW2, Run<Yuy2ToY422>},
    {SetOf(FMT_BGR), kW2, Run<Yuy2ToBgr>},   {SetOf(FMT_BGRA), kW2, Run<Yuy2ToBgra>},
    {SetOf(FMT_Y16), kW16, Run<Yuy2ToY16>},  {SetOf(FMT_Y16A), kW16, Run<Yuy2ToY16A>},
    {kPlanar420, kW2H2, Run<Yuy2ToI420>},    {SetOf(FMT_NV12), kW2H2, Run<Yuy2ToNv12>},
};

constexpr ConversionPath kFromYvyu[] = {
    {SetOf(FMT_YVYU), kAny, CopyPlanes},
    {SetOf(FMT_UYVY), kW2, Run<YvyuToUyvy>},
    {SetOf(FMT_YUY2), kW2, Run<YvyuToYuy2>},
    {SetOf(FMT_Y422), kW2, RunToExchangedChroma<Yuy2ToY422>},
    {SetOf(FMT_BGR), kW2, Run<YvyuToBgr>},
    {SetOf(FMT_BGRA), kW2, Run<YvyuToBgra>},
    {SetOf(FMT_Y16), kW16, Run<YvyuToY16>},
    {SetOf(FMT_Y16A), kW16, Run<YvyuToY16A>},
    {kPlanar420, kW2H2, RunToExchangedChroma<Yuy2ToI420>},
    {SetOf(FMT_NV12), kW2H2, Run<YvyuToNv12>},
};

constexpr ConversionPath kFromY16[] = {
    {SetOf(FMT_Y16), kAny, CopyPlanes},      {SetOf(FMT_Y16A), kW16, Run<Y16ToY16A>},
    {SetOf(FMT_BGR), kW16, Run<Y16ToBgr>},   {SetOf(FMT_BGRA), kW16, Run<Y16ToBgra>},
    {SetOf(FMT_UYVY), kW16, Run<Y16ToUyvy>}, {SetOf(FMT_YUY2), kW16, Run<Y16ToYuy2>},
    {SetOf(FMT_YVYU), kW16, Run<Y16ToYvyu>}, {SetOf(FMT_Y422), kW16, Run<Y16ToY422>},
    {kPlanar420, kW16H2, Run<Y16ToI420>},
};

constexpr ConversionPath kFromY16A[] = {
    {SetOf(FMT_Y16A), kAny, CopyPlanes},      {SetOf(FMT_Y16), kW16, Run<Y16AToY16>},
    {SetOf(FMT_BGR), kW16, Run<Y16AToBgr>},   {SetOf(FMT_BGRA), kW16, Run<Y16AToBgra>},
    {SetOf(FMT_UYVY), kW16, Run<Y16AToUyvy>}, {SetOf(FMT_YUY2), kW16, Run<Y16AToYuy2>},
    {SetOf(FMT_YVYU), kW16, Run<Y16AToYvyu>}, {SetOf(FMT_Y422), kW16, Run<Y16AToY422>},
    {kPlanar420, kW16H2, Run<Y16AToI420>},
};

constexpr ConversionPath kFromY32[] = {
    {SetOf(FMT_Y32), kAny, CopyPlanes},
    {SetOf(FMT_BGR), kW16, Run<Y32ToBgr>},
    {SetOf(FMT_BGRA), kW16, Run<Y32ToBgra>},
};

constexpr ConversionPath kFromY32B[] = {
    {SetOf(FMT_Y32), kAny, CopySecondPicture},
    {SetOf(FMT_BGR), kW16, Run<Y32ToBgr>},
    {SetOf(FMT_BGRA), kW16, Run<Y32ToBgra>},
};

constexpr ConversionPath kFromY32A[] = {
    {SetOf(FMT_Y32A), kAny, CopyPlanes},
    {SetOf(FMT_BGR), kW16, Run<Y32AToBgr>},
    {SetOf(FMT_BGRA), kW16, Run<Y32AToBgra>},
};

constexpr ConversionPath kFromY32AB[] = {
    {SetOf(FMT_Y32A), kAny, CopyPlanes},
    {SetOf(FMT_BGR), kW16, Run<Y32ABToBgr>},
    {SetOf(FMT_BGRA), kW16, Run<Y32ABToBgra>},
};

constexpr ConversionPath kFromY422[] = {
    {SetOf(FMT_Y422), kAny, CopyPlanes},     {SetOf(FMT_BGR), kW2, Run<Y422ToBgr>},
    {SetOf(FMT_BGRA), kW2, Run<Y422ToBgra>}, {SetOf(FMT_UYVY), kW2, Run<Y422ToUyvy>},
    {SetOf(FMT_YUY2), kW2, Run<Y422ToYuy2>}, {SetOf(FMT_YVYU), kW2, RunFromExchangedChroma<Y422ToYuy2>},
    {SetOf(FMT_Y16), kW16, Run<Y422ToY16>},  {SetOf(FMT_Y16A), kW16, Run<Y422ToY16A>},
    {kPlanar420, kW2H2, Run<Y422ToI420>},    {SetOf(FMT_Y400), kW2, CopyLuma},
};

constexpr ConversionPath kFromI420[] = {
    {kPlanar420, kAny, CopyPlanes},
    {SetOf(FMT_BGR), kW2H2, Run<I420ToBgr>},
    {SetOf(FMT_BGRA), kW2H2, Run<I420ToBgra>},
    {SetOf(FMT_UYVY), kW2H2, Run<I420ToUyvy>},
    {SetOf(FMT_YUY2), kW2H2, Run<I420ToYuy2>},
    {SetOf(FMT_YVYU), kW2H2, RunFromExchangedChroma<I420ToYuy2>},
    {SetOf(FMT_Y16), kW16H2, Run<I420ToY16>},
    {SetOf(FMT_Y16A), kW16H2, Run<I420ToY16A>},
    {SetOf(FMT_Y422), kW2H2, Run<I420ToY422>},
    {SetOf(FMT_NV12), kW2H2, Run<I420ToNv12>},
    {SetOf(FMT_Y400), kAny, CopyLuma},
    {SetOf(FMT_S420), kW2H2, Run<I420ToS420>},
    {SetOf(FMT_S422), kW2H2, Run<I420ToS422>},
};

constexpr ConversionPath kFromNv12[] = {
    {SetOf(FMT_NV12), kAny, CopyPlanes},       {SetOf(FMT_BGR), kW2H2, Run<Nv12ToBgr>},
    {SetOf(FMT_BGRA), kW2H2, Run<Nv12ToBgra>}, {SetOf(FMT_UYVY), kW2H2, Run<Nv12ToUyvy>},
    {SetOf(FMT_YUY2), kW2H2, Run<Nv12ToYuy2>}, {SetOf(FMT_YVYU), kW2H2, Run<Nv12ToYvyu>},
    {SetOf(FMT_Y16), kW16H2, Run<Nv12ToY16>},  {SetOf(FMT_I420, FMT_YV12), kW2H2, Run<Nv12ToI420>},
};

constexpr ConversionPath kFromY41P[] = {
    {SetOf(FMT_Y41P), kAny, CopyPlanes},     {SetOf(FMT_BGR), kW8, Run<Y41PToBgr>},
    {SetOf(FMT_BGRA), kW8, Run<Y41PToBgra>}, {SetOf(FMT_UYVY), kW8, Run<Y41PToUyvy>},
    {SetOf(FMT_YUY2), kW8, Run<Y41PToYuy2>}, {SetOf(FMT_YVYU), kW8, Run<Y41PToYvyu>},
    {SetOf(FMT_Y16), kW16, Run<Y41PToY16>},
};

// Neutral chroma makes YVYU and YUY2 the same, and needs no order of planes.
constexpr ConversionPath kFromY400[] = {
    {SetOf(FMT_Y400), kAny, CopyPlanes},
    {SetOf(FMT_BGR), kW2, Run<Y400ToBgr>},
    {SetOf(FMT_Y444), kW2, CopyLumaFillChroma},
    {SetOf(FMT_S400), kW2, Run<Y400ToS400>},
    {SetOf(FMT_UYVY), kW2, Run<Y400ToUyvy>},
    {SetOf(FMT_YUY2, FMT_YVYU), kW2, Run<Y400ToYuy2>},
    {kPlanar420 | SetOf(FMT_NV12), kW2H2, CopyLumaFillChroma},
};

constexpr ConversionPath kFromDv12[] = {
    {SetOf(FMT_BGR), kW16H2, Run<Dv12ToBgr>},   {SetOf(FMT_BGRA), kW16H2, Run<Dv12ToBgra>},
    {SetOf(FMT_UYVY), kW16H2, Run<Dv12ToUyvy>}, {SetOf(FMT_YUY2), kW16H2, Run<Dv12ToYuy2>},
    {SetOf(FMT_YVYU), kW16H2, Run<Dv12ToYvyu>}, {SetOf(FMT_Y16), kW16H2, Run<Dv12ToY16>},
};

constexpr ConversionPath kFromS420[] = {
    {SetOf(FMT_S420, FMT_P420), kAny, CopyPlanes}, {SetOf(FMT_BGR), kW2H2, Run<S420ToBgr>},
    {SetOf(FMT_BGRA), kW2H2, Run<S420ToBgra>},     {SetOf(FMT_UYVY), kW2H2, Run<S420ToUyvy>},
    {SetOf(FMT_YUY2), kW2H2, Run<S420ToYuy2>},     {SetOf(FMT_YVYU), kW2H2, RunFromExchangedChroma<S420ToYuy2>},
    {kPlanar420, kW2H2, Run<S420ToI420>},
};

// The block destinations share the planar kernel, which needs three planes: with the one plane that a block picture has
// the path fails, but it exists.
constexpr ConversionPath kFromS422[] = {
    {SetOf(FMT_S422, FMT_P422), kAny, CopyPlanes},
    {SetOf(FMT_UYVY), kW2, Run<S422ToUyvy>},
    {SetOf(FMT_YUY2), kW2, Run<S422ToYuy2>},
    {SetOf(FMT_YVYU), kW2, RunFromExchangedChroma<S422ToYuy2>},
    {SetOf(FMT_Y422, FMT_Y16, FMT_Y16A, FMT_Y32, FMT_Y32B, FMT_Y32A, FMT_Y32AB), kW2, RunToThreePlanes<S422ToY422>},
};

constexpr ConversionPath kFromP216[] = {
    {SetOf(FMT_P216), kAny, CopyPlanes},     {SetOf(FMT_BGR), kW2, Run<P216ToBgr>},
    {SetOf(FMT_BGRA), kW2, Run<P216ToBgra>}, {SetOf(FMT_UYVY), kW2, Run<P216ToUyvy>},
    {SetOf(FMT_YUY2), kW2, Run<P216ToYuy2>}, {SetOf(FMT_NV12), kW2H2, Run<P216ToNv12>},
};

// The copy fails with IMG_E_BAD_FORMAT: P016 has no geometry that it could go by.
constexpr ConversionPath kFromP016[] = {
    {SetOf(FMT_P016), kAny, CopyPlanes},       {SetOf(FMT_BGR), kW2H2, Run<P016ToBgr>},
    {SetOf(FMT_BGRA), kW2H2, Run<P016ToBgra>}, {SetOf(FMT_UYVY), kW2H2, Run<P016ToUyvy>},
    {SetOf(FMT_YUY2), kW2H2, Run<P016ToYuy2>}, {SetOf(FMT_NV12), kW2H2, Run<P016ToNv12>},
};

constexpr ConversionSource kSources[] = {
    {FMT_BGR, SourceRewrite::None, FMT_BGR, IMG_E_NO_PATH, kFromBgr},
    {FMT_BGRA, SourceRewrite::None, FMT_BGRA, IMG_E_NO_PATH, kFromBgra},
    {FMT_Y444, SourceRewrite::None, FMT_Y444, IMG_E_UNSUPPORTED, kFromY444},
    {FMT_UYVY, SourceRewrite::None, FMT_UYVY, IMG_E_NO_PATH, kFromUyvy},
    {FMT_YUY2, SourceRewrite::None, FMT_YUY2, IMG_E_NO_PATH, kFromYuy2},
    {FMT_YVYU, SourceRewrite::None, FMT_YVYU, IMG_E_NO_PATH, kFromYvyu},
    {FMT_Y16, SourceRewrite::None, FMT_Y16, IMG_E_UNSUPPORTED, kFromY16},
    {FMT_Y16A, SourceRewrite::None, FMT_Y16A, IMG_E_UNSUPPORTED, kFromY16A},
    {FMT_Y32, SourceRewrite::None, FMT_Y32, IMG_E_UNSUPPORTED, kFromY32},
    {FMT_Y32B, SourceRewrite::SecondPicture, FMT_Y32, IMG_E_UNSUPPORTED, kFromY32B},
    {FMT_Y32A, SourceRewrite::None, FMT_Y32A, IMG_E_UNSUPPORTED, kFromY32A},
    {FMT_Y32AB, SourceRewrite::None, FMT_Y32AB, IMG_E_UNSUPPORTED, kFromY32AB},
    {FMT_Y422, SourceRewrite::None, FMT_Y422, IMG_E_UNSUPPORTED, kFromY422},
    {FMT_I420, SourceRewrite::None, FMT_I420, IMG_E_UNSUPPORTED, kFromI420},
    {FMT_YV12, SourceRewrite::ExchangeChroma, FMT_I420, IMG_E_UNSUPPORTED, kFromI420},
    {FMT_IMC1, SourceRewrite::ExchangeChroma, FMT_I420, IMG_E_UNSUPPORTED, kFromI420},
    {FMT_IMC2, SourceRewrite::ExchangeChroma, FMT_I420, IMG_E_UNSUPPORTED, kFromI420},
    {FMT_IMC3, SourceRewrite::RelabelFirst, FMT_I420, IMG_E_UNSUPPORTED, kFromI420},
    {FMT_IMC4, SourceRewrite::RelabelFirst, FMT_I420, IMG_E_UNSUPPORTED, kFromI420},
    {FMT_NV12, SourceRewrite::None, FMT_NV12, IMG_E_UNSUPPORTED, kFromNv12},
    {FMT_Y41P, SourceRewrite::None, FMT_Y41P, IMG_E_UNSUPPORTED, kFromY41P},
    {FMT_Y400, SourceRewrite::None, FMT_Y400, IMG_E_UNSUPPORTED, kFromY400},
    {FMT_DV12, SourceRewrite::None, FMT_DV12, IMG_E_UNSUPPORTED, kFromDv12},
    {FMT_S420, SourceRewrite::None, FMT_S420, IMG_E_UNSUPPORTED, kFromS420},
    {FMT_S422, SourceRewrite::None, FMT_S422, IMG_E_UNSUPPORTED, kFromS422},
    {FMT_P420, SourceRewrite::Relabel, FMT_S420, IMG_E_UNSUPPORTED, kFromS420},
    {FMT_P422, SourceRewrite::Relabel, FMT_S422, IMG_E_UNSUPPORTED, kFromS422},
    {FMT_P216, SourceRewrite::None, FMT_P216, IMG_E_UNSUPPORTED, kFromP216},
    {FMT_P016, SourceRewrite::None, FMT_P016, IMG_E_UNSUPPORTED, kFromP016},
    // Formats that stand in the tables only.
    {FMT_AYUV, SourceRewrite::None, FMT_AYUV, IMG_E_UNSUPPORTED, {}},
    {FMT_NV11, SourceRewrite::None, FMT_NV11, IMG_E_UNSUPPORTED, {}},
    {FMT_YVU9, SourceRewrite::None, FMT_YVU9, IMG_E_UNSUPPORTED, {}},
};

}  // namespace

const ConversionSource* FindConversionSource(std::uint32_t format) {
    const auto* const found =
        std::find_if(std::begin(kSources), std::end(kSources), [&](const auto& s) { return s.format == format; });
    return found != std::end(kSources) ? found : nullptr;
}

}  // namespace KorvaneSoftware
