#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "convert/conversion_dispatch.h"
#include "support/conversion_table.h"
#include "support/features.h"
#include "support/guard_page.h"
#include "support/picture.h"

namespace pixmorph_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

const std::map<std::string, std::uint32_t>& FormatIds() {
    static const std::map<std::string, std::uint32_t> ids = {
        {"BGR", 3},   {"BGRA", 4},  {"AYUV", 5},  {"Y444", 6},  {"UYVY", 7},  {"YUY2", 8},   {"YVYU", 9},
        {"Y16", 10},  {"Y16A", 11}, {"Y32", 12},  {"Y32B", 13}, {"Y32A", 14}, {"Y32AB", 15}, {"Y422", 16},
        {"I420", 17}, {"YV12", 18}, {"NV12", 19}, {"NV11", 20}, {"Y41P", 21}, {"YVU9", 22},  {"IMC1", 23},
        {"IMC2", 24}, {"IMC3", 25}, {"IMC4", 26}, {"Y400", 27}, {"DV12", 28}, {"BGR8", 29},  {"S400", 30},
        {"S420", 31}, {"S422", 32}, {"P420", 33}, {"P422", 34}, {"P216", 40}, {"P016", 42}};
    return ids;
}

std::string NameOf(std::uint32_t id) {
    for (const auto& [name, value] : FormatIds())
        if (value == id) return name;
    return {};
}

km::ImageDescriptor EmptyPicture(std::uint32_t format) {
    static std::uint8_t byte;
    km::ImageDescriptor desc;
    desc.format = format;
    desc.planes[0] = &byte;
    return desc;
}

// A destination that takes the planar kernel but has one plane only.
bool IsPlanarKernelToBlocks(const std::string& src, const std::string& dst) {
    return (src == "S422" || src == "P422") && (dst.starts_with("Y16") || dst.starts_with("Y32"));
}

TEST(ConversionDispatch, EveryPairOfFormatIdsHasItsStatus) {
    const auto table = ReadConversionTable();
    for (std::uint32_t src = 0; src < 50; ++src) {
        for (std::uint32_t dst = 0; dst < 50; ++dst) {
            const std::string from = NameOf(src);
            const std::string to = NameOf(dst);
            km::Status expected = km::IMG_E_UNSUPPORTED;
            if (from == "AYUV" || from == "NV11" || from == "YVU9")
                expected = km::IMG_E_UNSUPPORTED;
            else if (from.empty() || from == "BGR8" || from == "S400" || to.empty() || (from == "P016" && to == "P016"))
                expected = km::IMG_E_BAD_FORMAT;
            else if (table.at(from).contains(to))
                expected = km::IMG_OK;
            else if (from == "BGR" || from == "BGRA" || from == "UYVY" || from == "YUY2" || from == "YVYU")
                expected = km::IMG_E_NO_PATH;
            const km::ImageDescriptor source = EmptyPicture(src);
            const km::ImageDescriptor destination = EmptyPicture(dst);
            EXPECT_EQ(km::ImageConversionDispatch(destination, source), expected) << src << " to " << dst;
        }
    }
    const km::ImageDescriptor wild = EmptyPicture(0x80000011);
    const km::ImageDescriptor uyvy = EmptyPicture(km::FMT_UYVY);
    EXPECT_EQ(km::ImageConversionDispatch(uyvy, wild), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(km::ImageConversionDispatch(wild, uyvy), km::IMG_E_BAD_FORMAT);
}

TEST(ConversionDispatch, SizesAreTestedBeforeThePath) {
    km::ImageDescriptor uyvy = EmptyPicture(km::FMT_UYVY);
    km::ImageDescriptor wrong = EmptyPicture(km::FMT_BGR8);
    wrong.width = 2;
    EXPECT_EQ(km::ImageConversionDispatch(wrong, uyvy), km::IMG_E_BAD_SIZE);
    km::ImageDescriptor taller = uyvy;
    taller.height = 1;
    EXPECT_EQ(km::ImageConversionDispatch(taller, uyvy), km::IMG_E_BAD_SIZE);
}

// The table answers for every pair as the conversion of a picture of no size does.
TEST(ConversionDispatch, SaysWhichPairsHaveAConversion) {
    int pairs = 0;
    for (std::uint32_t src = 0; src < 70; ++src) {
        for (std::uint32_t dst = 0; dst < 70; ++dst) {
            const km::ImageDescriptor from = EmptyPicture(src), to = EmptyPicture(dst);
            const bool converts = km::ImageConversionDispatch(to, from) == km::IMG_OK;
            EXPECT_EQ(km::HasConversion(dst, src), converts) << dst << " from " << src;
            pairs += converts;
        }
    }
    EXPECT_GT(pairs, 200);
}

// Every path at sizes around what it asks for: the status, and not a byte beside the rows.
TEST(ConversionDispatch, EveryPathAsksForItsMultiples) {
    for (const auto& [from, destinations] : ReadConversionTable()) {
        for (const auto& [to, multiples] : destinations) {
            for (const std::uint32_t width : {1u, 2u, 4u, 8u, 14u, 16u, 18u, 32u}) {
                for (const std::uint32_t height : {1u, 2u, 3u, 4u}) {
                    TestPicture src(FormatIds().at(from), width, height, {16, false, 0}, 0, 2);
                    TestPicture dst(FormatIds().at(to), width, height, {32, false, 4}, 0, 2);
                    src.Fill(Fill::Random, width + height);
                    dst.Fill(Fill::Zero, 0);
                    km::Status expected = km::IMG_OK;
                    if (width % multiples.width != 0 || height % multiples.height != 0)
                        expected = km::IMG_E_BAD_ALIGNMENT;
                    else if (IsPlanarKernelToBlocks(from, to))
                        expected = km::IMG_E_NULL_ARG;
                    ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), expected)
                        << from << " to " << to << ' ' << width << 'x' << height;
                    ASSERT_TRUE(dst.GuardsIntact()) << from << " to " << to << ' ' << width << 'x' << height;
                }
            }
        }
    }
}

