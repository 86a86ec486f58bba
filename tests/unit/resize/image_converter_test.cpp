#include "resize/image_converter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "convert/conversion_dispatch.h"
#include "support/picture.h"
#include "support/resize.h"

namespace pixmorph_test {
namespace {

// What the converter gave its conversion function.
struct Call {
    km::ImageDescriptor dst;
    km::ConstImageDescriptor src;
};
std::vector<Call> g_calls;
km::Status g_status = km::IMG_OK;

km::Status Record(const km::ImageDescriptor& dst, const km::ConstImageDescriptor& src) {
    g_calls.push_back({dst, src});
    return g_status;
}
km::Status Throw(const km::ImageDescriptor&, const km::ConstImageDescriptor&) { throw std::runtime_error("refused"); }

class ImageConverter : public testing::Test {
protected:
    void SetUp() override {
        g_calls.clear();
        g_status = km::IMG_OK;
        ASSERT_NE(converter_, nullptr);
    }
    km::ImageConverterPtr converter_{km::CreateImageConverter()};
};

TEST_F(ImageConverter, AnswersForItsInterfaceOnly) {
    void* object = &object;
    ASSERT_EQ(converter_->QueryInterface(km::IID_IImageConverter, &object), km::IMG_OK);
    EXPECT_EQ(object, static_cast<km::IImageConverter*>(converter_.get()));
    EXPECT_EQ(converter_->Release(), 1u);
    EXPECT_EQ(converter_->QueryInterface(IID_IUnknown, &object), km::IMG_E_NO_PATH);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(converter_->QueryInterface(km::IID_IImageConverter, nullptr), km::IMG_E_NULL_ARG);
    EXPECT_EQ(converter_->AddRef(), 2u);
    EXPECT_EQ(converter_->Release(), 1u);
}

TEST_F(ImageConverter, WithoutAFunctionOnlyOneFormatIsKnown) {
    TestPicture src(km::FMT_UYVY, 16, 4), same(km::FMT_UYVY, 16, 4), other(km::FMT_YUY2, 16, 4);
    src.Fill(Fill::Random, 1);
    EXPECT_EQ(converter_->Convert(&other.Desc(), &src.Desc()), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(converter_->Convert(&same.Desc(), &src.Desc()), km::IMG_OK);
    EXPECT_EQ(same.FirstDifference(src), "");
    km::ImageDescriptor none;
    EXPECT_EQ(converter_->Convert(&none, &src.Desc()), km::IMG_E_BAD_FORMAT);
    const km::ImageRect rect{0, 0, 2, 2};
    EXPECT_EQ(converter_->ConvertRegion(&same.Desc(), &src.Desc(), &rect), km::IMG_E_NOT_READY);
    EXPECT_EQ(converter_->ConvertRegions(&same.Desc(), &src.Desc(), &rect, &rect), km::IMG_E_NOT_READY);
}

TEST_F(ImageConverter, NullArgumentsAreRefused) {
    TestPicture picture(km::FMT_UYVY, 16, 4);
    const km::ImageRect rect{0, 0, 2, 2};
    converter_->SetConverter(Record);
    EXPECT_EQ(converter_->Convert(nullptr, &picture.Desc()), km::IMG_E_NULL_ARG);
    EXPECT_EQ(converter_->Convert(&picture.Desc(), nullptr), km::IMG_E_NULL_ARG);
    EXPECT_EQ(converter_->ConvertRegion(nullptr, &picture.Desc(), &rect), km::IMG_E_NULL_ARG);
    EXPECT_EQ(converter_->ConvertRegion(&picture.Desc(), nullptr, &rect), km::IMG_E_NULL_ARG);
    EXPECT_EQ(converter_->ConvertRegion(&picture.Desc(), &picture.Desc(), nullptr), km::IMG_E_NULL_ARG);
    EXPECT_EQ(converter_->ConvertRegions(&picture.Desc(), &picture.Desc(), nullptr, &rect), km::IMG_E_NULL_ARG);
    EXPECT_EQ(converter_->ConvertRegions(&picture.Desc(), &picture.Desc(), &rect, nullptr), km::IMG_E_NULL_ARG);
    EXPECT_TRUE(g_calls.empty());
}

TEST_F(ImageConverter, ADestinationWithoutFormatBecomesTheSource) {
    TestPicture src(km::FMT_I420, 16, 4, {8, false, 0}, 3, 2);
    converter_->SetConverter(Record);
    km::ImageDescriptor dst;
    dst.width = 1000;
    ASSERT_EQ(converter_->Convert(&dst, &src.Desc()), km::IMG_OK);
    EXPECT_EQ(dst.format, +km::FMT_I420);
    EXPECT_EQ(dst.width, 16u);
    EXPECT_EQ(dst.planes[2], src.Desc().planes[2]);
    EXPECT_EQ(dst.strides[1], src.Desc().strides[1]);
    EXPECT_EQ(dst.colorMatrix, 3);
    EXPECT_EQ(dst.lumaExtraBits, 2);
    EXPECT_TRUE(g_calls.empty());
}

TEST_F(ImageConverter, OneSizeGoesToTheFunctionAsItIs) {
    TestPicture src(km::FMT_I420, 16, 4), dst(km::FMT_UYVY, 16, 4), same(km::FMT_I420, 16, 4);
    src.Fill(Fill::Random, 5);
    converter_->SetConverter(Record);
    g_status = km::IMG_E_NO_PATH;
    EXPECT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_E_NO_PATH);
    ASSERT_EQ(g_calls.size(), 1u);
    EXPECT_EQ(g_calls[0].dst.planes[0], dst.Desc().planes[0]);
    EXPECT_EQ(g_calls[0].src.planes[0], src.Desc().planes[0]);
    EXPECT_EQ(converter_->Convert(&same.Desc(), &src.Desc()), km::IMG_OK);
    EXPECT_EQ(same.FirstDifference(src), "");
    EXPECT_EQ(g_calls.size(), 1u);
    converter_->SetConverter(Throw);
    EXPECT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_E_EXCEPTION);
}

enum class Order { ConvertFirst, ResizeFirst };

struct OrderCase {
    const char* why;
    std::uint32_t dstFormat, dstWidth, dstHeight, srcFormat, srcWidth, srcHeight;
    Order order;
};

// Sizes of the picture between, with lines aligned to 64 bytes: converted at the source's size, or resized in the
// source's format.
constexpr OrderCase kOrders[] = {
    {"blocks cannot be resized", km::FMT_Y16, 64, 32, km::FMT_BGR, 32, 16, Order::ResizeFirst},
    {"blocks cannot be resized, smaller or not", km::FMT_Y16, 32, 16, km::FMT_BGR, 64, 32, Order::ResizeFirst},
    {"depth is raised first, larger or not", km::FMT_S420, 32, 16, km::FMT_I420, 64, 32, Order::ConvertFirst},
    {"depth is raised first", km::FMT_S420, 64, 32, km::FMT_I420, 32, 16, Order::ConvertFirst},
    {"words already: 8192 above 4096", km::FMT_S422, 32, 16, km::FMT_S420, 64, 32, Order::ResizeFirst},
    {"8192 above 1024", km::FMT_BGRA, 32, 16, km::FMT_UYVY, 64, 32, Order::ResizeFirst},
    {"2048 below 4096", km::FMT_BGRA, 64, 32, km::FMT_UYVY, 32, 16, Order::ConvertFirst},
    {"2048 equals 2048", km::FMT_BGRA, 64, 16, km::FMT_UYVY, 32, 16, Order::ConvertFirst},
    {"512 equals 512, but only with aligned lines", km::FMT_BGRA, 20, 8, km::FMT_UYVY, 16, 8, Order::ConvertFirst},
};

TEST_F(ImageConverter, FormatAndSizeChangeInTheOrderThatPays) {
    for (const OrderCase& c : kOrders) {
        SCOPED_TRACE(c.why);
        TestPicture src(c.srcFormat, c.srcWidth, c.srcHeight, {}, 1, 2);
        TestPicture dst(c.dstFormat, c.dstWidth, c.dstHeight, {}, 3, 4);
        src.Fill(Fill::Random, 1);
        converter_->SetConverter(Record);
        g_calls.clear();
        ASSERT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_OK);
        ASSERT_EQ(g_calls.size(), 1u);
        const bool convertFirst = c.order == Order::ConvertFirst;
        const km::ConstImageDescriptor to = g_calls[0].dst;
        const km::ConstImageDescriptor& between = convertFirst ? to : g_calls[0].src;
        const km::ConstImageDescriptor& other = convertFirst ? g_calls[0].src : to;
        EXPECT_EQ(other.planes[0], (convertFirst ? src : dst).Desc().planes[0]);
        EXPECT_EQ(between.format, convertFirst ? c.dstFormat : c.srcFormat);
        EXPECT_EQ(between.width, convertFirst ? c.srcWidth : c.dstWidth);
        EXPECT_EQ(between.height, convertFirst ? c.srcHeight : c.dstHeight);
        EXPECT_EQ(between.colorMatrix, convertFirst ? 3 : 1);
        EXPECT_EQ(between.lumaExtraBits, convertFirst ? 4 : 2);
        EXPECT_EQ(between.chromaExtraBits, convertFirst ? 4 : 2);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(between.planes[0]) % 64, 0u);
        EXPECT_EQ(between.strides[0] % 64, 0);
        EXPECT_EQ(converter_->UsedBufferCount(), 0u);
    }
}

