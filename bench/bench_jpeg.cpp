// JPEG at 1080 lines: the block and pixel primitives, and whole frames beside libjpeg-turbo with the same picture and
// as much output, its packing to planes counted.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "bench.h"
#include "jpeg/jpeg_core.h"
#include "jpeg/kvmj_decoder.h"
#include "jpeg/kvmj_encoder.h"

#if defined(PIXMORPH_HAVE_TURBOJPEG) && defined(PIXMORPH_HAVE_LIBYUV)
#include <libyuv.h>
#include <turbojpeg.h>
#define PIXMORPH_JPEG_PEER
#endif

namespace pixmorph_bench {
namespace {

constexpr double kPixels = double{kWidth} * kHeight;

// Blocks that stand for many frames' worth of them, so that nothing stays in the nearest cache.
constexpr std::size_t kBlocks = 4 * 1024;
constexpr double kBlockPixels = 64.0 * kBlocks;

struct BlockStore {
    std::vector<std::int16_t> memory = std::vector<std::int16_t>(kBlocks * 64 + 32);
    std::vector<std::uint8_t> counts = std::vector<std::uint8_t>(kBlocks);

    std::int16_t* Blocks() {
        return memory.data() + (64 - reinterpret_cast<std::uintptr_t>(memory.data()) % 64) % 64 / 2;
    }
};

template <class Slot, class Call>
void AddBlocks(const Slot& slot, const char* group, Call call) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const form = slot.Row(row).function;
        auto store = std::make_shared<BlockStore>();
        for (std::size_t i = 0; i < store->memory.size(); ++i)
            store->memory[i] = static_cast<std::int16_t>(static_cast<int>(i * 2654435761u >> 24) % 256 - 128);
        for (std::size_t i = 0; i < kBlocks; ++i) store->counts[i] = static_cast<std::uint8_t>(i / 4 % 3 == 0 ? 8 : 30);
        Add({group, VariantLabel(slot, row), kBlockPixels, 4 * kBlockPixels,
             [form, store, call](Regime, std::size_t) { call(form, *store); }, true});
    });
}

void AddBlockSlots() {
    const auto blocks = [](auto* form, BlockStore& store) {
        for (std::size_t i = 0; i < kBlocks; i += 4) form(store.Blocks() + 64 * i, 4);
    };
    AddBlocks(km::FDCTBlocks, "FDCTBlocks", blocks);
    AddBlocks(km::FDCTRows, "FDCTRows", blocks);
    for (const unsigned count : {1u, 8u, 30u}) {
        static constexpr const char* kNames[] = {"InverseDCT, 1 value", "InverseDCT, 8 values",
                                                 "InverseDCT, 30 values"};
        AddBlocks(km::InverseDCT,
                  kNames[count == 1   ? 0
                         : count == 8 ? 1
                                      : 2],
                  [count](auto* form, BlockStore& store) {
                      for (std::size_t i = 0; i < kBlocks; ++i) form(store.Blocks() + 64 * i, count, 0);
                  });
    }
    AddBlocks(km::InverseDCTBlocks, "InverseDCTBlocks", [](auto* form, BlockStore& store) {
        for (std::size_t i = 0; i < kBlocks; i += 4) form(store.Blocks() + 64 * i, store.counts.data() + i, 4);
    });
    static km::QualityTables tables;
    km::MakeQualityTables(tables, 8000, km::DcRule::kAlwaysFour);
    AddBlocks(km::DequantiseBlocks, "DequantiseBlocks", [](auto* form, BlockStore& store) {
        for (std::size_t i = 0; i < kBlocks; i += 4) form(store.Blocks() + 64 * i, tables.lumaQuantisers, 4);
    });
    const auto quantise = [](auto* form, BlockStore& store) {
        alignas(64) std::int16_t levels[64];
        for (std::size_t i = 0; i < kBlocks; ++i) form(levels, store.Blocks() + 64 * i, tables.lumaReciprocals);
    };
    AddBlocks(km::QuantiseBlock, "QuantiseBlock", quantise);
    AddBlocks(km::QuantiseToScan, "QuantiseToScan", quantise);
}