TEST(ConversionDispatch, MissingPlanesWriteNothing) {
    for (const auto& [from, destinations] : ReadConversionTable()) {
        for (const auto& [to, multiples] : destinations) {
            TestPicture src(FormatIds().at(from), 16, 4, {0, false, 0}, 0, 2);
            TestPicture dst(FormatIds().at(to), 16, 4, {0, false, 0}, 0, 2);
            dst.Fill(Fill::Ramp, 0);
            const TestPicture before = dst;
            km::ImageDescriptor lacking = src.Desc();
            std::fill(std::begin(lacking.planes), std::end(lacking.planes), nullptr);
            EXPECT_EQ(km::ImageConversionDispatch(dst.Desc(), lacking), km::IMG_E_NULL_ARG) << from << " to " << to;
            EXPECT_EQ(dst.FirstDifference(before), "");
            lacking = dst.Desc();
            std::fill(std::begin(lacking.planes), std::end(lacking.planes), nullptr);
            EXPECT_EQ(km::ImageConversionDispatch(lacking, src.Desc()), km::IMG_E_NULL_ARG) << from << " to " << to;
        }
    }
}

TEST(ConversionDispatch, LeavesTheDescriptorsAlone) {
    TestPicture src(km::FMT_UYVY, 16, 4);
    Bytes memory(16 * 4 * 2);
    for (const std::uint32_t format : {km::FMT_YV12, km::FMT_IMC1, km::FMT_IMC2, km::FMT_IMC3, km::FMT_NV12}) {
        km::ImageDescriptor dst;
        dst.format = format;
        dst.width = 16;
        dst.height = 4;
        dst.planes[0] = memory.data();
        dst.strides[0] = 16;
        const km::ImageDescriptor before = dst;
        ASSERT_EQ(km::ImageConversionDispatch(dst, src.Desc()), km::IMG_OK);
        EXPECT_EQ(std::memcmp(&dst, &before, sizeof dst), 0);
        km::ImageDescriptor uyvy = src.Desc();
        ASSERT_EQ(km::ImageConversionDispatch(uyvy, dst), km::IMG_OK);
        EXPECT_EQ(std::memcmp(&dst, &before, sizeof dst), 0);
    }
}

