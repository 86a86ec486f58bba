// Frames and pictures of all codecs against results that were computed apart from this library.
#include "component/codec_cases.h"
#include "component/expected_iframe_frames.h"
#include "component/expected_jpeg_frames.h"

namespace pixmorph_test {
namespace {

/// Whether the library has the codec at all.
bool IsThere(std::int32_t row) {
    KorvaneSoftware::ComPtr<IVideoDecoder> decoder;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder), S_OK);
    return decoder->DecSetFormat(row, 720, 576) != E_OUTOFMEMORY;
}

TEST(ExpectedFrames, Jpeg) {
    for (const EncodeCase& c : kJpegFrames)
        if (IsThere(c.row)) ExpectFrame(c);
}

TEST(ExpectedPictures, Jpeg) {
    for (const DecodeCase& c : kJpegPictures)
        if (IsThere(c.frame.row)) ExpectPicture(c);
}

TEST(ExpectedPictures, JpegFiles) {
    for (const FileCase& c : kJpegFiles)
        if (IsThere(c.row)) ExpectFilePicture(c);
}

TEST(ExpectedFrames, IFrame) {
    for (const EncodeCase& c : kIFrameFrames) {
        ExpectFrame(c);
        EncodeCase alone = c;
        alone.processors = Processors::One;
        ExpectFrame(alone);
    }
}

TEST(ExpectedPictures, IFrame) {
    for (const DecodeCase& c : kIFramePictures) ExpectPicture(c);
}

TEST(ExpectedPictures, IFrameFiles) {
    for (const NearFileCase& c : kIFrameFiles) ExpectNearFilePicture(c);
}

}  // namespace
}  // namespace pixmorph_test
