#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "support/random.h"

namespace pixmorph_test {
namespace {

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;

template <class Interface>
ComPtr<Interface> Create(const GUID& clsid) {
    ComPtr<Interface> object;
    EXPECT_EQ(CreateInstance(clsid, object), S_OK);
    return object;
}

/// A buffer of pseudo-random bytes in which a picture lies.
class Buffer {
public:
    static constexpr std::size_t kOffset = 1024;

    Buffer(std::size_t width, std::size_t height, std::uint32_t seed) : bytes_(8 * width * height + 4096) {
        ByteGenerator(seed).Fill(bytes_);
    }
    std::uint8_t* Picture() { return bytes_.data() + kOffset; }
    std::uint64_t Hash() const { return HashBytes(bytes_); }
    bool operator==(const Buffer&) const = default;

private:
    std::vector<std::uint8_t> bytes_;
};

// Hashes of whole destination buffers in the tables below come from computations made apart from this library.

using RestoreMethod = decltype(&IDeinterlaceMaker::RestoreLowerField);

struct RestoreCase {
    RestoreMethod method;
    std::int32_t stride;
    std::uint32_t minimum, maximum;
    std::uint64_t hash;
};

TEST(DeinterlaceMaker, KnownResults) {
    static const RestoreCase kCases[] = {
        {&IDeinterlaceMaker::RestoreLowerField, 128, 0, 255, 0xb46f61d0953b1cd5U},
        {&IDeinterlaceMaker::RestoreLowerField, 128, 10, 60, 0xd27ffb9be4b53b22U},
        {&IDeinterlaceMaker::RestoreLowerField, 128, 30, 30, 0xfb4b443860143e69U},
        {&IDeinterlaceMaker::RestoreUpperField, 128, 0, 255, 0x11bca2f050f459eeU},
        {&IDeinterlaceMaker::RestoreUpperField, 128, 10, 60, 0x00d7fec268d947a2U},
        {&IDeinterlaceMaker::RestoreUpperField, 128, 30, 30, 0x0908dca90b4a980fU},
        {&IDeinterlaceMaker::RestoreLowerFieldAlpha, 176, 0, 255, 0x82fc46408de44944U},
        {&IDeinterlaceMaker::RestoreLowerFieldAlpha, 176, 10, 60, 0x2f394d37a48dfac7U},
        {&IDeinterlaceMaker::RestoreLowerFieldAlpha, 176, 30, 30, 0xefd4688ef4eba309U},
        {&IDeinterlaceMaker::RestoreUpperFieldAlpha, 176, 0, 255, 0xd6efd7ebf0dc960bU},
        {&IDeinterlaceMaker::RestoreUpperFieldAlpha, 176, 10, 60, 0xdb140dca1d011705U},
        {&IDeinterlaceMaker::RestoreUpperFieldAlpha, 176, 30, 30, 0xbdf20352f616cb81U},
    };
    const auto maker = Create<IDeinterlaceMaker>(CLSID_DeinterlaceMaker);
    for (const RestoreCase& c : kCases) {
        Buffer previous(48, 6, 21), next(48, 6, 22), present(48, 6, 23), frame(48, 12, 24);
        EXPECT_EQ((maker.Get()->*c.method)(frame.Picture(), previous.Picture(), next.Picture(), present.Picture(), 48,
                                           6, 256, c.stride, c.minimum, c.maximum),
                  S_OK);
        EXPECT_EQ(frame.Hash(), c.hash) << "case " << &c - kCases;
    }
}

// The methods without alpha fail; those with alpha report 1 and say so, in words that have always been spelt like this.
TEST(DeinterlaceMaker, FailuresWithNullPointers) {
    const auto maker = Create<IDeinterlaceMaker>(CLSID_DeinterlaceMaker);
    Buffer field(48, 6, 1), frame(48, 12, 2);
    const Buffer before = frame;
    const auto outcome = [&](RestoreMethod method, int missing) {
        void* const pictures[4] = {frame.Picture(), field.Picture(), field.Picture(), field.Picture()};
        const auto at = [&](int i) { return i == missing ? nullptr : pictures[i]; };
        testing::internal::CaptureStderr();
        const HRESULT result = (maker.Get()->*method)(at(0), at(1), at(2), at(3), 48, 6, 256, 176, 10, 60);
        return std::pair(result, testing::internal::GetCapturedStderr());
    };
    for (int missing = 0; missing < 4; ++missing) {
        EXPECT_EQ(outcome(&IDeinterlaceMaker::RestoreLowerField, missing), std::pair(E_FAIL, std::string()));
        EXPECT_EQ(outcome(&IDeinterlaceMaker::RestoreUpperField, missing), std::pair(E_FAIL, std::string()));
        EXPECT_EQ(outcome(&IDeinterlaceMaker::RestoreLowerFieldAlpha, missing),
                  std::pair(S_FALSE, std::string("RestoreLowerFieldAlpha - exeption happend\n")));
        EXPECT_EQ(outcome(&IDeinterlaceMaker::RestoreUpperFieldAlpha, missing),
                  std::pair(S_FALSE, std::string("RestoreUpperFieldAlpha - exeption happend\n")));
    }
    EXPECT_TRUE(frame == before);
}

enum class Method { InterpolateTopField, InterpolateBottomField, CombineBuffersAlpha };

HRESULT Interpolate(IVideoInterpolation2* interpolation, Method method, std::uint8_t* dst, const std::uint8_t* first,
                    const std::uint8_t* second, std::uint32_t weight) {
    switch (method) {
        case Method::InterpolateTopField:
            return interpolation->InterpolateTopField(dst, first, second, 53, 7, 64, weight);
        case Method::InterpolateBottomField:
            return interpolation->InterpolateBottomField(dst, first, second, 53, 7, 64, weight);
        default:
            return interpolation->CombineBuffersAlpha(dst, first, second, 64, 53, 7, weight);
    }
}

TEST(VideoInterpolation, KnownResults) {
    struct Case {
        Method method;
        std::uint32_t weight;
        std::uint64_t hash;
    };
    static constexpr Case kCases[] = {
        {Method::InterpolateTopField, 0, 0x1f69c863327a2e8aU},
        {Method::InterpolateTopField, 77, 0xb09e618af4023c1cU},
        {Method::InterpolateTopField, 128, 0x024376d6fa86d079U},
        {Method::InterpolateTopField, 255, 0x2cce3c2f521cde41U},
        {Method::InterpolateTopField, 256, 0x8fdc88534843b668U},
        {Method::InterpolateBottomField, 0, 0x8af4a428611091c1U},
        {Method::InterpolateBottomField, 77, 0xc3a6b5f73111dd04U},
        {Method::InterpolateBottomField, 128, 0x339c4389b7042874U},
        {Method::InterpolateBottomField, 255, 0xcf3e1d2a4453bb6cU},
        {Method::InterpolateBottomField, 256, 0x8fdc88534843b668U},
        {Method::CombineBuffersAlpha, 0, 0x4280b0e5314d92d0U},
        {Method::CombineBuffersAlpha, 77, 0x87e042619770b9c2U},
        {Method::CombineBuffersAlpha, 128, 0x498a46a94fa88dc9U},
        {Method::CombineBuffersAlpha, 255, 0xaf40d0393604da50U},
        {Method::CombineBuffersAlpha, 256, 0x8fdc88534843b668U},
    };
    const auto interpolation = Create<IVideoInterpolation2>(CLSID_VideoInterpolation);
    for (const Case& c : kCases) {
        Buffer first(64, 7, 31), second(64, 7, 32), dst(64, 7, 33);
        EXPECT_EQ(
            Interpolate(interpolation.Get(), c.method, dst.Picture(), first.Picture(), second.Picture(), c.weight),
            S_OK);
        EXPECT_EQ(dst.Hash(), c.hash) << "case " << &c - kCases;
    }
}

TEST(VideoInterpolation, BothInterfacesAreOneObject) {
    const auto first = Create<IVideoInterpolation>(CLSID_VideoInterpolation);
    ComPtr<IVideoInterpolation2> second;
    ASSERT_EQ(first.As(second), S_OK);
    EXPECT_EQ(second->InterpolationMethod0(), E_NOTIMPL);
    EXPECT_EQ(second->InterpolationMethod1(), E_NOTIMPL);
    EXPECT_EQ(second->InterpolationMethod2(), E_NOTIMPL);
}

// The interpolations report success whatever they are given. Row 0 of a top field needs no other field and is copied.
TEST(VideoInterpolation, NullPointersWriteNothingThatNeedsThem) {
    const auto interpolation = Create<IVideoInterpolation2>(CLSID_VideoInterpolation);
    Buffer dst(64, 7, 1), first(64, 7, 2), second(64, 7, 3);
    Buffer expectedPicture = dst;
    for (const Method method :
         {Method::InterpolateTopField, Method::InterpolateBottomField, Method::CombineBuffersAlpha}) {
        const HRESULT expected = method == Method::CombineBuffersAlpha ? E_FAIL : S_OK;
        IVideoInterpolation2* const object = interpolation.Get();
        EXPECT_EQ(Interpolate(object, method, nullptr, first.Picture(), second.Picture(), 255), expected);
        EXPECT_EQ(Interpolate(object, method, dst.Picture(), nullptr, second.Picture(), 100), expected);
        EXPECT_TRUE(dst == expectedPicture);
        EXPECT_EQ(Interpolate(object, method, dst.Picture(), first.Picture(), nullptr, 0), expected);
        if (method == Method::InterpolateTopField) std::copy_n(first.Picture(), 53, expectedPicture.Picture());
        EXPECT_TRUE(dst == expectedPicture);
    }
}

TEST(VideoInterpolation, OneRowIsCopiedWithoutAnOtherField) {
    const auto interpolation = Create<IVideoInterpolation>(CLSID_VideoInterpolation);
    const std::vector<std::uint8_t> field = {1, 2, 250, 3};
    std::vector<std::uint8_t> top(4, 9), bottom(4, 9);
    EXPECT_EQ(interpolation->InterpolateTopField(top.data(), field.data(), nullptr, 4, 1, 4, 77), S_OK);
    EXPECT_EQ(interpolation->InterpolateBottomField(bottom.data(), field.data(), nullptr, 4, 1, 4, 77), S_OK);
    EXPECT_EQ(top, field);
    EXPECT_EQ(bottom, field);
}

// 255 is a weight like others and does not reproduce the forward picture; 256 does.
TEST(VideoInterpolation, CombineInPlaceOverTheBackwardSource) {
    ComPtr<IVideoInterpolation2> interpolation;
    ASSERT_EQ(CreateInstance(CLSID_VideoInterpolation, interpolation), S_OK);
    const std::vector<std::uint8_t> forward(40, 200);
    std::vector<std::uint8_t> apart(40, 0);
    std::vector<std::uint8_t> backward(40, 10);
    ASSERT_EQ(interpolation->CombineBuffersAlpha(apart.data(), forward.data(), backward.data(), 20, 20, 2, 255), S_OK);
    EXPECT_EQ(apart, std::vector<std::uint8_t>(40, (10 + 128 + 200 * 255) >> 8));
    // Filled with the forward source first, which then is all that there is to mix.
    ASSERT_EQ(interpolation->CombineBuffersAlpha(backward.data(), forward.data(), backward.data(), 20, 20, 2, 255),
              S_OK);
    EXPECT_EQ(backward, std::vector<std::uint8_t>(40, 200));
}

TEST(VideoInterpolation, CombineAtTheEndsOfTheScale) {
    const auto interpolation = Create<IVideoInterpolation2>(CLSID_VideoInterpolation);
    std::vector<std::uint8_t> forward(32 * 3, 255), backward(32 * 3, 0), dst(32 * 3);
    const auto combined = [&](std::uint32_t weight) {
        EXPECT_EQ(interpolation->CombineBuffersAlpha(dst.data(), forward.data(), backward.data(), 32, 32, 3, weight),
                  S_OK);
        return dst;
    };
    EXPECT_EQ(combined(255), std::vector<std::uint8_t>(32 * 3, 254));
    EXPECT_EQ(combined(0), backward);
    EXPECT_EQ(combined(256), forward);
}

/// A frame for VideoDeinterlacer in one buffer.
struct Frame {
    Buffer buffer;
    std::uint8_t* planes[4] = {};
    std::int32_t strides[4] = {};