// Where U and V of an 8x4 picture lie when only the first plane is given, in bytes from it with a luma stride of 10.
struct ChromaGeometry {
    std::uint32_t format;
    int u, v, stride;
};
constexpr ChromaGeometry kDerivedGeometry[] = {
    {km::FMT_I420, 40, 50, 5},  {km::FMT_YV12, 50, 40, 5},  {km::FMT_IMC1, 60, 40, 10},
    {km::FMT_IMC2, 45, 40, 10}, {km::FMT_IMC3, 40, 60, 10}, {km::FMT_IMC4, 40, 45, 10},
};

// Luma 1 to 32, U 50 to 57, V 200 to 207, the rest 0.
Bytes Planar420Memory(const ChromaGeometry& geometry) {
    Bytes memory(100);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x) memory[y * 10 + x] = static_cast<std::uint8_t>(1 + y * 8 + x);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 4; ++x) {
            memory[geometry.u + y * geometry.stride + x] = static_cast<std::uint8_t>(50 + y * 4 + x);
            memory[geometry.v + y * geometry.stride + x] = static_cast<std::uint8_t>(200 + y * 4 + x);
        }
    }
    return memory;
}

km::ImageDescriptor FirstPlaneOnly(std::uint32_t format, Bytes& memory) {
    km::ImageDescriptor desc;
    desc.format = format;
    desc.width = 8;
    desc.height = 4;
    desc.planes[0] = memory.data();
    desc.strides[0] = 10;
    return desc;
}

TEST(ConversionDispatch, RelativesOfI420KeepTheirGeometryAsDestinations) {
    Bytes source = Planar420Memory(kDerivedGeometry[0]);
    for (const ChromaGeometry& geometry : kDerivedGeometry) {
        SCOPED_TRACE(NameOf(geometry.format));
        Bytes memory(100);
        const km::ImageDescriptor dst = FirstPlaneOnly(geometry.format, memory);
        const km::ImageDescriptor src = FirstPlaneOnly(km::FMT_I420, source);
        ASSERT_EQ(km::ImageConversionDispatch(dst, src), km::IMG_OK);
        EXPECT_EQ(memory, Planar420Memory(geometry));
    }
}

// All four packed and planar 4:2:2 sources put U where U belongs, YVYU among them.
TEST(ConversionDispatch, PackedSourcesKeepUAndVApart) {
    for (const auto& [format, u, v] : {std::tuple{km::FMT_UYVY, 0, 2}, {km::FMT_YUY2, 1, 3}, {km::FMT_YVYU, 3, 1}}) {
        TestPicture src(format, 8, 4);
        src.Fill(Fill::Max, 0);
        for (int y = 0; y < 4; ++y) {
            for (int pair = 0; pair < 4; ++pair) {
                src.Plane(0).Row(y)[4 * pair + u] = 50;
                src.Plane(0).Row(y)[4 * pair + v] = 200;
            }
        }
        for (const ChromaGeometry& geometry : kDerivedGeometry) {
            SCOPED_TRACE(NameOf(format) + " to " + NameOf(geometry.format));
            Bytes memory(100);
            const km::ImageDescriptor dst = FirstPlaneOnly(geometry.format, memory);
            ASSERT_EQ(km::ImageConversionDispatch(dst, src.Desc()), km::IMG_OK);
            for (int y = 0; y < 2; ++y) {
                for (int x = 0; x < 4; ++x) {
                    EXPECT_EQ(memory[geometry.u + y * geometry.stride + x], 50);
                    EXPECT_EQ(memory[geometry.v + y * geometry.stride + x], 200);
                }
            }
        }
        TestPicture planar(km::FMT_Y422, 8, 4), pairs(km::FMT_NV12, 8, 4);
        ASSERT_EQ(km::ImageConversionDispatch(planar.Desc(), src.Desc()), km::IMG_OK);
        ASSERT_EQ(km::ImageConversionDispatch(pairs.Desc(), src.Desc()), km::IMG_OK);
        EXPECT_EQ(planar.Plane(1).Row(3)[3], 50);
        EXPECT_EQ(planar.Plane(2).Row(3)[3], 200);
        EXPECT_EQ(pairs.Plane(1).Row(1)[6], 50);
        EXPECT_EQ(pairs.Plane(1).Row(1)[7], 200);
        // And from planes to each packed order.
        for (const km::ImageDescriptor* const from : {&planar.Desc(), &pairs.Desc()}) {
            TestPicture back(format, 8, 4);
            ASSERT_EQ(km::ImageConversionDispatch(back.Desc(), *from), km::IMG_OK);
            EXPECT_EQ(back.FirstDifference(src), "");
        }
    }
}

