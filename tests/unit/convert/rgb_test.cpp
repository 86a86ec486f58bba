// YUV and RGB: worked numbers, and every kernel at every processor level against a slow recomputation that decodes the
// source sample by sample from the layouts' byte positions and applies the formulas to each pixel on its own.
#include "convert/rgb.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

#include "support/colour_reference.h"
#include "support/features.h"
#include "support/picture.h"

namespace pixmorph_test {
namespace {

using km::ConvertSlot;
using km::ImageDescriptor;

// --- The recomputation

std::uint8_t Clamped(std::int64_t in32nds) {
    const std::int64_t value = in32nds >= 0 ? in32nds / 32 : -1;
    return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

// One truncated product.
std::int64_t Term(std::int64_t coefficient, std::int64_t sample) { return coefficient * sample / 65536; }

struct Rgb {
    std::uint8_t b, g, r;
};

Rgb ExpectedRgb(int matrix, std::int64_t y, std::int64_t u, std::int64_t v) {
    const auto m = ToRgbReference(matrix);
    const std::int64_t t = Term(m[0], y);
    return {Clamped(t + Term(m[1], u) - m[5]), Clamped(t + m[6] - Term(m[2], u) - Term(m[3], v)),
            Clamped(t + Term(m[4], v) - m[7])};
}

std::uint8_t ExpectedSample(int matrix, int row, std::int64_t b, std::int64_t g, std::int64_t r) {
    const auto m = ToYuvReference(matrix);
    if (row == 0) return Clamped(Term(m[0], b) + Term(m[1], g) + Term(m[2], r) + m[9]);
    if (row == 1) return Clamped(Term(m[3], b) - Term(m[4], g) - Term(m[5], r) + m[10]);
    return Clamped(Term(m[8], r) - Term(m[7], g) - Term(m[6], b) + m[10]);
}

// Where a sample lies: plane and byte within its line. `i` counts luma samples, or chroma samples of the line.
struct Place {
    std::size_t plane, byte;
};

enum class Chroma { PerPair, PerPairAndLines, PerPairDv, PerQuad, PerPixel, None };

struct Layout {
    std::uint32_t format;
    Chroma chroma;
    std::uint32_t widthStep, heightStep;
    int sampleBytes;
    std::function<Place(std::size_t)> y, u, v, a;  // No a: no alpha.
};

std::function<Place(std::size_t)> Every(std::size_t plane, std::size_t step, std::size_t offset) {
    return [=](std::size_t i) { return Place{plane, i * step + offset}; };
}

std::function<Place(std::size_t)> Block(std::size_t bytes, std::size_t run, std::size_t offset) {
    return [=](std::size_t i) { return Place{0, i / run * bytes + offset + i % run}; };
}

Layout LayoutOf(std::uint32_t format) {
    switch (format) {
        case km::FMT_UYVY:
            return {format, Chroma::PerPair, 2, 1, 1, Every(0, 2, 1), Every(0, 4, 0), Every(0, 4, 2), {}};
        case km::FMT_YUY2:
            return {format, Chroma::PerPair, 2, 1, 1, Every(0, 2, 0), Every(0, 4, 1), Every(0, 4, 3), {}};
        case km::FMT_YVYU:
            return {format, Chroma::PerPair, 2, 1, 1, Every(0, 2, 0), Every(0, 4, 3), Every(0, 4, 1), {}};
        case km::FMT_Y16:
            return {format, Chroma::PerPair, 16, 1, 1, Block(32, 16, 0), Block(32, 8, 16), Block(32, 8, 24), {}};
        case km::FMT_Y16A:
            return {format,           Chroma::PerPair,  16, 1, 1, Block(48, 16, 0), Block(48, 8, 32),
                    Block(48, 8, 40), Block(48, 16, 16)};
        case km::FMT_Y32:
            return {format, Chroma::PerPair, 16, 1, 1, Block(64, 16, 0), Block(64, 8, 32), Block(64, 8, 40), {}};
        case km::FMT_Y32A:
            return {format,           Chroma::PerPair,  16, 1, 1, Block(80, 16, 0), Block(80, 8, 48),
                    Block(80, 8, 56), Block(80, 16, 32)};
        case km::FMT_Y32AB:
            return {format,           Chroma::PerPair,  16, 1, 1, Block(80, 16, 16), Block(80, 8, 64),
                    Block(80, 8, 72), Block(80, 16, 32)};
        case km::FMT_Y422:
            return {format, Chroma::PerPair, 2, 1, 1, Every(0, 1, 0), Every(1, 1, 0), Every(2, 1, 0), {}};
        case km::FMT_I420:
            return {format, Chroma::PerPairAndLines, 2, 2, 1, Every(0, 1, 0), Every(1, 1, 0), Every(2, 1, 0), {}};
        case km::FMT_NV12:
            return {format, Chroma::PerPairAndLines, 2, 2, 1, Every(0, 1, 0), Every(1, 2, 0), Every(1, 2, 1), {}};
        case km::FMT_DV12:
            return {format, Chroma::PerPairDv, 16, 2, 1, Every(0, 1, 0), Every(1, 2, 0), Every(1, 2, 1), {}};
        case km::FMT_Y41P:
            return {format,
                    Chroma::PerQuad,
                    8,
                    1,
                    1,
                    [](std::size_t i) {
                        return Place{0, i / 8 * 12 + (i % 8 < 4 ? 2 * (i % 8) + 1 : i % 8 + 4)};
                    },
                    [](std::size_t i) {
                        return Place{0, i / 2 * 12 + (i % 2) * 4};
                    },
                    [](std::size_t i) {
                        return Place{0, i / 2 * 12 + (i % 2) * 4 + 2};
                    },
                    {}};
        case km::FMT_Y444:
            return {format, Chroma::PerPixel, 1, 1, 1, Every(0, 1, 0), Every(1, 1, 0), Every(2, 1, 0), {}};
        case km::FMT_Y400:
            return {format, Chroma::None, 1, 1, 1, Every(0, 1, 0), {}, {}, {}};
        case km::FMT_S420:
            // U and V share the rows of plane 1; the test picture has no third plane.
            return {format, Chroma::PerPairAndLines, 2, 2, 2, Every(0, 2, 0), Every(1, 2, 0), Every(2, 2, 0), {}};
        case km::FMT_P216:
            return {format, Chroma::PerPair, 2, 1, 2, Every(0, 2, 0), Every(1, 4, 0), Every(1, 4, 2), {}};
        case km::FMT_P016:
            return {format, Chroma::PerPairAndLines, 2, 2, 2, Every(0, 2, 0), Every(1, 4, 0), Every(1, 4, 2), {}};
    }
    throw std::logic_error("format without a layout");
}

const std::uint8_t* ByteAt(const ImageDescriptor& desc, Place place, std::int64_t row) {
    return desc.planes[place.plane] + row * desc.strides[place.plane] + static_cast<std::int64_t>(place.byte);
}

/// A sample in 8.8 form.
std::int64_t SampleAt(const ImageDescriptor& desc, const Layout& layout, Place place, std::int64_t row) {
    const std::uint8_t* const p = ByteAt(desc, place, row);
    return layout.sampleBytes == 1 ? p[0] * 256 : p[0] + p[1] * 256;
}

/// One chroma component at a pixel, in 8.8 form, by the siting rules of the format.
std::int64_t ChromaAt(const ImageDescriptor& desc, const Layout& layout, bool isV, std::int64_t x, std::int64_t row) {
    const auto& place = isV ? layout.v : layout.u;
    const std::int64_t width = desc.width, height = desc.height;
    const auto at = [&](std::int64_t i, std::int64_t r) {
        return SampleAt(desc, layout, place(static_cast<std::size_t>(i)), r);
    };
    const std::int64_t pair = x / 2;
    const std::int64_t next = std::min(pair + 1, width / 2 - 1);
    switch (layout.chroma) {
        case Chroma::PerPixel:
            return at(x, row);
        case Chroma::None:
            return 32768;
        case Chroma::PerQuad: {
            const std::int64_t quad = x / 4, nextQuad = std::min(quad + 1, width / 4 - 1);
            return ((4 - x % 4) * at(quad, row) + x % 4 * at(nextQuad, row)) / 4;
        }
        case Chroma::PerPair:
            return x % 2 == 0 ? at(pair, row) : (at(pair, row) + at(next, row) + 1) / 2;
        case Chroma::PerPairAndLines: {
            const std::int64_t r = row / 2;
            const std::int64_t nextRow = row % 2 == 0 ? r : std::min(r + 1, height / 2 - 1);
            const auto ofLine = [&](std::int64_t i) { return (at(i, r) + at(i, nextRow) + 1) / 2; };
            return x % 2 == 0 ? ofLine(pair) : (ofLine(pair) + ofLine(next) + 1) / 2;
        }
        case Chroma::PerPairDv: {
            // In bytes: the mean between lines is rounded to a whole byte.
            const auto ofLine = [&](std::int64_t i) {
                const auto byte = [&](std::int64_t r) { return at(i, r) / 256; };
                if (row == 0) return byte(0) * 256;
                if (row == height - 1) return byte(height / 2 - 1) * 256;
                if (row % 2 == 1) {
                    const std::int64_t r = (row - 1) / 2;
                    return isV ? (byte(r) + 1 + byte(r + 1)) / 2 * 256 : byte(r) * 256;
                }
                const std::int64_t r = (row - 2) / 2;
                return isV ? byte(r + 1) * 256 : (byte(r) + 1 + byte(r + 1)) / 2 * 256;
            };
            return x % 2 == 0 ? ofLine(pair) : (ofLine(pair) + ofLine(next)) / 2;
        }
    }
    return 0;
}

/// The same for RGB: the line counted from the top lies at the far end.
std::uint8_t* PixelAt(const ImageDescriptor& desc, std::int64_t bytes, std::int64_t x, std::int64_t row) {
    return desc.planes[0] + (static_cast<std::int64_t>(desc.height) - 1 - row) * desc.strides[0] + x * bytes;
}

void ExpectYuvToRgb(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const Layout layout = LayoutOf(src.format);
    const std::int64_t bytes = dst.format == km::FMT_BGRA ? 4 : 3;
    for (std::int64_t row = 0; row < src.height; ++row) {
        for (std::int64_t x = 0; x < src.width; ++x) {
            const std::int64_t y = SampleAt(src, layout, layout.y(static_cast<std::size_t>(x)), row);
            const Rgb rgb = ExpectedRgb(src.colorMatrix & 3, y, ChromaAt(src, layout, false, x, row),
                                        ChromaAt(src, layout, true, x, row));
            std::uint8_t* const pixel = PixelAt(dst, bytes, x, row);
            pixel[0] = rgb.b;
            pixel[1] = rgb.g;
            pixel[2] = rgb.r;
            if (bytes == 4) pixel[3] = layout.a ? *ByteAt(src, layout.a(static_cast<std::size_t>(x)), row) : 255;
        }
    }
}

void ExpectRgbToYuv(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const Layout layout = LayoutOf(dst.format);
    const std::int64_t bytes = src.format == km::FMT_BGRA ? 4 : 3;
    const int matrix = dst.colorMatrix & 3;
    const auto put = [&](const std::function<Place(std::size_t)>& place, std::int64_t i, std::int64_t row,
                         std::uint8_t value) {
        *const_cast<std::uint8_t*>(ByteAt(dst, place(static_cast<std::size_t>(i)), row)) = value;
    };
    const std::int64_t lines = layout.chroma == Chroma::PerPairAndLines ? 2 : 1;
    for (std::int64_t row = 0; row < src.height; ++row) {
        for (std::int64_t x = 0; x < src.width; ++x) {
            const std::uint8_t* const p = PixelAt(src, bytes, x, row);
            put(layout.y, x, row, ExpectedSample(matrix, 0, p[0] * 256, p[1] * 256, p[2] * 256));
            if (layout.a) put(layout.a, x, row, bytes == 4 ? p[3] : 255);
            if (x % 2 != 0 || row % lines != 0) continue;
            std::int64_t mean[3];
            for (int i = 0; i < 3; ++i) {
                mean[i] = 0;
                for (std::int64_t line = 0; line < lines; ++line)
                    mean[i] += PixelAt(src, bytes, x, row + line)[i] + PixelAt(src, bytes, x + 1, row + line)[i];
                mean[i] = mean[i] * 256 / (2 * lines);
            }
            put(layout.u, x / 2, row / lines, ExpectedSample(matrix, 1, mean[0], mean[1], mean[2]));
            put(layout.v, x / 2, row / lines, ExpectedSample(matrix, 2, mean[0], mean[1], mean[2]));
        }
    }
}

// --- Every kernel
// -----------------------------------------------------------------------------------------------------

struct Kernel {
    ConvertSlot* slot;
    std::uint32_t dst, src;
};

const Kernel kYuvToRgb[] = {
    {&km::UyvyToBgr, km::FMT_BGR, km::FMT_UYVY},   {&km::UyvyToBgra, km::FMT_BGRA, km::FMT_UYVY},
    {&km::Yuy2ToBgr, km::FMT_BGR, km::FMT_YUY2},   {&km::Yuy2ToBgra, km::FMT_BGRA, km::FMT_YUY2},
    {&km::YvyuToBgr, km::FMT_BGR, km::FMT_YVYU},   {&km::YvyuToBgra, km::FMT_BGRA, km::FMT_YVYU},
    {&km::Y16ToBgr, km::FMT_BGR, km::FMT_Y16},     {&km::Y16ToBgra, km::FMT_BGRA, km::FMT_Y16},
    {&km::Y16AToBgr, km::FMT_BGR, km::FMT_Y16A},   {&km::Y16AToBgra, km::FMT_BGRA, km::FMT_Y16A},
    {&km::Y32ToBgr, km::FMT_BGR, km::FMT_Y32},     {&km::Y32ToBgra, km::FMT_BGRA, km::FMT_Y32},
    {&km::Y32AToBgr, km::FMT_BGR, km::FMT_Y32A},   {&km::Y32AToBgra, km::FMT_BGRA, km::FMT_Y32A},
    {&km::Y32ABToBgr, km::FMT_BGR, km::FMT_Y32AB}, {&km::Y32ABToBgra, km::FMT_BGRA, km::FMT_Y32AB},
    {&km::Y422ToBgr, km::FMT_BGR, km::FMT_Y422},   {&km::Y422ToBgra, km::FMT_BGRA, km::FMT_Y422},
    {&km::I420ToBgr, km::FMT_BGR, km::FMT_I420},   {&km::I420ToBgra, km::FMT_BGRA, km::FMT_I420},
    {&km::Nv12ToBgr, km::FMT_BGR, km::FMT_NV12},   {&km::Nv12ToBgra, km::FMT_BGRA, km::FMT_NV12},
    {&km::Y41PToBgr, km::FMT_BGR, km::FMT_Y41P},   {&km::Y41PToBgra, km::FMT_BGRA, km::FMT_Y41P},
    {&km::Y444ToBgr, km::FMT_BGR, km::FMT_Y444},   {&km::Y444ToBgra, km::FMT_BGRA, km::FMT_Y444},
    {&km::Dv12ToBgr, km::FMT_BGR, km::FMT_DV12},   {&km::Dv12ToBgra, km::FMT_BGRA, km::FMT_DV12},
    {&km::S420ToBgr, km::FMT_BGR, km::FMT_S420},   {&km::S420ToBgra, km::FMT_BGRA, km::FMT_S420},
    {&km::P216ToBgr, km::FMT_BGR, km::FMT_P216},   {&km::P216ToBgra, km::FMT_BGRA, km::FMT_P216},
    {&km::P016ToBgr, km::FMT_BGR, km::FMT_P016},   {&km::P016ToBgra, km::FMT_BGRA, km::FMT_P016},
    {&km::Y400ToBgr, km::FMT_BGR, km::FMT_Y400},
};

const Kernel kRgbToYuv[] = {
    {&km::BgrToUyvy, km::FMT_UYVY, km::FMT_BGR}, {&km::BgraToUyvy, km::FMT_UYVY, km::FMT_BGRA},
    {&km::BgrToYuy2, km::FMT_YUY2, km::FMT_BGR}, {&km::BgraToYuy2, km::FMT_YUY2, km::FMT_BGRA},
    {&km::BgrToYvyu, km::FMT_YVYU, km::FMT_BGR}, {&km::BgraToYvyu, km::FMT_YVYU, km::FMT_BGRA},
    {&km::BgrToY16, km::FMT_Y16, km::FMT_BGR},   {&km::BgraToY16, km::FMT_Y16, km::FMT_BGRA},
    {&km::BgrToY16A, km::FMT_Y16A, km::FMT_BGR}, {&km::BgraToY16A, km::FMT_Y16A, km::FMT_BGRA},
    {&km::BgrToY422, km::FMT_Y422, km::FMT_BGR}, {&km::BgraToY422, km::FMT_Y422, km::FMT_BGRA},
    {&km::BgrToI420, km::FMT_I420, km::FMT_BGR}, {&km::BgraToI420, km::FMT_I420, km::FMT_BGRA},
    {&km::BgrToNv12, km::FMT_NV12, km::FMT_BGR}, {&km::BgraToNv12, km::FMT_NV12, km::FMT_BGRA},
};

void CheckKernel(const Kernel& kernel, void (*expect)(const ImageDescriptor&, const ImageDescriptor&)) {
    SCOPED_TRACE(kernel.slot->Name());
    const Layout layout = LayoutOf(kernel.src <= km::FMT_BGRA ? kernel.dst : kernel.src);
    const PictureLayout layouts[] = {{0, false, 0}, {20, false, 4}, {36, true, 12}};
    std::uint32_t seed = 5;
    for (const std::uint32_t columns : {1u, 2u, 3u, 5u, 37u}) {
        for (const std::uint32_t lines : {1u, 2u, 3u}) {
            for (const Fill fill : {Fill::Random, Fill::Extremes, Fill::Zero, Fill::Max}) {
                const auto matrix = static_cast<std::uint16_t>(seed % 4 + 0x7FFC);  // Upper bits are no part of it.
                const std::uint32_t width = columns * layout.widthStep, height = lines * layout.heightStep;
                // The depth of 16-bit samples plays no part on the way to RGB.
                TestPicture src(kernel.src, width, height, layouts[seed % 3], matrix, 2);
                TestPicture dst(kernel.dst, width, height, layouts[(seed + 1) % 3], matrix);
                src.Fill(fill, seed++);
                dst.Fill(Fill::Random, seed++);
                // The matrix of the RGB side must not matter.
                (kernel.src <= km::FMT_BGRA ? src : dst).Desc().colorMatrix = static_cast<std::uint16_t>(seed);
                TestPicture expected = dst;
                expect(expected.Desc(), src.Desc());
                (*kernel.slot)(dst.Desc(), src.Desc());
                ASSERT_EQ(dst.FirstDifference(expected), "")
                    << width << "x" << height << " matrix " << matrix << " fill " << static_cast<int>(fill);
                ASSERT_TRUE(dst.GuardsIntact()) << width << "x" << height;
            }
        }
    }
}

TEST(YuvToRgb, EveryKernelFollowsTheFormulas) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        SCOPED_TRACE(level);
        for (const Kernel& kernel : kYuvToRgb) CheckKernel(kernel, ExpectYuvToRgb);
    }
}

TEST(RgbToYuv, EveryKernelFollowsTheFormulas) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        SCOPED_TRACE(level);
        for (const Kernel& kernel : kRgbToYuv) CheckKernel(kernel, ExpectRgbToYuv);
    }
}

