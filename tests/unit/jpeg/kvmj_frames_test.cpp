// Whole frames through the engine itself, on chosen numbers of threads, against results computed apart from the
// library.
#include <gtest/gtest.h>

#include <memory>

#include "component/expected_jpeg_frames.h"
#include "unit/jpeg/kvmj_pictures.h"

namespace pixmorph_test {
namespace {

TEST(KvmjFrames, Expected) {
    for (const EncodeCase& c : kJpegFrames) {
        if (c.row != 9) continue;
        for (const unsigned threads : {1u, 2u, 3u, 8u}) {
            if ((threads == 1) != (c.processors == Processors::One)) continue;
            CodedPicture picture(c.source.format, static_cast<std::uint32_t>(c.width),
                                 static_cast<std::uint32_t>(c.height), c.source.stride, c.source.seed,
                                 c.source.content);
            ASSERT_EQ(picture.RowsHash(), c.source.hash);
            const KvmjFrame frame = EncodeKvmj(picture, c, threads);
            EXPECT_EQ(frame.status, 0) << Name(c);
            EXPECT_EQ(frame.Data().size(), c.frameSize) << Name(c) << ", threads " << threads;
            EXPECT_EQ(HashBytes(frame.Data()), c.frameHash) << Name(c) << ", threads " << threads;
        }
    }
}

TEST(KvmjFrames, ExpectedPictures) {
    for (const DecodeCase& c : kJpegPictures) {
        if (c.frame.row != 9) continue;
        const EncodeCase& e = c.frame;
        CodedPicture source(e.source.format, static_cast<std::uint32_t>(e.width), static_cast<std::uint32_t>(e.height),
                            e.source.stride, e.source.seed, e.source.content);
        const KvmjFrame frame = EncodeKvmj(source, e, e.processors == Processors::One ? 1 : 2);
        ASSERT_EQ(HashBytes(frame.Data()), e.frameHash) << Name(e);
        for (const unsigned threads : {0u, 1u, 2u, 5u}) {
            CodedPicture picture(c.format, static_cast<std::uint32_t>(e.width), static_cast<std::uint32_t>(e.height),
                                 c.stride, 77);
            EXPECT_EQ(DecodeKvmj(frame.Data(), picture, e.width, e.height, c.format, threads), c.result) << Name(e);
            if (c.result != 0) continue;
            EXPECT_EQ(picture.Hash(), c.hash) << Name(e) << " into " << c.format << ", threads " << threads;
        }
    }
}

// Plain JPEG of other makers. The folder of these files may be missing.
TEST(KvmjFrames, FilesOfOthers) {
    for (const FileCase& c : kJpegFiles) {
        if (c.row != 9) continue;
        std::ifstream file(std::string(PIXMORPH_GOLDEN_FRAMES "/") + c.file, std::ios::binary);
        if (!file) continue;
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        const std::span frame(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        for (const unsigned threads : {0u, 2u, 8u}) {
            CodedPicture picture(c.format, static_cast<std::uint32_t>(c.width), static_cast<std::uint32_t>(c.height),
                                 c.stride, 77);
            EXPECT_EQ(DecodeKvmj(frame, picture, c.width, c.height, c.format, threads), c.result) << c.file;
            if (c.result != 0) continue;
            EXPECT_EQ(picture.Hash(), c.hash) << c.file << " into " << c.format << ", threads " << threads;
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