// The bytes are those of the conversion and the resizer one after the other.
TEST_F(ImageConverter, FormatAndSizeGiveThePictureOfBothSteps) {
    TestPicture src(km::FMT_I420, 40, 24), dst(km::FMT_UYVY, 64, 48);
    src.Fill(Fill::Random, 8);
    converter_->SetConverter(km::ImageConversionDispatch);
    ASSERT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_OK);
    TestPicture converted(km::FMT_UYVY, 40, 24), wide(km::FMT_UYVY, 64, 24), expected(km::FMT_UYVY, 64, 48);
    ASSERT_EQ(km::ImageConversionDispatch(converted.Desc(), src.Desc()), km::IMG_OK);
    ASSERT_EQ(Resize(&wide.Desc(), &converted.Desc()), km::IMG_OK);
    ASSERT_EQ(Resize(&expected.Desc(), &wide.Desc()), km::IMG_OK);
    EXPECT_EQ(dst.FirstDifference(expected), "");
    EXPECT_TRUE(dst.GuardsIntact());
}

struct PassCase {
    const char* why;
    std::uint32_t format, dstWidth, dstHeight, srcWidth, srcHeight;
    bool verticalFirst;
};

constexpr PassCase kPasses[] = {
    {"enlarged: 384 by 58 against 144 by 108", km::FMT_UYVY, 192, 108, 72, 58, false},
    {"reduced in height", km::FMT_UYVY, 72, 58, 192, 108, true},
    {"reduced in height, though much wider", km::FMT_BGRA, 200, 28, 20, 32, true},
    {"enlarged little in height: 64 by 18 is below half of 256 by 16", km::FMT_BGRA, 64, 18, 16, 16, true},
    {"enlarged: 64 by 32 is half of 256 by 16", km::FMT_BGRA, 64, 32, 16, 16, false},
};

