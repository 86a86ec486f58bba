// Changes of size as a caller asks for them, beside libyuv's box filter and swscale's area and bilinear filters, and
// each primitive form by form on a line of a 1080-line frame.
#include <memory>
#include <string>

#include "bench.h"
#include "convert/conversion_dispatch.h"
#include "resize/image_converter.h"
#include "resize/resample_rows.h"
#include "resize/row_plans.h"

#ifdef PIXMORPH_HAVE_LIBYUV
#include <libyuv.h>
#endif
#ifdef PIXMORPH_HAVE_SWSCALE
extern "C" {
#include <libswscale/swscale.h>
}
#endif

namespace pixmorph_bench {
namespace {

using namespace KorvaneSoftware;

struct Change {
    const char* group;
    std::uint32_t format;
    std::uint32_t srcWidth, srcHeight, dstWidth, dstHeight;
};

constexpr Change kChanges[] = {
    {"ResizeUyvy1080To720", FMT_UYVY, 1920, 1080, 1280, 720},
    {"ResizeUyvy1080To540", FMT_UYVY, 1920, 1080, 960, 540},
    {"ResizeUyvy576To1080", FMT_UYVY, 720, 576, 1920, 1080},
    {"ResizeUyvy1080To576", FMT_UYVY, 1920, 1080, 720, 576},
    {"ResizeUyvy720To1080", FMT_UYVY, 1280, 720, 1920, 1080},
    {"ResizeI420_1080To540", FMT_I420, 1920, 1080, 960, 540},
    {"ResizeI420_1080To720", FMT_I420, 1920, 1080, 1280, 720},
    {"ResizeI420_1080To360", FMT_I420, 1920, 1080, 640, 360},
    {"ResizeI420_720To1080", FMT_I420, 1280, 720, 1920, 1080},
    {"ResizeNv12_1080To720", FMT_NV12, 1920, 1080, 1280, 720},
    {"ResizeBgra1080To720", FMT_BGRA, 1920, 1080, 1280, 720},
    {"ResizeBgra1080To540", FMT_BGRA, 1920, 1080, 960, 540},
    {"ResizeBgra720To1080", FMT_BGRA, 1280, 720, 1920, 1080},
    {"ResizeBgr1080To720", FMT_BGR, 1920, 1080, 1280, 720},
};

void AddChange(const Change& change, const char* variant, PictureFunction function) {
    AddResize(change.group, variant, change.format, change.dstWidth, change.dstHeight, change.srcWidth,
              change.srcHeight, std::move(function));
}

/// The whole library restricted to the features of a level, and set free again.
void AddLevel(const Change& change, const char* variant, std::uint32_t features) {
    if ((EnabledFeatures() & features) != features) return;
    std::shared_ptr<CImageConverter> converter(CreateImageConverter(), ReleaseImageConverter());
    converter->SetConverter(&ImageConversionDispatch);
    AddChange(change, variant, [converter, features](const ImageDescriptor& dst, const ImageDescriptor& src) {
        if (features != FEATURES_AVX512BW) RestrictFeatures(features);
        ImageDescriptor to = dst;
        converter->Convert(&to, &src);
        if (features != FEATURES_AVX512BW) RestrictFeatures(0xFFFFFFFF);
    });
}

#ifdef PIXMORPH_HAVE_LIBYUV
void AddLibyuv(const Change& change) {
    if (change.format == FMT_I420) {
        AddChange(change, "libyuv", [](const ImageDescriptor& dst, const ImageDescriptor& src) {
            const auto stride = [](const ImageDescriptor& d, int i) { return static_cast<int>(d.strides[i]); };
            libyuv::I420Scale(src.planes[0], stride(src, 0), src.planes[1], stride(src, 1), src.planes[2],
                              stride(src, 2), static_cast<int>(src.width), static_cast<int>(src.height), dst.planes[0],
                              stride(dst, 0), dst.planes[1], stride(dst, 1), dst.planes[2], stride(dst, 2),
                              static_cast<int>(dst.width), static_cast<int>(dst.height), libyuv::kFilterBox);
        });
    } else if (change.format == FMT_BGRA) {
        AddChange(change, "libyuv", [](const ImageDescriptor& dst, const ImageDescriptor& src) {
            libyuv::ARGBScale(src.planes[0], static_cast<int>(src.strides[0]), static_cast<int>(src.width),
                              static_cast<int>(src.height), dst.planes[0], static_cast<int>(dst.strides[0]),
                              static_cast<int>(dst.width), static_cast<int>(dst.height), libyuv::kFilterBox);
        });
    }
}
#endif

#ifdef PIXMORPH_HAVE_SWSCALE
AVPixelFormat PeerFormat(std::uint32_t format) {
    switch (format) {
        case FMT_UYVY:
            return AV_PIX_FMT_UYVY422;
        case FMT_I420:
            return AV_PIX_FMT_YUV420P;
        case FMT_NV12:
            return AV_PIX_FMT_NV12;
        case FMT_BGRA:
            return AV_PIX_FMT_BGRA;
        default:
            return AV_PIX_FMT_BGR24;
    }
}

void AddSwscale(const Change& change, const char* variant, int flags) {
    const AVPixelFormat format = PeerFormat(change.format);
    std::shared_ptr<SwsContext> context(
        sws_getContext(static_cast<int>(change.srcWidth), static_cast<int>(change.srcHeight), format,
                       static_cast<int>(change.dstWidth), static_cast<int>(change.dstHeight), format, flags, nullptr,
                       nullptr, nullptr),
        &sws_freeContext);
    AddChange(change, variant, [context](const ImageDescriptor& dst, const ImageDescriptor& src) {
        const std::uint8_t* in[4] = {src.planes[0], src.planes[1], src.planes[2], nullptr};
        const int inStride[4] = {static_cast<int>(src.strides[0]), static_cast<int>(src.strides[1]),
                                 static_cast<int>(src.strides[2]), 0};
        std::uint8_t* const out[4] = {dst.planes[0], dst.planes[1], dst.planes[2], nullptr};
        const int outStride[4] = {static_cast<int>(dst.strides[0]), static_cast<int>(dst.strides[1]),
                                  static_cast<int>(dst.strides[2]), 0};
        sws_scale(context.get(), in, inStride, 0, static_cast<int>(src.height), out, outStride);
    });
}
#endif

/// One line, in the cache.
template <class Slot, class Call>
void AddSlot(const Slot& slot, const std::string& what, std::size_t pixels, std::size_t bytes, Call call) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const function = slot.Row(row).function;
        Add({std::string(slot.Name()) + what, VariantLabel(slot, row), static_cast<double>(pixels),
             static_cast<double>(bytes),
             [function, call](Regime, std::size_t) {
                 call(function, ArenaData(Arena::Destination), ArenaData(Arena::Source));
             },
             true});
    });
}

