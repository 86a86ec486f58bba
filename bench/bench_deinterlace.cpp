// Fields and deinterlacing at 1080 lines: the line primitives, and whole sequences beside the same filter of a peer
// with the same number of threads.
#include <array>
#include <memory>

#include "bench.h"
#include "deinterlace/blend_lines.h"
#include "deinterlace/deinterlace_filter_yadif.h"
#include "deinterlace/field_restoration.h"
#include "deinterlace/line_filter.h"
#include "deinterlace/restoration_lines.h"

#ifdef PIXMORPH_HAVE_AVFILTER
extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}
#include <cstdio>
#include <cstdlib>
#include <cstring>
#endif

namespace pixmorph_bench {
namespace {

constexpr std::size_t kFieldLines = kHeight / 2;
constexpr double kFieldPixels = double{kWidth} * kFieldLines;

// Rebuilds every other line of a frame.
void AddLineFilter(const km::FilterLineSlot& slot, std::size_t bytesPerPixel) {
    const std::size_t stride = kWidth * bytesPerPixel;
    const std::size_t frame = stride * kHeight;
    ForEachRunnableRow(slot, [&, stride, frame](std::size_t row) {
        auto* const filter = slot.Row(row).function;
        Add({slot.Name(), VariantLabel(slot, row), kFieldPixels, 3.0 * static_cast<double>(frame),
             [filter, stride, frame](Regime regime, std::size_t i) {
                 const std::uint8_t* const previous = Slice(Arena::Source, regime, frame, i);
                 const std::uint8_t* const current = Slice(Arena::Source2, regime, frame, i);
                 const std::uint8_t* const next = Slice(Arena::Source3, regime, frame, i);
                 std::uint8_t* const dst = Slice(Arena::Destination, regime, frame, i);
                 for (std::size_t line = 3; line + 3 < kHeight; line += 2) {
                     const std::size_t offset = line * stride;
                     filter(dst + offset,
                            {current + offset, previous + offset, next + offset, previous + offset, current + offset,
                             static_cast<std::ptrdiff_t>(stride)},
                            kWidth, true);
                 }
             }});
    });
}

void AddRestoreLine(const km::RestoreLineSlot& slot, std::size_t groupBytes) {
    constexpr std::size_t kGroups = kWidth / km::kGroupPixels;
    const std::size_t stride = kGroups * groupBytes;
    const std::size_t field = stride * kFieldLines;
    ForEachRunnableRow(slot, [&, stride, field](std::size_t row) {
        auto* const restore = slot.Row(row).function;
        Add({slot.Name(), VariantLabel(slot, row), kFieldPixels, 3.0 * static_cast<double>(field) + 4 * kFieldPixels,
             [restore, stride, field](Regime regime, std::size_t i) {
                 const std::uint8_t* const previous = Slice(Arena::Source, regime, field, i);
                 const std::uint8_t* const next = Slice(Arena::Source2, regime, field, i);
                 const std::uint8_t* const present = Slice(Arena::Source3, regime, field, i);
                 std::uint8_t* const dst = Slice(Arena::Destination, regime, 4 * kWidth * kFieldLines, i);
                 for (std::size_t line = 0; line + 1 < kFieldLines; ++line) {
                     const std::size_t offset = line * stride;
                     restore(dst + line * 4 * kWidth,
                             {previous + offset, next + offset, present + offset, present + offset + stride}, kGroups,
                             {10, 60});
                 }
             }});
    });
}

void AddPresentLine(const km::PresentLineSlot& slot, std::size_t groupBytes) {
    constexpr std::size_t kGroups = kWidth / km::kGroupPixels;
    const std::size_t stride = kGroups * groupBytes;
    const std::size_t field = stride * kFieldLines;
    ForEachRunnableRow(slot, [&, stride, field](std::size_t row) {
        auto* const convert = slot.Row(row).function;
        Add({slot.Name(), VariantLabel(slot, row), kFieldPixels, static_cast<double>(field) + 4 * kFieldPixels,
             [convert, stride, field](Regime regime, std::size_t i) {
                 const std::uint8_t* const src = Slice(Arena::Source, regime, field, i);
                 std::uint8_t* const dst = Slice(Arena::Destination, regime, 4 * kWidth * kFieldLines, i);
                 for (std::size_t line = 0; line < kFieldLines; ++line)
                     convert(dst + line * 4 * kWidth, src + line * stride, kGroups);
             }});
    });
}

void AddBlends() {
    constexpr std::size_t kPlane = std::size_t{kWidth} * kHeight;
    ForEachRunnableRow(km::CombineLine, [](std::size_t row) {
        auto* const combine = km::CombineLine.Row(row).function;
        Add({km::CombineLine.Name(), VariantLabel(km::CombineLine, row), kPlane, 3.0 * kPlane,
             [combine](Regime regime, std::size_t i) {
                 for (std::size_t offset = 0; offset < kPlane; offset += kWidth)
                     combine(Slice(Arena::Destination, regime, kPlane, i) + offset,
                             Slice(Arena::Source, regime, kPlane, i) + offset,
                             Slice(Arena::Source2, regime, kPlane, i) + offset, kWidth, 77);
             }});
    });
    ForEachRunnableRow(km::InterpolateLine, [](std::size_t row) {
        auto* const interpolate = km::InterpolateLine.Row(row).function;
        Add({km::InterpolateLine.Name(), VariantLabel(km::InterpolateLine, row), kPlane, 3.0 * kPlane,
             [interpolate](Regime regime, std::size_t i) {
                 const std::uint8_t* const other = Slice(Arena::Source2, regime, kPlane, i);
                 for (std::size_t offset = 0; offset + kWidth < kPlane; offset += kWidth)
                     interpolate(Slice(Arena::Destination, regime, kPlane, i) + offset,
                                 Slice(Arena::Source, regime, kPlane, i) + offset, other + offset,
                                 other + offset + kWidth, kWidth, 77);
             }});
    });
}

// A frame from three fields.
void AddRestoration(const char* group, std::size_t groupBytes,
                    km::Status (*restore)(const km::FieldRestorationJob& job) noexcept) {
    const std::size_t stride = kWidth / km::kGroupPixels * groupBytes;
    const std::size_t field = stride * kFieldLines;
    constexpr std::size_t kFrame = std::size_t{4} * kWidth * kHeight;
    Add({group, "pixmorph", double{kWidth} * kHeight, static_cast<double>(3 * field + kFrame),
         [=](Regime regime, std::size_t i) {
             restore({Slice(Arena::Destination, regime, kFrame, i), Slice(Arena::Source, regime, field, i),
                      Slice(Arena::Source2, regime, field, i), Slice(Arena::Source3, regime, field, i), kWidth,
                      kFieldLines, static_cast<std::int32_t>(4 * kWidth), static_cast<std::int32_t>(stride), 10, 60});
         }});
}

constexpr std::size_t kSequence = 6;

km::ImageDescriptor SequenceFrame(Arena arena, std::uint32_t format, std::size_t index) {
    return FrameIn(arena, Regime::Cold, format, kWidth, kHeight, index % kSequence);
}

struct ReleaseFilter {
    void operator()(km::CDeinterlaceFilterYADIF* filter) const { filter->Release(); }
};
using Filter = std::shared_ptr<km::CDeinterlaceFilterYADIF>;

// A filter is made at the first frame, so that only what is timed has threads.
Filter NewFilter(std::uint32_t format, std::uint32_t threads) {
    Filter filter(new km::CDeinterlaceFilterYADIF, ReleaseFilter());
    filter->Initialize({threads, 0, 0, 0});
    for (std::size_t i = 0; i < 3; ++i) filter->SetSourceFrame(SequenceFrame(Arena::Source, format, i), 5);
    return filter;
}

void AddSequence(const std::string& what, std::uint32_t format, std::uint32_t threads) {
    km::ImageDescriptor shape{{format, kWidth, kHeight}};
    const auto bytes = static_cast<double>(km::ImageBufferSize(&shape));
    const std::string suffix = std::to_string(threads);
    const auto filter = std::make_shared<Filter>();
    Add({"GetFrame" + what, "pixmorph" + suffix, double{kWidth} * kHeight, 4 * bytes,
         [=](Regime, std::size_t i) {
             if (!*filter) *filter = NewFilter(format, threads);
             (*filter)->GetFrame(SequenceFrame(Arena::Destination, format, i), 0);
         },
         true});
    Add({"Deinterlace" + what + "x" + suffix, "pixmorph" + suffix, double{kWidth} * kHeight, 6 * bytes,
         [=](Regime, std::size_t i) {
             if (!*filter) *filter = NewFilter(format, threads);
             (*filter)->SetSourceFrame(SequenceFrame(Arena::Source, format, i), 5);
             (*filter)->GetFrame(SequenceFrame(Arena::Destination, format, i), 0);
         },
         true});
}

#ifdef PIXMORPH_HAVE_AVFILTER

/// buffer -> yadif -> buffersink over frames that are made once.
class PeerFilter {
public:
    explicit PeerFilter(int threads) : graph_(avfilter_graph_alloc()) {
        graph_->nb_threads = threads;
        char arguments[128];
        std::snprintf(arguments, sizeof(arguments), "video_size=%ux%u:pix_fmt=yuv422p:time_base=1/25:pixel_aspect=1/1",
                      kWidth, kHeight);
        AVFilterContext* yadif = nullptr;
        Check(avfilter_graph_create_filter(&source_, avfilter_get_by_name("buffer"), "in", arguments, nullptr, graph_));
        Check(avfilter_graph_create_filter(&yadif, avfilter_get_by_name("yadif"), "yadif",
                                           "mode=send_frame:parity=tff:deint=all", nullptr, graph_));
        Check(
            avfilter_graph_create_filter(&sink_, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, graph_));
        Check(avfilter_link(source_, 0, yadif, 0));
        Check(avfilter_link(yadif, 0, sink_, 0));
        Check(avfilter_graph_config(graph_, nullptr));
        for (std::size_t i = 0; i < kSequence; ++i) frames_[i] = MakeFrame(i);
        received_ = av_frame_alloc();
        for (std::size_t i = 0; i < 3; ++i) Next(i);
    }
    ~PeerFilter() {
        avfilter_graph_free(&graph_);
        for (AVFrame*& frame : frames_) av_frame_free(&frame);
        av_frame_free(&received_);
    }
    PeerFilter(const PeerFilter&) = delete;
    PeerFilter& operator=(const PeerFilter&) = delete;

