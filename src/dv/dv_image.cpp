#include "dv/dv_image.h"

#include <algorithm>
#include <cstring>

#include "dv/dv_samples.h"
#include "dv/dv_tables.h"
#include "foundation/platform/platform.h"

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kBlock = kDvBlockValues;
constexpr std::size_t kLineBytes = 8 * sizeof(std::int16_t);

std::int16_t Sample(std::uint8_t byte) { return static_cast<std::int16_t>(byte - 128); }
std::uint8_t Byte(std::int16_t sample) { return static_cast<std::uint8_t>(std::clamp(sample + 128, 0, 255)); }

unsigned BytesPer8Pixels(std::uint32_t format) {
    switch (format) {
        case FMT_UYVY:
        case FMT_YUY2:
        case FMT_YVYU:
        case FMT_Y16:
            return 16;
        case FMT_Y41P:
            return 12;
        case FMT_DV12:
            return 8;
        default:
            return 0;
    }
}

// Luminance bytes of a group of 8 pixels of Y41P. The chrominance of pixels 0 and 4 stands at 0 and 4 (U), 2 and 6 (V).
constexpr unsigned kY41PLuma[8] = {1, 3, 5, 7, 8, 9, 10, 11};
constexpr unsigned kY41PGroup = 12;

// In these two the chrominance of a part takes the form that a 4:2:2 picture has: each sample as often as it lasts.

void ReadY41P(std::int16_t* y, std::int16_t* u, std::int16_t* v, const std::uint8_t* pixels, std::int64_t stride) {
    for (unsigned line = 0; line < 8; ++line, pixels += stride)
        for (unsigned group = 0; group < 2; ++group) {
            const std::uint8_t* const from = pixels + kY41PGroup * group;
            for (unsigned i = 0; i < 8; ++i) y[kBlock * group + 8 * line + i] = Sample(from[kY41PLuma[i]]);
            for (unsigned i = 0; i < 4; ++i) {
                u[8 * line + 4 * group + i] = Sample(from[i / 2 * 4]);
                v[8 * line + 4 * group + i] = Sample(from[i / 2 * 4 + 2]);
            }
        }
}

void WriteY41P(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y, const std::int16_t* u,
               const std::int16_t* v) {
    for (unsigned line = 0; line < 8; ++line, pixels += stride)
        for (unsigned group = 0; group < 2; ++group) {
            std::uint8_t* const to = pixels + kY41PGroup * group;
            for (unsigned i = 0; i < 8; ++i) to[kY41PLuma[i]] = Byte(y[kBlock * group + 8 * line + i]);
            for (unsigned i = 0; i < 2; ++i) {
                to[4 * i] = Byte(u[8 * line + 4 * group + 2 * i]);
                to[4 * i + 2] = Byte(v[8 * line + 4 * group + 2 * i]);
            }
        }
}

// Lines n and n + 2 of a group of four share a chrominance line.
unsigned ChromaLineOf(unsigned line) { return line / 4 * 2 + line % 2; }

void ReadDv12(std::int16_t* y, std::int16_t* u, std::int16_t* v, const ImageDescriptor& image, unsigned x,
              unsigned top) {
    for (unsigned line = 0; line < 8; ++line) {
        const std::uint8_t* const luma = image.planes[0] + (top + line) * image.strides[0] + x;
        const std::uint8_t* const chroma = image.planes[1] + ChromaLineOf(top + line) * image.strides[1] + x;
        for (unsigned i = 0; i < 8; ++i) {
            y[8 * line + i] = Sample(luma[i]);
            y[kBlock + 8 * line + i] = Sample(luma[i + 8]);
            u[8 * line + i] = Sample(chroma[2 * i]);
            v[8 * line + i] = Sample(chroma[2 * i + 1]);
        }
    }
}

