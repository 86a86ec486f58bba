// The format tables against rows typed here a second time, by number.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "foundation/image_descriptor.h"

namespace {

using namespace KorvaneSoftware;

struct FormatRow {
    unsigned id;
    const char* fourCC;
    unsigned planeCount, bottomUp, plane0Bits, totalBits, rowAlign, chromaWidthDiv, chromaHeightDiv, chromaStrideDiv,
        chromaSideBySide, xAlign, yAlign, sampleBits;
};

// clang-format off
constexpr FormatRow kRows[] = {
    {3, "BGR", 1, 1, 24, 8, 4, 0, 0, 0, 0, 1, 1, 8},
    {4, "BGRA", 1, 1, 32, 8, 4, 0, 0, 0, 0, 1, 1, 8},
    {5, "AYUV", 1, 0, 32, 8, 4, 0, 0, 0, 0, 1, 1, 8},
    {6, "Y444", 3, 0, 8, 24, 1, 1, 1, 1, 0, 1, 1, 8},
    {7, "UYVY", 1, 0, 16, 8, 2, 0, 0, 0, 0, 2, 1, 8},
    {8, "YUY2", 1, 0, 16, 8, 2, 0, 0, 0, 0, 2, 1, 8},
    {9, "YVYU", 1, 0, 16, 8, 2, 0, 0, 0, 0, 2, 1, 8},
    {10, "Y16", 1, 0, 16, 8, 32, 0, 0, 0, 0, 16, 1, 8},
    {11, "Y16A", 1, 0, 24, 8, 48, 0, 0, 0, 0, 16, 1, 8},
    {12, "Y32", 1, 0, 32, 8, 64, 0, 0, 0, 0, 16, 1, 8},
    {13, "Y32", 1, 0, 32, 8, 64, 0, 0, 0, 0, 16, 1, 8},
    {14, "Y32A", 1, 0, 40, 8, 80, 0, 0, 0, 0, 16, 1, 8},
    {15, "Y32A", 1, 0, 40, 8, 80, 0, 0, 0, 0, 16, 1, 8},
    {16, "Y422", 3, 0, 8, 16, 2, 2, 1, 2, 0, 2, 1, 8},
    {17, "I420", 3, 0, 8, 12, 2, 2, 2, 2, 0, 2, 2, 8},
    {18, "YV12", 3, 0, 8, 12, 2, 2, 2, 2, 0, 2, 2, 8},
    {19, "NV12", 2, 0, 8, 12, 2, 1, 2, 1, 0, 2, 2, 8},
    {20, "NV11", 2, 0, 8, 12, 4, 2, 1, 2, 0, 4, 1, 8},
    {21, "Y41P", 1, 0, 12, 8, 4, 0, 0, 0, 0, 4, 1, 8},
    {22, "YVU9", 3, 0, 8, 9, 4, 4, 4, 4, 0, 4, 4, 8},
    {23, "IMC1", 3, 0, 8, 16, 2, 2, 2, 1, 0, 2, 2, 8},
    {24, "IMC2", 3, 0, 8, 12, 2, 2, 2, 1, 2, 2, 2, 8},
    {25, "IMC3", 3, 0, 8, 16, 2, 2, 2, 1, 0, 2, 2, 8},
    {26, "IMC4", 3, 0, 8, 12, 2, 2, 2, 1, 2, 2, 2, 8},
    {27, "Y400", 1, 0, 8, 8, 1, 0, 0, 0, 0, 1, 1, 8},
    {28, "DV12", 2, 0, 8, 12, 16, 1, 2, 1, 0, 16, 2, 8},
    {29, "BGR8", 1, 1, 8, 8, 4, 0, 0, 0, 0, 1, 1, 8},
    {30, "S400", 1, 0, 16, 8, 1, 0, 0, 0, 0, 1, 1, 16},
    {31, "S420", 3, 0, 16, 12, 2, 2, 2, 1, 2, 2, 2, 16},
    {32, "S422", 3, 0, 16, 16, 2, 2, 1, 1, 2, 2, 1, 16},
    {33, "P420", 3, 0, 16, 12, 2, 2, 2, 2, 0, 2, 2, 16},
    {34, "P422", 3, 0, 16, 16, 2, 2, 1, 2, 0, 2, 1, 16},
    {40, "NONE", 2, 0, 16, 32, 4, 1, 1, 1, 0, 2, 1, 16},
};

// What engines ask, by ids as their own descriptions list them.
struct TraitRow {
    unsigned trait;
    std::vector<unsigned> ids;
};
const TraitRow kTraitRows[] = {
    {FORMAT_PACKED_422, {7, 8, 9}},
    {FORMAT_BLOCKS, {10, 11, 12, 13, 14, 15}},
    {FORMAT_WORD_PLANES, {30, 31, 32, 33, 34}},
    {FORMAT_V_BEFORE_U, {18, 23, 24}},
    {FORMAT_KEPT_BY_FILTER, {6, 7, 8, 9, 16, 17, 18, 23, 24, 25, 26, 27}},
    {FORMAT_FILTERED, {6, 7, 8, 16, 17, 18, 23, 24, 25, 26, 27}},
    {FORMAT_MIXED_BY_BYTES, {3, 4, 7, 8, 9, 27}},
    {FORMAT_RESIZED_DIRECTLY, {4, 6, 7, 8, 9, 16, 17, 18, 19, 27}},
    {FORMAT_RESIZED_BY_NAME, {23, 24, 25, 26, 33, 34}},
    {FORMAT_LUMA_FIRST, {8, 9}},
};

TEST(FormatTraits, BelongToTheseFormatsAlone) {
    for (const TraitRow& row : kTraitRows)
        for (unsigned id = 0; id < 64; ++id)
            EXPECT_EQ(HasTraits(id, row.trait), std::count(row.ids.begin(), row.ids.end(), id) == 1)
                << "trait " << row.trait << " format " << id;
    EXPECT_FALSE(HasTraits(FMT_UYVY, FORMAT_PACKED_422 | FORMAT_BLOCKS));
    EXPECT_TRUE(HasTraits(FMT_UYVY, FORMAT_PACKED_422 | FORMAT_FILTERED));
}

struct PublicRow {
    unsigned publicId;
    const char* fourCC;
    unsigned format, matrixFlags, bitDepth;
};

constexpr PublicRow kPublicRows[] = {
    {0, "UYVY", 7, 0, 8},
    {1, "Y16", 10, 0, 8},
    {2, "Y16A", 11, 0, 8},
    {3, "Y32", 12, 0, 8},
    {4, "Y32A", 14, 0, 8},
    {5, "YUY2", 8, 0, 8},
    {6, "YVYU", 9, 0, 8},
    {7, "BGR", 3, 0, 8},
    {8, "BGRA", 4, 0, 8},
    {10, "YV12", 18, 0, 8},
    {11, "IYUV", 17, 0, 8},
    {12, nullptr, 13, 0, 8},
    {13, nullptr, 15, 0, 8},
    {14, nullptr, 7, 1, 8},
    {15, nullptr, 8, 1, 8},
    {16, nullptr, 19, 1, 8},
    {17, nullptr, 3, 0, 8},
    {18, nullptr, 4, 0, 8},
    {24, "NV12", 19, 0, 8},
    {25, nullptr, 24, 0, 8},
    {26, nullptr, 26, 0, 8},
    {27, nullptr, 40, 0, 10},
    {28, nullptr, 42, 0, 10},
    {29, nullptr, 33, 0, 10},
    {30, nullptr, 16, 0, 8},
    {31, nullptr, 34, 0, 10},
};

constexpr unsigned kColoured[] = {0, 5, 6, 10, 11, 24, 25, 26, 27, 28, 29, 30, 31};
constexpr unsigned kBt709[] = {32, 37, 38, 42, 43, 56, 57, 58, 59, 60, 61, 62, 63};
constexpr unsigned kFullRange[] = {96, 101, 102, 106, 107, 120, 121, 122, 123, 124, 125, 126, 127};

struct ShiftRow {
    unsigned id, planeCount, width1, height1, width2, height2;
};

constexpr ShiftRow kShiftRows[] = {
    {3, 1, 0, 0, 0, 0},  {4, 1, 0, 0, 0, 0},  {7, 1, 0, 0, 0, 0},  {8, 1, 0, 0, 0, 0},  {9, 1, 0, 0, 0, 0},
    {27, 1, 0, 0, 0, 0}, {30, 1, 0, 0, 0, 0}, {37, 1, 0, 0, 0, 0}, {6, 3, 0, 0, 0, 0},  {16, 3, 1, 0, 1, 0},
    {32, 3, 1, 0, 1, 0}, {17, 3, 1, 1, 1, 1}, {18, 3, 1, 1, 1, 1}, {31, 3, 1, 1, 1, 1}, {19, 2, 1, 1, 0, 0},
};
// clang-format on

std::uint32_t Code(const char* text) {
    std::uint32_t code = 0;
    for (std::size_t i = 0; i < std::strlen(text); ++i)
        code |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])) << (8 * i);
    return code;
}

