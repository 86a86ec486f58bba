// Plane positions, strides and sizes, against worked numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/image_descriptor.h"

namespace {

using namespace KorvaneSoftware;

constexpr std::uint32_t kUnknownFormats[] = {0, 1, 2, 35, 36, 37, 38, 39, 41, 42, 43, 100, 0xFFFFFFFF};

ImageDescriptor Shape(std::uint32_t format, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor desc;
    desc.format = format;
    desc.width = width;
    desc.height = height;
    return desc;
}

// An address that is only computed with, never followed.
std::uint8_t* At(std::uint64_t address) { return reinterpret_cast<std::uint8_t*>(address); }
std::uint64_t AddressOf(const std::uint8_t* p) { return reinterpret_cast<std::uint64_t>(p); }

constexpr std::uint64_t kBase = 0x10000000;

bool Same(const ImageDescriptor& a, const ImageDescriptor& b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

TEST(ImageAlign, RoundsUpToPowersOfTwo) {
    EXPECT_EQ(ImageAlign(0, 16), 0u);
    EXPECT_EQ(ImageAlign(1, 16), 16u);
    EXPECT_EQ(ImageAlign(16, 16), 16u);
    EXPECT_EQ(ImageAlign(17, 16), 32u);
    EXPECT_EQ(ImageAlign(1620, 16), 1632u);
    EXPECT_EQ(ImageAlign(7, 1), 7u);
    EXPECT_EQ(ImageAlign(0xFFFFFFFFu, 2), 0x100000000u);
}

TEST(ImageAlign, ClearsTheBitsBelowFortyEightAndEighty) {
    // 2160 + 47 = 2207 = 0x89F; 47 = 0x2F is cleared: 0x890. 3600 + 79 = 3679 = 0xE5F; 79 = 0x4F is cleared: 0xE10.
    EXPECT_EQ(ImageAlign(2160, 48), 0x890u);
    EXPECT_EQ(ImageAlign(3600, 80), 0xE10u);
}

TEST(ImageHelpers, CountBitsAndPlanes) {
    const auto bits = [](std::uint32_t format) {
        const ImageDescriptor desc = Shape(format, 16, 16);
        return ImageBitsPerPixel(&desc);
    };
    const auto planes = [](std::uint32_t format) {
        const ImageDescriptor desc = Shape(format, 16, 16);
        return ImagePlaneCount(&desc);
    };
    EXPECT_EQ(bits(FMT_BGR), 24u);
    EXPECT_EQ(bits(FMT_Y32A), 40u);
    EXPECT_EQ(bits(FMT_Y41P), 12u);
    EXPECT_EQ(bits(FMT_S400), 16u);
    EXPECT_EQ(bits(FMT_I420), 12u);
    EXPECT_EQ(bits(FMT_YVU9), 9u);
    EXPECT_EQ(bits(FMT_IMC1), 16u);
    EXPECT_EQ(bits(FMT_P216), 32u);
    EXPECT_EQ(planes(FMT_BGR), 1u);
    EXPECT_EQ(planes(FMT_NV12), 2u);
    EXPECT_EQ(planes(FMT_I420), 3u);
    EXPECT_EQ(ImageBitsPerPixel(nullptr), 0u);
    EXPECT_EQ(ImagePlaneCount(nullptr), 0u);
}

TEST(ImageHelpers, MeasurePlanes) {
    ImageDescriptor desc = Shape(FMT_I420, 1921, 1081);
    desc.strides[0] = -1984;
    desc.strides[1] = 992;
    desc.strides[2] = 993;
    desc.strides[3] = 7;
    EXPECT_EQ(ImagePlaneRowBytes(&desc, 0), 1921u);
    EXPECT_EQ(ImagePlaneRowBytes(&desc, 1), 960u);
    EXPECT_EQ(ImagePlaneRowBytes(&desc, 2), 960u);
    EXPECT_EQ(ImagePlaneRowBytes(&desc, 3), 0u);
    EXPECT_EQ(ImagePlaneRowBytes(&desc, 4), 0u);
    EXPECT_EQ(ImagePlaneRowBytes(&desc, 0xFFFFFFFF), 0u);
    EXPECT_EQ(ImagePlaneHeight(&desc, 0), 1081u);
    EXPECT_EQ(ImagePlaneHeight(&desc, 1), 540u);
    EXPECT_EQ(ImagePlaneHeight(&desc, 2), 540u);
    EXPECT_EQ(ImagePlaneHeight(&desc, 3), 0u);
    EXPECT_EQ(ImagePlaneStride(&desc, 0), -1984);
    EXPECT_EQ(ImagePlaneStride(&desc, 1), 992);
    EXPECT_EQ(ImagePlaneStride(&desc, 2), 993);
    EXPECT_EQ(ImagePlaneStride(&desc, 3), 0);
    const ImageDescriptor nv12 = Shape(FMT_NV12, 720, 576);
    EXPECT_EQ(ImagePlaneRowBytes(&nv12, 1), 720u);
    EXPECT_EQ(ImagePlaneHeight(&nv12, 1), 288u);
    EXPECT_EQ(ImagePlaneRowBytes(&nv12, 2), 0u);
    const ImageDescriptor p216 = Shape(FMT_P216, 720, 576);
    EXPECT_EQ(ImagePlaneRowBytes(&p216, 0), 1440u);
    EXPECT_EQ(ImagePlaneRowBytes(&p216, 1), 1440u);
    EXPECT_EQ(ImagePlaneHeight(&p216, 1), 576u);
    const ImageDescriptor y41p = Shape(FMT_Y41P, 20, 4);
    EXPECT_EQ(ImagePlaneRowBytes(&y41p, 0), 30u);
    const ImageDescriptor wide = Shape(FMT_BGRA, 0xFFFFFFFF, 1);
    EXPECT_EQ(ImagePlaneRowBytes(&wide, 0), 0xFFFFFFFFull * 4);
    EXPECT_EQ(ImagePlaneRowBytes(nullptr, 0), 0u);
    EXPECT_EQ(ImagePlaneHeight(nullptr, 0), 0u);
    EXPECT_EQ(ImagePlaneStride(nullptr, 0), 0);
}

TEST(ImageHelpers, TreatUnknownFormatsAsUnknown) {
    for (const std::uint32_t format : kUnknownFormats) {
        SCOPED_TRACE(format);
        ImageDescriptor desc = Shape(format, 32, 32);
        desc.planes[0] = At(kBase);
        desc.strides[0] = 64;
        const ImageDescriptor before = desc;
        EXPECT_EQ(ImageBitsPerPixel(&desc), 0u);
        EXPECT_EQ(ImagePlaneCount(&desc), 0u);
        EXPECT_EQ(ImagePlaneRowBytes(&desc, 0), 0u);
        EXPECT_EQ(ImagePlaneHeight(&desc, 0), 0u);
        EXPECT_EQ(ImagePlaneStride(&desc, 0), 0);
        EXPECT_EQ(ImageBufferSize(&desc), 0u);
        EXPECT_EQ(ImageBufferSizeAligned(&desc, 64), 0u);
        EXPECT_EQ(ImageSetPlanes(&desc, At(kBase), 64), IMG_E_BAD_FORMAT);
        EXPECT_EQ(ImageSetPlanesTight(&desc, At(kBase), 1 << 20), IMG_E_BAD_FORMAT);
        EXPECT_EQ(ImageSetPlanesFromBuffer(&desc, At(kBase), 1 << 20), IMG_E_BAD_FORMAT);
        EXPECT_EQ(ImageCompletePlanes(&desc), IMG_E_BAD_FORMAT);
        EXPECT_EQ(ImageCrop(&desc, {0, 0, 16, 16}), IMG_E_BAD_FORMAT);
        ImageDescriptor field;
        EXPECT_EQ(ImageFieldView(&field, &desc, 0), IMG_E_BAD_FORMAT);
        EXPECT_TRUE(Same(desc, before));
        EXPECT_TRUE(Same(field, ImageDescriptor{}));
    }
}

TEST(ImageBufferSize, WorkedNumbers) {
    const auto size = [](std::uint32_t format, std::uint32_t width, std::uint32_t height) {
        const ImageDescriptor desc = Shape(format, width, height);
        return ImageBufferSize(&desc);
    };
    EXPECT_EQ(size(FMT_I420, 1920, 1080), 3110400u);
    EXPECT_EQ(size(FMT_IMC1, 1920, 1080), 1632u * 1920 + 1036800);
    EXPECT_EQ(size(FMT_IMC3, 1920, 1080), 1632u * 1920 + 1036800);
    EXPECT_EQ(size(FMT_IMC2, 1920, 1080), 3110400u);
    EXPECT_EQ(size(FMT_BGR, 719, 576), 2160u * 576);  // 2157 bytes, in fours
    EXPECT_EQ(size(FMT_UYVY, 721, 10), 1442u * 10);
    EXPECT_EQ(size(FMT_Y16, 720, 576), 1440u * 576);
    EXPECT_EQ(size(FMT_Y16, 721, 576), 1472u * 576);
    EXPECT_EQ(size(FMT_Y16A, 720, 576), 0x890u * 576);
    EXPECT_EQ(size(FMT_Y32A, 720, 576), 0xE10u * 576);
    EXPECT_EQ(size(FMT_NV12, 1919, 1080), 1920u * 1080 * 3 / 2);
    EXPECT_EQ(size(FMT_S420, 720, 576), 720u * 2 * 576 * 3 / 2);
    EXPECT_EQ(size(FMT_S422, 720, 576), 720u * 2 * 576 * 2);
    EXPECT_EQ(size(FMT_P216, 720, 576), 720u * 2 * 576 * 4);
    EXPECT_EQ(size(FMT_YVU9, 720, 576), 720u * 576 * 9 / 8);
    EXPECT_EQ(size(FMT_Y444, 33, 7), 33u * 7 * 3);
    EXPECT_EQ(size(FMT_DV12, 720, 480), 720u * 480 * 3 / 2);
    EXPECT_EQ(size(FMT_DV12, 721, 480), 736u * 480 * 3 / 2);
    EXPECT_EQ(size(FMT_Y400, 33, 7), 33u * 7);
    EXPECT_EQ(size(FMT_BGRA, 0, 10), 0u);
    EXPECT_EQ(size(FMT_I420, 10, 0), 0u);
    EXPECT_EQ(ImageBufferSize(nullptr), 0u);
    EXPECT_EQ(ImageBufferSizeAligned(nullptr, 64), 0u);
}

TEST(ImageBufferSize, TakesTheLargerAlignment) {
    const ImageDescriptor uyvy = Shape(FMT_UYVY, 721, 10);
    EXPECT_EQ(ImageBufferSizeAligned(&uyvy, 64), 1472u * 10);
    EXPECT_EQ(ImageBufferSizeAligned(&uyvy, 0), 1442u * 10);
    const ImageDescriptor i420 = Shape(FMT_I420, 722, 10);
    EXPECT_EQ(ImageBufferSizeAligned(&i420, 64), 768u * 10 * 12 / 8);
    const ImageDescriptor y32 = Shape(FMT_Y32, 16, 3);
    EXPECT_EQ(ImageBufferSizeAligned(&y32, 16), 64u * 3);
    const ImageDescriptor imc1 = Shape(FMT_IMC1, 722, 100);
    EXPECT_EQ(ImageBufferSizeAligned(&imc1, 64), 160u * 768 + 100u * 768 / 2);
}

TEST(ImageBufferSize, IsTheLargestNumberWhenNoneHoldsIt) {
    for (const std::uint32_t format : {+FMT_Y32A, +FMT_BGRA, +FMT_P216, +FMT_IMC1, +FMT_IMC3, +FMT_Y444}) {
        const ImageDescriptor desc = Shape(format, 0xFFFFFFFF, 0xFFFFFFFF);
        EXPECT_EQ(ImageBufferSize(&desc), UINT64_MAX) << format;
    }
    const ImageDescriptor fits = Shape(FMT_Y400, 0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(ImageBufferSize(&fits), 0xFFFFFFFFull * 0xFFFFFFFFull);
}

// Every sample of every plane, the chroma of an odd last line included, has a place of its own before the end, and the
// last plane's last line ends there.
TEST(ImageTemporary, HoldsEachPlaneOfEveryFormatAndSize) {
    for (const FormatInfo& info : FormatInfoTable()) {
        if (info.id == FMT_NONE) continue;
        for (std::uint32_t height = 1; height <= 19; ++height) {
            for (const std::uint32_t width : {1u, 2u, 16u, 31u, 63u, 64u, 65u, 126u, 720u}) {
                SCOPED_TRACE(testing::Message() << "format " << info.id << " " << width << "x" << height);
                ImageDescriptor desc = Shape(info.id, width, height);
                const std::uint64_t size = ImageTemporarySize(&desc);
                ASSERT_EQ(ImageSetTemporaryPlanes(&desc, At(kBase)), IMG_OK);
                ASSERT_EQ(desc.strides[0] % 64, 0);
                std::vector<bool> taken(size);
                std::uint64_t end = 0;
                for (std::uint32_t plane = 0; plane < info.planeCount; ++plane) {
                    const std::uint32_t div = plane == 0 ? 1 : info.chromaHeightDiv;
                    const std::uint64_t rowBytes = ImagePlaneRowBytes(&desc, plane);
                    for (std::uint32_t row = 0; row < (height + div - 1) / div; ++row) {
                        const std::uint64_t start = AddressOf(desc.planes[plane]) - kBase +
                                                    row * static_cast<std::uint64_t>(desc.strides[plane]);
                        ASSERT_LE(start + rowBytes, size);
                        for (std::uint64_t i = start; i < start + rowBytes; ++i) {
                            ASSERT_FALSE(taken[i]) << "plane " << plane << " row " << row;
                            taken[i] = true;
                        }
                        end = std::max(end, start + rowBytes);
                    }
                }
                EXPECT_LE(size - end, static_cast<std::uint64_t>(desc.strides[0])) << "more than the rest of a line";
            }
        }
    }
}

TEST(ImageTemporary, WorkedNumbers) {
    const auto size = [](std::uint32_t format, std::uint32_t width, std::uint32_t height) {
        const ImageDescriptor desc = Shape(format, width, height);
        return ImageTemporarySize(&desc);
    };
    EXPECT_EQ(size(FMT_I420, 1920, 1080), 3110400u);
    EXPECT_EQ(size(FMT_I420, 720, 481), 768u * 482 + 2 * 384u * 241);
    EXPECT_EQ(size(FMT_IMC4, 88, 27), 128u * 28 + 128u * 14);
    EXPECT_EQ(size(FMT_NV12, 720, 481), 768u * 482 + 768u * 241);
    EXPECT_EQ(size(FMT_S420, 126, 3), 256u * 4 + 256u * 2);
    EXPECT_EQ(size(FMT_YVU9, 64, 5), 64u * 8 + 2u * 16 * 2);
    EXPECT_EQ(size(FMT_BGRA, 10, 7), 64u * 7);
    EXPECT_EQ(size(FMT_I420, 0, 16), 0u);
    EXPECT_EQ(size(FMT_I420, 16, 0), 0u);
    EXPECT_EQ(size(FMT_P016, 16, 16), 0u);
    EXPECT_EQ(size(FMT_Y444, 0xFFFFFFFF, 0xFFFFFFFF), UINT64_MAX);
    EXPECT_EQ(ImageTemporarySize(nullptr), 0u);
}

TEST(ImageTemporary, RefusesWhatHasNoPlace) {
    ImageDescriptor desc = Shape(FMT_I420, 16, 16);
    EXPECT_EQ(ImageSetTemporaryPlanes(nullptr, At(kBase)), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageSetTemporaryPlanes(&desc, nullptr), IMG_E_NULL_ARG);
    desc.format = FMT_P016;
    EXPECT_EQ(ImageSetTemporaryPlanes(&desc, At(kBase)), IMG_E_BAD_FORMAT);
}

TEST(ImageSetPlanes, HdI420) {
    ImageDescriptor desc = Shape(FMT_I420, 1920, 1080);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), 1920), IMG_OK);
    EXPECT_EQ(AddressOf(desc.planes[0]), kBase);
    EXPECT_EQ(AddressOf(desc.planes[1]), kBase + 2073600);
    EXPECT_EQ(AddressOf(desc.planes[2]), kBase + 2073600 + 1080 * 960 / 2);
    EXPECT_EQ(desc.planes[3], nullptr);
    EXPECT_EQ(desc.strides[0], 1920);
    EXPECT_EQ(desc.strides[1], 960);
    EXPECT_EQ(desc.strides[2], 960);
    EXPECT_EQ(desc.strides[3], 0);
}

