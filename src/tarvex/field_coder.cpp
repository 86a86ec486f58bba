#include "tarvex/field_coder.h"

#include "jpeg/block_coder.h"
#include "jpeg/block_transforms.h"
#include "jpeg/standard_tables.h"
#include "tarvex/tarvex_frame.h"

namespace KorvaneSoftware {

namespace {

constexpr int kBlocks = 4;  // Y0 Y1 Cb Cr.

// The words of one coded block: a DC level of 9 + 12 bits and 63 levels of 16 + 10 bits.
constexpr std::size_t kMostBitsOfBlock = 21 + 63 * 26;

std::uint8_t* WriteQuantisers(std::uint8_t* to, std::uint32_t id, const std::int16_t* table) {
    PutWord16(to, id);
    to += 2;
    for (const std::uint8_t natural : kZigZag) {
        PutWord16(to, static_cast<std::uint16_t>(table[natural]));
        to += 2;
    }
    return to;
}

Status ReadQuantisers(std::int16_t* table, std::uint32_t id, const std::uint8_t* from) {
    if (GetWord16(from) != id) return IMG_E_MALFORMED;
    for (std::size_t i = 0; i < 64; ++i) table[kZigZag[i]] = static_cast<std::int16_t>(GetWord16(from + 2 + 2 * i));
    return IMG_OK;
}

}  // namespace

std::size_t MostBytesOfTarvexField(std::uint32_t width, std::uint32_t height) {
    const std::uint64_t mcus = (std::uint64_t{width} + 15) / 16 * ((std::uint64_t{height} + 15) / 16);
    return kTarvexTablesSize + static_cast<std::size_t>((mcus * kBlocks * kMostBitsOfBlock + 15) / 16 * 2) + 2;
}

Status EncodeTarvexField(MJPEG::CImageReader& reader, CMCU& mcu, const QualityTables& tables,
                         std::span<std::uint8_t> to, std::size_t& size) {
    if (to.size() < kTarvexTablesSize) return IMG_BUFFER_TOO_SMALL;
    std::uint8_t* scan = WriteQuantisers(to.data(), 1, tables.lumaQuantisers);
    scan = WriteQuantisers(scan, 2, tables.chromaQuantisers);
    WordBitWriter bits(scan, to.data() + to.size());
    std::int16_t predictors[3] = {};
    reader.Begin();
    for (unsigned row = 0; row < reader.Rows(); ++row) {
        reader.BeginRow(row);
        for (unsigned column = 0; column < reader.Columns(); ++column) {
            reader.ReadMCU(mcu.blocks);
            FDCTBlocks(mcu.blocks, kBlocks);
            for (int i = 0; i < kBlocks; ++i) {
                std::int16_t* const levels = mcu.Block(i);
                if (i < 2)
                    EncodeLumaLevels(bits, levels, QuantiseToScan(levels, levels, tables.lumaReciprocals),
                                     predictors[0]);
                else
                    EncodeChromaLevels(bits, levels, QuantiseToScan(levels, levels, tables.chromaReciprocals),
                                       predictors[i - 1]);
            }
        }
        reader.EndRow();
    }
    reader.End();
    bits.Finish();
    // The head of the chunk and the quantisers are multiples of 4.
    if (bits.Size() % 4 != 0) {
        bits.Put(0, 16);
        bits.Finish();
    }
    size = kTarvexTablesSize + bits.Size();
    return bits.Fits() ? IMG_OK : IMG_BUFFER_TOO_SMALL;
}

Status ReadTarvexQuantisers(TarvexQuantisers& tables, std::span<const std::uint8_t> payload) {
    if (payload.size() < kTarvexTablesSize) return IMG_E_MALFORMED;
    if (const Status status = ReadQuantisers(tables.luma, 1, payload.data()); status != IMG_OK) return status;
    return ReadQuantisers(tables.chroma, 2, payload.data() + kTarvexTablesSize / 2);
}

void DecodeTarvexField(TMJPEGImageWriter<0>& writer, CMCU& mcu, const TarvexQuantisers& tables,
                       std::span<const std::uint8_t> payload) {
    WordBitReader bits(payload.data() + kTarvexTablesSize, payload.data() + payload.size());
    std::int16_t predictors[3] = {};
    writer.Begin();
    for (unsigned row = 0; row < writer.Rows(); ++row) {
        writer.BeginRow(row);
        for (unsigned column = 0; column < writer.Columns(); ++column) {
            ClearBlocks(mcu.blocks, kBlocks);
            const std::uint8_t counts[kBlocks] = {
                static_cast<std::uint8_t>(DecodeLumaBlock(mcu.Block(0), predictors[0], bits)),
                static_cast<std::uint8_t>(DecodeLumaBlock(mcu.Block(1), predictors[0], bits)),
                static_cast<std::uint8_t>(DecodeChromaBlock(mcu.Block(2), predictors[1], bits)),
                static_cast<std::uint8_t>(DecodeChromaBlock(mcu.Block(3), predictors[2], bits))};
            DequantiseBlocks(mcu.blocks, tables.luma, 2);
            DequantiseBlocks(mcu.Block(2), tables.chroma, 2);
            InverseDCTBlocks(mcu.blocks, counts, kBlocks);
            writer.WriteMCU(mcu.blocks);
        }
        writer.EndRow();
    }
    writer.End();
}

}  // namespace KorvaneSoftware