// A frame, MCU by MCU.
void AddWriter(const km::WriteMcuSlot& slot, std::size_t bytesPer16, unsigned lines) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const write = slot.Row(row).function;
        const std::size_t stride = kWidth / 16 * bytesPer16;
        auto store = std::make_shared<BlockStore>();
        for (std::size_t i = 0; i < store->memory.size(); ++i)
            store->memory[i] = static_cast<std::int16_t>(static_cast<int>(i * 2654435761u >> 24) % 256 - 128);
        Add({slot.Name(), VariantLabel(slot, row), kPixels, kPixels / 16 * static_cast<double>(bytesPer16),
             [=](Regime regime, std::size_t i) {
                 std::uint8_t* const frame = Slice(Arena::Destination, regime, stride * kHeight, i);
                 for (unsigned y = 0; y + lines <= kHeight; y += lines)
                     for (unsigned x = 0; x < kWidth / 16; ++x)
                         write({frame + y * stride + x * bytesPer16, static_cast<std::ptrdiff_t>(stride), nullptr, 0,
                                lines},
                               store->Blocks() + 384 * (x % 16));
             }});
    });
}
void AddReader(const km::ReadMcuSlot& slot, std::size_t bytesPer16) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const read = slot.Row(row).function;
        const std::size_t stride = kWidth / 16 * bytesPer16;
        auto store = std::make_shared<BlockStore>();
        Add({slot.Name(), VariantLabel(slot, row), kPixels, kPixels / 16 * static_cast<double>(bytesPer16),
             [=](Regime regime, std::size_t i) {
                 const std::uint8_t* const frame = Slice(Arena::Source, regime, stride * kHeight, i);
                 for (unsigned y = 0; y + 8 <= kHeight; y += 8)
                     for (unsigned x = 0; x < kWidth / 16; ++x)
                         read(store->Blocks(), {frame + y * stride + x * bytesPer16,
                                                static_cast<std::ptrdiff_t>(stride), nullptr, 0, 8});
             }});
    });
}

void AddPixelSlots() {
    AddWriter(km::Write422ToBgr, 48, 8);
    AddWriter(km::Write422ToBgra, 64, 8);
    AddWriter(km::Write422ToAyuv, 64, 8);
    AddWriter(km::Write422ToUyvy, 32, 8);
    AddWriter(km::Write422ToYuy2, 32, 8);
    AddWriter(km::Write422ToYvyu, 32, 8);
    AddWriter(km::Write422ToY16, 32, 8);
    AddWriter(km::Write422ToY16A, 48, 8);
    AddWriter(km::Write420ToBgr, 48, 16);
    AddWriter(km::Write420ToBgra, 64, 16);
    AddWriter(km::Write420ToUyvy, 32, 16);
    AddWriter(km::Write420ToYuy2, 32, 16);
    AddWriter(km::Write420ToYvyu, 32, 16);
    AddReader(km::ReadBgrTo422, 48);
    AddReader(km::ReadBgraTo422, 64);
    AddReader(km::ReadUyvyTo422, 32);
    AddReader(km::ReadYuy2To422, 32);
    AddReader(km::ReadYvyuTo422, 32);
    AddReader(km::ReadY16To422, 32);
    AddReader(km::ReadY16ATo422, 48);
}

constexpr std::size_t kUyvyBytes = std::size_t{2} * kWidth * kHeight;
constexpr std::size_t kFrameRoom = std::size_t{8} * 1024 * 1024;