TEST(Rgb, PicturesOfNoSizeTouchNothing) {
    const auto check = [](const Kernel& kernel) {
        ImageDescriptor src, dst;
        src.format = kernel.src;
        dst.format = kernel.dst;
        // No memory stands behind these.
        src.planes[0] = dst.planes[0] = reinterpret_cast<std::uint8_t*>(1);
        (*kernel.slot)(dst, src);
        src.height = dst.height = 4;
        for (int plane = 1; plane < 3; ++plane) src.planes[plane] = dst.planes[plane] = src.planes[0];
        (*kernel.slot)(dst, src);
        src.width = dst.width = 32;
        src.height = dst.height = 0;
        (*kernel.slot)(dst, src);
    };
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const Kernel& kernel : kYuvToRgb) check(kernel);
        for (const Kernel& kernel : kRgbToYuv) check(kernel);
        check({&km::BgrToBgra, km::FMT_BGRA, km::FMT_BGR});
        check({&km::BgraToBgr, km::FMT_BGR, km::FMT_BGRA});
        check({&km::BgrToY400, km::FMT_Y400, km::FMT_BGR});
    }
}

// --- Worked numbers
// ---------------------------------------------------------------------------------------------------

/// A picture of one plane over bytes of the caller's.
ImageDescriptor Picture(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::uint8_t* bytes,
                        std::int64_t stride, std::uint16_t matrix = 0) {
    ImageDescriptor desc;
    desc.format = format;
    desc.width = width;
    desc.height = height;
    desc.colorMatrix = matrix;
    desc.planes[0] = bytes;
    desc.strides[0] = stride;
    return desc;
}