void WriteDv12(const ImageDescriptor& image, unsigned x, unsigned top, const std::int16_t* y, const std::int16_t* u,
               const std::int16_t* v) {
    for (unsigned line = 0; line < 8; ++line) {
        std::uint8_t* const luma = image.planes[0] + (top + line) * image.strides[0] + x;
        std::uint8_t* const chroma = image.planes[1] + ChromaLineOf(top + line) * image.strides[1] + x;
        for (unsigned i = 0; i < 8; ++i) {
            luma[i] = Byte(y[8 * line + i]);
            luma[i + 8] = Byte(y[kBlock + 8 * line + i]);
            chroma[2 * i] = Byte(u[8 * line + i]);
            chroma[2 * i + 1] = Byte(v[8 * line + i]);
        }
    }
}

// 4:1:1: every second sample of the two parts of a macroblock, side by side. In 16x16 macroblocks as well: the lower
// half's samples stand to the right of the upper half's.
void JoinQuarters(std::int16_t* block, const std::int16_t* first, const std::int16_t* second) {
    for (unsigned line = 0; line < 8; ++line)
        for (unsigned i = 0; i < 4; ++i) {
            block[8 * line + i] = first[8 * line + 2 * i];
            block[8 * line + 4 + i] = second[8 * line + 2 * i];
        }
}

void SpreadQuarters(std::int16_t* first, std::int16_t* second, const std::int16_t* block) {
    for (unsigned line = 0; line < 8; ++line)
        for (unsigned i = 0; i < 8; ++i) {
            first[8 * line + i] = block[8 * line + i / 2];
            second[8 * line + i] = block[8 * line + 4 + i / 2];
        }
}

// 4:2:0: of 16 lines, those that carry a component, the first or the second of the two lines of a field that share it.
void TakeLines(std::int16_t* block, const std::int16_t* lines, unsigned offset) {
    for (unsigned c = 0; c < 8; ++c) std::memcpy(block + 8 * c, lines + 8 * (c / 2 * 4 + c % 2 + offset), kLineBytes);
}

void RepeatLines(std::int16_t* lines, const std::int16_t* block) {
    for (unsigned line = 0; line < 16; ++line)
        std::memcpy(lines + 8 * line, block + 8 * ChromaLineOf(line), kLineBytes);
}

// Chrominance blocks behind the luminance ones.
struct ChromaBlocks {
    unsigned cr;
    unsigned cb;
};
ChromaBlocks ChromaOf(const DvStream& stream) {
    if (stream.IsHd()) return {4, 6};
    return stream.sampling == DvSampling::k422 ? ChromaBlocks{2, 3} : ChromaBlocks{4, 5};
}

}  // namespace

bool CDVImage::IsDirect(const DvStream& stream, std::uint32_t format) {
    if (format == FMT_Y41P) return stream.sampling == DvSampling::k411;
    if (format == FMT_DV12) return stream.sampling == DvSampling::k420;
    return BytesPer8Pixels(format) != 0;
}

Status CDVImage::Init(const ImageDescriptor& image, const DvStream& stream) {
    if (image.width != stream.codedWidth || image.height != stream.lines) return IMG_E_BAD_SIZE;
    if (!IsDirect(stream, image.format)) return IMG_E_BAD_FORMAT;
    image_ = image;
    stream_ = &stream;
    bytesPer8Pixels_ = BytesPer8Pixels(image.format);
    return IMG_OK;
}

CDVImage::Part CDVImage::PartOf(const MacroblockPlace& place, unsigned part, bool byFields) {
    if (place.shape == MacroblockShape::k32x8) return {place.x + 16 * part, place.y, 1};
    if (byFields) return {place.x, place.y + part, 2};
    return {place.x, place.y + 8 * part, 1};
}

void CDVImageReader::ReadPart(std::int16_t* y, std::int16_t* u, std::int16_t* v, const Part& part) const {
    const std::int64_t stride = image_.strides[0] * part.lineStep;
    switch (image_.format) {
        case FMT_UYVY:
            return ReadDvUyvy(y, y + kBlock, u, v, Pixels(part), stride);
        case FMT_YUY2:
            return ReadDvYuy2(y, y + kBlock, u, v, Pixels(part), stride);
        case FMT_YVYU:
            return ReadDvYvyu(y, y + kBlock, u, v, Pixels(part), stride);
        case FMT_Y16:
            return ReadDvY16(y, y + kBlock, u, v, Pixels(part), stride);
        case FMT_Y41P:
            return ReadY41P(y, u, v, Pixels(part), stride);
        case FMT_DV12:
            return ReadDv12(y, u, v, image_, part.x, part.y);
    }
}

