#include "convert/rgb.h"

#include "convert/x86/rgb_forms.h"

namespace KorvaneSoftware {

PIXMORPH_SLOT(ConvertSlot, UyvyToBgr, plain::UyvyToBgr, simd_sse41::UyvyToBgr, simd_avx2::UyvyToBgr,
              simd_avx512::UyvyToBgr);
PIXMORPH_SLOT(ConvertSlot, UyvyToBgra, plain::UyvyToBgra, simd_sse41::UyvyToBgra, simd_avx2::UyvyToBgra,
              simd_avx512::UyvyToBgra);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToBgr, plain::Yuy2ToBgr, simd_sse41::Yuy2ToBgr, simd_avx2::Yuy2ToBgr,
              simd_avx512::Yuy2ToBgr);
PIXMORPH_SLOT(ConvertSlot, Yuy2ToBgra, plain::Yuy2ToBgra, simd_sse41::Yuy2ToBgra, simd_avx2::Yuy2ToBgra,
              simd_avx512::Yuy2ToBgra);
PIXMORPH_SLOT(ConvertSlot, YvyuToBgr, plain::YvyuToBgr, simd_sse41::YvyuToBgr, simd_avx2::YvyuToBgr,
              simd_avx512::YvyuToBgr);
PIXMORPH_SLOT(ConvertSlot, YvyuToBgra, plain::YvyuToBgra, simd_sse41::YvyuToBgra, simd_avx2::YvyuToBgra,
              simd_avx512::YvyuToBgra);

PIXMORPH_SLOT(ConvertSlot, Y16ToBgr, plain::Y16ToBgr, simd_sse41::Y16ToBgr, simd_avx2::Y16ToBgr, simd_avx512::Y16ToBgr);
PIXMORPH_SLOT(ConvertSlot, Y16ToBgra, plain::Y16ToBgra, simd_sse41::Y16ToBgra, simd_avx2::Y16ToBgra,
              simd_avx512::Y16ToBgra);
PIXMORPH_SLOT(ConvertSlot, Y16AToBgr, plain::Y16AToBgr, simd_sse41::Y16AToBgr, simd_avx2::Y16AToBgr,
              simd_avx512::Y16AToBgr);
PIXMORPH_SLOT(ConvertSlot, Y16AToBgra, plain::Y16AToBgra, simd_sse41::Y16AToBgra, simd_avx2::Y16AToBgra,
              simd_avx512::Y16AToBgra);
PIXMORPH_SLOT(ConvertSlot, Y32ToBgr, plain::Y32ToBgr, simd_sse41::Y32ToBgr, simd_avx2::Y32ToBgr, simd_avx512::Y32ToBgr);
PIXMORPH_SLOT(ConvertSlot, Y32ToBgra, plain::Y32ToBgra, simd_sse41::Y32ToBgra, simd_avx2::Y32ToBgra,
              simd_avx512::Y32ToBgra);
PIXMORPH_SLOT(ConvertSlot, Y32AToBgr, plain::Y32AToBgr, simd_sse41::Y32AToBgr, simd_avx2::Y32AToBgr,
              simd_avx512::Y32AToBgr);
PIXMORPH_SLOT(ConvertSlot, Y32AToBgra, plain::Y32AToBgra, simd_sse41::Y32AToBgra, simd_avx2::Y32AToBgra,
              simd_avx512::Y32AToBgra);
PIXMORPH_SLOT(ConvertSlot, Y32ABToBgr, plain::Y32ABToBgr, simd_sse41::Y32ABToBgr, simd_avx2::Y32ABToBgr,
              simd_avx512::Y32ABToBgr);
PIXMORPH_SLOT(ConvertSlot, Y32ABToBgra, plain::Y32ABToBgra, simd_sse41::Y32ABToBgra, simd_avx2::Y32ABToBgra,
              simd_avx512::Y32ABToBgra);

PIXMORPH_SLOT(ConvertSlot, Y422ToBgr, plain::Y422ToBgr, simd_sse41::Y422ToBgr, simd_avx2::Y422ToBgr,
              simd_avx512::Y422ToBgr);
PIXMORPH_SLOT(ConvertSlot, Y422ToBgra, plain::Y422ToBgra, simd_sse41::Y422ToBgra, simd_avx2::Y422ToBgra,
              simd_avx512::Y422ToBgra);
PIXMORPH_SLOT(ConvertSlot, I420ToBgr, plain::I420ToBgr, simd_sse41::I420ToBgr, simd_avx2::I420ToBgr,
              simd_avx512::I420ToBgr);
PIXMORPH_SLOT(ConvertSlot, I420ToBgra, plain::I420ToBgra, simd_sse41::I420ToBgra, simd_avx2::I420ToBgra,
              simd_avx512::I420ToBgra);
PIXMORPH_SLOT(ConvertSlot, Nv12ToBgr, plain::Nv12ToBgr, simd_sse41::Nv12ToBgr, simd_avx2::Nv12ToBgr,
              simd_avx512::Nv12ToBgr);
PIXMORPH_SLOT(ConvertSlot, Nv12ToBgra, plain::Nv12ToBgra, simd_sse41::Nv12ToBgra, simd_avx2::Nv12ToBgra,
              simd_avx512::Nv12ToBgra);
PIXMORPH_SLOT(ConvertSlot, Y444ToBgr, plain::Y444ToBgr, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y444ToBgra, plain::Y444ToBgra, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y400ToBgr, plain::Y400ToBgr, nullptr, nullptr, nullptr);

PIXMORPH_SLOT(ConvertSlot, P216ToBgr, plain::P216ToBgr, simd_sse41::P216ToBgr, simd_avx2::P216ToBgr,
              simd_avx512::P216ToBgr);
