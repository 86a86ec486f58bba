// The DV family: its kernels, and whole frames beside a peer's codec with the same number of threads.
#include <cmath>
#include <memory>
#include <vector>

#include "bench.h"
#include "codec/inward_codec.h"
#include "codec/samples.h"
#include "dv/dv_codecs.h"
#include "dv/dv_kernels.h"
#include "dv/dv_samples.h"

#ifdef PIXMORPH_HAVE_AVCODEC
extern "C" {
#include <libavcodec/avcodec.h>
}
#include <cstdio>
#include <cstdlib>
#include <cstring>
#endif

namespace pixmorph_bench {
namespace {

constexpr std::size_t kBlocks = 1024;
constexpr std::size_t kBlockBytes = 64 * sizeof(std::int16_t);
constexpr double kBlockPixels = 64.0 * kBlocks;

std::int16_t* BlocksIn(Arena arena, Regime regime, std::size_t i) {
    return reinterpret_cast<std::int16_t*>(Slice(arena, regime, kBlocks * kBlockBytes, i));
}

// Calls `one(form, destination, source, block number)` for many blocks.
template <class Slot, class One>
void AddBlockKernel(const Slot& slot, One one) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const form = slot.Row(row).function;
        Add({slot.Name(), VariantLabel(slot, row), kBlockPixels, 2.0 * kBlocks * kBlockBytes,
             [form, one](Regime regime, std::size_t i) {
                 std::int16_t* const dst = BlocksIn(Arena::Destination, regime, i);
                 const std::int16_t* const src = BlocksIn(Arena::Source, regime, i);
                 for (std::size_t b = 0; b < kBlocks; ++b) one(form, dst + 64 * b, src + 64 * b);
             }});
    });
}

constexpr std::size_t kStride = 1440;
constexpr std::size_t kPicture = kStride * 576;

template <class Slot>
void AddSampleKernel(const Slot& slot, bool isReader) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const form = slot.Row(row).function;
        Add({slot.Name(), VariantLabel(slot, row), 720.0 * 576, 3.0 * kPicture,
             [form, isReader](Regime regime, std::size_t i) {
                 std::uint8_t* const picture =
                     Slice(isReader ? Arena::Source : Arena::Destination, regime, kPicture, i);
                 alignas(64) static std::int16_t blocks[4 * 64];
                 for (std::size_t y = 0; y < 576; y += 8)
                     for (std::size_t x = 0; x < kStride; x += 32) {
                         std::uint8_t* const pixels = picture + y * kStride + x;
                         if constexpr (std::is_same_v<Slot, km::DispatchSlot<km::DvReadSignature>>)
                             form(blocks, blocks + 64, blocks + 128, blocks + 192, pixels, kStride);
                         else
                             form(pixels, kStride, blocks, blocks + 64, blocks + 128, blocks + 192);
                     }
             }});
    });
}

// What an application encodes: shapes, shades and some grain, moving.
struct Sample {
    std::uint8_t y, u, v;
};
Sample SampleAt(unsigned x, unsigned y, unsigned frame) {
    const double fx = x + 3.0 * frame, fy = y;
    const double shade = 128 + 60 * std::sin(fx / 37) * std::cos(fy / 29) + 30 * std::sin((fx + 2 * fy) / 9);
    const bool isShape = std::fmod(fx, 160) < 60 && std::fmod(fy, 120) < 50;
    const unsigned grain = (x * 1103515245u + y * 12345u + frame * 2654435761u) >> 7 & 7;
    const double luma = (isShape ? 255 - shade : shade) + grain;
    return {static_cast<std::uint8_t>(std::fmin(235, std::fmax(16, luma))),
            static_cast<std::uint8_t>(128 + 50 * std::sin(fx / 83)),
            static_cast<std::uint8_t>(128 + 50 * std::cos(fy / 71))};
}

constexpr unsigned kFrames = 4;

struct Subject {
    const char* name;
    km::IBasicInterface* (*createEncoder)();
    km::IBasicInterface* (*createDecoder)();
    std::uint32_t kind, width, height;
    std::size_t frameBytes;
    bool is420;
};
constexpr Subject kSubjects[] = {
    {"Kvdv576", &km::CreateDVEncoder, &km::CreateDVDecoder, km::CODEC_DV, 720, 576, 144000, true},
    {"Kv50_576", &km::CreateDVCPRO50Encoder, &km::CreateDVCPRO50Decoder, km::CODEC_DVCPRO50, 720, 576, 288000, false},
    {"Kvh1_1080", &km::CreateDVCPRO100Encoder50Hz, &km::CreateDVCPRO100Decoder, km::CODEC_DVCPRO100, 1440, 1080, 576000,
     false},
};

