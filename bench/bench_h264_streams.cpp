// Whole H.264 streams of 1080 lines, on one thread and on two, beside libavcodec with as many. The streams are made with
// ffmpeg when a row first runs: from the film that PIXMORPH_FOOTAGE names, or from a moving test picture with noise.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench.h"
#include "codec/samples.h"
#include "h264/layers.h"
#include "h264/pipeline/fusion_core.h"
#include "support/h264_access_units.h"

#ifdef PIXMORPH_HAVE_AVCODEC
extern "C" {
#include <libavcodec/avcodec.h>
}
#endif

namespace pixmorph_bench {
namespace {

constexpr unsigned kFrames = 50;

void Require(bool isTrue, const char* what) {
    if (!isTrue) throw std::runtime_error(std::string("not true: ") + what);
}

struct StreamKind {
    const char* group;
    std::uint32_t publicFormat;
    const char* pixelFormat;
    const char* encoding;  ///< Options of ffmpeg's encoder.
};

constexpr StreamKind kKinds[] = {
    {"H264Cabac10Mbit", 11, "yuv420p", "-profile:v high -b:v 10M -x264-params 8x8dct=1"},
    {"H264Cabac40Mbit", 11, "yuv420p", "-profile:v high -b:v 40M -x264-params 8x8dct=1"},
    {"H264Cavlc10Mbit", 11, "yuv420p", "-profile:v high -b:v 10M -x264-params cabac=0"},
    {"H264Mbaff10Mbit", 11, "yuv420p", "-profile:v high -b:v 10M -x264-params tff=1"},
    {"H264Intra422Deep", 31, "yuv422p10le", "-profile:v high422 -b:v 100M -x264-params keyint=1:tff=0"},
};

std::vector<h264::Sample> MakeStream(const StreamKind& kind) {
    const char* const footage = std::getenv("PIXMORPH_FOOTAGE");
    const std::string input = footage != nullptr ? "-stream_loop -1 -i '" + std::string(footage) + "'"
                                                 : "-f lavfi -i testsrc2=size=1920x1080:rate=25,noise=alls=12:allf=t";
    const std::string command = "ffmpeg -v error -nostdin " + input + " -an -vf scale=1920:1080 -r 25 -frames:v " +
                                std::to_string(kFrames) + " -pix_fmt " + kind.pixelFormat +
                                " -c:v libx264 -preset medium -threads 1 " + kind.encoding + " -f h264 -";
    std::FILE* const pipe = popen(command.c_str(), "r");
    Require(pipe != nullptr, "ffmpeg starts");
    h264::Bytes bytes;
    std::uint8_t block[65536];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, pipe)) != 0;)
        bytes.insert(bytes.end(), block, block + got);
    Require(pclose(pipe) == 0, "ffmpeg makes a stream");
    std::fprintf(stderr, "%s: %.1f Mbit/s\n", kind.group, static_cast<double>(bytes.size()) * 8 * 25 / kFrames / 1e6);
    return h264::SplitIntoSamples(bytes);
}

/// Made once for all rows of a group.
const std::vector<h264::Sample>& StreamOf(const StreamKind& kind) {
    static std::vector<h264::Sample> streams[std::size(kKinds)];
    std::vector<h264::Sample>& stream = streams[&kind - kKinds];
    if (stream.empty()) stream = MakeStream(kind);
    return stream;
}

class Decoder {
public:
    Decoder(const StreamKind& kind, unsigned threads)
        : samples_(StreamOf(kind)), core_(km::H264Layers(), threads), format_(kind.publicFormat) {
        Require(core_.Initialize({}) == km::IMG_OK, "the decoder starts");
        km::ImageDescriptor image;
        Describe(image);
        buffer_.resize(static_cast<std::size_t>(km::ImageBufferSize(&image)));
    }
    void Run() {
        unsigned frames = 0;
        for (const h264::Sample& sample : samples_) {
            km::CMediaSample coded;
            (void)coded.SetBuffer(const_cast<std::uint8_t*>(sample.bytes.data()), sample.bytes.size());
            (void)coded.AddDataSize(sample.bytes.size());
            frames += Decode(&coded);
        }
        while (Decode(nullptr)) ++frames;
        Require(frames == kFrames, "all frames come");
    }

private:
    void Describe(km::ImageDescriptor& image) const {
        km::SetPublicFormat(image, format_);
        image.width = kWidth;
        image.height = kHeight;
    }
    bool Decode(km::IMediaSample* coded) {
        km::CVideoSample picture;
        Describe(*picture.GetImage());
        (void)picture.SetBuffer(buffer_.data(), buffer_.size());
        return core_.Decode(&picture, coded) == km::IMG_OK;
    }

    const std::vector<h264::Sample>& samples_;
    km::CH264FusionCore core_;
    std::uint32_t format_;
    std::vector<std::uint8_t> buffer_;
};

#ifdef PIXMORPH_HAVE_AVCODEC

class PeerDecoder {
public:
    PeerDecoder(const StreamKind& kind, unsigned threads) {
        for (const h264::Sample& sample : StreamOf(kind)) {
            packets_.push_back(sample.bytes);
            packets_.back().resize(sample.bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE);
        }
        const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_H264);
        Require(codec != nullptr, "libavcodec has an H.264 decoder");
        context_ = avcodec_alloc_context3(codec);
        context_->thread_count = static_cast<int>(threads);
        context_->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
        Require(avcodec_open2(context_, codec, nullptr) == 0, "libavcodec's decoder starts");
        packet_ = av_packet_alloc();
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
        unsigned frames = 0;
        for (std::vector<std::uint8_t>& packet : packets_) {
            packet_->data = packet.data();
            packet_->size = static_cast<int>(packet.size() - AV_INPUT_BUFFER_PADDING_SIZE);
            Require(avcodec_send_packet(context_, packet_) == 0, "libavcodec's decoder takes a picture");
            frames += Receive();
        }
        avcodec_send_packet(context_, nullptr);
        frames += Receive();
        avcodec_flush_buffers(context_);
        Require(frames == kFrames, "all frames come from libavcodec");
    }

private:
    unsigned Receive() {
        unsigned frames = 0;
        while (avcodec_receive_frame(context_, picture_) == 0) ++frames;
        return frames;
    }

    std::vector<std::vector<std::uint8_t>> packets_;
    AVCodecContext* context_ = nullptr;
    AVPacket* packet_ = nullptr;
    AVFrame* picture_ = nullptr;
};

#endif

/// One iteration is the whole stream; what decodes it is made when it first runs.
template <class Work>
void AddStream(const StreamKind& kind, const char* variant, unsigned threads) {
    constexpr double kPixels = double{kWidth} * kHeight * kFrames;
    // Groups by thread count, so that the peer is compared with as many.
    Add({std::string(kind.group) + "x" + std::to_string(threads), variant, kPixels, kPixels * 1.5,
         [&kind, threads, work = std::shared_ptr<Work>()](Regime, std::size_t) mutable {
             if (work == nullptr) work = std::make_shared<Work>(kind, threads);
             work->Run();
         },
         true});
}

struct AddAll {
    AddAll() {
        for (const StreamKind& kind : kKinds) {
            for (unsigned threads : {1u, 2u}) {
                AddStream<Decoder>(kind, "pixmorph", threads);
#ifdef PIXMORPH_HAVE_AVCODEC
                AddStream<PeerDecoder>(kind, "libavcodec", threads);
#endif
            }
        }
    }
} const kAll;

}  // namespace
}  // namespace pixmorph_bench
