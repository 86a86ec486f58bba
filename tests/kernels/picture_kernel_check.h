// The check of kernels that turn one picture into another: all variants against the plain form over fills, sizes and
// memory layouts, every byte compared, guards included.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "kernels/kernel_check.h"
#include "support/picture.h"

namespace pixmorph_test {

using PictureKernel = void(const km::ImageDescriptor& dst, const km::ConstImageDescriptor& src);

struct PictureKernelCase {
    const km::ResolvedSlot<PictureKernel>* slot;
    std::uint32_t dstFormat;
    std::uint32_t srcFormat;
    std::uint32_t widthStep = 2;   ///< Widths are multiples of this.
    std::uint32_t heightStep = 1;  ///< Heights are multiples of this.
    std::uint8_t dstExtraBits = 0;
    std::uint8_t srcExtraBits = 0;
};

/// The name of a case's test.
template <class Instance>
std::string SlotTestName(const Instance& instance) {
    return SlotLabel(*instance.param.slot);
}
/// How a failing test prints its case.
inline void PrintTo(const PictureKernelCase& c, std::ostream* out) { *out << c.slot->Name(); }

/// Runs one kernel on a copy of `dst` and gives the copy back.
inline TestPicture Converted(PictureKernel* kernel, const TestPicture& dst, const TestPicture& src) {
    TestPicture result = dst;
    kernel(result.Desc(), src.Desc());
    return result;
}

inline void CheckPictureKernel(const PictureKernelCase& c, std::uint32_t seed = 20261) {
    static constexpr PictureLayout kLayouts[] = {{0, false, 0}, {52, false, 4}, {12, true, 8}, {64, true, 0}};
    static constexpr Fill kFills[] = {Fill::Random, Fill::Extremes, Fill::Ramp, Fill::Max, Fill::Zero};
    // Odd multiples of the smallest width around one, two and three registers, and one long line.
    std::vector<std::uint32_t> widths;
    for (const std::uint32_t units : {1, 2, 3, 5, 7, 8, 9, 15, 16, 17, 23, 31, 32, 33, 47, 63, 64, 65, 67})
        if (units * c.widthStep <= 1100) widths.push_back(units * c.widthStep);
    widths.push_back(720 / c.widthStep * c.widthStep);
    ByteGenerator generator(seed);
    ForEachVariant(*c.slot, [&](PictureKernel* variant, PictureKernel* plain) {
        for (const std::uint32_t width : widths) {
            for (const std::uint32_t rows : {1u, 2u, 3u, 5u}) {
                const std::uint32_t height = rows * c.heightStep;
                const PictureLayout& dstLayout = kLayouts[generator.Below(4)];
                const PictureLayout& srcLayout = kLayouts[generator.Below(4)];
                for (const Fill fill : kFills) {
                    const std::uint32_t fillSeed = generator.Below(1u << 30);
                    for (std::uint16_t matrix = 0; matrix < 4; ++matrix) {
                        if (matrix != 0 && width > 80 * c.widthStep) break;
                        TestPicture src(c.srcFormat, width, height, srcLayout, matrix, c.srcExtraBits);
                        TestPicture dst(c.dstFormat, width, height, dstLayout, matrix, c.dstExtraBits);
                        src.Fill(fill, fillSeed);
                        dst.Fill(Fill::Random, fillSeed + 1);
                        const TestPicture expected = Converted(plain, dst, src);
                        const TestPicture actual = Converted(variant, dst, src);
                        const std::string context =
                            std::to_string(width) + "x" + std::to_string(height) + " matrix " + std::to_string(matrix) +
                            " fill " + std::to_string(static_cast<int>(fill)) + " seed " + std::to_string(fillSeed) +
                            " strides " + std::to_string(dst.Desc().strides[0]) + ", " +
                            std::to_string(src.Desc().strides[0]);
                        ASSERT_EQ(actual.FirstDifference(expected), "") << context;
                        ASSERT_TRUE(actual.GuardsIntact()) << context;
                    }
                }
            }
        }
    });
}

}  // namespace pixmorph_test
