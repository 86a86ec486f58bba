#include "iframe/frame_headers.h"

#include <algorithm>

#include "codec/samples.h"
#include "iframe/bit_reader.h"
#include "iframe/stream_tables.h"

namespace KorvaneSoftware::iframe {
namespace {

// extension_start_code_identifier, table 6-2.
constexpr std::uint32_t kSequenceExtension = 1;
constexpr std::uint32_t kSequenceDisplayExtension = 2;
constexpr std::uint32_t kPictureCodingExtension = 8;

// Constants of every frame; none of them is a measure of it.
constexpr std::uint32_t kFrameRateCode = 3;
constexpr std::uint32_t kBitRate = 50000;  // In units of 400 bits per second.
constexpr std::uint32_t kVbvBufferSize = 373;
constexpr std::uint32_t kVbvDelay = 0x6C0D;
constexpr std::uint32_t kProfileAndLevel = 0x85;  // 4:2:2 profile at main level
constexpr std::uint32_t kChroma422 = 2;
constexpr char kUserData[] = "Created by Korvane.";

void PutStartCode(BitWriter& writer, std::uint32_t code) {
    writer.Align();
    writer.Put(0x100 | code, 32);
}

void WriteSequence(BitWriter& writer, const WrittenHeaders& headers) {
    PutStartCode(writer, START_SEQUENCE);
    writer.Put(headers.width & 0xFFF, 12);
    writer.Put(headers.height & 0xFFF, 12);
    writer.Put(headers.aspectCode, 4);
    writer.Put(kFrameRateCode, 4);
    writer.Put(kBitRate, 18);
    writer.Put(1, 1);  // marker
    writer.Put(kVbvBufferSize, 10);
    writer.Put(0, 1);  // constrained_parameters_flag
    writer.Put(headers.matrix != nullptr, 1);
    if (headers.matrix != nullptr)
        for (const std::uint8_t position : kZigzagScan) writer.Put(headers.matrix[position], 8);
    writer.Put(0, 1);  // load_non_intra_quantiser_matrix

    PutStartCode(writer, START_EXTENSION);
    writer.Put(kSequenceExtension, 4);
    writer.Put(kProfileAndLevel, 8);
    writer.Put(0, 1);  // progressive_sequence
    writer.Put(kChroma422, 2);
    writer.Put(headers.width >> 12, 2);
    writer.Put(headers.height >> 12, 2);
    writer.Put(0, 12);  // bit_rate_extension
    writer.Put(1, 1);   // marker
    writer.Put(0, 8);   // vbv_buffer_size_extension
    writer.Put(0, 1);   // low_delay
    writer.Put(0, 7);   // frame_rate_extension_n, _d

    PutStartCode(writer, START_EXTENSION);
    writer.Put(kSequenceDisplayExtension, 4);
    writer.Put(headers.videoFormat, 3);
    writer.Put(1, 1);  // colour_description
    writer.Put(5, 8);  // colour_primaries
    writer.Put(5, 8);  // transfer_characteristics
    writer.Put(4, 8);  // matrix_coefficients
    writer.Put(headers.width, 14);
    writer.Put(1, 1);  // marker
    writer.Put(headers.height, 14);
}

void WriteGroupAndUserData(BitWriter& writer) {
    PutStartCode(writer, START_GROUP);
    writer.Put(1 << 12, 25);  // time_code: all zero but the marker between its minutes and seconds
    writer.Put(1, 1);         // closed_gop
    writer.Put(0, 1);         // broken_link

    PutStartCode(writer, START_USER_DATA);
    for (const char c : kUserData) writer.Put(static_cast<std::uint8_t>(c), 8);  // The closing zero belongs to it.
}

void WritePicture(BitWriter& writer, const WrittenHeaders& headers) {
    PutStartCode(writer, START_PICTURE);
    writer.Put(1, 10);  // temporal_reference
    writer.Put(1, 3);   // picture_coding_type: I
    writer.Put(kVbvDelay, 16);
    writer.Put(0, 1);  // extra_bit_picture

    PutStartCode(writer, START_EXTENSION);
    writer.Put(kPictureCodingExtension, 4);
    writer.Put(0xFFFF, 16);  // f_code: 15 each, unused
    writer.Put(3, 2);        // intra_dc_precision: 11 bits
    writer.Put(3, 2);        // picture_structure: frame
    writer.Put(0, 3);        // top_field_first, frame_pred_frame_dct, concealment_motion_vectors
    writer.Put(headers.scaleType, 1);
    writer.Put(1, 1);  // intra_vlc_format
    writer.Put(0, 1);  // alternate_scan
    writer.Put(0, 4);  // repeat_first_field, chroma_420_type, progressive_frame, composite_display_flag
    writer.Align();
}

// The bits of an element: from behind its start code to the next one.
BitReader ElementReader(const std::uint8_t* startCode, const std::uint8_t* end) {
    const std::uint8_t* const first = startCode + kStartCodeBytes;
    return {first, static_cast<std::size_t>(FindStartCode(first, end) - first)};
}

Status CheckExtension(BitReader& reader, std::uint32_t id) {
    if (reader.Get(4) == id) return IMG_OK;
    return reader.IsPastEnd() ? IMG_DATA_ENDED : IMG_E_MALFORMED;
}

Status ParseSequenceHeader(BitReader reader, ParsedHeaders& headers) {
    headers.width = reader.Get(12);
    headers.height = reader.Get(12);
    headers.aspectCode = reader.Get(4);
    reader.Get(4);       // frame_rate_code
    reader.Get(18 + 1);  // bit_rate_value, marker
    reader.Get(10 + 1);  // vbv_buffer_size_value, constrained_parameters_flag
    std::copy(std::begin(kDefaultIntraMatrix), std::end(kDefaultIntraMatrix), headers.matrix);
    if (reader.Get(1) != 0)
        for (const std::uint8_t position : kZigzagScan)
            headers.matrix[position] = static_cast<std::uint8_t>(reader.Get(8));
    return reader.IsPastEnd() ? IMG_DATA_ENDED : IMG_OK;
}

Status ParseSequenceExtension(BitReader reader, ParsedHeaders& headers) {
    if (const Status status = CheckExtension(reader, kSequenceExtension); status != IMG_OK) return status;
    reader.Get(8);  // profile_and_level_indication
    headers.progressiveSequence = reader.Get(1) != 0;
    headers.chromaFormat = reader.Get(2);
    headers.width |= reader.Get(2) << 12;
    headers.height |= reader.Get(2) << 12;
    return reader.IsPastEnd() ? IMG_DATA_ENDED : IMG_OK;
}

Status ParsePictureHeader(BitReader reader, ParsedHeaders& headers) {
    reader.Get(10);  // temporal_reference
    headers.pictureType = reader.Get(3);
    return reader.IsPastEnd() ? IMG_DATA_ENDED : IMG_OK;
}

Status ParsePictureCodingExtension(BitReader reader, ParsedHeaders& headers) {
    if (const Status status = CheckExtension(reader, kPictureCodingExtension); status != IMG_OK) return status;
    reader.Get(16);  // f_code
    headers.dcPrecision = reader.Get(2);
    headers.pictureStructure = reader.Get(2);
    headers.topFieldFirst = reader.Get(1) != 0;
    headers.framePredFrameDct = reader.Get(1) != 0;
    headers.concealmentVectors = reader.Get(1) != 0;
    headers.scaleType = reader.Get(1);
    headers.vlcFormat = reader.Get(1);
    headers.alternateScan = reader.Get(1) != 0;
    return reader.IsPastEnd() ? IMG_DATA_ENDED : IMG_OK;
}

// A fraction is nearer to the first of two rates when it lies below their mean.
bool IsBelowMean(const CodedFormat& format, std::uint64_t first, std::uint64_t second) {
    return std::uint64_t{format.frameRateNumerator} * 2 < (first + second) * format.frameRateDenominator;
}

}  // namespace

const std::uint8_t* FindStartCode(const std::uint8_t* from, const std::uint8_t* end) {
    // p is where a code's 01 might stand. What is above 1 there is part of no 00 00 01 at all.
    if (end - from < static_cast<std::ptrdiff_t>(kStartCodeBytes)) return end;
    const std::uint8_t* const last = end - 1;
    for (const std::uint8_t* p = from + 2; p < last;) {
        if (*p > 1) {
            p += 3;
        } else if (*p == 0) {
            ++p;
        } else if (p[-1] == 0 && p[-2] == 0) {
            return p - 2;
        } else {
            p += 3;
        }
    }
    return end;
}

std::uint32_t AspectCodeOfSize(std::uint32_t width, std::uint32_t height) {
    struct Row {
        std::uint32_t width;
        std::uint32_t height;
        std::uint32_t code;
    };
    static constexpr Row kRows[] = {
        {720, 480, 2},   {720, 486, 2},   {704, 576, 1},   {720, 576, 2},   {960, 720, 3},   {1280, 720, 3},
        {1280, 1080, 3}, {1440, 1080, 3}, {1920, 1080, 3}, {1920, 1088, 3}, {3840, 2160, 3},
    };
    for (const Row& row : kRows)
        if (row.width == width && row.height == height) return row.code;
    if (width * 3 == height * 4) return 2;
    if (width * 9 == height * 16) return 3;
    return height < 577 ? 1 : 3;
}

std::uint32_t VideoFormatOf(const CodedFormat& format) {
    constexpr std::uint32_t kPal = 1, kNtsc = 2;
    if (format.frameRateNumerator == 0 || format.frameRateDenominator == 0) return format.height == 480 ? kNtsc : kPal;
    if (IsBelowMean(format, 25, 30)) return kPal;
    if (IsBelowMean(format, 30, 50)) return kNtsc;
    return IsBelowMean(format, 50, 60) ? kPal : kNtsc;
}

std::uint32_t AspectRatioOfCode(std::uint32_t code) {
    switch (code) {
        case 1:
            return PackAspectRatio(1, 1);
        case 2:
            return PackAspectRatio(4, 3);
        case 3:
            return PackAspectRatio(16, 9);
        case 4:
            return PackAspectRatio(221, 100);
        default:
            return 0;
    }
}

void WriteHeaders(BitWriter& writer, const WrittenHeaders& headers) {
    WriteSequence(writer, headers);
    WriteGroupAndUserData(writer);
    WritePicture(writer, headers);
}

Status ParseHeaders(const std::uint8_t* data, std::size_t size, ParsedHeaders& headers, const std::uint8_t*& slices) {
    const std::uint8_t* const end = data + size;
    const auto next = [end](const std::uint8_t* code) { return FindStartCode(code + kStartCodeBytes, end); };

    const std::uint8_t* at = FindStartCode(data, end);
    if (at == end) return IMG_DATA_ENDED;
    if (at[3] != START_SEQUENCE) return IMG_E_MALFORMED;
    if (const Status status = ParseSequenceHeader(ElementReader(at, end), headers); status != IMG_OK) return status;

    if (at = next(at); at == end) return IMG_DATA_ENDED;
    if (at[3] != START_EXTENSION) return IMG_E_BAD_FORMAT;
    if (const Status status = ParseSequenceExtension(ElementReader(at, end), headers); status != IMG_OK) return status;

    do {
        if (at = next(at); at == end) return IMG_DATA_ENDED;
    } while (at[3] != START_PICTURE);
    if (const Status status = ParsePictureHeader(ElementReader(at, end), headers); status != IMG_OK) return status;

    if (at = next(at); at == end) return IMG_DATA_ENDED;
    if (at[3] != START_EXTENSION) return IMG_E_MALFORMED;
    if (const Status status = ParsePictureCodingExtension(ElementReader(at, end), headers); status != IMG_OK)
        return status;

    do {
        if (at = next(at); at == end) return IMG_DATA_ENDED;
    } while (!IsSliceCode(at[3]));
    slices = at;
    return IMG_OK;
}

}  // namespace KorvaneSoftware::iframe
