// Kernels that change the depth of samples, and the small families beside them.
#include "convert/dv12.h"
#include "convert/luma_only.h"
#include "convert/sixteen_bit.h"
#include "convert/y41p.h"
#include "kernels/picture_kernel_check.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kChecked{&km::P216ToUyvy, &km::P216ToYuy2, &km::P216ToNv12, &km::P016ToUyvy, &km::P016ToYuy2,
                           &km::P016ToNv12, &km::S420ToUyvy, &km::S420ToYuy2, &km::S420ToI420, &km::S422ToUyvy,
                           &km::S422ToYuy2, &km::S422ToY422, &km::I420ToS420, &km::I420ToS422, &km::Y400ToS400,
                           &km::Y400ToUyvy, &km::Y400ToYuy2, &km::Dv12ToUyvy, &km::Dv12ToYuy2, &km::Dv12ToYvyu,
                           &km::Dv12ToY16,  &km::Y41PToUyvy, &km::Y41PToYuy2, &km::Y41PToYvyu, &km::Y41PToY16};

TEST(DepthKernels, HighBytesOfWords) {
    CheckPictureKernel({&km::P216ToUyvy, km::FMT_UYVY, km::FMT_P216});
    CheckPictureKernel({&km::P216ToYuy2, km::FMT_YUY2, km::FMT_P216});
    CheckPictureKernel({&km::P216ToNv12, km::FMT_NV12, km::FMT_P216, 2, 2});
    CheckPictureKernel({&km::P016ToUyvy, km::FMT_UYVY, km::FMT_P016, 2, 2});
    CheckPictureKernel({&km::P016ToYuy2, km::FMT_YUY2, km::FMT_P016, 2, 2});
    CheckPictureKernel({&km::P016ToNv12, km::FMT_NV12, km::FMT_P016, 2, 2});
}

// Every depth that words can have, and more: beyond 8 extra bits the sum of two words and its rounding leave 16 bits.
TEST(DepthKernels, RoundedWords) {
    for (const std::uint8_t extraBits : {0, 2, 8, 9, 255}) {
        SCOPED_TRACE(static_cast<int>(extraBits));
        CheckPictureKernel({&km::S420ToUyvy, km::FMT_UYVY, km::FMT_S420, 2, 2, 0, extraBits});
        CheckPictureKernel({&km::S420ToYuy2, km::FMT_YUY2, km::FMT_S420, 2, 2, 0, extraBits});
        CheckPictureKernel({&km::S420ToI420, km::FMT_I420, km::FMT_S420, 2, 2, 0, extraBits});
        CheckPictureKernel({&km::S422ToUyvy, km::FMT_UYVY, km::FMT_S422, 2, 1, 0, extraBits});
        CheckPictureKernel({&km::S422ToYuy2, km::FMT_YUY2, km::FMT_S422, 2, 1, 0, extraBits});
        CheckPictureKernel({&km::S422ToY422, km::FMT_Y422, km::FMT_S422, 2, 1, 0, extraBits});
    }
}

TEST(DepthKernels, WidenedBytes) {
    for (const std::uint8_t extraBits : {0, 2, 8, 16, 255}) {
        SCOPED_TRACE(static_cast<int>(extraBits));
        CheckPictureKernel({&km::I420ToS420, km::FMT_S420, km::FMT_I420, 2, 2, extraBits});
        CheckPictureKernel({&km::I420ToS422, km::FMT_S422, km::FMT_I420, 2, 2, extraBits});
        CheckPictureKernel({&km::Y400ToS400, km::FMT_S400, km::FMT_Y400, 2, 1, extraBits});
    }
}

TEST(DepthKernels, LumaAlone) {
    CheckPictureKernel({&km::Y400ToUyvy, km::FMT_UYVY, km::FMT_Y400});
    CheckPictureKernel({&km::Y400ToYuy2, km::FMT_YUY2, km::FMT_Y400});
}

TEST(DepthKernels, Dv12) {
    CheckPictureKernel({&km::Dv12ToUyvy, km::FMT_UYVY, km::FMT_DV12, 16, 2});
    CheckPictureKernel({&km::Dv12ToYuy2, km::FMT_YUY2, km::FMT_DV12, 16, 2});
    CheckPictureKernel({&km::Dv12ToYvyu, km::FMT_YVYU, km::FMT_DV12, 16, 2});
    CheckPictureKernel({&km::Dv12ToY16, km::FMT_Y16, km::FMT_DV12, 16, 2});
}

TEST(DepthKernels, Y41P) {
    CheckPictureKernel({&km::Y41PToUyvy, km::FMT_UYVY, km::FMT_Y41P, 8});
    CheckPictureKernel({&km::Y41PToYuy2, km::FMT_YUY2, km::FMT_Y41P, 8});
    CheckPictureKernel({&km::Y41PToYvyu, km::FMT_YVYU, km::FMT_Y41P, 8});
    CheckPictureKernel({&km::Y41PToY16, km::FMT_Y16, km::FMT_Y41P, 16});
}

}  // namespace
}  // namespace pixmorph_test
