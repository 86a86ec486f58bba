// Crops and field views, against worked numbers.
#include <gtest/gtest.h>

#include <cstring>

#include "foundation/image_descriptor.h"

namespace {

using namespace KorvaneSoftware;

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

TEST(ImageCrop, PackedFormats) {
    ImageDescriptor uyvy = Shape(FMT_UYVY, 720, 576);
    ASSERT_EQ(ImageSetPlanes(&uyvy, At(kBase), 1500), IMG_OK);
    ASSERT_EQ(ImageCrop(&uyvy, {10, 20, 100, 50}), IMG_OK);
    EXPECT_EQ(AddressOf(uyvy.planes[0]), kBase + 20 * 1500 + 20);
    EXPECT_EQ(uyvy.strides[0], 1500);
    EXPECT_EQ(uyvy.width, 100u);
    EXPECT_EQ(uyvy.height, 50u);
    ImageDescriptor y41p = Shape(FMT_Y41P, 64, 10);
    ASSERT_EQ(ImageSetPlanes(&y41p, At(kBase), 96), IMG_OK);
    ASSERT_EQ(ImageCrop(&y41p, {12, 3, 20, 7}), IMG_OK);
    EXPECT_EQ(AddressOf(y41p.planes[0]), kBase + 3 * 96 + 18);
}

TEST(ImageCrop, BottomUpFormatsCountFromTheHighAddresses) {
    for (const std::uint32_t format : {+FMT_BGR, +FMT_BGRA, +FMT_BGR8}) {
        SCOPED_TRACE(format);
        const std::uint64_t pixel = format == FMT_BGR ? 3 : format == FMT_BGRA ? 4 : 1;
        ImageDescriptor top = Shape(format, 720, 576);
        ASSERT_EQ(ImageSetPlanes(&top, At(kBase), 4000), IMG_OK);
        ImageDescriptor inner = top;
        ASSERT_EQ(ImageCrop(&top, {0, 0, 720, 100}), IMG_OK);
        EXPECT_EQ(AddressOf(top.planes[0]), kBase + 476 * 4000);
        ASSERT_EQ(ImageCrop(&inner, {7, 30, 11, 100}), IMG_OK);
        EXPECT_EQ(AddressOf(inner.planes[0]), kBase + (576 - 100 - 30) * 4000 + 7 * pixel);
    }
}

TEST(ImageCrop, PlanarFormats) {
    ImageDescriptor i420 = Shape(FMT_I420, 64, 32);
    i420.planes[0] = At(kBase);
    i420.strides[0] = 80;
    ASSERT_EQ(ImageCrop(&i420, {6, 10, 20, 8}), IMG_OK);
    EXPECT_EQ(AddressOf(i420.planes[0]), kBase + 10 * 80 + 6);
    EXPECT_EQ(AddressOf(i420.planes[1]), kBase + 32 * 80 + 5 * 40 + 3);
    EXPECT_EQ(AddressOf(i420.planes[2]), kBase + 32 * 80 + 16 * 40 + 5 * 40 + 3);
    ImageDescriptor p422 = Shape(FMT_P422, 64, 32);
    p422.planes[0] = At(kBase);
    p422.strides[0] = 128;
    ASSERT_EQ(ImageCrop(&p422, {6, 3, 20, 8}), IMG_OK);
    EXPECT_EQ(AddressOf(p422.planes[0]), kBase + 3 * 128 + 12);
    EXPECT_EQ(AddressOf(p422.planes[1]), kBase + 32 * 128 + 3 * 64 + 6);
    EXPECT_EQ(AddressOf(p422.planes[2]), kBase + 32 * 128 + 32 * 64 + 3 * 64 + 6);
    ImageDescriptor nv12 = Shape(FMT_NV12, 64, 32);
    nv12.planes[0] = At(kBase);
    nv12.strides[0] = 64;
    ASSERT_EQ(ImageCrop(&nv12, {6, 2, 20, 8}), IMG_OK);
    EXPECT_EQ(AddressOf(nv12.planes[1]), kBase + 32 * 64 + 64 + 6);
    EXPECT_EQ(nv12.planes[2], nullptr);
    ImageDescriptor p216 = Shape(FMT_P216, 64, 32);
    p216.planes[0] = At(kBase);
    p216.strides[0] = 128;
    ASSERT_EQ(ImageCrop(&p216, {6, 3, 20, 8}), IMG_OK);
    EXPECT_EQ(AddressOf(p216.planes[1]), kBase + 32 * 128 + 3 * 128 + 12);
}

TEST(ImageCrop, RefusesWhatLiesOutside) {
    ImageDescriptor desc = Shape(FMT_UYVY, 64, 32);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), 128), IMG_OK);
    const ImageDescriptor before = desc;
    for (const ImageRect& rect : {ImageRect{-2, 0, 4, 4}, ImageRect{0, -1, 4, 4}, ImageRect{0, 0, -2, 4},
                                  ImageRect{0, 0, 4, -1}, ImageRect{62, 0, 4, 4}, ImageRect{0, 30, 4, 3},
                                  ImageRect{0x7FFFFFFE, 0, 0x7FFFFFFE, 1}, ImageRect{0, 0x7FFFFFFF, 2, 0x7FFFFFFF}})
        EXPECT_EQ(ImageCrop(&desc, rect), IMG_E_BAD_SIZE) << rect.x << " " << rect.y;
    EXPECT_TRUE(Same(desc, before));
    EXPECT_EQ(ImageCrop(static_cast<ImageDescriptor*>(nullptr), {0, 0, 2, 2}), IMG_E_NULL_ARG);
}