km::CodedFormat FormatOf(const Subject& subject) {
    km::CodedFormat format;
    format.kind = subject.kind;
    format.width = subject.width;
    format.height = subject.height;
    return format;
}

std::vector<std::uint8_t> UyvyPicture(const Subject& subject, unsigned frame) {
    std::vector<std::uint8_t> bytes(std::size_t{2} * subject.width * subject.height);
    for (unsigned y = 0; y < subject.height; ++y)
        for (unsigned x = 0; x < subject.width; x += 2) {
            std::uint8_t* const to = bytes.data() + std::size_t{2} * (y * subject.width + x);
            const Sample left = SampleAt(x, y, frame);
            to[0] = left.u;
            to[1] = left.y;
            to[2] = left.v;
            to[3] = SampleAt(x + 1, y, frame).y;
        }
    return bytes;
}

// Pictures and frames of a subject, made once.
struct Material {
    explicit Material(const Subject& subject) : format(FormatOf(subject)), size(subject.frameBytes) {
        for (unsigned i = 0; i < kFrames; ++i) {
            pictures.push_back(UyvyPicture(subject, i));
            frames.emplace_back(size);
        }
    }
    void Attach(km::CVideoSample& sample, std::vector<std::uint8_t>& picture) const {
        km::ImageDescriptor& image = *sample.GetImage();
        image.format = km::FMT_UYVY;
        image.width = format.width;
        image.height = format.height;
        km::ImageSetPlanes(&image, picture.data(), std::int64_t{2} * format.width);
    }

    km::CodedFormat format;
    std::size_t size;
    std::vector<std::vector<std::uint8_t>> pictures;
    std::vector<std::vector<std::uint8_t>> frames;
};

template <class View>
std::shared_ptr<View> ViewOf(km::IBasicInterface* object, const GUID& id) {
    void* view = nullptr;
    object->QueryInterface(id, &view);
    return std::shared_ptr<View>(static_cast<View*>(view), [object](View*) {
        object->Release();
        object->Release();
    });
}

void AddOurs(const Subject& subject, std::uint32_t threads) {
    const double pixels = double{1} * subject.width * subject.height;
    const double bytes = 2 * pixels + static_cast<double>(subject.frameBytes);
    const std::string variant = "pixmorph_" + std::to_string(threads);
    struct State {
        std::unique_ptr<Material> material;
        std::shared_ptr<km::IVideoEncoder> encoder;
        std::shared_ptr<km::IVideoDecoder> decoder;
    };
    const auto state = std::make_shared<State>();
    const auto encode = [=](std::size_t i) {
        km::CMediaSample coded;
        km::CVideoSample picture;
        std::vector<std::uint8_t>& frame = state->material->frames[i % kFrames];
        coded.SetBuffer(frame.data(), frame.size());
        state->material->Attach(picture, state->material->pictures[i % kFrames]);
        state->encoder->Encode(&coded, &picture);
    };
    const auto ready = [=, &subject] {
        if (state->material != nullptr) return;
        state->material = std::make_unique<Material>(subject);
        const km::CodecOptions options{threads, 0, 0};
        state->encoder = ViewOf<km::IVideoEncoder>(subject.createEncoder(), km::IID_InwardVideoEncoder);
        state->encoder->Initialize(&state->material->format, &options);
        state->decoder = ViewOf<km::IVideoDecoder>(subject.createDecoder(), km::IID_InwardVideoDecoder);
        state->decoder->Initialize(&state->material->format, &options);
        for (unsigned i = 0; i < kFrames; ++i) encode(i);
    };
    Add({std::string(subject.name) + "Encode", variant, pixels, bytes,
         [=](Regime, std::size_t i) {
             ready();
             encode(i);
         },
         true});
    Add({std::string(subject.name) + "Decode", variant, pixels, bytes,
         [=](Regime, std::size_t i) {
             ready();
             km::CMediaSample coded;
             km::CVideoSample picture;
             std::vector<std::uint8_t>& frame = state->material->frames[i % kFrames];
             coded.SetBuffer(frame.data(), frame.size());
             coded.AddDataSize(frame.size());
             static std::vector<std::uint8_t> output;
             output.resize(state->material->pictures[0].size());
             state->material->Attach(picture, output);
             state->decoder->Decode(&picture, &coded);
         },
         true});
}

