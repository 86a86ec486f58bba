#include "conformance/decode_stream.h"

#include <dlfcn.h>
#include <pixmorph/pixmorph.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "h264/layers.h"
#include "h264/output/frame_description.h"
#include "h264/pipeline/fusion_core.h"
#include "support/h264_bits.h"

namespace {

unsigned g_processors = 0;

}  // namespace

// The library asks this for the processors of its process.
extern "C" int sched_getaffinity(pid_t pid, size_t size, cpu_set_t* set) noexcept {
    if (g_processors == 0) {
        CPU_ZERO_S(size, set);
        return syscall(SYS_sched_getaffinity, pid, size, set) < 0 ? -1 : 0;
    }
    CPU_ZERO_S(size, set);
    for (unsigned i = 0; i < g_processors; ++i) CPU_SET_S(i, size, set);
    return 0;
}

extern "C" HRESULT DllGetClassObject(const GUID& clsid, const GUID& iid, void** object);

namespace h264 {
namespace {

using namespace KorvaneSoftware;

/// Passes over the rows.
class PassingFilter final : public IH264DeblockingProcessor {
public:
    void SetCursor(const SliceCursor& cursor) override { cursor_ = cursor; }
    const SliceCursor& GetCursor() const override { return cursor_; }
    void FilterRowI() override { Pass(); }
    void FilterRowP() override { Pass(); }
    void FilterRowB() override { Pass(); }

private:
    void Pass() {
        StartNextRow(cursor_);
        cursor_.position = std::min(cursor_.position, cursor_.end);
    }
    SliceCursor cursor_;
};

class UnfilteredLayers final : public IH264Layers {
public:
    std::unique_ptr<IH264Processor> CreateProcessor(std::uint32_t index) const override {
        return H264Layers().CreateProcessor(index);
    }
    std::unique_ptr<IH264DeblockingProcessor> CreateDeblockingProcessor(std::uint32_t) const override {
        return std::make_unique<PassingFilter>();
    }
    std::unique_ptr<IH264FrameOutput> CreateOutput() const override { return H264Layers().CreateOutput(); }
};

PictureShape ShapeOf(const H264SpsHead& sps) {
    const ImageRect rect = CroppedRectangle(sps);
    PictureShape shape;
    shape.width = static_cast<std::uint32_t>(rect.width);
    shape.height = static_cast<std::uint32_t>(rect.height);
    shape.is422 = sps.chromaFormatIdc == 2;
    shape.bytesPerSample = sps.IsHighBitDepth() ? 2 : 1;
    shape.publicFormat = sps.IsHighBitDepth() ? (shape.is422 ? 31 : 29) : (shape.is422 ? 30 : 11);
    return shape;
}

/// An intra picture of one macroblock that resets the numbering: whatever waits in a decoder leaves before it.
Bytes PushingPicture() {
    SpsValues sps;
    sps.id = 31;
    sps.levelIdc = 10;
    sps.widthInMbs = 1;
    sps.heightInMapUnits = 1;
    PpsValues pps;
    pps.id = 255;
    pps.spsId = 31;
    // I_PCM, all samples 1: no start code can be seen in them.
    BitWriter slice;
    slice.Ue(0).Ue(7).Ue(255).U(4, 0).Ue(0).U(8, 0).Flag(false).Flag(false).Se(0).Ue(1).Ue(25);
    while (slice.BitCount() % 8 != 0) slice.Flag(false);
    for (int i = 0; i < 384; ++i) slice.U(8, 1);
    Bytes picture = sps.Unit();
    for (const Bytes& unit : {pps.Unit(), slice.Unit(1, 5)}) picture.insert(picture.end(), unit.begin(), unit.end());
    return picture;
}

}  // namespace

Stream MakeStream(const Bytes& bytes) {
    Stream stream;
    stream.samples = SplitIntoSamples(bytes);
    stream.shape = {176, 144, 11};  // For streams that are to be refused.
    for (const Sample& sample : stream.samples) {
        if (!sample.readable) continue;
        stream.decodable = true;
        stream.shape = ShapeOf(sample.sps);
        break;
    }
    return stream;
}

std::string DecodeInward(const Stream& stream, const InwardOptions& options, const FrameSink& sink,
                         std::vector<unsigned>* presented) {
    static const UnfilteredLayers unfiltered;
    CH264FusionCore core(options.skipFilter ? unfiltered : H264Layers(), options.threads);
    if (core.Initialize({}) != IMG_OK) return "cannot be initialized";
    Bytes buffer(stream.shape.Bytes());
    const auto decode = [&](IMediaSample* coded) {
        CVideoSample picture;
        SetPublicFormat(*picture.GetImage(), stream.shape.publicFormat);
        picture.GetImage()->width = stream.shape.width;
        picture.GetImage()->height = stream.shape.height;
        (void)picture.SetBuffer(buffer.data(), buffer.size());
        const Status status = core.Decode(&picture, coded);
        if (status == IMG_OK) sink(buffer);
        return status;
    };
    for (const Sample& sample : stream.samples) {
        CMediaSample coded;
        (void)coded.SetBuffer(const_cast<std::uint8_t*>(sample.bytes.data()), sample.bytes.size());
        (void)coded.AddDataSize(sample.bytes.size());
        unsigned times = 0;
        do {
            decode(&coded);
            if (++times > 100) return "a sample is never taken";
        } while (coded.GetDataSize() != 0);
        if (presented != nullptr) presented->push_back(times);
    }
    while (decode(nullptr) == IMG_OK) {
    }
    return {};
}

ClassEntry LinkedClassEntry() { return &DllGetClassObject; }

ClassEntry LoadClassEntry(const std::string& library) {
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) return nullptr;
    return reinterpret_cast<ClassEntry>(dlsym(handle, "DllGetClassObject"));
}

std::string DecodeThroughComponent(const Stream& stream, ClassEntry entry, const std::vector<unsigned>& presented,
                                   std::size_t frames, const FrameSink& sink) {
    constexpr std::int32_t kRow = 10;
    constexpr unsigned kMostPushes = 200;
    ComPtr<IClassFactory> factory;
    ComPtr<::IVideoDecoder> decoder;
    if (entry(CLSID_VideoCodec, IID_IClassFactory, factory.Put()) != S_OK) return "no class";
    if (factory->CreateInstance(nullptr, IID_IVideoDecoder, decoder.Put()) != S_OK) return "no decoder";
    const HRESULT set = decoder->DecSetFormat(kRow, static_cast<std::int32_t>(stream.shape.width),
                                              static_cast<std::int32_t>(stream.shape.height));
    if (set != S_OK) return "DecSetFormat fails";
    Bytes buffer(stream.shape.Bytes());
    std::uint8_t* const planes[] = {buffer.data()};
    const std::int32_t strides[] = {stream.shape.Stride()};
    std::size_t came = 0;
    const auto decode = [&](const Bytes& sample) {
        const HRESULT result = decoder->Decode(planes, strides, stream.shape.publicFormat, sample.data(),
                                               static_cast<std::int32_t>(sample.size()));
        if (result != S_OK) return;
        ++came;
        sink(buffer);
    };
    for (std::size_t i = 0; i < stream.samples.size(); ++i) {
        for (unsigned times = 0; times < presented[i]; ++times) decode(stream.samples[i].bytes);
    }
    const Bytes pushing = PushingPicture();
    for (unsigned pushes = 0; came < frames; ++pushes) {
        if (pushes == kMostPushes) return "frames stay away";
        decode(pushing);
    }
    return {};
}

void PretendProcessors(unsigned count) { g_processors = count; }

}  // namespace h264