TEST(ConversionDispatch, RelativesOfI420KeepTheirGeometryAsSources) {
    for (const ChromaGeometry& geometry : kDerivedGeometry) {
        SCOPED_TRACE(NameOf(geometry.format));
        Bytes memory = Planar420Memory(geometry);
        km::ImageDescriptor src = FirstPlaneOnly(geometry.format, memory);
        // These two are relabelled before their planes are derived, so they must be given.
        if (geometry.format == km::FMT_IMC3 || geometry.format == km::FMT_IMC4) {
            src.planes[1] = memory.data() + geometry.u;
            src.planes[2] = memory.data() + geometry.v;
            src.strides[1] = src.strides[2] = geometry.stride;
        }
        Bytes result(100);
        const km::ImageDescriptor dst = FirstPlaneOnly(km::FMT_I420, result);
        ASSERT_EQ(km::ImageConversionDispatch(dst, src), km::IMG_OK);
        EXPECT_EQ(result, Planar420Memory(kDerivedGeometry[0]));
    }
}

TEST(ConversionDispatch, Imc3AndImc4SourcesDeriveTheirPlanesAsI420) {
    Bytes memory = Planar420Memory(kDerivedGeometry[0]);
    for (const std::uint32_t format : {km::FMT_IMC3, km::FMT_IMC4}) {
        const km::ImageDescriptor src = FirstPlaneOnly(format, memory);
        Bytes result(100);
        const km::ImageDescriptor dst = FirstPlaneOnly(km::FMT_I420, result);
        ASSERT_EQ(km::ImageConversionDispatch(dst, src), km::IMG_OK);
        EXPECT_EQ(result, memory);
    }
}

// Two pictures in blocks: bytes 0 to 15 of the first, 16 to 31 of the second, then their chroma.
TEST(ConversionDispatch, SecondPicturesOfBlocks) {
    for (const std::uint32_t first : {km::FMT_Y32, km::FMT_Y32A}) {
        const bool hasAlpha = first == km::FMT_Y32A;
        const std::size_t blockBytes = hasAlpha ? 80 : 64;
        TestPicture src(first, 32, 2, {16, false, 0});
        src.Fill(Fill::Random, 5);
        // The same picture alone, as Y16 or Y16A.
        for (const bool second : {false, true}) {
            TestPicture alone(hasAlpha ? km::FMT_Y16A : km::FMT_Y16, 32, 2);
            for (int y = 0; y < 2; ++y) {
                for (std::size_t block = 0; block < 2; ++block) {
                    const std::uint8_t* const from = src.Plane(0).Row(y) + block * blockBytes;
                    std::uint8_t* const to = alone.Plane(0).Row(y) + block * (hasAlpha ? 48 : 32);
                    std::memcpy(to, from + (second ? 16 : 0), 16);
                    if (hasAlpha) std::memcpy(to + 16, from + 32, 16);
                    const std::size_t chroma = hasAlpha ? 48 : 32;
                    std::memcpy(to + (hasAlpha ? 32 : 16), from + chroma + (second ? 16 : 0), 16);
                }
            }
            km::ImageDescriptor desc = src.Desc();
            if (second) desc.format = hasAlpha ? km::FMT_Y32AB : km::FMT_Y32B;
            for (const std::uint32_t rgb : {km::FMT_BGR, km::FMT_BGRA}) {
                TestPicture expected(rgb, 32, 2), actual(rgb, 32, 2);
                ASSERT_EQ(km::ImageConversionDispatch(expected.Desc(), alone.Desc()), km::IMG_OK);
                ASSERT_EQ(km::ImageConversionDispatch(actual.Desc(), desc), km::IMG_OK);
                EXPECT_EQ(actual.FirstDifference(expected), "") << first << second << rgb;
            }
        }
    }
}

