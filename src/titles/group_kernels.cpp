#include "titles/group_kernels.h"

#include <algorithm>
#include <cstring>

#include "titles/title_runs.h"
#include "titles/x86/group_kernels_x86.h"

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kBgraGroupBytes = 64;
constexpr std::size_t kY16AGroupBytes = 48;

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
std::size_t RunLength_Plain(const std::uint8_t* src, std::size_t count, bool visible) {
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

void TitleToGroups_Plain(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    TitleGroups(dst, src, count, [](std::int32_t value) { return static_cast<std::uint8_t>(value); });
}

void TitleToCableGroups_Plain(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    TitleGroups(dst, src, count,
                [](std::int32_t value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); });
}

std::uint8_t TimesAlpha(std::int32_t value, std::uint8_t alpha) {
    return static_cast<std::uint8_t>((static_cast<std::uint32_t>(value) * alpha + 128) / 255);
}

void BgraToGroups_Plain(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
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

void Y16AToGroups_Plain(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    ForEachGroup<kY16AGroupBytes>(dst, src, count, [](Record& record, const std::uint8_t* group) {
        const std::uint8_t* const alpha = group + 16;
        for (int i = 0; i < 16; ++i) {
            record.luma[i] = static_cast<std::uint8_t>((group[i] * alpha[i]) >> 8);
            record.key[i] = static_cast<std::uint8_t>(255 - alpha[i]);
        }
        for (int k = 0; k < 8; ++k) {
            record.cb[k] = static_cast<std::uint8_t>((group[32 + k] * alpha[2 * k]) >> 8);
            record.cr[k] = static_cast<std::uint8_t>((group[40 + k] * alpha[2 * k + 1]) >> 8);
        }
    });
}

constexpr RunLengthSlot::Entry kBgraRunLengthRows[] = {
    {FEATURES_PLAIN, RunLength_Plain<kBgraGroupBytes, 3, 4>, "BgraRunLength_Plain"},
    {FEATURES_SSE41, BgraRunLength_Sse41, "BgraRunLength_Sse41"},
    {FEATURES_AVX2, BgraRunLength_Avx2, "BgraRunLength_Avx2"},
    {FEATURES_AVX512BW, BgraRunLength_Avx512, "BgraRunLength_Avx512"},
};
constexpr RunLengthSlot::Entry kY16ARunLengthRows[] = {
    {FEATURES_PLAIN, RunLength_Plain<kY16AGroupBytes, 16, 1>, "Y16ARunLength_Plain"},
    {FEATURES_SSE41, Y16ARunLength_Sse41, "Y16ARunLength_Sse41"},
    {FEATURES_AVX2, Y16ARunLength_Avx2, "Y16ARunLength_Avx2"},
    {FEATURES_AVX512BW, Y16ARunLength_Avx512, "Y16ARunLength_Avx512"},
};
constexpr GroupSlot::Entry kTitleToGroupsRows[] = {
    {FEATURES_PLAIN, TitleToGroups_Plain, "TitleToGroups_Plain"},
    {FEATURES_SSE41, TitleToGroups_Sse41, "TitleToGroups_Sse41"},
    {FEATURES_AVX2, TitleToGroups_Avx2, "TitleToGroups_Avx2"},
    {FEATURES_AVX512BW, TitleToGroups_Avx512, "TitleToGroups_Avx512"},
};
constexpr GroupSlot::Entry kTitleToCableGroupsRows[] = {
    {FEATURES_PLAIN, TitleToCableGroups_Plain, "TitleToCableGroups_Plain"},
    {FEATURES_SSE41, TitleToCableGroups_Sse41, "TitleToCableGroups_Sse41"},
    {FEATURES_AVX2, TitleToCableGroups_Avx2, "TitleToCableGroups_Avx2"},
    {FEATURES_AVX512BW, TitleToCableGroups_Avx512, "TitleToCableGroups_Avx512"},
};
constexpr GroupSlot::Entry kBgraToGroupsRows[] = {
    {FEATURES_PLAIN, BgraToGroups_Plain, "BgraToGroups_Plain"},
    {FEATURES_SSE41, BgraToGroups_Sse41, "BgraToGroups_Sse41"},
    {FEATURES_AVX2, BgraToGroups_Avx2, "BgraToGroups_Avx2"},
    {FEATURES_AVX512BW, BgraToGroups_Avx512, "BgraToGroups_Avx512"},
};
constexpr GroupSlot::Entry kY16AToGroupsRows[] = {
    {FEATURES_PLAIN, Y16AToGroups_Plain, "Y16AToGroups_Plain"},
    {FEATURES_SSE41, Y16AToGroups_Sse41, "Y16AToGroups_Sse41"},
    {FEATURES_AVX2, Y16AToGroups_Avx2, "Y16AToGroups_Avx2"},
    {FEATURES_AVX512BW, Y16AToGroups_Avx512, "Y16AToGroups_Avx512"},
};

}  // namespace

constinit RunLengthSlot BgraRunLength{"BgraRunLength", kBgraRunLengthRows, &ResolveOnFirstCall<BgraRunLength>::Call};
constinit RunLengthSlot Y16ARunLength{"Y16ARunLength", kY16ARunLengthRows, &ResolveOnFirstCall<Y16ARunLength>::Call};
constinit GroupSlot TitleToGroups{"TitleToGroups", kTitleToGroupsRows, &ResolveOnFirstCall<TitleToGroups>::Call};
constinit GroupSlot TitleToCableGroups{"TitleToCableGroups", kTitleToCableGroupsRows,
                                       &ResolveOnFirstCall<TitleToCableGroups>::Call};
constinit GroupSlot BgraToGroups{"BgraToGroups", kBgraToGroupsRows, &ResolveOnFirstCall<BgraToGroups>::Call};
constinit GroupSlot Y16AToGroups{"Y16AToGroups", kY16AToGroupsRows, &ResolveOnFirstCall<Y16AToGroups>::Call};

namespace {

const SlotRegistration kRegistration{&BgraRunLength,      &Y16ARunLength, &TitleToGroups,
                                     &TitleToCableGroups, &BgraToGroups,  &Y16AToGroups};

}  // namespace

}  // namespace KorvaneSoftware