TEST(ImageSetPlanes, SideBySideChroma) {
    ImageDescriptor desc = Shape(FMT_S420, 100, 50);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), 256), IMG_OK);
    EXPECT_EQ(desc.strides[1], 256);
    EXPECT_EQ(desc.strides[2], 256);
    EXPECT_EQ(AddressOf(desc.planes[1]), kBase + 50 * 256);
    EXPECT_EQ(AddressOf(desc.planes[2]), kBase + 50 * 256 + 128);
    // Half of a negative stride lies to the left.
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), -256), IMG_OK);
    EXPECT_EQ(AddressOf(desc.planes[1]), kBase - 50 * 256);
    EXPECT_EQ(AddressOf(desc.planes[2]), kBase - 50 * 256 - 128);
}

TEST(ImageSetPlanes, OddHeightRoundsThePlaneUpThoughItsHeightRoundsDown) {
    ImageDescriptor desc = Shape(FMT_I420, 64, 35);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), 64), IMG_OK);
    EXPECT_EQ(AddressOf(desc.planes[1]), kBase + 36 * 64);
    EXPECT_EQ(AddressOf(desc.planes[2]), kBase + 36 * 64 + 18 * 32);
    EXPECT_EQ(ImagePlaneHeight(&desc, 1), 17u);
    ImageDescriptor yvu9 = Shape(FMT_YVU9, 64, 33);
    ASSERT_EQ(ImageSetPlanes(&yvu9, At(kBase), 64), IMG_OK);
    EXPECT_EQ(AddressOf(yvu9.planes[1]), kBase + 36 * 64);
    EXPECT_EQ(AddressOf(yvu9.planes[2]), kBase + 36 * 64 + 9 * 16);
}