void AddRow(const RowSlot& slot, const char* what, LineKind kind, std::uint32_t srcWidth, std::uint32_t dstWidth) {
    const auto rowPlans = std::make_shared<RowPlans>();
    const RowPlan plan = rowPlans->Find(kind, srcWidth, dstWidth);
    AddSlot(slot, what, dstWidth, LineBytes(kind, srcWidth) + LineBytes(kind, dstWidth),
            [rowPlans, plan](auto* function, std::uint8_t* dst, const std::uint8_t* src) { function(dst, src, plan); });
}

void AddRows() {
    AddRow(LinearRow8, "Uyvy720To1920", LineKind::Uyvy, 720, 1920);
    AddRow(LinearRow8, "Planar1280To1920", LineKind::Planar, 1280, 1920);
    AddRow(LinearRow16, "_1280To1920", LineKind::Words, 1280, 1920);
    AddRow(MeanRow8, "Uyvy1920To960", LineKind::Uyvy, 1920, 960);
    AddRow(MeanRow8, "Bgr1920To960", LineKind::Bgr, 1920, 960);
    AddRow(MeanRow16, "_1920To960", LineKind::Words, 1920, 960);
    AddRow(AreaRow8, "Uyvy1920To1280", LineKind::Uyvy, 1920, 1280);
    AddRow(AreaRow8, "Uyvy1920To720", LineKind::Uyvy, 1920, 720);
    AddRow(AreaRow8, "Bgr1920To1280", LineKind::Bgr, 1920, 1280);
    AddRow(AreaRow8, "Planar1000To960Wide", LineKind::Planar, 1998, 1996);
    AddRow(AreaRow16, "_1920To1280", LineKind::Words, 1920, 1280);
    constexpr std::size_t kLine = 3840;
    RowPlans rowPlans;
    const RowPlan half = rowPlans.Find(LineKind::Planar, kLine, kLine / 2);  // Halving bytes goes without tables.
    AddSlot(
        HalveRows8, "", kLine / 2, 5 * kLine / 2,
        [half](auto* function, std::uint8_t* dst, const std::uint8_t* src) { function(dst, src, src + kLine, half); });
    const auto mean = [](auto* function, std::uint8_t* dst, const std::uint8_t* src) {
        function(dst, src, src + kLine, kLine / 2);
    };
    AddSlot(MeanRows8, "", kLine / 2, 3 * kLine / 2, mean);
    AddSlot(MeanRows16, "", kLine / 2, 3 * kLine, mean);
    const auto linear = [](auto* function, std::uint8_t* dst, const std::uint8_t* src) {
        function(dst, src, src + kLine, kLine / 2, 20000);
    };
    AddSlot(LinearRows8, "", kLine / 2, 3 * kLine / 2, linear);
    AddSlot(LinearRows16, "", kLine / 2, 3 * kLine, linear);
    const auto area = [](std::uint32_t source, std::uint32_t dest) {
        return [span = AreaSpanOf(source, dest, 0), scale = MakeAreaScale(source, dest)](
                   auto* function, std::uint8_t* dst, const std::uint8_t* src) {
            function(dst, src, kLine, kLine / 2, span, scale);
        };
    };
    AddSlot(AreaRows8, "_3To2", kLine / 2, 3 * kLine / 2, area(1080, 720));
    AddSlot(AreaRows8, "_15To8", kLine / 2, 2 * kLine, area(1080, 576));
    AddSlot(AreaRows8, "_1080To719", kLine / 2, 3 * kLine / 2, area(1080, 719));
    AddSlot(AreaRows16, "_3To2", kLine / 2, 3 * kLine, area(1080, 720));
}

const bool kAdded = [] {
    for (const Change& change : kChanges) {
        AddLevel(change, "plain", FEATURES_PLAIN);
        AddLevel(change, "pixmorph_sse41", FEATURES_SSE41);
        AddLevel(change, "pixmorph_avx2", FEATURES_AVX2);
        AddLevel(change, "pixmorph", FEATURES_AVX512BW);
#ifdef PIXMORPH_HAVE_LIBYUV
        AddLibyuv(change);
#endif
#ifdef PIXMORPH_HAVE_SWSCALE
        AddSwscale(change, "swscale_area", SWS_AREA);
        AddSwscale(change, "swscale_bilinear", SWS_BILINEAR);
#endif
    }
    AddRows();
    return true;
}();

}  // namespace
}  // namespace pixmorph_bench