std::string Lower(const char* text) {
    std::string result = text;
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return result;
}

ImageDescriptor OfFormat(std::uint32_t format) {
    ImageDescriptor desc;
    desc.format = format;
    return desc;
}

TEST(FormatInfoTable, HasEveryRow) {
    const auto table = FormatInfoTable();
    ASSERT_EQ(table.size(), 36u);
    for (const FormatRow& row : kRows) {
        SCOPED_TRACE(row.id);
        const FormatInfo* const info = FormatInfoOf(OfFormat(row.id));
        ASSERT_NE(info, nullptr);
        EXPECT_EQ(info, &table[row.id == 40 ? 35 : row.id]);
        EXPECT_EQ(info->id, row.id);
        EXPECT_EQ(info->planeCount, row.planeCount);
        EXPECT_EQ(info->bottomUp, row.bottomUp);
        EXPECT_EQ(info->plane0Bits, row.plane0Bits);
        EXPECT_EQ(info->totalBits, row.totalBits);
        EXPECT_EQ(info->rowAlign, row.rowAlign);
        EXPECT_EQ(info->chromaWidthDiv, row.chromaWidthDiv);
        EXPECT_EQ(info->chromaHeightDiv, row.chromaHeightDiv);
        EXPECT_EQ(info->chromaStrideDiv, row.chromaStrideDiv);
        EXPECT_EQ(info->chromaSideBySide, row.chromaSideBySide);
        EXPECT_EQ(info->xAlign, row.xAlign);
        EXPECT_EQ(info->yAlign, row.yAlign);
        EXPECT_EQ(info->sampleBits, row.sampleBits);
        EXPECT_EQ(IsBottomUp(row.id), row.bottomUp != 0);
    }
}