TEST(ImageSetPlanes, LumaStrideChroma) {
    ImageDescriptor desc = Shape(FMT_IMC1, 64, 32);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), 80), IMG_OK);
    EXPECT_EQ(desc.strides[1], 80);
    EXPECT_EQ(AddressOf(desc.planes[1]), kBase + 32 * 80);
    EXPECT_EQ(AddressOf(desc.planes[2]), kBase + 32 * 80 + 16 * 80);
}

TEST(ImageSetPlanes, DividesNegativeStridesTowardsZero) {
    ImageDescriptor desc = Shape(FMT_Y422, 16, 10);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), -33), IMG_OK);
    EXPECT_EQ(desc.strides[1], -16);
    EXPECT_EQ(AddressOf(desc.planes[1]), kBase - 330);
    EXPECT_EQ(AddressOf(desc.planes[2]), kBase - 330 - 160);
}

TEST(ImageSetPlanes, StopsAfterTheFormatsPlanes) {
    ImageDescriptor one = Shape(FMT_UYVY, 16, 10);
    one.planes[1] = At(5);
    one.strides[1] = 6;
    ASSERT_EQ(ImageSetPlanes(&one, At(kBase), 32), IMG_OK);
    EXPECT_EQ(one.planes[1], At(5));
    EXPECT_EQ(one.strides[1], 6);
    ImageDescriptor two = Shape(FMT_NV12, 16, 10);
    two.planes[2] = At(5);
    two.strides[2] = 6;
    ASSERT_EQ(ImageSetPlanes(&two, At(kBase), 32), IMG_OK);
    EXPECT_EQ(two.strides[1], 32);
    EXPECT_EQ(AddressOf(two.planes[1]), kBase + 320);
    EXPECT_EQ(two.planes[2], At(5));
    EXPECT_EQ(two.strides[2], 6);
}