TEST(ImageCrop, ChecksTheRectangleBeforeTheFormat) {
    ImageDescriptor desc = Shape(99, 64, 32);
    EXPECT_EQ(ImageCrop(&desc, {-1, 0, 2, 2}), IMG_E_BAD_SIZE);
    EXPECT_EQ(ImageCrop(&desc, {0, 0, 66, 2}), IMG_E_BAD_SIZE);
    EXPECT_EQ(ImageCrop(&desc, {0, 0, 2, 2}), IMG_E_BAD_FORMAT);
}

TEST(ImageCrop, AsksForTheFormatsAlignment) {
    for (const FormatInfo& info : FormatInfoTable()) {
        if (info.id == 0) continue;
        SCOPED_TRACE(info.id);
        const auto crop = [&](int x, int y, int width, int height) {
            ImageDescriptor desc = Shape(info.id, 64, 32);
            desc.planes[0] = At(kBase);
            desc.strides[0] = 512;
            return ImageCrop(&desc, {x, y, width, height});
        };
        EXPECT_EQ(crop(16, 4, 32, 8), IMG_OK);
        EXPECT_EQ(crop(1, 4, 32, 8), info.xAlign == 1 ? IMG_OK : IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(crop(16, 4, 31, 8), info.xAlign == 1 ? IMG_OK : IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(crop(16, 1, 32, 8), info.yAlign == 1 ? IMG_OK : IMG_E_BAD_ALIGNMENT);
        EXPECT_EQ(crop(16, 4, 32, 7), info.yAlign == 1 ? IMG_OK : IMG_E_BAD_ALIGNMENT);
    }
}

TEST(ImageCrop, AllowsAnEmptyRectangleAtTheEdge) {
    ImageDescriptor desc = Shape(FMT_UYVY, 64, 32);
    ASSERT_EQ(ImageSetPlanes(&desc, At(kBase), 128), IMG_OK);
    EXPECT_EQ(ImageCrop(&desc, {64, 0, 0, 32}), IMG_OK);
    EXPECT_EQ(AddressOf(desc.planes[0]), kBase + 128);
    EXPECT_EQ(desc.width, 0u);
}

TEST(ImageCrop, ReturnsAFailureOfCompletion) {
    ImageDescriptor empty = Shape(FMT_UYVY, 64, 32);
    EXPECT_EQ(ImageCrop(&empty, {0, 0, 2, 2}), IMG_E_NULL_ARG);
}

TEST(ImageFieldView, TopDownFormats) {
    ImageDescriptor frame = Shape(FMT_UYVY, 64, 34);
    frame.lumaExtraBits = 1;
    frame.chromaExtraBits = 2;
    frame.colorMatrix = 3;
    ASSERT_EQ(ImageSetPlanes(&frame, At(kBase), 128), IMG_OK);
    ImageDescriptor field;
    ASSERT_EQ(ImageFieldView(&field, &frame, 0), IMG_OK);
    EXPECT_EQ(AddressOf(field.planes[0]), kBase);
    EXPECT_EQ(field.strides[0], 256);
    EXPECT_EQ(field.height, 17u);
    EXPECT_EQ(field.width, 64u);
    EXPECT_EQ(field.colorMatrix, 3);
    EXPECT_EQ(field.lumaExtraBits, 1);
    EXPECT_EQ(field.chromaExtraBits, 2);
    ASSERT_EQ(ImageFieldView(&field, &frame, 1), IMG_OK);
    EXPECT_EQ(AddressOf(field.planes[0]), kBase + 128);
    EXPECT_EQ(field.strides[0], 256);
}

TEST(ImageFieldView, BottomUpFormatsStartAtTheOtherLine) {
    for (const std::uint32_t format : {+FMT_BGR, +FMT_BGRA, +FMT_BGR8}) {
        ImageDescriptor frame = Shape(format, 16, 10);
        ASSERT_EQ(ImageSetPlanes(&frame, At(kBase), 64), IMG_OK);
        ImageDescriptor field;
        ASSERT_EQ(ImageFieldView(&field, &frame, 1), IMG_OK);
        EXPECT_EQ(AddressOf(field.planes[0]), kBase);
        ASSERT_EQ(ImageFieldView(&field, &frame, 0), IMG_OK);
        EXPECT_EQ(AddressOf(field.planes[0]), kBase + 64);
        EXPECT_EQ(field.strides[0], 128);
    }
}

TEST(ImageFieldView, CopiesTheFrameAsItWasGiven) {
    ImageDescriptor frame = Shape(FMT_I420, 64, 32);
    frame.planes[0] = At(kBase);
    frame.strides[0] = 64;
    ImageDescriptor field;
    ASSERT_EQ(ImageFieldView(&field, &frame, 1), IMG_OK);
    EXPECT_EQ(field.planes[1], nullptr);
    EXPECT_EQ(field.planes[2], nullptr);
    ASSERT_EQ(ImageCompletePlanes(&frame), IMG_OK);
    ASSERT_EQ(ImageFieldView(&field, &frame, 1), IMG_OK);
    EXPECT_EQ(AddressOf(field.planes[1]), kBase + 32 * 64 + 32);
    EXPECT_EQ(AddressOf(field.planes[2]), kBase + 32 * 64 + 16 * 32 + 32);
    EXPECT_EQ(field.strides[1], 64);
    EXPECT_EQ(field.strides[2], 64);
}

TEST(ImageFieldView, ChecksItsArguments) {
    ImageDescriptor frame = Shape(FMT_I420, 64, 34);
    frame.planes[0] = At(kBase);
    frame.strides[0] = 64;
    ImageDescriptor field;
    EXPECT_EQ(ImageFieldView(static_cast<ImageDescriptor*>(nullptr), &frame, 0), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageFieldView(&field, nullptr, 0), IMG_E_NULL_ARG);
    EXPECT_EQ(ImageFieldView(&field, &frame, 0), IMG_E_BAD_ALIGNMENT);  // 34 is no multiple of 4
    frame.height = 36;
    EXPECT_EQ(ImageFieldView(&field, &frame, 0), IMG_OK);
    ImageDescriptor odd = Shape(FMT_UYVY, 64, 33);
    EXPECT_EQ(ImageFieldView(&field, &odd, 0), IMG_E_BAD_ALIGNMENT);
    ImageDescriptor empty = Shape(FMT_UYVY, 64, 32);
    EXPECT_EQ(ImageFieldView(&field, &empty, 0), IMG_E_NULL_ARG);
}

TEST(ImageFieldView, MayOverwriteItsFrame) {
    ImageDescriptor frame = Shape(FMT_UYVY, 64, 32);
    ASSERT_EQ(ImageSetPlanes(&frame, At(kBase), 128), IMG_OK);
    ASSERT_EQ(ImageFieldView(&frame, &frame, 1), IMG_OK);
    EXPECT_EQ(AddressOf(frame.planes[0]), kBase + 128);
    EXPECT_EQ(frame.height, 16u);
}

}  // namespace