TEST_F(ImageConverter, PassesRunInTheOrderThatPays) {
    for (const PassCase& c : kPasses) {
        SCOPED_TRACE(c.why);
        TestPicture src(c.format, c.srcWidth, c.srcHeight), dst(c.format, c.dstWidth, c.dstHeight, {16, false, 0});
        src.Fill(Fill::Random, 3);
        ASSERT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_OK);
        TestPicture lower(c.format, c.srcWidth, c.dstHeight), wider(c.format, c.dstWidth, c.srcHeight);
        TestPicture verticalFirst(c.format, c.dstWidth, c.dstHeight),
            horizontalFirst(c.format, c.dstWidth, c.dstHeight);
        ASSERT_EQ(Resize(&lower.Desc(), &src.Desc()), km::IMG_OK);
        ASSERT_EQ(Resize(&verticalFirst.Desc(), &lower.Desc()), km::IMG_OK);
        ASSERT_EQ(Resize(&wider.Desc(), &src.Desc()), km::IMG_OK);
        ASSERT_EQ(Resize(&horizontalFirst.Desc(), &wider.Desc()), km::IMG_OK);
        EXPECT_NE(verticalFirst.FirstDifference(horizontalFirst), "") << "the orders cannot be told apart";
        EXPECT_EQ(dst.FirstDifference(c.verticalFirst ? verticalFirst : horizontalFirst), "");
        EXPECT_TRUE(dst.GuardsIntact());
    }
}