// Pictures whose memory ends with their last row: what is read too far faults.
TEST(ConversionDispatch, NoPathReadsBehindTheLastRow) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const auto& [from, destinations] : ReadConversionTable()) {
            for (const auto& [to, multiples] : destinations) {
                if (IsPlanarKernelToBlocks(from, to)) continue;
                for (const std::uint32_t width : {16u, 48u, 80u}) {
                    const TestPicture shape(FormatIds().at(from), width, 4, {}, 0, 2);
                    TestPicture dst(FormatIds().at(to), width, 4, {}, 0, 2);
                    km::ImageDescriptor src = shape.Desc();
                    std::vector<std::unique_ptr<GuardPageBuffer>> memory;
                    for (std::size_t plane = 0; plane < shape.Planes().size(); ++plane) {
                        const TestPlane& rows = shape.Planes()[plane];
                        memory.push_back(std::make_unique<GuardPageBuffer>(rows.RowBytes() * rows.Rows()));
                        std::fill_n(memory.back()->Data(), memory.back()->Size(), std::uint8_t{0x5A});
                        src.planes[plane] = memory.back()->Data();
                        src.strides[plane] = static_cast<std::int64_t>(rows.RowBytes());
                    }
                    if (shape.Planes().size() == 2 && src.planes[2] != nullptr) {
                        src.planes[2] = src.planes[1] + src.strides[1] / 2;
                        src.strides[2] = src.strides[1];
                    }
                    ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src), km::IMG_OK) << from << " to " << to;
                }
            }
        }
    }
}

// The second picture of a Y32 buffer is copied in rows of full length, so each row ends with 16 bytes of what follows
// it.
TEST(ConversionDispatch, SecondPictureCopiesRunOnIntoTheNextRow) {
    GuardPageBuffer memory(64 * 3);
    for (std::size_t i = 0; i < memory.Size(); ++i) memory.Data()[i] = static_cast<std::uint8_t>(i);
    km::ImageDescriptor src;
    src.format = km::FMT_Y32B;
    src.width = 16;
    src.height = 3;
    src.planes[0] = memory.Data();
    src.strides[0] = 64;
    TestPicture dst(km::FMT_Y32, 16, 3);
    for (const bool upward : {false, true}) {
        SCOPED_TRACE(upward);
        if (upward) {
            src.planes[0] = memory.Data() + 2 * 64;
            src.strides[0] = -64;
        }
        dst.Fill(Fill::Zero, 0);
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src), km::IMG_OK);
        for (int row = 0; row < 3; ++row) {
            const int from = (upward ? 2 - row : row) * 64 + 16;
            for (int i = 0; i < 64; ++i) EXPECT_EQ(dst.Plane(0).Row(row)[i], from + i < 192 ? from + i : 0) << row;
        }
    }
    // Rows with padding give it in place of the next row, the last one too.
    Bytes padded(3 * 80);
    for (std::size_t i = 0; i < padded.size(); ++i) padded[i] = static_cast<std::uint8_t>(i);
    src.planes[0] = padded.data();
    src.strides[0] = 80;
    ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src), km::IMG_OK);
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 64; ++i) EXPECT_EQ(dst.Plane(0).Row(row)[i], row * 80 + 16 + i);
}

TEST(ConversionDispatch, LumaAloneIsCopied) {
    for (const std::uint32_t format : {km::FMT_Y444, km::FMT_Y422, km::FMT_I420, km::FMT_YV12, km::FMT_IMC4}) {
        TestPicture src(format, 6, 4, {8, false, 0});
        TestPicture dst(km::FMT_Y400, 6, 4);
        src.Fill(Fill::Random, format);
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
        EXPECT_EQ(dst.Plane(0).FirstDifference(src.Plane(0)), "") << format;
    }
}

