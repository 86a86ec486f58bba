#include "h264.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "error.h"
#include "y4m.h"

namespace playout {
namespace {

constexpr std::int32_t kCodecRow = 10;
constexpr std::uint64_t kMostFramesKept = 40;  ///< More than any decoder holds back.

enum UnitType : unsigned { UNIT_SLICE = 1, UNIT_IDR_SLICE = 5, UNIT_SEI = 6, UNIT_SPS = 7, UNIT_PPS = 8, UNIT_AUD = 9 };

/// Bits of a unit's payload, ITU-T H.264 clause 7.2. Behind the end stand zeros.
class Bits {
public:
    explicit Bits(const std::vector<std::uint8_t>& payload) : payload_(payload) {}

    std::uint32_t Read(unsigned count) {
        std::uint32_t value = 0;
        for (unsigned i = 0; i < count; ++i, ++at_) {
            const std::size_t byte = at_ / 8;
            value = value << 1 | (byte < payload_.size() ? payload_[byte] >> (7 - at_ % 8) & 1u : 0u);
        }
        return value;
    }
    bool Flag() { return Read(1) != 0; }
    std::uint32_t Ue() {
        unsigned zeros = 0;
        while (zeros < 31 && !Flag()) ++zeros;
        return (1u << zeros) - 1 + Read(zeros);
    }
    std::int32_t Se() {
        const std::uint32_t code = Ue();
        return code % 2 == 1 ? static_cast<std::int32_t>(code / 2 + 1) : -static_cast<std::int32_t>(code / 2);
    }

private:
    const std::vector<std::uint8_t>& payload_;
    std::size_t at_ = 0;
};

/// Where the next 00 00 01 begins; the end where there is none.
std::size_t FindStartCode(const std::vector<std::uint8_t>& bytes, std::size_t from) {
    for (std::size_t at = from; at + 3 <= bytes.size(); ++at)
        if (bytes[at] == 0 && bytes[at + 1] == 0 && bytes[at + 2] == 1) return at;
    return bytes.size();
}

/// What stands behind a unit's header, without emulation prevention.
std::vector<std::uint8_t> Payload(const std::vector<std::uint8_t>& bytes, std::size_t begin, std::size_t end) {
    std::vector<std::uint8_t> payload;
    unsigned zeros = 0;
    for (std::size_t at = begin + 4; at < end; ++at) {
        if (zeros >= 2 && bytes[at] == 3) {
            zeros = 0;
            continue;
        }
        zeros = bytes[at] == 0 ? zeros + 1 : 0;
        payload.push_back(bytes[at]);
    }
    return payload;
}

void SkipScalingList(Bits& bits, unsigned size) {
    int last = 8;
    int next = 8;
    for (unsigned i = 0; i < size && next != 0; ++i) {
        next = (last + bits.Se() + 256) % 256;
        if (next != 0) last = next;
    }
}

}  // namespace

bool IsAnnexB(const std::string& path) {
    if (path == "-") return false;
    const File file(std::fopen(path.c_str(), "rb"));
    std::uint8_t head[4] = {};
    if (file == nullptr || std::fread(head, 1, sizeof head, file.get()) != sizeof head) return false;
    return head[0] == 0 && head[1] == 0 && (head[2] == 1 || (head[2] == 0 && head[3] == 1));
}

H264Reader::H264Reader(const std::string& path) : name_(path) {
    const File file = OpenForReading(path);
    std::uint8_t block[65536];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, file.get())) != 0;)
        bytes_.insert(bytes_.end(), block, block + got);
    FindPictures();
    if (samples_.empty() || format_.width == 0) throw Error(EXIT_INPUT, name_ + " holds no H.264 pictures");
    Check(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder_), "creation of VideoCodec");
    Check(decoder_->DecSetFormat(kCodecRow, static_cast<std::int32_t>(format_.width),
                                 static_cast<std::int32_t>(format_.height)),
          "setting up the H.264 decoder");
}