    Frame(std::size_t width, std::size_t height, std::uint32_t seed, std::int32_t stride)
        : buffer(width, height, seed) {
        planes[0] = buffer.Picture();
        strides[0] = stride;
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
};

HRESULT Give(IVideoDeinterlacer* deinterlacer, const Frame& frame, std::uint32_t width, std::uint32_t height,
             std::uint32_t format, std::uint32_t structure = PIXMORPH_TOP_FIELD_FIRST) {
    return deinterlacer->SetSourceFrame(frame.planes, frame.strides, width, height, format, structure);
}

TEST(VideoDeinterlacer, KnownResults) {
    struct Case {
        std::uint32_t format, mode, structure, parity;
        std::uint64_t hash;
    };
    static constexpr Case kCases[] = {
        {0, 0, 5, 0, 0x772bd0d5d6d5a3e7U},  {0, 0, 5, 1, 0xa0ede0082faaf2b6U},  {0, 0, 6, 0, 0xf2a3e23f57f91d74U},
        {0, 0, 6, 1, 0x811e1f238bb12d80U},  {0, 2, 5, 0, 0x7f6875fd81f5c264U},  {0, 2, 5, 1, 0x1882aef02e65671eU},
        {0, 2, 6, 0, 0x82133f35f1c04617U},  {0, 2, 6, 1, 0x5ab3cfac621f8995U},  {5, 0, 5, 0, 0xf39ab571894a6faeU},
        {5, 0, 5, 1, 0xa2f4b8fd74a43eebU},  {5, 0, 6, 0, 0x94096ca899179468U},  {5, 0, 6, 1, 0xa77c28303fd79a7fU},
        {5, 2, 5, 0, 0xb3f22a953a743afdU},  {5, 2, 5, 1, 0xb911185854a5c5ecU},  {5, 2, 6, 0, 0x2a36476484f27950U},
        {5, 2, 6, 1, 0x5b61b6d61d5ec3f6U},  {10, 0, 5, 0, 0xecaab1af2f5cb3a6U}, {10, 0, 5, 1, 0x134c1a71f241c07bU},
        {10, 0, 6, 0, 0xf0978a782a77b8f1U}, {10, 0, 6, 1, 0xb14a70465bf9394eU}, {10, 2, 5, 0, 0xf2c49e7a8e1886ceU},
        {10, 2, 5, 1, 0x85aa14ad7a5022fdU}, {10, 2, 6, 0, 0x018c139df2cab2c6U}, {10, 2, 6, 1, 0x0ebd4cde9a90f8a6U},
        {11, 0, 5, 0, 0xecaab1af2f5cb3a6U}, {11, 0, 5, 1, 0x134c1a71f241c07bU}, {11, 0, 6, 0, 0xf0978a782a77b8f1U},
        {11, 0, 6, 1, 0xb14a70465bf9394eU}, {11, 2, 5, 0, 0xf2c49e7a8e1886ceU}, {11, 2, 5, 1, 0x85aa14ad7a5022fdU},
        {11, 2, 6, 0, 0x018c139df2cab2c6U}, {11, 2, 6, 1, 0x0ebd4cde9a90f8a6U}, {30, 0, 5, 0, 0x55e0118b74de9298U},
        {30, 0, 5, 1, 0xfb1ecf8854fd820cU}, {30, 0, 6, 0, 0xaf86a8ef1bf84114U}, {30, 0, 6, 1, 0x05916681373c428bU},
        {30, 2, 5, 0, 0x37c0acfb85def373U}, {30, 2, 5, 1, 0x1496fe56cd5ba361U}, {30, 2, 6, 0, 0xeabadc7535c81de3U},
        {30, 2, 6, 1, 0x26ec2bb86416f31cU},
    };
    for (const Case& c : kCases) {
        const std::int32_t stride = c.format == PIXMORPH_UYVY || c.format == PIXMORPH_YUY2 ? 176 : 104;
        // Modes in pairs and fields by their order in time give the same pictures.
        for (const std::uint32_t mode : {c.mode, c.mode + 1})
            for (const std::uint32_t fieldIntact : {c.parity, 2 + ((c.structure == 5) == (c.parity == 0) ? 0u : 1u)}) {
                const auto deinterlacer = Create<IVideoDeinterlacer>(CLSID_VideoDeinterlacer);
                ASSERT_EQ(deinterlacer->Initialize(mode), S_OK);
                for (const std::uint32_t seed : {41u, 42u, 43u})
                    ASSERT_EQ(Give(deinterlacer.Get(), Frame(104, 40, seed, stride), 72, 40, c.format, c.structure),
                              S_OK);
                Frame output(104, 40, 51, stride);
                ASSERT_EQ(deinterlacer->GetFrame(output.planes, output.strides, 72, 40, c.format, fieldIntact), S_OK);
                EXPECT_EQ(output.buffer.Hash(), c.hash) << "case " << &c - kCases << " field " << fieldIntact;
            }
    }
}

TEST(VideoDeinterlacer, ResultsOverALifetime) {
    const auto deinterlacer = Create<IVideoDeinterlacer>(CLSID_VideoDeinterlacer);
    IVideoDeinterlacer* const object = deinterlacer.Get();
    const Frame frame(64, 32, 1, 128);
    Frame output(64, 32, 2, 128);
    const auto get = [&](std::uint32_t width = 64, std::uint32_t height = 32, std::uint32_t format = PIXMORPH_UYVY) {
        return object->GetFrame(output.planes, output.strides, width, height, format, PIXMORPH_KEEP_FIRST);
    };
    EXPECT_EQ(Give(object, frame, 64, 32, PIXMORPH_UYVY), E_NOTIMPL);
    EXPECT_EQ(Give(object, frame, 64, 32, PIXMORPH_UYVY, 1), E_NOTIMPL);
    EXPECT_EQ(object->SetSourceFrame(nullptr, nullptr, 64, 32, PIXMORPH_UYVY, 5), E_NOTIMPL);
    EXPECT_EQ(get(), E_NOTIMPL);
    EXPECT_EQ(object->GetFrame(nullptr, nullptr, 64, 32, PIXMORPH_UYVY, 0), E_NOTIMPL);

    // A mode out of range leaves a new filter without a history.
    EXPECT_EQ(object->Initialize(4), E_INVALIDARG);
    EXPECT_EQ(get(), E_PENDING);
    EXPECT_EQ(object->Initialize(0), S_OK);
    EXPECT_EQ(get(), E_PENDING);
    for (const std::uint32_t structure : {0u, 1u, 4u, 7u})
        EXPECT_EQ(Give(object, frame, 64, 32, PIXMORPH_UYVY, structure), E_INVALIDARG);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(Give(object, frame, 64, 32, PIXMORPH_UYVY), S_OK);
        EXPECT_EQ(get(), E_PENDING);
    }
    EXPECT_EQ(Give(object, frame, 64, 32, PIXMORPH_UYVY), S_OK);
    EXPECT_EQ(get(), S_OK);
    EXPECT_EQ(get(62), E_FAIL);
    EXPECT_EQ(get(64, 30), E_FAIL);
    EXPECT_EQ(get(64, 32, 9), E_FAIL);
    EXPECT_EQ(get(64, 32, 12345), E_FAIL);

