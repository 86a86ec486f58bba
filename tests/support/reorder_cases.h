// The reordering kernels with the formats that they connect, for the tests that walk all of them.
#pragma once

#include <cstdint>
#include <ostream>

#include "convert/reorder.h"

namespace pixmorph_test {

namespace km = KorvaneSoftware;

struct ReorderCase {
    const km::ConvertSlot* slot;
    std::uint32_t from;
    std::uint32_t to;

    bool HasBlocks() const { return IsBlock(from) || IsBlock(to); }
    bool HasSharedChromaLines() const { return Is420(from) || Is420(to); }
    /// Widths and heights that reach the kernel are multiples of these.
    std::uint32_t WidthStep() const { return HasBlocks() ? 16 : 2; }
    std::uint32_t HeightStep() const { return HasSharedChromaLines() ? 2 : 1; }

    static bool IsBlock(std::uint32_t format) { return format == km::FMT_Y16 || format == km::FMT_Y16A; }
    static bool Is420(std::uint32_t format) { return format == km::FMT_I420 || format == km::FMT_NV12; }
};

/// How a failing test names its case.
inline void PrintTo(const ReorderCase& c, std::ostream* out) { *out << c.slot->Name(); }

inline const ReorderCase kReorderCases[] = {
    {&km::UyvyToYuy2, km::FMT_UYVY, km::FMT_YUY2}, {&km::UyvyToYvyu, km::FMT_UYVY, km::FMT_YVYU},
    {&km::Yuy2ToUyvy, km::FMT_YUY2, km::FMT_UYVY}, {&km::Yuy2ToYvyu, km::FMT_YUY2, km::FMT_YVYU},
    {&km::YvyuToUyvy, km::FMT_YVYU, km::FMT_UYVY}, {&km::YvyuToYuy2, km::FMT_YVYU, km::FMT_YUY2},
    {&km::UyvyToY16, km::FMT_UYVY, km::FMT_Y16},   {&km::Yuy2ToY16, km::FMT_YUY2, km::FMT_Y16},
    {&km::YvyuToY16, km::FMT_YVYU, km::FMT_Y16},   {&km::UyvyToY16A, km::FMT_UYVY, km::FMT_Y16A},
    {&km::Yuy2ToY16A, km::FMT_YUY2, km::FMT_Y16A}, {&km::YvyuToY16A, km::FMT_YVYU, km::FMT_Y16A},
    {&km::UyvyToY422, km::FMT_UYVY, km::FMT_Y422}, {&km::Yuy2ToY422, km::FMT_YUY2, km::FMT_Y422},
    {&km::Y16ToUyvy, km::FMT_Y16, km::FMT_UYVY},   {&km::Y16ToYuy2, km::FMT_Y16, km::FMT_YUY2},
    {&km::Y16ToYvyu, km::FMT_Y16, km::FMT_YVYU},   {&km::Y16ToY16A, km::FMT_Y16, km::FMT_Y16A},
    {&km::Y16ToY422, km::FMT_Y16, km::FMT_Y422},   {&km::Y16AToUyvy, km::FMT_Y16A, km::FMT_UYVY},
    {&km::Y16AToYuy2, km::FMT_Y16A, km::FMT_YUY2}, {&km::Y16AToYvyu, km::FMT_Y16A, km::FMT_YVYU},
    {&km::Y16AToY16, km::FMT_Y16A, km::FMT_Y16},   {&km::Y16AToY422, km::FMT_Y16A, km::FMT_Y422},
    {&km::Y422ToUyvy, km::FMT_Y422, km::FMT_UYVY}, {&km::Y422ToYuy2, km::FMT_Y422, km::FMT_YUY2},
    {&km::Y422ToY16, km::FMT_Y422, km::FMT_Y16},   {&km::Y422ToY16A, km::FMT_Y422, km::FMT_Y16A},
    {&km::UyvyToI420, km::FMT_UYVY, km::FMT_I420}, {&km::Yuy2ToI420, km::FMT_YUY2, km::FMT_I420},
    {&km::UyvyToNv12, km::FMT_UYVY, km::FMT_NV12}, {&km::Yuy2ToNv12, km::FMT_YUY2, km::FMT_NV12},
    {&km::YvyuToNv12, km::FMT_YVYU, km::FMT_NV12}, {&km::Y16ToI420, km::FMT_Y16, km::FMT_I420},
    {&km::Y16AToI420, km::FMT_Y16A, km::FMT_I420}, {&km::Y422ToI420, km::FMT_Y422, km::FMT_I420},
    {&km::I420ToUyvy, km::FMT_I420, km::FMT_UYVY}, {&km::I420ToYuy2, km::FMT_I420, km::FMT_YUY2},
    {&km::I420ToY16, km::FMT_I420, km::FMT_Y16},   {&km::I420ToY16A, km::FMT_I420, km::FMT_Y16A},
    {&km::I420ToY422, km::FMT_I420, km::FMT_Y422}, {&km::Nv12ToUyvy, km::FMT_NV12, km::FMT_UYVY},
    {&km::Nv12ToYuy2, km::FMT_NV12, km::FMT_YUY2}, {&km::Nv12ToYvyu, km::FMT_NV12, km::FMT_YVYU},
    {&km::Nv12ToY16, km::FMT_NV12, km::FMT_Y16},   {&km::I420ToNv12, km::FMT_I420, km::FMT_NV12},
    {&km::Nv12ToI420, km::FMT_NV12, km::FMT_I420},
};

}  // namespace pixmorph_test