TEST(FormatInfoTable, FirstThreeRowsAreEmpty) {
    const unsigned char zeros[sizeof(FormatInfo)] = {};
    for (int i = 0; i < 3; ++i) EXPECT_EQ(std::memcmp(&FormatInfoTable()[i], zeros, sizeof(zeros)), 0) << i;
}

TEST(FormatInfoTable, LaysItsFieldsOutInOrder) {
    EXPECT_EQ(sizeof(FormatInfo), 16u);
    EXPECT_EQ(offsetof(FormatInfo, planeCount), 4u);
    EXPECT_EQ(offsetof(FormatInfo, chromaWidthDiv), 9u);
    EXPECT_EQ(offsetof(FormatInfo, sampleBits), 15u);
    ImageDescriptor desc;
    const auto offset = [&desc](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&desc);
    };
    EXPECT_EQ(offset(&desc.lumaExtraBits), 12);
    EXPECT_EQ(offset(&desc.chromaExtraBits), 13);
    EXPECT_EQ(offset(&desc.colorMatrix), 14);
    EXPECT_EQ(offset(&desc.planes), 16);
    EXPECT_EQ(offset(&desc.strides), 48);
    EXPECT_EQ(sizeof(ImageDescriptor), 80u);
}

TEST(FormatInfoOf, KnowsNoOtherFormat) {
    std::vector<std::uint32_t> unknown = {0, 1, 2, 35, 36, 37, 38, 39, 41, 42, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    for (std::uint32_t id = 43; id < 300; ++id) unknown.push_back(id);
    for (const std::uint32_t id : unknown) EXPECT_EQ(FormatInfoOf(OfFormat(id)), nullptr) << id;
}

TEST(FourCC, FindsFormatsInUpperAndLowerCase) {
    for (const FormatRow& row : kRows) {
        if (row.id == 40) continue;
        // Two pairs share their code; the first of each is found.
        const std::uint32_t first = row.id == 13 ? 12 : row.id == 15 ? 14 : row.id;
        EXPECT_EQ(FormatFromFourCC(Code(row.fourCC)), first) << row.fourCC;
        EXPECT_EQ(FormatFromFourCC(Code(Lower(row.fourCC).c_str())), first) << row.fourCC;
    }
    EXPECT_EQ(FormatFromFourCC(0x00524742), 3u);  // 42 47 52 00 in memory
    EXPECT_EQ(FormatFromFourCC(0x00363159), 10u);
}

TEST(FourCC, DoesNotKnowOthers) {
    for (const char* code : {"P216", "P016", "IYUV", "NONE", "YUY", "YUYV", "BGR ", "XXXX"})
        EXPECT_EQ(FormatFromFourCC(Code(code)), 0u) << code;
    EXPECT_EQ(FormatFromFourCC(0), 0u);
    EXPECT_EQ(FormatFromFourCC(0xFFFFFFFF), 0u);
}

TEST(FourCC, OfFormats) {
    for (const FormatRow& row : kRows) EXPECT_EQ(FourCCFromFormat(row.id), Code(row.fourCC)) << row.id;
    for (const std::uint32_t id : {0u, 1u, 2u, 35u, 41u, 42u, 43u, 0xFFFFFFFFu})
        EXPECT_EQ(FourCCFromFormat(id), Code("NONE")) << id;
}

TEST(PublicFormatTable, HasEveryRow) {
    EXPECT_EQ(PublicFormatTable().size(), 52u);
    for (const PublicRow& row : kPublicRows) {
        SCOPED_TRACE(row.publicId);
        const PublicFormatRecord* const record = FindPublicFormat(row.publicId);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->publicId, row.publicId);
        EXPECT_EQ(record->format, row.format);
        EXPECT_EQ(record->matrixFlags, row.matrixFlags);
        EXPECT_EQ(record->bitDepth, row.bitDepth);
    }
}