// A picture begins at its first slice, or at the parameter sets and SEI in front of it. Whether a field is the second of
// its frame is seen by its header; frames are counted, so that the end is known.
void H264Reader::FindPictures() {
    bool hasSlice = false;
    bool isSecond = false;
    std::size_t begin = FindStartCode(bytes_, 0);
    std::uint32_t lastFrameNum = 0;
    int waitingParity = -1;
    for (std::size_t at = begin; at < bytes_.size();) {
        const std::size_t end = FindStartCode(bytes_, at + 3);
        if (at + 4 < bytes_.size()) {
            const unsigned type = bytes_[at + 3] & 31;
            const bool isSlice = type >= UNIT_SLICE && type <= UNIT_IDR_SLICE;
            const bool isFirstSlice = isSlice && (bytes_[at + 4] & 0x80) != 0;  // first_mb_in_slice 0
            const bool isFront = type >= UNIT_SEI && type <= UNIT_AUD;
            if (hasSlice && (isFront || isFirstSlice)) {
                samples_.push_back({begin, at});
                begin = at;
                hasSlice = false;
            }
            if (type == UNIT_SPS) TakeFormat(Payload(bytes_, at, end));
            if (isFirstSlice && !hasSlice) {
                const std::vector<std::uint8_t> payload = Payload(bytes_, at, std::min(end, at + 64));
                Bits bits(payload);
                for (int i = 0; i < 3; ++i) bits.Ue();  // first_mb_in_slice, slice_type, pic_parameter_set_id
                if (separatePlanes_) bits.Read(2);
                const std::uint32_t frameNum = bits.Read(frameNumBits_);
                const int parity = !framesOnly_ && bits.Flag() ? static_cast<int>(bits.Read(1)) : -1;
                isSecond = parity >= 0 && waitingParity == 1 - parity && frameNum == lastFrameNum;
                waitingParity = isSecond ? -1 : parity;
                lastFrameNum = frameNum;
                if (!isSecond) ++format_.frames;
            }
            if (type == UNIT_IDR_SLICE) firstIdr_ = std::min(firstIdr_, samples_.size());
            hasSlice = hasSlice || isSlice;
        }
        at = end;
    }
    if (hasSlice) samples_.push_back({begin, bytes_.size()});
}

