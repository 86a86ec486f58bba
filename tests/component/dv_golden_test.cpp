// Frames and pictures of the DV family against results that were computed apart from this library.
#include <algorithm>

#include "component/codec_cases.h"
#include "component/expected_dv_frames.h"

namespace pixmorph_test {
namespace {

constexpr std::size_t kBlockBytes = 80;
constexpr std::size_t kSequenceBlocks = 150;

std::size_t VideoBlock(std::size_t sequence, std::size_t segment, std::size_t place) {
    return kBlockBytes * (kSequenceBlocks * sequence + 7 + segment % 3 * 5 + segment / 3 * 16 + place);
}

TEST(ExpectedFrames, Dv) {
    for (const EncodeCase& c : kDvFrames) ExpectFrame(c);
}

TEST(ExpectedFrames, DvStructure) {
    for (const DvStructureCase& c : kDvStructures) {
        CodedPicture picture(0, static_cast<std::uint32_t>(c.width), static_cast<std::uint32_t>(c.height), 2 * c.width,
                             5, "gradient");
        KorvaneSoftware::ComPtr<IVideoEncoder> encoder;
        ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder), S_OK);
        ASSERT_EQ(encoder->EncSetFormat(c.row, c.width, c.height), S_OK);
        std::vector<std::uint8_t> frame(c.frameSize);
        const std::uint8_t* const planes[] = {picture.First()};
        const std::int32_t strides[] = {picture.Stride()};
        std::uint32_t size = 0;
        for (int i = 0; i <= c.frameNumber; ++i)
            ASSERT_EQ(encoder->Encode(frame.data(), static_cast<std::int32_t>(frame.size()), &size, planes, strides, 0),
                      S_OK);
        ASSERT_EQ(size, c.frameSize);
        for (std::size_t sequence = 0; sequence < size / (kBlockBytes * kSequenceBlocks); ++sequence)
            for (std::size_t segment = 0; segment < 27; ++segment)
                for (std::size_t place = 0; place < 5; ++place)
                    std::fill_n(frame.begin() + static_cast<std::ptrdiff_t>(VideoBlock(sequence, segment, place) + 3),
                                kBlockBytes - 3, std::uint8_t{0});
        EXPECT_EQ(HashBytes(frame), c.hash)
            << "codec " << c.row << ", " << c.width << " by " << c.height << ", frame " << c.frameNumber;
    }
}

TEST(ExpectedPictures, Dv) {
    for (const DecodeCase& c : kDvPictures) ExpectPicture(c);
}

TEST(ExpectedPictures, DvFiles) {
    for (const FileCase& c : kDvFiles) ExpectFilePicture(c);
}

TEST(ExpectedPictures, DvSegments) {
    for (const DvSegmentCase& c : kDvSegments) {
        std::ifstream file(std::string(PIXMORPH_GOLDEN_FRAMES "/") + c.file, std::ios::binary);
        if (!file) continue;
        const std::vector<char> segment{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        ASSERT_EQ(segment.size(), 5 * kBlockBytes);
        std::vector<std::uint8_t> frame(c.frameSize);
        for (std::size_t sequence = 0; sequence < c.frameSize / (kBlockBytes * kSequenceBlocks); ++sequence)
            for (std::size_t k = 0; k < 27; ++k)
                std::copy(segment.begin(), segment.end(),
                          frame.begin() + static_cast<std::ptrdiff_t>(VideoBlock(sequence, k, 0)));
        ASSERT_EQ(HashBytes(frame), c.frameHash);
        HRESULT result = E_FAIL;
        const std::uint64_t hash = DecodeFrame(frame, c.row, c.width, c.height, c.format, c.stride, result);
        EXPECT_EQ(result, S_OK);
        EXPECT_EQ(hash, c.hash) << "codec " << c.row << ", " << c.height << " lines, format " << c.format;
    }
}

}  // namespace
}  // namespace pixmorph_test