// A picture like a camera's: shapes of many sizes, edges, and grain.
const std::vector<std::uint8_t>& Picture() {
    static const std::vector<std::uint8_t> made = [] {
        std::vector<std::uint8_t> picture(kUyvyBytes);
        std::uint32_t state = 1;
        for (std::uint32_t y = 0; y < kHeight; ++y)
            for (std::uint32_t x = 0; x < kWidth; ++x) {
                const float fx = static_cast<float>(x), fy = static_cast<float>(y);
                float value = 110 + 45 * std::sin(fx / 97 + fy / 61) +
                              25 * std::sin(fx / 17 - fy / 23) * std::sin(fy / 211) +
                              (x / 150 % 2 != 0 ? 9 * std::sin(fx / 3.1f + fy / 4.7f) : 0.f);
                if ((x / 120 + y / 90) % 3 == 0) value += 30;
                state = state * 1664525u + 1013904223u;
                value += static_cast<float>(state >> 24) / 96 - 1.3f;
                std::uint8_t* const p = picture.data() + 2 * (std::size_t{y} * kWidth + x);
                p[0] = static_cast<std::uint8_t>(128 + 50 * std::sin(fx / 203) *
                                                           std::cos(fy / 157 + static_cast<float>(x & 1)));
                p[1] = static_cast<std::uint8_t>(value < 16 ? 16 : value > 235 ? 235 : value);
            }
        return picture;
    }();
    return made;
}

km::BitmapInfoHeader Header(std::uint32_t format) {
    km::BitmapInfoHeader header = {};
    header.biSize = sizeof header;
    header.biWidth = kWidth;
    header.biHeight = kHeight;
    header.biCompression = km::FourCCFromFormat(format);
    return header;
}

struct Encoder {
    explicit Encoder(unsigned threads) : codec(threads), frame(kFrameRoom) { codec.Init(0, 0); }

    std::size_t Encode(std::uint8_t* picture, std::uint32_t format, std::int64_t stride) {
        km::EncodeParams params;
        params.coded.biSizeImage = kFrameRoom;
        params.output = frame.data();
        params.source = Header(format);
        params.quality = 8000;
        std::uint8_t* const pointers[2] = {picture, picture};
        const std::int64_t strides[2] = {stride, stride};
        return codec.Encode(params, pointers, strides, 0, false) == km::IMG_OK ? params.coded.biSizeImage : 0;
    }

    km::CEncoderKVMJMultiThreads codec;
    std::vector<std::uint8_t> frame;
};

void Decode(km::IDecoder& decoder, const Encoder& frame, std::size_t size, std::uint8_t* pixels, std::uint32_t format,
            std::int64_t stride) {
    km::DecodeParams params;
    params.source = Header(km::FMT_UYVY);
    params.source.biSizeImage = static_cast<std::uint32_t>(size);
    params.data = frame.frame.data();
    params.destination = Header(format);
    params.pixels = pixels;
    params.stride = stride;
    decoder.Decode(params, 0);
}

// Sources and frames are few: a coder's own work is more than the memory's.
void AddFrames() {
    struct Named {
        const char* encode;
        const char* decode;
        std::uint32_t format;
        std::int64_t stride;
    };
    auto frame = std::make_shared<Encoder>(1);
    std::vector<std::uint8_t> uyvy = Picture();
    const std::size_t size = frame->Encode(uyvy.data(), km::FMT_UYVY, 2 * kWidth);
    for (const Named& named : {Named{"KVMJ encode from UYVY", "KVMJ decode to UYVY", km::FMT_UYVY, 2 * kWidth},
                               Named{"KVMJ encode from BGRA", "KVMJ decode to BGRA", km::FMT_BGRA, 4 * kWidth}})
        for (const unsigned threads : {1u, 2u}) {
            const char* const label = threads == 1 ? "1 thread" : "2 threads";
            const std::int64_t stride = named.stride;
            const std::uint32_t format = named.format;
            auto decoder = std::make_shared<km::CDecoderKVMJMultiThreads>(threads);
            decoder->Init(0, 0);
            Add({named.decode, label, kPixels, static_cast<double>(size),
                 [=](Regime regime, std::size_t i) {
                     const std::size_t bytes = static_cast<std::size_t>(stride) * kHeight;
                     Decode(*decoder, *frame, size, Slice(Arena::Destination, regime, bytes, i), format, stride);
                 },
                 true});
            // The source of either format shows the same, as the decoder does.
            auto encoder = std::make_shared<Encoder>(threads);
            auto source = std::make_shared<std::vector<std::uint8_t>>(static_cast<std::size_t>(stride) * kHeight);
            Decode(*decoder, *frame, size, source->data(), format, stride);
            const std::size_t coded = encoder->Encode(source->data(), format, stride);
            Add({named.encode, label, kPixels, static_cast<double>(coded),
                 [=](Regime, std::size_t) { encoder->Encode(source->data(), format, stride); }, true});
        }
}

