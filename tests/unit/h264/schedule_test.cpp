// The pipeline with a stand-in for the macroblock layer: which call returns which picture, what the lists of the slices
// hold, and that no row is touched too early, on one, two and four threads.
#include <gtest/gtest.h>

#include <map>

#include "h264/h264_decoder.h"
#include "support/h264_samples.h"
#include "support/h264_stand_in.h"
#include "unit/h264/random_stream.h"
#include "unit/h264/slow_model.h"

namespace h264 {
namespace {

constexpr unsigned kThreadCounts[] = {1, 2, 4};

/// A core that was set up, over a stand-in.
struct Decoder {
    explicit Decoder(unsigned threads) : core(layers, threads) {
        EXPECT_EQ(core.Initialize({}), IMG_OK);
        EXPECT_EQ(core.ThreadCount(), threads);
    }

    /// @param time  the sample's number; receives the number of the picture that came, -1 for none
    Status Decode(const Bytes& bytes, int& time, bool* left = nullptr) {
        CodedSample coded(bytes.data(), bytes.size(), time);
        return Finish(&coded, time, left);
    }
    Status Flush(int& time) { return Finish(nullptr, time, nullptr); }

    Status Finish(CodedSample* coded, int& time, bool* left) {
        PictureSample picture;
        const Status status = core.Decode(&picture, coded);
        time = status == IMG_OK ? static_cast<int>(picture.GetTimes()->start) : -1;
        if (left != nullptr) *left = coded->GetDataSize() != 0;
        return status;
    }
    void ExpectCleanWork() const {
        EXPECT_EQ(layers.counts.unfinishedReferences, 0u);
        EXPECT_EQ(layers.counts.filteredNeighbours, 0u);
        EXPECT_EQ(layers.counts.filteredTooEarly, 0u);
        EXPECT_EQ(layers.counts.filteredOutOfTurn, 0u);
    }

    StandInLayers layers;
    CH264FusionCore core;
};

/// Presents every sample until it is taken, then flushes, and holds each call against the model.
/// @return pictures that came
std::size_t RunAgainstModel(const std::vector<Sample>& samples, unsigned threads) {
    Decoder decoder(threads);
    SlowModel model(threads);
    std::size_t pictures = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        bool left = true;
        for (int tries = 0; left; ++tries) {
            if (tries > 40) {
                ADD_FAILURE() << "sample " << i << " is never taken";
                return pictures;
            }
            int time = static_cast<int>(i);
            const ModelResult expected = model.Decode(&samples[i], time);
            const Status status = decoder.Decode(samples[i].bytes, time, &left);
            EXPECT_EQ(status, expected.status) << "sample " << i;
            EXPECT_EQ(time, expected.time) << "sample " << i;
            EXPECT_EQ(left, expected.sampleLeft) << "sample " << i;
            if (status != expected.status || time != expected.time || left != expected.sampleLeft) return pictures;
            pictures += status == IMG_OK;
        }
    }
    for (;;) {
        int time = -1;
        const ModelResult expected = model.Decode(nullptr, 0);
        const Status status = decoder.Flush(time);
        EXPECT_EQ(status, expected.status);
        EXPECT_EQ(time, expected.time);
        if (status != IMG_OK) break;
        ++pictures;
    }
    decoder.ExpectCleanWork();
    return pictures;
}

std::vector<Sample> RandomSamples(unsigned seed, std::size_t count) {
    RandomStream stream(seed);
    H264ParameterSets sets;
    std::vector<Sample> samples;
    while (samples.size() < count) {
        samples.push_back(stream.Next().sample);
        ReadFirstHeader(samples.back(), sets);
        EXPECT_TRUE(samples.back().readable);
    }
    return samples;
}

TEST(H264Schedule, RandomSequencesComeAsTheModelSays) {
    std::size_t pictures = 0;
    for (unsigned seed = 0; seed < 150; ++seed) {
        const std::vector<Sample> samples = RandomSamples(seed, 60);
        for (unsigned threads : kThreadCounts) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", threads " << threads);
            pictures += RunAgainstModel(samples, threads);
            if (HasFailure()) return;
        }
    }
    EXPECT_GT(pictures, 10000u);
}

TEST(H264Schedule, StreamsComeWholeAndAsTheModelSays) {
    for (const auto& file : StreamFiles()) {
        SCOPED_TRACE(file.filename().string());
        const std::vector<Sample> samples = SplitIntoSamples(ReadFile(file));
        // Monochrome is refused: no slice finds its sets.
        if (samples.empty() || !samples[0].readable) continue;
        for (unsigned threads : kThreadCounts) EXPECT_EQ(RunAgainstModel(samples, threads), ListedFrames(file));
        if (HasFailure()) return;
    }
}

/// A number for a picture: its time and structure; frames that fill gaps have no time, and go by frame_num.
int NumberOf(int time, int frameNum, int structure) { return (time >= 0 ? time : -1 - frameNum) * 4 + structure; }
int NumberOf(const ModelEntry& entry) {
    return entry.frame == nullptr ? -1000 : NumberOf(entry.frame->time, entry.frame->frameNum, entry.structure);
}
int NumberOf(const CH264Picture* picture) {
    if (picture == nullptr) return -1000;
    const CH264Frame& frame = *picture->frame;
    const int structure = picture == &frame ? 0 : picture->structure;
    return NumberOf(static_cast<int>(frame.times.start), static_cast<int>(frame.frameNum), structure);
}

TEST(H264Schedule, ListsHoldWhatTheModelSays) {
    std::size_t lists = 0;
    for (unsigned seed = 1000; seed < 1150; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Decoder decoder(1);
        SlowModel model(1);
        std::map<int, std::vector<int>> got[2];
        decoder.layers.faults.onSlice = [&](const CH264Slice& slice) {
            for (unsigned list = 0; list < 2; ++list) {
                std::vector<int>& numbers = got[list][NumberOf(slice.picture)];
                numbers.clear();
                for (std::uint32_t i = 0; i < slice.ReferenceCount(list); ++i) {
                    numbers.push_back(NumberOf(slice.references.entries[VIEW_PICTURE][list][i].picture));
                }
            }
        };
        RandomStream stream(seed);
        H264ParameterSets sets;
        for (int i = 0; i < 60; ++i) {
            RandomPicture picture = stream.Next();
            ReadFirstHeader(picture.sample, sets);
            SlowModel::ListRequest request;
            request.sliceType = picture.sliceType;
            for (unsigned list = 0; list < 2; ++list) {
                request.active[list] = picture.active[list];
                request.modification[list] = picture.modification[list];
            }
            model.RequestLists(request);
            bool left = true;
            for (int tries = 0; left && tries < 50; ++tries) {
                int time = i;
                model.Decode(&picture.sample, i);
                decoder.Decode(picture.sample.bytes, time, &left);
            }
        }
        int time = -1;
        decoder.Flush(time);
        model.Decode(nullptr, 0);
        for (const SlowModel::Lists& made : model.MadeLists()) {
            for (unsigned list = 0; list < 2; ++list) {
                std::vector<int> expected;
                for (const ModelEntry& entry : made.lists[list]) expected.push_back(NumberOf(entry));
                EXPECT_EQ(got[list][NumberOf(made.own)], expected)
                    << "picture " << NumberOf(made.own) << " list " << list;
                lists += !expected.empty();
            }
        }
        if (HasFailure()) return;
    }
    EXPECT_GT(lists, 3000u);
}

}  // namespace
}  // namespace h264