TEST(ImageSetPlanes, RefusesNull) {
    ImageDescriptor desc = Shape(FMT_UYVY, 16, 10);
    EXPECT_EQ(ImageSetPlanes(static_cast<ImageDescriptor*>(nullptr), At(kBase), 32), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageSetPlanes(&desc, nullptr, 32), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageSetPlanesTight(nullptr, At(kBase), 32), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageSetPlanesTight(&desc, nullptr, 32), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageSetPlanesFromBuffer(nullptr, At(kBase), 32), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&desc, nullptr, 32), IMG_E_NULL_ARG);
    EXPECT_TRUE(Same(desc, Shape(FMT_UYVY, 16, 10)));
}

TEST(ImageSetPlanesTight, ChecksTheSizeAfterSetting) {
    ImageDescriptor desc = Shape(FMT_BGR, 719, 4);
    EXPECT_EQ(ImageSetPlanesTight(&desc, At(kBase), 2160 * 4), IMG_OK);
    EXPECT_EQ(desc.strides[0], 2160);
    ImageDescriptor shortBuffer = Shape(FMT_I420, 64, 32);
    EXPECT_EQ(ImageSetPlanesTight(&shortBuffer, At(kBase), 64 * 32 * 3 / 2 - 1), IMG_BUFFER_TOO_SMALL);
    EXPECT_EQ(AddressOf(shortBuffer.planes[0]), kBase);
    EXPECT_EQ(AddressOf(shortBuffer.planes[1]), kBase + 64 * 32);
    EXPECT_EQ(shortBuffer.strides[2], 32);
    ImageDescriptor words = Shape(FMT_S422, 50, 2);
    EXPECT_EQ(ImageSetPlanesTight(&words, At(kBase), 1 << 20), IMG_OK);
    EXPECT_EQ(words.strides[0], 100);
}