#ifdef PIXMORPH_JPEG_PEER
// Planes of 4:2:2 and a compressor for them.
struct Turbo {
    tjhandle compressor = tjInitCompress();
    tjhandle decompressor = tjInitDecompress();
    std::vector<std::uint8_t> planes = std::vector<std::uint8_t>(kUyvyBytes);
    std::vector<std::uint8_t> frame = std::vector<std::uint8_t>(kFrameRoom);
    unsigned long size = 0;

    Turbo() = default;
    Turbo(const Turbo&) = delete;
    Turbo& operator=(const Turbo&) = delete;
    ~Turbo() {
        tjDestroy(compressor);
        tjDestroy(decompressor);
    }
    void Encode(const std::uint8_t* uyvy, int quality) {
        std::uint8_t* const y = planes.data();
        std::uint8_t *const u = y + kWidth * kHeight, *const v = u + kWidth / 2 * kHeight;
        libyuv::UYVYToI422(uyvy, 2 * kWidth, y, kWidth, u, kWidth / 2, v, kWidth / 2, kWidth, kHeight);
        const unsigned char* from[3] = {y, u, v};
        const int strides[3] = {kWidth, kWidth / 2, kWidth / 2};
        unsigned char* to = frame.data();
        size = kFrameRoom;
        tjCompressFromYUVPlanes(compressor, from, kWidth, strides, kHeight, TJSAMP_422, &to, &size, quality,
                                TJFLAG_NOREALLOC);
    }
    void Decode(std::uint8_t* uyvy) {
        std::uint8_t* const y = planes.data();
        std::uint8_t *const u = y + kWidth * kHeight, *const v = u + kWidth / 2 * kHeight;
        unsigned char* to[3] = {y, u, v};
        int strides[3] = {kWidth, kWidth / 2, kWidth / 2};
        tjDecompressToYUVPlanes(decompressor, frame.data(), size, to, kWidth, strides, kHeight, 0);
        libyuv::I422ToUYVY(y, kWidth, u, kWidth / 2, v, kWidth / 2, uyvy, 2 * kWidth, kWidth, kHeight);
    }
};

void AddPeer() {
    auto picture = std::make_shared<std::vector<std::uint8_t>>(Picture());
    auto turbo = std::make_shared<Turbo>();
    const std::size_t size = Encoder(1).Encode(picture->data(), km::FMT_UYVY, 2 * kWidth);
    // The quality whose frame has most nearly as many bytes.
    const auto distance = [&](int quality) {
        turbo->Encode(picture->data(), quality);
        return std::abs(static_cast<double>(turbo->size) - static_cast<double>(size));
    };
    int quality = 50;
    for (double nearest = distance(quality), next = 0; quality < 100; ++quality, nearest = next)
        if (next = distance(quality + 1); next > nearest) break;
    turbo->Encode(picture->data(), quality);
    const double ratio = static_cast<double>(turbo->size) / static_cast<double>(size);
    if (ratio < 0.95 || ratio > 1.05) {
        std::fprintf(stderr, "bench: libjpeg-turbo's frame has %.2f times the bytes of ours\n", ratio);
        std::exit(1);
    }
    Add({"KVMJ encode from UYVY", "libjpeg-turbo", kPixels, static_cast<double>(turbo->size),
         [=](Regime, std::size_t) { turbo->Encode(picture->data(), quality); }, true});
    Add({"KVMJ decode to UYVY", "libjpeg-turbo", kPixels, static_cast<double>(turbo->size),
         [=](Regime regime, std::size_t i) { turbo->Decode(Slice(Arena::Destination, regime, kUyvyBytes, i)); }, true});
}
#endif

const bool kAdded = [] {
    km::InitBlockTransforms();
    AddBlockSlots();
    AddPixelSlots();
    AddFrames();
#ifdef PIXMORPH_JPEG_PEER
    AddPeer();
#endif
    return true;
}();

}  // namespace
}  // namespace pixmorph_bench