TEST(YuvToRgb, BlackAndWhiteOfVideoLevels) {
    // Black: t = 9539 * 4096 >> 16 = 596. B: 16525 * 32768 >> 16 = 8262, 596 + 8262 - 8841 = 17, 17 / 32 = 0. G: 596 +
    // 4355 - 1604 - 3330 = 17. R: 596 + 6537 - 7116 = 17.
    // White: t = 9539 * 60160 >> 16 = 8756; each component 8756 - 596 more: 8177 / 32 = 255.
    std::array<std::uint8_t, 8> uyvy = {128, 16, 128, 16, 128, 235, 128, 235};
    std::array<std::uint8_t, 16> bgra{};
    km::UyvyToBgra(Picture(km::FMT_BGRA, 4, 1, bgra.data(), 16), Picture(km::FMT_UYVY, 4, 1, uyvy.data(), 8));
    EXPECT_EQ(bgra, (std::array<std::uint8_t, 16>{0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255, 255}));
}

TEST(YuvToRgb, TwoPixelsHaveNoNextChroma) {
    // U 255, V 0 at Y 128, BT.601: t = 9539 * 32768 >> 16 = 4769. B = 4769 + (16525 * 65280 >> 16 = 16460) - 8841 =
    // 12388: 255. G = 4769 + 4355 - (3209 * 65280 >> 16 = 3196) - 0 = 5928 / 32 = 185. R = 4769 - 7116 < 0: 0. Both
    // pixels alike.
    std::array<std::uint8_t, 4> yuy2 = {128, 255, 128, 0};
    std::array<std::uint8_t, 6> bgr{};
    km::Yuy2ToBgr(Picture(km::FMT_BGR, 2, 1, bgr.data(), 6), Picture(km::FMT_YUY2, 2, 1, yuy2.data(), 4));
    EXPECT_EQ(bgr, (std::array<std::uint8_t, 6>{255, 185, 0, 255, 185, 0}));
}