TEST(PublicFormatTable, RepeatsThirteenRowsPerMatrix) {
    for (int i = 0; i < 13; ++i) {
        SCOPED_TRACE(kColoured[i]);
        const PublicFormatRecord* const base = FindPublicFormat(kColoured[i]);
        const PublicFormatRecord* const bt709 = FindPublicFormat(kBt709[i]);
        const PublicFormatRecord* const full = FindPublicFormat(kFullRange[i]);
        ASSERT_TRUE(base != nullptr && bt709 != nullptr && full != nullptr);
        EXPECT_EQ(bt709->format, base->format);
        EXPECT_EQ(bt709->bitDepth, base->bitDepth);
        EXPECT_EQ(bt709->matrixFlags, 1);
        EXPECT_EQ(full->format, base->format);
        EXPECT_EQ(full->bitDepth, base->bitDepth);
        EXPECT_EQ(full->matrixFlags, 3);
    }
}

TEST(PublicFormatTable, HasNoOtherNumber) {
    std::vector<bool> known(300, false);
    for (const PublicRow& row : kPublicRows) known[row.publicId] = true;
    for (const unsigned id : kBt709) known[id] = true;
    for (const unsigned id : kFullRange) known[id] = true;
    for (unsigned id = 0; id < 300; ++id) EXPECT_EQ(FindPublicFormat(id) != nullptr, known[id]) << id;
    EXPECT_EQ(FindPublicFormat(9), nullptr);
    EXPECT_EQ(FindPublicFormat(0xFFFFFFFF), nullptr);
}