TEST(ImageSetPlanesFromBuffer, DerivesTheStride) {
    ImageDescriptor bgr = Shape(FMT_BGR, 720, 576);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&bgr, At(kBase), 720 * 3 * 576), IMG_OK);
    EXPECT_EQ(bgr.strides[0], 2160);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&bgr, At(kBase), 720 * 3 * 576 + 1), IMG_OK);
    EXPECT_EQ(bgr.strides[0], 2160);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&bgr, At(kBase), 720 * 3 * 576 + 576), IMG_E_BAD_SIZE);
    ImageDescriptor i420 = Shape(FMT_I420, 1920, 1080);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&i420, At(kBase), 3110400), IMG_OK);
    EXPECT_EQ(i420.strides[0], 1920);
    EXPECT_EQ(AddressOf(i420.planes[1]), kBase + 2073600);
    ImageDescriptor y16a = Shape(FMT_Y16A, 16, 2);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&y16a, At(kBase), 96), IMG_OK);
    EXPECT_EQ(y16a.strides[0], 48);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&y16a, At(kBase), 128), IMG_E_BAD_SIZE);
}

TEST(ImageSetPlanesFromBuffer, ChecksSizesBeforeTheFormat) {
    ImageDescriptor desc = Shape(99, 16, 0);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&desc, At(kBase), 100), IMG_E_BAD_SIZE);
    desc.height = 10;
    EXPECT_EQ(ImageSetPlanesFromBuffer(&desc, At(kBase), 0), IMG_E_BAD_SIZE);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&desc, At(kBase), 100), IMG_E_BAD_FORMAT);
    ImageDescriptor huge = Shape(FMT_Y400, 16, 1);
    EXPECT_EQ(ImageSetPlanesFromBuffer(&huge, At(kBase), UINT64_MAX), IMG_E_BAD_SIZE);
}