// ITU-T H.264 clause 7.3.2.1.1.
void H264Reader::TakeFormat(const std::vector<std::uint8_t>& payload) {
    Bits bits(payload);
    const std::uint32_t profile = bits.Read(8);
    bits.Read(16);  // Constraints and level.
    bits.Ue();
    std::uint32_t chroma = 1;
    const bool isHigh = profile == 100 || profile == 110 || profile == 122 || profile == 244 || profile == 44;
    if (isHigh) {
        chroma = bits.Ue();
        separatePlanes_ = chroma == 3 && bits.Flag();
        bits.Ue();
        bits.Ue();
        bits.Flag();
        if (bits.Flag())
            for (unsigned i = 0; i < (chroma == 3 ? 12u : 8u); ++i)
                if (bits.Flag()) SkipScalingList(bits, i < 6 ? 16 : 64);
    }
    if (chroma != 1 && chroma != 2) throw Error(EXIT_INPUT, name_ + " is neither 4:2:0 nor 4:2:2");
    frameNumBits_ = bits.Ue() + 4;
    const std::uint32_t orderType = bits.Ue();
    if (orderType == 0) bits.Ue();
    if (orderType == 1) {
        bits.Flag();
        bits.Se();
        bits.Se();
        for (std::uint32_t left = std::min(bits.Ue(), 255u); left > 0; --left) bits.Se();
    }
    bits.Ue();
    bits.Flag();
    const std::uint32_t mbsAcross = bits.Ue() + 1;
    const std::uint32_t mapUnits = bits.Ue() + 1;
    framesOnly_ = bits.Flag();
    if (!framesOnly_) bits.Flag();
    bits.Flag();
    std::uint32_t crop[4] = {};  // Left, right, top, bottom.
    if (bits.Flag())
        for (std::uint32_t& offset : crop) offset = bits.Ue();
    const std::uint32_t unitY = (framesOnly_ ? 1u : 2u) * (chroma == 1 ? 2u : 1u);
    const std::uint32_t width = mbsAcross * 16 - 2 * (crop[0] + crop[1]);
    const std::uint32_t height = mapUnits * (framesOnly_ ? 16u : 32u) - unitY * (crop[2] + crop[3]);
    if (width < 32 || height < 16 || width > 16384 || height > 16384)
        throw Error(EXIT_INPUT, name_ + " has a size out of range");
    if (format_.width != 0 && (format_.width != width || format_.height != height))
        throw Error(EXIT_INPUT, name_ + " changes its size");
    const bool isFine = width % 2 == 0 && height % (chroma == 1 && !framesOnly_ ? 4 : 2) == 0;
    if (!isFine) throw Error(EXIT_INPUT, name_ + " has a size that its chroma does not divide");
    format_.width = width;
    format_.height = height;
    format_.pixels = chroma == 1 ? PIXMORPH_IYUV : PIXMORPH_Y422;
    // What pictures are interlaced, and in which order, each tells for itself; --field-order knows better.
    format_.fieldOrder = framesOnly_ ? FieldOrder::Progressive : FieldOrder::TopFirst;
    if (!bits.Flag()) return;  // vui_parameters_present_flag
    if (bits.Flag() && bits.Read(8) == 255) {
        const std::uint32_t sarX = bits.Read(16);
        const std::uint32_t sarY = bits.Read(16);
        if (sarX != 0 && sarY != 0) format_.aspectNumerator = sarX, format_.aspectDenominator = sarY;
    }
    if (bits.Flag()) bits.Flag();
    if (bits.Flag()) {
        bits.Read(4);
        if (bits.Flag()) bits.Read(24);
    }
    if (bits.Flag()) {
        bits.Ue();
        bits.Ue();
    }
    if (!bits.Flag()) return;  // timing_info_present_flag
    const std::uint32_t unitsInTick = bits.Read(32);
    const std::uint32_t timeScale = bits.Read(32);
    if (unitsInTick == 0 || unitsInTick > 0x7FFFFFFF || timeScale == 0) return;
    format_.rateNumerator = timeScale;  // Of fields.
    format_.rateDenominator = 2 * unitsInTick;
}

bool H264Reader::Decode(const Range& sample, Picture& picture) {
    // The library finds the further planes behind the first: a frame without gaps, unlike the picture's planes.
    frame_.resize(static_cast<std::size_t>(picture.PixelBytes()));
    std::uint8_t* const planes[] = {frame_.data()};
    const std::int32_t strides[] = {static_cast<std::int32_t>(picture.RowBytes(0))};
    const std::int32_t size = static_cast<std::int32_t>(sample.end - sample.begin);
    // No frame is due yet: that is how a failure looks too.
    if (decoder_->Decode(planes, strides, picture.Format(), bytes_.data() + sample.begin, size) != S_OK) return false;
    const std::uint8_t* from = frame_.data();
    for (std::uint32_t plane = 0; plane < picture.PlaneCount(); ++plane) {
        for (std::uint32_t row = 0; row < picture.Rows(plane); ++row) {
            std::memcpy(picture.Row(plane, row), from, picture.RowBytes(plane));
            from += picture.RowBytes(plane);
        }
    }
    return true;
}

bool H264Reader::Read(Picture& picture) {
    // Behind the last picture an IDR picture is given again and again: all older ones leave before it.
    const std::size_t calls = samples_.size() + (firstIdr_ < samples_.size() ? 2 * kMostFramesKept : 0);
    while (delivered_ < format_.frames && next_ < calls) {
        const std::size_t place = next_ < samples_.size() ? next_ : firstIdr_;
        ++next_;
        if (!Decode(samples_[place], picture)) continue;
        ++delivered_;
        return true;
    }
    if (delivered_ == 0) throw Error(EXIT_INPUT, name_ + " holds no picture that the library decodes");
    return false;
}

}  // namespace playout