PIXMORPH_SLOT(ConvertSlot, P216ToBgra, plain::P216ToBgra, simd_sse41::P216ToBgra, simd_avx2::P216ToBgra,
              simd_avx512::P216ToBgra);
PIXMORPH_SLOT(ConvertSlot, S420ToBgr, plain::S420ToBgr, simd_sse41::S420ToBgr, simd_avx2::S420ToBgr,
              simd_avx512::S420ToBgr);
PIXMORPH_SLOT(ConvertSlot, S420ToBgra, plain::S420ToBgra, simd_sse41::S420ToBgra, simd_avx2::S420ToBgra,
              simd_avx512::S420ToBgra);
PIXMORPH_SLOT(ConvertSlot, P016ToBgr, plain::P016ToBgr, simd_sse41::P016ToBgr, simd_avx2::P016ToBgr,
              simd_avx512::P016ToBgr);
PIXMORPH_SLOT(ConvertSlot, P016ToBgra, plain::P016ToBgra, simd_sse41::P016ToBgra, simd_avx2::P016ToBgra,
              simd_avx512::P016ToBgra);

PIXMORPH_SLOT(ConvertSlot, Y41PToBgr, plain::Y41PToBgr, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y41PToBgra, plain::Y41PToBgra, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Dv12ToBgr, plain::Dv12ToBgr, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Dv12ToBgra, plain::Dv12ToBgra, nullptr, nullptr, nullptr);

PIXMORPH_SLOT(ConvertSlot, BgrToUyvy, plain::BgrToUyvy, simd_sse41::BgrToUyvy, simd_avx2::BgrToUyvy,
              simd_avx512::BgrToUyvy);
PIXMORPH_SLOT(ConvertSlot, BgraToUyvy, plain::BgraToUyvy, simd_sse41::BgraToUyvy, simd_avx2::BgraToUyvy,
              simd_avx512::BgraToUyvy);
PIXMORPH_SLOT(ConvertSlot, BgrToYuy2, plain::BgrToYuy2, simd_sse41::BgrToYuy2, simd_avx2::BgrToYuy2,
              simd_avx512::BgrToYuy2);
PIXMORPH_SLOT(ConvertSlot, BgraToYuy2, plain::BgraToYuy2, simd_sse41::BgraToYuy2, simd_avx2::BgraToYuy2,
              simd_avx512::BgraToYuy2);
PIXMORPH_SLOT(ConvertSlot, BgrToYvyu, plain::BgrToYvyu, simd_sse41::BgrToYvyu, simd_avx2::BgrToYvyu,
              simd_avx512::BgrToYvyu);
PIXMORPH_SLOT(ConvertSlot, BgraToYvyu, plain::BgraToYvyu, simd_sse41::BgraToYvyu, simd_avx2::BgraToYvyu,
              simd_avx512::BgraToYvyu);
PIXMORPH_SLOT(ConvertSlot, BgrToY16, plain::BgrToY16, simd_sse41::BgrToY16, simd_avx2::BgrToY16, simd_avx512::BgrToY16);
PIXMORPH_SLOT(ConvertSlot, BgraToY16, plain::BgraToY16, simd_sse41::BgraToY16, simd_avx2::BgraToY16,
              simd_avx512::BgraToY16);
PIXMORPH_SLOT(ConvertSlot, BgrToY16A, plain::BgrToY16A, simd_sse41::BgrToY16A, simd_avx2::BgrToY16A,
              simd_avx512::BgrToY16A);
PIXMORPH_SLOT(ConvertSlot, BgraToY16A, plain::BgraToY16A, simd_sse41::BgraToY16A, simd_avx2::BgraToY16A,
              simd_avx512::BgraToY16A);
PIXMORPH_SLOT(ConvertSlot, BgrToY422, plain::BgrToY422, simd_sse41::BgrToY422, simd_avx2::BgrToY422,
              simd_avx512::BgrToY422);
PIXMORPH_SLOT(ConvertSlot, BgraToY422, plain::BgraToY422, simd_sse41::BgraToY422, simd_avx2::BgraToY422,
              simd_avx512::BgraToY422);
PIXMORPH_SLOT(ConvertSlot, BgrToI420, plain::BgrToI420, simd_sse41::BgrToI420, simd_avx2::BgrToI420,
              simd_avx512::BgrToI420);
PIXMORPH_SLOT(ConvertSlot, BgraToI420, plain::BgraToI420, simd_sse41::BgraToI420, simd_avx2::BgraToI420,
              simd_avx512::BgraToI420);
PIXMORPH_SLOT(ConvertSlot, BgrToNv12, plain::BgrToNv12, simd_sse41::BgrToNv12, simd_avx2::BgrToNv12,
              simd_avx512::BgrToNv12);
PIXMORPH_SLOT(ConvertSlot, BgraToNv12, plain::BgraToNv12, simd_sse41::BgraToNv12, simd_avx2::BgraToNv12,
              simd_avx512::BgraToNv12);
PIXMORPH_SLOT(ConvertSlot, BgrToY400, plain::BgrToY400, nullptr, nullptr, nullptr);

PIXMORPH_SLOT(ConvertSlot, BgrToBgra, plain::BgrToBgra, simd_sse41::BgrToBgra, simd_avx2::BgrToBgra,
              simd_avx512::BgrToBgra);
PIXMORPH_SLOT(ConvertSlot, BgraToBgr, plain::BgraToBgr, simd_sse41::BgraToBgr, simd_avx2::BgraToBgr,
              simd_avx512::BgraToBgr);

}  // namespace KorvaneSoftware
