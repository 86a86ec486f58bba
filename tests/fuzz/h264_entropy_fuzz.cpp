// Macroblock elements and residual blocks of both entropy codes from any bytes, in an order that the input tells.
#include <stdexcept>

#include "fuzz/fuzz_input.h"
#include "h264/parsing/cabac_elements.h"
#include "h264/parsing/cabac_residual.h"
#include "h264/parsing/cavlc_reader.h"
#include "h264/parsing/coefficients.h"
#include "h264/parsing/scan_tables.h"

using namespace KorvaneSoftware;

namespace {

/// Elements that are read from one input: more than a macroblock has, so that the data ends before.
constexpr unsigned kMostElements = 3000;

/// A block of exactly its size, so that the sanitizer sees a coefficient outside.
struct Block {
    explicit Block(std::size_t size) : coefficients(new std::int16_t[size]()) {}
    TScaledCoefficients<std::int16_t> Scaled(const std::uint8_t* scan, const std::uint16_t* scales, unsigned qp) const {
        return {coefficients.get(), scan, scales, qp, 4};
    }
    TRawCoefficients<std::int16_t> Raw(const std::uint8_t* scan) const { return {coefficients.get(), scan}; }
    std::unique_ptr<std::int16_t[]> coefficients;
};

struct Order {
    std::uint16_t scales[64];
    pixmorph_test::ByteGenerator steps;
    unsigned qp;
    bool field;

    explicit Order(pixmorph_fuzz::FuzzInput& input) : steps(input.Take<std::uint32_t>()), qp(input.Below(88)) {
        field = input.Flag();
        for (std::uint16_t& scale : scales) scale = static_cast<std::uint16_t>(steps.Below(65536));
    }
};

void Within(unsigned value, unsigned most) { pixmorph_fuzz::Require(value <= most, "a value above its range"); }

void ReadCabac(H264CabacReader& bins, Order& order) {
    const unsigned increment = order.steps.Below(3);
    const std::uint8_t* const scan = kH264Scan4x4[order.field ? 1 : 0];
    switch (order.steps.Below(17)) {
        case 0:
            return Within(CabacMbTypeI(bins, increment), 25);
        case 1:
            return Within(CabacMbTypeP(bins), kH264FirstIntraTypeP + 25);
        case 2:
            return Within(CabacMbTypeB(bins, increment), kH264FirstIntraTypeB + 25);
        case 3:
            return Within(CabacSubMbTypeP(bins), 3);
        case 4:
            return Within(CabacSubMbTypeB(bins), 12);
        case 5:
            return Within(CabacIntraMode(bins, order.steps.Below(9)), 8);
        case 6:
            return Within(CabacIntraChromaMode(bins, increment), 3);
        case 7:
            return Within(CabacCodedLuma(bins, order.steps.Below(16), order.steps.Below(16)), 15);
        case 8:
            return Within(CabacCodedChroma(bins, increment, order.steps.Below(3)), 2);
        case 9:
            return Within(static_cast<unsigned>(CabacQpDelta(bins, order.field, 36) + 44), 87);
        case 10:
            return Within(CabacRefIdx(bins, order.steps.Below(4), 5), 5);
        case 11:
            return Within(static_cast<unsigned>(CabacMvd(bins, 40, order.steps.Below(70)) + (1 << 17)), 1 << 18);
        case 12:
            return Within(ReadCabacBlock<H264CabacBlock::LUMA_4X4>(bins, order.field,
                                                                   Block(16).Scaled(scan, order.scales, order.qp)),
                          16);
        case 13:
            return Within(ReadCabacBlock<H264CabacBlock::CHROMA_AC>(bins, order.field, Block(16).Raw(scan + 1)), 15);
        case 14:
            return Within(ReadCabacBlock<H264CabacBlock::CHROMA_DC420>(bins, order.field, Block(4).Raw(kH264ScanDc420)),
                          4);
        case 15:
            return Within(ReadCabacBlock<H264CabacBlock::CHROMA_DC422>(bins, order.field, Block(8).Raw(kH264ScanDc422)),
                          8);
        default:
            return Within(
                ReadCabacBlock<H264CabacBlock::LUMA_8X8>(
                    bins, order.field, Block(64).Scaled(kH264Scan8x8[order.field ? 1 : 0], order.scales, order.qp)),
                64);
    }
}

void ReadCavlc(H264BitReader& reader, Order& order) {
    const unsigned nC = order.steps.Below(17);
    const std::uint8_t* const scan = kH264Scan4x4[order.field ? 1 : 0];
    switch (order.steps.Below(7)) {
        case 0:
            return Within(ReadBoundedUe(reader, 25, "mb_type"), 25);
        case 1:
            return Within(ReadTe(reader, nC, "ref_idx"), nC);
        case 2:
            return Within(ReadCodedBlockPattern(reader, order.field), 47);
        case 3:
            return Within(
                ReadCavlcBlock<H264CavlcBlock::FULL>(reader, nC, Block(16).Scaled(scan, order.scales, order.qp)), 16);
        case 4:
            return Within(ReadCavlcBlock<H264CavlcBlock::AC>(reader, nC, Block(16).Raw(scan + 1)), 15);
        case 5:
            return Within(ReadCavlcBlock<H264CavlcBlock::DC420>(reader, nC, Block(4).Raw(kH264ScanDc420)), 4);
        default:
            return Within(ReadCavlcBlock<H264CavlcBlock::DC422>(reader, nC, Block(8).Raw(kH264ScanDc422)), 8);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pixmorph_fuzz::FuzzInput input(data, size);
    Order order(input);
    const bool cabac = input.Flag();
    const unsigned set = input.Below(4);
    const int qp = static_cast<int>(input.Below(88)) - 36;
    pixmorph_fuzz::ExactBuffer bytes(input.Rest());
    H264BitReader reader(bytes.Data(), bytes.Size());
    try {
        if (cabac) {
            H264CabacState state;
            StartCabac(state, reader, set, qp);
            H264CabacReader bins(state);
            for (unsigned i = 0; i < kMostElements && !CabacEndOfSlice(bins); ++i) ReadCabac(bins, order);
        } else {
            for (unsigned i = 0; i < kMostElements && !CavlcDataEnded(reader); ++i) ReadCavlc(reader, order);
        }
    } catch (const std::runtime_error&) {
    }
    return 0;
}