TEST(ConversionDispatch, LumaAloneGetsNeutralChroma) {
    TestPicture src(km::FMT_Y400, 6, 4, {3, false, 0});
    src.Fill(Fill::Random, 4);
    for (const std::uint32_t format : {km::FMT_Y444, km::FMT_I420, km::FMT_YV12, km::FMT_IMC1, km::FMT_IMC2,
                                       km::FMT_IMC3, km::FMT_IMC4, km::FMT_NV12}) {
        TestPicture dst(format, 6, 4, {4, false, 0});
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
        EXPECT_EQ(dst.Plane(0).FirstDifference(src.Plane(0)), "") << format;
        for (std::size_t plane = 1; plane < dst.Planes().size(); ++plane)
            for (std::size_t row = 0; row < dst.Plane(plane).Rows(); ++row)
                for (std::size_t i = 0; i < dst.Plane(plane).RowBytes(); ++i)
                    ASSERT_EQ(dst.Plane(plane).Row(row)[i], 128) << format;
        EXPECT_TRUE(dst.GuardsIntact());
    }
    for (const auto& [format, luma] : {std::pair{km::FMT_UYVY, 1}, {km::FMT_YUY2, 0}, {km::FMT_YVYU, 0}}) {
        TestPicture dst(format, 6, 4, {4, true, 0});
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
        for (int row = 0; row < 4; ++row)
            for (int i = 0; i < 12; ++i)
                ASSERT_EQ(dst.Plane(0).Row(row)[i], i % 2 == luma ? src.Plane(0).Row(row)[i / 2] : 128) << format;
        EXPECT_TRUE(dst.GuardsIntact());
    }
}

// The words of S420 and P420, of S422 and P422 are the same; only where chroma lies differs.
TEST(ConversionDispatch, WordPlanesAreCopiedBetweenLayouts) {
    for (const auto& [sideBySide, apart] : {std::pair{km::FMT_S420, km::FMT_P420}, {km::FMT_S422, km::FMT_P422}}) {
        TestPicture src(sideBySide, 4, 4, {8, false, 0});
        TestPicture dst(apart, 4, 4);
        TestPicture back(sideBySide, 4, 4);
        src.Fill(Fill::Random, 8);
        ASSERT_EQ(km::ImageConversionDispatch(dst.Desc(), src.Desc()), km::IMG_OK);
        for (std::size_t row = 0; row < dst.Plane(1).Rows(); ++row) {
            EXPECT_EQ(std::memcmp(dst.Plane(1).Row(row), src.Plane(1).Row(row), 4), 0);
            EXPECT_EQ(std::memcmp(dst.Plane(2).Row(row), src.Plane(1).Row(row) + 4, 4), 0);
        }
        ASSERT_EQ(km::ImageConversionDispatch(back.Desc(), dst.Desc()), km::IMG_OK);
        EXPECT_EQ(back.FirstDifference(src), "");
        // Both give the same picture in 8 bits.
        TestPicture a(km::FMT_YVYU, 4, 4), b(km::FMT_YVYU, 4, 4);
        ASSERT_EQ(km::ImageConversionDispatch(a.Desc(), src.Desc()), km::IMG_OK);
        ASSERT_EQ(km::ImageConversionDispatch(b.Desc(), dst.Desc()), km::IMG_OK);
        EXPECT_EQ(a.FirstDifference(b), "");
    }
}

TEST(ConvertToUyvy, TakesEverySourceThatHasThePath) {
    const auto table = ReadConversionTable();
    for (const auto& [name, id] : FormatIds()) {
        const km::ImageDescriptor src = EmptyPicture(id);
        const km::ImageDescriptor dst = EmptyPicture(km::FMT_UYVY);
        const auto row = table.find(name);
        const bool hasPath = row != table.end() && row->second.contains("UYVY");
        EXPECT_EQ(km::ConvertToUYVY(dst, src) == km::IMG_OK, hasPath) << name;
    }
    const km::ImageDescriptor yuy2 = EmptyPicture(km::FMT_YUY2);
    EXPECT_EQ(km::ConvertToUYVY(yuy2, yuy2), km::IMG_E_BAD_FORMAT);
}

TEST(ConvertToUyvy, GivesThePictureOfTheDispatch) {
    TestPicture src(km::FMT_I420, 20, 6);
    TestPicture a(km::FMT_UYVY, 20, 6), b(km::FMT_UYVY, 20, 6);
    src.Fill(Fill::Random, 12);
    a.Fill(Fill::Zero, 0);
    ASSERT_EQ(km::ConvertToUYVY(a.Desc(), src.Desc()), km::IMG_OK);
    ASSERT_EQ(km::ImageConversionDispatch(b.Desc(), src.Desc()), km::IMG_OK);
    EXPECT_EQ(a.FirstDifference(b), "");
}

}  // namespace
}  // namespace pixmorph_test