    // Missing pixels; the history stays.
    const std::uint8_t* nothing[4] = {};
    std::uint8_t* nowhere[4] = {};
    EXPECT_EQ(object->SetSourceFrame(nothing, frame.strides, 64, 32, PIXMORPH_UYVY, 5), E_FAIL);
    EXPECT_EQ(object->SetSourceFrame(nullptr, frame.strides, 64, 32, PIXMORPH_UYVY, 5), E_FAIL);
    EXPECT_EQ(object->SetSourceFrame(frame.planes, nullptr, 64, 32, PIXMORPH_UYVY, 5), E_FAIL);
    EXPECT_EQ(object->GetFrame(nowhere, output.strides, 64, 32, PIXMORPH_UYVY, 0), E_FAIL);
    EXPECT_EQ(object->GetFrame(nullptr, output.strides, 64, 32, PIXMORPH_UYVY, 0), E_FAIL);
    EXPECT_EQ(object->GetFrame(output.planes, nullptr, 64, 32, PIXMORPH_UYVY, 0), E_FAIL);
    EXPECT_EQ(get(), S_OK);

    // Another size in mid-stream restarts the history, also when that frame is refused.
    EXPECT_EQ(object->SetSourceFrame(nothing, frame.strides, 32, 32, PIXMORPH_UYVY, 5), E_FAIL);
    EXPECT_EQ(get(), E_PENDING);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Give(object, frame, 32, 32, PIXMORPH_UYVY), S_OK);
    EXPECT_EQ(get(32), S_OK);
    EXPECT_EQ(get(), E_FAIL);

