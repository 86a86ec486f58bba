#include "titles/group_kernels.h"

#include <algorithm>
#include <cstring>

#include "titles/title_runs.h"
#include "titles/x86/group_kernels_forms.h"

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kBgraGroupBytes = 64;

/// A record in the order in which it is stored.
struct Record {
    std::uint8_t luma[16];
    std::uint8_t key[16];
    std::uint8_t cb[8];
    std::uint8_t cr[8];
};
static_assert(sizeof(Record) == kRecordBytes);

// Layout of alpha: the first sample of a group and the distance to the next.
template <std::size_t GroupBytes, std::size_t First, std::size_t Step>
std::size_t RunLength(const std::uint8_t* src, std::size_t count, bool visible) {
    for (std::size_t group = 0; group < count; ++group) {
        const std::uint8_t* const alpha = src + group * GroupBytes + First;
        std::uint8_t largest = 0;
        for (std::size_t i = 0; i < kGroupPixels; ++i) largest = std::max(largest, alpha[i * Step]);
        if ((largest >= 2) != visible) return group;
    }
    return count;
}

// The matrix of ITU-R BT.601 at video levels in 1/65536, without the offsets of the levels.
std::int32_t Luma(const std::uint8_t* bgra) {
    return (bgra[2] * 16843 + bgra[1] * 33030 + bgra[0] * 6423 + 32768) >> 16;
}

struct ChromaPair {
    std::int32_t cb, cr;
};

// Of the sums of two pixels. The halving is towards zero, not down.
ChromaPair PairChroma(const std::uint8_t* p, const std::uint8_t* q) {
    const std::int32_t b = p[0] + q[0];
    const std::int32_t g = p[1] + q[1];
    const std::int32_t r = p[2] + q[2];
    return {((b * 28770 - g * 19071 - r * 9699 + 32768) >> 16) / 2,
            ((r * 28770 - g * 24117 - b * 4653 + 32768) >> 16) / 2};
}

// A premultiplied pixel has its level offsets premultiplied too: 16 and 128 times alpha, in a rounding of its own each.
std::int32_t BlackOffset(std::uint8_t alpha) { return (alpha + 8) * 16 / 255; }
std::int32_t ZeroOffset(std::uint8_t alpha) { return (alpha + 1) * 128 / 255; }

// Records are put together aside and then stored, so that the destination may start where the source does.
template <std::size_t GroupBytes, class Fill>
void ForEachGroup(std::uint8_t* dst, const std::uint8_t* src, std::size_t count, Fill fill) {
    for (std::size_t group = 0; group < count; ++group) {
        Record record;
        fill(record, src + group * GroupBytes);
        std::memcpy(dst + group * kRecordBytes, &record, kRecordBytes);
    }
}

template <class Store>
void TitleGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count, Store storeChroma) {
    ForEachGroup<kBgraGroupBytes>(dst, src, count, [storeChroma](Record& record, const std::uint8_t* pixels) {
        for (int i = 0; i < 16; ++i) {
            const std::uint8_t* const p = pixels + 4 * i;
            record.luma[i] = static_cast<std::uint8_t>(Luma(p) + BlackOffset(p[3]));
            record.key[i] = static_cast<std::uint8_t>(255 - p[3]);
        }
        for (int k = 0; k < 8; ++k) {
            const std::uint8_t* const p = pixels + 8 * k;
            const ChromaPair chroma = PairChroma(p, p + 4);
            // Cb goes by the first pixel's alpha, Cr by the second's.
            record.cb[k] = storeChroma(chroma.cb + ZeroOffset(p[3]));
            record.cr[k] = storeChroma(chroma.cr + ZeroOffset(p[7]));
        }
    });
}

std::uint8_t TimesAlpha(std::int32_t value, std::uint8_t alpha) {
    return static_cast<std::uint8_t>((static_cast<std::uint32_t>(value) * alpha + 128) / 255);
}

}  // namespace

std::size_t plain::BgraRunLength(const std::uint8_t* src, std::size_t count, bool visible) {
    return RunLength<kBgraGroupBytes, 3, 4>(src, count, visible);
}
std::size_t plain::Y16ARunLength(const std::uint8_t* src, std::size_t count, bool visible) {
    return RunLength<kY16AOrder.bytes, kY16AOrder.alpha, 1>(src, count, visible);
}

void plain::TitleToGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    TitleGroups(dst, src, count, [](std::int32_t value) { return static_cast<std::uint8_t>(value); });
}

void plain::TitleToCableGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    TitleGroups(dst, src, count,
                [](std::int32_t value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); });
}

void plain::BgraToGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    ForEachGroup<kBgraGroupBytes>(dst, src, count, [](Record& record, const std::uint8_t* pixels) {
        for (int i = 0; i < 16; ++i) {
            const std::uint8_t* const p = pixels + 4 * i;
            record.luma[i] = TimesAlpha(Luma(p) + 16, p[3]);
            record.key[i] = static_cast<std::uint8_t>(255 - p[3]);
        }
        for (int k = 0; k < 8; ++k) {
            const std::uint8_t* const p = pixels + 8 * k;
            const ChromaPair chroma = PairChroma(p, p + 4);
            record.cb[k] = TimesAlpha(chroma.cb + 128, p[3]);
            record.cr[k] = TimesAlpha(chroma.cr + 128, p[7]);
        }
    });
}

void plain::Y16AToGroups(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    ForEachGroup<kY16AOrder.bytes>(dst, src, count, [](Record& record, const std::uint8_t* group) {
        const std::uint8_t* const alpha = group + kY16AOrder.alpha;
        for (int i = 0; i < 16; ++i) {
            record.luma[i] = static_cast<std::uint8_t>((group[i] * alpha[i]) >> 8);
            record.key[i] = static_cast<std::uint8_t>(255 - alpha[i]);
        }
        for (int k = 0; k < 8; ++k) {
            record.cb[k] = static_cast<std::uint8_t>((group[kY16AOrder.u + k] * alpha[2 * k]) >> 8);
            record.cr[k] = static_cast<std::uint8_t>((group[kY16AOrder.v + k] * alpha[2 * k + 1]) >> 8);
        }
    });
}

PIXMORPH_SLOT(RunLengthSlot, BgraRunLength, plain::BgraRunLength, simd_sse41::BgraRunLength, simd_avx2::BgraRunLength,
              simd_avx512::BgraRunLength);
PIXMORPH_SLOT(RunLengthSlot, Y16ARunLength, plain::Y16ARunLength, simd_sse41::Y16ARunLength, simd_avx2::Y16ARunLength,
              simd_avx512::Y16ARunLength);
PIXMORPH_SLOT(GroupSlot, TitleToGroups, plain::TitleToGroups, simd_sse41::TitleToGroups, simd_avx2::TitleToGroups,
              simd_avx512::TitleToGroups);
PIXMORPH_SLOT(GroupSlot, TitleToCableGroups, plain::TitleToCableGroups, simd_sse41::TitleToCableGroups,
              simd_avx2::TitleToCableGroups, simd_avx512::TitleToCableGroups);
PIXMORPH_SLOT(GroupSlot, BgraToGroups, plain::BgraToGroups, simd_sse41::BgraToGroups, simd_avx2::BgraToGroups,
              simd_avx512::BgraToGroups);
PIXMORPH_SLOT(GroupSlot, Y16AToGroups, plain::Y16AToGroups, simd_sse41::Y16AToGroups, simd_avx2::Y16AToGroups,
              simd_avx512::Y16AToGroups);

}  // namespace KorvaneSoftware