TEST(ImageCompletePlanes, FillsOnlyWhatIsZero) {
    ImageDescriptor desc = Shape(FMT_I420, 64, 32);
    desc.planes[0] = At(kBase);
    desc.strides[0] = 64;
    ASSERT_EQ(ImageCompletePlanes(&desc), IMG_OK);
    EXPECT_EQ(AddressOf(desc.planes[1]), kBase + 32 * 64);
    EXPECT_EQ(AddressOf(desc.planes[2]), kBase + 32 * 64 + 16 * 32);
    EXPECT_EQ(desc.strides[1], 32);
    EXPECT_EQ(desc.strides[2], 32);

    ImageDescriptor partial = Shape(FMT_I420, 64, 32);
    partial.planes[0] = At(kBase);
    partial.strides[0] = 64;
    partial.planes[1] = At(0x20000000);
    partial.strides[1] = 48;
    ASSERT_EQ(ImageCompletePlanes(&partial), IMG_OK);
    EXPECT_EQ(AddressOf(partial.planes[1]), 0x20000000u);
    EXPECT_EQ(AddressOf(partial.planes[2]), 0x20000000u + 16 * 48);
    EXPECT_EQ(partial.strides[1], 48);
    EXPECT_EQ(partial.strides[2], 48);

    ImageDescriptor strideOnly = Shape(FMT_I420, 64, 32);
    strideOnly.planes[0] = At(kBase);
    strideOnly.strides[0] = 64;
    strideOnly.planes[2] = At(0x30000000);
    strideOnly.strides[2] = 40;
    ASSERT_EQ(ImageCompletePlanes(&strideOnly), IMG_OK);
    EXPECT_EQ(AddressOf(strideOnly.planes[1]), kBase + 32 * 64);
    EXPECT_EQ(AddressOf(strideOnly.planes[2]), 0x30000000u);
    EXPECT_EQ(strideOnly.strides[2], 40);
}

