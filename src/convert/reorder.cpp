#include "convert/reorder.h"

#include "convert/x86/reorder_forms.h"

namespace KorvaneSoftware {

PIXMORPH_SLOT(ConvertSlot, UyvyToYuy2, plain::UyvyToYuy2, simd_sse41::UyvyToYuy2, simd_avx2::UyvyToYuy2,
              simd_avx512::UyvyToYuy2);
PIXMORPH_SLOT(ConvertSlot, UyvyToYvyu, plain::UyvyToYvyu, simd_sse41::UyvyToYvyu, simd_avx2::UyvyToYvyu,
              simd_avx512::UyvyToYvyu);
PIXMORPH_SLOT(ConvertSlot, UyvyToY16, plain::UyvyToY16, simd_sse41::UyvyToY16, simd_avx2::UyvyToY16,
              simd_avx512::UyvyToY16);
PIXMORPH_SLOT(ConvertSlot, UyvyToY16A, plain::UyvyToY16A, simd_sse41::UyvyToY16A, simd_avx2::UyvyToY16A,
              simd_avx512::UyvyToY16A);
PIXMORPH_SLOT(ConvertSlot, UyvyToY422, plain::UyvyToY422, simd_sse41::UyvyToY422, simd_avx2::UyvyToY422,
              simd_avx512::UyvyToY422);
PIXMORPH_SLOT(ConvertSlot, UyvyToI420, plain::UyvyToI420, simd_sse41::UyvyToI420, simd_avx2::UyvyToI420,
              simd_avx512::UyvyToI420);
PIXMORPH_SLOT(ConvertSlot, UyvyToNv12, plain::UyvyToNv12, simd_sse41::UyvyToNv12, simd_avx2::UyvyToNv12,
              simd_avx512::UyvyToNv12);

PIXMORPH_SLOT(ConvertSlot, Yuy2ToUyvy, plain::Yuy2ToUyvy, simd_sse41::Yuy2ToUyvy, simd_avx2::Yuy2ToUyvy,
              simd_avx512::Yuy2ToUyvy);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToYvyu, plain::Yuy2ToYvyu, simd_sse41::Yuy2ToYvyu, simd_avx2::Yuy2ToYvyu,
              simd_avx512::Yuy2ToYvyu);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToY16, plain::Yuy2ToY16, simd_sse41::Yuy2ToY16, simd_avx2::Yuy2ToY16,
              simd_avx512::Yuy2ToY16);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToY16A, plain::Yuy2ToY16A, simd_sse41::Yuy2ToY16A, simd_avx2::Yuy2ToY16A,
              simd_avx512::Yuy2ToY16A);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToY422, plain::Yuy2ToY422, simd_sse41::Yuy2ToY422, simd_avx2::Yuy2ToY422,
              simd_avx512::Yuy2ToY422);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToI420, plain::Yuy2ToI420, simd_sse41::Yuy2ToI420, simd_avx2::Yuy2ToI420,
              simd_avx512::Yuy2ToI420);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToNv12, plain::Yuy2ToNv12, simd_sse41::Yuy2ToNv12, simd_avx2::Yuy2ToNv12,
              simd_avx512::Yuy2ToNv12);

PIXMORPH_SLOT(ConvertSlot, YvyuToUyvy, plain::YvyuToUyvy, simd_sse41::YvyuToUyvy, simd_avx2::YvyuToUyvy,
              simd_avx512::YvyuToUyvy);
PIXMORPH_SLOT(ConvertSlot, YvyuToYuy2, plain::YvyuToYuy2, simd_sse41::YvyuToYuy2, simd_avx2::YvyuToYuy2,
              simd_avx512::YvyuToYuy2);
PIXMORPH_SLOT(ConvertSlot, YvyuToY16, plain::YvyuToY16, simd_sse41::YvyuToY16, simd_avx2::YvyuToY16,
              simd_avx512::YvyuToY16);
PIXMORPH_SLOT(ConvertSlot, YvyuToY16A, plain::YvyuToY16A, simd_sse41::YvyuToY16A, simd_avx2::YvyuToY16A,
              simd_avx512::YvyuToY16A);
PIXMORPH_SLOT(ConvertSlot, YvyuToNv12, plain::YvyuToNv12, simd_sse41::YvyuToNv12, simd_avx2::YvyuToNv12,
              simd_avx512::YvyuToNv12);

PIXMORPH_SLOT(ConvertSlot, Y16ToUyvy, plain::Y16ToUyvy, simd_sse41::Y16ToUyvy, simd_avx2::Y16ToUyvy,
              simd_avx512::Y16ToUyvy);
PIXMORPH_SLOT(ConvertSlot, Y16ToYuy2, plain::Y16ToYuy2, simd_sse41::Y16ToYuy2, simd_avx2::Y16ToYuy2,
              simd_avx512::Y16ToYuy2);
PIXMORPH_SLOT(ConvertSlot, Y16ToYvyu, plain::Y16ToYvyu, simd_sse41::Y16ToYvyu, simd_avx2::Y16ToYvyu,
              simd_avx512::Y16ToYvyu);
PIXMORPH_SLOT(ConvertSlot, Y16ToY16A, plain::Y16ToY16A, simd_sse41::Y16ToY16A, simd_avx2::Y16ToY16A,
              simd_avx512::Y16ToY16A);
PIXMORPH_SLOT(ConvertSlot, Y16ToY422, plain::Y16ToY422, simd_sse41::Y16ToY422, simd_avx2::Y16ToY422,
              simd_avx512::Y16ToY422);