TEST(YuvToRgb, TwoLinesOf420HaveNoNextChromaLine) {
    // A second chroma line stands behind the picture and must not be read into it.
    std::array<std::uint8_t, 4> luma = {100, 100, 100, 100};
    std::array<std::uint8_t, 4> chroma = {90, 200, 0, 0};
    std::array<std::uint8_t, 16> bgra{};
    ImageDescriptor src = Picture(km::FMT_NV12, 2, 2, luma.data(), 2);
    src.planes[1] = chroma.data();
    src.strides[1] = 2;
    km::Nv12ToBgra(Picture(km::FMT_BGRA, 2, 2, bgra.data(), 8), src);
    // t = 3726; B: 3726 + 5809 - 8841 = 694 / 32 = 21; G: 3726 + 4355 - 1128 - 5203 = 1750 / 32 = 54;
    // R: 3726 + 10214 - 7116 = 6824 / 32 = 213.
    for (std::size_t pixel = 0; pixel < 16; pixel += 4) {
        EXPECT_EQ(bgra[pixel], 21);
        EXPECT_EQ(bgra[pixel + 1], 54);
        EXPECT_EQ(bgra[pixel + 2], 213);
        EXPECT_EQ(bgra[pixel + 3], 255);
    }
}

TEST(YuvToRgb, TheTopLineLiesAtTheEnd) {
    std::array<std::uint8_t, 2> luma = {16, 235};
    std::array<std::uint8_t, 6> bgr{};
    km::Y400ToBgr(Picture(km::FMT_BGR, 1, 2, bgr.data(), 3), Picture(km::FMT_Y400, 1, 2, luma.data(), 1));
    EXPECT_EQ(bgr, (std::array<std::uint8_t, 6>{255, 255, 255, 0, 0, 0}));
}