void CDVImageWriter::WritePart(const std::int16_t* y, const std::int16_t* u, const std::int16_t* v,
                               const Part& part) const {
    const std::int64_t stride = image_.strides[0] * part.lineStep;
    switch (image_.format) {
        case FMT_UYVY:
            return WriteDvUyvy(Pixels(part), stride, y, y + kBlock, u, v);
        case FMT_YUY2:
            return WriteDvYuy2(Pixels(part), stride, y, y + kBlock, u, v);
        case FMT_YVYU:
            return WriteDvYvyu(Pixels(part), stride, y, y + kBlock, u, v);
        case FMT_Y16:
            return WriteDvY16(Pixels(part), stride, y, y + kBlock, u, v);
        case FMT_Y41P:
            return WriteY41P(Pixels(part), stride, y, u, v);
        case FMT_DV12:
            return WriteDv12(image_, part.x, part.y, y, u, v);
    }
}

void CDVImageReader::Read(std::int16_t* blocks, const MacroblockPlace& place, bool byFields) const {
    const ChromaBlocks chroma = ChromaOf(*stream_);
    const bool isReduced = stream_->sampling == DvSampling::k411 || stream_->sampling == DvSampling::k420;
    alignas(64) std::int16_t u[2 * kBlock];
    alignas(64) std::int16_t v[2 * kBlock];
    for (unsigned part = 0; part < PartCount(place.shape); ++part) {
        std::int16_t* const toU = isReduced ? u + kBlock * part : blocks + kBlock * (chroma.cb + part);
        std::int16_t* const toV = isReduced ? v + kBlock * part : blocks + kBlock * (chroma.cr + part);
        ReadPart(blocks + 2 * kBlock * part, toU, toV, PartOf(place, part, byFields));
    }
    if (stream_->sampling == DvSampling::k411) {
        JoinQuarters(blocks + kBlock * chroma.cr, v, v + kBlock);
        JoinQuarters(blocks + kBlock * chroma.cb, u, u + kBlock);
    } else if (stream_->sampling == DvSampling::k420) {
        TakeLines(blocks + kBlock * chroma.cr, v, 0);
        TakeLines(blocks + kBlock * chroma.cb, u, 2);
    }
}

void CDVImageWriter::Expect(const MacroblockPlace& place) const {
    for (unsigned part = 0; part < PartCount(place.shape); ++part)
        platform::FetchForWriting(Pixels(PartOf(place, part, false)), image_.strides[0], 8);
}

void CDVImageWriter::Write(const std::int16_t* blocks, const MacroblockPlace& place, bool byFields) const {
    const ChromaBlocks chroma = ChromaOf(*stream_);
    const std::int16_t* u = blocks + kBlock * chroma.cb;
    const std::int16_t* v = blocks + kBlock * chroma.cr;
    alignas(64) std::int16_t wideU[2 * kBlock];
    alignas(64) std::int16_t wideV[2 * kBlock];
    if (stream_->sampling == DvSampling::k411) {
        SpreadQuarters(wideU, wideU + kBlock, u);
        SpreadQuarters(wideV, wideV + kBlock, v);
    } else if (stream_->sampling == DvSampling::k420) {
        RepeatLines(wideU, u);
        RepeatLines(wideV, v);
    }
    if (stream_->sampling == DvSampling::k411 || stream_->sampling == DvSampling::k420) {
        u = wideU;
        v = wideV;
    }
    for (unsigned part = 0; part < PartCount(place.shape); ++part)
        WritePart(blocks + 2 * kBlock * part, u + kBlock * part, v + kBlock * part, PartOf(place, part, byFields));
}

}  // namespace KorvaneSoftware