TEST(PublicIdFromFourCC, MapsTheCodes) {
    for (const PublicRow& row : kPublicRows) {
        if (row.fourCC == nullptr) continue;
        EXPECT_EQ(PublicIdFromFourCC(Code(row.fourCC)), row.publicId) << row.fourCC;
        EXPECT_EQ(PublicIdFromFourCC(Code(Lower(row.fourCC).c_str())), row.publicId) << row.fourCC;
    }
    EXPECT_EQ(PublicIdFromFourCC(Code("Y16R")), 9u);
    EXPECT_EQ(PublicIdFromFourCC(Code("yUy2")), 5u);
    EXPECT_EQ(PublicIdFromFourCC(0x32595559), 5u);
}

TEST(PublicIdFromFourCC, PassesOthersThroughUnchanged) {
    for (const std::uint32_t value : {5u, 9u, 17u, 31u, 127u, 9999u, 0xFFFFFFFFu})
        EXPECT_EQ(PublicIdFromFourCC(value), value);
    // Not upper-cased on the way, and known formats without a public code are others too.
    for (const char* code : {"abcd", "I420", "i420", "ayuv", "Y422", "p216"})
        EXPECT_EQ(PublicIdFromFourCC(Code(code)), Code(code)) << code;
}

TEST(SetPublicFormat, FillsFormatMatrixAndDepth) {
    ImageDescriptor desc;
    SetPublicFormat(desc, 61);
    EXPECT_EQ(desc.format, 33u);
    EXPECT_EQ(desc.colorMatrix, 1);
    EXPECT_EQ(desc.lumaExtraBits, 2);
    EXPECT_EQ(desc.chromaExtraBits, 2);
    ImageDescriptor none;
    SetPublicFormat(none, 9);
    EXPECT_EQ(none.format, 0u);
}

TEST(PublicFormats, TopDownNumbers) {
    for (std::uint32_t id = 0; id < 128; ++id) EXPECT_EQ(IsTopDownPublicId(id), id == 17 || id == 18) << id;
}

TEST(PlaneShiftTable, HasEveryRow) {
    const auto table = PlaneShiftTable();
    ASSERT_EQ(table.size(), 38u);
    EXPECT_EQ(sizeof(PlaneShiftRecord), 32u);
    std::vector<ShiftRow> expected(38, ShiftRow{});
    for (const ShiftRow& row : kShiftRows) expected[row.id] = row;
    for (std::uint32_t id = 0; id < 38; ++id) {
        SCOPED_TRACE(id);
        EXPECT_EQ(table[id].planeCount, expected[id].planeCount);
        EXPECT_EQ(table[id].id, expected[id].id);
        EXPECT_EQ(table[id].planes[0].width, 0u);
        EXPECT_EQ(table[id].planes[0].height, 0u);
        EXPECT_EQ(table[id].planes[1].width, expected[id].width1);
        EXPECT_EQ(table[id].planes[1].height, expected[id].height1);
        EXPECT_EQ(table[id].planes[2].width, expected[id].width2);
        EXPECT_EQ(table[id].planes[2].height, expected[id].height2);
        EXPECT_EQ(&PlaneShiftsOf(id), &table[id]);
    }
}

TEST(PlaneShiftTable, FallsBackToTheEmptyRow) {
    for (const std::uint32_t id : {38u, 40u, 42u, 43u, 0xFFFFFFFFu})
        EXPECT_EQ(&PlaneShiftsOf(id), &PlaneShiftTable()[0]) << id;
}

}  // namespace
