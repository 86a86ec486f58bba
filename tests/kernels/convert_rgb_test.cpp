#include <deque>

#include "convert/rgb.h"
#include "foundation/block_ops.h"
#include "kernels/picture_kernel_check.h"
#include "support/guard_page.h"

namespace pixmorph_test {
namespace {

const PictureKernelCase kCases[] = {
    {&km::UyvyToBgr, km::FMT_BGR, km::FMT_UYVY, 2, 1},    {&km::UyvyToBgra, km::FMT_BGRA, km::FMT_UYVY, 2, 1},
    {&km::Yuy2ToBgr, km::FMT_BGR, km::FMT_YUY2, 2, 1},    {&km::Yuy2ToBgra, km::FMT_BGRA, km::FMT_YUY2, 2, 1},
    {&km::YvyuToBgr, km::FMT_BGR, km::FMT_YVYU, 2, 1},    {&km::YvyuToBgra, km::FMT_BGRA, km::FMT_YVYU, 2, 1},
    {&km::Y16ToBgr, km::FMT_BGR, km::FMT_Y16, 16, 1},     {&km::Y16ToBgra, km::FMT_BGRA, km::FMT_Y16, 16, 1},
    {&km::Y16AToBgr, km::FMT_BGR, km::FMT_Y16A, 16, 1},   {&km::Y16AToBgra, km::FMT_BGRA, km::FMT_Y16A, 16, 1},
    {&km::Y32ToBgr, km::FMT_BGR, km::FMT_Y32, 16, 1},     {&km::Y32ToBgra, km::FMT_BGRA, km::FMT_Y32, 16, 1},
    {&km::Y32AToBgr, km::FMT_BGR, km::FMT_Y32A, 16, 1},   {&km::Y32AToBgra, km::FMT_BGRA, km::FMT_Y32A, 16, 1},
    {&km::Y32ABToBgr, km::FMT_BGR, km::FMT_Y32AB, 16, 1}, {&km::Y32ABToBgra, km::FMT_BGRA, km::FMT_Y32AB, 16, 1},
    {&km::Y422ToBgr, km::FMT_BGR, km::FMT_Y422, 2, 1},    {&km::Y422ToBgra, km::FMT_BGRA, km::FMT_Y422, 2, 1},
    {&km::I420ToBgr, km::FMT_BGR, km::FMT_I420, 2, 2},    {&km::I420ToBgra, km::FMT_BGRA, km::FMT_I420, 2, 2},
    {&km::Nv12ToBgr, km::FMT_BGR, km::FMT_NV12, 2, 2},    {&km::Nv12ToBgra, km::FMT_BGRA, km::FMT_NV12, 2, 2},
    {&km::Y41PToBgr, km::FMT_BGR, km::FMT_Y41P, 8, 1},    {&km::Y41PToBgra, km::FMT_BGRA, km::FMT_Y41P, 8, 1},
    {&km::Y444ToBgr, km::FMT_BGR, km::FMT_Y444, 1, 1},    {&km::Y444ToBgra, km::FMT_BGRA, km::FMT_Y444, 1, 1},
    {&km::Dv12ToBgr, km::FMT_BGR, km::FMT_DV12, 16, 2},   {&km::Dv12ToBgra, km::FMT_BGRA, km::FMT_DV12, 16, 2},
    {&km::S420ToBgr, km::FMT_BGR, km::FMT_S420, 2, 2},    {&km::S420ToBgra, km::FMT_BGRA, km::FMT_S420, 2, 2},
    {&km::P216ToBgr, km::FMT_BGR, km::FMT_P216, 2, 1},    {&km::P216ToBgra, km::FMT_BGRA, km::FMT_P216, 2, 1},
    {&km::P016ToBgr, km::FMT_BGR, km::FMT_P016, 2, 2},    {&km::P016ToBgra, km::FMT_BGRA, km::FMT_P016, 2, 2},
    {&km::Y400ToBgr, km::FMT_BGR, km::FMT_Y400, 1, 1},    {&km::BgrToUyvy, km::FMT_UYVY, km::FMT_BGR, 2, 1},
    {&km::BgraToUyvy, km::FMT_UYVY, km::FMT_BGRA, 2, 1},  {&km::BgrToYuy2, km::FMT_YUY2, km::FMT_BGR, 2, 1},
    {&km::BgraToYuy2, km::FMT_YUY2, km::FMT_BGRA, 2, 1},  {&km::BgrToYvyu, km::FMT_YVYU, km::FMT_BGR, 2, 1},
    {&km::BgraToYvyu, km::FMT_YVYU, km::FMT_BGRA, 2, 1},  {&km::BgrToY16, km::FMT_Y16, km::FMT_BGR, 16, 1},
    {&km::BgraToY16, km::FMT_Y16, km::FMT_BGRA, 16, 1},   {&km::BgrToY16A, km::FMT_Y16A, km::FMT_BGR, 16, 1},
    {&km::BgraToY16A, km::FMT_Y16A, km::FMT_BGRA, 16, 1}, {&km::BgrToY422, km::FMT_Y422, km::FMT_BGR, 2, 1},
    {&km::BgraToY422, km::FMT_Y422, km::FMT_BGRA, 2, 1},  {&km::BgrToI420, km::FMT_I420, km::FMT_BGR, 2, 2},
    {&km::BgraToI420, km::FMT_I420, km::FMT_BGRA, 2, 2},  {&km::BgrToNv12, km::FMT_NV12, km::FMT_BGR, 2, 2},
    {&km::BgraToNv12, km::FMT_NV12, km::FMT_BGRA, 2, 2},  {&km::BgrToY400, km::FMT_Y400, km::FMT_BGR, 1, 1},
    {&km::BgrToBgra, km::FMT_BGRA, km::FMT_BGR, 1, 1},    {&km::BgraToBgr, km::FMT_BGR, km::FMT_BGRA, 1, 1},
};

const bool kChecked = [] {
    for (const PictureKernelCase& c : kCases) CheckedSlots().insert(c.slot);
    return true;
}();

class RgbKernels : public testing::TestWithParam<PictureKernelCase> {};
INSTANTIATE_TEST_SUITE_P(Convert, RgbKernels, testing::ValuesIn(kCases),
                         SlotTestName<testing::TestParamInfo<PictureKernelCase>>);

TEST_P(RgbKernels, VariantsEqualThePlainForm) { CheckPictureKernel(GetParam()); }

/// A picture whose planes end, or start, at memory that cannot be touched; `like` gives shape and content.
class FencedPicture {
public:
    FencedPicture(const TestPicture& like, GuardPageBuffer::Side side) : desc_(like.Desc()) {
        for (const TestPlane& plane : like.Planes()) {
            const std::size_t index = buffers_.size();
            buffers_.emplace_back(plane.RowBytes() * plane.Rows(), side);
            desc_.planes[index] = buffers_.back().Data();
            desc_.strides[index] = static_cast<std::int64_t>(plane.RowBytes());
            for (std::size_t row = 0; row < plane.Rows(); ++row)
                std::memcpy(buffers_.back().Data() + row * plane.RowBytes(), plane.Row(row), plane.RowBytes());
        }
        if (desc_.format == km::FMT_S420) {
            desc_.planes[2] = desc_.planes[1] + desc_.strides[1] / 2;
            desc_.strides[2] = desc_.strides[1];
        }
    }
    const km::ImageDescriptor& Desc() const { return desc_; }
    std::string FirstDifference(const TestPicture& expected) {
        for (std::size_t i = 0; i < buffers_.size(); ++i) {
            const TestPlane& plane = expected.Planes()[i];
            for (std::size_t row = 0; row < plane.Rows(); ++row)
                if (std::string text = LineDifference({buffers_[i].Data() + row * plane.RowBytes(), plane.RowBytes()},
                                                      {plane.Row(row), plane.RowBytes()}, i, row);
                    !text.empty())
                    return text;
        }
        return {};
    }

private:
    km::ImageDescriptor desc_;
    std::deque<GuardPageBuffer> buffers_;
};

TEST_P(RgbKernels, StaysWithinItsPlanes) {
    const PictureKernelCase& c = GetParam();
    for (const std::uint32_t width : {16u, 32u, 48u, 64u, 80u, 192u, 208u}) {
        TestPicture src(c.srcFormat, width, 2 * c.heightStep);
        TestPicture dst(c.dstFormat, width, 2 * c.heightStep);
        src.Fill(Fill::Random, width);
        dst.Fill(Fill::Random, width + 1);
        const TestPicture expected = Converted(c.slot->Row(0).function, dst, src);
        for (const auto side : {GuardPageBuffer::Side::Start, GuardPageBuffer::Side::End}) {
            const FencedPicture fencedSrc(src, side);
            const auto check = [&](PictureKernel* form) {
                FencedPicture fencedDst(dst, side);
                form(fencedDst.Desc(), fencedSrc.Desc());
                EXPECT_EQ(fencedDst.FirstDifference(expected), "") << width << " wide, seed " << width;
            };
            check(c.slot->Row(0).function);
            ForEachVariant(*c.slot, [&](PictureKernel* variant, PictureKernel*) { check(variant); });
        }
    }
}

// Destinations that are too large for the cache are written past it, from the first cache line boundary of each line
// that suits the format. Planes start where a page does, or end there and start anywhere.
TEST_P(RgbKernels, AgreesOnLargeFrames) {
    const PictureKernelCase& c = GetParam();
    for (const std::uint32_t width : {1088u, 1072u, 1040u + c.widthStep}) {
        const auto height = static_cast<std::uint32_t>(km::CachedCountLimit() / (2 * width) / 2 * 2 + 6);
        TestPicture src(c.srcFormat, width, height);
        const TestPicture dst(c.dstFormat, width, height);
        src.Fill(Fill::Random, width);
        const TestPicture expected = Converted(c.slot->Row(0).function, dst, src);
        ForEachVariant(*c.slot, [&](PictureKernel* variant, PictureKernel*) {
            for (const auto side : {GuardPageBuffer::Side::Start, GuardPageBuffer::Side::End}) {
                FencedPicture actual(dst, side);
                variant(actual.Desc(), src.Desc());
                EXPECT_EQ(actual.FirstDifference(expected), "") << width << "x" << height << " seed " << width;
            }
        });
    }
}

}  // namespace
}  // namespace pixmorph_test