TEST(ImageCompletePlanes, LeavesWhatTheFormatLacks) {
    ImageDescriptor bgra = Shape(FMT_BGRA, 64, 32);
    bgra.planes[0] = At(kBase);
    bgra.strides[0] = 256;
    const ImageDescriptor before = bgra;
    EXPECT_EQ(ImageCompletePlanes(&bgra), IMG_OK);
    EXPECT_TRUE(Same(bgra, before));
    ImageDescriptor nv12 = Shape(FMT_NV12, 64, 32);
    nv12.planes[0] = At(kBase);
    nv12.strides[0] = 64;
    EXPECT_EQ(ImageCompletePlanes(&nv12), IMG_OK);
    EXPECT_EQ(AddressOf(nv12.planes[1]), kBase + 2048);
    EXPECT_EQ(nv12.planes[2], nullptr);
    EXPECT_EQ(nv12.strides[2], 0);
}

TEST(ImageCompletePlanes, AgreesWithSetPlanesInEveryFormat) {
    for (const FormatInfo& info : FormatInfoTable()) {
        if (info.id == 0) continue;
        for (const std::int64_t stride : {std::int64_t{512}, std::int64_t{-512}, std::int64_t{515}}) {
            ImageDescriptor set = Shape(info.id, 64, 35);
            ASSERT_EQ(ImageSetPlanes(&set, At(kBase), stride), IMG_OK);
            ImageDescriptor completed = Shape(info.id, 64, 35);
            completed.planes[0] = At(kBase);
            completed.strides[0] = stride;
            ASSERT_EQ(ImageCompletePlanes(&completed), IMG_OK);
            EXPECT_TRUE(Same(set, completed)) << info.id << " " << stride;
        }
    }
}

TEST(ImageCompletePlanes, RefusesNull) {
    EXPECT_EQ(ImageCompletePlanes(static_cast<ImageDescriptor*>(nullptr)), IMG_E_NULL_ARG);
    ImageDescriptor empty = Shape(FMT_I420, 64, 32);
    EXPECT_EQ(ImageCompletePlanes(&empty), IMG_E_NULL_ARG);
}

