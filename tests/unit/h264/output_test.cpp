// Finished frames on their way out: what is said about them, how they reach the caller's picture, the statistics.
#include "h264/output/frame_output.h"

#include <gtest/gtest.h>

#include <numeric>

#include "codec/samples.h"
#include "h264/output/extended_information.h"
#include "h264/output/frame_description.h"
#include "h264/output/macroblock_statistics.h"

namespace h264 {
namespace {

using namespace KorvaneSoftware;

H264Sps SpsOf(std::uint32_t widthInMbs, std::uint32_t heightInMapUnits, bool frameMbsOnly = true) {
    H264Sps sps;
    sps.profileIdc = 100;
    sps.levelIdc = 40;
    sps.widthInMbs = widthInMbs;
    sps.heightInMapUnits = heightInMapUnits;
    sps.frameMbsOnly = frameMbsOnly;
    return sps;
}

void ExpectRect(const ImageRect& rect, int x, int y, int width, int height) {
    EXPECT_EQ(rect.x, x);
    EXPECT_EQ(rect.y, y);
    EXPECT_EQ(rect.width, width);
    EXPECT_EQ(rect.height, height);
}

TEST(H264Output, CropsByTheUnitsOfTheFormat) {
    H264Sps sps = SpsOf(120, 68);
    ExpectRect(CroppedRectangle(sps), 0, 0, 1920, 1088);
    sps.cropBottom = 4;
    ExpectRect(CroppedRectangle(sps), 0, 0, 1920, 1088);  // The flag decides.
    sps.frameCropping = true;
    ExpectRect(CroppedRectangle(sps), 0, 0, 1920, 1080);
    sps.chromaFormatIdc = 2;
    ExpectRect(CroppedRectangle(sps), 0, 0, 1920, 1084);
    H264Sps interlaced = SpsOf(120, 34, false);
    interlaced.frameCropping = true;
    interlaced.cropBottom = 2;
    ExpectRect(CroppedRectangle(interlaced), 0, 0, 1920, 1080);
    interlaced.cropLeft = 3;
    interlaced.cropRight = 1;
    interlaced.cropTop = 1;
    ExpectRect(CroppedRectangle(interlaced), 6, 4, 1912, 1076);
    interlaced.chromaFormatIdc = 2;
    ExpectRect(CroppedRectangle(interlaced), 6, 2, 1912, 1082);
}

TEST(H264Output, ReducesTheDisplayAspectRatio) {
    const auto ratio = [](std::uint32_t mbs, std::uint32_t rows, std::uint32_t sarX, std::uint32_t sarY) {
        H264Sps sps = SpsOf(mbs, rows);
        sps.vui.sarWidth = sarX;
        sps.vui.sarHeight = sarY;
        const H264AspectRatio reduced = DisplayAspectRatio(sps);
        return std::pair<int, int>(reduced.x, reduced.y);
    };
    EXPECT_EQ(ratio(45, 36, 16, 11), std::pair(20, 11));
    EXPECT_EQ(ratio(45, 36, 1, 1), std::pair(5, 4));
    EXPECT_EQ(ratio(80, 45, 1, 1), std::pair(16, 9));
    H264Sps cropped = SpsOf(120, 68);
    cropped.frameCropping = true;
    cropped.cropBottom = 4;
    EXPECT_EQ(DisplayAspectRatio(cropped).x, 16);
    EXPECT_EQ(DisplayAspectRatio(cropped).y, 9);
}

TEST(H264Output, TellsTheFieldStructure) {
    const auto structure = [](bool mbaff, bool fields, std::int32_t top, std::int32_t bottom, std::uint32_t picStruct,
                              bool bottomFirst = false) {
        CH264Frame frame;
        H264SliceHead head;
        head.mbaff = mbaff;
        head.fieldPic = fields;
        head.bottomField = bottomFirst;
        frame.Initialize(SpsOf(4, 2, false), H264Pps(), head);
        frame.fields[0].picOrderCnt = top;
        frame.fields[1].picOrderCnt = bottom;
        (fields ? frame.FirstField() : static_cast<CH264Picture&>(frame)).timing.picStruct = picStruct;
        return static_cast<int>(FieldStructureOf(frame));
    };
    EXPECT_EQ(structure(false, false, 0, 1, 3), 0);
    EXPECT_EQ(structure(true, false, 0, 1, 4), 5);
    EXPECT_EQ(structure(true, false, 1, 0, 3), 6);
    EXPECT_EQ(structure(true, false, 2, 2, 0), 0);
    EXPECT_EQ(structure(true, false, 2, 2, 3), 5);
    EXPECT_EQ(structure(true, false, 2, 2, 4), 6);
    EXPECT_EQ(structure(true, false, 2, 2, 5), 0);
    EXPECT_EQ(structure(false, true, -2, -1, 4), 5);
    EXPECT_EQ(structure(false, true, 3, 1, 3), 6);
    EXPECT_EQ(structure(false, true, 3, 3, 4), 6);
    EXPECT_EQ(structure(false, true, 3, 3, 3, true), 5);
    // A lone field comes first: the other's count is the largest there is.
    EXPECT_EQ(structure(false, true, kH264NoOrderCount, 7, 0, true), 6);
}

TEST(H264Output, DescribesTheStream) {
    H264Sps sps = SpsOf(120, 34, false);
    sps.frameCropping = true;
    sps.cropBottom = 2;
    CodedFormat format = DescribeStream(sps);
    EXPECT_EQ(format.format, FMT_IMC4);
    EXPECT_EQ(format.width, 1920u);
    EXPECT_EQ(format.height, 1080u);
    EXPECT_EQ(format.frameRateNumerator, 2500u);
    EXPECT_EQ(format.frameRateDenominator, 100u);
    EXPECT_EQ(format.fieldLayout, 3u);
    EXPECT_EQ(format.chromaLayout, 2u);
    EXPECT_EQ(format.kind, 1u);
    EXPECT_EQ(format.aspectX, 0);  // Told by a VUI only.
    EXPECT_EQ(format.fourCC, 0u);
    EXPECT_EQ(format.maxFrameSize, 0u);

    sps = SpsOf(45, 36);
    sps.profileIdc = 122;
    sps.chromaFormatIdc = 2;
    sps.bitDepthLumaMinus8 = 2;
    sps.bitDepthChromaMinus8 = 1;
    sps.vuiPresent = true;
    sps.vui.sarWidth = 16;
    sps.vui.sarHeight = 11;
    sps.vui.timingInfoPresent = true;
    sps.vui.numUnitsInTick = 1001;
    sps.vui.timeScale = 60000;
    format = DescribeStream(sps);
    EXPECT_EQ(format.format, FMT_S422);
    EXPECT_EQ(format.lumaExtraBits, 2);
    EXPECT_EQ(format.chromaExtraBits, 1);
    EXPECT_EQ(format.frameRateNumerator, 60000u);
    EXPECT_EQ(format.frameRateDenominator, 2002u);
    EXPECT_EQ(format.fieldLayout, 4u);
    EXPECT_EQ(format.chromaLayout, 3u);
    EXPECT_EQ(format.aspectX, 20);
    EXPECT_EQ(format.aspectY, 11);
    sps.bitDepthLumaMinus8 = sps.bitDepthChromaMinus8 = 0;
    EXPECT_EQ(DescribeStream(sps).format, FMT_Y422);
    sps.chromaFormatIdc = 1;
    sps.bitDepthChromaMinus8 = 6;
    EXPECT_EQ(DescribeStream(sps).format, FMT_S420);
}

/// What a sample of the frame is.
std::uint32_t SampleAt(unsigned plane, int x, int y, std::uint32_t mask) {
    return (static_cast<std::uint32_t>(x) * 7 + static_cast<std::uint32_t>(y) * 13 + plane * 71) & mask;
}

/// A frame with buffers, filled through the plane pointers alone.
struct FilledFrame {
    FilledFrame(const H264Sps& sps, bool fields = false) {
        H264SliceHead head;
        head.fieldPic = fields;
        frame.Initialize(sps, H264Pps(), head);
        EXPECT_EQ(frame.AllocateBuffers(), IMG_OK);
        mask = sps.IsHighBitDepth() ? 1023 : 255;
        const int width = static_cast<int>(sps.widthInMbs * 16);
        const int height = static_cast<int>(sps.FrameHeightInMbs() * 16);
        for (unsigned plane = 0; plane < 3; ++plane) {
            const int across = plane == 0 ? width : width / 2;
            const int down = plane == 0 || sps.chromaFormatIdc == 2 ? height : height / 2;
            for (int y = 0; y < down; ++y) {
                for (int x = 0; x < across; ++x) {
                    std::uint8_t* row = frame.planes[plane] + y * frame.stride;
                    const std::uint32_t sample = SampleAt(plane, x, y, mask);
                    if (sps.IsHighBitDepth()) {
                        reinterpret_cast<std::uint16_t*>(row)[x] = static_cast<std::uint16_t>(sample);
                    } else {
                        row[x] = static_cast<std::uint8_t>(sample);
                    }
                }
            }
        }
        frame.times = {12.5, 13.5};
    }
    CH264Frame frame;
    std::uint32_t mask = 255;
};

/// A destination of a public format without gaps, and a guard behind it.
struct Destination {
    Destination(std::uint32_t publicFormat, std::uint32_t width, std::uint32_t height) {
        SetPublicFormat(*sample.GetImage(), publicFormat);
        sample.GetImage()->width = width;
        sample.GetImage()->height = height;
        size = static_cast<std::size_t>(ImageBufferSize(sample.GetImage()));
        bytes.assign(size + 64, 0xCD);
        EXPECT_EQ(sample.SetBuffer(bytes.data(), size), IMG_OK);
    }
    void ExpectGuard() const {
        for (std::size_t i = size; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 0xCD);
    }
    std::vector<std::uint8_t> bytes;
    std::size_t size = 0;
    CVideoSample sample;
};

std::unique_ptr<IH264FrameOutput> MakeOutput() {
    auto output = CreateH264Output();
    EXPECT_EQ(output->Initialize(), IMG_OK);
    return output;
}

TEST(H264Output, DeliversTheCroppedPictureInItsOwnFormat) {
    struct Case {
        std::uint32_t chroma, depth, publicFormat;
    };
    for (const Case& c : {Case{1, 0, 11}, Case{2, 0, 30}, Case{1, 2, 29}, Case{2, 2, 31}}) {
        SCOPED_TRACE(c.publicFormat);
        H264Sps sps = SpsOf(5, 3);
        sps.chromaFormatIdc = c.chroma;
        sps.bitDepthLumaMinus8 = sps.bitDepthChromaMinus8 = c.depth;
        sps.frameCropping = true;
        sps.cropLeft = 3;
        sps.cropRight = 2;
        sps.cropTop = 1;
        sps.cropBottom = 4;
        const int unitY = c.chroma == 1 ? 2 : 1;
        const int width = 80 - 10;
        const int height = 48 - 5 * unitY;
        FilledFrame filled(sps);
        // Odd heights of 4:2:2 included: 43 lines.
        Destination destination(c.publicFormat, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
        const auto output = MakeOutput();
        ASSERT_EQ(output->Check(filled.frame, destination.sample), IMG_OK);
        ASSERT_EQ(output->Deliver(filled.frame, destination.sample), IMG_OK);
        std::size_t at = 0;
        for (unsigned plane = 0; plane < 3; ++plane) {
            const int across = plane == 0 ? width : width / 2;
            const int down = plane == 0 || c.chroma == 2 ? height : height / 2;
            const int left = plane == 0 ? 6 : 3;
            const int top = plane == 0 || c.chroma == 2 ? unitY : unitY / 2;
            for (int y = 0; y < down; ++y) {
                for (int x = 0; x < across; ++x) {
                    std::uint32_t got = destination.bytes[at++];
                    if (c.depth != 0) got |= static_cast<std::uint32_t>(destination.bytes[at++]) << 8;
                    ASSERT_EQ(got, SampleAt(plane, left + x, top + y, filled.mask)) << plane << " " << x << " " << y;
                }
            }
        }
        EXPECT_EQ(at, destination.size);
        destination.ExpectGuard();
        EXPECT_EQ(destination.sample.GetDataSize(), destination.size);
        EXPECT_EQ(destination.sample.GetTimes()->start, 12.5);
        EXPECT_EQ(destination.sample.GetTimes()->end, 13.5);
        EXPECT_EQ(destination.sample.GetFieldStructure(), 0u);
        const int divisor = std::gcd(width, height);
        EXPECT_EQ(*destination.sample.GetAspectRatio(),
                  static_cast<std::uint32_t>(height / divisor) << 16 | static_cast<std::uint32_t>(width / divisor));
    }
}

TEST(H264Output, ConvertsAndResizesAsTheDestinationAsks) {
    FilledFrame filled(SpsOf(4, 3));
    const auto output = MakeOutput();
    // UYVY of the same size: luma stays.
    Destination packed(0, 64, 48);
    ASSERT_EQ(output->Deliver(filled.frame, packed.sample), IMG_OK);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            ASSERT_EQ(packed.bytes[static_cast<std::size_t>(y * 128 + 2 * x + 1)], SampleAt(0, x, y, 255));
        }
    }
    // A flat picture stays flat at any size, larger and smaller, in its own and other formats.
    for (unsigned plane = 0; plane < 3; ++plane) {
        const int rows = plane == 0 ? 48 : 24;
        for (int y = 0; y < rows; ++y) {
            std::fill_n(filled.frame.planes[plane] + y * filled.frame.stride, plane == 0 ? 64 : 32,
                        static_cast<std::uint8_t>(100 + plane));
        }
    }
    for (std::uint32_t format : {11u, 0u}) {
        for (auto [width, height] : {std::pair(128u, 96u), std::pair(32u, 24u), std::pair(64u, 24u)}) {
            SCOPED_TRACE(testing::Message() << format << " " << width << "x" << height);
            Destination other(format, width, height);
            ASSERT_EQ(output->Check(filled.frame, other.sample), IMG_OK);
            ASSERT_EQ(output->Deliver(filled.frame, other.sample), IMG_OK);
            other.ExpectGuard();
            for (std::size_t i = 0; i < other.size; ++i) {
                const std::size_t luma = std::size_t{width} * height;
                const int expected = format == 0 ? (i % 2 == 1   ? 100
                                                    : i % 4 == 0 ? 101
                                                                 : 102)
                                                 : (i < luma              ? 100
                                                    : i < luma + luma / 4 ? 101
                                                                          : 102);
                ASSERT_EQ(other.bytes[i], expected) << i;
            }
        }
    }
}

TEST(H264Output, RefusesADestinationThatNothingLeadsTo) {
    const auto output = MakeOutput();
    FilledFrame filled(SpsOf(4, 3));
    const auto check = [&](std::uint32_t format, std::uint32_t width, std::uint32_t height, const FilledFrame& source) {
        CVideoSample sample;
        ImageDescriptor& image = *sample.GetImage();
        image.format = format;
        image.width = width;
        image.height = height;
        static std::uint8_t plane[64];
        for (unsigned i = 0; i < 4; ++i) {
            image.planes[i] = plane;
            image.strides[i] = 64;
        }
        const Status status = output->Check(source.frame, sample);
        // The delivery would answer the same, with nothing written.
        if (status != IMG_OK) {
            EXPECT_NE(output->Deliver(source.frame, sample), IMG_OK);
        }
        return status;
    };
    EXPECT_EQ(check(FMT_IMC4, 64, 48, filled), IMG_OK);
    EXPECT_NE(check(FMT_NONE, 64, 48, filled), IMG_OK);
    EXPECT_NE(check(FMT_DV12, 64, 48, filled), IMG_OK);
    EXPECT_NE(check(200, 64, 48, filled), IMG_OK);
    EXPECT_NE(check(FMT_BGR, 63, 48, filled), IMG_OK);
    EXPECT_NE(check(FMT_I420, 0, 48, filled), IMG_OK);
    EXPECT_NE(check(FMT_P422, 64, 48, filled), IMG_OK);
    CVideoSample withoutPlanes;
    withoutPlanes.GetImage()->format = FMT_I420;
    withoutPlanes.GetImage()->width = 64;
    withoutPlanes.GetImage()->height = 48;
    EXPECT_EQ(output->Check(filled.frame, withoutPlanes), IMG_E_NULL_ARG);
    H264Sps deep = SpsOf(4, 3);
    deep.chromaFormatIdc = 2;
    deep.bitDepthLumaMinus8 = 2;
    FilledFrame words(deep);
    EXPECT_EQ(check(FMT_P422, 64, 48, words), IMG_OK);
    EXPECT_NE(check(FMT_P420, 64, 48, words), IMG_OK);
    EXPECT_NE(check(FMT_BGRA, 64, 48, words), IMG_OK);
}

/// A destination that wants to be told all there is.
class CuriousSample final : public IH264PictureInformation {
public:
    Status QueryInterface(const GUID&, void**) override { return IMG_E_NO_PATH; }
    std::uint32_t AddRef() override { return ++references; }
    std::uint32_t Release() override { return --references; }
    void SetPictureType(std::uint32_t value) override { type = value; }
    void SetProfile(std::uint32_t value) override { profile = value; }
    void SetLevel(std::uint32_t value) override { level = value; }
    std::uint32_t references = 1, type = 9, profile = 0, level = 0;
};

class StatisticsView final : public IH264MacroblockStatistics {
public:
    Status QueryInterface(const GUID&, void**) override { return IMG_E_NO_PATH; }
    std::uint32_t AddRef() override { return ++references; }
    std::uint32_t Release() override { return --references; }
    std::uint8_t* GetStatisticsBuffer(std::uint64_t* room) override { return *room = bytes.size(), bytes.data(); }
    void SetStatisticsSize(std::uint64_t value) override { size = value; }
    std::vector<std::uint8_t> bytes;
    std::uint64_t size = 0;
    std::uint32_t references = 1;
};

/// Forwards to a plain sample; answers for the two further interfaces.
class AskedSample final : public TSample<IVideoSample> {
public:
    Status QueryInterface(const GUID& iid, void** object) override {
        if (iid == GUID{0xBB543CCE, 0xD1E7, 0x4857, {0x99, 0xF0, 0x2D, 0x8C, 0xD6, 0x38, 0xDE, 0xC3}}) {
            information.AddRef();
            return *object = static_cast<IH264PictureInformation*>(&information), IMG_OK;
        }
        if (iid == GUID{0xC6497CD4, 0xDF73, 0x446C, {0xA7, 0x98, 0x37, 0xA2, 0x48, 0x27, 0x10, 0xAF}}) {
            statistics.AddRef();
            return *object = static_cast<IH264MacroblockStatistics*>(&statistics), IMG_OK;
        }
        return *object = nullptr, IMG_E_NO_PATH;
    }
    Status SetBuffer(void* buffer, std::uint64_t size) override { return Attach(buffer, size), IMG_OK; }
    Status AddDataSize(std::uint64_t) override { return IMG_OK; }
    Status GetProperties(SampleProperties*) override { return IMG_E_UNSUPPORTED; }
    Status SetProperties(const SampleProperties*) override { return IMG_E_UNSUPPORTED; }
    ImageDescriptor* GetImage() override { return &image; }
    FormatHead* GetVideoFormat() override { return &image; }
    Status SetVideoFormat(const FormatHead*) override { return IMG_OK; }
    std::uint32_t GetFieldStructure() override { return 0; }
    void SetFieldStructure(std::uint32_t) override {}
    const std::uint32_t* GetAspectRatio() override { return &aspect; }
    void SetAspectRatio(const std::uint32_t*) override {}