TEST_F(ImageConverter, BuffersAreTheSmallestThatFit) {
    EXPECT_EQ(converter_->AcquireBuffer(0), nullptr);
    std::uint8_t* const small = converter_->AcquireBuffer(100);
    std::uint8_t* const large = converter_->AcquireBuffer(1000);
    std::uint8_t* const medium = converter_->AcquireBuffer(500);
    std::uint8_t* const twin = converter_->AcquireBuffer(500);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(small) % 64, 0u);
    EXPECT_EQ(converter_->UsedBufferCount(), 4u);
    for (std::uint8_t* const buffer : {large, medium, small, twin}) converter_->ReleaseBuffer(buffer);
    converter_->ReleaseBuffer(large + 1);
    converter_->ReleaseBuffer(large);
    EXPECT_EQ(converter_->FreeBufferCount(), 4u);
    EXPECT_EQ(converter_->AcquireBuffer(100), small);
    // Of the two of one capacity the one given back last lies in front.
    EXPECT_EQ(converter_->AcquireBuffer(101), twin);
    EXPECT_EQ(converter_->AcquireBuffer(500), medium);
    EXPECT_EQ(converter_->AcquireBuffer(1), large);
    EXPECT_EQ(converter_->FreeBufferCount(), 0u);
    std::uint8_t* const larger = converter_->AcquireBuffer(1001);
    EXPECT_NE(larger, nullptr);
    EXPECT_EQ(converter_->UsedBufferCount(), 5u);
    converter_->ReleaseBuffer(larger);
    converter_->SetConverter(Record);
    EXPECT_EQ(converter_->UsedBufferCount(), 0u);
    EXPECT_EQ(converter_->FreeBufferCount(), 0u);
}

TEST_F(ImageConverter, TheSecondCallReusesTheBuffers) {
    TestPicture src(km::FMT_I420, 40, 24), dst(km::FMT_UYVY, 66, 48);
    converter_->SetConverter(km::ImageConversionDispatch);
    ASSERT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_OK);
    // One picture between format and size, one between the passes.
    EXPECT_EQ(converter_->FreeBufferCount(), 2u);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_OK);
    EXPECT_EQ(converter_->FreeBufferCount(), 2u);
    EXPECT_EQ(converter_->UsedBufferCount(), 0u);
}

TEST_F(ImageConverter, FailuresGiveTheBuffersBack) {
    TestPicture src(km::FMT_UYVY, 32, 16), dst(km::FMT_BGRA, 66, 34);
    converter_->SetConverter(Record);
    g_status = km::IMG_E_UNSUPPORTED;
    EXPECT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_E_UNSUPPORTED);
    EXPECT_EQ(converter_->UsedBufferCount(), 0u);
    EXPECT_EQ(converter_->FreeBufferCount(), 1u);
    converter_->SetConverter(Throw);
    EXPECT_EQ(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_E_EXCEPTION);
    EXPECT_EQ(converter_->UsedBufferCount(), 0u);
    EXPECT_EQ(converter_->FreeBufferCount(), 1u);
}

TEST_F(ImageConverter, AbsurdSizesWantNoMemory) {
    TestPicture src(km::FMT_UYVY, 32, 16);
    km::ImageDescriptor dst = src.Desc();
    dst.format = km::FMT_Y16;
    dst.width = dst.height = 0xFFFFFFF0;
    converter_->SetConverter(Record);
    EXPECT_EQ(converter_->Convert(&dst, &src.Desc()), km::IMG_E_NO_MEMORY);
    EXPECT_TRUE(g_calls.empty());
    EXPECT_EQ(converter_->UsedBufferCount(), 0u);
}

TEST_F(ImageConverter, FormatsThatCannotBeResizedFail) {
    for (const std::uint32_t format : {km::FMT_Y16, km::FMT_Y41P, km::FMT_IMC3, km::FMT_P216, km::FMT_P420}) {
        TestPicture src(format, 32, 16), dst(format, 64, 32);
        dst.Fill(Fill::Ramp, 0);
        const TestPicture before = dst;
        EXPECT_NE(converter_->Convert(&dst.Desc(), &src.Desc()), km::IMG_OK) << format;
        EXPECT_EQ(dst.FirstDifference(before), "") << format;
    }
}