PIXMORPH_SLOT(ConvertSlot, Y16ToI420, plain::Y16ToI420, simd_sse41::Y16ToI420, simd_avx2::Y16ToI420,
              simd_avx512::Y16ToI420);

PIXMORPH_SLOT(ConvertSlot, Y16AToUyvy, plain::Y16AToUyvy, simd_sse41::Y16AToUyvy, simd_avx2::Y16AToUyvy,
              simd_avx512::Y16AToUyvy);
PIXMORPH_SLOT(ConvertSlot, Y16AToYuy2, plain::Y16AToYuy2, simd_sse41::Y16AToYuy2, simd_avx2::Y16AToYuy2,
              simd_avx512::Y16AToYuy2);
PIXMORPH_SLOT(ConvertSlot, Y16AToYvyu, plain::Y16AToYvyu, simd_sse41::Y16AToYvyu, simd_avx2::Y16AToYvyu,
              simd_avx512::Y16AToYvyu);
PIXMORPH_SLOT(ConvertSlot, Y16AToY16, plain::Y16AToY16, simd_sse41::Y16AToY16, simd_avx2::Y16AToY16,
              simd_avx512::Y16AToY16);
PIXMORPH_SLOT(ConvertSlot, Y16AToY422, plain::Y16AToY422, simd_sse41::Y16AToY422, simd_avx2::Y16AToY422,
              simd_avx512::Y16AToY422);
PIXMORPH_SLOT(ConvertSlot, Y16AToI420, plain::Y16AToI420, simd_sse41::Y16AToI420, simd_avx2::Y16AToI420,
              simd_avx512::Y16AToI420);

PIXMORPH_SLOT(ConvertSlot, Y422ToUyvy, plain::Y422ToUyvy, simd_sse41::Y422ToUyvy, simd_avx2::Y422ToUyvy,
              simd_avx512::Y422ToUyvy);
PIXMORPH_SLOT(ConvertSlot, Y422ToYuy2, plain::Y422ToYuy2, simd_sse41::Y422ToYuy2, simd_avx2::Y422ToYuy2,
              simd_avx512::Y422ToYuy2);
PIXMORPH_SLOT(ConvertSlot, Y422ToY16, plain::Y422ToY16, simd_sse41::Y422ToY16, simd_avx2::Y422ToY16,
              simd_avx512::Y422ToY16);
PIXMORPH_SLOT(ConvertSlot, Y422ToY16A, plain::Y422ToY16A, simd_sse41::Y422ToY16A, simd_avx2::Y422ToY16A,
              simd_avx512::Y422ToY16A);
PIXMORPH_SLOT(ConvertSlot, Y422ToI420, plain::Y422ToI420, simd_sse41::Y422ToI420, simd_avx2::Y422ToI420,
              simd_avx512::Y422ToI420);

PIXMORPH_SLOT(ConvertSlot, I420ToUyvy, plain::I420ToUyvy, simd_sse41::I420ToUyvy, simd_avx2::I420ToUyvy,
              simd_avx512::I420ToUyvy);
PIXMORPH_SLOT(ConvertSlot, I420ToYuy2, plain::I420ToYuy2, simd_sse41::I420ToYuy2, simd_avx2::I420ToYuy2,
              simd_avx512::I420ToYuy2);
PIXMORPH_SLOT(ConvertSlot, I420ToY16, plain::I420ToY16, simd_sse41::I420ToY16, simd_avx2::I420ToY16,
              simd_avx512::I420ToY16);
PIXMORPH_SLOT(ConvertSlot, I420ToY16A, plain::I420ToY16A, simd_sse41::I420ToY16A, simd_avx2::I420ToY16A,
              simd_avx512::I420ToY16A);
PIXMORPH_SLOT(ConvertSlot, I420ToY422, plain::I420ToY422, simd_sse41::I420ToY422, simd_avx2::I420ToY422,
              simd_avx512::I420ToY422);
PIXMORPH_SLOT(ConvertSlot, I420ToNv12, plain::I420ToNv12, simd_sse41::I420ToNv12, simd_avx2::I420ToNv12,
              simd_avx512::I420ToNv12);

PIXMORPH_SLOT(ConvertSlot, Nv12ToUyvy, plain::Nv12ToUyvy, simd_sse41::Nv12ToUyvy, simd_avx2::Nv12ToUyvy,
              simd_avx512::Nv12ToUyvy);
PIXMORPH_SLOT(ConvertSlot, Nv12ToYuy2, plain::Nv12ToYuy2, simd_sse41::Nv12ToYuy2, simd_avx2::Nv12ToYuy2,
              simd_avx512::Nv12ToYuy2);
PIXMORPH_SLOT(ConvertSlot, Nv12ToYvyu, plain::Nv12ToYvyu, simd_sse41::Nv12ToYvyu, simd_avx2::Nv12ToYvyu,
              simd_avx512::Nv12ToYvyu);
PIXMORPH_SLOT(ConvertSlot, Nv12ToY16, plain::Nv12ToY16, simd_sse41::Nv12ToY16, simd_avx2::Nv12ToY16,
              simd_avx512::Nv12ToY16);
PIXMORPH_SLOT(ConvertSlot, Nv12ToI420, plain::Nv12ToI420, simd_sse41::Nv12ToI420, simd_avx2::Nv12ToI420,
              simd_avx512::Nv12ToI420);

}  // namespace KorvaneSoftware