TEST(ImageDescriptorFromBitmapInfo, ReadsDepthAndCode) {
    BitmapInfoHeader header{};
    header.biSize = 40;
    header.biWidth = 720;
    header.biHeight = -576;
    header.biBitCount = 24;
    ImageDescriptor desc = Shape(99, 1, 2);
    desc.lumaExtraBits = 3;
    desc.chromaExtraBits = 4;
    desc.colorMatrix = 5;
    ASSERT_EQ(ImageDescriptorFromBitmapInfo(&desc, &header), IMG_OK);
    EXPECT_EQ(desc.format, 3u);
    EXPECT_EQ(desc.width, 720u);
    EXPECT_EQ(desc.height, 0xFFFFFDC0u);
    EXPECT_EQ(desc.lumaExtraBits, 0);
    EXPECT_EQ(desc.chromaExtraBits, 0);
    EXPECT_EQ(desc.colorMatrix, 0);
    for (const std::uint16_t bits : {25, 32, 64}) {
        header.biBitCount = bits;
        ASSERT_EQ(ImageDescriptorFromBitmapInfo(&desc, &header), IMG_OK);
        EXPECT_EQ(desc.format, 4u);
    }
    for (const std::uint16_t bits : {0, 8, 16, 23}) {
        header.biBitCount = bits;
        EXPECT_EQ(ImageDescriptorFromBitmapInfo(&desc, &header), IMG_E_BAD_FORMAT);
    }
    header.biCompression = 0x32595559;  // "YUY2", whatever the bit count says
    ASSERT_EQ(ImageDescriptorFromBitmapInfo(&desc, &header), IMG_OK);
    EXPECT_EQ(desc.format, 8u);
    header.biCompression = 0x12345678;
    EXPECT_EQ(ImageDescriptorFromBitmapInfo(&desc, &header), IMG_OK);
    EXPECT_EQ(desc.format, 0u);
    EXPECT_EQ(sizeof(BitmapInfoHeader), 40u);
    EXPECT_EQ(ImageDescriptorFromBitmapInfo(nullptr, &header), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageDescriptorFromBitmapInfo(&desc, nullptr), IMG_E_NULL_ARG);
}

TEST(FlipFirstPlane, TurnsAPictureOver) {
    ImageDescriptor desc = Shape(FMT_BGR, 16, 10);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), 48), IMG_OK);
    FlipFirstPlane(desc);
    EXPECT_EQ(AddressOf(desc.planes[0]), kBase + 9 * 48);
    EXPECT_EQ(desc.strides[0], -48);
}

TEST(FlipFirstPlane, OnlyComputesAtHeightZero) {
    ImageDescriptor desc = Shape(FMT_BGR, 0, 0);
    desc.planes[0] = At(1);
    desc.strides[0] = 48;
    FlipFirstPlane(desc);
    EXPECT_EQ(AddressOf(desc.planes[0]), std::uint64_t{1} - 48);
}

// Values that overflow products of 64 bits must stay numbers.
TEST(ImageLayout, SurvivesHostileValues) {
    for (const FormatInfo& info : FormatInfoTable()) {
        if (info.id == 0) continue;
        for (const std::int64_t stride : {INT64_MIN, INT64_MAX, std::int64_t{-1}, std::int64_t{0}}) {
            ImageDescriptor desc = Shape(info.id, 0xFFFFFFF0, 0xFFFFFFF0);
            EXPECT_EQ(ImageSetPlanes(&desc, At(1), stride), IMG_OK);
            ImageDescriptor field;
            EXPECT_EQ(ImageFieldView(&field, &desc, 1), IMG_OK);
            FlipFirstPlane(desc);
            EXPECT_EQ(ImageCrop(&desc, {0x7FFFFFF0, 0x7FFFFFF0, 0x7FFFFFF0, 0x7FFFFFF0}), IMG_OK);
        }
    }
}

}  // namespace
