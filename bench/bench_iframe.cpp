// I-frames at 1080 lines: the inverse transform, and whole frames beside the MPEG-2 codec of libavcodec with the same
// quantiser, 4:2:2, intra alone, one thread. Both decoders read the same frame.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "bench.h"
#include "codec/samples.h"
#include "iframe/block_kernels.h"
#include "iframe/mmes_decoder.h"
#include "iframe/mmes_encoder.h"

#ifdef PIXMORPH_HAVE_AVCODEC
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/opt.h>
}
#endif

namespace pixmorph_bench {
namespace {

constexpr double kPixels = double{kWidth} * kHeight;
constexpr std::size_t kPictureBytes = std::size_t{2} * kWidth * kHeight;
constexpr std::size_t kFrameRoom = std::size_t{4} << 20;
constexpr std::int32_t kQuality = 5000;  // Scale 8.
constexpr std::size_t kBlocks = std::size_t{2} * kWidth * kHeight / 64;
constexpr std::size_t kGroupBlocks = 8;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

// A picture of soft shapes, edges and a little grain, in UYVY.
const std::vector<std::uint8_t>& Picture() {
    static const std::vector<std::uint8_t> picture = [] {
        std::vector<std::uint8_t> bytes(kPictureBytes);
        std::uint32_t state = 1;
        for (std::uint32_t y = 0; y < kHeight; ++y) {
            for (std::uint32_t x = 0; x < kWidth; ++x) {
                state = state * 1664525u + 1013904223u;
                const double shapes = 50 * std::sin(x / 41.0 + y / 97.0) + 25 * std::sin(x / 7.0) * std::sin(y / 11.0);
                const int edge = (x / 96 + y / 80) % 2 != 0 ? 20 : -20;
                const int grain = static_cast<int>(state >> 28) - 8;
                std::uint8_t* const pair = &bytes[(std::size_t{y} * kWidth + (x & ~1u)) * 2];
                pair[1 + x % 2 * 2] = static_cast<std::uint8_t>(126 + static_cast<int>(shapes) + edge + grain / 2);
                if (x % 2 == 0) {
                    pair[0] = static_cast<std::uint8_t>(128 + static_cast<int>(60 * std::sin(x / 150.0 + y / 60.0)));
                    pair[2] = static_cast<std::uint8_t>(128 + static_cast<int>(60 * std::cos(x / 110.0 - y / 90.0)));
                }
            }
        }
        return bytes;
    }();
    return picture;
}

km::CodedFormat FrameFormat() {
    km::CodedFormat format;
    format.width = kWidth;
    format.height = kHeight;
    format.kind = km::CODEC_I_FRAME;
    return format;
}

void SetPicture(km::CVideoSample& sample, std::uint8_t* bytes) {
    km::ImageDescriptor& image = *sample.GetImage();
    image.format = km::FMT_UYVY;
    image.width = kWidth;
    image.height = kHeight;
    image.planes[0] = bytes;
    image.strides[0] = 2 * kWidth;
}

// The view of a new codec object.
template <class View>
std::shared_ptr<View> MakeView(km::IBasicInterface* object, const GUID& id) {
    void* view = nullptr;
    Require(object != nullptr && object->QueryInterface(id, &view) == km::IMG_OK, "the I-frame codec is made");
    object->Release();  // The view has a reference of its own.
    return {static_cast<View*>(view), [object](View*) { object->Release(); }};
}

class Encoder {
public:
    explicit Encoder(std::uint32_t threads) {
        const km::CodedFormat format = FrameFormat();
        const km::CodecOptions options = {threads, 0, km::kElementaryIFrameFlag};
        Require(codec_->Initialize(&format, &options) == km::IMG_OK && codec_->SetQuality(kQuality) == km::IMG_OK,
                "the I-frame encoder starts");
    }
    /// @return the frame
    std::vector<std::uint8_t>& Run() {
        frame_.resize(kFrameRoom);
        km::CMediaSample coded;
        km::CVideoSample picture;
        coded.SetBuffer(frame_.data(), frame_.size());
        SetPicture(picture, const_cast<std::uint8_t*>(Picture().data()));
        Require(codec_->Encode(&coded, &picture) == km::IMG_OK, "the I-frame encoder encodes");
        frame_.resize(coded.GetDataSize());
        return frame_;
    }

private:
    std::shared_ptr<km::IVideoEncoder> codec_ =
        MakeView<km::IVideoEncoder>(km::CreateMMESEncoder(), km::IID_InwardVideoEncoder);
    std::vector<std::uint8_t> frame_;
};

const std::vector<std::uint8_t>& Frame() {
    static const std::vector<std::uint8_t> frame = Encoder(1).Run();
    return frame;
}

class Decoder {
public:
    explicit Decoder(std::uint32_t threads) : picture_(kPictureBytes) {
        const km::CodedFormat format = FrameFormat();
        const km::CodecOptions options = {threads, 0, 0};
        Require(codec_->Initialize(&format, &options) == km::IMG_OK, "the I-frame decoder starts");
    }
    void Run() {
        km::CMediaSample coded;
        km::CVideoSample picture;
        coded.SetBuffer(const_cast<std::uint8_t*>(Frame().data()), Frame().size());
        coded.AddDataSize(Frame().size());
        SetPicture(picture, picture_.data());
        Require(codec_->Decode(&picture, &coded) == km::IMG_OK, "the I-frame decoder decodes");
    }

private:
    std::shared_ptr<km::IVideoDecoder> codec_ =
        MakeView<km::IVideoDecoder>(km::CreateMMESDecoder(), km::IID_InwardVideoDecoder);
    std::vector<std::uint8_t> picture_;
};

// Objects and pictures are made when a row first runs.
template <class Codec, class... Arguments>
std::function<void(Regime, std::size_t)> Lazily(Arguments... arguments) {
    return [made = std::shared_ptr<Codec>(), arguments...](Regime, std::size_t) mutable {
        if (made == nullptr) made = std::make_shared<Codec>(arguments...);
        made->Run();
    };
}

void AddKernels() {
    ForEachRunnableRow(km::IFrameInverseTransform, [](std::size_t row) {
        auto* const transform = km::IFrameInverseTransform.Row(row).function;
        Add({km::IFrameInverseTransform.Name(), VariantLabel(km::IFrameInverseTransform, row), kBlocks * 64.0,
             kBlocks * 64.0 * 4, [transform](Regime regime, std::size_t i) {
                 auto* const coefficients =
                     reinterpret_cast<std::int16_t*>(Slice(Arena::Destination2, regime, kBlocks * 128, i));
                 auto* const samples =
                     reinterpret_cast<std::int16_t*>(Slice(Arena::Destination, regime, kBlocks * 128, i));
                 for (std::size_t block = 0; block < kBlocks; block += kGroupBlocks)
                     transform(samples + block * 64, coefficients + block * 64, kGroupBlocks);
             }});
    });
}

#ifdef PIXMORPH_HAVE_AVCODEC

class PeerEncoder {
public:
    PeerEncoder() {
        const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_MPEG2VIDEO);
        Require(codec != nullptr, "libavcodec has an MPEG-2 encoder");
        context_ = avcodec_alloc_context3(codec);
        context_->width = kWidth;
        context_->height = kHeight;
        context_->pix_fmt = AV_PIX_FMT_YUV422P;
        context_->time_base = {1, 25};
        context_->framerate = {25, 1};
        context_->gop_size = 1;
        context_->thread_count = 1;
        context_->flags |= AV_CODEC_FLAG_QSCALE;
        context_->global_quality = 8 * FF_QP2LAMBDA;
        context_->qmin = context_->qmax = 8;
        av_opt_set_int(context_->priv_data, "non_linear_quant", 1, 0);
        av_opt_set_int(context_->priv_data, "intra_vlc", 1, 0);
        Require(avcodec_open2(context_, codec, nullptr) == 0, "libavcodec's encoder starts");
        picture_ = av_frame_alloc();
        picture_->format = AV_PIX_FMT_YUV422P;
        picture_->width = kWidth;
        picture_->height = kHeight;
        picture_->quality = context_->global_quality;
        picture_->pict_type = AV_PICTURE_TYPE_I;
        Require(av_frame_get_buffer(picture_, 0) == 0, "libavcodec's picture is made");
        const std::uint8_t* pair = Picture().data();
        for (std::uint32_t y = 0; y < kHeight; ++y) {
            for (std::uint32_t x = 0; x < kWidth; x += 2, pair += 4) {
                std::uint8_t* const luma =
                    picture_->data[0] + static_cast<std::ptrdiff_t>(y) * picture_->linesize[0] + x;
                picture_->data[1][static_cast<std::ptrdiff_t>(y) * picture_->linesize[1] + x / 2] = pair[0];
                luma[0] = pair[1];
                picture_->data[2][static_cast<std::ptrdiff_t>(y) * picture_->linesize[2] + x / 2] = pair[2];
                luma[1] = pair[3];
            }
        }
        packet_ = av_packet_alloc();
        std::size_t size = 0;
        while (size == 0) size = Run();
        std::fprintf(stderr, "I-frame of %u by %u: ours %zu bytes, libavcodec's %zu\n", kWidth, kHeight, Frame().size(),
                     size);
    }
    PeerEncoder(const PeerEncoder&) = delete;
    PeerEncoder& operator=(const PeerEncoder&) = delete;
    ~PeerEncoder() {
        av_packet_free(&packet_);
        av_frame_free(&picture_);
        avcodec_free_context(&context_);
    }
    std::size_t Run() {
        picture_->pts = number_++;
        Require(avcodec_send_frame(context_, picture_) == 0, "libavcodec's encoder takes a picture");
        if (avcodec_receive_packet(context_, packet_) != 0) return 0;
        const auto size = static_cast<std::size_t>(packet_->size);
        av_packet_unref(packet_);
        return size;
    }

private:
    AVCodecContext* context_ = nullptr;
    AVFrame* picture_ = nullptr;
    AVPacket* packet_ = nullptr;
    std::int64_t number_ = 0;
};

class PeerDecoder {
public:
    PeerDecoder() : padded_(Frame()) {
        const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_MPEG2VIDEO);
        Require(codec != nullptr, "libavcodec has an MPEG-2 decoder");
        context_ = avcodec_alloc_context3(codec);
        context_->thread_count = 1;
        Require(avcodec_open2(context_, codec, nullptr) == 0, "libavcodec's decoder starts");
        padded_.resize(padded_.size() + AV_INPUT_BUFFER_PADDING_SIZE);
        packet_ = av_packet_alloc();
        packet_->data = padded_.data();
        packet_->size = static_cast<int>(Frame().size());
        picture_ = av_frame_alloc();
    }
    PeerDecoder(const PeerDecoder&) = delete;
    PeerDecoder& operator=(const PeerDecoder&) = delete;
    ~PeerDecoder() {
        av_frame_free(&picture_);
        av_packet_free(&packet_);
        avcodec_free_context(&context_);
    }
    void Run() {
        Require(avcodec_send_packet(context_, packet_) == 0, "libavcodec's decoder takes a frame");
        avcodec_receive_frame(context_, picture_);
    }

private:
    std::vector<std::uint8_t> padded_;
    AVCodecContext* context_ = nullptr;
    AVPacket* packet_ = nullptr;
    AVFrame* picture_ = nullptr;
};

#endif

struct AddAll {
    AddAll() {
        AddKernels();
        for (const std::uint32_t threads : {1u, 2u}) {
            const std::string name = "pixmorph-" + std::to_string(threads);
            Add({"IFrameEncode", name, kPixels, kPictureBytes, Lazily<Encoder>(threads), true});
            Add({"IFrameDecode", name, kPixels, kPictureBytes, Lazily<Decoder>(threads), true});
        }
#ifdef PIXMORPH_HAVE_AVCODEC
        Add({"IFrameEncode", "libavcodec", kPixels, kPictureBytes, Lazily<PeerEncoder>(), true});
        Add({"IFrameDecode", "libavcodec", kPixels, kPictureBytes, Lazily<PeerDecoder>(), true});
#endif
    }
} const kAll;

}  // namespace
}  // namespace pixmorph_bench
