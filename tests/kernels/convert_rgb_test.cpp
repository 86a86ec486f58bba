#include "convert/rgb.h"
#include "kernels/picture_kernel_check.h"

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

TEST(RgbKernels, AgreeWithThePlainForms) {
    for (const PictureKernelCase& c : kCases) CheckPictureKernel(c);
}

}  // namespace
}  // namespace pixmorph_test
