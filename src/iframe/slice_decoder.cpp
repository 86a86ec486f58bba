#include "iframe/slice_decoder.h"

#include <cstring>

#include "iframe/i_frame_format.h"
#include "iframe/stream_tables.h"

namespace KorvaneSoftware::iframe {
namespace {

constexpr std::uint32_t kIntraPicture = 1;
constexpr std::uint32_t kFramePicture = 3;

/// The scans as positions in a transposed block, which is what the inverse transform takes; by alternate_scan.
struct TransposedScans {
    std::uint8_t positions[2][64];
};
constexpr TransposedScans MakeTransposedScans() {
    TransposedScans scans = {};
    for (int i = 0; i < 64; ++i) {
        scans.positions[0][i] = static_cast<std::uint8_t>(kZigzagScan[i] % 8 * 8 + kZigzagScan[i] / 8);
        scans.positions[1][i] = static_cast<std::uint8_t>(kAlternateScan[i] % 8 * 8 + kAlternateScan[i] / 8);
    }
    return scans;
}
constexpr TransposedScans kTransposedScans = MakeTransposedScans();

/// Blocks of a macroblock by chroma_format, and how many of the store they reach. 0 stands for luminance alone.
constexpr std::uint32_t kBlocksOfChromaFormat[4] = {4, 6, 8, 12};
constexpr std::uint32_t kStoredBlocksOfChromaFormat[4] = {6, 6, 8, 12};

// A code of table B.1, the first of a slice. @return the column, or a number that no picture has
std::uint32_t ReadFirstColumn(BitReader& reader) {
    constexpr std::uint32_t kNone = ~0u;
    std::uint32_t column = 0;
    const Code escape = CodeOfWord(kAddressEscapeWord);
    for (;; reader.Skip(escape.length)) {
        reader.Fill();
        if (reader.Peek(escape.length) != escape.bits) break;
        if (column += 33; column >= kMaxWidth) return kNone;
    }
    for (const std::uint16_t word : kAddressIncrementWords) {
        const Code code = CodeOfWord(word);
        if (reader.Peek(code.length) == code.bits) {
            reader.Skip(code.length);
            return column;
        }
        ++column;
    }
    return kNone;
}

}  // namespace

Status SliceDecoder::BeginFrame(const ParsedHeaders& headers, const ImageDescriptor& image) {
    headers_ = &headers;
    columns_ = MacroblocksOf(image.width);
    rows_ = MacroblocksOf(image.height);
    blocksPerMacroblock_ = kBlocksOfChromaFormat[headers.chromaFormat];
    quantiserCode_ = 0;  // The matrix may be another one.
    syntax_.coefficients = &kCoefficientDecoders[headers.vlcFormat];
    syntax_.scan = kTransposedScans.positions[headers.alternateScan];
    syntax_.dcFactor = 8 >> headers.dcPrecision;
    return writer_.Init(image);
}

Status SliceDecoder::DecodeShare(const std::uint8_t* begin, const std::uint8_t* end, RowClaims& claims,
                                 unsigned share) {
    Status status = IMG_OK;
    const std::uint8_t* code = FindStartCode(begin, end);
    while (code != end) {
        const std::uint8_t* const data = code + kStartCodeBytes;
        const std::uint8_t* const next = FindStartCode(data, end);
        // Pictures of other types have slices, but no intra syntax.
        if (headers_->pictureType == kIntraPicture && !headers_->concealmentVectors) {
            const std::uint32_t row = code[3] - 1u;
            status = IMG_OK;
            if (!IsSliceCode(code[3]))
                status = IMG_E_MALFORMED;
            else if (row < rows_ && claims.Admits(row, share))
                status = DecodeSlice(row, data, static_cast<std::size_t>(next - data));
        }
        code = next;
    }
    return status;
}

// No picture is high enough for slice_vertical_position_extension.
static_assert(kMaxHeight <= 2800);

Status SliceDecoder::DecodeSlice(std::uint32_t row, const std::uint8_t* data, std::size_t size) {
    BitReader reader(data, size);
    if (!SetQuantiser(reader.Get(5))) return IMG_E_MALFORMED;
    if (reader.Get(1) != 0) {  // intra_slice_flag; otherwise this was extra_bit_slice.
        reader.Get(1 + 7);     // intra_slice, reserved_bits
        while (reader.Get(1) != 0) reader.Get(8);
    }
    for (std::int32_t& predictor : predictors_) predictor = 1 << (headers_->dcPrecision + 7);
    std::uint32_t column = ReadFirstColumn(reader);
    if (column >= columns_) return IMG_E_MALFORMED;
    writer_.BeginRow(row);
    writer_.SetColumn(column);
    for (;;) {
        if (!DecodeMacroblock(reader)) {
            std::memset(coefficients_, 0, sizeof coefficients_);
            return IMG_E_MALFORMED;
        }
        if (++column == columns_) return IMG_OK;
        reader.Fill();
        if (reader.Peek(23) == 0) return IMG_OK;          // A start code or the end.
        if (reader.Peek(1) == 0) return IMG_E_MALFORMED;  // Intra pictures skip no macroblock.
        reader.Skip(1);
    }
}

bool SliceDecoder::DecodeMacroblock(BitReader& reader) {
    // macroblock_type by table B.2, with what follows it.
    reader.Fill();
    const bool changesQuantiser = reader.Peek(1) == 0;
    if (changesQuantiser && reader.Peek(2) != 1) return false;
    reader.Skip(changesQuantiser ? 2 : 1);
    bool byFields = false;
    if (headers_->pictureStructure == kFramePicture && !headers_->framePredFrameDct) {
        byFields = reader.Peek(1) != 0;
        reader.Skip(1);
    }
    if (changesQuantiser) {
        const std::uint32_t code = reader.Peek(5);
        reader.Skip(5);
        if (!SetQuantiser(code)) return false;
    }
    for (std::uint32_t block = 0; block < blocksPerMacroblock_; ++block) {
        const std::uint32_t component = block < 4 ? 0 : 1 + block % 2;
        const SizeDecoder& sizes = component == 0 ? kLumaSizeDecoder : kChromaSizeDecoder;
        if (!DecodeBlock(reader, syntax_, sizes, predictors_[component],
                         coefficients_ + kBlockPlace[block] * kBlockLength))
            return false;
    }
    // A macroblock that took bits from behind the end is not one.
    if (reader.IsPastEnd()) return false;
    IFrameInverseTransform(samples_, coefficients_, kStoredBlocksOfChromaFormat[headers_->chromaFormat]);
    writer_.WriteMacroblock(samples_, headers_->chromaFormat, byFields);
    return true;
}

bool SliceDecoder::SetQuantiser(std::uint32_t code) {
    if (code == 0) return false;
    if (code == quantiserCode_) return true;
    quantiserCode_ = code;
    const std::int32_t scale = kQuantiserScale[headers_->scaleType][code];
    const std::uint8_t* const scan = headers_->alternateScan ? kAlternateScan : kZigzagScan;
    for (int place = 0; place < 64; ++place) syntax_.weights[place] = headers_->matrix[scan[place]] * scale;
    return true;
}

}  // namespace KorvaneSoftware::iframe