    // A mode out of range drops the running filter.
    EXPECT_EQ(object->Initialize(0xFFFFFFFF), E_INVALIDARG);
    EXPECT_EQ(get(32), E_PENDING);
}

TEST(VideoDeinterlacer, TinyAndOddPictures) {
    struct Case {
        std::uint32_t format, width, height;
        HRESULT set, get;
    };
    for (const Case& c : {Case{PIXMORPH_UYVY, 14, 16, S_OK, E_FAIL}, Case{PIXMORPH_UYVY, 16, 2, S_OK, S_OK},
                          Case{PIXMORPH_UYVY, 16, 3, S_OK, E_FAIL}, Case{PIXMORPH_Y422, 30, 8, S_OK, E_FAIL},
                          Case{PIXMORPH_Y422, 32, 8, S_OK, S_OK}, Case{PIXMORPH_IYUV, 32, 4, S_OK, S_OK},
                          Case{PIXMORPH_IYUV, 32, 6, S_OK, E_FAIL}, Case{PIXMORPH_IYUV, 32, 5, S_OK, E_FAIL},
                          Case{PIXMORPH_YVYU, 32, 8, S_OK, E_FAIL}, Case{PIXMORPH_UYVY, 0, 8, E_FAIL, E_PENDING},
                          Case{PIXMORPH_UYVY, 32, 0, E_FAIL, E_PENDING}, Case{PIXMORPH_Y32, 32, 8, E_FAIL, E_PENDING},
                          Case{PIXMORPH_NV12, 32, 7, E_FAIL, E_PENDING}, Case{99, 32, 8, E_FAIL, E_PENDING}}) {
        const auto deinterlacer = Create<IVideoDeinterlacer>(CLSID_VideoDeinterlacer);
        ASSERT_EQ(deinterlacer->Initialize(0), S_OK);
        const Frame frame(64, 16, 1, 64);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(Give(deinterlacer.Get(), frame, c.width, c.height, c.format), c.set);
        Frame output(64, 16, 2, 64);
        EXPECT_EQ(deinterlacer->GetFrame(output.planes, output.strides, c.width, c.height, c.format, 0), c.get)
            << c.format << " " << c.width << "x" << c.height;
    }
}

// Strides may change from frame to frame, and from source to output.
TEST(VideoDeinterlacer, StridesAreEachFramesOwn) {
    const auto picture = [](std::int32_t stride, std::uint32_t seed) {
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(stride) * 32);
        ByteGenerator generator(seed);
        for (std::size_t y = 0; y < 32; ++y)
            for (std::size_t x = 0; x < 128; ++x) bytes[y * static_cast<std::size_t>(stride) + x] = generator.Next();
        return bytes;
    };
    const auto run = [&](const std::int32_t(&strides)[4]) {
        const auto deinterlacer = Create<IVideoDeinterlacer>(CLSID_VideoDeinterlacer);
        EXPECT_EQ(deinterlacer->Initialize(0), S_OK);
        for (std::uint32_t i = 0; i < 3; ++i) {
            auto bytes = picture(strides[i], i);
            const std::uint8_t* planes[4] = {bytes.data()};
            const std::int32_t all[4] = {strides[i]};
            EXPECT_EQ(deinterlacer->SetSourceFrame(planes, all, 64, 32, PIXMORPH_YUY2, 6), S_OK);
        }
        std::vector<std::uint8_t> output(static_cast<std::size_t>(strides[3]) * 32);
        std::uint8_t* planes[4] = {output.data()};
        const std::int32_t all[4] = {strides[3]};
        EXPECT_EQ(deinterlacer->GetFrame(planes, all, 64, 32, PIXMORPH_YUY2, 3), S_OK);
        std::vector<std::uint8_t> rows;
        for (std::size_t y = 0; y < 32; ++y)
            rows.insert(rows.end(), output.begin() + static_cast<std::ptrdiff_t>(y) * strides[3],
                        output.begin() + static_cast<std::ptrdiff_t>(y) * strides[3] + 128);
        return rows;
    };
    EXPECT_EQ(run({128, 128, 128, 128}), run({130, 257, 128, 200}));
}

