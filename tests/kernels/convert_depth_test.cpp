// Kernels that change the depth of samples, and the small families beside them.
#include "convert/dv12.h"
#include "convert/luma_only.h"
#include "convert/sixteen_bit.h"
#include "convert/y41p.h"
#include "kernels/picture_kernel_check.h"

namespace pixmorph_test {
namespace {

const PictureKernelCase kWholeSamples[] = {
    {&km::P216ToUyvy, km::FMT_UYVY, km::FMT_P216},        {&km::P216ToYuy2, km::FMT_YUY2, km::FMT_P216},
    {&km::P216ToNv12, km::FMT_NV12, km::FMT_P216, 2, 2},  {&km::P016ToUyvy, km::FMT_UYVY, km::FMT_P016, 2, 2},
    {&km::P016ToYuy2, km::FMT_YUY2, km::FMT_P016, 2, 2},  {&km::P016ToNv12, km::FMT_NV12, km::FMT_P016, 2, 2},
    {&km::Y400ToUyvy, km::FMT_UYVY, km::FMT_Y400},        {&km::Y400ToYuy2, km::FMT_YUY2, km::FMT_Y400},
    {&km::Dv12ToUyvy, km::FMT_UYVY, km::FMT_DV12, 16, 2}, {&km::Dv12ToYuy2, km::FMT_YUY2, km::FMT_DV12, 16, 2},
    {&km::Dv12ToYvyu, km::FMT_YVYU, km::FMT_DV12, 16, 2}, {&km::Dv12ToY16, km::FMT_Y16, km::FMT_DV12, 16, 2},
    {&km::Y41PToUyvy, km::FMT_UYVY, km::FMT_Y41P, 8},     {&km::Y41PToYuy2, km::FMT_YUY2, km::FMT_Y41P, 8},
    {&km::Y41PToYvyu, km::FMT_YVYU, km::FMT_Y41P, 8},     {&km::Y41PToY16, km::FMT_Y16, km::FMT_Y41P, 16},
};
const PictureKernelCase kRoundedWords[] = {
    {&km::S420ToUyvy, km::FMT_UYVY, km::FMT_S420, 2, 2}, {&km::S420ToYuy2, km::FMT_YUY2, km::FMT_S420, 2, 2},
    {&km::S420ToI420, km::FMT_I420, km::FMT_S420, 2, 2}, {&km::S422ToUyvy, km::FMT_UYVY, km::FMT_S422},
    {&km::S422ToYuy2, km::FMT_YUY2, km::FMT_S422},       {&km::S422ToY422, km::FMT_Y422, km::FMT_S422},
};
const PictureKernelCase kWidenedBytes[] = {
    {&km::I420ToS420, km::FMT_S420, km::FMT_I420, 2, 2},
    {&km::I420ToS422, km::FMT_S422, km::FMT_I420, 2, 2},
    {&km::Y400ToS400, km::FMT_S400, km::FMT_Y400},
};

const bool kChecked = [] {
    for (const PictureKernelCase& c : kWholeSamples) CheckedSlots().insert(c.slot);
    for (const PictureKernelCase& c : kRoundedWords) CheckedSlots().insert(c.slot);
    for (const PictureKernelCase& c : kWidenedBytes) CheckedSlots().insert(c.slot);
    return true;
}();

class DepthKernels : public testing::TestWithParam<PictureKernelCase> {};
TEST_P(DepthKernels, VariantsEqualThePlainForm) { CheckPictureKernel(GetParam()); }
INSTANTIATE_TEST_SUITE_P(Convert, DepthKernels, testing::ValuesIn(kWholeSamples),
                         SlotTestName<testing::TestParamInfo<PictureKernelCase>>);

class RoundedWordKernels : public testing::TestWithParam<PictureKernelCase> {};
// No extra bits, those of 10-bit video, the most that registers take, and more: the plain form's share.
TEST_P(RoundedWordKernels, VariantsEqualThePlainForm) {
    PictureKernelCase c = GetParam();
    for (const std::uint8_t extraBits : {0, 2, 8, 9}) {
        SCOPED_TRACE(std::to_string(extraBits) + " extra bits");
        c.srcExtraBits = extraBits;
        CheckPictureKernel(c);
    }
}
INSTANTIATE_TEST_SUITE_P(Convert, RoundedWordKernels, testing::ValuesIn(kRoundedWords),
                         SlotTestName<testing::TestParamInfo<PictureKernelCase>>);

class WidenedByteKernels : public testing::TestWithParam<PictureKernelCase> {};
TEST_P(WidenedByteKernels, VariantsEqualThePlainForm) {
    PictureKernelCase c = GetParam();
    for (const std::uint8_t extraBits : {0, 2, 8}) {
        SCOPED_TRACE(std::to_string(extraBits) + " extra bits");
        c.dstExtraBits = extraBits;
        CheckPictureKernel(c);
    }
}
INSTANTIATE_TEST_SUITE_P(Convert, WidenedByteKernels, testing::ValuesIn(kWidenedBytes),
                         SlotTestName<testing::TestParamInfo<PictureKernelCase>>);

}  // namespace
}  // namespace pixmorph_test