    ImageDescriptor image;
    std::uint32_t aspect = 0;
    CuriousSample information;
    StatisticsView statistics;
};

std::uint32_t WordAt(const std::vector<std::uint8_t>& bytes, std::size_t at) {
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | static_cast<std::uint32_t>(bytes[at + 3]) << 24;
}

/// Two by two macroblocks: Intra_4x4 and I_PCM above a P macroblock of 8x16 parts and a skipped B one.
void FillRecords(CH264Frame& frame) {
    H264MacroblockRecord* top = frame.records;
    H264MacroblockRecord* low = frame.records + frame.recordStride;
    top[0] = {};
    top[0].mbType = MB_INTRA_4X4;
    top[0].qp = -3;
    for (int i = 0; i < 16; ++i) top[0].intraModes[i] = static_cast<std::int8_t>(i % 9);
    top[1] = {};
    top[1].mbType = MB_I_PCM;
    low[0] = {};
    low[0].mbType = MB_P + 8;
    low[0].shape = 2;
    for (int i = 0; i < 4; ++i) low[0].subShapes[i] = static_cast<std::uint8_t>(i);
    for (int list = 0; list < 2; ++list) {
        for (int i = 0; i < 16; ++i) {
            low[0].refIdx[list][i] = static_cast<std::int8_t>(list == 0 ? i / 4 : -1);
            low[0].mv[list][i][0] = static_cast<std::int16_t>(100 * list + i);
            low[0].mv[list][i][1] = static_cast<std::int16_t>(-i);
        }
    }
    low[1] = {};
    low[1].mbType = MB_B_DIRECT;
    low[1].skip = MB_SKIPPED;
}

TEST(H264Output, TellsASampleThatAsks) {
    FilledFrame filled(SpsOf(2, 2));
    FillRecords(filled.frame);
    for (std::uint32_t number : {1u, 0u}) {  // Finished out of order.
        filled.frame.finished.push_back(std::make_unique<CH264Slice>());
        filled.frame.finished.back()->number = number;
        filled.frame.finished.back()->header.sliceType = number == 0 ? SLICE_B : SLICE_I;
    }
    std::vector<std::uint8_t> pixels(32 * 32 * 3 / 2);
    AskedSample sample;
    sample.image.format = FMT_I420;
    sample.image.width = sample.image.height = 32;
    ASSERT_EQ(ImageSetPlanes(&sample.image, pixels.data(), 32), IMG_OK);
    sample.statistics.bytes.resize(4096, 0xEE);
    ASSERT_EQ(MakeOutput()->Deliver(filled.frame, sample), IMG_OK);
    EXPECT_EQ(sample.information.type, 2u);
    EXPECT_EQ(sample.information.profile, 100u);
    EXPECT_EQ(sample.information.level, 40u);
    EXPECT_EQ(sample.information.references, 1u);
    EXPECT_EQ(sample.statistics.references, 1u);

    const std::vector<std::uint8_t>& bytes = sample.statistics.bytes;
    const std::size_t total = 12 + 70 + 2 + 182 + 2;
    ASSERT_EQ(sample.statistics.size, total);
    EXPECT_EQ(WordAt(bytes, 0), total);
    EXPECT_EQ(WordAt(bytes, 4), 100u);
    EXPECT_EQ(WordAt(bytes, 8), 12u);
    std::size_t at = 12;
    EXPECT_EQ(bytes[at], 70);
    EXPECT_EQ(bytes[at + 1], 0);
    for (std::uint32_t i = 0; i < 16; ++i) EXPECT_EQ(WordAt(bytes, at + 2 + 4 * i), i % 9);
    EXPECT_EQ(WordAt(bytes, at + 66), 0xFFFFFFFDu);
    at += 70;
    EXPECT_EQ(bytes[at], 2);
    EXPECT_EQ(bytes[at + 1], 3);
    at += 2;
    EXPECT_EQ(bytes[at], 182);
    EXPECT_EQ(bytes[at + 1], 10);
    EXPECT_EQ(WordAt(bytes, at + 2), 2u);
    EXPECT_EQ(WordAt(bytes, at + 6 + 4 * 3), 3u);
    EXPECT_EQ(WordAt(bytes, at + 22 + 4 * 5), 5u | 0xFFFB0000u);
    EXPECT_EQ(WordAt(bytes, at + 22 + 64 + 4 * 7), 107u | 0xFFF90000u);
    EXPECT_EQ(bytes[at + 150 + 13], 3);
    EXPECT_EQ(bytes[at + 166], 0xFF);
    at += 182;
    EXPECT_EQ(bytes[at], 2);
    EXPECT_EQ(bytes[at + 1], 18);
    for (std::size_t i = total; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 0xEE);
}

TEST(H264Output, StatisticsStopWhereTheRoomOrTheTypesEnd) {
    FilledFrame filled(SpsOf(2, 2));
    FillRecords(filled.frame);
    std::vector<std::uint8_t> bytes(12 + 70 + 2 + 182 + 181);
    std::size_t written = 0;
    EXPECT_EQ(WriteMacroblockStatistics(filled.frame, bytes.data(), bytes.size(), written), IMG_E_BAD_SIZE);
    EXPECT_EQ(written, 12u + 70 + 2 + 182);
    EXPECT_EQ(WordAt(bytes, 0), written);
    bytes.resize(bytes.size() + 1);
    EXPECT_EQ(WriteMacroblockStatistics(filled.frame, bytes.data(), bytes.size(), written), IMG_OK);
    EXPECT_EQ(WriteMacroblockStatistics(filled.frame, bytes.data(), 11, written), IMG_E_BAD_SIZE);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(WriteMacroblockStatistics(filled.frame, nullptr, 100, written), IMG_E_NULL_ARG);
    filled.frame.records[1].mbType = 77;
    EXPECT_EQ(WriteMacroblockStatistics(filled.frame, bytes.data(), bytes.size(), written), IMG_E_NO_PATH);
    EXPECT_EQ(written, 12u + 70);

    // Lengths and kinds of the rest.
    H264MacroblockRecord* records = filled.frame.records;
    records[0].mbType = MB_INTRA_16X16;
    records[1].mbType = MB_INTRA_8X8;
    records[filled.frame.recordStride].mbType = MB_P + 2;
    records[filled.frame.recordStride].skip = MB_SKIPPED;
    records[filled.frame.recordStride + 1].skip = MB_NOT_SKIPPED;
    EXPECT_EQ(WriteMacroblockStatistics(filled.frame, bytes.data(), bytes.size(), written), IMG_OK);
    const std::uint8_t expected[][2] = {{10, 2}, {22, 1}, {2, 6}, {2, 7}};
    std::size_t at = 12;
    for (const auto& record : expected) {
        EXPECT_EQ(bytes[at], record[0]);
        EXPECT_EQ(bytes[at + 1], record[1]);
        at += record[0];
    }
    EXPECT_EQ(at, written);
}

}  // namespace
}  // namespace h264