TEST(YuvToRgb, WordsAreTakenAsTheyAre) {
    // Right-justified black of 10 bits, 64, is hardly above zero: all products vanish, so B = -8841 and R = -7116 clamp
    // to 0 and G = (9539 * 64 >> 16) + 4355 - (3209 * 512 >> 16) - (6660 * 512 >> 16) = 9 + 4355 - 25 - 52 = 4287 / 32
    // = 133.
    std::array<std::uint16_t, 2> luma = {64, 64};
    std::array<std::uint16_t, 2> chroma = {512, 512};
    std::array<std::uint8_t, 6> bgr{};
    ImageDescriptor src = Picture(km::FMT_P216, 2, 1, reinterpret_cast<std::uint8_t*>(luma.data()), 4);
    src.planes[1] = reinterpret_cast<std::uint8_t*>(chroma.data());
    src.strides[1] = 4;
    src.lumaExtraBits = src.chromaExtraBits = 2;
    km::P216ToBgr(Picture(km::FMT_BGR, 2, 1, bgr.data(), 6), src);
    EXPECT_EQ(bgr, (std::array<std::uint8_t, 6>{0, 133, 0, 0, 133, 0}));
}

TEST(RgbToYuv, BlackAndWhite) {
    // Black: offsets only, 529 / 32 = 16 and 4111 / 32 = 128. White at full range: 929 + 4790 + 2439 + 17 = 8175 / 32 =
    // 255; U: 4080 - 2703 - 1376 + 4111 = 4112 / 32 = 128; V: 4080 - 3416 - 663 + 4111 = 4112.
    std::array<std::uint8_t, 8> bgra{};
    std::array<std::uint8_t, 4> uyvy{};
    km::BgraToUyvy(Picture(km::FMT_UYVY, 2, 1, uyvy.data(), 4), Picture(km::FMT_BGRA, 2, 1, bgra.data(), 8));
    EXPECT_EQ(uyvy, (std::array<std::uint8_t, 4>{128, 16, 128, 16}));
    bgra.fill(255);
    km::BgraToUyvy(Picture(km::FMT_UYVY, 2, 1, uyvy.data(), 4, 3), Picture(km::FMT_BGRA, 2, 1, bgra.data(), 8));
    EXPECT_EQ(uyvy, (std::array<std::uint8_t, 4>{128, 255, 128, 255}));
}