TEST_F(ImageConverter, RegionsAreCutFromBothSides) {
    TestPicture src(km::FMT_I420, 32, 16), dst(km::FMT_UYVY, 24, 20);
    converter_->SetConverter(Record);
    const km::ImageRect rect{4, 6, 8, 10};
    const km::ImageDescriptor dstBefore = dst.Desc();
    ASSERT_EQ(converter_->ConvertRegion(&dst.Desc(), &src.Desc(), &rect), km::IMG_OK);
    ASSERT_EQ(g_calls.size(), 1u);
    EXPECT_EQ(g_calls[0].dst.planes[0], dst.Plane(0).Row(6) + 8);
    EXPECT_EQ(g_calls[0].src.planes[0], src.Plane(0).Row(6) + 4);
    EXPECT_EQ(g_calls[0].src.planes[2], src.Plane(2).Row(3) + 2);
    EXPECT_EQ(g_calls[0].dst.width, 8u);
    EXPECT_EQ(g_calls[0].dst.height, 10u);
    EXPECT_EQ(g_calls[0].src.width, 8u);
    EXPECT_EQ(dst.Desc().planes[0], dstBefore.planes[0]);
    EXPECT_EQ(dst.Desc().width, 24u);

    const km::ImageRect outside{20, 0, 8, 2}, crooked{1, 0, 8, 2}, negative{-2, 0, 8, 2};
    EXPECT_EQ(converter_->ConvertRegion(&dst.Desc(), &src.Desc(), &outside), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(converter_->ConvertRegion(&dst.Desc(), &src.Desc(), &crooked), km::IMG_E_BAD_ALIGNMENT);
    EXPECT_EQ(converter_->ConvertRegion(&dst.Desc(), &src.Desc(), &negative), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(g_calls.size(), 1u);
}

TEST_F(ImageConverter, RegionsOfTheirOwnMayDifferInSize) {
    TestPicture src(km::FMT_UYVY, 32, 16), dst(km::FMT_UYVY, 32, 16);
    src.Fill(Fill::Random, 2);
    dst.Fill(Fill::Zero, 0);
    converter_->SetConverter(Record);
    const km::ImageRect from{4, 2, 8, 4}, to{2, 1, 16, 8}, copy{20, 0, 8, 4};
    // The same size copies, another one resizes; the function is for other formats.
    ASSERT_EQ(converter_->ConvertRegions(&dst.Desc(), &src.Desc(), &copy, &from), km::IMG_OK);
    EXPECT_TRUE(std::equal(dst.Plane(0).Row(3) + 40, dst.Plane(0).Row(3) + 56, src.Plane(0).Row(5) + 8));
    EXPECT_EQ(dst.Plane(0).Row(4)[41], 0);
    ASSERT_EQ(converter_->ConvertRegions(&dst.Desc(), &src.Desc(), &to, &from), km::IMG_OK);
    // Enlarging keeps the corners.
    EXPECT_EQ(dst.Plane(0).Row(1)[2 * 2 + 1], src.Plane(0).Row(2)[4 * 2 + 1]);
    EXPECT_EQ(dst.Plane(0).Row(8)[17 * 2 + 1], src.Plane(0).Row(5)[11 * 2 + 1]);
    EXPECT_EQ(dst.Plane(0).Row(0)[5], 0);
    EXPECT_EQ(dst.Plane(0).Row(9)[5], 0);
    EXPECT_TRUE(g_calls.empty());
    const km::ImageRect outside{32, 0, 2, 2};
    EXPECT_EQ(converter_->ConvertRegions(&dst.Desc(), &src.Desc(), &outside, &from), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(converter_->ConvertRegions(&dst.Desc(), &src.Desc(), &to, &outside), km::IMG_E_BAD_SIZE);
}

TEST_F(ImageConverter, RegionsOfADestinationWithoutFormatAreTheSourcesOwn) {
    TestPicture src(km::FMT_UYVY, 32, 16);
    converter_->SetConverter(Record);
    const km::ImageRect rect{4, 2, 8, 4}, other{0, 0, 2, 2}, outside{0, 0, 34, 2};
    km::ImageDescriptor dst;
    ASSERT_EQ(converter_->ConvertRegion(&dst, &src.Desc(), &rect), km::IMG_OK);
    EXPECT_EQ(dst.planes[0], src.Plane(0).Row(2) + 8);
    EXPECT_EQ(dst.width, 8u);
    EXPECT_EQ(dst.height, 4u);
    dst = {};
    ASSERT_EQ(converter_->ConvertRegions(&dst, &src.Desc(), &other, &rect), km::IMG_OK);
    EXPECT_EQ(dst.planes[0], src.Plane(0).Row(2) + 8);
    EXPECT_EQ(dst.width, 8u);
    dst = {};
    EXPECT_EQ(converter_->ConvertRegion(&dst, &src.Desc(), &outside), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(dst.format, +km::FMT_UYVY);
    EXPECT_TRUE(g_calls.empty());
}

}  // namespace
}  // namespace pixmorph_test