// A source in RGB is taken as it lies in memory, by the numbers that elsewhere mean top-down as well.
TEST(VideoDeinterlacer, TopDownNumbersAreNotFlipped) {
    const auto run = [](std::uint32_t format) {
        const auto deinterlacer = Create<IVideoDeinterlacer>(CLSID_VideoDeinterlacer);
        EXPECT_EQ(deinterlacer->Initialize(0), S_OK);
        for (const std::uint32_t seed : {1u, 2u, 3u})
            EXPECT_EQ(Give(deinterlacer.Get(), Frame(64, 32, seed, 256), 64, 32, format), S_OK);
        Frame output(64, 32, 4, 256);
        EXPECT_EQ(deinterlacer->GetFrame(output.planes, output.strides, 64, 32, format, 0), S_OK);
        return output.buffer.Hash();
    };
    EXPECT_EQ(run(PIXMORPH_BGRA), run(PIXMORPH_BGRA_TOP_DOWN));
}

TEST(VideoDeinterlacer, FourCharacterCodes) {
    const auto deinterlacer = Create<IVideoDeinterlacer>(CLSID_VideoDeinterlacer);
    ASSERT_EQ(deinterlacer->Initialize(0), S_OK);
    constexpr std::uint32_t kUyvy = 0x59565955;
    constexpr std::uint32_t kYuy2InLowerCase = 0x32797579;
    const Frame frame(64, 32, 1, 128);
    Frame byCode(64, 32, 2, 128), byNumber(64, 32, 2, 128);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(Give(deinterlacer.Get(), frame, 64, 32, kUyvy), S_OK);
    ASSERT_EQ(deinterlacer->GetFrame(byCode.planes, byCode.strides, 64, 32, kYuy2InLowerCase, 0), S_OK);
    ASSERT_EQ(deinterlacer->GetFrame(byNumber.planes, byNumber.strides, 64, 32, PIXMORPH_YUY2, 0), S_OK);
    EXPECT_TRUE(byCode.buffer == byNumber.buffer);
}

}  // namespace
}  // namespace pixmorph_test