#ifdef PIXMORPH_HAVE_AVCODEC

std::vector<std::vector<std::uint8_t>> CodedFrames(const Subject& subject) {
    Material material(subject);
    const auto encoder = ViewOf<km::IVideoEncoder>(subject.createEncoder(), km::IID_InwardVideoEncoder);
    const km::CodecOptions options{1, 0, 0};
    encoder->Initialize(&material.format, &options);
    for (unsigned i = 0; i < kFrames; ++i) {
        km::CMediaSample coded;
        km::CVideoSample picture;
        coded.SetBuffer(material.frames[i].data(), material.frames[i].size());
        material.Attach(picture, material.pictures[i]);
        encoder->Encode(&coded, &picture);
    }
    return material.frames;
}

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "libavcodec: %s\n", what);
    std::exit(1);
}

class Peer {
public:
    Peer(const Subject& subject, int threads) {
        encoder_ = Open(avcodec_find_encoder(AV_CODEC_ID_DVVIDEO), subject, threads);
        decoder_ = Open(avcodec_find_decoder(AV_CODEC_ID_DVVIDEO), subject, threads);
        packet_ = av_packet_alloc();
        output_ = av_frame_alloc();
        // Both decode the same frames, those of our encoder.
        const std::vector<std::vector<std::uint8_t>> frames = CodedFrames(subject);
        for (unsigned i = 0; i < kFrames; ++i) {
            pictures_.push_back(MakeFrame(subject, i));
            coded_.push_back(av_packet_alloc());
            if (av_new_packet(coded_[i], static_cast<int>(frames[i].size())) < 0) Fail("new_packet");
            std::memcpy(coded_[i]->data, frames[i].data(), frames[i].size());
        }
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    void Encode(std::size_t i) {
        av_packet_unref(packet_);
        pictures_[i % kFrames]->pts = next_++;
        if (avcodec_send_frame(encoder_, pictures_[i % kFrames]) < 0) Fail("send_frame");
        if (avcodec_receive_packet(encoder_, packet_) < 0) Fail("receive_packet");
    }
    void Decode(std::size_t i) {
        if (avcodec_send_packet(decoder_, coded_[i % kFrames]) < 0) Fail("send_packet");
        if (avcodec_receive_frame(decoder_, output_) < 0) Fail("receive_frame");
    }

private:
    static AVCodecContext* Open(const AVCodec* codec, const Subject& subject, int threads) {
        if (codec == nullptr) Fail("no codec for DV");
        AVCodecContext* const context = avcodec_alloc_context3(codec);
        context->width = static_cast<int>(subject.width);
        context->height = static_cast<int>(subject.height);
        context->time_base = {1, 25};
        context->framerate = {25, 1};
        context->pix_fmt = subject.is420 ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV422P;
        context->thread_count = threads;
        context->thread_type = FF_THREAD_SLICE;
        if (avcodec_open2(context, codec, nullptr) < 0) Fail("open");
        return context;
    }
    AVFrame* MakeFrame(const Subject& subject, unsigned number) const {
        AVFrame* const frame = av_frame_alloc();
        frame->format = encoder_->pix_fmt;
        frame->width = encoder_->width;
        frame->height = encoder_->height;
        if (av_frame_get_buffer(frame, 0) < 0) Fail("frame");
        for (unsigned y = 0; y < subject.height; ++y)
            for (unsigned x = 0; x < subject.width; ++x) {
                const Sample sample = SampleAt(x, y, number);
                frame->data[0][static_cast<int>(y) * frame->linesize[0] + static_cast<int>(x)] = sample.y;
                if (x % 2 != 0 || (subject.is420 && y % 2 != 0)) continue;
                const int line = static_cast<int>(subject.is420 ? y / 2 : y);
                frame->data[1][line * frame->linesize[1] + static_cast<int>(x / 2)] = sample.u;
                frame->data[2][line * frame->linesize[2] + static_cast<int>(x / 2)] = sample.v;
            }
        return frame;
    }

    AVCodecContext* encoder_;
    AVCodecContext* decoder_;
    AVPacket* packet_;
    AVFrame* output_;
    std::int64_t next_ = 0;
    std::vector<AVFrame*> pictures_;
    std::vector<AVPacket*> coded_;
};

void AddPeer(const Subject& subject, int threads) {
    const double pixels = double{1} * subject.width * subject.height;
    const auto peer = std::make_shared<std::unique_ptr<Peer>>();
    const auto ready = [peer, &subject, threads]() -> Peer& {
        if (*peer == nullptr) *peer = std::make_unique<Peer>(subject, threads);
        return **peer;
    };
    const std::string variant = "libavcodec_" + std::to_string(threads);
    Add({std::string(subject.name) + "Encode", variant, pixels, 2 * pixels,
         [ready](Regime, std::size_t i) { ready().Encode(i); }, true});
    Add({std::string(subject.name) + "Decode", variant, pixels, 2 * pixels,
         [ready](Regime, std::size_t i) { ready().Decode(i); }, true});
}

#endif

alignas(64) std::uint8_t amplitudes[64];

const bool kAdded = [] {
    static const km::DvFactors steps = [] {
        km::DvFactors table;
        table.fill(16);
        return table;
    }();
    static const km::DvFactors reciprocals = [] {
        km::DvFactors table;
        table.fill(512);
        return table;
    }();
    using Out = std::int16_t*;
    using In = const std::int16_t*;
    const auto* const weights = km::dv_tables::kWeights[km::DV_DCT_88].data();
    const auto* const inverse = km::dv_tables::kInverseWeights[km::DV_DCT_88].data();
    const std::uint8_t* const scan = km::dv_tables::kScans[km::DV_DCT_248].data();
    // All blocks of a segment at a time, as the encoder has them.
    ForEachRunnableRow(km::FDCT248Columns, [](std::size_t row) {
        auto* const form = km::FDCT248Columns.Row(row).function;
        Add({km::FDCT248Columns.Name(), VariantLabel(km::FDCT248Columns, row), kBlockPixels,
             2.0 * kBlocks * kBlockBytes, [form](Regime regime, std::size_t i) {
                 constexpr std::size_t kSegment = 32;
                 for (std::size_t b = 0; b < kBlocks; b += kSegment)
                     form(BlocksIn(Arena::Destination, regime, i) + 64 * b, BlocksIn(Arena::Source, regime, i) + 64 * b,
                          kSegment);
             }});
    });
    AddBlockKernel(km::WeighDvBlock, [=](auto* form, Out dst, In) { form(dst, weights); });
    AddBlockKernel(km::WeighHdBlock, [=](auto* form, Out dst, In) { form(dst, weights); });
    AddBlockKernel(km::ScanDvBlock, [=](auto* form, Out dst, In src) { form(dst, src, scan); });
    AddBlockKernel(km::QuantiseDvBlock, [](auto* form, Out, In src) { form(amplitudes, src, reciprocals.data()); });
    AddBlockKernel(km::QuantiseHdBlock, [](auto* form, Out, In src) { form(amplitudes, src, 24); });
    AddBlockKernel(km::DequantiseDvBlock, [=](auto* form, Out dst, In) { form(dst, steps.data(), inverse); });
    AddBlockKernel(km::DequantiseHdBlock, [=](auto* form, Out dst, In) { form(dst, 24, weights); });
    AddBlockKernel(km::InverseDCT248, [](auto* form, Out dst, In) { form(dst, 40); });
    for (const auto* slot : {&km::ReadDvUyvy, &km::ReadDvYuy2, &km::ReadDvYvyu, &km::ReadDvY16})
        AddSampleKernel(*slot, true);
    for (const auto* slot : {&km::WriteDvUyvy, &km::WriteDvYuy2, &km::WriteDvYvyu, &km::WriteDvY16})
        AddSampleKernel(*slot, false);
    for (const Subject& subject : kSubjects)
        for (const std::uint32_t threads : {1u, 2u}) {
            AddOurs(subject, threads);
#ifdef PIXMORPH_HAVE_AVCODEC
            AddPeer(subject, static_cast<int>(threads));
#endif
        }
    return true;
}();

}  // namespace
}  // namespace pixmorph_bench