TEST(RgbToYuv, Y400LeavesTheLastColumn) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t width : {1u, 2u, 4u, 33u}) {
            std::vector<std::uint8_t> bgr(width * 3 * 2, 255);
            std::vector<std::uint8_t> y400(width * 2, 7);
            // BT.601 at video levels though the destination asks for full range: 799 + 4113 + 2095 + 529 = 7536 / 32 =
            // 235.
            km::BgrToY400(Picture(km::FMT_Y400, width, 2, y400.data(), width, 3),
                          Picture(km::FMT_BGR, width, 2, bgr.data(), width * 3));
            for (std::size_t i = 0; i < y400.size(); ++i)
                ASSERT_EQ(y400[i], i % width == width - 1 ? 7 : 235) << width << " at " << i;
        }
    }
}

TEST(Rgb, AlphaIsAddedAndDropped) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::uint32_t width : {1u, 3u, 16u, 67u}) {
            TestPicture bgr(km::FMT_BGR, width, 3, {7, true, 1}), bgra(km::FMT_BGRA, width, 3, {4, false, 4});
            TestPicture back(km::FMT_BGR, width, 3, {5, false, 3});
            bgr.Fill(Fill::Random, width);
            bgra.Fill(Fill::Random, width + 1);
            km::BgrToBgra(bgra.Desc(), bgr.Desc());
            for (std::size_t row = 0; row < 3; ++row) {
                for (std::size_t x = 0; x < width; ++x) {
                    // Both are bottom-up: lines keep their place.
                    for (std::size_t i = 0; i < 3; ++i)
                        ASSERT_EQ(bgra.Plane(0).Row(row)[4 * x + i], bgr.Plane(0).Row(row)[3 * x + i]);
                    ASSERT_EQ(bgra.Plane(0).Row(row)[4 * x + 3], 255);
                    bgra.Plane(0).Row(row)[4 * x + 3] = static_cast<std::uint8_t>(x);
                }
            }
            km::BgraToBgr(back.Desc(), bgra.Desc());
            EXPECT_EQ(back.FirstDifference(bgr), "");
            EXPECT_TRUE(back.GuardsIntact() && bgra.GuardsIntact());
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