    void Next(std::size_t i) {
        AVFrame* const frame = frames_[i % kSequence];
        frame->pts = pts_++;
        Check(av_buffersrc_write_frame(source_, frame));
        while (av_buffersink_get_frame(sink_, received_) >= 0) av_frame_unref(received_);
    }

private:
    static void Check(int result) {
        if (result >= 0) return;
        std::fprintf(stderr, "the peer's filter graph failed: %d\n", result);
        std::exit(1);
    }
    static AVFrame* MakeFrame(std::size_t index) {
        AVFrame* const frame = av_frame_alloc();
        frame->format = AV_PIX_FMT_YUV422P;
        frame->width = static_cast<int>(kWidth);
        frame->height = static_cast<int>(kHeight);
        Check(av_frame_get_buffer(frame, 0));
        const km::ImageDescriptor source = SequenceFrame(Arena::Source, km::FMT_Y422, index);
        for (int plane = 0; plane < 3; ++plane)
            for (std::int64_t y = 0; y < std::int64_t{kHeight}; ++y)
                std::memcpy(frame->data[plane] + y * frame->linesize[plane],
                            source.planes[plane] + y * source.strides[plane], plane == 0 ? kWidth : kWidth / 2);
        return frame;
    }

    AVFilterGraph* graph_;
    AVFilterContext* source_ = nullptr;
    AVFilterContext* sink_ = nullptr;
    std::array<AVFrame*, kSequence> frames_{};
    AVFrame* received_ = nullptr;
    std::int64_t pts_ = 0;
};

void AddPeer(int threads) {
    km::ImageDescriptor shape{{km::FMT_Y422, kWidth, kHeight}};
    const auto peer = std::make_shared<std::unique_ptr<PeerFilter>>();
    Add({"DeinterlaceY422x" + std::to_string(threads), "yadif" + std::to_string(threads), double{kWidth} * kHeight,
         4.0 * static_cast<double>(km::ImageBufferSize(&shape)),
         [=](Regime, std::size_t i) {
             if (!*peer) *peer = std::make_unique<PeerFilter>(threads);
             (*peer)->Next(i);
         },
         true});
}

#endif

const bool kAdded = [] {
    AddLineFilter(km::FilterPlaneLine, 1);
    AddLineFilter(km::FilterUyvyLine, 2);
    AddLineFilter(km::FilterYuy2Line, 2);
    AddBlends();
    AddRestoreLine(km::RestoreLineY16, km::kY16GroupBytes);
    AddRestoreLine(km::RestoreLineY16A, km::kY16AGroupBytes);
    AddPresentLine(km::PresentLineY16, km::kY16GroupBytes);
    AddPresentLine(km::PresentLineY16A, km::kY16AGroupBytes);
    AddRestoration("RestoreLowerField", km::kY16GroupBytes, km::CDeinterlacer::RestoreLowerField);
    AddRestoration("RestoreLowerFieldAlpha", km::kY16AGroupBytes, km::CDeinterlacer::RestoreLowerFieldAlpha);
    for (const std::uint32_t threads : {1u, 2u}) {
        AddSequence("Y422", km::FMT_Y422, threads);
        AddSequence("Uyvy", km::FMT_UYVY, threads);
#ifdef PIXMORPH_HAVE_AVFILTER
        AddPeer(static_cast<int>(threads));
#endif
    }
    return true;
}();

}  // namespace
}  // namespace pixmorph_bench
