#include "convert/gamma.h"

#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>

#include "convert/samples.h"

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kEntries = 256;

// Written without a lock by any object's setter while others may convert: every entry is either the old or the new one.
class SharedTable {
public:
    SharedTable() {
        for (std::size_t i = 0; i < kEntries; ++i) Set(i, static_cast<std::uint8_t>(i));
    }
    void Set(std::size_t index, std::uint8_t value) { entries_[index].store(value, std::memory_order_relaxed); }
    std::uint8_t Get(std::size_t index) const { return entries_[index].load(std::memory_order_relaxed); }

private:
    std::array<std::atomic<std::uint8_t>, kEntries> entries_;
};

SharedTable& Table() {
    static SharedTable table;
    return table;
}

// Low byte of the truncated value. Negative exponents give values without bound: they end as a conversion to a 32-bit
// integer leaves them, whose low byte is 0 when it overflows.
std::uint8_t TruncatedToByte(double value) {
    constexpr double kLimit = 2147483648.0;
    if (!(value > -kLimit && value < kLimit)) return 0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
}

std::uint8_t RoundedAndLimited(double value) {
    if (value <= 0.0) return 0;
    if (value >= 255.0) return 255;
    return static_cast<std::uint8_t>(value + 0.5);
}

}  // namespace

void SetGammaExponent(double exponent) {
    for (std::size_t i = 0; i < kEntries; ++i)
        Table().Set(i, TruncatedToByte(std::pow(static_cast<double>(i) / 255.0, exponent) * 255.0 + 0.5));
}

std::uint8_t GammaValue(std::uint8_t index) { return Table().Get(index); }

Status ConvertWithGamma(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (src.width == 0 || src.height == 0) return IMG_OK;
    if (dst.planes[0] == nullptr || src.planes[0] == nullptr) return IMG_E_NULL_ARG;
    for (std::int64_t row = 0; row < src.height; ++row) {
        const auto from = LineAt(src, row, row);
        std::uint8_t* to = BottomUpLine(dst, row);
        for (std::size_t x = 0; x < src.width; ++x, to += 4) {
            const double y = 1.164 * (Y16ASamples::Luma(from, x) - 16);
            const int u = Y16ASamples::Cb(from, x / 2) - 128;
            const int v = Y16ASamples::Cr(from, x / 2) - 128;
            to[0] = GammaValue(RoundedAndLimited(y + 2.017 * u));
            to[1] = GammaValue(RoundedAndLimited(y - 0.392 * u - 0.813 * v));
            to[2] = GammaValue(RoundedAndLimited(y + 1.596 * v));
            to[3] = Y16ASamples::Alpha(from, x);
        }
    }
    return IMG_OK;
}

}  // namespace KorvaneSoftware
